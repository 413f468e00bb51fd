#include "core/ecliptic_place.h"

#include <cmath>

#include "core/astro_constants.h"
#include "core/body_place.h"
#include "core/nutation.h"

namespace nocturnel {

double wrap180(double d) {
    d = std::fmod(d, 360.0);
    if (d > 180.0) d -= 360.0;
    if (d <= -180.0) d += 360.0;
    return d;
}

double separationDeg(double ra1, double dec1, double ra2, double dec2) {
    const double a1 = ra1 * 15.0 * kDegToRad, a2 = ra2 * 15.0 * kDegToRad, d1 = dec1 * kDegToRad, d2 = dec2 * kDegToRad;
    const double x = std::cos(d1) * std::sin(a1 - a2);
    const double y = std::cos(d2) * std::sin(d1) - std::sin(d2) * std::cos(d1) * std::cos(a1 - a2);
    const double z = std::sin(d2) * std::sin(d1) + std::cos(d2) * std::cos(d1) * std::cos(a1 - a2);
    return std::atan2(std::hypot(x, y), z) * kRadToDeg;
}

int apparentEclipticPlace(SolarBody body, double jdTt, EclipticPlace* out) {
    BodyPlace place;
    if (geocentricPlace(body, jdTt, &place) != 0) return 1;
    *out = eclipticFromPlace(place, jdTt);
    return 0;
}

EclipticPlace eclipticFromPlace(const BodyPlace& place, double jdTt) {
    EclipticPlace e;
    EclipticPlace* out = &e;
    const double eps = earthTilt(jdTt).trueObliquityDeg * kDegToRad;
    const double a = place.raHours * 15.0 * kDegToRad, d = place.decDeg * kDegToRad;
    const double lon = std::atan2(std::sin(a) * std::cos(eps) + std::tan(d) * std::sin(eps), std::cos(a));
    const double lat = std::asin(std::sin(d) * std::cos(eps) - std::cos(d) * std::sin(eps) * std::sin(a));
    out->longitudeDeg = std::fmod(lon * kRadToDeg + 360.0, 360.0);
    out->latitudeDeg = lat * kRadToDeg;
    out->distanceAu = place.distanceAu;
    out->raHours = place.raHours;
    out->decDeg = place.decDeg;
    return e;
}

}  // namespace nocturnel
