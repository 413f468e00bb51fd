#include "chart/fixed_trig.h"

#include <array>
#include <cmath>
#include <cstdlib>

namespace nocturnel {
namespace {

constexpr int kSteps = 4096;  // table steps per quarter turn (sine) or over [0, 1] (arc tangent)

struct Tables {
    std::array<int32_t, kSteps + 2> sine{};     // sin(k * pi/2 / 4096), fixed24
    std::array<int32_t, kSteps + 2> arctan{};   // atan(k / 4096), fixed24
    Tables() {
        for (int k = 0; k <= kSteps + 1; ++k) {
            sine[k] = static_cast<int32_t>(std::lround(std::sin(k * (M_PI / 2) / kSteps) * kFixed24One));
            arctan[k] = static_cast<int32_t>(std::lround(std::atan(static_cast<double>(k) / kSteps) * kFixed24One));
        }
    }
};

const Tables& tables() {
    static const Tables t;
    return t;
}

// Table steps per radian, 4096 / (pi/2) = 2607.594...: whole part and fraction (31 bits).
constexpr int64_t kStepsPerRadianWhole = 2607;
constexpr int64_t kStepsPerRadianFraction31 =
    static_cast<int64_t>((4096.0 / (M_PI / 2) - 2607.0) * 2147483648.0 + 0.5);

// Interpolates a table at a position given in 24 fraction bits of a step.
int32_t interpolate(const std::array<int32_t, kSteps + 2>& table, int64_t position) {
    const int64_t index = position >> 24;
    const int64_t frac = position & 0xFFFFFF;
    const int64_t a = table[static_cast<std::size_t>(index)];
    const int64_t b = table[static_cast<std::size_t>(index) + 1];
    return static_cast<int32_t>(a + (((b - a) * frac) >> 24));
}

}  // namespace

fixed24 fixedSin(fixed24 angle) {
    // Position along the circle in table steps (24 fraction bits), folded into one turn.
    const int64_t turnSteps = int64_t{4} * kSteps << 24;
    // Steps with 24 fraction bits; exact enough for any 32-bit angle, and within 64 bits.
    int64_t position = angle * kStepsPerRadianWhole + ((angle * kStepsPerRadianFraction31) >> 31);
    position %= turnSteps;
    if (position < 0) position += turnSteps;
    const int64_t quarter = int64_t{kSteps} << 24;
    const int quadrant = static_cast<int>(position / quarter);
    const int64_t inQuarter = position - quadrant * quarter;
    const auto& t = tables().sine;
    switch (quadrant) {
        case 0: return interpolate(t, inQuarter);
        case 1: return interpolate(t, quarter - inQuarter);
        case 2: return -interpolate(t, inQuarter);
        default: return -interpolate(t, quarter - inQuarter);
    }
}

fixed24 fixedCos(fixed24 angle) {
    return fixedSin(static_cast<fixed24>(static_cast<int64_t>(angle) + kFixed24Pi / 2));
}

fixed24 fixedAtan2(int32_t y, int32_t x) {
    if (x == 0 && y == 0) return 0;
    const int64_t ax = std::llabs(x);
    const int64_t ay = std::llabs(y);
    // atan of the smaller over the larger, in [0, pi/4].
    const bool steep = ay > ax;
    const int64_t num = steep ? ax : ay;
    const int64_t den = steep ? ay : ax;
    const int64_t position = (num << 36) / den;  // ratio in table steps (12 bits) with 24 fraction bits
    int64_t angle = interpolate(tables().arctan, position);
    if (steep) angle = kFixed24Pi / 2 - angle;
    if (x < 0) angle = kFixed24Pi - angle;
    if (y < 0) angle = -angle;
    return static_cast<fixed24>(angle);
}

uint32_t integerSqrt(uint64_t value) {
    uint64_t root = 0;
    uint64_t bit = uint64_t{1} << 62;
    while (bit > value) bit >>= 2;
    while (bit != 0) {
        if (value >= root + bit) {
            value -= root + bit;
            root = (root >> 1) + bit;
        } else {
            root >>= 1;
        }
        bit >>= 2;
    }
    return static_cast<uint32_t>(root);
}

fixed24 fixedAsin(fixed24 value) {
    if (value > kFixed24One) value = kFixed24One;
    if (value < -kFixed24One) value = -kFixed24One;
    // asin(s) = atan2(s, sqrt(1 - s^2)); 1 - s^2 has 48 fraction bits, its root 24.
    const uint64_t oneMinusSquare =
        (uint64_t{1} << 48) - static_cast<uint64_t>(static_cast<int64_t>(value) * static_cast<int64_t>(value));
    return fixedAtan2(value, static_cast<int32_t>(integerSqrt(oneMinusSquare)));
}

}  // namespace nocturnel
