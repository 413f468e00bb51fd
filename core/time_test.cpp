#include "core/time.h"

#include <erfa.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "settings/preferences.h"

namespace nocturnel {
namespace {

constexpr double kPi = 3.14159265358979323846;

struct PrefsGuard {
    Preferences saved = prefs();
    ~PrefsGuard() { prefs() = saved; }
};

TEST(LeapYear, JulianBefore1584GregorianFrom1584) {
    struct Case { int year; int leap; };
    const Case cases[] = {
        {2000, 1}, {1900, 0}, {1700, 0}, {1600, 1}, {2100, 0}, {2024, 1}, {2023, 0},
        {1500, 1}, {1300, 1}, {1583, 0}, {1584, 1}, {1582, 0}, {0, 1}, {4, 1}, {1, 0},
        {-4, 1}, {-1, 0}, {-100, 1}, {-3, 0},
    };
    for (const auto& c : cases) EXPECT_EQ(isLeapYear(c.year), c.leap) << c.year;
}

TEST(JulianDay, KnownDatesAndTheYearBasedGregorianSwitch) {
    struct Case { int y, m, d; double jd; const char* what; };
    const Case cases[] = {
        {2000, 1, 1, 2451544.5, "J2000 day"},
        {1957, 10, 4, 2436115.5, "Sputnik (Meeus 7.a)"},
        {333, 1, 27, 1842712.5, "Julian calendar (Meeus 7.b)"},
        {0, 1, 1, 1721057.5, "year 0 January 1 (lowest dialog date)"},
        {2200, 1, 1, 2524593.5, "2200 January 1 (dialog limit)"},
        {1582, 10, 4, 2299159.5, "last Julian day of the historical switch"},
        // 1582 and 1583 count as Julian: 15 October 1582 is read as a Julian date.
        {1582, 10, 15, 2299170.5, "historical first Gregorian day, read as Julian"},
        // January and February count with the previous year: still Julian in 1584.
        {1583, 12, 31, 2299612.5, "1583-12-31 Julian"},
        {1584, 2, 29, 2299672.5, "1584-02-29 Julian"},
        {1584, 3, 1, 2299663.5, "1584-03-01 Gregorian (ten days back)"},
    };
    for (const auto& c : cases) EXPECT_DOUBLE_EQ(julianDayAtMidnight(c.y, c.m, c.d), c.jd) << c.what;
}

TEST(JulianDay, LocalMomentSubtractsTheOffsetWithoutNormalising) {
    struct Case { int y, mo, d, h, mi, s, off; double jd; const char* what; };
    const Case cases[] = {
        {2000, 1, 1, 12, 0, 0, 60, 2451544.5 + 11.0 / 24, "noon at UT+1"},
        {2000, 1, 1, 0, 30, 0, 60, 2451544.5 - 0.5 / 24, "00:30 at UT+1 is 23:30 UT the day before"},
        {2000, 1, 1, 23, 30, 0, -60, 2451545.5 + 0.5 / 24, "23:30 at UT-1 is 00:30 UT the day after"},
        {2000, 1, 1, 6, 0, 30, 0, 2451544.5 + (6 + 30.0 / 3600) / 24, "seconds"},
        {2000, 1, 1, 0, 0, 0, 1439, 2451544.5 - 1439.0 / 1440, "largest offset"},
    };
    for (const auto& c : cases)
        EXPECT_NEAR(julianDateFromLocal(c.y, c.mo, c.d, c.h, c.mi, c.s, c.off), c.jd, 1e-9) << c.what;
}

// A day-by-day walk from year 0 to 2200. Gregorian dates (from 1584 March on) must give
// exactly ERFA's proleptic Gregorian day (both are half-integers, so equality is exact).
// Julian dates have no ERFA counterpart, so they are held to the exact one-day step from
// their neighbours, anchored on year 0 January 1 = 1721057.5 and 1582-10-04 = 2299159.5.
// The one place the step is not one day is the year-based switch at 1584 March 1.
TEST(JulianDay, EveryDayFromYear0To2200AgainstErfaAndDayContinuity) {
    int checkedAgainstErfa = 0;
    double previous = julianDayAtMidnight(0, 1, 1) - 1.0;
    for (int y = 0; y < 2200; ++y) {
        for (int m = 1; m <= 12; ++m) {
            for (int d = 1; d <= daysInMonth(y, m); ++d) {
                const double jd = julianDayAtMidnight(y, m, d);
                const bool switchDay = (y == 1584 && m == 3 && d == 1);
                if (!switchDay) {
                    ASSERT_EQ(jd - previous, 1.0) << y << "-" << m << "-" << d;
                }
                previous = jd;
                if (y > 1584 || (y == 1584 && m >= 3)) {
                    double djm0 = 0, djm = 0;
                    ASSERT_EQ(eraCal2jd(y, m, d, &djm0, &djm), 0);
                    ASSERT_EQ(jd, djm0 + djm) << y << "-" << m << "-" << d;
                    ++checkedAgainstErfa;
                }
            }
        }
    }
    EXPECT_GT(checkedAgainstErfa, 200000);
    EXPECT_EQ(previous, 2524593.5 - 1.0);
}

TEST(JulianDay, LocalMomentAgreesWithErfaForSpreadDates) {
    // ERFA's day plus the clock fraction: the only difference is the order of the double
    // additions, a few units of the last place of a JD near 2.4e6 (1 ulp = 4.7e-10 day).
    int n = 0;
    for (int y = 1585; y <= 2199; y += 3) {
        for (int k = 0; k < 5; ++k, ++n) {
            const int m = 1 + (y + 5 * k) % 12, d = 1 + (7 * y + k) % 28, h = (y + k) % 24;
            const int mi = (13 * k + y) % 60, s = (29 * k + y) % 60, off = ((y * 37 + k * 101) % 2879) - 1439;
            double djm0 = 0, djm = 0;
            ASSERT_EQ(eraCal2jd(y, m, d, &djm0, &djm), 0);
            const double expected = djm0 + djm + (h + (mi - off) / 60.0 + s / 3600.0) / 24.0;
            EXPECT_NEAR(julianDateFromLocal(y, m, d, h, mi, s, off), expected, 2e-9) << y << " " << m << " " << d;
        }
    }
    EXPECT_GT(n, 1000);
}

// GMST at 0h against ERFA's IAU 1982 model (eraGmst82, the same polynomial in seconds of
// time). Our JD is passed to ERFA whatever the calendar, so this covers years 0..2200.
// Tolerance 1e-7 h (0.36 ms): the two evaluations of the cubic differ in coefficient
// rounding (T^3 term 1/38710000 deg versus 6.2e-6 s) by under 0.1 ms at T = -20.
TEST(SiderealTime, GreenwichAtMidnightAgainstErfaFromYear0To2200) {
    int n = 0;
    for (int y = 0; y <= 2199; ++y) {
        for (int m = 1; m <= 12; m += 4, ++n) {
            const int d = 1 + (y * 11 + m) % 28;
            const double jd0 = julianDayAtMidnight(y, m, d);
            const double expected = eraGmst82(jd0, 0.0) * 12.0 / kPi;
            double diff = greenwichSiderealAtMidnight(y, m, d) - expected;
            diff -= 24.0 * std::round(diff / 24.0);
            ASSERT_NEAR(diff, 0.0, 1e-7) << y << "-" << m << "-" << d;
        }
    }
    EXPECT_GT(n, 6000);
}

// LST = GMST at the UT instant minus the west longitude. Same tolerance reasoning plus the
// rate constant: 1.00273790935 against ERFA's full rate term, well under 1e-6 h over a day.
TEST(SiderealTime, LocalAgainstErfaAndAlwaysInRange) {
    int n = 0;
    for (int y = 1600; y <= 2199; y += 2) {
        for (int k = 0; k < 4; ++k, ++n) {
            const int m = 1 + (y + k) % 12, d = 1 + (y * 3 + k) % 28, h = (y + 7 * k) % 24;
            const int mi = (y * 5 + k) % 60, s = (y + 11 * k) % 60, off = (k - 2) * 120;
            const double lonWest = -180.0 + (y * 13 + 97 * k) % 360;
            const double lst = localSiderealTime(y, m, d, h, mi, s, lonWest, off);
            ASSERT_GE(lst, 0.0);
            ASSERT_LE(lst, 24.0);
            const double jd = julianDateFromLocal(y, m, d, h, mi, s, off);
            double expected = eraGmst82(jd, 0.0) * 12.0 / kPi - lonWest / 15.0;
            double diff = lst - expected;
            diff -= 24.0 * std::round(diff / 24.0);
            ASSERT_NEAR(diff, 0.0, 1e-6) << y << "-" << m << "-" << d;
        }
    }
    EXPECT_GT(n, 1000);
}

TEST(SiderealTime, ExtremeLongitudesStayFiniteAndBounded) {
    for (double lon : {1e12, -1e12, 720.0, -720.0}) {
        const double lst = localSiderealTime(2024, 6, 1, 22, 0, 0, lon, 120);
        EXPECT_GE(lst, 0.0) << lon;
        EXPECT_LE(lst, 24.0) << lon;
    }
    // Infinity cannot hang the wrap loops.
    const double lst = localSiderealTime(2024, 6, 1, 22, 0, 0, std::numeric_limits<double>::infinity(), 0);
    EXPECT_TRUE(std::isnan(lst));
}

TEST(DecimalYear, DayOfYearAndWholeHoursOnly) {
    struct Case { int y, m, d, h, mi, s; double expected; const char* what; };
    const Case cases[] = {
        {2023, 1, 1, 0, 0, 0, 2023 + 1.0 / 365, "January 1 counts as day 1"},
        {2024, 3, 1, 0, 0, 0, 2024 + 61.0 / 366, "leap year March 1"},
        {2023, 3, 1, 0, 0, 0, 2023 + 60.0 / 365, "common year March 1"},
        {2023, 12, 31, 12, 0, 0, 2023 + 365.5 / 365, "noon of the last day"},
        {2023, 1, 1, 6, 59, 59, 2023 + (1 + 6.0 / 24) / 365, "minutes and seconds dropped"},
    };
    for (const auto& c : cases)
        EXPECT_NEAR(decimalYear(c.y, c.m, c.d, c.h, c.mi, c.s), c.expected, 1e-12) << c.what;
}

TEST(DeltaT, EachBranchOfTheFormula) {
    PrefsGuard guard;
    prefs().moment.year = 2000;
    prefs().deltaTSeconds = 65.4f;
    const auto yearOf = [](int y, int m, int d) { return decimalYear(y, m, d, 0, 0, 0); };
    struct Case { int y, m, d; double expected; double tol; const char* what; };
    const double y500 = yearOf(500, 6, 1), u500 = (y500 - 1820) / 100;
    const double y1500 = yearOf(1500, 6, 1), t1500 = (y1500 - 2000) / 100;
    const double y2010 = yearOf(2010, 1, 1), t2010 = (y2010 - 2000) / 100;
    const double y2150 = yearOf(2150, 1, 1), t2150 = (y2150 - 2000) / 100;
    const Case cases[] = {
        {500, 6, 1, 31 * u500 * u500, 1e-9, "before 948"},
        {1500, 6, 1, 22.5 * t1500 * t1500 + 67.5 * t1500 + 50.6, 1e-9, "948..1620"},
        {2010, 1, 1, 25.3 * t2010 * t2010 + 102 * t2010 + 102 + 0.37 * (y2010 - 2100), 1e-9, "2006..2100"},
        {2150, 1, 1, 25.3 * t2150 * t2150 + 102 * t2150 + 102, 1e-9, "after 2100, no correction"},
        {2010, 1, 1, 79.2, 0.1, "2010 by the formula (not the 70.6 of a hand calculation)"},
        {1689, 1, 1, 85.0, 0.2, "the tenfold rows of 1688..1698"},
        {1700, 7, 1, 7.0, 0.1, "back to the neighbours' scale after 1700"},
        {1620, 1, 1, 121.0, 0.1, "first table entry"},
        {2000, 1, 1, 63.8, 0.1, "2000 from the table"},
        {1900, 7, 1, -2.3, 0.3, "the negative entries around 1900"},
    };
    for (const auto& c : cases) EXPECT_NEAR(deltaTForDate(c.y, c.m, c.d), c.expected, c.tol) << c.what;
}

TEST(DeltaT, TableInterpolationIsLinearBetweenEntries) {
    PrefsGuard guard;
    prefs().moment.year = 2000;
    // Between 1990 (entry 569) and 1992 (583): 56.9 s plus the fraction of the two years.
    const double y = decimalYear(1991, 1, 1, 0, 0, 0);
    EXPECT_NEAR(deltaTForDate(1991, 1, 1), (569 + (583 - 569) * (y / 2 - 185 - 810)) / 10.0, 1e-12);
}

TEST(DeltaT, UserFigureOnlyWhenTheDecimalYearIsExactlyTheMomentYear) {
    PrefsGuard guard;
    prefs().deltaTSeconds = 123.0f;
    // Day 0 of January: N = 0, so the decimal year is exactly 2010.
    prefs().moment.year = 2010;
    EXPECT_FLOAT_EQ(static_cast<float>(deltaTForDate(2010, 1, 0)), 123.0f);
    // A real date never matches, whatever the moment year.
    EXPECT_NEAR(deltaTForDate(2010, 1, 1), 79.0, 1.0);
}

TEST(ShiftDate, CarriesAndBorrowsThroughEveryField) {
    struct Date { int y, mo, d, h, mi; };
    struct Case { Date from; int shift; Date to; const char* what; };
    const Case cases[] = {
        {{2004, 2, 29, 0, 10}, -20, {2004, 2, 28, 23, 50}, "leap day back"},
        {{2003, 12, 31, 23, 50}, 20, {2004, 1, 1, 0, 10}, "new year"},
        {{2004, 2, 28, 23, 30}, 60, {2004, 2, 29, 0, 30}, "into a leap day"},
        {{2003, 2, 28, 23, 30}, 60, {2003, 3, 1, 0, 30}, "common February"},
        {{1700, 2, 28, 23, 30}, 60, {1700, 3, 1, 0, 30}, "1700 is not leap"},
        {{1500, 2, 28, 23, 30}, 60, {1500, 2, 29, 0, 30}, "1500 is leap (Julian rule)"},
        {{2004, 3, 1, 0, 0}, -1, {2004, 2, 29, 23, 59}, "borrow into February"},
        {{2004, 1, 1, 0, 0}, -1, {2003, 12, 31, 23, 59}, "borrow the year"},
        {{2024, 6, 15, 12, 0}, 0, {2024, 6, 15, 12, 0}, "no shift"},
        {{2024, 6, 15, 12, 0}, -1439, {2024, 6, 14, 12, 1}, "almost a day back"},
        {{2024, 6, 15, 12, 0}, 3 * 1440, {2024, 6, 18, 12, 0}, "three days"},
        {{2024, 12, 31, 23, 59}, 1, {2025, 1, 1, 0, 0}, "one minute to the new year"},
    };
    for (const auto& c : cases) {
        Date r = c.from;
        shiftDateByMinutes(&r.y, &r.mo, &r.d, &r.h, &r.mi, c.shift);
        EXPECT_EQ(r.y, c.to.y) << c.what;
        EXPECT_EQ(r.mo, c.to.mo) << c.what;
        EXPECT_EQ(r.d, c.to.d) << c.what;
        EXPECT_EQ(r.h, c.to.h) << c.what;
        EXPECT_EQ(r.mi, c.to.mi) << c.what;
    }
}

TEST(ShiftDate, ThereAndBackAgainstTheJulianDate) {
    // Shifting by s minutes must move the moment by exactly s minutes (away from the
    // 1584 switch, where the forward conversion changes calendar).
    for (int shift : {-100000, -1441, -61, -1, 1, 59, 60, 1440, 525600, 2000000}) {
        int y = 2003, mo = 2, d = 28, h = 22, mi = 17;
        const double before = julianDateFromLocal(y, mo, d, h, mi, 0, 0);
        shiftDateByMinutes(&y, &mo, &d, &h, &mi, shift);
        EXPECT_NEAR(julianDateFromLocal(y, mo, d, h, mi, 0, 0) - before, shift / 1440.0, 1e-8) << shift;
        shiftDateByMinutes(&y, &mo, &d, &h, &mi, -shift);
        EXPECT_EQ((std::array<int, 5>{y, mo, d, h, mi}), (std::array<int, 5>{2003, 2, 28, 22, 17})) << shift;
    }
}

TEST(CalendarFromJulian, RoundTripsAcrossTheCalendarSwitches) {
    // JD -> calendar uses the Julian calendar below JD 2299161, the forward conversion by
    // year; both agree everywhere except 1582-10-15 .. 1584-02-29.
    int n = 0;
    for (double jd = 1721057.5; jd < 2524593.5; jd += 97.25, ++n) {
        const CalendarDate c = calendarFromJulian(jd);
        const bool inSwitch = jd >= 2299160.5 && jd < 2299673.5;
        if (inSwitch) continue;
        EXPECT_NEAR(julianDateFromLocal(c.year, c.month, c.day, c.hour, c.minute, c.second, 0), jd, 1e-6) << jd;
    }
    EXPECT_GT(n, 8000);
}

TEST(CalendarFromJulian, AgreesWithErfaForGregorianDates) {
    for (double jd = 2299160.5; jd < 2524593.5; jd += 13.0) {
        int iy = 0, im = 0, id = 0;
        double fd = 0;
        ASSERT_EQ(eraJd2cal(jd, 0.0, &iy, &im, &id, &fd), 0);
        const CalendarDate c = calendarFromJulian(jd);
        ASSERT_EQ(c.year, iy) << jd;
        ASSERT_EQ(c.month, im) << jd;
        ASSERT_EQ(c.day, id) << jd;
    }
}

TEST(CalendarFromJulian, KnownDatesAndClockFields) {
    struct Case { double jd; CalendarDate expected; };
    const Case cases[] = {
        {2451545.0, {2000, 1, 1, 12, 0, 0}},
        {2436116.31, {1957, 10, 4, 19, 26, 24}},
        {2299160.5, {1582, 10, 15, 0, 0, 0}},
        {2299159.5, {1582, 10, 4, 0, 0, 0}},
        {1842713.0, {333, 1, 27, 12, 0, 0}},
        {1721057.5, {0, 1, 1, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        const CalendarDate r = calendarFromJulian(c.jd);
        EXPECT_EQ(r.year, c.expected.year) << c.jd;
        EXPECT_EQ(r.month, c.expected.month) << c.jd;
        EXPECT_EQ(r.day, c.expected.day) << c.jd;
        EXPECT_EQ(r.hour, c.expected.hour) << c.jd;
        EXPECT_EQ(r.minute, c.expected.minute) << c.jd;
        EXPECT_EQ(r.second, c.expected.second) << c.jd;
    }
    // Unusable input gives an all-zero date rather than undefined conversions.
    EXPECT_EQ(calendarFromJulian(std::nan("")).year, 0);
    EXPECT_EQ(calendarFromJulian(1e300).month, 0);
}

TEST(ReduceDegrees, IntoZeroTo360) {
    const double cases[][2] = {{0, 0}, {360, 0}, {-90, 270}, {725, 5}, {-1e-20, 0}, {359.5, 359.5}};
    for (const auto& c : cases) EXPECT_DOUBLE_EQ(reduceDegrees(c[0]), c[1]) << c[0];
}

TEST(MoonsJulianDay, AlwaysGregorianCorrection) {
    EXPECT_DOUBLE_EQ(julianDayForMoons(2000, 1, 1), 2451544.5);
    EXPECT_DOUBLE_EQ(julianDayForMoons(1957, 10, 4), 2436115.5);
    // Before 1582 it keeps the Gregorian correction, unlike julianDayAtMidnight.
    double djm0 = 0, djm = 0;
    ASSERT_EQ(eraCal2jd(1000, 7, 1, &djm0, &djm), 0);
    EXPECT_DOUBLE_EQ(julianDayForMoons(1000, 7, 1), djm0 + djm);
}

}  // namespace
}  // namespace nocturnel
