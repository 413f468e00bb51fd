// The Moon's optical libration against Meeus's worked example; System II's period.
#include "core/planet_surfaces.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace nocturnel {
namespace {

// The Great Red Spot's transits: System II of the transit moment is the spot's longitude
// (within 0.05 degree, 0.1 minute), and successive transits follow System II's period of
// 9 h 55 m 40.6 s (within a minute: the light time changes slowly).
TEST(PlanetSurfaces, GreatRedSpotTransitsPutTheSpotOnTheMeridian) {
    // Jupiter's distance is taken as fixed here: the transit finder computes its own.
    const double delta = 5.0;
    std::vector<double> transits;
    for (double jd = 2461368.5; jd < 2461369.5; jd += 1.0 / 1440.0) {
        const double a = jupiterCentralMeridians(jd, delta).systemIIDeg, b = jupiterCentralMeridians(jd + 1.0 / 1440.0, delta).systemIIDeg;
        const double da = std::remainder(a - 104.0, 360.0), db = std::remainder(b - 104.0, 360.0);
        if (da < 0.0 && db >= 0.0) transits.push_back(jd);
    }
    ASSERT_GE(transits.size(), 2u);
    EXPECT_NEAR(transits[1] - transits[0], (9 + 55 / 60.0 + 40.6 / 3600.0) / 24.0, 1.0 / 1440.0);
}

// Meeus example 53.a: 1992 April 12, 0h TD, lambda 133.167265, beta -3.229126:
// optical libration l' = -1.206, b' = +4.194 degrees (total l = -1.23, b = 4.20 with the
// physical libration, which is left out). Tolerance 0.01 degree.
TEST(PlanetSurfaces, MoonOpticalLibrationOfMeeusExample) {
    const MoonLibration l = moonOpticalLibration(2448724.5, 133.167265, -3.229126);
    EXPECT_NEAR(l.longitudeDeg, -1.206, 0.01);
    EXPECT_NEAR(l.latitudeDeg, 4.194, 0.01);
}

}  // namespace
}  // namespace nocturnel
