// TT - UT: the observed table where it holds, the two extrapolations joined to it without a
// jump, and the preference choosing between them.
#include "core/delta_t_model.h"

#include <gtest/gtest.h>

#include "core/astro_constants.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

double jdOfYear(double year) { return kJ2000Jd + (year - 2000.0) * 365.25; }

// Published values (IERS, Astronomical Almanac), tolerance 0.5 s: the table's rounding and
// its half-year spacing.
TEST(DeltaTModel, ObservedValuesWhereTheyExist) {
    struct Row {
        double year, seconds;
    } rows[] = {{1900.0, -2.8}, {1950.0, 29.1}, {1980.0, 50.5}, {2000.0, 63.8}, {2010.0, 66.1}, {2020.0, 69.4}};
    for (const Row& r : rows) {
        EXPECT_NEAR(deltaTSecondsFor(jdOfYear(r.year), kDeltaTJplHorizon), r.seconds, 0.5) << r.year;
        EXPECT_DOUBLE_EQ(deltaTSecondsFor(jdOfYear(r.year), kDeltaTJplHorizon),
                         deltaTSecondsFor(jdOfYear(r.year), kDeltaTChaprontTouze1997))
            << r.year;
    }
}

TEST(DeltaTModel, ExtrapolationsJoinTheTableWithoutAJump) {
    const double last = kObservedDeltaTFirstYear + (kObservedDeltaTCount - 1) * kObservedDeltaTStepYears;
    for (int formula : {kDeltaTChaprontTouze1997, kDeltaTJplHorizon})
        for (double edge : {kObservedDeltaTFirstYear, last}) {
            const double inside = deltaTSecondsFor(jdOfYear(edge) + (edge == last ? -0.01 : 0.01), formula);
            const double outside = deltaTSecondsFor(jdOfYear(edge) + (edge == last ? 0.01 : -0.01), formula);
            EXPECT_NEAR(inside, outside, 0.01) << formula << " at " << edge;
        }
    // Past the table the formulas part: Chapront-Touze's grows faster.
    EXPECT_GT(deltaTSecondsFor(jdOfYear(2040.0), kDeltaTChaprontTouze1997), deltaTSecondsFor(jdOfYear(2040.0), kDeltaTJplHorizon));
    // Far from the table each is its published formula: Espenak-Meeus -20 + 32 u^2 in 2200.
    const double u = (2200.0 - 1820.0) / 100.0;
    EXPECT_NEAR(deltaTSecondsFor(jdOfYear(2200.0), kDeltaTJplHorizon), -20.0 + 32.0 * u * u, 0.01);
    const double t = 1.5;  // Chapront-Touze 102 + 102 t + 25.3 t^2 in 2150
    EXPECT_NEAR(deltaTSecondsFor(jdOfYear(2150.0), kDeltaTChaprontTouze1997), 102.0 + 102.0 * t + 25.3 * t * t, 0.01);
}

// Just past the table both follow its trend: at 2026.0 TT - UTC = 69.184 s and UT1 - UTC was
// near 0 (IERS Bulletin A), so DeltaT was about 69.1 s. Tolerance 2 s: the extrapolation's
// own uncertainty three years out (2 s move the Moon by 1").
TEST(DeltaTModel, ThePresentFollowsTheTableTrend) {
    for (int formula : {kDeltaTChaprontTouze1997, kDeltaTJplHorizon})
        EXPECT_NEAR(deltaTSecondsFor(jdOfYear(2026.0), formula), 69.1, 2.0) << formula;
}

TEST(DeltaTModel, PreferenceChoosesAndTtRoundTrips) {
    const double jd = jdOfYear(2050.0);
    prefs().deltaTFormula = kDeltaTJplHorizon;
    EXPECT_DOUBLE_EQ(modelDeltaTSeconds(jd), deltaTSecondsFor(jd, kDeltaTJplHorizon));
    prefs().deltaTFormula = kDeltaTChaprontTouze1997;
    EXPECT_DOUBLE_EQ(modelDeltaTSeconds(jd), deltaTSecondsFor(jd, kDeltaTChaprontTouze1997));
    EXPECT_NEAR(utFromTt(ttFromUt(jd)), jd, 1e-9);
    prefs().deltaTFormula = 0;
}

}  // namespace
}  // namespace nocturnel
