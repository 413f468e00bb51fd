#include "chart/fixed_trig.h"

#include <gtest/gtest.h>

#include <cmath>

namespace nocturnel {
namespace {

fixed24 fx(double v) { return static_cast<fixed24>(std::lround(v * kFixed24One)); }
double fl(fixed24 v) { return static_cast<double>(v) / kFixed24One; }

// Accuracy needed: a chart unit is 1e-6 of the projected radius, so 1.5e-7 (a few units of the
// last fixed24 place) leaves a wide margin.
constexpr double kTolerance = 1.5e-7;

TEST(FixedTrig, SineAndCosineOverSeveralTurns) {
    for (double a = -4 * M_PI; a <= 4 * M_PI; a += 0.0137) {
        const double exact = fl(fx(a));  // the angle the routines are given
        EXPECT_NEAR(fl(fixedSin(fx(a))), std::sin(exact), kTolerance) << a;
        EXPECT_NEAR(fl(fixedCos(fx(a))), std::cos(exact), kTolerance) << a;
    }
    // Quadrant edges.
    const std::pair<double, double> sines[] = {{0, 0}, {M_PI / 2, 1}, {M_PI, 0}, {-M_PI / 2, -1}, {3 * M_PI / 2, -1}};
    for (const auto& [a, s] : sines) EXPECT_NEAR(fl(fixedSin(fx(a))), s, kTolerance) << a;
}

TEST(FixedTrig, ArcTangentInEveryOctant) {
    for (double a = -M_PI + 0.001; a < M_PI; a += 0.0071) {
        for (double r : {1e-4, 0.3, 1.0}) {
            const int32_t x = fx(r * std::cos(a)), y = fx(r * std::sin(a));
            EXPECT_NEAR(fl(fixedAtan2(y, x)), std::atan2(static_cast<double>(y), static_cast<double>(x)), 2 * kTolerance)
                << a << " r " << r;
        }
    }
    EXPECT_EQ(fixedAtan2(0, 0), 0);
    EXPECT_NEAR(fl(fixedAtan2(0, -kFixed24One)), M_PI, kTolerance);
    EXPECT_NEAR(fl(fixedAtan2(-kFixed24One, 0)), -M_PI / 2, kTolerance);
}

TEST(FixedTrig, ArcSineUpToItsEnds) {
    // Against the arc sine of the fixed-point input itself: near +-1 the input's own rounding dominates.
    for (double s = -1; s <= 1; s += 0.00731) EXPECT_NEAR(fl(fixedAsin(fx(s))), std::asin(fl(fx(s))), 2 * kTolerance) << s;
    EXPECT_NEAR(fl(fixedAsin(kFixed24One - 1)), std::asin(fl(kFixed24One - 1)), 2 * kTolerance);
    EXPECT_NEAR(fl(fixedAsin(kFixed24One)), M_PI / 2, kTolerance);
    EXPECT_NEAR(fl(fixedAsin(-kFixed24One)), -M_PI / 2, kTolerance);
    EXPECT_NEAR(fl(fixedAsin(2 * kFixed24One)), M_PI / 2, kTolerance);  // clamped
}

TEST(FixedTrig, IntegerSquareRootIsTheFloor) {
    const std::pair<uint64_t, uint32_t> cases[] = {{0, 0},          {1, 1},          {3, 1},
                                                   {4, 2},          {99, 9},         {1ull << 48, 1u << 24},
                                                   {(1ull << 48) - 1, (1u << 24) - 1}, {~0ull, 0xFFFFFFFFu}};
    for (const auto& [value, root] : cases) EXPECT_EQ(integerSqrt(value), root) << value;
}

}  // namespace
}  // namespace nocturnel
