// Object information timings on the built catalogues: the visibility estimate for every object
// of the 18k object file in one pass, a finder query (designations, common names, Bayer
// designations), a prefix suggestion and a tap identification on a drawn chart.
// Usage: visibility_bench [--home PROGRAM_FOLDER] [benchmark options]; without --home the folder
// above NOCTURNEL_TEST_DATA is used. Without built catalogues nothing is measured.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "catalog/catalogues.h"
#include "catalog/eyepieces.h"
#include "catalog/object_finder.h"
#include "catalog/objects.h"
#include "chart/identify.h"
#include "chart/sky_objects.h"
#include "chart/visibility.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"

namespace {
using namespace nocturnel;
namespace fs = std::filesystem;

std::vector<VisibilityTarget> allObjectTargets() {
    std::vector<VisibilityTarget> targets;
    const int count = recordCount(objectSlot());
    for (int i = 0; i < count; ++i) {
        ObjectRecord o;
        if (!readObject(static_cast<uint16_t>(i), o)) break;
        targets.push_back({o.mag, o.mag != 0.0f, o.majorArcmin, o.minorArcmin, o.type, 50.0});
    }
    return targets;
}

void BM_VisibilityAllObjects(benchmark::State& state) {
    MessageCapture quiet;
    if (openCatalogues() != 0) return state.SkipWithError("the catalogues cannot be opened");
    const std::vector<VisibilityTarget> targets = allObjectTargets();
    std::vector<EyepieceRecord> eyepieces;
    loadEyepieces(eyepieces);
    Preferences p = prefs();
    p.scopeDiameterIndex = 8;  // 203 mm
    p.fRatioIndex = 6;         // f/10
    for (auto _ : state) {
        const VisibilityConditions c = prepareVisibility(visibilitySetupFromPreferences(p, eyepieces));
        double sum = 0;
        for (const VisibilityTarget& t : targets) sum += estimateVisibility(t, c).ratio;
        benchmark::DoNotOptimize(sum);
    }
    state.counters["objects"] = static_cast<double>(targets.size());
    closeCatalogues();
}

void BM_FinderQuery(benchmark::State& state) {
    MessageCapture quiet;
    if (openCatalogues() != 0) return state.SkipWithError("the catalogues cannot be opened");
    const char* names[] = {"NGC 7000", "M 42", "Orion Nebula", "alpha Lyr", "HIP 27989", "IC 434", "Betelgeuse", "C 14",
                           "61 Cyg", "Andromeda Galaxy", "M 101", "UGC 5470"};
    std::size_t i = 0;
    for (auto _ : state) {
        FoundObject found;
        benchmark::DoNotOptimize(findObjectByName(names[i++ % std::size(names)], found));
    }
    closeCatalogues();
}

void BM_Suggest(benchmark::State& state) {
    MessageCapture quiet;
    const char* prefixes[] = {"or", "ring", "alpha L", "be", "great", "m", "61"};
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(suggestObjectNames(prefixes[i++ % std::size(prefixes)], 10));
}

void BM_Identify(benchmark::State& state) {
    MessageCapture quiet;
    if (openCatalogues() != 0) return state.SkipWithError("the catalogues cannot be opened");
    forgetChartCatalogues();
    ChartRequest request;
    request.zoomLevel = static_cast<int>(state.range(0));
    request.moment = {2026, 7, 15, 23, 30, 0};
    request.centreRaHours = 18.6156;
    request.centreDecDeg = 38.7837;
    ChartResult chart;
    if (!renderChart(request, chart)) return state.SkipWithError("the chart cannot be drawn");
    int k = 0;
    for (auto _ : state) {
        const int x = (k * 37) % chart.view.width, y = (k * 53) % chart.view.height;
        ++k;
        benchmark::DoNotOptimize(identifyInChart(chart, x, y));
    }
    closeCatalogues();
    forgetChartCatalogues();
}
}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> rest;
    std::string home;
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "--home") == 0 && i + 1 < argc) {
            home = argv[++i];
            continue;
        }
        rest.push_back(argv[i]);
    }
    if (home.empty()) {
        const char* data = std::getenv("NOCTURNEL_TEST_DATA");
        if (data && *data) home = fs::path(data).parent_path().string();
    }
    if (home.empty() || !fs::exists(fs::path(home) / "data" / "nocturnel_obj_18k.ppc")) {
        std::cout << "visibility_bench: no built catalogues (give --home PROGRAM_FOLDER or set NOCTURNEL_TEST_DATA); "
                     "nothing measured\n";
        return 0;
    }
    setProgramFolder(home);
    prefs() = defaultPreferences();

    benchmark::RegisterBenchmark("VisibilityAllObjects", BM_VisibilityAllObjects)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("FinderQuery", BM_FinderQuery)->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("Suggest", BM_Suggest)->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("Identify", BM_Identify)->Arg(0)->Arg(8)->Unit(benchmark::kMicrosecond);

    int count = static_cast<int>(rest.size());
    benchmark::Initialize(&count, rest.data());
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
