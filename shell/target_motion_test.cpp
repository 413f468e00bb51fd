// GoTo and alignment names give a star where it is at the observing moment (against the built
// catalogues, NOCTURNEL_TEST_DATA): Arcturus by its name, Barnard's star by its HIP number.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "catalog/catalogues.h"
#include "catalog/name_index.h"
#include "catalog/star_motion.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"
#include "shell/star_names.h"
#include "shell/target_names.h"

namespace nocturnel {
namespace {

double separationArcsec(double ra1Hours, double dec1Deg, double ra2Hours, double dec2Deg) {
    const double k = M_PI / 180;
    const double c = std::sin(dec1Deg * k) * std::sin(dec2Deg * k) +
                     std::cos(dec1Deg * k) * std::cos(dec2Deg * k) * std::cos((ra1Hours - ra2Hours) * 15 * k);
    return std::acos(std::min(1.0, c)) / k * 3600;
}

class TargetMotion : public ::testing::Test {
protected:
    void SetUp() override {
        const char* env = std::getenv("NOCTURNEL_TEST_DATA");
        if (!env || !*env) GTEST_SKIP() << "NOCTURNEL_TEST_DATA is not set";
        const std::filesystem::path data = env;
        if (!std::filesystem::exists(data / kStarMotionFile)) GTEST_SKIP() << "no " << kStarMotionFile;
        saved_ = prefs();
        setProgramFolder(data.parent_path());
        closeCatalogues();
        resetNameIndex();
        forgetStarMotion();
        clearTargetFinders();
        prefs().utcOffsetMin = 0;
    }
    void TearDown() override {
        prefs() = saved_;
        closeCatalogues();
        resetNameIndex();
        forgetStarMotion();
    }
    Preferences saved_{};
};

TEST_F(TargetMotion, GoToAndAlignmentNamesMoveTheStarToTheMoment) {
    const struct {
        const char* name;
        int32_t hip;
        double movedArcsecBy2026;  // |proper motion| x 26.9 years
    } stars[] = {{"Arcturus", 69673, 61.4}, {"HIP 87937", 87937, 277.4}};
    for (const auto& s : stars) {
        double ra2000 = 0, dec2000 = 0, raNow = 0, decNow = 0;
        prefs().moment = {2000, 1, 1, 12, 0, 0};
        ASSERT_TRUE(starPlaceAtEpoch(s.hip, observingEpoch(), ra2000, dec2000));
        ResolvedTarget then;
        ASSERT_TRUE(resolveTarget(s.name, then)) << s.name;
        EXPECT_LT(separationArcsec(then.raHours, then.decDeg, ra2000, dec2000), 0.01) << s.name;

        prefs().moment = {2026, 11, 24, 12, 0, 0};
        ASSERT_TRUE(starPlaceAtEpoch(s.hip, observingEpoch(), raNow, decNow));
        ResolvedTarget now;
        ASSERT_TRUE(resolveTarget(s.name, now)) << s.name;
        EXPECT_LT(separationArcsec(now.raHours, now.decDeg, raNow, decNow), 0.01) << s.name;
        EXPECT_NEAR(separationArcsec(now.raHours, now.decDeg, then.raHours, then.decDeg), s.movedArcsecBy2026, 1.0)
            << s.name;
    }
    // The alignment stars' names read the same place.
    std::string canonical;
    double ra = 0, dec = 0, raNow = 0, decNow = 0;
    ASSERT_TRUE(findBrightStarByName("Arcturus", canonical, ra, dec));
    ASSERT_TRUE(starPlaceAtEpoch(69673, observingEpoch(), raNow, decNow));
    EXPECT_LT(separationArcsec(ra, dec, raNow, decNow), 0.01);
}

}  // namespace
}  // namespace nocturnel
