#pragma once
// Time scales and calendar: the observing moment (local civil time at the site plus the
// UT offset) turned into UT Julian dates, sidereal times, the decimal year and DeltaT.
// Julian dates are UT-based, days; sidereal times are hours; longitudes degrees WEST positive.
namespace nocturnel {

struct CalendarDate {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

// 1 if leap, else 0. Julian rule before 1584, Gregorian from 1584 on.
int isLeapYear(int year);
// Julian date of 0h of the civil date (Meeus; Gregorian correction chosen by the shifted year > 1583).
double julianDayAtMidnight(int year, int month, int day);
// UT Julian date of a local civil moment; offsetMin: local = UT + offset.
double julianDateFromLocal(int year, int month, int day, int hour, int minute, int second, int offsetMin);
// Greenwich mean sidereal time at 0h UT of the civil date, hours [0, 24).
double greenwichSiderealAtMidnight(int year, int month, int day);
// Local mean sidereal time, hours [0, 24] (an exact 24.0 is left as is).
double localSiderealTime(int year, int month, int day, int hour, int minute, int second,
                         double longitudeWestDeg, int offsetMin);
// The year as a decimal number (only whole hours count in the day fraction).
double decimalYear(int year, int month, int day, int hour, int minute, int second);
// TT - UT in seconds for the civil date.
double deltaTForDate(int year, int month, int day);
// Rewrites the five fields shifted by a signed number of minutes.
void shiftDateByMinutes(int* year, int* month, int* day, int* hour, int* minute, int shiftMin);
// Julian date to calendar date and time (Meeus; Julian calendar before JD 2299161).
CalendarDate calendarFromJulian(double jd);
// Angle in degrees brought into [0, 360).
double reduceDegrees(double degrees);
// The forward conversion of the Jupiter and Saturn assistants (Gregorian correction always applied).
double julianDayForMoons(int year, int month, int day);

// Number of days of the month (February from isLeapYear of the year).
int daysInMonth(int year, int month);

}  // namespace nocturnel
