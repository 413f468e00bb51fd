#pragma once
// Constants shared by the apparent place pipeline (NOVAS-C 2.0 values).
namespace nocturnel {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kTwoPi = 2.0 * kPi;
inline constexpr double kDegToRad = kPi / 180.0;
inline constexpr double kRadToDeg = 180.0 / kPi;
inline constexpr double kArcsecPerRadian = 206264.80624709636;
inline constexpr double kJ2000Jd = 2451545.0;
inline constexpr double kDaysPerCentury = 36525.0;
inline constexpr double kLightAuPerDay = 173.14463348;  // speed of light, AU/day
inline constexpr double kKmPerAu = 149597870.0;
inline constexpr double kSecondsPerDay = 86400.0;

}  // namespace nocturnel
