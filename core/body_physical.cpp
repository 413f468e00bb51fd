#include "core/body_physical.h"

#include <algorithm>
#include <cmath>

#include "core/astro_constants.h"
#include "core/astrometry_vectors.h"

namespace nocturnel {
namespace {

double angleBetweenDeg(const Vec3& a, const Vec3& b) {
    const double la = length(a), lb = length(b);
    if (la == 0.0 || lb == 0.0) return 0.0;
    return std::acos(std::clamp(dot(a, b) / (la * lb), -1.0, 1.0)) * kRadToDeg;
}

}  // namespace

double bodyRadiusKm(SolarBody body) {
    switch (body) {
        case SolarBody::Sun: return 696000.0;
        case SolarBody::Moon: return 1737.4;
        case SolarBody::Mercury: return 2439.7;
        case SolarBody::Venus: return 6051.8;
        case SolarBody::Mars: return 3396.19;
        case SolarBody::Jupiter: return 71492.0;
        case SolarBody::Saturn: return 60268.0;
        case SolarBody::Uranus: return 25559.0;
        case SolarBody::Neptune: return 24764.0;
        case SolarBody::Pluto: return 1188.3;
        default: return 6378.137;
    }
}

double saturnRingTiltDeg(const Vec3& saturnToObserver) {
    // Saturn's north pole, ICRF (IAU WGCCRE 2009): RA 40.589 deg, Dec 83.537 deg.
    const Vec3 pole = raDecToVector(40.589 / 15.0, 83.537);
    const double l = length(saturnToObserver);
    return l == 0.0 ? 0.0 : std::asin(std::clamp(dot(pole, saturnToObserver) / l, -1.0, 1.0)) * kRadToDeg;
}

double apparentMagnitude(SolarBody body, double r, double d, double a, double ringTiltDeg, double year) {
    const double distance = 5.0 * std::log10(r * d);
    switch (body) {
        case SolarBody::Sun: return -26.74 + 5.0 * std::log10(d);
        case SolarBody::Moon: {
            // Allen's phase law at the mean distances, scaled by the actual ones.
            const double mean = 5.0 * std::log10(r * d / (1.0 * 0.00257));
            return -12.73 + 0.026 * a + 4.0e-9 * std::pow(a, 4) + mean;
        }
        case SolarBody::Mercury:
            return -0.613 + a * (6.3280e-02 + a * (-1.6336e-03 + a * (3.3644e-05 + a * (-3.4265e-07 + a * (1.6893e-09 + a * -3.0334e-12))))) +
                   distance;
        case SolarBody::Venus:
            if (a < 163.7) return -4.384 + a * (-1.044e-03 + a * (3.687e-04 + a * (-2.814e-06 + a * 8.938e-09))) + distance;
            return 236.05828 + a * (-2.81914 + a * 8.39034e-03) + distance;
        case SolarBody::Mars:
            if (a <= 50.0) return -1.601 + a * (2.267e-02 + a * -1.302e-04) + distance;
            return -0.367 + a * (-0.02573 + a * 3.445e-04) + distance;
        case SolarBody::Jupiter:
            if (a <= 12.0) return -9.395 + a * (-3.7e-04 + a * 6.16e-04) + distance;
            return -9.428 - 2.5 * std::log10(1.0 - 1.507 * (a / 180.0) - 0.363 * std::pow(a / 180.0, 2) -
                                             0.062 * std::pow(a / 180.0, 3) + 2.809 * std::pow(a / 180.0, 4) -
                                             1.876 * std::pow(a / 180.0, 5)) +
                   distance;
        case SolarBody::Saturn: {
            const double sinB = std::sin(std::abs(ringTiltDeg) * kDegToRad);
            if (a <= 6.5 && std::abs(ringTiltDeg) <= 27.0)
                return -8.914 - 1.825 * sinB + 0.026 * a - 0.378 * sinB * std::exp(-2.25 * a) + distance;
            return -8.94 + a * (2.446e-4 + a * (2.672e-4 + a * (-1.505e-6 + a * 4.767e-9))) + distance;  // globe alone
        }
        case SolarBody::Uranus: return -7.110 + a * (6.587e-3 + a * 1.045e-4) + distance;
        case SolarBody::Neptune: {
            const double absolute = year < 1980.0 ? -6.89 : year < 2000.0 ? -6.89 - 0.0055 * (year - 1980.0) : -7.00;
            return absolute + a * (7.944e-3 + a * 9.617e-5) + distance;
        }
        case SolarBody::Pluto: return -1.01 + 0.041 * a + distance;
        default: return 0.0;
    }
}

BodyPhysical bodyPhysical(SolarBody body, const BodyPlace& place) {
    BodyPhysical p;
    const Vec3 toSun = -1.0 * place.bodyHeliocentricAu;
    const Vec3 toObserver = place.observerHeliocentricAu - place.bodyHeliocentricAu;
    p.distanceAu = place.distanceAu;
    p.sunDistanceAu = length(place.bodyHeliocentricAu);
    if (body != SolarBody::Sun) {
        p.phaseAngleDeg = angleBetweenDeg(toSun, toObserver);
        p.elongationDeg = angleBetweenDeg(-1.0 * place.observerHeliocentricAu, -1.0 * toObserver);
    } else {
        p.sunDistanceAu = 0.0;
    }
    p.illuminatedFraction = (1.0 + std::cos(p.phaseAngleDeg * kDegToRad)) / 2.0;
    const double distanceKm = place.distanceAu * kKmPerAu;
    p.diameterArcsec = distanceKm > 0.0 ? 2.0 * std::atan(bodyRadiusKm(body) / distanceKm) * kArcsecPerRadian : 0.0;
    if (body == SolarBody::Saturn) p.saturnRingTiltDeg = saturnRingTiltDeg(toObserver);
    p.magnitude = apparentMagnitude(body, body == SolarBody::Sun ? 1.0 : p.sunDistanceAu, p.distanceAu, p.phaseAngleDeg,
                                    p.saturnRingTiltDeg, 2000.0 + (place.jdTt - kJ2000Jd) / 365.25);
    return p;
}

}  // namespace nocturnel
