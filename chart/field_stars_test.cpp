#include "chart/field_stars.h"

#include <erfa.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <vector>

#include "catalog/card_star_motion.h"
#include "catalog/catalogues.h"
#include "catalog/star_catalog.h"
#include "catalog/star_motion.h"
#include "chart/chart_test_support.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {

using testing::TempProgramFolder;

TEST(FieldStarWindow, RightAscensionWindowInMinutes) {
    struct Case { double centre, w; int a, b, c, d; };
    const Case cases[] = {
        {23.75, 0.5, 1395, 1440, 0, 15},   // wraps past 24 h
        {0.25, 0.5, 1425, 1440, 0, 45},    // wraps below 0 h
        {12.0, 1.0, 660, 721, 719, 780},   // inside the day
        {6.0, 24.0, 0, 1440, 0, 1440},     // whole circle
    };
    for (const Case& c : cases) {
        const RaWindow w = raWindowMinutes(c.centre, c.w);
        EXPECT_EQ(w.a, c.a) << c.centre;
        EXPECT_EQ(w.b, c.b) << c.centre;
        EXPECT_EQ(w.c, c.c) << c.centre;
        EXPECT_EQ(w.d, c.d) << c.centre;
    }
    const RaWindow wrapped = raWindowMinutes(23.75, 0.5);
    EXPECT_TRUE(wrapped.contains(1430));
    EXPECT_TRUE(wrapped.contains(10));
    EXPECT_FALSE(wrapped.contains(15));   // bounds are exclusive
    EXPECT_FALSE(wrapped.contains(700));
}

TEST(FieldStarWindow, HalfWidthByZoomAndDeclination) {
    struct Case { int zoom; double dec, hours; };
    const Case cases[] = {{5, 60, 4.0}, {6, 69.9, 2.0}, {6, 85, 24}, {6, -85, 24}, {7, 0, 1.0}, {8, 10, 0.5},
                          {9, 74, 0.25}, {9, 76, 24},  {3, 79, 0.1}, {3, 81, 24},  {12, 0, 0.1}};
    for (const Case& c : cases) EXPECT_EQ(raHalfWidthHours(c.zoom, c.dec), c.hours) << c.zoom << " " << c.dec;
}

// A catalogue of a regular grid of stars around RA 3 h, Dec +40 degrees (magnitudes cycling
// 6.0 .. 10.5), opened as the optional star catalogue.
class FieldStarLoading : public ::testing::Test {
protected:
    void SetUp() override {
        std::vector<StarEntry> stars;
        int n = 0;
        for (double dec = 25; dec < 55; dec += 0.2)
            for (double ra = 1.4; ra < 4.6; ra += 0.015) {
                ++n;
                stars.push_back(testing::makeStarEntry(n, ra, dec, 6.0 + 0.5 * (n % 10), n % 20 - 5));
            }
        testing::writeStarCatalogue<42>(folder_.path() / "data" / "nocturnel_hip_16k.ppc", stars);
        ASSERT_TRUE(openStarCatalogLevel(1));
        ASSERT_EQ(starsPerBlock(), 42);
    }

    static ChartView viewOn(int mode, int zoom, double ra, double dec) {
        ChartView view = makeChartView(800, 600, mode, 48.1);
        view.lstHours = 3.5;
        setZoomLevel(view, zoom);
        setViewCentreEquatorial(view, ra, dec);
        return view;
    }

    // Stars of the load's blocks and RA window under the limit whose projected point lies on the
    // chart, counted by brute force in floating point.
    static int visibleCount(const ChartView& view, double limit, const FieldStarLoad& load) {
        int count = 0;
        for (int b = load.firstBlock; b < load.lastBlock; ++b) {
            std::vector<StarEntry> entries(42);
            const uint8_t* record = fetchRecord(starCatalogSlot(), static_cast<uint32_t>(b));
            std::memcpy(entries.data(), record, 42 * sizeof(StarEntry));
            for (const StarEntry& e : entries) {
                if (e.mag16 > limit * 16) continue;
                if (!load.window.contains(e.raH * 60 + e.raM)) continue;
                int32_t u = 0, v = 0;
                if (!projectStar(view, view.lstHours, starEntryRaHours(e), starEntryDecDeg(e), u, v)) continue;
                ScreenPoint p = chartToScreen(view, u, v);
                p.x = wrapPanoramaX(view, p.x);
                if (insideClip(view, p.x, p.y)) ++count;
            }
        }
        return count;
    }

    TempProgramFolder folder_;
};

TEST_F(FieldStarLoading, DrawsExactlyTheStarsOfItsRegionOnTheChartUnderTheLimit) {
    struct Case { int mode, zoom; bool fast; double limit; };
    const Case cases[] = {{0, 8, true, 9.5}, {0, 8, false, 9.5}, {1, 8, true, 7.5}, {0, 9, true, 10.5},
                          {0, 12, true, 12.5}, {1, 11, false, 8.0}};
    for (const Case& c : cases) {
        const ChartView view = viewOn(c.mode, c.zoom, 3.0, 40.0);
        const FieldStarLoad load = loadFieldStars(view, c.limit, c.fast, SkyFrame{}, {});
        EXPECT_TRUE(load.searched);
        // The region covers the centre and the chart's declination span within a degree.
        double topRa = 0, topDec = 0, bottomRa = 0, bottomDec = 0;
        screenToSky(view, view.width / 2, 0, topRa, topDec);
        screenToSky(view, view.width / 2, view.height - 1, bottomRa, bottomDec);
        EXPECT_GE(load.halfHeightDeg + 1, std::fabs(topDec - bottomDec) / 2);
        EXPECT_TRUE(load.window.contains(static_cast<int>(load.centreRaHours * 60)));
        const int expected = visibleCount(view, c.limit, load);
        ASSERT_GT(expected, 0);
        // The fixed-point path may move a star on the very edge by a pixel.
        EXPECT_NEAR(load.drawn, expected, c.fast ? 1 + expected / 200 : 0)
            << "mode " << c.mode << " zoom " << c.zoom << (c.fast ? " fast" : " float");
    }
}

TEST_F(FieldStarLoading, ListHoldsWhatWasPaintedAndDropsThe1501stStar) {
    const ChartView view = viewOn(0, 8, 3.0, 40.0);
    std::vector<ScreenPoint> painted;
    const FieldStarLoad load = loadFieldStars(view, 15.0, true, SkyFrame{},
                                              [&](int, int, int x, int y) { painted.push_back({x, y}); });
    ASSERT_GT(load.drawn, 1501);
    EXPECT_EQ(static_cast<int>(painted.size()), load.drawn);
    const auto& list = visibleFieldStars();
    // Full list: the end mark overwrites the last entry.
    EXPECT_EQ(load.listed, kVisibleFieldStarCapacity - 1);
    EXPECT_EQ(visibleFieldStarCount(), kVisibleFieldStarCapacity - 1);
    EXPECT_EQ(list[kVisibleFieldStarCapacity - 1].sequence, kVisibleListEndMark);
    for (int i = 0; i < load.listed; ++i) {
        ASSERT_EQ(list[i].x, painted[i].x) << i;
        ASSERT_EQ(list[i].y, painted[i].y) << i;
    }
    // A listed sequence number names the star drawn there.
    for (int i : {0, 700, 1498}) {
        StarPosition star;
        ASSERT_NE(readStarBySequence(list[i].sequence, star), 0);
        int32_t u = 0, v = 0;
        const fixed24 lst = static_cast<fixed24>(std::lround(view.lstHours * M_PI / 12 * kFixed24One));
        ASSERT_TRUE(projectStarFixed(view, lst, star.ra, star.dec, u, v));
        const ScreenPoint p = chartToScreen(view, u, v);
        EXPECT_EQ(p.x, list[i].x);
        EXPECT_EQ(p.y, list[i].y);
    }
}

TEST_F(FieldStarLoading, ShortListEndsWithTheMark) {
    const ChartView view = viewOn(0, 12, 3.0, 40.0);
    const FieldStarLoad load = loadFieldStars(view, 6.4, true, SkyFrame{}, {});
    ASSERT_GT(load.drawn, 0);
    ASSERT_LT(load.drawn, kVisibleFieldStarCapacity);
    EXPECT_EQ(load.listed, load.drawn);
    EXPECT_EQ(visibleFieldStars()[static_cast<std::size_t>(load.drawn)].sequence, kVisibleListEndMark);
}

TEST_F(FieldStarLoading, StopRequestAbandonsTheLoadAtTheFirstPoll) {
    const ChartView view = viewOn(0, 8, 3.0, 40.0);
    int polls = 0;
    const FieldStarLoad load = loadFieldStars(view, 15.0, true, SkyFrame{}, {}, [&] { return ++polls == 2; });
    EXPECT_TRUE(load.stopped);
    EXPECT_EQ(polls, 2);
    EXPECT_EQ(load.drawn, 50);  // polls come when the count of drawn stars modulo 40 is 10
    EXPECT_EQ(visibleFieldStarCount(), 50);
}

TEST_F(FieldStarLoading, ShallowLimitsAndMissingCataloguesLoadNothing) {
    const ChartView view = viewOn(0, 8, 3.0, 40.0);
    loadFieldStars(view, 15.0, true, SkyFrame{}, {});
    ASSERT_GT(visibleFieldStarCount(), 0);
    FieldStarLoad load = loadFieldStars(view, 5.4, true, SkyFrame{}, {});
    EXPECT_FALSE(load.searched);
    EXPECT_EQ(visibleFieldStarCount(), 0);  // emptied all the same
    closeCatalogues();
    load = loadFieldStars(view, 15.0, true, SkyFrame{}, {});
    EXPECT_FALSE(load.searched);
    EXPECT_EQ(load.drawn, 0);
}

TEST_F(FieldStarLoading, RegionNearThePoleTakesTheWholeCircle) {
    ChartView view = makeChartView(800, 600, 0, 48.1);
    view.lstHours = 3.5;
    setZoomLevel(view, 6);
    setViewCentreEquatorial(view, 3.0, 85.0);
    const FieldStarLoad load = loadFieldStars(view, 9.0, true, SkyFrame{}, {});
    EXPECT_NEAR(load.centreDecDeg, 85.0, 0.1);
    EXPECT_EQ(load.halfWidthHours, 24.0);
    EXPECT_EQ(load.window.a, 0);
    EXPECT_EQ(load.window.b, 1440);
    // The band reaches the probes' declinations: about half the 30 degree field.
    EXPECT_GE(load.halfHeightDeg, 14);
    EXPECT_LE(load.halfHeightDeg, 25);
}

TEST_F(FieldStarLoading, PrecessedFrameMovesStarsWithTheEquinox) {
    // Fifty years of precession shift RA 3 h, Dec 40 by about 0.7 degree: the chart's stars move.
    const ChartView view = viewOn(0, 10, 3.0, 40.0);
    std::vector<ScreenPoint> j2000, ofDate;
    loadFieldStars(view, 15.0, true, SkyFrame{}, [&](int, int, int x, int y) { j2000.push_back({x, y}); });
    const SkyFrame frame = skyFrameForDate(2451545.0 + 50 * 365.25);
    loadFieldStars(view, 15.0, true, frame, [&](int, int, int x, int y) { ofDate.push_back({x, y}); });
    ASSERT_FALSE(j2000.empty());
    ASSERT_FALSE(ofDate.empty());
    EXPECT_NE(j2000.front().x, ofDate.front().x);
}

}  // namespace
}  // namespace nocturnel

namespace nocturnel {
namespace {

// Fast-moving stars with their Gaia DR3 astrometry (ICRS, epoch J2000) as the infoboxes of
// Wikipedia's "Barnard's Star" and "61 Cygni" list it: Barnard's star 17 57 48.49847
// +04 41 36.1139, pm -801.551 +10362.394 mas/yr; 61 Cygni A 21 06 53.9396 +38 44 57.902,
// pm +4164.209 +3249.614 mas/yr.
struct FastStar {
    int32_t number;
    double raHours, decDeg, pmRaCosDec, pmDec;
    int colour;  // marks the star among the painted ones
};
const FastStar kBarnard{
    87937, 17 + 57 / 60.0 + 48.49847 / 3600, 4 + 41 / 60.0 + 36.1139 / 3600, -801.551, 10362.394, 17};
const FastStar kCygni61{
    104214, 21 + 6 / 60.0 + 53.9396 / 3600, 38 + 44 / 60.0 + 57.902 / 3600, 4164.209, 3249.614, 11};

// A card of the two stars among a grid of still stars (colour 0) at their right ascensions,
// written as `file`, opened at `level`.
class FieldStarsAtTheirDate : public ::testing::Test {
protected:
    void writeCard(const char* file, int level, int32_t barnardNumber, int32_t cygniNumber) {
        std::vector<StarEntry> stars;
        int32_t n = 200000;
        // Dense enough that a block spans less than the 1 degree band of the narrowest zoom levels.
        for (double dec = 0; dec < 45; dec += 0.02)
            for (double ra : {kBarnard.raHours + 0.01, kCygni61.raHours - 0.01})
                stars.push_back(testing::makeStarEntry(++n, ra, dec, 8.0, 0));
        stars.push_back(
            testing::makeStarEntry(barnardNumber, kBarnard.raHours, kBarnard.decDeg, 9.5, kBarnard.colour));
        stars.push_back(
            testing::makeStarEntry(cygniNumber, kCygni61.raHours, kCygni61.decDeg, 5.2, kCygni61.colour));
        testing::writeStarCatalogue<42>(folder_.path() / "data" / file, stars);
        ASSERT_TRUE(openStarCatalogLevel(level));
    }
    void writeMotionFile() {
        StarMotionRecord record{};
        int i = 0;
        for (const FastStar* s : {&kBarnard, &kCygni61})
            record.entries[i++] = {s->number,
                                   0,
                                   s->raHours * 15,
                                   s->decDeg,
                                   static_cast<float>(s->pmRaCosDec),
                                   static_cast<float>(s->pmDec)};
        testing::writeStarMotionFile(folder_.path(), record);
    }
    // The side file of an open deep card, parallel to its blocks; `motions` by star number.
    void writeSideFile(const char* card, const std::map<int32_t, std::pair<double, double>>& motions) {
        const uint16_t records = recordCount(starCatalogSlot());
        const DatabaseHeader header{kCardMotionFileVersion, 0, records, 42 * sizeof(CardStarMotion)};
        std::ofstream out(folder_.path() / "data" / cardMotionFileName(card), std::ios::binary);
        out.write(reinterpret_cast<const char*>(&header), sizeof header);
        for (uint16_t r = 0; r < records; ++r) {
            StarEntry entries[42];
            std::memcpy(entries, fetchRecord(starCatalogSlot(), r), sizeof entries);
            for (const StarEntry& e : entries) {
                const auto it = motions.find(e.number);
                const CardStarMotion m = it == motions.end() || e.mag16 == 255
                                             ? CardStarMotion{0, 0, 0}
                                             : CardStarMotion{e.number, static_cast<float>(it->second.first),
                                                              static_cast<float>(it->second.second)};
                out.write(reinterpret_cast<const char*>(&m), sizeof m);
            }
        }
    }
    void TearDown() override { forgetStarMotion(); }

    // The chart at zoom level `zoom` centred on the star's place of date at the epoch.
    static ChartView viewOn(const FastStar& s, int zoom, double epoch, const SkyFrame& frame = {}) {
        ChartView view = makeChartView(800, 600, 0, 48.1);
        view.lstHours = s.raHours;
        setZoomLevel(view, zoom);
        double ra = 0, dec = 0, raDate = 0, decDate = 0;
        movePlaceToEpoch(s.raHours, s.decDeg, s.pmRaCosDec, s.pmDec, epoch, ra, dec);
        j2000ToDate(frame, ra, dec, raDate, decDate);
        setViewCentreEquatorial(view, raDate, decDate);
        return view;
    }
    // Screen point of a J2000 place through the frame, floating point.
    static ScreenPoint pointOf(const ChartView& view, const SkyFrame& frame, double raHours, double decDeg) {
        double ra = 0, dec = 0;
        j2000ToDate(frame, raHours, decDeg, ra, dec);
        int32_t u = 0, v = 0;
        EXPECT_TRUE(projectStar(view, view.lstHours, ra, dec, u, v));
        return chartToScreen(view, u, v);
    }
    // Where the load painted the star of `colour`; {-1, -1} when it did not.
    static ScreenPoint painted(const ChartView& view, bool fast, const SkyFrame& frame, double epoch,
                               int colour) {
        ScreenPoint found{-1, -1};
        loadFieldStars(
            view, 12.0, fast, frame,
            [&](int, int c, int x, int y) {
                if (c == colour) found = {x, y};
            },
            {}, epoch);
        return found;
    }

    testing::TempProgramFolder folder_;
};

double pixels(ScreenPoint a, ScreenPoint b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

TEST_F(FieldStarsAtTheirDate, HipparcosCardStarsAtTheirMovedPixel) {
    writeMotionFile();
    writeCard("nocturnel_hip_16k.ppc", 1, kBarnard.number, kCygni61.number);
    const double epoch = 2026.9;
    const SkyFrame frame = skyFrameForDate(2451545.0 + (epoch - 2000) * 365.25);
    struct Case {
        const FastStar* star;
        int zoom;
        bool fast;
        double minShiftPx;
    };
    // Barnard's star moves 279" by 2026.9: 9 pixels at zoom 9 (5 degrees over the chart's 600
    // pixels: 30"/pixel), 93 at zoom 12 (3"/pixel); 61 Cygni A 142": 4.7 and 47.
    const Case cases[] = {{&kBarnard, 9, true, 8.5},
                          {&kBarnard, 11, true, 40},
                          {&kBarnard, 12, false, 88},
                          {&kCygni61, 9, true, 4},
                          {&kCygni61, 12, false, 44}};
    for (const Case& c : cases) {
        const ChartView view = viewOn(*c.star, c.zoom, epoch, frame);
        double ra = 0, dec = 0;
        movePlaceToEpoch(c.star->raHours, c.star->decDeg, c.star->pmRaCosDec, c.star->pmDec, epoch, ra, dec);
        const ScreenPoint moved = pointOf(view, frame, ra, dec);
        const ScreenPoint still = pointOf(view, frame, c.star->raHours, c.star->decDeg);
        const ScreenPoint at = painted(view, c.fast, frame, epoch, c.star->colour);
        EXPECT_LE(pixels(at, moved), 1.5) << c.star->number << " zoom " << c.zoom;
        EXPECT_GE(pixels(still, moved), c.minShiftPx) << c.star->number << " zoom " << c.zoom;
        // Without an epoch the catalogue's rounded J2000 place is drawn (within its 1" rounding).
        const ScreenPoint unmoved =
            painted(view, c.fast, frame, std::numeric_limits<double>::quiet_NaN(), c.star->colour);
        EXPECT_LE(pixels(unmoved, still), 1.5 + 15.0 / (fieldOfViewDeg(c.zoom) * 3600 / 600))
            << c.star->number;
    }
}

TEST_F(FieldStarsAtTheirDate, StarMovedOntoTheChartFromBeyondItsEdge) {
    writeMotionFile();
    writeCard("nocturnel_hip_16k.ppc", 1, kBarnard.number, kCygni61.number);
    const double epoch = 2026.9;
    // Zoom 12 (3"/pixel) centred 800" north of the moved place: the moved place is some 30
    // pixels inside the lower edge, the catalogue place of 2000 (279" further south) beyond it.
    ChartView view = makeChartView(800, 600, 0, 48.1);
    view.lstHours = kBarnard.raHours;
    setZoomLevel(view, 12);
    double ra = 0, dec = 0;
    movePlaceToEpoch(kBarnard.raHours, kBarnard.decDeg, kBarnard.pmRaCosDec, kBarnard.pmDec, epoch, ra, dec);
    setViewCentreEquatorial(view, ra, dec + 800.0 / 3600);
    const ScreenPoint moved = pointOf(view, SkyFrame{}, ra, dec),
                      still = pointOf(view, SkyFrame{}, kBarnard.raHours, kBarnard.decDeg);
    ASSERT_TRUE(insideClip(view, moved.x, moved.y));
    ASSERT_FALSE(insideClip(view, still.x, still.y));
    for (const bool fast : {true, false})
        EXPECT_LE(pixels(painted(view, fast, SkyFrame{}, epoch, kBarnard.colour), moved), 1.5) << fast;
    // And the other way: the star of 2000 on the chart has left it by 2026.9.
    setViewCentreEquatorial(view, kBarnard.raHours, kBarnard.decDeg - 800.0 / 3600);
    const ScreenPoint gone = painted(view, true, SkyFrame{}, epoch, kBarnard.colour);
    EXPECT_EQ(gone.x, -1);
    EXPECT_NE(painted(view, true, SkyFrame{}, std::numeric_limits<double>::quiet_NaN(), kBarnard.colour).x,
              -1);
}

TEST_F(FieldStarsAtTheirDate, HrCardStarsFoundByTheirHrNumber) {
    // 61 Cygni A is HR 8085: the HR card's entries carry HR numbers.
    StarMotionRecord record{};
    record.entries[0] = {kCygni61.number,
                         8085,
                         kCygni61.raHours * 15,
                         kCygni61.decDeg,
                         static_cast<float>(kCygni61.pmRaCosDec),
                         static_cast<float>(kCygni61.pmDec)};
    testing::writeStarMotionFile(folder_.path(), record);
    writeCard("nocturnel_hr.ppc", 0, 1, 8085);
    const double epoch = 2026.9;
    const ChartView view = viewOn(kCygni61, 12, epoch);
    double ra = 0, dec = 0;
    movePlaceToEpoch(kCygni61.raHours, kCygni61.decDeg, kCygni61.pmRaCosDec, kCygni61.pmDec, epoch, ra, dec);
    EXPECT_LE(
        pixels(painted(view, false, SkyFrame{}, epoch, kCygni61.colour), pointOf(view, SkyFrame{}, ra, dec)),
        1.5);
}

TEST_F(FieldStarsAtTheirDate, DeepCardStarsMoveByTheirSideFile) {
    // On the "Tycho 390K" card the stars are numbered by the card; the side file carries their motions.
    const int32_t barnard = 1000000007, cygni = 1000000008;
    writeCard("nocturnel_tycho_390k.ppc", 5, barnard, cygni);
    writeSideFile("nocturnel_tycho_390k.ppc", {{barnard, {kBarnard.pmRaCosDec, kBarnard.pmDec}},
                                               {cygni, {kCygni61.pmRaCosDec, kCygni61.pmDec}}});
    const double epoch = 2026.9;
    for (const bool fast : {true, false}) {
        const ChartView view = viewOn(kBarnard, 11, epoch);
        // The card's place is rounded to 1 s and 1": the motion moves that place.
        const StarEntry entry =
            testing::makeStarEntry(barnard, kBarnard.raHours, kBarnard.decDeg, 9.5, kBarnard.colour);
        double ra = 0, dec = 0;
        movePlaceToEpoch(starEntryRaHours(entry), starEntryDecDeg(entry), kBarnard.pmRaCosDec, kBarnard.pmDec,
                         epoch, ra, dec);
        const ScreenPoint moved = pointOf(view, SkyFrame{}, ra, dec);
        EXPECT_LE(pixels(painted(view, fast, SkyFrame{}, epoch, kBarnard.colour), moved), 1.5) << fast;
        EXPECT_GE(pixels(pointOf(view, SkyFrame{}, starEntryRaHours(entry), starEntryDecDeg(entry)), moved),
                  40);
    }
}

TEST_F(FieldStarsAtTheirDate, SideFileNotMatchingItsCardMovesNothing) {
    const int32_t barnard = 1000000007;
    writeCard("nocturnel_tycho_390k.ppc", 5, barnard, 1000000008);
    // Written for another card: the numbers differ, so the entry is not this star's.
    writeSideFile("nocturnel_tycho_390k.ppc", {{barnard + 100, {kBarnard.pmRaCosDec, kBarnard.pmDec}}});
    const ChartView view = viewOn(kBarnard, 11, 2026.9);
    const ScreenPoint withEpoch = painted(view, true, SkyFrame{}, 2026.9, kBarnard.colour);
    const ScreenPoint without =
        painted(view, true, SkyFrame{}, std::numeric_limits<double>::quiet_NaN(), kBarnard.colour);
    EXPECT_EQ(withEpoch.x, without.x);
    EXPECT_EQ(withEpoch.y, without.y);
    // A side file of another length is not opened at all.
    closeCatalogues();
    const DatabaseHeader header{kCardMotionFileVersion, 0, 1, 42 * sizeof(CardStarMotion)};
    std::ofstream out(folder_.path() / "data" / cardMotionFileName("nocturnel_tycho_390k.ppc"),
                      std::ios::binary);
    out.write(reinterpret_cast<const char*>(&header), sizeof header);
    const std::vector<CardStarMotion> one(42, CardStarMotion{barnard, 1e6f, 1e6f});
    out.write(reinterpret_cast<const char*>(one.data()),
              static_cast<std::streamsize>(one.size() * sizeof(CardStarMotion)));
    out.close();
    ASSERT_TRUE(openStarCatalogLevel(5));
    EXPECT_FALSE(cardMotionReader().prepare());
}

}  // namespace
}  // namespace nocturnel

namespace nocturnel {
namespace {

// The built catalogues (NOCTURNEL_TEST_DATA): Barnard's star and 61 Cygni A and B on the Hipparcos
// 110K card and on the "Tycho 390K" card (with its side file), at zoom 11 on a night of 2026,
// where ERFA puts their published places (Gaia DR3, as the infoboxes of Wikipedia's "Barnard's
// Star" and "61 Cygni" list them) moved by their space motion.
class FieldStarsOfTheBuiltCards : public ::testing::Test {
protected:
    void SetUp() override {
        const char* data = std::getenv("NOCTURNEL_TEST_DATA");
        if (data == nullptr ||
            !std::filesystem::exists(std::filesystem::path(data) / "nocturnel_hip_110k.ppc") ||
            !std::filesystem::exists(std::filesystem::path(data) / kStarMotionFile))
            GTEST_SKIP() << "NOCTURNEL_TEST_DATA holds no built Hipparcos card and motion file";
        setProgramFolder(std::filesystem::path(data).parent_path());
        closeCatalogues();
        forgetStarMotion();
    }
    void TearDown() override {
        closeCatalogues();
        forgetStarMotion();
    }
};

struct PublishedFastStar {
    const char* name;
    int32_t hip;
    double raHours, decDeg, pmRaCosDec, pmDec, parallaxMas, radialVelocity;
};

TEST_F(FieldStarsOfTheBuiltCards, FastStarsWhereErfaPutsThemAtZoom11) {
    const PublishedFastStar stars[] = {
        {"Barnard's star", 87937, 17 + 57 / 60.0 + 48.49847 / 3600, 4 + 41 / 60.0 + 36.1139 / 3600, -801.551,
         10362.394, 546.9759, -110.47},
        {"61 Cygni A", 104214, 21 + 6 / 60.0 + 53.9396 / 3600, 38 + 44 / 60.0 + 57.902 / 3600, 4164.209,
         3249.614, 285.9949, -65.97},
        {"61 Cygni B", 104217, 21 + 6 / 60.0 + 55.2638 / 3600, 38 + 44 / 60.0 + 31.359 / 3600, 4105.976,
         3155.942, 286.0054, -64.59},
    };
    const double jd = 2461369.4, epoch = 2000 + (jd - 2451545.0) / 365.25;  // 2026 November 24, 21:36 UT
    const SkyFrame frame = skyFrameForDate(jd);
    for (const int level : {4, 5}) {
        if (!std::filesystem::exists(dataPath(kStarCatalogFiles[static_cast<size_t>(level)]))) continue;
        ASSERT_TRUE(openStarCatalogLevel(level)) << level;
        for (const PublishedFastStar& s : stars) {
            const double k = M_PI / 180, masToRad = k / 3600e3;
            double ra = 0, dec = 0, pmr = 0, pmd = 0, px = 0, rv = 0;
            ASSERT_EQ(
                eraStarpm(s.raHours * 15 * k, s.decDeg * k, s.pmRaCosDec * masToRad / std::cos(s.decDeg * k),
                          s.pmDec * masToRad, s.parallaxMas / 1000, s.radialVelocity, 2451545.0, 0.0, jd, 0.0,
                          &ra, &dec, &pmr, &pmd, &px, &rv),
                0);
            double raDate = 0, decDate = 0;
            j2000ToDate(frame, eraAnp(ra) / k / 15, dec / k, raDate, decDate);
            ChartView view = makeChartView(800, 600, 0, 48.1);
            view.lstHours = raDate;
            setZoomLevel(view, 11);  // 1 degree over 600 pixels: 6"/pixel
            setViewCentreEquatorial(view, raDate, decDate);
            int32_t u = 0, v = 0;
            ASSERT_TRUE(projectStar(view, view.lstHours, raDate, decDate, u, v));
            const ScreenPoint expected = chartToScreen(view, u, v);
            loadFieldStars(view, 12.0, true, frame, {}, {}, epoch);
            bool found = false;
            for (int i = 0; i < visibleFieldStarCount(); ++i) {
                const VisibleFieldStar& entry = visibleFieldStars()[static_cast<size_t>(i)];
                StarPosition position;
                if (readStarBySequence(entry.sequence, position) != s.hip) continue;
                found = true;
                // Our sources' motions differ from Gaia's by up to 85 mas/yr (Barnard's star: 3"
                // by this night, half a pixel); the deep card's packed place is rounded to the
                // nearest second of RA (up to 7.5", 1.3 pixels); the projection rounds to a
                // pixel: 2.5 pixels.
                EXPECT_LE(std::hypot(entry.x - expected.x, entry.y - expected.y), 2.5)
                    << s.name << " level " << level;
            }
            EXPECT_TRUE(found) << s.name << " level " << level;
        }
    }
}

}  // namespace
}  // namespace nocturnel
