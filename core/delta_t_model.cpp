#include "core/delta_t_model.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "core/astro_constants.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

// Espenak & Meeus (2006), "Five Millennium Canon of Solar Eclipses", NASA/TP-2006-214141.
double espenakMeeus(double y) {
    if (y < -500.0 || y >= 2150.0) {
        const double u = (y - 1820.0) / 100.0;
        return -20.0 + 32.0 * u * u;
    }
    if (y < 500.0) {
        const double u = y / 100.0;
        return 10583.6 + u * (-1014.41 + u * (33.78311 + u * (-5.952053 + u * (-0.1798452 + u * (0.022174192 + u * 0.0090316521)))));
    }
    if (y < 1600.0) {
        const double u = (y - 1000.0) / 100.0;
        return 1574.2 + u * (-556.01 + u * (71.23472 + u * (0.319781 + u * (-0.8503463 + u * (-0.005050998 + u * 0.0083572073)))));
    }
    if (y < 1700.0) {
        const double t = y - 1600.0;
        return 120.0 - 0.9808 * t - 0.01532 * t * t + t * t * t / 7129.0;
    }
    if (y < 2050.0) {  // only reached past the observed table
        const double t = y - 2000.0;
        return 62.92 + 0.32217 * t + 0.005589 * t * t;
    }
    const double u = (y - 1820.0) / 100.0;
    return -20.0 + 32.0 * u * u - 0.5628 * (2150.0 - y);
}

// Chapront-Touze & Chapront (1997), Lunar Tables and Programs, with Meeus's correction to 2100.
double chaprontTouze(double y) {
    const double t = (y - 2000.0) / 100.0;
    double dt = 102.0 + 102.0 * t + 25.3 * t * t;
    if (y >= 2000.0 && y < 2100.0) dt += 0.37 * (y - 2100.0);
    return dt;
}

double observed(double y) {
    const double x = (y - kObservedDeltaTFirstYear) / kObservedDeltaTStepYears;
    const int i = std::clamp(static_cast<int>(std::floor(x)), 0, kObservedDeltaTCount - 2);
    const double f = x - i;
    return kObservedDeltaTSec[i] + (kObservedDeltaTSec[i + 1] - kObservedDeltaTSec[i]) * f;
}

// The extrapolation joined to the table's end with the same value and the same trend (the
// table's last five years), the correction fading over a century: without it the formulas'
// slopes put today's DeltaT several seconds off (Chapront-Touze: 7 s in 2026).
double joined(double y, double (*formula)(double)) {
    const double first = kObservedDeltaTFirstYear;
    const double last = first + (kObservedDeltaTCount - 1) * kObservedDeltaTStepYears;
    const bool future = y > last;
    const double edge = future ? last : first;
    const double inner = future ? edge - 5.0 : edge + 5.0;
    const double observedSlope = (observed(edge) - observed(inner)) / (edge - inner);
    const double formulaSlope = (formula(edge + 0.01) - formula(edge - 0.01)) / 0.02;
    const double shift = observed(edge) - formula(edge);
    const double fade = std::max(0.0, 1.0 - std::abs(y - edge) / 100.0);
    return formula(y) + (shift + (observedSlope - formulaSlope) * (y - edge)) * fade;
}

bool isObserved(double y) { return y >= kObservedDeltaTFirstYear && y <= lastObservedDeltaTYear(); }

double extrapolated(double y, int formula) {
    return joined(y, formula == kDeltaTChaprontTouze1997 ? chaprontTouze : espenakMeeus);
}

// The weight of the user's correction at year y: rising from 0 at the table's end to 1 at the
// present, then fading over a century. Zero before the table's end, or when the present is
// not past it (the observed values already know that DeltaT).
double currentWeight(double y, double presentYear) {
    const double end = lastObservedDeltaTYear();
    if (!(presentYear > end) || !(y > end)) return 0.0;
    if (y <= presentYear) return (y - end) / (presentYear - end);
    return std::max(0.0, 1.0 - (y - presentYear) / 100.0);
}

}  // namespace

double decimalYearOfJd(double jd) { return 2000.0 + (jd - kJ2000Jd) / 365.25; }

double lastObservedDeltaTYear() {
    return kObservedDeltaTFirstYear + (kObservedDeltaTCount - 1) * kObservedDeltaTStepYears;
}

double deltaTSecondsFor(double jdUt, int formula, const std::optional<CurrentDeltaT>& current) {
    const double y = decimalYearOfJd(jdUt);
    if (isObserved(y)) return observed(y);
    double dt = extrapolated(y, formula);
    if (current) {
        const double presentYear = decimalYearOfJd(current->jdUt);
        const double w = currentWeight(y, presentYear);
        if (w > 0.0) dt += (current->seconds - extrapolated(presentYear, formula)) * w;
    }
    return dt;
}

DeltaTSource deltaTSourceFor(double jdUt, const std::optional<CurrentDeltaT>& current) {
    const double y = decimalYearOfJd(jdUt);
    if (isObserved(y)) return DeltaTSource::Observed;
    if (current && currentWeight(y, decimalYearOfJd(current->jdUt)) > 0.0) return DeltaTSource::Current;
    return DeltaTSource::Formula;
}

const char* deltaTSourceName(DeltaTSource source) {
    switch (source) {
        case DeltaTSource::Observed: return "observed";
        case DeltaTSource::Current: return "current";
        case DeltaTSource::Formula: break;
    }
    return "formula";
}

std::optional<CurrentDeltaT> currentDeltaTFromPreferences() {
    const float seconds = prefs().deltaTSeconds;
    if (seconds == kCurrentDeltaTDefault || !(seconds >= 40.0f && seconds <= 200.0f)) return std::nullopt;
    using namespace std::chrono;
    const double unixSeconds = duration<double>(system_clock::now().time_since_epoch()).count();
    return CurrentDeltaT{2440587.5 + unixSeconds / kSecondsPerDay, seconds};
}

double modelDeltaTSeconds(double jdUt) {
    return deltaTSecondsFor(jdUt, prefs().deltaTFormula, currentDeltaTFromPreferences());
}

DeltaTSource modelDeltaTSource(double jdUt) { return deltaTSourceFor(jdUt, currentDeltaTFromPreferences()); }

double ttFromUt(double jdUt) { return jdUt + modelDeltaTSeconds(jdUt) / kSecondsPerDay; }

double utFromTt(double jdTt) {
    double jdUt = jdTt - modelDeltaTSeconds(jdTt) / kSecondsPerDay;
    jdUt = jdTt - modelDeltaTSeconds(jdUt) / kSecondsPerDay;
    return jdUt;
}

}  // namespace nocturnel
