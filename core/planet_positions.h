#pragma once
// Geometric positions of the Sun's family in the equatorial frame of J2000 (the VSOP87/FK5
// rotation of the J2000 ecliptic): the planets and the Earth about the Sun from the full
// VSOP87B series, Pluto from Meeus's series, the Moon about the Earth from ELP/MPP02.
// Dates are TT Julian dates (TDB - TT, under 2 ms, is neglected); positions AU, velocities AU/day.
#include "core/planet_series.h"
#include "core/vector3.h"

namespace nocturnel {

enum class SolarBody { Sun, Moon, Mercury, Venus, Mars, Jupiter, Saturn, Uranus, Neptune, Pluto, Earth };
inline constexpr int kSolarBodyCount = 10;  // Sun .. Pluto (the Earth is the observer's)

struct StateVector {
    Vec3 positionAu;
    Vec3 velocityAuPerDay;
};

// Ecliptic J2000 rectangular coordinates to equatorial J2000.
Vec3 eclipticJ2000ToEquatorial(const Vec3& ecliptic);
Vec3 sphericalToVector(double longitudeRad, double latitudeRad, double radius);

// Heliocentric state of a planet, the Earth or Pluto (the Sun: zero). The velocity of Pluto is
// a difference over one day.
StateVector heliocentricState(const PlanetSeriesSet& series, SolarBody body, double jdTt);
// Heliocentric position alone (the Sun: zero); terms with an amplitude below minAmplitude
// (radians or AU) are left out of the VSOP87 sums (0: the full series).
Vec3 heliocentricPosition(const PlanetSeriesSet& series, SolarBody body, double jdTt, double minAmplitude = 0.0);
// Geocentric position of the Moon.
Vec3 moonGeocentricPosition(const PlanetSeriesSet& series, double jdTt);

}  // namespace nocturnel
