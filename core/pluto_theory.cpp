#include "core/pluto_theory.h"

#include <cmath>

#include "core/astro_constants.h"

namespace nocturnel {

PlutoSpherical plutoHeliocentric(double jdTt) {
    const double t = (jdTt - kJ2000Jd) / kDaysPerCentury;
    const double j = 34.35 + 3034.9057 * t, s = 50.08 + 1222.1138 * t, p = 238.96 + 144.96 * t;
    double lon = 0.0, lat = 0.0, rad = 0.0;
    for (const PlutoTerm& term : kPlutoTerms) {
        const double a = (term.j * j + term.s * s + term.p * p) * kDegToRad;
        const double sa = std::sin(a), ca = std::cos(a);
        lon += term.lonSin * sa + term.lonCos * ca;
        lat += term.latSin * sa + term.latCos * ca;
        rad += term.radSin * sa + term.radCos * ca;
    }
    return {(lon + 238.958116 + 144.96 * t) * kDegToRad, (lat - 3.908239) * kDegToRad, rad + 40.7241346};
}

}  // namespace nocturnel
