// SkyRoamer timings on the built catalogues: a full run (every stage, the estimate-driven
// criteria all set: magnitude, difficulty, size, visibility) over the 18k object file and the
// bright stars, with the hooks the command line uses (the Sun, Moon and planets of the moment,
// the visibility estimate); and the time from setting the stop flag to the run returning.
// Usage: roam_bench [--home PROGRAM_FOLDER] [benchmark options]; without --home the folder above
// NOCTURNEL_TEST_DATA is used. Without built catalogues nothing is measured.
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "catalog/catalogues.h"
#include "plans/selection_run.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"
#include "shell/selection_hooks.h"

namespace {
using namespace nocturnel;
namespace fs = std::filesystem;

SelectionCriteria everyCriterion() {
    SelectionCriteria c;
    c.magLimitChoice = 1;   // "Scope Limit"
    c.difficulty = 3;       // "Easy"
    c.sizeMatch = 1;
    c.sizeReference = 1;    // best magnification near that of the chosen eyepiece
    c.visibility = 1;       // "Visible"
    return c;
}

void setUpSky() {
    prefs() = defaultPreferences();
    prefs().latitudeDeg = 45.0;
    prefs().longitudeDeg = 3.0;
    prefs().utcOffsetMin = 60;
    prefs().moment = {2026, 1, 16, 21, 30, 0};
    std::strncpy(prefs().siteName, "Causse", sizeof prefs().siteName - 1);
    prefs().scopeDiameterIndex = 9;  // 203 mm
}

void BM_RoamFullRun(benchmark::State& state) {
    MessageCapture quiet;
    if (openCatalogues() != 0) return state.SkipWithError("the catalogues cannot be opened");
    setUpSky();
    std::size_t found = 0;
    SelectionOutcome outcome;
    for (auto _ : state) {
        SelectionCriteria c = everyCriterion();
        SelectionRunHooks hooks = selectionHooksFor(c, {});
        SelectionList list;
        list.capacity = 1 << 20;  // never full: every stage runs to its end
        outcome = runSelection(c, hooks, list);
        found = list.items.size();
    }
    state.counters["selected"] = static_cast<double>(found);
    state.counters["stages"] = static_cast<double>(outcome.stages.size());
    state.counters["failed"] = outcome.failed ? 1 : 0;
    closeCatalogues();
}

// The stop flag is set a little after the run starts; the time measured is from setting it to
// the run returning.
void BM_RoamStopLatency(benchmark::State& state) {
    MessageCapture quiet;
    if (openCatalogues() != 0) return state.SkipWithError("the catalogues cannot be opened");
    setUpSky();
    const auto delay = std::chrono::milliseconds(state.range(0));
    double worstMs = 0;
    for (auto _ : state) {
        std::atomic<bool> stop{false};
        SelectionCriteria c = everyCriterion();
        SelectionRunHooks hooks = selectionHooksFor(c, [&stop] { return stop.load(std::memory_order_relaxed); });
        SelectionList list;
        list.capacity = 1 << 20;
        std::chrono::steady_clock::time_point stopAt;
        std::thread run([&] { runSelection(c, hooks, list); });
        std::this_thread::sleep_for(delay);
        stopAt = std::chrono::steady_clock::now();
        stop = true;
        run.join();
        const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - stopAt).count();
        state.SetIterationTime(ms / 1000.0);
        worstMs = std::max(worstMs, ms);
    }
    state.counters["worst_ms"] = worstMs;
    closeCatalogues();
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
        std::cout << "roam_bench: no built catalogues (give --home PROGRAM_FOLDER or set NOCTURNEL_TEST_DATA); "
                     "nothing measured\n";
        return 0;
    }
    setProgramFolder(home);

    benchmark::RegisterBenchmark("RoamFullRun", BM_RoamFullRun)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("RoamStopLatency", BM_RoamStopLatency)
        ->Arg(5)
        ->Arg(15)
        ->UseManualTime()
        ->Iterations(20)
        ->Unit(benchmark::kMillisecond);

    int count = static_cast<int>(rest.size());
    benchmark::Initialize(&count, rest.data());
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
