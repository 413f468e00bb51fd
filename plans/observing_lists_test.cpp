// The meteor-shower table and the list memberships read back from data/: round trips, the
// shower dates, and the messages for missing and damaged files; the shower stage of a run.
#include <algorithm>
#include <cstring>
#include <set>

#include <gtest/gtest.h>

#include "catalog/catalogues.h"
#include "catalog/constellations.h"
#include "catalog/formats.h"
#include "catalog/star_catalog.h"
#include "plans/list_members.h"
#include "plans/meteor_showers.h"
#include "plans/plans_test_support.h"
#include "plans/selection_run.h"
#include "settings/message.h"

namespace nocturnel {
namespace {

template <typename Record>
std::string fileBytes(uint32_t version, const std::vector<Record>& records, uint32_t recordSize = sizeof(Record)) {
    const DatabaseHeader header{version, 0, static_cast<uint32_t>(records.size()), recordSize};
    std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
    if (!records.empty()) bytes.append(reinterpret_cast<const char*>(records.data()), records.size() * sizeof(Record));
    return bytes;
}

MeteorShowerRecord shower(const char* name, float ra, float dec, int sm, int sd, int em, int ed, int pm, int pd, int zhr) {
    MeteorShowerRecord r{};
    std::strncpy(r.name, name, sizeof r.name - 1);
    r.radiantRaDeg = ra, r.radiantDecDeg = dec;
    r.startMonth = static_cast<uint8_t>(sm), r.startDay = static_cast<uint8_t>(sd);
    r.endMonth = static_cast<uint8_t>(em), r.endDay = static_cast<uint8_t>(ed);
    r.peakMonth = static_cast<uint8_t>(pm), r.peakDay = static_cast<uint8_t>(pd);
    r.zhr = static_cast<uint16_t>(zhr);
    return r;
}

// Four showers of the published table, the Quadrantids first.
const std::vector<MeteorShowerRecord> kShowers = {
    shower("Quadrantids", 230, 49, 12, 28, 1, 12, 1, 4, 80),
    shower("S. delta Aquariids", 340, -16, 7, 12, 8, 23, 7, 30, 25),
    shower("Perseids", 48, 58, 7, 17, 8, 24, 8, 12, 100),
    shower("Geminids", 112, 33, 12, 4, 12, 20, 12, 14, 150),
};

class ObservingListsTest : public PlansFolderTest {
protected:
    void SetUp() override {
        PlansFolderTest::SetUp();
        std::filesystem::create_directories(home_ / "data");
    }
    void write(const char* name, const std::string& bytes) { writeFile(home_ / "data" / name, bytes); }
};

TEST_F(ObservingListsTest, MeteorShowerFileRoundTripsInTableOrder) {
    write(kMeteorShowerFile, fileBytes(kMeteorShowerFileVersion, kShowers));
    std::vector<MeteorShower> showers;
    MessageCapture messages;
    ASSERT_TRUE(loadMeteorShowers(showers));
    EXPECT_TRUE(messages.messages().empty());
    ASSERT_EQ(showers.size(), kShowers.size());
    const MeteorShower& q = showers[0];
    EXPECT_EQ(q.name, "Quadrantids");
    EXPECT_EQ(q.radiantRaDeg, 230);
    EXPECT_EQ(q.radiantDecDeg, 49);
    EXPECT_EQ((std::vector<int>{q.startMonth, q.startDay, q.endMonth, q.endDay, q.peakMonth, q.peakDay, q.zhr}),
              (std::vector<int>{12, 28, 1, 12, 1, 4, 80}));
    EXPECT_EQ(showers[2].name, "Perseids");
    EXPECT_EQ(showers[2].zhr, 100);
}

TEST_F(ObservingListsTest, ShowersAreActiveBetweenTheirDatesAcrossTheNewYear) {
    write(kMeteorShowerFile, fileBytes(kMeteorShowerFileVersion, kShowers));
    std::vector<MeteorShower> showers;
    ASSERT_TRUE(loadMeteorShowers(showers));
    struct Case {
        int month, day;
        std::set<std::string> active;
    };
    const Case cases[] = {
        {8, 12, {"S. delta Aquariids", "Perseids"}},
        {8, 24, {"Perseids"}},
        {8, 25, {}},
        {7, 16, {"S. delta Aquariids"}},
        {12, 28, {"Quadrantids"}},
        {1, 1, {"Quadrantids"}},
        {1, 12, {"Quadrantids"}},
        {1, 13, {}},
        {12, 14, {"Geminids"}},
    };
    for (const Case& c : cases) {
        std::set<std::string> active;
        for (const MeteorShower& s : showers)
            if (meteorShowerActive(s, c.month, c.day)) active.insert(s.name);
        EXPECT_EQ(active, c.active) << c.month << "-" << c.day;
    }
}

TEST_F(ObservingListsTest, MissingOrDamagedFilesGiveTheirMessage) {
    struct Case {
        const char* what;
        std::string bytes;  // empty: no file
        const char* title;
    };
    std::vector<MeteorShowerRecord> badDate = kShowers;
    badDate[1].endDay = 32;
    std::vector<MeteorShowerRecord> unterminated = kShowers;
    std::memset(unterminated[0].name, 'x', sizeof unterminated[0].name);
    const Case cases[] = {
        {"missing", "", "Could not find nocturnel_meteor_showers.ppc"},
        {"record size", fileBytes(kMeteorShowerFileVersion, kShowers, 36), "Could not read nocturnel_meteor_showers.ppc"},
        {"version", fileBytes(7, kShowers), "Could not read nocturnel_meteor_showers.ppc"},
        {"truncated", fileBytes(kMeteorShowerFileVersion, kShowers).substr(0, 16 + 40 * 3 + 5),
         "Could not read nocturnel_meteor_showers.ppc"},
        {"bad date", fileBytes(kMeteorShowerFileVersion, badDate), "Could not read nocturnel_meteor_showers.ppc"},
        {"name without end", fileBytes(kMeteorShowerFileVersion, unterminated), "Could not read nocturnel_meteor_showers.ppc"},
    };
    for (const Case& c : cases) {
        std::filesystem::remove(home_ / "data" / kMeteorShowerFile);
        if (!c.bytes.empty()) write(kMeteorShowerFile, c.bytes);
        std::vector<MeteorShower> showers = {MeteorShower{}};
        MessageCapture messages;
        EXPECT_FALSE(loadMeteorShowers(showers)) << c.what;
        EXPECT_TRUE(showers.empty()) << c.what;
        ASSERT_EQ(messages.messages().size(), 1u) << c.what;
        EXPECT_EQ(messages.lastTitle(), c.title) << c.what;
        EXPECT_FALSE(messages.messages().back().detail.empty()) << c.what;
    }
}

TEST_F(ObservingListsTest, ListMembersRoundTripAndNameTheirLists) {
    const std::vector<ListMemberRecord> members = {{25, 1, 12, 40}, {25, 2, 30, 129}, {49, 1, 30, 129}};
    write(kListMemberFile, fileBytes(kListMemberFileVersion, members));
    std::vector<ListMemberRecord> read;
    ASSERT_TRUE(loadListMembers(read));
    ASSERT_EQ(read.size(), 3u);
    EXPECT_EQ(read[1].ngc, 129);
    EXPECT_EQ(read[1].objectRecord, 30);
    EXPECT_EQ(listsOfObject(read, 30), (std::vector<int>{25, 49}));
    EXPECT_EQ(listsOfObject(read, 12), (std::vector<int>{25}));
    EXPECT_TRUE(listsOfObject(read, 13).empty());
    // Keyed by the objects' own designations, as the stages offer them.
    std::vector<ObjectRecord> objects(31, ObjectRecord{});
    objects[12].catalog = 42, objects[12].number = 40;
    objects[30].catalog = 42, objects[30].number = 3180;
    write("nocturnel_obj_18k.ppc", fileBytes(24, objects));
    const ListsByObject lists = listsByObject();
    EXPECT_EQ(lists, (ListsByObject{{{42, 40}, {25}}, {{42, 3180}, {25, 49}}}));

    MessageCapture messages;
    write(kListMemberFile, fileBytes(kListMemberFileVersion, std::vector<ListMemberRecord>{{42, 1, 12, 40}}));
    EXPECT_FALSE(loadListMembers(read));
    EXPECT_EQ(messages.lastTitle(), "Could not read nocturnel_list_members.ppc");
    std::filesystem::remove(home_ / "data" / kListMemberFile);
    EXPECT_FALSE(loadListMembers(read));
    EXPECT_EQ(messages.lastTitle(), "Could not find nocturnel_list_members.ppc");
    EXPECT_TRUE(read.empty());
}

// A run with only the shower table in data/: the shower stage offers the showers active on the
// selection's date; without the table it shows its line and the message, and the run goes on.
TEST_F(ObservingListsTest, ShowerStageOffersTheShowersActiveOnTheSelectionDate) {
    closeCatalogues();
    forgetConstellations();
    forgetBrightStarCount();
    write(kMeteorShowerFile, fileBytes(kMeteorShowerFileVersion, kShowers));
    SelectionCriteria c;
    c.selectionMonth = 8, c.selectionDay = 12;
    SelectionList list;
    MessageCapture messages;
    const SelectionOutcome outcome = runSelection(c, SelectionRunHooks{}, list);
    std::set<std::string> names;
    for (const ObjectReference& r : list.items)
        if (r.type == 29) names.insert(r.name);
    EXPECT_EQ(names, (std::set<std::string>{"S. delta Aquariids", "Perseids"}));
    EXPECT_FALSE(messages.shown("Could not find nocturnel_meteor_showers.ppc"));

    std::filesystem::remove(home_ / "data" / kMeteorShowerFile);
    messages.clear();
    const SelectionOutcome without = runSelection(c, SelectionRunHooks{}, list);
    EXPECT_TRUE(messages.shown("Could not find nocturnel_meteor_showers.ppc"));
    EXPECT_NE(std::find(without.stages.begin(), without.stages.end(), "Checking Meteor Showers"), without.stages.end());
    EXPECT_NE(std::find(without.stages.begin(), without.stages.end(), "Checking Best SAC"), without.stages.end())
        << "the run goes on past the shower stage";
    for (const ObjectReference& r : list.items) EXPECT_NE(r.type, 29);
    EXPECT_TRUE(messages.shown("Could not find nocturnel_list_members.ppc"));
    closeCatalogues();
}

}  // namespace
}  // namespace nocturnel
