#pragma once
// TT - UT for the Sun, Moon and planets: the observed values (half-yearly table) where they
// exist, outside them the published extrapolation chosen by the "DeltaT Formula" preference,
// joined to the table without a jump. (The catalogue pipeline keeps its own deltaTForDate.)
#include <array>

namespace nocturnel {

inline constexpr int kObservedDeltaTCount = 733;
inline constexpr double kObservedDeltaTFirstYear = 1657.0;
inline constexpr double kObservedDeltaTStepYears = 0.5;
extern const std::array<float, kObservedDeltaTCount> kObservedDeltaTSec;

// The stored indexes of "DeltaT Formula".
inline constexpr int kDeltaTChaprontTouze1997 = 0;  // 102 + 102 t + 25.3 t^2 (+ 0.37 (y - 2100) to 2100)
inline constexpr int kDeltaTJplHorizon = 1;         // Espenak & Meeus (2006) polynomials

// The decimal year of a Julian date (Julian years of 365.25 days from J2000).
double decimalYearOfJd(double jd);

// TT - UT in seconds for a UT Julian date with the formula (0 or 1; others read as 1).
double deltaTSecondsFor(double jdUt, int formula);
// The same with the preferences' "DeltaT Formula".
double modelDeltaTSeconds(double jdUt);
// TT Julian date of a UT Julian date, and back, with the preferences' formula.
double ttFromUt(double jdUt);
double utFromTt(double jdTt);

}  // namespace nocturnel
