#pragma once
// TT - UT for the Sun, Moon and planets: the observed values (half-yearly table) where they
// exist, outside them the published extrapolation chosen by the "DeltaT Formula" preference,
// joined to the table without a jump, and past the table the user's "Current DeltaT" when set.
// (The catalogue pipeline keeps its own deltaTForDate.)
#include <array>
#include <optional>

namespace nocturnel {

inline constexpr int kObservedDeltaTCount = 733;
inline constexpr double kObservedDeltaTFirstYear = 1657.0;
inline constexpr double kObservedDeltaTStepYears = 0.5;
extern const std::array<float, kObservedDeltaTCount> kObservedDeltaTSec;

// The stored indexes of "DeltaT Formula".
inline constexpr int kDeltaTChaprontTouze1997 = 0;  // 102 + 102 t + 25.3 t^2 (+ 0.37 (y - 2100) to 2100)
inline constexpr int kDeltaTJplHorizon = 1;         // Espenak & Meeus (2006) polynomials

// "Current DeltaT" as start-up leaves it when the user never set one (40 marks "never set"
// and becomes this default).
inline constexpr float kCurrentDeltaTDefault = 65.4f;

// The user's TT - UT for the present: the value holds at jdUt (today's date) and steers the
// extrapolation from the observed table's end through today; a century later the formula
// alone holds again. Observed values are never replaced.
struct CurrentDeltaT {
    double jdUt = 0.0;
    double seconds = 0.0;
};

// Where a DeltaT value comes from, for display.
enum class DeltaTSource { Observed, Current, Formula };

// The decimal year of a Julian date (Julian years of 365.25 days from J2000).
double decimalYearOfJd(double jd);
// The decimal year at which the observed table ends.
double lastObservedDeltaTYear();

// TT - UT in seconds for a UT Julian date with the formula (0 or 1; others read as 1) and,
// when given, the user's current value.
double deltaTSecondsFor(double jdUt, int formula, const std::optional<CurrentDeltaT>& current = std::nullopt);
DeltaTSource deltaTSourceFor(double jdUt, const std::optional<CurrentDeltaT>& current);
// "observed", "current" or "formula".
const char* deltaTSourceName(DeltaTSource source);

// The preferences' "Current DeltaT" at the machine clock's present, or none when it is the
// start-up default.
std::optional<CurrentDeltaT> currentDeltaTFromPreferences();
// TT - UT with the preferences' "DeltaT Formula" and "Current DeltaT".
double modelDeltaTSeconds(double jdUt);
DeltaTSource modelDeltaTSource(double jdUt);
// TT Julian date of a UT Julian date, and back, with the preferences' formula.
double ttFromUt(double jdUt);
double utFromTt(double jdTt);

}  // namespace nocturnel
