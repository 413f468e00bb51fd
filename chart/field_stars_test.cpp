#include "chart/field_stars.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "catalog/catalogues.h"
#include "catalog/star_catalog.h"
#include "chart/chart_test_support.h"
#include "settings/message.h"

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
