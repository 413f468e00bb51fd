#pragma once
// The observer's site: its description, its geocentric vectors (terra) and the Earth's
// rotation between the terrestrial and the true-of-date celestial frame (polar motion, spin).
#include "core/vector3.h"

namespace nocturnel {

struct SiteInfo {
    double latitudeDeg = 0.0;       // geodetic, north positive
    double longitudeEastDeg = 0.0;  // EAST positive
    double heightM = 0.0;           // above sea level
    double temperatureC = 10.0;
    double pressureMbar = 1010.0;
};

// Geocentric position (AU) and velocity (AU/day) of the site in the true equator and
// equinox of date, for the Greenwich apparent sidereal time in hours.
void terra(const SiteInfo& site, double siderealHours, Vec3* positionAu, Vec3* velocityAuPerDay);

// Polar motion: terrestrial frame to the frame of the celestial pole (x, y in arcseconds).
Vec3 wobble(double xArcsec, double yArcsec, const Vec3& position);
// Rotation about the pole by the sidereal time (hours).
Vec3 spin(double siderealHours, const Vec3& position);

}  // namespace nocturnel
