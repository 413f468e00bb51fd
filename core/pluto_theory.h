#pragma once
// Pluto's heliocentric place from Meeus's series (Astronomical Algorithms ch. 37), valid
// 1885-2099: ecliptic and equinox J2000, errors below 0.1 arcsecond against DE200.
#include <array>

namespace nocturnel {

struct PlutoTerm {
    int j, s, p;               // multipliers of the mean longitudes of Jupiter, Saturn, Pluto
    double lonSin, lonCos;     // degrees
    double latSin, latCos;     // degrees
    double radSin, radCos;     // AU
};
extern const std::array<PlutoTerm, 43> kPlutoTerms;

inline constexpr double kPlutoFirstJd = 2409177.5;  // 1885 January 1
inline constexpr double kPlutoLastJd = 2488069.5;   // 2100 January 1

// True inside the series' span (TT Julian date); outside it the sums still give numbers but
// they drift from Pluto's real place by an unknown amount.
inline bool plutoTheoryHolds(double jdTt) { return jdTt >= kPlutoFirstJd && jdTt < kPlutoLastJd; }

struct PlutoSpherical {
    double longitudeRad, latitudeRad, radiusAu;
};
// Heliocentric ecliptic place for a TT Julian date.
PlutoSpherical plutoHeliocentric(double jdTt);

}  // namespace nocturnel
