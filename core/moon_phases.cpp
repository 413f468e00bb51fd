#include "core/moon_phases.h"

#include <cmath>

#include "core/astro_constants.h"
#include "core/delta_t_model.h"
#include "core/ecliptic_place.h"
#include "core/root_search.h"

namespace nocturnel {
namespace {

constexpr double kSynodicMonthDays = 29.530588853;

}  // namespace

const char* moonPhaseName(int quarter) {
    static const char* const kNames[] = {"New Moon", "First Quarter", "Full Moon", "Last Quarter"};
    return kNames[((quarter % 4) + 4) % 4];
}

double moonElongationLongitudeDeg(double jdUt) {
    const double jdTt = jdUt + modelDeltaTSeconds(jdUt) / kSecondsPerDay;
    EclipticPlace moon, sun;
    if (apparentEclipticPlace(SolarBody::Moon, jdTt, &moon) != 0 || apparentEclipticPlace(SolarBody::Sun, jdTt, &sun) != 0)
        return -1.0;
    return std::fmod(moon.longitudeDeg - sun.longitudeDeg + 720.0, 360.0);
}

std::vector<MoonPhaseEvent> moonPhasesBetween(double fromJdUt, double toJdUt) {
    std::vector<MoonPhaseEvent> out;
    // The elongation grows by about 12 degrees a day: a step of one day meets each quarter.
    double t0 = fromJdUt, e0 = moonElongationLongitudeDeg(t0);
    if (e0 < 0.0) return out;
    while (t0 < toJdUt) {
        const double t1 = t0 + 1.0;
        const double e1 = moonElongationLongitudeDeg(t1);
        if (e1 < 0.0) return out;
        for (int q = 0; q < 4; ++q) {
            const double target = 90.0 * q;
            const double a = wrap180(e0 - target), b = wrap180(e1 - target);
            if (a < 0.0 && b >= 0.0 && b - a < 90.0) {
                const double when = findRoot([&](double t) { return wrap180(moonElongationLongitudeDeg(t) - target); }, t0, t1);
                if (when >= fromJdUt && when < toJdUt) out.push_back({q, when});
            }
        }
        t0 = t1;
        e0 = e1;
    }
    return out;
}

std::vector<MoonPhaseEvent> nextMoonPhases(double jdUt, int count) {
    std::vector<MoonPhaseEvent> out = moonPhasesBetween(jdUt, jdUt + 8.0 * count + 2.0);
    if (static_cast<int>(out.size()) > count) out.resize(count);
    return out;
}

double moonAgeDays(double jdUt) {
    const double e = moonElongationLongitudeDeg(jdUt);
    if (e < 0.0) return 0.0;
    // The last new moon lies about e / 12.19 days back; search the two days around it.
    const double guess = jdUt - e / 360.0 * kSynodicMonthDays;
    const auto phases = moonPhasesBetween(guess - 1.5, jdUt);
    for (auto it = phases.rbegin(); it != phases.rend(); ++it)
        if (it->quarter == 0) return jdUt - it->jdUt;
    return e / 360.0 * kSynodicMonthDays;
}

const char* moonPhaseDescription(double e) {
    static const char* const kNames[] = {"New Moon",  "Waxing Crescent", "First Quarter", "Waxing Gibbous",
                                         "Full Moon", "Waning Gibbous",  "Last Quarter",  "Waning Crescent"};
    const int sector = static_cast<int>(std::floor(std::fmod(e + 22.5 + 360.0, 360.0) / 45.0)) % 8;
    return kNames[sector];
}

}  // namespace nocturnel
