// Time scales and calendar: leap years, Julian dates (Meeus), mean sidereal time, the
// decimal year, DeltaT and the calendar arithmetic of the date/time dialog.
#include "core/time.h"

#include <array>
#include <cmath>
#include <cstdint>

#include "settings/preferences.h"

namespace nocturnel {
namespace {

// TT - UT in tenths of a second, one entry every two years from 1620 (entry i is the year
// 1620 + 2i); the last entry (2010) is 0 and marks the end. The six entries 1688..1698 are
// ten times their neighbours: that is the program's data and DeltaT follows it.
constexpr std::array<int16_t, 196> kDeltaTTenths = {
    1210, 1120, 1030, 950, 880, 820, 770, 720, 680, 630, 600, 560, 530, 510,   // 1620
    480, 460, 440, 420, 400, 380, 350, 330, 310, 290, 260, 240, 220, 200,      // 1648
    180, 160, 140, 120, 110, 100, 900, 800, 700, 700, 700, 700, 70, 70,        // 1676
    80, 80, 90, 90, 90, 90, 90, 100, 100, 100, 100, 100, 100, 100,             // 1704
    100, 110, 110, 110, 110, 110, 120, 120, 120, 120, 130, 130, 130, 140,      // 1732
    140, 140, 140, 150, 150, 150, 150, 150, 160, 160, 160, 160, 160, 160,      // 1760
    160, 160, 150, 150, 140, 130, 131, 125, 122, 120, 120, 120, 120, 120,      // 1788
    120, 119, 116, 110, 102, 92, 82, 71, 62, 56, 54, 53, 54, 56,               // 1816
    59, 62, 65, 68, 71, 73, 75, 76, 77, 73, 62, 52, 27, 14,                    // 1844
    -12, -28, -38, -48, -55, -53, -56, -57, -59, -60, -63, -65, -62, -47,      // 1872
    -28, -1, 26, 53, 77, 104, 133, 160, 182, 202, 212, 224, 235, 238,          // 1900
    243, 240, 239, 239, 237, 240, 243, 253, 262, 273, 282, 291, 300, 307,      // 1928
    314, 322, 331, 340, 350, 365, 383, 402, 422, 445, 465, 485, 505, 522,      // 1956
    538, 549, 558, 569, 583, 600, 616, 630, 638, 643, 648, 649, 660, 0,        // 1984
};

constexpr double kSiderealRate = 1.00273790935;  // sidereal hours per UT hour

// Brings an hour value into [0, 24] the way the sidereal-time loop does (an exact 24.0 stays),
// without looping for ever on huge or infinite values.
double wrapHoursKeeping24(double h) {
    if (!(std::fabs(h) <= 48.0)) h = std::fmod(h, 24.0);  // infinity becomes NaN and stops the loops
    while (h < 0) h += 24.0;
    while (h > 24.0) h -= 24.0;
    return h;
}

}  // namespace

int isLeapYear(int year) {
    if (year % 4 != 0) return 0;
    if (year >= 1584 && year % 100 == 0) return year % 400 == 0 ? 1 : 0;
    return 1;
}

int daysInMonth(int year, int month) {
    static constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12) return 0;
    if (month == 2) return 28 + isLeapYear(year);
    return kDays[static_cast<std::size_t>(month - 1)];
}

double julianDayAtMidnight(int year, int month, int day) {
    // 64-bit so that any int year is accepted without overflow.
    int64_t y = year;
    int64_t m = month;
    if (m < 3) {
        y -= 1;
        m += 12;
    }
    double b = 0;
    if (y > 1583) {
        const double a = std::floor(std::trunc(static_cast<double>(y) / 100.0));
        b = 2.0 - a + std::floor(a / 4.0);
    }
    return static_cast<double>(day) + std::floor(30.6001 * static_cast<double>(m + 1)) +
           std::floor(365.25 * static_cast<double>(y + 4716)) + b - 1524.5;
}

double julianDateFromLocal(int year, int month, int day, int hour, int minute, int second, int offsetMin) {
    const double minutes = static_cast<double>(minute) - static_cast<double>(offsetMin);
    return julianDayAtMidnight(year, month, day) +
           (static_cast<double>(hour) + minutes / 60.0 + static_cast<double>(second) / 3600.0) / 24.0;
}

double reduceDegrees(double degrees) {
    double r = degrees - std::floor(degrees / 360.0) * 360.0;
    if (r >= 360.0) r = 0.0;  // a tiny negative input rounds up to exactly 360
    return r;
}

double greenwichSiderealAtMidnight(int year, int month, int day) {
    const double t = (julianDayAtMidnight(year, month, day) - 2451545.0) / 36525.0;
    const double thetaDeg = ((0.000387933 - t / 3.871e7) * t + 36000.770053608) * t + 100.46061837;
    return reduceDegrees(thetaDeg) / 15.0;
}

double localSiderealTime(int year, int month, int day, int hour, int minute, int second,
                         double longitudeWestDeg, int offsetMin) {
    const double utHours =
        ((static_cast<double>(minute) - static_cast<double>(offsetMin)) + static_cast<double>(second) / 60.0) /
            60.0 +
        static_cast<double>(hour);
    const double lst =
        greenwichSiderealAtMidnight(year, month, day) + kSiderealRate * utHours - longitudeWestDeg / 15.0;
    return wrapHoursKeeping24(lst);
}

double decimalYear(int year, int month, int day, int hour, int minute, int second) {
    const int leap = isLeapYear(year);
    const int64_t k = leap ? 1 : 2;
    const int64_t m = month;
    const int64_t n = (275 * m) / 9 - k * ((m + 9) / 12) + static_cast<int64_t>(day) - 30;
    // Minutes and seconds are integer-divided: only whole hours count in the day fraction.
    const double f = static_cast<double>(minute / 60 + second / 3600 + static_cast<int64_t>(hour)) / 24.0;
    return static_cast<double>(year) + (static_cast<double>(n) + f) / (leap ? 366.0 : 365.0);
}

double deltaTForDate(int year, int month, int day) {
    const double y = decimalYear(year, month, day, 0, 0, 0);
    const double t = (y - 2000.0) / 100.0;
    // The year of the current observing moment uses the user's own figure. A decimal year
    // carries at least one day of fraction, so this holds only for out-of-range dates.
    if (y == static_cast<double>(prefs().moment.year)) return prefs().deltaTSeconds;
    if (y < 948.0) {
        const double u = (y - 1820.0) / 100.0;
        return 31.0 * u * u;
    }
    if (y < 1620.0) return 22.5 * t * t + 67.5 * t + 50.6;
    if (y > 2006.0) {
        double dt = 25.3 * t * t + 102.0 * t + 102.0;
        if (y < 2100.0) dt += 0.37 * (y - 2100.0);
        return dt;
    }
    if (!(y >= 1620.0)) return prefs().deltaTSeconds;  // NaN cannot index the table
    const int i = static_cast<int>(std::trunc((y - 1620.0) / 2.0));
    if (i >= 195) return prefs().deltaTSeconds;
    const double f = y / 2.0 - i - 810.0;
    const double ti = kDeltaTTenths[static_cast<std::size_t>(i)];
    const double tnext = kDeltaTTenths[static_cast<std::size_t>(i) + 1];
    return (ti + (tnext - ti) * f) / 10.0;
}

void shiftDateByMinutes(int* year, int* month, int* day, int* hour, int* minute, int shiftMin) {
    if (!year || !month || !day || !hour || !minute) return;
    int64_t min = static_cast<int64_t>(*minute) + shiftMin;
    int64_t hourCarries = 0;
    if (min > 59) {
        hourCarries = (min - 60) / 60 + 1;
        min -= 60 * hourCarries;
    } else if (min < 0) {
        hourCarries = -((-min - 1) / 60 + 1);
        min -= 60 * hourCarries;
    }
    *minute = static_cast<int>(min);
    for (; hourCarries > 0; --hourCarries) {
        if (++*hour <= 23) continue;
        *hour = 0;
        if (++*day <= daysInMonth(*year, *month)) continue;
        *day = 1;
        if (++*month <= 12) continue;
        *month = 1;
        ++*year;
    }
    for (; hourCarries < 0; ++hourCarries) {
        if (--*hour >= 0) continue;
        *hour = 23;
        if (--*day >= 1) continue;
        if (--*month < 1) {
            *month = 12;
            --*year;
        }
        *day = daysInMonth(*year, *month);
    }
}

CalendarDate calendarFromJulian(double jd) {
    CalendarDate out;
    // Beyond a few million years the integer fields would overflow; such input gives zeros.
    if (!std::isfinite(jd) || std::fabs(jd) > 7.0e8) return out;
    const double zf = std::floor(jd + 0.5);
    const double frac = jd + 0.5 - zf;
    const int64_t z = static_cast<int64_t>(zf);
    int64_t a = z;
    if (z >= 2299161) {
        const int64_t alpha = static_cast<int64_t>(std::trunc((static_cast<double>(z) - 1867216.25) / 36524.25));
        a = z + 1 + alpha - alpha / 4;
    }
    const int64_t b = a + 1524;
    const int64_t c = static_cast<int64_t>(std::trunc((static_cast<double>(b) - 122.1) / 365.25));
    const int64_t d = static_cast<int64_t>(std::trunc(365.25 * static_cast<double>(c)));
    const int64_t e = static_cast<int64_t>(std::trunc(static_cast<double>(b - d) / 30.6001));
    const double dayWithFraction =
        static_cast<double>(b - d) - std::trunc(30.6001 * static_cast<double>(e)) + frac;
    out.day = static_cast<int>(std::trunc(dayWithFraction));
    out.month = static_cast<int>(e < 14 ? e - 1 : e - 13);
    out.year = static_cast<int>(out.month > 2 ? c - 4716 : c - 4715);
    out.hour = static_cast<int>(std::trunc(24.0 * frac));
    out.minute = static_cast<int>(std::trunc(1440.0 * (frac - out.hour / 24.0)));
    out.second = static_cast<int>(std::trunc(86400.0 * (frac - out.hour / 24.0 - out.minute / 1440.0) + 0.5));
    return out;
}

double julianDayForMoons(int year, int month, int day) {
    double y = year;
    double m = month;
    if (month < 3) {
        y -= 1;
        m += 12;
    }
    const double a = std::floor(y / 100.0);
    const double b = 2.0 - a + std::floor(a / 4.0);
    return static_cast<double>(day) + std::floor(30.6001 * (m + 1.0)) + std::floor(365.25 * y) + b + 1720994.5;
}

}  // namespace nocturnel
