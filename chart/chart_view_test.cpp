#include "chart/chart_view.h"

#include <erfa.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace nocturnel {
namespace {

constexpr double kDeg = M_PI / 180;

ChartView viewAt(int mode, double latitudeDeg, int zoom, int rotation, double az, double alt, double lst = 5.0) {
    ChartView view = makeChartView(800, 600, mode, latitudeDeg);
    view.lstHours = lst;
    setViewRotation(view, rotation);
    setZoomLevel(view, zoom);
    setViewCentreHorizontal(view, az, alt);
    return view;
}

// Screen point of an RA/Dec; false below the horizon.
bool screenOf(const ChartView& view, double ra, double dec, ScreenPoint& p) {
    int32_t u = 0, v = 0;
    if (!projectStar(view, view.lstHours, ra, dec, u, v)) return false;
    p = chartToScreen(view, u, v);
    p.x = wrapPanoramaX(view, p.x);
    return true;
}

TEST(ChartViewRoundTrip, ScreenToSkyOfProjectedPointsReturnsThemWithinOnePixel) {
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int mode : {0, 1}) {
        for (int zoom = 0; zoom < kZoomLevelCount; ++zoom) {
            for (double latitude : {48.1, -33.9, 0.0, 78.0}) {
                const ChartView view = viewAt(mode, latitude, zoom, 30 * zoom, 360 * unit(rng), 5 + 80 * unit(rng));
                int checked = 0;
                for (int i = 0; i < 400 && checked < 40; ++i) {
                    // Points scattered over the chart area (and a little beyond it).
                    const int x = static_cast<int>(-50 + 900 * unit(rng)), y = static_cast<int>(-50 + 700 * unit(rng));
                    double az = 0, alt = 0;
                    screenToHorizontal(view, x, y, az, alt);
                    if (alt > 89.5) continue;  // the panorama's area above the zenith has no sky
                    double ra = 0, dec = 0;
                    screenToSky(view, x, y, ra, dec);
                    ScreenPoint back;
                    if (!screenOf(view, ra, dec, back)) continue;
                    if (mode == 1 && (x < 0 || x >= view.width)) continue;  // the panorama wraps outside
                    EXPECT_LE(std::abs(back.x - x), 1) << "mode " << mode << " zoom " << zoom << " at " << x << "," << y;
                    EXPECT_LE(std::abs(back.y - y), 1) << "mode " << mode << " zoom " << zoom << " at " << x << "," << y;
                    ++checked;
                }
                EXPECT_GT(checked, 5) << "mode " << mode << " zoom " << zoom << " lat " << latitude;
            }
        }
    }
}

TEST(ChartViewRoundTrip, SkyPositionUnderAProjectedStarIsTheStarWithinAPixel) {
    for (int mode : {0, 1}) {
        for (int zoom : {0, 6, 12}) {
            ChartView view = viewAt(mode, 48.1, zoom, 0, 0, 0);
            setViewCentreEquatorial(view, 3.0, 40.0);
            ScreenPoint p;
            ASSERT_TRUE(screenOf(view, 3.0, 40.0, p));
            EXPECT_NEAR(p.x, view.width / 2, 1);
            EXPECT_NEAR(p.y, view.height / 2, 1);
            double ra = 0, dec = 0;
            screenToSky(view, p.x, p.y, ra, dec);
            const double pixelDeg = fieldOfViewDeg(zoom) / 600;
            EXPECT_NEAR(dec, 40.0, 2 * pixelDeg) << "mode " << mode << " zoom " << zoom;
            EXPECT_NEAR((ra - 3.0) * 15 * std::cos(40 * kDeg), 0.0, 2 * pixelDeg) << "mode " << mode << " zoom " << zoom;
        }
    }
}

// The alt-azimuth conversion checked against ERFA's eraHd2ae through the inverse mapping.
TEST(ChartViewReference, HorizontalPlaceAgreesWithErfa) {
    struct Case { double lat, lst, ra, dec; };
    const Case cases[] = {{48.1, 18.6, 18.6156, 38.78}, {48.1, 2.0, 2.53, 89.26}, {-33.9, 6.0, 6.399, -52.7},
                          {10.0, 12.0, 14.26, 19.18},  {65.0, 23.0, 20.69, 45.28}};
    for (const Case& c : cases) {
        const ChartView view = viewAt(0, c.lat, 0, 0, 180, 90, c.lst);
        ScreenPoint p;
        ASSERT_TRUE(screenOf(view, c.ra, c.dec, p));
        double az = 0, alt = 0;
        screenToHorizontal(view, p.x, p.y, az, alt);
        double erfaAz = 0, erfaAlt = 0;
        eraHd2ae((c.lst - c.ra) * 15 * kDeg, c.dec * kDeg, c.lat * kDeg, &erfaAz, &erfaAlt);
        // One pixel at the zenith of an 800x600 180-degree chart is about 0.3 degree.
        EXPECT_NEAR(alt, erfaAlt / kDeg, 0.5) << c.ra;
        if (erfaAlt / kDeg < 85) {
            double dAz = std::remainder(az - erfaAz / kDeg, 360.0);
            EXPECT_NEAR(dAz * std::cos(erfaAlt), 0.0, 0.6) << c.ra;
        }
    }
}

TEST(ChartViewProjection, FixedPathMatchesFloatPathWithinOneChartUnit) {
    std::mt19937 rng(11);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    int compared = 0;
    for (int mode : {0, 1}) {
        for (int rotation : {0, 37, 180, 271}) {
            const ChartView view = viewAt(mode, -90 + 180 * unit(rng), 11, rotation, 180, 45);
            for (int i = 0; i < 3000; ++i) {
                const double lst = 24 * unit(rng), ra = 24 * unit(rng), dec = -90 + 180 * unit(rng);
                int32_t u = 0, v = 0, uf = 0, vf = 0;
                if (!projectStar(view, lst, ra, dec, u, v)) continue;
                const auto fx = [](double radians) { return static_cast<fixed24>(std::lround(radians * kFixed24One)); };
                if (!projectStarFixed(view, fx(lst * M_PI / 12), fx(ra * M_PI / 12), fx(dec * kDeg), uf, vf)) {
                    // Only a star on the horizon may fall on the other side of it.
                    EXPECT_LT(std::abs(u), mode == 0 ? 1200000 : 20) << lst << " " << ra << " " << dec;
                    continue;
                }
                ++compared;
                EXPECT_LE(std::abs(uf - u), 1) << "mode " << mode << " lst " << lst << " ra " << ra << " dec " << dec;
                // Azimuth near north wraps between 0 and 360 degrees in the panorama.
                if (mode == 1 && std::abs(vf - v) > 1000000) continue;
                // The panorama's azimuth is ill-conditioned near the zenith: its error grows as 1/cos h.
                const double altRad = u / (0.8952465548 * kChartScale);
                const int azimuthTolerance = mode == 1 ? static_cast<int>(std::ceil(1 / std::cos(altRad))) : 1;
                EXPECT_LE(std::abs(vf - v), azimuthTolerance) << "mode " << mode << " lst " << lst << " ra " << ra << " dec " << dec;
            }
        }
    }
    EXPECT_GT(compared, 5000);
}

TEST(ChartViewProjection, HourAngleOfThirteenHoursIsMinusEleven) {
    for (int mode : {0, 1}) {
        const ChartView view = viewAt(mode, 60.0, 0, 0, 180, 90);
        int32_t u13 = 0, v13 = 0, u11 = 0, v11 = 0;
        ASSERT_TRUE(projectStar(view, 13.0, 0.0, 70.0, u13, v13));   // H = +13 h
        ASSERT_TRUE(projectStar(view, 1.0, 12.0, 70.0, u11, v11));   // H = -11 h
        EXPECT_EQ(u13, u11);
        EXPECT_EQ(v13, v11);
        int32_t uf = 0, vf = 0;
        const fixed24 thirteen = static_cast<fixed24>(std::lround(13 * M_PI / 12 * kFixed24One));
        ASSERT_TRUE(projectStarFixed(view, thirteen, 0, static_cast<fixed24>(std::lround(70 * kDeg * kFixed24One)), uf, vf));
        EXPECT_LE(std::abs(uf - u11), 1);
        EXPECT_LE(std::abs(vf - v11), 1);
    }
}

TEST(ChartViewProjection, HorizonPointIsDrawnAndAHairBelowIsNot) {
    // From the north pole the celestial equator is the horizon; the latitude's sine and cosine
    // are set exactly so that sin h comes out as exactly 0.
    for (int mode : {0, 1}) {
        ChartView view = viewAt(mode, 90.0, 0, 0, 180, 90);
        view.sinLatitude = 1.0f;
        view.cosLatitude = 0.0f;
        view.sinLatitudeFixed = kFixed24One;
        view.cosLatitudeFixed = 0;
        int32_t u = 0, v = 0;
        EXPECT_TRUE(projectStar(view, 3.0, 3.0, 0.0, u, v));
        EXPECT_FALSE(projectStar(view, 3.0, 3.0, -1e-7, u, v));
        EXPECT_TRUE(projectStar(view, 3.0, 3.0, 1e-7, u, v));
        const fixed24 hairBelow = static_cast<fixed24>(std::lround(-0.001 * kDeg * kFixed24One));
        EXPECT_FALSE(projectStarFixed(view, 0, 0, hairBelow, u, v));
        EXPECT_TRUE(projectStarFixed(view, 0, 0, -hairBelow, u, v));
    }
}

TEST(ChartViewZoom, EachLevelShowsItsNominalFieldOfView) {
    for (int zoom = 0; zoom < kZoomLevelCount; ++zoom) {
        const double fov = fieldOfViewDeg(zoom);
        // Mode 0 centred on the zenith: the circle of zenith distance fov/2 touches the short sides.
        ChartView view = viewAt(0, 48.1, zoom, 0, 180, 90);
        int32_t u = 0, v = 0;
        ASSERT_TRUE(projectHorizontal(view, 0, 90 - fov / 2, u, v));
        const ScreenPoint top = chartToScreen(view, u, v);
        ASSERT_TRUE(projectHorizontal(view, 180, 90 - fov / 2, u, v));
        const ScreenPoint bottom = chartToScreen(view, u, v);
        EXPECT_NEAR(bottom.y - top.y, 600, 2) << "zoom " << zoom;
        // Centred at altitude 30 the vertical arc of the field still fills the height.
        if (fov > 60) continue;
        view = viewAt(0, 48.1, zoom, 0, 180, 30);
        ASSERT_TRUE(projectHorizontal(view, 180, view.centreAltDeg + fov / 2, u, v));
        const ScreenPoint upper = chartToScreen(view, u, v);
        ASSERT_TRUE(projectHorizontal(view, 180, view.centreAltDeg - fov / 2, u, v));
        const ScreenPoint lower = chartToScreen(view, u, v);
        EXPECT_NEAR(lower.y - upper.y, 600, 2) << "zoom " << zoom;
        // Mode 1: the field spans the short side in altitude and in azimuth.
        view = viewAt(1, 48.1, zoom, 0, 180, 45);
        ASSERT_TRUE(projectHorizontal(view, 180 - fov / 2, 45, u, v));
        const ScreenPoint left = chartToScreen(view, u, v);
        ASSERT_TRUE(projectHorizontal(view, 180 + fov / 2, 45, u, v));
        const ScreenPoint right = chartToScreen(view, u, v);
        EXPECT_NEAR(right.x - left.x, 600, 2) << "zoom " << zoom;
    }
}

TEST(ChartViewOrientation, FacingSouthPutsSouthDownAndEastLeft) {
    const ChartView zenith = viewAt(0, 48.1, 0, 0, 180, 90);
    int32_t u = 0, v = 0;
    ASSERT_TRUE(projectHorizontal(zenith, 180, 10, u, v));
    EXPECT_GT(chartToScreen(zenith, u, v).y, zenith.height / 2);  // south below the zenith
    ASSERT_TRUE(projectHorizontal(zenith, 90, 10, u, v));
    EXPECT_LT(chartToScreen(zenith, u, v).x, zenith.width / 2);  // east on the left
    // Rotation 90: east at the top.
    const ChartView turned = viewAt(0, 48.1, 0, 90, 180, 90);
    ASSERT_TRUE(projectHorizontal(turned, 90, 10, u, v));
    EXPECT_LT(chartToScreen(turned, u, v).y, turned.height / 2);
    // The panorama facing south: east left of west, higher altitude higher up.
    const ChartView panorama = viewAt(1, 48.1, 3, 0, 180, 30);
    ASSERT_TRUE(projectHorizontal(panorama, 135, 10, u, v));
    const ScreenPoint southEast = chartToScreen(panorama, u, v);
    ASSERT_TRUE(projectHorizontal(panorama, 225, 20, u, v));
    const ScreenPoint southWest = chartToScreen(panorama, u, v);
    EXPECT_LT(southEast.x, southWest.x);
    EXPECT_GT(southEast.y, southWest.y);
}

TEST(ChartViewPanorama, PointsBeyondTheEdgesWrapByOnePeriod) {
    const ChartView view = viewAt(1, 48.1, 2, 0, 10, 30);  // centre azimuth 10: north-west lies right of 0
    const int period = chartPeriodPixels(view);
    EXPECT_NEAR(period, 360.0 / 120.0 * 600, 2);
    int32_t u = 0, v = 0;
    ASSERT_TRUE(projectHorizontal(view, 350, 30, u, v));
    const ScreenPoint raw = chartToScreen(view, u, v);
    EXPECT_GT(raw.x, view.clip.right);
    EXPECT_NEAR(wrapPanoramaX(view, raw.x), view.width / 2 - 20 * 600 / 120.0, 2);
    EXPECT_EQ(wrapPanoramaX(view, 100), 100);
    ChartView stereographic = view;
    stereographic.projectionMode = 0;
    EXPECT_EQ(wrapPanoramaX(stereographic, -500), -500);
}

TEST(ChartViewInput, FarOffScreenPointsDoNotOverflow) {
    for (int mode : {0, 1}) {
        const ChartView view = viewAt(mode, 48.1, 12, 0, 180, 45);
        double ra = -1, dec = -100;
        screenToSky(view, 2000000000, -2000000000, ra, dec);
        EXPECT_GE(ra, 0);
        EXPECT_LT(ra, 24);
        EXPECT_GE(dec, -90);
        EXPECT_LE(dec, 90);
    }
}

}  // namespace
}  // namespace nocturnel

namespace nocturnel {
namespace {
// A centre that is not a number (nan, infinity) leaves the view where it was: no fixed-point
// mapping is computed from it.
TEST(ChartViewCentre, NonFiniteCentresLeaveTheViewUnchanged) {
    const double bad[] = {std::nan(""), INFINITY, -INFINITY};
    for (double b : bad) {
        ChartView view = makeChartView(400, 400, 0, 48.1);
        setViewCentreHorizontal(view, 120, 30);
        const double az = view.centreAzDeg, alt = view.centreAltDeg;
        setViewCentreHorizontal(view, b, 10);
        setViewCentreHorizontal(view, 10, b);
        setViewCentreEquatorial(view, b, 10);
        setViewCentreEquatorial(view, 5, b);
        EXPECT_EQ(view.centreAzDeg, az);
        EXPECT_EQ(view.centreAltDeg, alt);
        int32_t u = 0, v = 0;
        EXPECT_FALSE(projectStar(view, b, 5, 10, u, v));
        EXPECT_FALSE(projectStar(view, 5, b, 10, u, v));
    }
}
}  // namespace
}  // namespace nocturnel
