#include "core/topocentric_site.h"

#include <cmath>

#include "core/astro_constants.h"

namespace nocturnel {

namespace {
constexpr double kEquatorialRadiusKm = 6378.140;
constexpr double kAxisRatio = 0.99664719;  // polar / equatorial radius
constexpr double kEarthRotationRadPerSec = 7.292115e-5;
constexpr double kRadPerSiderealHour = 0.2617993877991494;
}  // namespace

void terra(const SiteInfo& site, double siderealHours, Vec3* positionAu, Vec3* velocityAuPerDay) {
    const double ratio2 = kAxisRatio * kAxisRatio;
    const double phi = site.latitudeDeg * kDegToRad;
    const double sinphi = std::sin(phi), cosphi = std::cos(phi);
    const double c = 1.0 / std::sqrt(cosphi * cosphi + ratio2 * sinphi * sinphi);
    const double s = ratio2 * c;
    const double heightKm = site.heightM / 1000.0;
    const double ach = kEquatorialRadiusKm * c + heightKm;
    const double ash = kEquatorialRadiusKm * s + heightKm;
    const double localSidereal = (siderealHours * 15.0 + site.longitudeEastDeg) * kDegToRad;
    const double sinst = std::sin(localSidereal), cosst = std::cos(localSidereal);
    const Vec3 positionKm{ach * cosphi * cosst, ach * cosphi * sinst, ash * sinphi};
    const Vec3 velocityKmPerSec{-kEarthRotationRadPerSec * ach * cosphi * sinst,
                                kEarthRotationRadPerSec * ach * cosphi * cosst, 0.0};
    *positionAu = (1.0 / kKmPerAu) * positionKm;
    *velocityAuPerDay = (kSecondsPerDay / kKmPerAu) * velocityKmPerSec;
}

Vec3 wobble(double xArcsec, double yArcsec, const Vec3& p) {
    const double x = xArcsec / kArcsecPerRadian, y = yArcsec / kArcsecPerRadian;
    return {p[0] + x * p[2], p[1] - y * p[2], -x * p[0] + y * p[1] + p[2]};
}

Vec3 spin(double siderealHours, const Vec3& p) {
    const double angle = siderealHours * kRadPerSiderealHour;
    const double c = std::cos(angle), s = std::sin(angle);
    return {c * p[0] - s * p[1], s * p[0] + c * p[1], p[2]};
}

}  // namespace nocturnel
