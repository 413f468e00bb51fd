#pragma once
// Analytical low-precision ephemeris of the Sun and the Earth: the Sun's geocentric place
// from the 50-term series of Bretagnon and Simon, the solar-system barycentre from mean
// circular orbits of the four giant planets, and TDB minus TT. Vectors are equatorial
// rectangular, mean equator and equinox of J2000, AU and AU/day.
#include <array>

#include "core/vector3.h"

namespace nocturnel {

struct SolarSeriesTerm {
    double longitude;  // l_i, 1e-7 rad
    double radius;     // r_i, 1e-7 AU
    double phaseRad;   // alpha_i
    double frequency;  // nu_i, rad per 10000 Julian years
};
extern const std::array<SolarSeriesTerm, 50> kBretagnonSimonSolarSeries;

struct GiantPlanetOrbit {
    double inverseMass;  // solar mass / planet mass
    double semiMajorAxisAu;
    double meanLongitudeJ2000Rad;  // on the ecliptic of J2000
    double meanMotionRadPerDay;
};
extern const std::array<GiantPlanetOrbit, 4> kGiantPlanetMeanOrbits;

inline constexpr double kEphemerisFirstJd = 2340000.5;
inline constexpr double kEphemerisLastJd = 2560000.5;

struct SunPlace {
    double raHours;  // mean equator and equinox of date
    double decDeg;
    double distanceAu;
};
// Geocentric place of the Sun, mean equinox of date, from the series.
SunPlace sunMeanPlaceOfDate(double jd);

// Position and velocity of body (0, 1 or 10: the Sun; 2 or 3: the Earth) about origin
// (0: solar-system barycentre, 1: centre of the Sun) at the TDB date. 0 success; 1 date out
// of range; 2 unknown body.
int solarSystemVectors(double jdTdb, int body, int origin, Vec3* position, Vec3* velocity);

struct EarthVectors {
    Vec3 barycentricPositionAu, barycentricVelocityAuPerDay;
    Vec3 heliocentricPositionAu, heliocentricVelocityAuPerDay;
};
// The Earth's vectors for the TDB date, kept in a cache keyed on the date. 0 success, else
// the error of solarSystemVectors.
int earthVectors(double jdTdb, EarthVectors* earth);

// TT of a TDB date and the difference TDB - TT in seconds.
void tdbToTt(double jdTdb, double* jdTt, double* tdbMinusTtSec);

}  // namespace nocturnel
