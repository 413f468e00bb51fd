#include "core/astrometry_vectors.h"

#include <cmath>

#include "core/astro_constants.h"

namespace nocturnel {

namespace {
constexpr double kAuMetres = 1.4959787e11;
constexpr double kLightMetresPerSecond = kLightAuPerDay * kAuMetres / kSecondsPerDay;
constexpr double kSunGravitationalParameter = 1.32712438e20;  // m^3/s^2
}  // namespace

StarVectors starVectors(double raHours, double decDeg, double pmRaSecPerCentury, double pmDecArcsecPerCentury,
                        double parallaxArcsec, double radialVelocityKmPerS) {
    const double parallax = parallaxArcsec <= 0.0 ? 1.0e-7 : parallaxArcsec;
    const double distance = kArcsecPerRadian / parallax;
    const double ra = raHours * 15.0 * kDegToRad, dec = decDeg * kDegToRad;
    const double cra = std::cos(ra), sra = std::sin(ra), cdc = std::cos(dec), sdc = std::sin(dec);
    const double pmr = pmRaSecPerCentury * 15.0 * cdc / (parallax * kDaysPerCentury);
    const double pmd = pmDecArcsecPerCentury / (parallax * kDaysPerCentury);
    const double rvl = radialVelocityKmPerS * kSecondsPerDay / kKmPerAu;
    return {Vec3{distance * cdc * cra, distance * cdc * sra, distance * sdc},
            Vec3{-pmr * sra - pmd * sdc * cra + rvl * cdc * cra,
                 pmr * cra - pmd * sdc * sra + rvl * cdc * sra, pmd * cdc + rvl * sdc}};
}

Vec3 properMotion(double jdFrom, const StarVectors& star, double jdTo) {
    return star.positionAu + (jdTo - jdFrom) * star.velocityAuPerDay;
}

Vec3 barycentricToObserver(const Vec3& position, const Vec3& observerBarycentricAu, double* lightTimeDays) {
    const Vec3 seen = position - observerBarycentricAu;
    *lightTimeDays = length(seen) / kLightAuPerDay;
    return seen;
}

Vec3 solarDeflection(const Vec3& position, const Vec3& observerHeliocentricAu) {
    const double p1mag = length(position);
    const double pemag = length(observerHeliocentricAu);
    const Vec3 pehat = (1.0 / pemag) * observerHeliocentricAu;
    const Vec3 p1hat = (1.0 / p1mag) * position;
    const double cosd = -dot(pehat, p1hat);
    if (std::fabs(cosd) > 0.9999999999) return position;
    const double sind = std::sqrt(1.0 - cosd * cosd);
    const double b = pemag * sind;
    const double bMetres = b * kAuMetres;
    const double pqmag = std::sqrt(p1mag * p1mag + pemag * pemag - 2.0 * p1mag * pemag * cosd);
    const double zFinal = pemag * cosd;
    const double zInitial = -p1mag + zFinal;
    const double xiFinal = zFinal / b;
    const double xiInitial = zInitial / b;
    // Deflection along the whole path, then the part seen at the observer.
    const double delphi =
        2.0 * kSunGravitationalParameter / (bMetres * kLightMetresPerSecond * kLightMetresPerSecond) *
        (xiFinal / std::sqrt(1.0 + xiFinal * xiFinal) - xiInitial / std::sqrt(1.0 + xiInitial * xiInitial));
    const double delphp = delphi / (1.0 + pemag / pqmag);
    const double f = delphp * p1mag / sind;
    return position + f * (cosd * p1hat + pehat);  // rotated away from the Sun in the plane of star and Sun
}

Vec3 aberration(const Vec3& position, const Vec3& observerVelocityAuPerDay, double lightTimeDays) {
    double p1mag = lightTimeDays * kLightAuPerDay;
    if (lightTimeDays == 0.0) {
        p1mag = length(position);
        lightTimeDays = p1mag / kLightAuPerDay;
    }
    const double vemag = length(observerVelocityAuPerDay);
    const double beta = vemag / kLightAuPerDay;
    const double cosd = dot(position, observerVelocityAuPerDay) / (p1mag * vemag);
    const double gammaInverse = std::sqrt(1.0 - beta * beta);
    const double p = beta * cosd;
    const double q = (1.0 + p / (1.0 + gammaInverse)) * lightTimeDays;
    const double r = 1.0 + p;
    return (1.0 / r) * (gammaInverse * position + q * observerVelocityAuPerDay);
}

int vectorToRaDec(const Vec3& position, double* raHours, double* decDeg) {
    const double xyproj = std::sqrt(position[0] * position[0] + position[1] * position[1]);
    if (xyproj == 0.0 && position[2] == 0.0) {
        *raHours = 0.0;
        *decDeg = 0.0;
        return 2;
    }
    if (xyproj == 0.0) {
        *raHours = 0.0;
        *decDeg = position[2] < 0.0 ? -90.0 : 90.0;
        return 1;
    }
    double ra = std::atan2(position[1], position[0]) * kRadToDeg / 15.0;
    if (ra < 0.0) ra += 24.0;
    if (ra >= 24.0) ra -= 24.0;
    *raHours = ra;
    *decDeg = std::atan2(position[2], xyproj) * kRadToDeg;
    return 0;
}

Vec3 raDecToVector(double raHours, double decDeg, double distance) {
    const double ra = raHours * 15.0 * kDegToRad, dec = decDeg * kDegToRad;
    return {distance * std::cos(dec) * std::cos(ra), distance * std::cos(dec) * std::sin(ra),
            distance * std::sin(dec)};
}

}  // namespace nocturnel
