// The eyepiece's field on the chart: the circle's radius in pixels against the projection of
// its angular radius at several zoom levels and centres, and its display setting in the whole
// chart (drawn with the box on, nothing without it or without a usable eyepiece).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <vector>

#include "catalog/eyepieces.h"
#include "chart/chart_labels.h"
#include "chart/chart_layers.h"
#include "chart/chart_render.h"
#include "chart/chart_test_support.h"
#include "chart/sky_objects.h"
#include "settings/message.h"
#include "settings/preference_lists.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

constexpr double kDegToRad = M_PI / 180;

// The font caches of cairo and fontconfig are released after the last test, as the command
// line does, so that the leak checker of sanitizer builds sees a clean exit.
class FontRelease : public ::testing::Environment {
public:
    void TearDown() override { releaseChartFonts(); }
};
::testing::Environment* const kFontRelease = ::testing::AddGlobalTestEnvironment(new FontRelease);

struct Image {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;  // 0x00RRGGBB
    uint32_t at(int x, int y) const {
        if (x < 0 || y < 0 || x >= width || y >= height) return 0;
        return pixels[static_cast<std::size_t>(y) * width + x];
    }
};

Image copyOf(cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    Image image{cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface), {}};
    const unsigned char* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            image.pixels.push_back(reinterpret_cast<const uint32_t*>(data + y * stride)[x] & 0xFFFFFF);
    return image;
}

// Pixels where two images differ, as a red image.
Image difference(const Image& a, const Image& b) {
    Image d{a.width, a.height, std::vector<uint32_t>(a.pixels.size(), 0)};
    for (std::size_t i = 0; i < a.pixels.size(); ++i) d.pixels[i] = a.pixels[i] != b.pixels[i] ? 0xFF0000u : 0u;
    return d;
}

// Where the sky point at angular distance `distanceDeg` from (az, alt) along the bearing
// `bearingDeg` (north of the horizon system, through east) lies: the navigation formula.
void destination(double azDeg, double altDeg, double bearingDeg, double distanceDeg, double& azOut, double& altOut) {
    const double a = altDeg * kDegToRad, b = bearingDeg * kDegToRad, d = distanceDeg * kDegToRad;
    const double alt2 = std::asin(std::sin(a) * std::cos(d) + std::cos(a) * std::sin(d) * std::cos(b));
    const double az2 = azDeg * kDegToRad + std::atan2(std::sin(b) * std::sin(d) * std::cos(a),
                                                      std::cos(d) - std::sin(a) * std::sin(alt2));
    azOut = az2 / kDegToRad;
    altOut = alt2 / kDegToRad;
}

bool screenOf(const ChartView& view, double azDeg, double altDeg, double& x, double& y) {
    int32_t u = 0, v = 0;
    if (!projectHorizontal(view, azDeg, altDeg, u, v)) return false;
    const ScreenPoint p = chartToScreen(view, u, v);
    x = p.x;
    y = p.y;
    return true;
}

// Distance from (cx, cy) along the direction (dx, dy) to the middle of the first run of red
// pixels met beyond `fromPx`; nothing when the ray meets none before `toPx`.
std::optional<double> ringDistance(const Image& image, double cx, double cy, double dx, double dy, double fromPx,
                                   double toPx) {
    const double norm = std::hypot(dx, dy);
    dx /= norm, dy /= norm;
    std::optional<double> first;
    for (double t = fromPx; t <= toPx; t += 0.25) {
        const int x = static_cast<int>(std::lround(cx + dx * t)), y = static_cast<int>(std::lround(cy + dy * t));
        const bool lit = ((image.at(x, y) >> 16) & 0xFF) > 60;
        if (lit && !first) first = t;
        if (!lit && first) return (*first + t - 0.25) / 2;
    }
    return std::nullopt;
}

// For eight bearings, the circle crosses the ray from the centre through the projected point at
// the angular radius within 1 pixel of that point.
void expectRingAtAngularRadius(const Image& image, const ChartView& view, double radiusDeg, const std::string& what) {
    double cx = 0, cy = 0;
    ASSERT_TRUE(screenOf(view, view.centreAzDeg, view.centreAltDeg, cx, cy)) << what;
    for (int bearing = 0; bearing < 360; bearing += 45) {
        double az = 0, alt = 0, x = 0, y = 0;
        destination(view.centreAzDeg, view.centreAltDeg, bearing, radiusDeg, az, alt);
        ASSERT_TRUE(screenOf(view, az, alt, x, y)) << what;
        const double expectedPx = std::hypot(x - cx, y - cy);
        ASSERT_GT(expectedPx, 20) << what;  // a circle worth measuring
        const std::optional<double> measured = ringDistance(image, cx, cy, x - cx, y - cy, expectedPx * 0.5, expectedPx * 1.5);
        ASSERT_TRUE(measured) << what << " bearing " << bearing;
        EXPECT_NEAR(*measured, expectedPx, 1.0) << what << " bearing " << bearing;
    }
}

TEST(EyepieceField, CircleHasTheProjectedAngularRadiusAtEveryZoom) {
    struct Case {
        int zoom;
        int projectionMode;
        double centreAzDeg, centreAltDeg;
        double trueFieldDeg;
    };
    const Case cases[] = {
        {8, 0, 135, 40, 3.25},  // 10 degree chart, a 3.25 degree field
        {7, 0, 200, 70, 4.3},   // 20 degree chart
        {9, 0, 10, 25, 1.08},   // 5 degree chart
        {8, 0, 300, 88, 2.27},  // next to the zenith
        {6, 0, 90, 15, 10.0},   // 30 degree chart, a wide finder field
        {8, 1, 135, 40, 3.25},  // rectangular alt-az chart
    };
    const ChartPalette palette = chartPalette(0, 0);
    for (const Case& c : cases) {
        const std::string what = "zoom " + std::to_string(c.zoom) + " mode " + std::to_string(c.projectionMode) +
                                 " centre " + std::to_string(c.centreAzDeg) + "/" + std::to_string(c.centreAltDeg);
        ChartView view = makeChartView(800, 800, c.projectionMode, 48.1);
        setViewRotation(view, static_cast<int>(std::lround(c.centreAzDeg + 180)) % 360);
        setZoomLevel(view, c.zoom);
        setViewCentreHorizontal(view, c.centreAzDeg, c.centreAltDeg);
        ChartSurface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, 800, 800));
        cairo_t* cr = cairo_create(surface.get());
        LabelGrid labels(800, 800);
        const SkyFrame frame{};
        const LayerContext ctx{cr, view, frame, palette, labels, labelFontSize()};
        drawBackground(ctx);
        drawEyepieceField(ctx, c.trueFieldDeg, "");
        cairo_destroy(cr);
        expectRingAtAngularRadius(copyOf(surface.get()), view, c.trueFieldDeg / 2, what);
    }
}

TEST(EyepieceField, FieldsThatCannotBeDrawnLeaveTheChartAlone) {
    const ChartPalette palette = chartPalette(0, 0);
    ChartView view = makeChartView(200, 200, 0, 48.1);
    setZoomLevel(view, 8);
    setViewCentreHorizontal(view, 180, 45);
    for (double field : {0.0, -2.0, 181.0, std::nan("")}) {
        ChartSurface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, 200, 200));
        cairo_t* cr = cairo_create(surface.get());
        LabelGrid labels(200, 200);
        const SkyFrame frame{};
        const LayerContext ctx{cr, view, frame, palette, labels, labelFontSize()};
        drawEyepieceField(ctx, field, "label");
        cairo_destroy(cr);
        const Image image = copyOf(surface.get());
        EXPECT_EQ(std::count(image.pixels.begin(), image.pixels.end(), 0u), 200 * 200) << field;
    }
}

// A chart of a few stars with a hand-made eyepiece file, the telescope 80 mm f/5 (400 mm).
class EyepieceOnChart : public ::testing::Test {
protected:
    void SetUp() override {
        Preferences& p = prefs();
        p.latitudeDeg = 48.1f;
        p.longitudeDeg = -2.35f;
        p.utcOffsetMin = 60;
        p.sinLatitude = std::sin(p.latitudeDeg * kDegToRad);
        p.cosLatitude = std::cos(p.latitudeDeg * kDegToRad);
        p.cardCatalog = 0;
        p.background = 0;
        p.nightMode = 0;
        for (int& box : p.displayBox) box = 0;
        p.scopeDiameterIndex = indexOfLabel(*findPreferenceList("scopeDiameterIndex"), "80");
        p.fRatioIndex = indexOfLabel(*findPreferenceList("fRatioIndex"), "5");
        p.eyepieceIndex = 1;
        testing::writeRecordFile(folder_.path() / "data" / "nocturnel_default_stars.ppc",
                                 std::vector<DefaultStarRecord>{
                                     testing::makeDefaultStar(91262, 18.6156, 38.7836, 0.03, 0, "Vega"),
                                     testing::makeDefaultStar(24608, 5.2782, 45.9980, 0.08, 8, "Capella"),
                                 });
        forgetChartCatalogues();
        ASSERT_TRUE(openDefaultStars());
        request_.moment = {2026, 11, 21, 22, 0, 0};
        request_.zoomLevel = 8;
        request_.centreAzDeg = 150;
        request_.centreAltDeg = 45;
    }
    void TearDown() override { forgetChartCatalogues(); }

    void writeEyepieces() {
        EyepieceRecord plossl40{"Pl\xF6ssl 40mm", 40, 43}, plossl25{"Pl\xF6ssl 25mm", 25, 52};
        testing::writeRecordFile(folder_.path() / "data" / kEyepieceFile, std::vector<EyepieceRecord>{plossl40, plossl25});
    }
    Image render(ChartResult& result) {
        ChartSurface surface = renderChart(request_, result);
        EXPECT_TRUE(surface);
        return surface ? copyOf(surface.get()) : Image{};
    }

    struct PreferencesGuard {
        Preferences saved = prefs();
        ~PreferencesGuard() { prefs() = saved; }
    } guard_;
    testing::TempProgramFolder folder_;
    ChartRequest request_;
};

TEST_F(EyepieceOnChart, BoxOnDrawsTheChosenEyepieceAndItsLabel) {
    ChartResult result;
    const Image plain = render(result);
    writeEyepieces();
    MessageCapture capture;
    {
        const Image boxOff = render(result);
        EXPECT_TRUE(boxOff.pixels == plain.pixels) << "drawn with the box off";
    }
    prefs().displayBox[kBoxEyepiece] = 1;
    const Image withField = difference(render(result), plain);
    EXPECT_TRUE(capture.messages().empty()) << capture.lastTitle();
    // 25 mm of 52 degrees on 400 mm: x16, a 3.25 degree field.
    expectRingAtAngularRadius(withField, result.view, 3.25 / 2, "chart");

    // The label above the circle: changed pixels above its top, none far outside the circle.
    double cx = 0, cy = 0, topX = 0, topY = 0;
    ASSERT_TRUE(screenOf(result.view, result.view.centreAzDeg, result.view.centreAltDeg, cx, cy));
    topY = cy;
    for (int bearing = 0; bearing < 360; bearing += 5) {
        double az = 0, alt = 0, x = 0, y = 0;
        destination(result.view.centreAzDeg, result.view.centreAltDeg, bearing, 3.25 / 2, az, alt);
        ASSERT_TRUE(screenOf(result.view, az, alt, x, y));
        if (y < topY) topX = x, topY = y;
    }
    int labelPixels = 0, strayPixels = 0;
    for (int y = 0; y < withField.height; ++y)
        for (int x = 0; x < withField.width; ++x) {
            if (withField.at(x, y) == 0) continue;
            const double r = std::hypot(x - cx, y - cy);
            if (y < topY - 2 && y > topY - 3 * labelFontSize() && std::fabs(x - topX) < 100)
                ++labelPixels;
            else if (r > (cy - topY) + 4)
                ++strayPixels;
        }
    EXPECT_GT(labelPixels, 30);
    EXPECT_EQ(strayPixels, 0);

    // Another eyepiece, another circle: the 40 mm of 43 degrees gives x10, 4.3 degrees.
    prefs().eyepieceIndex = 0;
    expectRingAtAngularRadius(difference(render(result), plain), result.view, 4.3 / 2, "40 mm");
}

TEST_F(EyepieceOnChart, NoUsableEyepieceDrawsNothingAndSaysWhy) {
    ChartResult result;
    const Image plain = render(result);
    prefs().displayBox[kBoxEyepiece] = 1;
    struct Case {
        const char* what;
        bool file;
        int index;
        const char* message;
    };
    const Case cases[] = {
        {"no eyepiece file", false, 1, "Could not find nocturnel_eyepiece.ppc"},
        {"index past the list", true, 2, "Eyepiece 2 is not in the database (2 eyepieces)."},
        {"index far past the list", true, 400, "Eyepiece 400 is not in the database (2 eyepieces)."},
    };
    for (const Case& c : cases) {
        std::filesystem::remove(folder_.path() / "data" / kEyepieceFile);
        if (c.file) writeEyepieces();
        prefs().eyepieceIndex = c.index;
        MessageCapture capture;
        const Image image = render(result);
        EXPECT_TRUE(image.pixels == plain.pixels) << c.what;
        EXPECT_EQ(capture.lastTitle(), c.message) << c.what;
    }
}

}  // namespace
}  // namespace nocturnel
