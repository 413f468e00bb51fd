// TT - UT: the observed table where it holds, the two extrapolations joined to it without a
// jump, and the preference choosing between them.
#include "core/delta_t_model.h"

#include <gtest/gtest.h>

#include <chrono>

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

// "Current DeltaT": the user's value holds on the day it is given for, the observed table is
// left alone, and the extrapolation joins it without a jump on either side.
TEST(DeltaTModel, CurrentValueHoldsTodayAndLeavesTheObservedTableAlone) {
    const double today = jdOfYear(2026.9);
    const double end = lastObservedDeltaTYear();
    for (int formula : {kDeltaTChaprontTouze1997, kDeltaTJplHorizon})
        for (double user : {62.0, 69.3, 80.0}) {
            const CurrentDeltaT current{today, user};
            EXPECT_NEAR(deltaTSecondsFor(today, formula, current), user, 1e-9) << formula << " " << user;
            EXPECT_EQ(deltaTSourceFor(today, current), DeltaTSource::Current);
            // History is measured: 1990 and the table's last value do not move.
            for (double year : {1990.0, end})
                EXPECT_DOUBLE_EQ(deltaTSecondsFor(jdOfYear(year), formula, current), deltaTSecondsFor(jdOfYear(year), formula))
                    << year;
            EXPECT_EQ(deltaTSourceFor(jdOfYear(1990.0), current), DeltaTSource::Observed);
            // No jump just past the table's end, nor a day either side of today.
            EXPECT_NEAR(deltaTSecondsFor(jdOfYear(end) + 0.01, formula, current), deltaTSecondsFor(jdOfYear(end), formula), 0.01);
            EXPECT_NEAR(deltaTSecondsFor(today - 1.0, formula, current), user, 0.05);
            EXPECT_NEAR(deltaTSecondsFor(today + 1.0, formula, current), user, 0.05);
            // Half-way between the table's end and today, half-way between the two values
            // (the formula itself moves by under a second there).
            const double mid = 0.5 * (end + 2026.9);
            const double expected = 0.5 * (deltaTSecondsFor(jdOfYear(end), formula) + user);
            EXPECT_NEAR(deltaTSecondsFor(jdOfYear(mid), formula, current), expected, 1.0);
            // A century on, the published formula alone.
            EXPECT_DOUBLE_EQ(deltaTSecondsFor(jdOfYear(2130.0), formula, current), deltaTSecondsFor(jdOfYear(2130.0), formula));
            EXPECT_EQ(deltaTSourceFor(jdOfYear(2130.0), current), DeltaTSource::Formula);
        }
    // A "today" inside the table (a wrong clock) changes nothing.
    const CurrentDeltaT stale{jdOfYear(2015.0), 90.0};
    EXPECT_DOUBLE_EQ(deltaTSecondsFor(jdOfYear(2030.0), kDeltaTJplHorizon, stale), deltaTSecondsFor(jdOfYear(2030.0), kDeltaTJplHorizon));
}

// The preference: the start-up default (65.4, also what a never-set 40 becomes) means "not
// given"; any other value is today's DeltaT for the solar system.
TEST(DeltaTModel, PreferenceCurrentDeltaTIsUsedForToday) {
    const Preferences saved = prefs();
    const double formulaToday = [] {
        prefs().deltaTSeconds = kCurrentDeltaTDefault;
        EXPECT_FALSE(currentDeltaTFromPreferences().has_value());
        const auto now = std::chrono::system_clock::now().time_since_epoch();
        return 2440587.5 + std::chrono::duration<double>(now).count() / kSecondsPerDay;
    }();
    const double model = modelDeltaTSeconds(formulaToday);
    EXPECT_NE(modelDeltaTSource(formulaToday), DeltaTSource::Current);
    prefs().deltaTSeconds = 71.25f;
    ASSERT_TRUE(currentDeltaTFromPreferences().has_value());
    EXPECT_NEAR(modelDeltaTSeconds(formulaToday), 71.25, 1e-3);
    EXPECT_EQ(modelDeltaTSource(formulaToday), DeltaTSource::Current);
    EXPECT_NEAR(ttFromUt(formulaToday) - formulaToday, 71.25 / kSecondsPerDay, 1e-8);
    EXPECT_DOUBLE_EQ(modelDeltaTSeconds(jdOfYear(1990.0)), deltaTSecondsFor(jdOfYear(1990.0), prefs().deltaTFormula));
    prefs().deltaTSeconds = kCurrentDeltaTDefault;
    EXPECT_DOUBLE_EQ(modelDeltaTSeconds(formulaToday), model);
    prefs() = saved;
}

}  // namespace
}  // namespace nocturnel
