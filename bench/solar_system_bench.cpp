// The Sun, Moon and planets: all ten bodies' apparent places (geocentric and topocentric,
// horizontal, physical data) for one moment; rise, transit and set of every body for one
// night; a year's event search. Needs data/nocturnel_planets.ppc in the program folder
// (NOCTURNEL_HOME or the executable's folder).
#include <benchmark/benchmark.h>

#include "core/planet_events.h"
#include "core/planet_series.h"
#include "core/solar_system_sky.h"
#include "core/time.h"
#include "settings/preferences.h"

namespace {

using namespace nocturnel;

SkyRequest request(bool riseSet) {
    Preferences& p = prefs();
    p.latitudeDeg = 48.1f;
    p.longitudeDeg = 1.8f;
    p.altitudeM = 60;
    p.utcOffsetMin = 60;
    p.moment = ObservingMoment{2026, 11, 23, 21, 0, 0};
    return skyRequestFromPreferences(riseSet);
}

void BM_AllBodiesOneMoment(benchmark::State& state) {
    if (!planetSeries()) return state.SkipWithError("no planet file");
    SkyRequest r = request(false);
    SolarSystemReport report;
    for (auto _ : state) {
        r.jdUt += 1e-6;  // a new moment each time: no cached Earth or nutation
        solarSystemAt(r, &report);
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_AllBodiesOneMoment)->Unit(benchmark::kMillisecond);

void BM_RiseTransitSetAllBodiesOneNight(benchmark::State& state) {
    if (!planetSeries()) return state.SkipWithError("no planet file");
    SkyRequest r = request(true);
    SolarSystemReport report;
    for (auto _ : state) {
        solarSystemAt(r, &report);
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_RiseTransitSetAllBodiesOneNight)->Unit(benchmark::kMillisecond);

void BM_EventSearchOneYear(benchmark::State& state) {
    if (!planetSeries()) return state.SkipWithError("no planet file");
    const double from = julianDayAtMidnight(2027, 1, 1);
    for (auto _ : state) {
        const auto events = findPlanetEvents(from, from + 365.0);
        benchmark::DoNotOptimize(events);
    }
}
BENCHMARK(BM_EventSearchOneYear)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
