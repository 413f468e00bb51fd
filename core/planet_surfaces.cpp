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

JupiterMeridians jupiterCentralMeridians(double jdTt, double delta) {
    const double d = jdTt - kJ2000Jd;
    const double v = (172.74 + 0.00111588 * d) * kDegToRad;
    const double m = (357.529 + 0.9856003 * d) * kDegToRad;
    const double n = (20.020 + 0.0830853 * d + 0.329 * std::sin(v)) * kDegToRad;
    const double j = 66.115 + 0.9025179 * d - 0.329 * std::sin(v);
    const double a = 1.915 * std::sin(m) + 0.020 * std::sin(2.0 * m);
    const double b = 5.555 * std::sin(n) + 0.168 * std::sin(2.0 * n);
    const double k = (j + a - b) * kDegToRad;
    const double bigR = 1.00014 - 0.01671 * std::cos(m) - 0.00014 * std::cos(2.0 * m);
    const double psi = std::asin(std::clamp(bigR * std::sin(k) / delta, -1.0, 1.0)) * kRadToDeg;
    const double t = d - delta / kLightAuPerDay;
    return {reduce360(210.98 + 877.8169088 * t + psi - b), reduce360(187.23 + 870.1869088 * t + psi - b)};
}

std::vector<double> greatRedSpotTransits(double fromJdUt, double toJdUt, double grsLongitudeDeg) {
    std::vector<double> out;
    constexpr double kRateDegPerDay = 870.27;  // System II central meridian, as seen from the Earth
    double t = fromJdUt;
    for (int guard = 0; guard < 100 && t < toJdUt; ++guard) {
        const double jdTt = t + modelDeltaTSeconds(t) / kSecondsPerDay;
        BodyPlace jupiter;
        if (geocentricPlace(SolarBody::Jupiter, jdTt, &jupiter) != 0) return out;
        const double cm = jupiterCentralMeridians(jdTt, jupiter.distanceAu).systemIIDeg;
        double ahead = reduce360(grsLongitudeDeg - cm);  // the longitude comes to the meridian as it grows
        if (ahead < 1e-6) ahead = 0.0;
        const double when = t + ahead / kRateDegPerDay;
        if (when >= toJdUt) break;
        // One refinement at the estimate.
        const double jdTt2 = when + modelDeltaTSeconds(when) / kSecondsPerDay;
        const double cm2 = jupiterCentralMeridians(jdTt2, jupiter.distanceAu).systemIIDeg;
        double miss = reduce360(grsLongitudeDeg - cm2);
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
