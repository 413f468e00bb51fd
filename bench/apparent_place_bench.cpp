// Cost per star of the apparent place pipeline at one moment with warm caches, level by
// level, beside ERFA's observed place from scratch (eraAtco13) and ERFA's prepared path
// (eraApco13 once per moment, then eraAtciq + eraAtioq per star).
#include <benchmark/benchmark.h>
#include <erfa.h>

#include <cmath>
#include <vector>

#include "core/apparent_place.h"
#include "settings/preferences.h"

namespace {

using nocturnel::ObservingMoment;

struct Star {
    double raHours, decDeg;
};

// A sky-wide spread of places, the same for every benchmark.
const std::vector<Star>& stars() {
    static const std::vector<Star> all = [] {
        std::vector<Star> v;
        for (int i = 0; i < 1024; ++i) {
            const double u = std::fmod(i * 0.6180339887498949, 1.0);
            const double w = std::fmod(i * 0.7548776662466927, 1.0);
            v.push_back({24.0 * u, std::asin(2.0 * w - 1.0) * 180.0 / 3.14159265358979323846});
        }
        return v;
    }();
    return all;
}

const ObservingMoment kMoment{2025, 3, 20, 21, 0, 0};

void setSite() {
    nocturnel::Preferences& p = nocturnel::prefs();
    p.latitudeDeg = 48.1f;
    p.longitudeDeg = 1.8f;
    p.altitudeM = 60;
    p.temperatureC = 10;
    p.pressureMbar = 1010;
    p.utcOffsetMin = 60;
}

void pipelineLevel(benchmark::State& state) {
    setSite();
    const int level = static_cast<int>(state.range(0));
    const auto& all = stars();
    double alt, az, ra, dec;
    nocturnel::equatorialToHorizontal(all[0].raHours, all[0].decDeg, level, kMoment, &alt, &az, &ra,
                                      &dec);  // warm
    std::size_t i = 0;
    for (auto _ : state) {
        const Star& s = all[i++ & 1023];
        nocturnel::equatorialToHorizontal(s.raHours, s.decDeg, level, kMoment, &alt, &az, &ra, &dec);
        benchmark::DoNotOptimize(alt);
        benchmark::DoNotOptimize(az);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(pipelineLevel)->Arg(0)->Arg(1)->Arg(2)->Arg(3);

// 2025-03-20 20:00 UTC, the same moment; site 48.1 N, 1.8 W, 60 m, 1010 mbar, 10 C.
constexpr double kUtc1 = 2460754.5, kUtc2 = 20.0 / 24.0;
constexpr double kElong = -1.8 * 3.14159265358979323846 / 180.0, kPhi = 48.1 * 3.14159265358979323846 / 180.0;

void erfaAtco13FromScratch(benchmark::State& state) {
    const auto& all = stars();
    std::size_t i = 0;
    double aob, zob, hob, dob, rob, eo;
    for (auto _ : state) {
        const Star& s = all[i++ & 1023];
        eraAtco13(s.raHours * 15.0 * 3.14159265358979323846 / 180.0,
                  s.decDeg * 3.14159265358979323846 / 180.0, 0, 0, 0, 0, kUtc1, kUtc2, 0.0, kElong, kPhi,
                  60.0, 0.0, 0.0, 1010.0, 10.0, 0.5, 0.55, &aob, &zob, &hob, &dob, &rob, &eo);
        benchmark::DoNotOptimize(aob);
        benchmark::DoNotOptimize(zob);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(erfaAtco13FromScratch);

void erfaPreparedPerStar(benchmark::State& state) {
    eraASTROM astrom;
    double eo;
    eraApco13(kUtc1, kUtc2, 0.0, kElong, kPhi, 60.0, 0.0, 0.0, 1010.0, 10.0, 0.5, 0.55, &astrom, &eo);
    const auto& all = stars();
    std::size_t i = 0;
    double ri, di, aob, zob, hob, dob, rob;
    for (auto _ : state) {
        const Star& s = all[i++ & 1023];
        eraAtciq(s.raHours * 15.0 * 3.14159265358979323846 / 180.0, s.decDeg * 3.14159265358979323846 / 180.0,
                 0, 0, 0, 0, &astrom, &ri, &di);
        eraAtioq(ri, di, &astrom, &aob, &zob, &hob, &dob, &rob);
        benchmark::DoNotOptimize(aob);
        benchmark::DoNotOptimize(zob);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(erfaPreparedPerStar);

}  // namespace

BENCHMARK_MAIN();
