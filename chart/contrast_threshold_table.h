#pragma once
// Threshold contrast of the dark-adapted eye for a uniform disc against a uniform background:
// Blackwell (1946, J. Opt. Soc. Am. 36, 624), 50 % detection probability, as tabulated for
// telescopic use by R. N. Clark, "Visual Astronomy of the Deep Sky" (1990). One row per
// background surface brightness at the eye (visual magnitudes per square arcsecond, 4 to 27),
// one column per apparent disc size at the eye (log10 of arcminutes); entries are
// log10(threshold contrast).
#include <array>

namespace nocturnel {

inline constexpr int kThresholdSizeColumns = 7;
inline constexpr int kThresholdBackgroundRows = 24;

struct ThresholdContrastRow {
    double backgroundMagArcsec2;
    std::array<double, kThresholdSizeColumns> logThreshold;
};

extern const std::array<double, kThresholdSizeColumns> kThresholdLogSizeArcmin;
extern const std::array<ThresholdContrastRow, kThresholdBackgroundRows> kThresholdContrastTable;

}  // namespace nocturnel
