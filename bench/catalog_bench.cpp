// Catalogue layer timings on the built catalogues: the start-up opening of every catalogue,
// a Hipparcos lookup, a Tycho lookup and a declination search.
// Usage: catalog_bench [--home PROGRAM_FOLDER] [benchmark options]; without --home the folder
// above NOCTURNEL_TEST_DATA is used. Without built catalogues nothing is measured.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "catalog/catalogues.h"
#include "catalog/star_catalog.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace {
using namespace nocturnel;
namespace fs = std::filesystem;

bool has(const char* name) { return fs::exists(dataPath(name)); }

void BM_OpenCatalogues(benchmark::State& state) {
    MessageCapture quiet;
    for (auto _ : state) {
        benchmark::DoNotOptimize(openCatalogues());
        closeCatalogues();
    }
}

void BM_HipLookup(benchmark::State& state) {
    MessageCapture quiet;
    if (!openStarCatalogLevel(4)) return state.SkipWithError("nocturnel_hip_110k.ppc cannot be opened");
    const int32_t numbers[] = {91262, 32349, 11767, 27989, 30438, 71683, 677, 113368};
    std::size_t i = 0;
    for (auto _ : state) {
        StarPosition p;
        benchmark::DoNotOptimize(findStarByNumber(numbers[i++ % std::size(numbers)], p));
    }
    closeCatalogues();
}

void BM_TychoLookup(benchmark::State& state) {
    MessageCapture quiet;
    const int level = has(kStarCatalogFiles[6]) ? 6 : 5;
    if (!openStarCatalogLevel(level)) return state.SkipWithError("no Tycho catalogue can be opened");
    // Real numbers taken from the file itself, spread over the catalogue.
    std::vector<int32_t> numbers;
    const uint32_t stars = starCatalogStarCount();
    for (uint32_t s = static_cast<uint32_t>(starsPerBlock()); s < stars && numbers.size() < 64; s += stars / 64 + 1) {
        StarPosition p;
        const int32_t n = readStarBySequence(s, p);
        if (n > 0) numbers.push_back(n);
    }
    if (numbers.empty()) return state.SkipWithError("the Tycho catalogue holds no stars");
    std::size_t i = 0;
    for (auto _ : state) {
        StarPosition p;
        benchmark::DoNotOptimize(findTychoStar(numbers[i++ % numbers.size()], p));
    }
    closeCatalogues();
}

void BM_DeclinationSearch(benchmark::State& state) {
    MessageCapture quiet;
    const int level = static_cast<int>(state.range(0));
    if (!openStarCatalogLevel(level)) return state.SkipWithError("catalogue cannot be opened");
    float dec = -89.5f;
    for (auto _ : state) {
        benchmark::DoNotOptimize(findBlockByDeclination(dec));
        dec += 7.3f;
        if (dec > 89.5f) dec -= 179.0f;
    }
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
    if (home.empty() || !fs::exists(fs::path(home) / "data" / "nocturnel_default_stars.ppc")) {
        std::cout << "catalog_bench: no built catalogues (give --home PROGRAM_FOLDER or set NOCTURNEL_TEST_DATA); "
                     "nothing measured\n";
        return 0;
    }
    setProgramFolder(home);

    benchmark::RegisterBenchmark("OpenCatalogues", BM_OpenCatalogues);
    if (has(kStarCatalogFiles[4])) benchmark::RegisterBenchmark("HipLookup", BM_HipLookup);
    if (has(kStarCatalogFiles[5]) || has(kStarCatalogFiles[6]))
        benchmark::RegisterBenchmark("TychoLookup", BM_TychoLookup);
    for (int level = 0; level < static_cast<int>(kStarCatalogFiles.size()); ++level)
        if (has(kStarCatalogFiles[level]))
            benchmark::RegisterBenchmark((std::string("DeclinationSearch/") + kStarCatalogFiles[level]).c_str(),
                                         BM_DeclinationSearch)
                ->Arg(level);

    int count = static_cast<int>(rest.size());
    benchmark::Initialize(&count, rest.data());
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
