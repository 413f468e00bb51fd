#pragma once
// fixed24: signed 32-bit fixed point with 24 fraction bits, used for star positions in
// radians and for the fast chart projection. A product is (a * b) >> 24 on 64 bits.
#include <cstdint>

namespace nocturnel {

using fixed24 = int32_t;
inline constexpr int kFixed24Shift = 24;
inline constexpr fixed24 kFixed24One = 1 << kFixed24Shift;
inline constexpr fixed24 kFixed24Pi = 52707178;      // pi * 2^24
inline constexpr fixed24 kFixed24TwoPi = 105414356;  // 2 pi * 2^24

inline constexpr fixed24 fixedMul(int32_t a, int32_t b) {
    return static_cast<fixed24>((static_cast<int64_t>(a) * static_cast<int64_t>(b)) >> kFixed24Shift);
}
inline constexpr double fixedToDouble(fixed24 v) { return static_cast<double>(v) / kFixed24One; }
inline constexpr fixed24 doubleToFixed(double v) { return static_cast<fixed24>(v * kFixed24One); }

}  // namespace nocturnel
