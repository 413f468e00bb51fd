#include "core/planet_positions.h"

#include <cmath>

#include "core/astro_constants.h"
#include "core/pluto_theory.h"

namespace nocturnel {
namespace {

constexpr double kDaysPerMillennium = 365250.0;

SeriesBody seriesBodyOf(SolarBody body) {
    switch (body) {
        case SolarBody::Mercury: return SeriesBody::Mercury;
        case SolarBody::Venus: return SeriesBody::Venus;
        case SolarBody::Mars: return SeriesBody::Mars;
        case SolarBody::Jupiter: return SeriesBody::Jupiter;
        case SolarBody::Saturn: return SeriesBody::Saturn;
        case SolarBody::Uranus: return SeriesBody::Uranus;
        case SolarBody::Neptune: return SeriesBody::Neptune;
        default: return SeriesBody::Earth;
    }
}

// ELP/MPP02 ecliptic of date to the inertial ecliptic of J2000 (Laskar's P and Q).
Vec3 elpToJ2000Ecliptic(const Vec3& v, double t) {
    const double p = t * (0.10180391e-4 + t * (0.47020439e-6 + t * (-0.5417367e-9 + t * (-0.2507948e-11 + t * 0.463486e-14))));
    const double q = t * (-0.113469002e-3 + t * (0.12372674e-6 + t * (0.12654170e-8 + t * (-0.1371808e-11 + t * -0.320334e-14))));
    const double sq = std::sqrt(1.0 - p * p - q * q);
    const Mat3 m{Vec3{1 - 2 * p * p, 2 * p * q, 2 * p * sq}, Vec3{2 * p * q, 1 - 2 * q * q, -2 * q * sq},
                 Vec3{-2 * p * sq, 2 * q * sq, 1 - 2 * p * p - 2 * q * q}};
    return m * v;
}

}  // namespace

Vec3 eclipticJ2000ToEquatorial(const Vec3& e) {
    // VSOP87 (dynamical ecliptic and equinox J2000) to the FK5/ICRS equator of J2000.
    return {e[0] + 0.000000440360 * e[1] - 0.000000190919 * e[2],
            -0.000000479966 * e[0] + 0.917482137087 * e[1] - 0.397776982902 * e[2],
            0.397776982902 * e[1] + 0.917482137087 * e[2]};
}

Vec3 sphericalToVector(double lon, double lat, double r) {
    const double cb = std::cos(lat);
    return {r * cb * std::cos(lon), r * cb * std::sin(lon), r * std::sin(lat)};
}

StateVector heliocentricState(const PlanetSeriesSet& series, SolarBody body, double jdTt) {
    if (body == SolarBody::Sun || body == SolarBody::Moon) return {};
    if (body == SolarBody::Pluto) {
        auto at = [](double jd) {
            const PlutoSpherical p = plutoHeliocentric(jd);
            return eclipticJ2000ToEquatorial(sphericalToVector(p.longitudeRad, p.latitudeRad, p.radiusAu));
        };
        return {at(jdTt), at(jdTt + 0.5) - at(jdTt - 0.5)};
    }
    const SeriesBody sb = seriesBodyOf(body);
    const double tau = (jdTt - kJ2000Jd) / kDaysPerMillennium;
    const SeriesValue l = vsopCoordinate(series, sb, 0, tau), b = vsopCoordinate(series, sb, 1, tau),
                      r = vsopCoordinate(series, sb, 2, tau);
    const double cl = std::cos(l.value), sl = std::sin(l.value), cb = std::cos(b.value), sb_ = std::sin(b.value);
    const Vec3 pos{r.value * cb * cl, r.value * cb * sl, r.value * sb_};
    // d/dtau of (r cos b cos l, r cos b sin l, r sin b).
    const double dr = r.ratePerMillennium, dl = l.ratePerMillennium, db = b.ratePerMillennium;
    const Vec3 vel{dr * cb * cl - r.value * sb_ * db * cl - r.value * cb * sl * dl,
                   dr * cb * sl - r.value * sb_ * db * sl + r.value * cb * cl * dl,
                   dr * sb_ + r.value * cb * db};
    return {eclipticJ2000ToEquatorial(pos), (1.0 / kDaysPerMillennium) * eclipticJ2000ToEquatorial(vel)};
}

Vec3 heliocentricPosition(const PlanetSeriesSet& series, SolarBody body, double jdTt, double minAmplitude) {
    if (body == SolarBody::Pluto || body == SolarBody::Sun || body == SolarBody::Moon)
        return heliocentricState(series, body, jdTt).positionAu;
    const SeriesBody sb = seriesBodyOf(body);
    const double tau = (jdTt - kJ2000Jd) / kDaysPerMillennium;
    return eclipticJ2000ToEquatorial(sphericalToVector(vsopValue(series, sb, 0, tau, minAmplitude),
                                                       vsopValue(series, sb, 1, tau, minAmplitude),
                                                       vsopValue(series, sb, 2, tau, minAmplitude)));
}

Vec3 moonGeocentricPosition(const PlanetSeriesSet& series, double jdTt) {
    const double t = (jdTt - kJ2000Jd) / kDaysPerCentury;
    const MoonSpherical m = elpMoonSpherical(series, t);
    const Vec3 ecl = elpToJ2000Ecliptic(sphericalToVector(m.longitudeRad, m.latitudeRad, m.distanceKm / kKmPerAu), t);
    return eclipticJ2000ToEquatorial(ecl);
}

}  // namespace nocturnel
