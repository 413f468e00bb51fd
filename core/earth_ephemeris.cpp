#include "core/earth_ephemeris.h"

#include <cmath>

#include "core/astro_constants.h"
#include "core/precession.h"

namespace nocturnel {

namespace {
constexpr double kJ2000ObliquityRad = 0.40909280420293637;

Vec3 sphericalToVector(double raHours, double decDeg, double distance) {
    const double ra = raHours * 15.0 * kDegToRad, dec = decDeg * kDegToRad;
    return {distance * std::cos(dec) * std::cos(ra), distance * std::cos(dec) * std::sin(ra),
            distance * std::sin(dec)};
}

// Offset of the Sun from the barycentre is minus the mass-weighted sum of the planets'
// heliocentric vectors; this returns that sum (position, velocity).
void giantPlanetsBarycentreOffset(double jdTdb, Vec3* position, Vec3* velocity) {
    const double se = std::sin(kJ2000ObliquityRad), ce = std::cos(kJ2000ObliquityRad);
    double totalMass = 1.0;
    for (const GiantPlanetOrbit& p : kGiantPlanetMeanOrbits) totalMass += 1.0 / p.inverseMass;
    *position = {0.0, 0.0, 0.0};
    *velocity = {0.0, 0.0, 0.0};
    for (const GiantPlanetOrbit& p : kGiantPlanetMeanOrbits) {
        const double lon =
            std::fmod(p.meanLongitudeJ2000Rad + p.meanMotionRadPerDay * (jdTdb - kJ2000Jd), kTwoPi);
        const double sl = std::sin(lon), cl = std::cos(lon);
        const double a = p.semiMajorAxisAu, n = p.meanMotionRadPerDay;
        const double f = 1.0 / (p.inverseMass * totalMass);
        *position = *position + f * Vec3{a * cl, a * sl * ce, a * sl * se};
        *velocity = *velocity + f * Vec3{-a * n * sl, a * n * cl * ce, a * n * cl * se};
    }
}

Vec3 heliocentricEarth(double jd) {
    const SunPlace sun = sunMeanPlaceOfDate(jd);
    return -1.0 *
           (precessionMatrix(jd, kJ2000Jd) * sphericalToVector(sun.raHours, sun.decDeg, sun.distanceAu));
}
}  // namespace

SunPlace sunMeanPlaceOfDate(double jd) {
    const double u = (jd - kJ2000Jd) / 3652500.0;
    double sumLon = 0.0, sumR = 0.0;
    for (const SolarSeriesTerm& term : kBretagnonSimonSolarSeries) {
        const double arg = term.phaseRad + term.frequency * u;
        sumLon += term.longitude * std::sin(arg);
        sumR += term.radius * std::cos(arg);
    }
    double lon = std::fmod(4.9353929 + 62833.196168 * u + 1.0e-7 * sumLon, kTwoPi);
    if (lon < 0.0) lon += kTwoPi;
    const double t = 100.0 * u;
    const double obliquity =
        (84381.448 - 46.815 * t - 0.00059 * t * t + 0.001813 * t * t * t) / kArcsecPerRadian;
    double raDeg = std::atan2(std::cos(obliquity) * std::sin(lon), std::cos(lon)) * kRadToDeg;
    raDeg = std::fmod(raDeg, 360.0);
    if (raDeg < 0.0) raDeg += 360.0;
    return {raDeg / 15.0, std::asin(std::sin(obliquity) * std::sin(lon)) * kRadToDeg,
            1.0001026 + 1.0e-7 * sumR};
}

int solarSystemVectors(double jdTdb, int body, int origin, Vec3* position, Vec3* velocity) {
    if (!(jdTdb >= kEphemerisFirstJd && jdTdb <= kEphemerisLastJd)) return 1;  // NaN is out of range too
    if (body == 0 || body == 1 || body == 10) {
        *position = {0.0, 0.0, 0.0};
        *velocity = {0.0, 0.0, 0.0};
    } else if (body == 2 || body == 3) {
        // Velocity by a central difference over 0.2 day.
        const Vec3 before = heliocentricEarth(jdTdb - 0.1);
        *position = heliocentricEarth(jdTdb);
        const Vec3 after = heliocentricEarth(jdTdb + 0.1);
        *velocity = (1.0 / 0.2) * (after - before);
    } else {
        return 2;
    }
    if (origin == 0) {
        Vec3 offsetPosition, offsetVelocity;
        giantPlanetsBarycentreOffset(jdTdb, &offsetPosition, &offsetVelocity);
        *position = *position - offsetPosition;
        *velocity = *velocity - offsetVelocity;
    }
    return 0;
}

int earthVectors(double jdTdb, EarthVectors* earth) {
    thread_local double lastJd = 0.0;
    thread_local bool valid = false;
    thread_local EarthVectors cached{};
    if (!valid || lastJd != jdTdb) {
        EarthVectors fresh{};
        if (int err = solarSystemVectors(jdTdb, 3, 1, &fresh.heliocentricPositionAu,
                                         &fresh.heliocentricVelocityAuPerDay))
            return err;
        Vec3 offsetPosition, offsetVelocity;
        giantPlanetsBarycentreOffset(jdTdb, &offsetPosition, &offsetVelocity);
        fresh.barycentricPositionAu = fresh.heliocentricPositionAu - offsetPosition;
        fresh.barycentricVelocityAuPerDay = fresh.heliocentricVelocityAuPerDay - offsetVelocity;
        cached = fresh;
        lastJd = jdTdb;
        valid = true;
    }
    *earth = cached;
    return 0;
}

void tdbToTt(double jdTdb, double* jdTt, double* tdbMinusTtSec) {
    const double d = jdTdb - kJ2000Jd;
    auto radians = [](double degrees) { return std::fmod(degrees * 3600.0, 1296000.0) / kArcsecPerRadian; };
    const double m = radians(357.51716 + 0.985599987 * d);
    const double l = radians(280.46435 + 0.9856091 * d);
    const double lj = radians(34.40438 + 0.083086762 * d);
    const double e = m + 0.01671022 * std::sin(m) + 0.0001396157 * std::sin(2.0 * m);
    *tdbMinusTtSec = 0.001658 * std::sin(e) + 2.073e-5 * std::sin(l - lj);
    *jdTt = jdTdb - *tdbMinusTtSec / kSecondsPerDay;
}

}  // namespace nocturnel
