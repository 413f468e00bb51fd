#pragma once
// Sine, cosine, arc sine and arc tangent on fixed24 radians, for the fast chart projection.
// Sine and arc tangent come from quarter-wave tables with linear interpolation (4,096 steps),
// which keeps them within about 2e-8 of the true value: far below one chart unit.
#include <cstdint>

#include "core/fixed24.h"

namespace nocturnel {

// Any fixed24 angle in radians -> fixed24 value in [-1, 1].
fixed24 fixedSin(fixed24 angle);
fixed24 fixedCos(fixed24 angle);
// atan2(y, x) -> fixed24 radians in [-pi, pi]; (0, 0) gives 0.
fixed24 fixedAtan2(int32_t y, int32_t x);
// Arc sine of a fixed24 value (clamped to [-1, 1]) -> fixed24 radians in [-pi/2, pi/2].
fixed24 fixedAsin(fixed24 value);
// Integer square root of a 64-bit value (floor).
uint32_t integerSqrt(uint64_t value);

}  // namespace nocturnel
