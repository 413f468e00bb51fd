// The chart's look: star discs graded by magnitude, labels that keep out of each other's and the
// compass points' way, Messier labels at every zoom, the deep star card at zoom 10, the Milky
// Way band, the panorama's compass points, and the layers at double density.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>

#include "catalog/catalogues.h"
#include "catalog/record_file.h"
#include "catalog/star_catalog.h"
#include "chart/chart_labels.h"
#include "chart/chart_layers.h"
#include "chart/chart_render.h"
#include "chart/label_layout.h"
#include "chart/sky_frame.h"
#include "chart/sky_objects.h"
#include "chart/star_images.h"
#include "chart/star_names.h"
#include "chart/zoom_limits.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {

namespace fs = std::filesystem;

// ---- Discs ----

TEST(StarDiscs, ABrighterStarNeverGetsASmallerDisc) {
    for (int factor : {1, 2})
        for (int plain : {0, 1})
            for (int zoom = 0; zoom < kZoomLevelCount; ++zoom) {
                StarStyle style;
                style.plainStarFlag = plain;
                style.screenFactor = factor;
                double previous = 1e9;
                for (double mag = -1.6; mag < 13; mag += 0.05) {
                    const int step = static_cast<int>(std::floor(mag)) + (factor == 1 ? 1 : 0);
                    const double diameter = starDiscDiameter(starSizeStep(style, zoom, step));
                    EXPECT_LE(diameter, previous) << "zoom " << zoom << " mag " << mag << " factor " << factor;
                    previous = diameter;
                }
            }
}

TEST(StarDiscs, EveryColumnIsAVisibleStepFrom13PixelsToOne) {
    EXPECT_DOUBLE_EQ(starDiscDiameter(0), 13.0);
    EXPECT_DOUBLE_EQ(starDiscDiameter(12), 1.0);
    for (int column = 1; column < kStripColumns; ++column)
        EXPECT_GE(starDiscDiameter(column - 1) - starDiscDiameter(column), 0.5) << column;
    // The double-density family: cells of 26 pixels, discs twice as wide, shrinking column by column.
    const StripPixels& strip = starStripPixels(kStripColourOnBlack, 2);
    ASSERT_EQ(strip.cell, 26);
    ASSERT_EQ(strip.pixels.size(), static_cast<std::size_t>(kStripColumns * 26 * kStripRows * 26));
    // Ink: the sum of each pixel's brightest channel, so that a dimmer dot counts as less.
    auto ink = [&](int column) {
        long n = 0;
        for (int y = 0; y < 26; ++y)
            for (int x = 0; x < 26; ++x) {
                const uint32_t p = strip.pixels[static_cast<std::size_t>(y) * kStripColumns * 26 + column * 26 + x];
                n += std::max({(p >> 16) & 0xFFu, (p >> 8) & 0xFFu, p & 0xFFu});
            }
        return n;
    };
    for (int column = 1; column < kStripColumns; ++column) EXPECT_LT(ink(column), ink(column - 1)) << column;
}

// The double-density family with the double-resolution size-offset row: a star of any magnitude
// at any zoom covers, in the screen's own units, the single-resolution disc of its column or of a
// neighbouring one (the offsets of zoom 6 move a star two columns, the others three). The three
// largest single-resolution discs all fall on the family's first column, 2 x 10.7 pixels.
TEST(StarDiscs, AStarKeepsItsApparentSizeAtFactorTwo) {
    for (int zoom = 0; zoom < kZoomLevelCount; ++zoom)
        for (int mag = -1; mag <= 12; ++mag) {
            StarStyle one, two;
            one.screenFactor = 1, two.screenFactor = 2;
            const int column = starSizeStep(one, zoom, mag + 1);
            const double twice = starDiscDiameterAt(starSizeStep(two, zoom, mag), 2) / 2;
            const double smallest = column < 3 ? starDiscDiameter(3) : starDiscDiameter(std::min(column + 1, kStripColumns - 1));
            EXPECT_GE(twice, smallest - 1e-9) << "zoom " << zoom << " mag " << mag;
            EXPECT_LE(twice, starDiscDiameter(std::max(column - 1, 0)) + 1e-9) << "zoom " << zoom << " mag " << mag;
            if (zoom != 6 && column >= 3) {
                EXPECT_NEAR(twice / starDiscDiameter(column), 1.0, 0.2) << "zoom " << zoom << " mag " << mag;
            }
        }
}

TEST(StarNames, DesignationsBecomeGreekLettersOrNumbers) {
    const std::pair<const char*, const char*> cases[] = {
        {"alf Lyr", "α"}, {"pi1 Ori", "π1"}, {"61 Cyg", "61"}, {"ome Sco", "ω"}, {"HIP 60059", ""}, {"", ""},
    };
    for (const auto& [designation, label] : cases) EXPECT_EQ(designationLabel(designation), label) << designation;
    DefaultStarRecord sirius{};
    std::strcpy(sirius.name, "Sirius");
    sirius.flags = 1;
    sirius.mag = -1.44f;
    std::string text;
    EXPECT_TRUE(starLabelText(sirius, 0, text));
    EXPECT_EQ(text, "Sirius");
    DefaultStarRecord faint{};
    std::strcpy(faint.name, "eta Cet");
    faint.mag = 3.45f;
    EXPECT_FALSE(starLabelText(faint, 3, text));  // letters only closer in
    EXPECT_TRUE(starLabelText(faint, 6, text));
    EXPECT_EQ(text, "η");
}

// ---- Charts of the built catalogues ----

class ChartLook : public ::testing::Test {
protected:
    void SetUp() override {
        const char* data = std::getenv("NOCTURNEL_TEST_DATA");
        if (data == nullptr || !fs::exists(fs::path(data) / "nocturnel_default_stars.ppc") ||
            !fs::exists(fs::path(data) / "nocturnel_obj_18k.ppc"))
            GTEST_SKIP() << "NOCTURNEL_TEST_DATA holds no built catalogues";
        data_ = data;
        saved_ = prefs();
        setProgramFolder(data_.parent_path());
        Preferences& p = prefs();
        p.latitudeDeg = 48.1f;
        p.longitudeDeg = -2.35f;
        p.utcOffsetMin = 60;
        p.sinLatitude = static_cast<float>(std::sin(48.1 * M_PI / 180));
        p.cosLatitude = static_cast<float>(std::cos(48.1 * M_PI / 180));
        p.cardCatalog = 4;
        for (int i = 0; i < kZoomTableSlots; ++i) p.zoomStarLimit[i] = 2, p.zoomObjectLimit[i] = 3;
        p.displayBox[kBoxObjNames] = 1;
        p.displayBox[kBoxHideCompass] = 0;
        p.displayBox[kBoxHideInfoBar] = 0;
        closeCatalogues();
        forgetChartCatalogues();
        ASSERT_TRUE(openDefaultStars());
        openObjectFiles();
        request_.moment = {2026, 1, 15, 22, 0, 0};  // Orion high in the south
        active_ = true;
    }
    void TearDown() override {
        if (!active_) return;
        closeCatalogues();
        forgetChartCatalogues();
        prefs() = saved_;
    }
    static bool inside(const ChartText& box, double x, double y) {
        return x >= box.left && x <= box.left + box.width && y >= box.top && y <= box.top + box.height;
    }
    static bool overlap(const ChartText& a, const ChartText& b) {
        return a.left < b.left + b.width && b.left < a.left + a.width && a.top < b.top + b.height && b.top < a.top + a.height;
    }

    bool active_ = false;
    fs::path data_;
    Preferences saved_{};
    ChartRequest request_;
};

TEST_F(ChartLook, LabelsKeepOffCompassPointsAndBrightStarsAndEachOther) {
    for (int mode : {0, 1})
        for (int zoom : {0, 3, 5}) {
            request_.projectionMode = mode;
            request_.zoomLevel = zoom;
            request_.centreRaHours = 6.0;
            request_.centreDecDeg = 0.0;
            request_.tap = ScreenPoint{380, 420};
            ChartResult result;
            ASSERT_TRUE(renderChart(request_, result));
            SCOPED_TRACE(testing::Message() << "mode " << mode << " zoom " << zoom);
            EXPECT_FALSE(result.labels.empty());
            if (zoom == 0) {
                EXPECT_FALSE(result.compass.empty());
            }
            for (const ChartText& label : result.labels) {
                for (const ChartText& point : result.compass) EXPECT_FALSE(overlap(label, point)) << label.text << " on " << point.text;
                const ChartText tap{"", 380.0 - kTapClearancePixels, 420.0 - kTapClearancePixels, 2.0 * kTapClearancePixels,
                                    2.0 * kTapClearancePixels};
                EXPECT_FALSE(overlap(label, tap)) << label.text << " over the tap";
                // The centre of every bright star stays visible.
                for (const BrightStarSpot& star : result.bright)
                    if (star.mag < kClearStarMagnitude) {
                        EXPECT_FALSE(inside(label, star.x, star.y)) << label.text << " on HIP " << star.hip;
                    }
                for (const ChartText& other : result.labels)
                    if (&other != &label) {
                        EXPECT_FALSE(overlap(label, other)) << label.text << " on " << other.text;
                    }
                EXPECT_GE(label.top, 0);
                EXPECT_LE(label.top + label.height, result.view.height);
            }
        }
}

TEST_F(ChartLook, EveryMessierObjectInViewIsLabelledAtZooms3To7) {
    const std::pair<double, double> centres[] = {{5.6, -2.0}, {1.0, 40.0}, {8.5, 20.0}};
    int checked = 0;
    for (int zoom = 3; zoom <= 7; ++zoom)
        for (const auto& [ra, dec] : centres) {
            request_.zoomLevel = zoom;
            request_.centreRaHours = ra;
            request_.centreDecDeg = dec;
            ChartResult result;
            ASSERT_TRUE(renderChart(request_, result));
            const SkyFrame frame = skyFrameForDate(result.jdUt);
            const float limit = objectMagnitudeLimit(zoom);
            for (const ChartObject& object : chartObjects()) {
                if (object.messier <= 0 || (object.mag == 0 ? limit < 100 : object.mag > limit)) continue;
                double raDate = 0, decDate = 0;
                j2000ToDate(frame, object.raHours, object.decDeg, raDate, decDate);
                int32_t u = 0, v = 0;
                if (!projectStar(result.view, result.view.lstHours, raDate, decDate, u, v)) continue;
                const ScreenPoint p = chartToScreen(result.view, u, v);
                // Objects whose label could not fit on the chart at all are not asked for.
                if (p.x < 60 || p.x > result.view.width - 60 || p.y < 40 || p.y > result.view.height - 40) continue;
                const std::string prefix = "M" + std::to_string(object.messier);
                bool found = false;
                for (const ChartText& label : result.labels)
                    found = found || label.text == prefix || label.text.rfind(prefix + ",", 0) == 0;
                EXPECT_TRUE(found) << prefix << " at zoom " << zoom << " centre " << ra << "h " << dec << " at " << p.x << "," << p.y;
                ++checked;
            }
        }
    EXPECT_GT(checked, 15);
}

TEST_F(ChartLook, DeepCardFillsZoom10AroundM42) {
    if (!fs::exists(data_ / "nocturnel_tycho_390k.ppc")) GTEST_SKIP() << "no deep star card built";
    prefs().cardCatalog = 5;
    request_.zoomLevel = 10;
    request_.centreRaHours = 5.588;
    request_.centreDecDeg = -5.39;
    ChartResult result;
    ASSERT_TRUE(renderChart(request_, result));
    ASSERT_EQ(starCatalogLevel(), 5);
    // Every star of the card under the limit in the chart, counted by brute force over the
    // declination band: the field-star load must draw them all.
    const SkyFrame frame = skyFrameForDate(result.jdUt);
    const double limit = starMagnitudeLimit(10);
    int expected = 0;
    const int blocks = recordCount(starCatalogSlot()), perBlock = starsPerBlock();
    for (int block = 0; block < blocks; ++block) {
        const uint8_t* record = fetchRecord(starCatalogSlot(), static_cast<uint32_t>(block));
        ASSERT_NE(record, nullptr);
        for (int k = 0; k < perBlock; ++k) {
            StarEntry entry;
            std::memcpy(&entry, record + k * sizeof(StarEntry), sizeof entry);
            if (entry.number == 0 || entry.mag16 > limit * 16) continue;
            const double decDeg = starEntryDecDeg(entry);
            if (std::fabs(decDeg + 5.39) > 3) continue;
            double raDate = 0, decDate = 0;
            j2000ToDate(frame, starEntryRaHours(entry), decDeg, raDate, decDate);
            int32_t u = 0, v = 0;
            if (!projectStar(result.view, result.view.lstHours, raDate, decDate, u, v)) continue;
            const ScreenPoint p = chartToScreen(result.view, u, v);
            expected += insideClip(result.view, p.x, p.y);
        }
    }
    // About 15 stars per square degree to magnitude 10.5 in this part of the sky: 6.25 square degrees.
    EXPECT_GT(expected, 90);
    EXPECT_NEAR(result.fieldStars.drawn, expected, expected * 0.03 + 2);
}

TEST_F(ChartLook, MilkyWayBrightensMonocerosNotLepus) {
    if (!fs::exists(data_ / "nocturnel_milkyway.ppc")) GTEST_SKIP() << "no Milky Way outline built";
    for (int& box : prefs().displayBox) box = 0;
    prefs().displayBox[kBoxHideCompass] = prefs().displayBox[kBoxHideInfoBar] = 1;
    request_.zoomLevel = 3;
    request_.centreRaHours = 6.0;
    request_.centreDecDeg = 0.0;
    ChartResult result;
    ChartSurface surface = renderChart(request_, result);
    ASSERT_TRUE(surface);
    const SkyFrame frame = skyFrameForDate(result.jdUt);
    // The darkest pixel of a 9 x 9 patch (stars only brighten it).
    auto background = [&](double raHours, double decDeg) {
        double raDate = 0, decDate = 0;
        j2000ToDate(frame, raHours, decDeg, raDate, decDate);
        int32_t u = 0, v = 0;
        EXPECT_TRUE(projectStar(result.view, result.view.lstHours, raDate, decDate, u, v));
        const ScreenPoint p = chartToScreen(result.view, u, v);
        const unsigned char* data = cairo_image_surface_get_data(surface.get());
        const int stride = cairo_image_surface_get_stride(surface.get());
        int darkest = 255;
        for (int y = p.y - 4; y <= p.y + 4; ++y)
            for (int x = p.x - 4; x <= p.x + 4; ++x)
                darkest = std::min<int>(darkest, reinterpret_cast<const uint32_t*>(data + y * stride)[x] & 0xFF);
        return darkest;
    };
    const int monoceros = background(6.9, -2.0), lepus = background(5.3, -20.0);
    EXPECT_GT(monoceros, lepus + 8) << "band " << monoceros << ", off the band " << lepus;
}

TEST_F(ChartLook, PanoramaCompassPointsStandAtTheirAzimuths) {
    request_.projectionMode = 1;
    const char* names[] = {"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
    prefs().displayBox[kBoxObjNames] = 0;
    for (int rotation : {0, 137})
        for (int zoom : {0, 2, 4})
            for (int width : {800, 1600}) {
                request_.rotationDeg = rotation;
                request_.zoomLevel = zoom;
                request_.width = width;
                request_.centreRaHours.reset();
                request_.centreDecDeg.reset();
                ChartResult result;
                ASSERT_TRUE(renderChart(request_, result));
                SCOPED_TRACE(testing::Message() << "rotation " << rotation << " zoom " << zoom << " width " << width);
                for (const ChartText& point : result.compass) {
                    int index = 0;
                    while (index < 8 && point.text != names[index]) ++index;
                    ASSERT_LT(index, 8) << point.text;
                    const int x = static_cast<int>(std::lround(point.left + point.width / 2));
                    if (x <= 9 * result.view.screenFactor || x >= result.view.width - 9) continue;  // moved in from the edge
                    double az = 0, alt = 0;
                    screenToHorizontal(result.view, x, static_cast<int>(point.top + point.height / 2), az, alt);
                    const double off = std::fabs(std::remainder(az - index * 45.0, 360.0));
                    EXPECT_LT(off, 1.5) << point.text << " drawn at azimuth " << az;
                    int copies = 0;
                    for (const ChartText& other : result.compass) copies += other.text == point.text;
                    EXPECT_LE(copies, width > 1000 ? 2 : 1) << point.text;
                }
                // At the widest levels the panorama fills the chart: the zenith at the top edge.
                if (zoom <= 2) {
                    double az = 0, alt = 0;
                    screenToHorizontal(result.view, result.view.width / 2, 0, az, alt);
                    EXPECT_NEAR(alt, 90.0, 1.0);
                }
            }
}

// ---- Double density ----

// One layer drawn alone on a black chart of the fixture's view, 400 x 400 pixels at resolution
// factor 1 or 800 x 800 device pixels at factor 2: its ink (the summed channels) and the ink's
// centre.
struct LayerInk {
    double ink = 0, x = 0, y = 0;
};

template <typename Draw>
LayerInk drawLayerAlone(ChartRequest request, int factor, Draw draw) {
    request.width = request.height = 400 * factor;
    request.resolutionFactor = factor;
    double jdUt = 0;
    const ChartView view = chartViewForRequest(request, jdUt);
    const SkyFrame frame = skyFrameForDate(jdUt);
    const ChartPalette palette = chartPalette(0, 0);
    LabelGrid labels(view.width, view.height, 6 * factor);
    ChartSurface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, view.width, view.height));
    cairo_t* cr = cairo_create(surface.get());
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_paint(cr);
    const double fontSize = labelFontSize() * factor;
    cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, fontSize);
    const LayerContext ctx{cr, view, frame, palette, labels, fontSize};
    draw(ctx, jdUt);
    cairo_destroy(cr);
    cairo_surface_flush(surface.get());
    LayerInk result;
    const unsigned char* data = cairo_image_surface_get_data(surface.get());
    const int stride = cairo_image_surface_get_stride(surface.get());
    for (int y = 0; y < view.height; ++y)
        for (int x = 0; x < view.width; ++x) {
            const uint32_t p = reinterpret_cast<const uint32_t*>(data + y * stride)[x];
            const double ink = ((p >> 16) & 0xFF) + ((p >> 8) & 0xFF) + (p & 0xFF);
            result.ink += ink;
            result.x += ink * x;
            result.y += ink * y;
        }
    if (result.ink > 0) result.x /= result.ink, result.y /= result.ink;
    return result;
}

TEST_F(ChartLook, EveryLayerAtFactorTwoIsTheFactorOneLayerAtDoubleDensity) {
    using Draw = std::function<void(const LayerContext&, double)>;
    const std::pair<const char*, Draw> layers[] = {
        {"constellation lines", [](const LayerContext& c, double) { drawConstellationLines(c); }},
        {"alt/az grid", [](const LayerContext& c, double) { drawAltAzGrid(c); }},
        {"ecliptic", [](const LayerContext& c, double jd) { drawEcliptic(c, jd); }},
        {"horizon", [](const LayerContext& c, double) { drawHorizonAndCompass(c, false); }},
        {"compass points", [](const LayerContext& c, double) { drawHorizonAndCompass(c, true); }},
        {"Telrad rings", [](const LayerContext& c, double) { drawTelradRings(c, {0.5f, 2.0f, 4.0f}); }},
        {"eyepiece field", [](const LayerContext& c, double) { drawEyepieceField(c, 3.0, "Plossl 25mm"); }},
        {"deep-sky symbols", [](const LayerContext& c, double) { drawDeepSkyObjects(c, 12, nullptr); }},
        {"deep-sky labels",
         [](const LayerContext& c, double) {
             // The symbols go to a throwaway chart; only their labels are measured.
             ChartSurface scratch(cairo_image_surface_create(CAIRO_FORMAT_RGB24, c.view.width, c.view.height));
             cairo_t* other = cairo_create(scratch.get());
             LabelGrid grid(c.view.width, c.view.height, 6 * c.view.screenFactor);
             std::vector<ChartLabel> labels;
             drawDeepSkyObjects({other, c.view, c.frame, c.palette, grid, c.fontSize}, 12, &labels);
             cairo_destroy(other);
             placeLabels(c, labels);
         }},
        {"constellation names", [](const LayerContext& c, double) { drawConstellationNames(c); }},
    };
    // Orion high in the south, and the default view of zoom 3 with the horizon near its foot.
    ChartRequest orion = request_, southernSky = request_;
    orion.zoomLevel = 5;
    orion.centreRaHours = 5.6;
    orion.centreDecDeg = 0.0;
    southernSky.zoomLevel = 3;
    for (const auto& [name, draw] : layers) {
        int views = 0;
        for (const ChartRequest& request : {orion, southernSky}) {
            const LayerInk single = drawLayerAlone(request, 1, draw), twice = drawLayerAlone(request, 2, draw);
            if (single.ink == 0) continue;
            ++views;
            SCOPED_TRACE(testing::Message() << name << " at zoom " << request.zoomLevel);
            // Twice as long and twice as thick (or twice as tall): four times the ink, around
            // the same sky point (within a percent of the chart: dashes end differently at the edges).
            EXPECT_NEAR(twice.ink / single.ink, 4.0, 0.6);
            EXPECT_NEAR(twice.x, 2 * single.x, 8.0);
            EXPECT_NEAR(twice.y, 2 * single.y, 8.0);
        }
        EXPECT_GT(views, 0) << name << " drew nothing";
    }
}

}  // namespace
}  // namespace nocturnel
