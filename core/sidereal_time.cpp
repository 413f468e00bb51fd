#include "core/sidereal_time.h"

#include <cmath>

#include "core/astro_constants.h"
#include "core/nutation.h"

namespace nocturnel {

double siderealTimeHours(double jdHigh, double jdLow, double equationOfEquinoxesSec) {
    const double tHi = (jdHigh - kJ2000Jd) / kDaysPerCentury;
    const double tLo = jdLow / kDaysPerCentury;
    const double t = tHi + tLo;
    const double seconds = equationOfEquinoxesSec - 6.2e-6 * t * t * t + 0.093104 * t * t + 67310.54841 +
                           8640184.812866 * tLo + 3155760000.0 * tLo + 8640184.812866 * tHi +
                           3155760000.0 * tHi;
    double hours = std::fmod(seconds / 3600.0, 24.0);
    if (hours < 0.0) hours += 24.0;
    return hours;
}

double apparentSiderealTimeHours(double jdUt1, double jdTt) {
    return siderealTimeHours(jdUt1, 0.0, earthTilt(jdTt).equationOfEquinoxesSec);
}

}  // namespace nocturnel
