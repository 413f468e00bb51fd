// Charts drawn from the built catalogues (the folder named by NOCTURNEL_TEST_DATA).
#include <erfa.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "catalog/catalogues.h"
#include "chart/chart_render.h"
#include "chart/sky_objects.h"
#include "core/time.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {

namespace fs = std::filesystem;

class BuiltCatalogues : public ::testing::Test {
protected:
    void SetUp() override {
        const char* data = std::getenv("NOCTURNEL_TEST_DATA");
        if (data == nullptr || !fs::exists(fs::path(data) / "nocturnel_default_stars.ppc") ||
            !fs::exists(fs::path(data) / "nocturnel_hip_110k.ppc"))
            GTEST_SKIP() << "NOCTURNEL_TEST_DATA holds no built default stars and Hipparcos catalogue";
        saved_ = prefs();
        setProgramFolder(fs::path(data).parent_path());
        Preferences& p = prefs();
        p.latitudeDeg = 48.1f;
        p.longitudeDeg = -2.35f;
        p.utcOffsetMin = 60;
        p.sinLatitude = static_cast<float>(std::sin(48.1 * M_PI / 180));
        p.cosLatitude = static_cast<float>(std::cos(48.1 * M_PI / 180));
        p.cardCatalog = 4;
        for (int i = 0; i < kZoomTableSlots; ++i) p.zoomStarLimit[i] = 2;
        closeCatalogues();
        forgetChartCatalogues();
        ASSERT_TRUE(openDefaultStars());
        request_.moment = {2026, 11, 21, 22, 0, 0};
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

TEST_F(BuiltCatalogues, VegaAndCapellaWhereErfaPutsThem) {
    ChartResult result;
    ChartSurface surface = renderChart(request_, result);
    ASSERT_TRUE(surface);
    EXPECT_GT(result.bright.size(), 600u);  // about half of the 1,646 stars are up
    const double jd = julianDateFromLocal(2026, 11, 21, 22, 0, 0, 60);
    double npb[3][3];
    eraPnm80(jd, 0.0, npb);
    const double lst = eraGmst82(jd, 0.0) + 2.35 * M_PI / 180;
    struct Star { int hip; double raHours, decDeg; };
    const Star stars[] = {{91262, 18.615649, 38.783692}, {24608, 5.278155, 45.997991}, {11767, 2.530301, 89.264109}};
    for (const Star& star : stars) {
        const BrightStarSpot* spot = nullptr;
        for (const BrightStarSpot& s : result.bright)
            if (s.hip == star.hip) spot = &s;
        ASSERT_NE(spot, nullptr) << star.hip;
        double p[3], q[3], ra = 0, dec = 0, az = 0, alt = 0;
        eraS2c(star.raHours * M_PI / 12, star.decDeg * M_PI / 180, p);
        eraRxp(npb, p, q);
        eraC2s(q, &ra, &dec);
        eraHd2ae(lst - ra, dec, 48.1 * M_PI / 180, &az, &alt);
        const double r = 400 * std::tan((M_PI / 2 - alt) / 2);
        EXPECT_NEAR(spot->x, 400 - r * std::sin(az), 2.0) << star.hip;
        EXPECT_NEAR(spot->y, 400 - r * std::cos(az), 2.0) << star.hip;
    }
}

TEST_F(BuiltCatalogues, FieldStarsAppearFromZoomFourOn) {
    for (int zoom : {3, 4, 8}) {
        request_.zoomLevel = zoom;
        ChartResult result;
        ASSERT_TRUE(renderChart(request_, result));
        if (zoom == 3) {
            EXPECT_EQ(result.fieldStars.drawn, 0);  // "<5": the default stars suffice
        } else {
            EXPECT_GT(result.fieldStars.drawn, 20) << zoom;
            EXPECT_EQ(visibleFieldStarCount(), std::min(result.fieldStars.drawn, kVisibleFieldStarCapacity - 1));
        }
    }
}

}  // namespace
}  // namespace nocturnel
