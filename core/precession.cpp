#include "core/precession.h"

#include <cmath>

#include "core/astro_constants.h"

namespace nocturnel {

Mat3 precessionMatrix(double jdFrom, double jdTo) {
    const double t0 = (jdFrom - kJ2000Jd) / kDaysPerCentury;
    const double t = (jdTo - jdFrom) / kDaysPerCentury;
    const double t2 = t * t, t3 = t2 * t;
    const double rate = 2306.2181 + 1.39656 * t0 - 0.000139 * t0 * t0;
    const double zeta0 = (rate * t + (0.30188 - 0.000344 * t0) * t2 + 0.017998 * t3) / kArcsecPerRadian;
    const double z = (rate * t + (1.09468 + 0.000066 * t0) * t2 + 0.018203 * t3) / kArcsecPerRadian;
    const double theta = ((2004.3109 - 0.8533 * t0 - 0.000217 * t0 * t0) * t -
                          (0.42665 + 0.000217 * t0) * t2 - 0.041833 * t3) /
                         kArcsecPerRadian;
    const double cz0 = std::cos(zeta0), sz0 = std::sin(zeta0);
    const double cz = std::cos(z), sz = std::sin(z);
    const double cth = std::cos(theta), sth = std::sin(theta);
    // R3(-z) R2(theta) R3(-zeta0)
    return {Vec3{cz0 * cz * cth - sz0 * sz, -sz0 * cz * cth - cz0 * sz, -cz * sth},
            Vec3{cz0 * sz * cth + sz0 * cz, -sz0 * sz * cth + cz0 * cz, -sz * sth},
            Vec3{cz0 * sth, -sz0 * sth, cth}};
}

}  // namespace nocturnel
