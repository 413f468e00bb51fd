#pragma once
// Delaunay fundamental arguments of the Moon and Sun (IAU 1980 nutation theory).
namespace nocturnel {

struct FundamentalArguments {
    double lRad;       // mean anomaly of the Moon
    double lPrimeRad;  // mean anomaly of the Sun
    double fRad;       // mean argument of latitude of the Moon
    double dRad;       // mean elongation of the Moon from the Sun
    double omegaRad;   // mean longitude of the Moon's ascending node
};

// Arguments in radians, each reduced modulo 2 pi; tCenturies = Julian centuries of TDB from J2000.
FundamentalArguments fundamentalArguments(double tCenturies);

}  // namespace nocturnel
