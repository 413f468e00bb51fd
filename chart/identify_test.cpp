// Tap identification on charts drawn from the built catalogues (NOCTURNEL_TEST_DATA): a tap on
// a drawn star's pixel names it at several zooms.
#include "chart/identify.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "catalog/catalogues.h"
#include "chart/field_stars.h"
#include "chart/sky_objects.h"
#include "chart/solar_system_layer.h"
#include "core/planet_series_format.h"
#include "core/solar_system_sky.h"
#include "core/time.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

constexpr int kVega = 91262;

class Identify : public ::testing::Test {
protected:
    void SetUp() override {
        const char* data = std::getenv("NOCTURNEL_TEST_DATA");
        if (data == nullptr || !fs::exists(fs::path(data) / "nocturnel_hip_110k.ppc") ||
            !fs::exists(fs::path(data) / "nocturnel_obj_18k.ppc"))
            GTEST_SKIP() << "NOCTURNEL_TEST_DATA holds no built catalogues";
        saved_ = prefs();
        setProgramFolder(fs::path(data).parent_path());
        Preferences& p = prefs();
        p.latitudeDeg = 48.1f;
        p.longitudeDeg = -2.35f;
        p.utcOffsetMin = 60;
        p.sinLatitude = static_cast<float>(std::sin(48.1 * M_PI / 180));
        p.cosLatitude = static_cast<float>(std::cos(48.1 * M_PI / 180));
        p.cardCatalog = 4;
        for (int i = 0; i < kZoomTableSlots; ++i) p.zoomStarLimit[i] = 2, p.zoomObjectLimit[i] = 3;
        closeCatalogues();
        forgetChartCatalogues();
        ASSERT_EQ(openCatalogues(), 0);
        request_.moment = {2026, 7, 15, 23, 30, 0};  // Lyra high in the sky
        active_ = true;
    }
    void TearDown() override {
        if (!active_) return;
        closeCatalogues();
        forgetChartCatalogues();
        prefs() = saved_;
    }
    bool active_ = false;
    Preferences saved_{};
    ChartRequest request_;
};

TEST_F(Identify, TapOnADrawnStarNamesItAtSeveralZooms) {
    request_.centreRaHours = 18.6156;
    request_.centreDecDeg = 38.7837;
    for (const int zoom : {0, 3, 5, 8, 11}) {
        request_.zoomLevel = zoom;
        ChartResult result;
        ASSERT_TRUE(renderChart(request_, result)) << zoom;
        const BrightStarSpot* vega = nullptr;
        for (const BrightStarSpot& s : result.bright)
            if (s.hip == kVega) vega = &s;
        ASSERT_NE(vega, nullptr) << zoom;
        const IdentifiedObject onPixel = identifyInChart(result, vega->x, vega->y);
        ASSERT_TRUE(onPixel.found) << zoom;
        EXPECT_EQ(onPixel.name, "Vega") << zoom;
        EXPECT_EQ(onPixel.designation, "HIP 91262") << zoom;
        EXPECT_EQ(onPixel.distancePx, 0) << zoom;
        // A finger a few pixels off, on a chart identified without drawing it.
        const IdentifiedObject nearby = identifyAt(request_, vega->x + 4, vega->y - 3);
        EXPECT_EQ(nearby.number, kVega) << zoom;
        EXPECT_EQ(nearby.x, vega->x) << zoom;
    }
}

TEST_F(Identify, FieldStarsAndDeepSkyObjects) {
    request_.centreRaHours = 18.8936;  // M57
    request_.centreDecDeg = 33.0292;
    request_.zoomLevel = 8;
    ChartResult result;
    ASSERT_TRUE(renderChart(request_, result));
    // A field star clear of every other drawn star and object: named by its HIP number.
    int checked = 0;
    for (int i = 0; i < visibleFieldStarCount() && checked < 5; ++i) {
        const VisibleFieldStar star = visibleFieldStars()[i];
        bool alone = true;
        for (int j = 0; j < visibleFieldStarCount() && alone; ++j)
            if (j != i && std::hypot(visibleFieldStars()[j].x - star.x, visibleFieldStars()[j].y - star.y) < 25) alone = false;
        for (const BrightStarSpot& s : result.bright)
            if (std::hypot(s.x - star.x, s.y - star.y) < 25) alone = false;
        if (!alone) continue;
        const IdentifiedObject o = identifyInChart(result, star.x, star.y);
        ASSERT_TRUE(o.found);
        if (o.kind == "deep-sky") continue;  // an object drawn on the star
        EXPECT_EQ(o.kind, "field star");
        EXPECT_EQ(o.designation.rfind("HIP ", 0), 0u) << o.designation;
        EXPECT_EQ(o.x, star.x);
        ++checked;
    }
    EXPECT_GT(checked, 0);
    const IdentifiedObject ring = identifyInChart(result, result.view.width / 2, result.view.height / 2);
    ASSERT_TRUE(ring.found);
    EXPECT_NE(ring.name.find("M57"), std::string::npos) << ring.name;
    EXPECT_EQ(ring.designation, "NGC 6720");
    // Outside the sky disc of the widest chart nothing is drawn.
    request_ = ChartRequest{};
    request_.moment = {2026, 7, 15, 23, 30, 0};
    EXPECT_FALSE(identifyAt(request_, 3, 3).found);
}

}  // namespace
}  // namespace nocturnel

namespace nocturnel {
namespace {

// Pluto is drawn and named by a tap within its series' years, and neither beyond them.
TEST_F(Identify, PlutoIsNeitherDrawnNorNamedBeyondItsSeries) {
    if (!fs::exists(dataPath(kPlanetSeriesFileName))) GTEST_SKIP() << "catalogues built before the planet series";
    SkyRequest sky = skyRequestFromPreferences(false);
    sky.jdUt = julianDayAtMidnight(2099, 12, 1);
    SolarSystemReport report;
    ASSERT_EQ(solarSystemAt(sky, &report), 0);
    const SolarBodyReport& pluto = report.bodies[kSolarBodyCount - 1];
    ASSERT_EQ(pluto.body, SolarBody::Pluto);
    request_.centreRaHours = pluto.raJ2000Hours;
    request_.centreDecDeg = pluto.decJ2000Deg;
    request_.zoomLevel = 6;
    request_.moment = {2099, 12, 1, 0, 0, 0};
    setSolarSystemSpots(solarSystemSpots);  // as the program does at start-up
    struct Unhook {
        ~Unhook() { setSolarSystemSpots(nullptr); }
    } unhook;
    ChartResult inside;
    ASSERT_TRUE(renderChart(request_, inside));
    const IdentifiedObject there = identifyInChart(inside, inside.view.width / 2, inside.view.height / 2);
    EXPECT_EQ(there.name, "Pluto");
    request_.moment = {2100, 3, 1, 0, 0, 0};  // a quarter later Pluto has moved well under a degree
    ChartResult beyond;
    ASSERT_TRUE(renderChart(request_, beyond));
    for (int dx = -60; dx <= 60; dx += 10)
        for (int dy = -60; dy <= 60; dy += 10)
            EXPECT_NE(identifyInChart(beyond, beyond.view.width / 2 + dx, beyond.view.height / 2 + dy).name, "Pluto");
}

}  // namespace
}  // namespace nocturnel
