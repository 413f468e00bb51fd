#include "core/fundamental_arguments.h"

#include <cmath>

#include "core/astro_constants.h"

namespace nocturnel {

namespace {
double cubic(double c0, double c1, double c2, double c3, double t) {
    return std::fmod(c0 + c1 * t + c2 * t * t + c3 * t * t * t, kTwoPi);
}
}  // namespace

FundamentalArguments fundamentalArguments(double t) {
    return {
        cubic(2.3555483935439407, 8328.691422883896, 0.0001517951635553957, 3.1028075591010306e-7, t),
        cubic(6.240035939326023, 628.3019560241842, -2.7973749400020225e-6, -5.817764173314431e-8, t),
        cubic(1.6279019339719611, 8433.466158318453, -6.427174970469119e-5, 5.332950492204896e-8, t),
        cubic(5.198469513579922, 7771.377146170642, -3.340851076525812e-5, 9.211459941081184e-8, t),
        cubic(2.1824386243609943, -33.75704593375351, 3.614285992671591e-5, 3.878509448876288e-8, t),
    };
}

}  // namespace nocturnel
