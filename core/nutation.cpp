#include "core/nutation.h"

#include <cmath>

#include "core/astro_constants.h"
#include "core/fundamental_arguments.h"

namespace nocturnel {

NutationAngles nutationAngles(double t) {
    const FundamentalArguments a = fundamentalArguments(t);
    double dpsi = 0.0;
    double deps = 0.0;
    for (const NutationTerm& row : kIau1980NutationTable) {
        const double arg = row.l * a.lRad + row.lPrime * a.lPrimeRad + row.f * a.fRad + row.d * a.dRad +
                           row.omega * a.omegaRad;
        dpsi += (row.longitudeSin + row.longitudeSinRate * t) * std::sin(arg);
        deps += (row.obliquityCos + row.obliquityCosRate * t) * std::cos(arg);
    }
    return {dpsi * 1.0e-4, deps * 1.0e-4};
}

double meanObliquityArcsec(double t) {
    return 84381.448 - 46.8150 * t - 0.00059 * t * t + 0.001813 * t * t * t;
}

namespace {
struct NutationCache {
    double jd = 0.0;
    bool valid = false;
    NutationAngles angles{};
};
NutationCache& nutationCache() {
    thread_local NutationCache cache;
    return cache;
}
}  // namespace

EarthTilt earthTilt(double jd) {
    const double t = (jd - kJ2000Jd) / kDaysPerCentury;
    NutationCache& cache = nutationCache();
    if (!cache.valid || cache.jd != jd) {
        cache.angles = nutationAngles(t);
        cache.jd = jd;
        cache.valid = true;
    }
    const double meanArcsec = meanObliquityArcsec(t);
    EarthTilt tilt;
    tilt.dpsiArcsec = cache.angles.dpsiArcsec;
    tilt.depsArcsec = cache.angles.depsArcsec;
    tilt.meanObliquityDeg = meanArcsec / 3600.0;
    tilt.trueObliquityDeg = (meanArcsec + cache.angles.depsArcsec) / 3600.0;
    tilt.equationOfEquinoxesSec = tilt.dpsiArcsec * std::cos(tilt.meanObliquityDeg * kDegToRad) / 15.0;
    return tilt;
}

Mat3 nutationMatrix(const EarthTilt& tilt) {
    const double em = tilt.meanObliquityDeg * kDegToRad;
    const double et = tilt.trueObliquityDeg * kDegToRad;
    const double psi = tilt.dpsiArcsec / kArcsecPerRadian;
    const double cm = std::cos(em), sm = std::sin(em);
    const double ct = std::cos(et), st = std::sin(et);
    const double cp = std::cos(psi), sp = std::sin(psi);
    // R1(-true obliquity) R3(-dpsi) R1(mean obliquity)
    return {Vec3{cp, -sp * cm, -sp * sm}, Vec3{sp * ct, cp * cm * ct + sm * st, cp * sm * ct - cm * st},
            Vec3{sp * st, cp * cm * st - sm * ct, cp * sm * st + cm * ct}};
}

}  // namespace nocturnel
