#include "core/planet_surfaces.h"

#include <algorithm>
#include <cmath>

#include "core/astro_constants.h"
#include "core/body_place.h"
#include "core/delta_t_model.h"
#include "core/fundamental_arguments.h"
#include "core/nutation.h"

namespace nocturnel {
namespace {

double reduce360(double d) {
    d = std::fmod(d, 360.0);
    return d < 0.0 ? d + 360.0 : d;
}

}  // namespace

JupiterMeridians jupiterCentralMeridians(const BodyPlace& jupiter) {
    // The moment the light left Jupiter: its rotation is seen as it was then.
    const double d = jupiter.jdTt - jupiter.lightTimeDays - kJ2000Jd;
    const double t = d / kDaysPerCentury;
    // IAU WGCCRE pole of Jupiter (ICRF; its periodic terms, under 0.0002 degree, left out).
    const double a0 = (268.056595 - 0.006499 * t) * kDegToRad;
    const double d0 = (64.495303 + 0.002413 * t) * kDegToRad;
    const Vec3 pole{std::cos(d0) * std::cos(a0), std::cos(d0) * std::sin(a0), std::sin(d0)};
    const Vec3 node{-std::sin(a0), std::cos(a0), 0.0};  // Jupiter's equator ascending on the Earth's
    const Vec3 ninety{pole[1] * node[2] - pole[2] * node[1], pole[2] * node[0] - pole[0] * node[2],
                      pole[0] * node[1] - pole[1] * node[0]};  // pole x node
    const Vec3 toEarth = jupiter.observerHeliocentricAu - jupiter.bodyHeliocentricAu;
    const double earthLongitude = std::atan2(dot(toEarth, ninety), dot(toEarth, node)) * kRadToDeg;
    // Prime meridians W = W0 + rate d from the node; longitudes count westward, so the
    // meridian facing the Earth is W minus the Earth's angle from the node.
    return {reduce360(67.1 + 877.900 * d - earthLongitude), reduce360(43.3 + 870.270 * d - earthLongitude)};
}

int jupiterCentralMeridiansAt(double jdTt, JupiterMeridians* out) {
    BodyPlace jupiter;
    if (int err = geocentricPlace(SolarBody::Jupiter, jdTt, &jupiter)) return err;
    *out = jupiterCentralMeridians(jupiter);
    return 0;
}

std::vector<double> greatRedSpotTransits(double fromJdUt, double toJdUt, double grsLongitudeDeg) {
    std::vector<double> out;
    constexpr double kRateDegPerDay = 870.27;  // System II central meridian, as seen from the Earth
    auto systemIIAt = [](double jdUt, double* cm) {
        JupiterMeridians m;
        if (jupiterCentralMeridiansAt(jdUt + modelDeltaTSeconds(jdUt) / kSecondsPerDay, &m) != 0) return false;
        *cm = m.systemIIDeg;
        return true;
    };
    double t = fromJdUt;
    for (int guard = 0; guard < 100 && t < toJdUt; ++guard) {
        double cm = 0.0;
        if (!systemIIAt(t, &cm)) return out;
        double ahead = reduce360(grsLongitudeDeg - cm);  // the longitude comes to the meridian as it grows
        if (ahead < 1e-6) ahead = 0.0;
        const double when = t + ahead / kRateDegPerDay;
        if (when >= toJdUt) break;
        // One refinement at the estimate.
        if (!systemIIAt(when, &cm)) return out;
        double miss = reduce360(grsLongitudeDeg - cm);
        if (miss > 180.0) miss -= 360.0;
        const double refined = when + miss / kRateDegPerDay;
        if (refined >= fromJdUt && refined < toJdUt) out.push_back(refined);
        t = refined + 0.1;
    }
    return out;
}

MoonLibration moonOpticalLibration(double jdTt, double lambdaDeg, double betaDeg) {
    const double t = (jdTt - kJ2000Jd) / kDaysPerCentury;
    const FundamentalArguments f = fundamentalArguments(t);
    const EarthTilt tilt = earthTilt(jdTt);
    const double inclination = 1.54242 * kDegToRad;
    const double w = (lambdaDeg - tilt.dpsiArcsec / 3600.0) * kDegToRad - f.omegaRad;
    const double beta = betaDeg * kDegToRad;
    const double a = std::atan2(std::sin(w) * std::cos(beta) * std::cos(inclination) - std::sin(beta) * std::sin(inclination),
                                std::cos(w) * std::cos(beta));
    double l = (a - f.fRad) * kRadToDeg;
    l = std::fmod(l + 540.0, 360.0) - 180.0;
    const double b = std::asin(-std::sin(w) * std::cos(beta) * std::sin(inclination) - std::sin(beta) * std::cos(inclination));
    return {l, b * kRadToDeg};
}

}  // namespace nocturnel
