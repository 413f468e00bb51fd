// SkyRoamer runs over the real catalogues: the stage order, a full list, the stop key, the "+"
// and "-" actions, and a selection compared object by object with an independent computation.
#include <erfa.h>
#include <erfam.h>

#include <algorithm>
#include <cmath>
#include <set>

#include <gtest/gtest.h>

#include "catalog/catalogues.h"
#include "catalog/constellations.h"
#include "catalog/star_catalog.h"
#include "catalog/object_tables.h"
#include "catalog/objects.h"
#include "catalog/record_file.h"
#include "core/planet_series_format.h"
#include "plans/list_members.h"
#include "plans/plans_test_support.h"
#include "plans/selection_run.h"
#include "plans/selection_sky.h"
#include "plans/user_catalog.h"
#include "plans/user_lists.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class SelectionRunTest : public PlansFolderTest {
protected:
    void SetUp() override {
        PlansFolderTest::SetUp();
        const char* data = std::getenv("NOCTURNEL_TEST_DATA");
        if (data == nullptr || !fs::exists(fs::path(data) / "nocturnel_obj_18k.ppc"))
            GTEST_SKIP() << "the built catalogues are needed (NOCTURNEL_TEST_DATA)";
        fs::create_directory_symlink(data, home_ / "data");
        prefs() = defaultPreferences();
        closeCatalogues();
        forgetConstellations();
        forgetBrightStarCount();
    }
    void TearDown() override {
        closeCatalogues();
        PlansFolderTest::TearDown();
    }
    static ObjectReference body(const char* name, double ra, double dec, double mag) {
        ObjectReference r{};
        r.raHours = ra, r.decDeg = dec, r.mag = static_cast<float>(mag);
        std::strncpy(r.name, name, sizeof r.name - 1);
        return r;
    }
    SelectionRunHooks hooks() const {
        SelectionRunHooks h;
        h.conditions.latitudeDeg = 31.96;
        h.conditions.localSiderealHours = 4.5;
        h.planets = [] { return std::vector<ObjectReference>{body("Jupiter", 7.5, 21.9, -2.5), body("Moon", 3.0, 15.0, -12)}; };
        return h;
    }
};

TEST_F(SelectionRunTest, NoCriteriaFillsTheListInStageOrderPlanetsFirst) {
    SelectionList list;
    list.capacity = 25;
    MessageCapture quiet;
    const SelectionOutcome outcome = runSelection(SelectionCriteria{}, hooks(), list);
    ASSERT_EQ(list.items.size(), 25u);
    EXPECT_STREQ(list.items[0].name, "Jupiter");
    EXPECT_EQ(list.items[0].catalog, 45);
    EXPECT_EQ(list.items[0].type, 27);
    EXPECT_EQ(list.items[2].type, 14) << "then the constellations";
    EXPECT_EQ(outcome.stages, (std::vector<std::string>{"Please wait, selecting", "Checking Planets", "Checking Constellation"}));
}

// The planet stage offers every body the series place, and Pluto only within its series' years.
TEST_F(SelectionRunTest, PlanetStageLeavesPlutoOutBeyondItsSeries) {
    if (!fs::exists(home_ / "data" / kPlanetSeriesFileName)) GTEST_SKIP() << "catalogues built before the planet series";
    const auto names = [](double jdUt) {
        std::vector<std::string> out;
        for (const ObjectReference& r : solarSystemReferences(jdUt)) out.emplace_back(r.name);
        return out;
    };
    const std::vector<std::string> in2026 = names(2461367.5), in2150 = names(2506331.5);
    EXPECT_EQ(in2026.size(), 10u);
    EXPECT_NE(std::find(in2026.begin(), in2026.end(), "Pluto"), in2026.end());
    EXPECT_EQ(in2150.size(), 9u);
    EXPECT_EQ(std::find(in2150.begin(), in2150.end(), "Pluto"), in2150.end());
}

TEST_F(SelectionRunTest, StagesRunInOrderAndTheStopKeyKeepsWhatWasFound) {
    SelectionList list;
    list.capacity = 500;
    SelectionCriteria c;
    c.magLimitChoice = 3;  // brighter than 4: the list never fills
    c.selectionMonth = 12, c.selectionDay = 13;
    MessageCapture quiet;
    const SelectionOutcome all = runSelection(c, hooks(), list);
    ASSERT_GE(all.stages.size(), 12u);
    const std::vector<std::string> expected = {"Please wait, selecting", "Checking Planets", "Checking Constellation",
                                               "Checking Meteor Showers", "Checking Comets&Asteroid",
                                               "Checking Messier  ", "Checking your Objects", "Checking Caldwell   ",
                                               "Checking Best SAC", "Checking Herschel"};
    EXPECT_EQ(std::vector<std::string>(all.stages.begin(), all.stages.begin() + 10), expected);
    EXPECT_TRUE(all.stages[10].starts_with("Objects to check: "));
    EXPECT_EQ(all.stages.back(), "Checking Bright Stars");
    EXPECT_TRUE(quiet.shown("No personnal object found."));
    const std::size_t found = list.items.size();
    EXPECT_GT(found, 20u);

    int polls = 0;
    SelectionRunHooks stopping = hooks();
    stopping.stopRequested = [&] { return ++polls > 40; };
    SelectionList stopped;
    const SelectionOutcome cut = runSelection(c, stopping, stopped);
    EXPECT_TRUE(cut.stopped);
    EXPECT_LT(stopped.items.size(), found);
    EXPECT_FALSE(stopped.items.empty()) << "what was found before the stop is kept";
}

TEST_F(SelectionRunTest, AddAndRemoveActOnlyOnMatchingObjects) {
    SelectionList list;
    SelectionCriteria galaxies;
    galaxies.typeGroupFilter = 3;
    galaxies.magLimitChoice = 5;  // 8
    MessageCapture quiet;
    runSelection(galaxies, hooks(), list);
    const std::size_t galaxyCount = list.items.size();
    ASSERT_GT(galaxyCount, 5u);
    SelectionCriteria globulars;
    globulars.typeFilter = 2;
    globulars.magLimitChoice = 5;
    const SelectionOutcome added = runSelection(globulars, hooks(), list, SelectionMode::kAdd);
    EXPECT_EQ(list.items.size(), galaxyCount + static_cast<std::size_t>(added.added));
    EXPECT_GT(added.added, 5);
    runSelection(galaxies, hooks(), list, SelectionMode::kRemove);
    EXPECT_EQ(list.items.size(), static_cast<std::size_t>(added.added));
    for (const ObjectReference& o : list.items) EXPECT_EQ(o.type, 2);
}

// The same criteria computed independently: ERFA's sidereal time and the plain spherical
// formula in double precision over every object record, objects within 0.05 degree of the
// altitude limit left out (fixed-point rounding may put them on either side).
TEST_F(SelectionRunTest, AVisibleSelectionMatchesAnIndependentComputation) {
    const double lat = 31.96, lonEast = -111.6;
    const double jdUt = 2461368.5 + 4.0 / 24;  // 2026-11-24 04:00 UT: 21:00 at Kitt Peak
    const double lst = std::fmod(eraGmst82(jdUt, 0) * 12 / ERFA_DPI + lonEast / 15 + 48, 24.0);
    SelectionRunHooks h = hooks();
    h.planets = nullptr;
    h.conditions.latitudeDeg = lat;
    h.conditions.localSiderealHours = lst;
    SelectionCriteria c;
    c.catalogFilter = 42;  // NGC
    c.visibility = 4;      // ">25°"
    c.magLimitChoice = 5;  // brighter than 8
    SelectionList list;
    MessageCapture quiet;
    runSelection(c, h, list);
    std::set<int> selected;
    for (const ObjectReference& o : list.items) selected.insert(o.number);
    std::set<int> expected, borderline;
    ASSERT_NE(objectSlot().file, nullptr) << "the deep-sky file is open after the run";
    const int count = static_cast<int>(objectSlot().file->recordCount & 0xFFFF);
    for (int i = 0; i < count; ++i) {
        ObjectRecord o;
        ASSERT_TRUE(readObject(static_cast<uint16_t>(i), o));
        if (o.catalog != 42 || o.mag == 0 || o.mag > 8) continue;
        const double ha = (lst - o.raHours) * 15 * ERFA_DD2R;
        const double alt = std::asin(std::sin(lat * ERFA_DD2R) * std::sin(o.decDeg * ERFA_DD2R) +
                                     std::cos(lat * ERFA_DD2R) * std::cos(o.decDeg * ERFA_DD2R) * std::cos(ha)) * ERFA_DR2D;
        if (std::abs(alt - 25) < 0.05) borderline.insert(o.number);
        else if (alt > 25) expected.insert(o.number);
    }
    for (int n : borderline) selected.erase(n);
    EXPECT_GT(expected.size(), 50u);
    std::vector<int> missing, extra;
    for (int n : expected) if (!selected.count(n)) missing.push_back(n);
    for (int n : selected) if (!expected.count(n)) extra.push_back(n);
    EXPECT_TRUE(missing.empty()) << "above 25 degrees and brighter than 8 but not selected: " << missing.size() << " first NGC " << (missing.empty() ? 0 : missing[0]) << " selected " << list.items.size() << " expected " << expected.size();
    EXPECT_TRUE(extra.empty()) << "selected but below 25 degrees or fainter than 8: " << extra.size();
}

// The Herschel and best-of-the-NGC stages find every member of the published lists in the built
// catalogues (400 and 111 NGC numbers), each object once and under its own NGC number: the
// Herschel 400 names both lobes of one planetary nebula (NGC 2371 and 2372, one record), so its
// 400 members are 399 objects. The short selections report the visible ones.
TEST_F(SelectionRunTest, HerschelAndBestSacStagesFindEveryListedObject) {
    if (!fs::exists(home_ / "data" / kListMemberFile)) GTEST_SKIP() << "catalogues built before the list memberships";
    std::vector<ListMemberRecord> members;
    ASSERT_TRUE(loadListMembers(members));
    EXPECT_EQ(std::count_if(members.begin(), members.end(), [](auto& m) { return m.catalog == 25; }), 400);
    EXPECT_EQ(std::count_if(members.begin(), members.end(), [](auto& m) { return m.catalog == 49; }), 111);
    struct Case {
        int catalog;
        size_t count;
        const char* stage;
    };
    for (const Case& list : {Case{25, 399, "Checking Herschel"}, Case{49, 111, "Checking Best SAC"}}) {
        SelectionCriteria c;
        c.catalogFilter = list.catalog;
        SelectionList found;
        found.capacity = 500;
        MessageCapture quiet;
        const SelectionOutcome outcome = runSelection(c, hooks(), found);
        EXPECT_TRUE(quiet.messages().empty()) << quiet.lastTitle();
        EXPECT_EQ(outcome.stages, (std::vector<std::string>{"Please wait, selecting", list.stage}));
        ASSERT_EQ(found.items.size(), list.count) << list.stage;
        std::set<int> ngc;
        for (const ObjectReference& o : found.items) {
            EXPECT_EQ(o.catalog, kCatalogNGC) << o.name;
            ngc.insert(o.number);
        }
        EXPECT_EQ(ngc.size(), list.count) << "each member once";
        EXPECT_TRUE(ngc.count(list.catalog == 25 ? 4038 : 7009));
    }
    // Visible from Kitt Peak at sidereal time 4.5 h: the short selection reports the count found.
    SelectionList visible;
    std::string report;
    MessageCapture quiet;
    runShortSelection(ShortSelection::kHerschel, SelectionCriteria{}, hooks(), visible, report);
    EXPECT_GT(visible.items.size(), 100u);
    EXPECT_LT(visible.items.size(), 400u);
    EXPECT_EQ(report, std::to_string(visible.items.size()) + " visible Herschels.");
    runShortSelection(ShortSelection::kSac, SelectionCriteria{}, hooks(), visible, report);
    EXPECT_GT(visible.items.size(), 20u);
    EXPECT_EQ(report, std::to_string(visible.items.size()) + " visible best SAC Objects.");
}

// A full run offers an object of several lists once: M 110 (NGC 205) under Messier only.
TEST_F(SelectionRunTest, AnObjectOfSeveralListsIsOfferedOnce) {
    if (!fs::exists(home_ / "data" / kListMemberFile)) GTEST_SKIP() << "catalogues built before the list memberships";
    SelectionList list;
    list.capacity = 500;
    SelectionCriteria c;
    c.magLimitChoice = 6;  // brighter than 10
    MessageCapture quiet;
    runSelection(c, hooks(), list);
    int m110 = 0, ngc205 = 0;
    for (const ObjectReference& o : list.items) {
        m110 += o.catalog == kCatalogMessier && o.number == 110;
        ngc205 += o.catalog == kCatalogNGC && o.number == 205;
    }
    EXPECT_EQ(m110, 1);
    EXPECT_EQ(ngc205, 0);
}

TEST_F(SelectionRunTest, MemoImportFindsObjectsAndStopsAtABadLine) {
    SelectionList list;
    SelectionCriteria c;
    MessageCapture capture;
    const ObservingMoment now{2026, 11, 23, 21, 30, 0};
    EXPECT_EQ(importMemoText("M 31\nNGC 7000\r\nM 31\nHIP 91262\nNot an object\nM 42\n", now, list, c), -1);
    ASSERT_EQ(list.items.size(), 3u);
    EXPECT_NE(std::string(list.items[0].name).find("M31"), std::string::npos);
    EXPECT_TRUE(capture.shown("Already loaded:"));
    EXPECT_TRUE(capture.shown("Failed to load data. Check line"));
    EXPECT_EQ(capture.messages().back().detail, "Not an object\nM 42\n") << "the text from that line on";
    EXPECT_EQ(c.selectionYear, 2026);
    EXPECT_EQ(c.selectionMinute, 30);
    // Export and import give the same objects back.
    SelectionList again;
    SelectionCriteria c2;
    EXPECT_EQ(importMemoText(memoTextOf(list), now, again, c2), 3);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_TRUE(sameObject(again.items[i], list.items[i])) << i;
}

TEST_F(SelectionRunTest, UserCatalogueFromCsvIsSelected) {
    const std::string csv =
        "name,ra,dec,type,mag,size\n"
        "# my targets\n"
        "Garden cluster,05:35:00,-05:20:00,Open Cluster,6.5,20\n"
        "\"Odd, name\",12.5,45,GALXY,,\n";
    std::vector<ObjectRecord> records;
    ASSERT_TRUE(readUserCatalogCsv(csv, records));
    ASSERT_EQ(records.size(), 2u);
    EXPECT_STREQ(records[1].name, "Odd, name");
    EXPECT_EQ(records[0].type, 6);
    EXPECT_FLOAT_EQ(records[1].mag, 0.0f) << "an empty magnitude is unknown";
    ASSERT_TRUE(writeUserCatalog(records));
    SelectionList list;
    SelectionCriteria c;
    c.catalogFilter = 63;
    const SelectionOutcome outcome = runSelection(c, hooks(), list);
    EXPECT_EQ(list.items.size(), 2u);
    EXPECT_EQ(list.items[0].catalog, 63);
    EXPECT_EQ(std::count(outcome.stages.begin(), outcome.stages.end(), "Checking your Objects"), 1);
    for (const char* bad : {"x,25:00:00,0\n", "x,1,95\n", ",1,1\n", "x,1\n", "x,1,1,Nonsense\n", "x,nan,1\n"}) {
        MessageCapture capture;
        EXPECT_FALSE(readUserCatalogCsv(bad, records)) << bad;
        EXPECT_TRUE(capture.shown("Can't import the user catalogue")) << bad;
    }
}

}  // namespace
}  // namespace nocturnel
