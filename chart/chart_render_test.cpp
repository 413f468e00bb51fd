#include "chart/chart_render.h"

#include <erfa.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <vector>

#include "catalog/catalogues.h"
#include "catalog/star_motion.h"
#include "chart/chart_labels.h"
#include "chart/chart_layers.h"
#include "chart/chart_test_support.h"
#include "chart/sky_objects.h"
#include "core/time.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

using testing::TempProgramFolder;
constexpr double kDegToRad = M_PI / 180;

// The font caches of cairo and fontconfig are released after the last test, as the command
// line does, so that the leak checker of sanitizer builds sees a clean exit.
class FontRelease : public ::testing::Environment {
public:
    void TearDown() override { releaseChartFonts(); }
};
::testing::Environment* const kFontRelease = ::testing::AddGlobalTestEnvironment(new FontRelease);

class PreferencesGuard {
public:
    PreferencesGuard() : saved_(prefs()) {
        Preferences& p = prefs();
        for (int i = 0; i < kZoomTableSlots; ++i) {
            p.zoomStarLimit[i] = 2;
            p.zoomObjectLimit[i] = 3;
        }
    }
    ~PreferencesGuard() { prefs() = saved_; }

private:
    Preferences saved_;
};

TEST(FieldLabel, TextsByZoomLevel) {
    PreferencesGuard guard;
    struct Case { int zoom; const char* fov; const char* limits; };
    const Case cases[] = {
        {0, "FOV 180\xB0", "O<6, S<5"},  {8, "FOV 10\xB0", "O<13, S<9"}, {10, "FOV 2.5\xB0", "O<15, S<11"},
        {11, "FOV 1\xB0", "O<15, S<11"}, {12, "FOV 0.5\xB0", "O<15, S<11"},
    };
    for (const Case& c : cases) {
        FieldLabel label;
        ASSERT_TRUE(fieldLabelText(c.zoom, label));
        EXPECT_EQ(label.fieldOfView, c.fov);
        EXPECT_EQ(label.limits, c.limits);
    }
    prefs().zoomObjectLimit[8] = 0;  // "All"
    prefs().zoomStarLimit[8] = 0;    // the deeper choice
    FieldLabel label;
    ASSERT_TRUE(fieldLabelText(8, label));
    EXPECT_EQ(label.limits, "All, S<10");
    EXPECT_FALSE(fieldLabelText(-1, label));
    EXPECT_FALSE(fieldLabelText(13, label));
}

TEST(ChartTexts, StatusLineAndLoadingMessage) {
    EXPECT_EQ(statusLineText("2026-11-21", 22, 5, 1.2153), "2026-11-21 22:05 LST:01:12");
    EXPECT_EQ(statusLineText("x", 0, 0, 23.999), "x 00:00 LST:23:59");
    EXPECT_EQ(statusLineText("x", 9, 30, 24.0), "x 09:30 LST:00:00");

    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 400, 100);
    cairo_t* cr = cairo_create(surface);
    cairo_text_extents_t shortText, longText;
    cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, labelFontSize());
    cairo_text_extents(cr, kLoadingSkyText, &shortText);
    cairo_text_extents(cr, kLoadingMeasureText, &longText);
    const double x = paintLoadingMessage(cr, 400, 50);
    EXPECT_NEAR(x, (400 - longText.x_advance) / 2, 0.01);  // centred as the longer text would be
    EXPECT_LT(x, (400 - shortText.x_advance) / 2);
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
}

TEST(LabelGrid, RefusesOverlapsAndBoxesOffTheChart) {
    LabelGrid grid(100, 100, 6);
    EXPECT_TRUE(grid.claim(10, 10, 30, 10));
    EXPECT_FALSE(grid.claim(35, 15, 20, 10));  // overlaps the first
    EXPECT_TRUE(grid.claim(50, 10, 20, 10));
    EXPECT_FALSE(grid.claim(-5, 50, 20, 10));
    EXPECT_FALSE(grid.claim(90, 50, 20, 10));
}

// The bright stars of a known night, drawn on a 180 degree chart.
class KnownNight : public ::testing::Test {
protected:
    void SetUp() override {
        Preferences& p = prefs();
        p.latitudeDeg = 48.1f;
        p.longitudeDeg = -2.35f;  // 2.35 degrees east
        p.utcOffsetMin = 60;
        p.sinLatitude = std::sin(p.latitudeDeg * M_PI / 180);
        p.cosLatitude = std::cos(p.latitudeDeg * M_PI / 180);
        p.cardCatalog = 0;
        p.background = 0;
        p.nightMode = 0;
        p.starColor = 0;
        for (int& box : p.displayBox) box = 0;
        const std::vector<DefaultStarRecord> stars = {
            testing::makeDefaultStar(91262, 18 + 36 / 60.0 + 56.3 / 3600, 38 + 47 / 60.0 + 1.3 / 3600, 0.03, 0, "Vega"),
            testing::makeDefaultStar(102098, 20 + 41 / 60.0 + 25.9 / 3600, 45 + 16 / 60.0 + 49 / 3600.0, 1.25, 1, "Deneb"),
            testing::makeDefaultStar(24608, 5 + 16 / 60.0 + 41.4 / 3600, 45 + 59 / 60.0 + 53 / 3600.0, 0.08, 8, "Capella"),
            testing::makeDefaultStar(11767, 2 + 31 / 60.0 + 49.1 / 3600, 89 + 15 / 60.0 + 51 / 3600.0, 1.97, 6, "Polaris"),
            testing::makeDefaultStar(27989, 5 + 55 / 60.0 + 10.3 / 3600, 7 + 24 / 60.0 + 25 / 3600.0, 0.45, 18, "Betelgeuse"),
            testing::makeDefaultStar(71683, 14 + 39 / 60.0 + 36.5 / 3600, -(60 + 50 / 60.0 + 2 / 3600.0), -0.01, 7,
                                     "Rigil Kentaurus"),  // never rises at 48 N
        };
        testing::writeRecordFile(folder_.path() / "data" / "nocturnel_default_stars.ppc", stars);
        forgetChartCatalogues();
        ASSERT_TRUE(openDefaultStars());
        request_.moment = {2026, 11, 21, 22, 0, 0};
    }
    void TearDown() override { forgetChartCatalogues(); }

    static uint32_t pixelAt(cairo_surface_t* s, int x, int y) {
        const unsigned char* data = cairo_image_surface_get_data(s);
        return reinterpret_cast<const uint32_t*>(data + y * cairo_image_surface_get_stride(s))[x] & 0xFFFFFF;
    }

    PreferencesGuard guard_;
    TempProgramFolder folder_;
    ChartRequest request_;
};

TEST_F(KnownNight, BrightStarsSitWhereErfaPutsThemAndAreLit) {
    ChartResult result;
    ChartSurface surface = renderChart(request_, result);
    ASSERT_TRUE(surface);
    ASSERT_EQ(result.bright.size(), 5u);  // Rigil Kentaurus stays below the horizon

    // The reference: ERFA's IAU 1976/1980 precession-nutation, Greenwich mean sidereal time and
    // hour angle to azimuth and altitude, then the stereographic radius tan(z/2) of a 180 degree
    // chart (the horizon circle fills the 800 pixel side), north up and east left.
    const double jd = julianDateFromLocal(2026, 11, 21, 22, 0, 0, 60);
    double npb[3][3];
    eraPnm80(jd, 0.0, npb);
    const double lst = eraGmst82(jd, 0.0) + 2.35 * kDegToRad;
    for (const BrightStarSpot& spot : result.bright) {
        const DefaultStarRecord* star = nullptr;
        for (const DefaultStarRecord& s : chartBrightStars())
            if (s.hip == spot.hip) star = &s;
        ASSERT_NE(star, nullptr);
        double p[3], pDate[3], ra = 0, dec = 0, az = 0, alt = 0;
        eraS2c(star->raHours * 15 * kDegToRad, star->decDeg * kDegToRad, p);
        eraRxp(npb, p, pDate);
        eraC2s(pDate, &ra, &dec);
        eraHd2ae(lst - ra, dec, 48.1 * kDegToRad, &az, &alt);
        const double r = 400 * std::tan((M_PI / 2 - alt) / 2);
        EXPECT_NEAR(spot.x, 400 - r * std::sin(az), 1.5) << star->name;
        EXPECT_NEAR(spot.y, 400 - r * std::cos(az), 1.5) << star->name;
        EXPECT_NE(pixelAt(surface.get(), spot.x, spot.y), 0u) << star->name;
    }
}

TEST_F(KnownNight, EachLayerFollowsItsDisplaySetting) {
    // Grid and Telrad rings add line pixels to the sky; hiding the grid takes it away again.
    const auto litCount = [&] {
        ChartResult result;
        ChartSurface surface = renderChart(request_, result);
        int lit = 0;
        for (int y = 100; y < 700; ++y)
            for (int x = 100; x < 700; ++x) lit += pixelAt(surface.get(), x, y) != 0;
        return lit;
    };
    const int plain = litCount();
    prefs().displayBox[kBoxAltAzGrid] = 1;
    const int withGrid = litCount();
    EXPECT_GT(withGrid, plain + 1000);
    prefs().displayBox[kBoxHideGrid] = 1;
    EXPECT_EQ(litCount(), plain);
    prefs().displayBox[kBoxTelrad] = 1;
    EXPECT_GT(litCount(), plain + 100);
}

TEST_F(KnownNight, NightModeIsRedOnBlack) {
    prefs().nightMode = 1;
    prefs().displayBox[kBoxAltAzGrid] = 1;
    for (int background : {0, 1, 2}) {
        prefs().background = background;
        ChartResult result;
        ChartSurface surface = renderChart(request_, result);
        ASSERT_TRUE(surface);
        int red = 0;
        for (int y = 0; y < 800; y += 3)
            for (int x = 0; x < 800; x += 3) {
                const uint32_t p = pixelAt(surface.get(), x, y);
                ASSERT_EQ(p & 0xFFFF, 0u) << background;
                red += p != 0;
            }
        EXPECT_GT(red, 100);
        // The sky stays dark between the lines and stars, whatever the scheme.
        EXPECT_LT(((pixelAt(surface.get(), 430, 170) >> 16) & 0xFF), 40u) << background;
    }
}

TEST_F(KnownNight, SurfaceThatCannotBeMadeIsReported) {
    MessageCapture capture;
    request_.width = 40000;
    ChartResult result;
    EXPECT_FALSE(renderChart(request_, result));
    EXPECT_TRUE(capture.shown("Can't allocate offscreen window"));
    request_.width = 0;
    EXPECT_FALSE(renderChart(request_, result));
}

TEST_F(KnownNight, PngIsWrittenAndAnUnwritablePathIsReported) {
    ChartResult result;
    ChartSurface surface = renderChart(request_, result);
    ASSERT_TRUE(surface);
    const auto file = folder_.path() / "chart.png";
    EXPECT_TRUE(saveChartPng(surface.get(), file));
    EXPECT_GT(std::filesystem::file_size(file), 1000u);
    // Read back by cairo's own PNG reader: every pixel as drawn.
    cairo_surface_t* back = cairo_image_surface_create_from_png(file.c_str());
    ASSERT_EQ(cairo_surface_status(back), CAIRO_STATUS_SUCCESS);
    ASSERT_EQ(cairo_image_surface_get_width(back), 800);
    ASSERT_EQ(cairo_image_surface_get_height(back), 800);
    int different = 0;
    for (int y = 0; y < 800; ++y)
        for (int x = 0; x < 800; ++x) different += pixelAt(back, x, y) != pixelAt(surface.get(), x, y);
    EXPECT_EQ(different, 0);
    cairo_surface_destroy(back);
    MessageCapture capture;
    EXPECT_FALSE(saveChartPng(surface.get(), folder_.path() / "no-such-folder" / "chart.png"));
    EXPECT_EQ(capture.messages().size(), 1u);
}

TEST_F(KnownNight, CentredRequestPutsTheCentreInTheMiddleFacingIt) {
    request_.zoomLevel = 8;
    request_.centreRaHours = 18 + 36 / 60.0 + 56.3 / 3600;  // Vega
    request_.centreDecDeg = 38 + 47 / 60.0 + 1.3 / 3600;
    ChartResult result;
    ChartSurface surface = renderChart(request_, result);
    ASSERT_TRUE(surface);
    ASSERT_EQ(result.bright.size(), 1u);
    EXPECT_NEAR(result.bright[0].x, 400, 2);
    EXPECT_NEAR(result.bright[0].y, 400, 2);
    EXPECT_EQ((result.view.rotationDeg - static_cast<int>(std::lround(result.view.centreAzDeg)) + 720) % 360, 180);
}

TEST_F(KnownNight, BrightStarsAreDrawnWhereTheirMotionHasTakenThem) {
    // Vega given a motion of 1000"/yr north and 500"/yr east: 7.5 degrees north by 2026.9, some
    // 30 pixels on this chart, where ERFA puts the moved place.
    StarMotionRecord record{};
    record.entries[0] = {91262, 7001, (18 + 36 / 60.0 + 56.3 / 3600) * 15, 38 + 47 / 60.0 + 1.3 / 3600, 500000.0f, 1000000.0f};
    testing::writeStarMotionFile(folder_.path(), record);

    ChartResult result;
    ChartSurface surface = renderChart(request_, result);
    forgetStarMotion();
    ASSERT_TRUE(surface);
    const double jd = julianDateFromLocal(2026, 11, 21, 22, 0, 0, 60);
    double raMoved = 0, decMoved = 0;
    starPlaceAtEpoch(record.entries[0], julianEpochOfJd(jd), raMoved, decMoved);
    EXPECT_NEAR(decMoved - record.entries[0].decDeg, 1000.0 * (julianEpochOfJd(jd) - 2000) / 3600, 0.2);
    double npb[3][3];
    eraPnm80(jd, 0.0, npb);
    const double lst = eraGmst82(jd, 0.0) + 2.35 * kDegToRad;
    bool drawn = false;
    for (const BrightStarSpot& spot : result.bright) {
        if (spot.hip != 91262) continue;
        drawn = true;
        double p[3], pDate[3], ra = 0, dec = 0, az = 0, alt = 0;
        eraS2c(raMoved * 15 * kDegToRad, decMoved * kDegToRad, p);
        eraRxp(npb, p, pDate);
        eraC2s(pDate, &ra, &dec);
        eraHd2ae(lst - ra, dec, 48.1 * kDegToRad, &az, &alt);
        const double r = 400 * std::tan((M_PI / 2 - alt) / 2);
        EXPECT_NEAR(spot.x, 400 - r * std::sin(az), 1.5);
        EXPECT_NEAR(spot.y, 400 - r * std::cos(az), 1.5);
    }
    EXPECT_TRUE(drawn);
}

}  // namespace
}  // namespace nocturnel
