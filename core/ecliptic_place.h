#pragma once
// Apparent geocentric ecliptic longitude and latitude of date of a body (from its apparent
// place on the true equator and the true obliquity), the quantity in which phases, equinoxes,
// oppositions and stations are defined.
#include "core/planet_positions.h"

namespace nocturnel {

struct EclipticPlace {
    double longitudeDeg = 0.0;  // [0, 360)
    double latitudeDeg = 0.0;
    double distanceAu = 0.0;
    double raHours = 0.0, decDeg = 0.0;  // the apparent place it came from
};
// 0 success; 1 no planet series file.
int apparentEclipticPlace(SolarBody body, double jdTt, EclipticPlace* place);
// The same from an apparent place of date already computed.
struct BodyPlace;
EclipticPlace eclipticFromPlace(const BodyPlace& place, double jdTt);

// An angle brought into (-180, 180].
double wrap180(double degrees);
// Angular separation of two places (hours, degrees), degrees.
double separationDeg(double ra1Hours, double dec1Deg, double ra2Hours, double dec2Deg);

}  // namespace nocturnel
