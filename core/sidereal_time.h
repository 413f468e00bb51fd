#pragma once
// Greenwich mean and apparent sidereal time (IAU 1982 GMST).
namespace nocturnel {

// Sidereal time in hours [0, 24) for the UT1 Julian date jdHigh + jdLow; equationOfEquinoxesSec
// (seconds of time) is 0 for mean sidereal time.
double siderealTimeHours(double jdHigh, double jdLow, double equationOfEquinoxesSec);

// Greenwich apparent sidereal time, hours: UT1 date for the rotation, jdTt for the nutation.
double apparentSiderealTimeHours(double jdUt1, double jdTt);

}  // namespace nocturnel
