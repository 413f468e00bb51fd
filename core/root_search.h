#pragma once
// Root finding and extremum finding on a bracketing interval, for the event searches:
// the Illinois variant of regula falsi (to 0.1 s), and a golden-section search.
#include <cmath>

namespace nocturnel {

inline constexpr double kEventPrecisionDays = 0.1 / 86400.0;

// A root of f in [a, b] where f(a) and f(b) differ in sign (else the nearer end).
template <typename F>
double findRoot(F f, double a, double b) {
    double fa = f(a), fb = f(b);
    if (fa == 0.0) return a;
    if (fb == 0.0) return b;
    if ((fa < 0.0) == (fb < 0.0)) return std::abs(fa) < std::abs(fb) ? a : b;
    int side = 0;
    double last = a;
    for (int i = 0; i < 60 && b - a > kEventPrecisionDays; ++i) {
        const double c = (a * fb - b * fa) / (fb - fa);
        if (i > 0 && std::abs(c - last) < kEventPrecisionDays) return c;
        last = c;
        const double fc = f(c);
        if (fc == 0.0) return c;
        if ((fc < 0.0) == (fa < 0.0)) {
            a = c;
            fa = fc;
            if (side == -1) fb /= 2.0;
            side = -1;
        } else {
            b = c;
            fb = fc;
            if (side == 1) fa /= 2.0;
            side = 1;
        }
    }
    return (a * fb - b * fa) / (fb - fa);
}

// The maximum of f in [a, b] (golden section, to about a minute unless told otherwise).
template <typename F>
double findMaximum(F f, double a, double b, double toleranceDays = 20.0 / 86400.0) {
    const double g = 0.6180339887498949;
    double c = b - g * (b - a), d = a + g * (b - a);
    double fc = f(c), fd = f(d);
    while (b - a > toleranceDays) {
        if (fc > fd) {
            b = d;
            d = c;
            fd = fc;
            c = b - g * (b - a);
            fc = f(c);
        } else {
            a = c;
            c = d;
            fc = fd;
            d = a + g * (b - a);
            fd = f(d);
        }
    }
    return 0.5 * (a + b);
}

}  // namespace nocturnel
