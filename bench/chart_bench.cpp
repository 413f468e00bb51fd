// One whole chart (every layer switched on, the Milky Way included, PNG encoded in memory) at
// 800x800 for each zoom level, on the built catalogues (NOCTURNEL_TEST_DATA) with the Hipparcos
// card and with the deep "Tycho 390K" card, and on a generated file of
// 2.5 million stars in the Tycho catalogue format that serves every zoom level. The resident
// memory and its growth over the runs are reported beside the times (they must not follow the
// catalogue's size).
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <vector>

#include "catalog/catalogues.h"
#include "catalog/formats.h"
#include "chart/chart_render.h"
#include "chart/png_writer.h"
#include "chart/sky_objects.h"
#include "settings/program_folder.h"

namespace {

using namespace nocturnel;
namespace fs = std::filesystem;

constexpr int kTychoStars = 2500000;
constexpr int kStarsPerBlock = 80;

void setUpPreferences(int cardCatalog) {
    Preferences& p = prefs();
    p.latitudeDeg = 48.1f;
    p.longitudeDeg = -2.35f;
    p.utcOffsetMin = 60;
    p.sinLatitude = static_cast<float>(std::sin(48.1 * M_PI / 180));
    p.cosLatitude = static_cast<float>(std::cos(48.1 * M_PI / 180));
    p.cardCatalog = cardCatalog;
    for (int i = 0; i < kZoomTableSlots; ++i) {
        p.zoomStarLimit[i] = 0;  // the deeper choice of every zoom level
        p.zoomObjectLimit[i] = 3;
    }
    for (int& box : p.displayBox) box = 1;
    p.displayBox[kBoxHideGrid] = p.displayBox[kBoxHideInfoBar] = p.displayBox[kBoxHideCompass] = 0;
    p.displayBox[kBoxHideToolBar] = 0;
}

double threadCpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// Resident memory now, MiB.
double residentMiB() {
    long pages = 0, resident = 0;
    if (std::FILE* f = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
        std::fclose(f);
    }
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

void renderOnce(benchmark::State& state, bool switchCatalogue) {
    ChartRequest request;
    request.zoomLevel = static_cast<int>(state.range(0));
    request.moment = {2026, 11, 21, 22, 0, 0};
    request.switchCatalogForZoom = switchCatalogue;
    int fieldStars = 0;
    std::vector<uint8_t> png;
    const double residentBefore = residentMiB();
    double renderSeconds = 0, pngSeconds = 0;
    for (auto _ : state) {
        ChartResult result;
        const double start = threadCpuSeconds();
        ChartSurface surface = renderChart(request, result);
        const double rendered = threadCpuSeconds();
        renderSeconds += rendered - start;
        if (!surface) {
            state.SkipWithError("chart not rendered");
            return;
        }
        if (!encodePng(surface.get(), png)) {
            state.SkipWithError("PNG not encoded");
            return;
        }
        pngSeconds += threadCpuSeconds() - rendered;
        fieldStars = result.fieldStars.drawn;
    }
    state.counters["fieldStars"] = fieldStars;
    // The chart and its PNG encoding apart (CPU time of this thread, steadier than the wall
    // clock on a shared machine).
    const double runs = static_cast<double>(std::max<benchmark::IterationCount>(1, state.iterations()));
    state.counters["renderMs"] = renderSeconds * 1000 / runs;
    state.counters["pngMs"] = pngSeconds * 1000 / runs;
    state.counters["pngKiB"] = static_cast<double>(png.size()) / 1024.0;
    state.counters["rssMiB"] = residentMiB();
    state.counters["rssGrowthMiB"] = residentMiB() - residentBefore;
}

// ---- Built catalogues ----
// Opens the built data/ with the given card (4 "Hipparchos 110K", 5 "Tycho 390K": the deep card
// made from Stellarium's catalogue serves zoom levels 9 to 12).
bool openBuilt(int cardCatalog) {
    static int openedCard = -1;
    if (openedCard == cardCatalog) return true;
    const char* data = std::getenv("NOCTURNEL_TEST_DATA");
    const char* needed = cardCatalog >= 5 ? "nocturnel_tycho_390k.ppc" : "nocturnel_hip_110k.ppc";
    if (data == nullptr || !fs::exists(fs::path(data) / needed)) return false;
    setProgramFolder(fs::path(data).parent_path());
    setUpPreferences(cardCatalog);
    closeCatalogues();
    forgetChartCatalogues();
    if (openCatalogues() != 0) return false;
    openedCard = cardCatalog;
    return true;
}

void BM_ChartHipparcos(benchmark::State& state) {
    if (!openBuilt(4)) {
        state.SkipWithError("NOCTURNEL_TEST_DATA holds no nocturnel_hip_110k.ppc");
        return;
    }
    renderOnce(state, true);
}

void BM_ChartDeepCard(benchmark::State& state) {
    if (!openBuilt(5)) {
        state.SkipWithError("NOCTURNEL_TEST_DATA holds no nocturnel_tycho_390k.ppc");
        return;
    }
    renderOnce(state, true);
}

// ---- Generated Tycho-sized catalogue ----
struct GeneratedFolder {
    fs::path path;
    ~GeneratedFolder() {
        std::error_code ignored;
        if (!path.empty()) fs::remove_all(path, ignored);
    }
};

template <typename Record>
void writeFile(const fs::path& file, const std::vector<Record>& records) {
    std::FILE* f = std::fopen(file.c_str(), "wb");
    const DatabaseHeader header{1, 0, static_cast<uint32_t>(records.size()), sizeof(Record)};
    std::fwrite(&header, sizeof header, 1, f);
    std::fwrite(records.data(), sizeof(Record), records.size(), f);
    std::fclose(f);
}

StarEntry packStar(int32_t number, double raHours, double decDeg, double mag, int colour) {
    StarEntry e{};
    e.number = number;
    const int raSeconds = static_cast<int>(raHours * 3600);
    e.raH = static_cast<int8_t>(raSeconds / 3600);
    e.raM = static_cast<int8_t>(raSeconds / 60 % 60);
    e.raS = static_cast<int8_t>(raSeconds % 60);
    const int decSeconds = static_cast<int>(decDeg * 3600);
    e.decD = static_cast<int8_t>(decSeconds / 3600);
    e.decM = static_cast<int8_t>(decSeconds / 60 % 60);
    e.decS = static_cast<int8_t>(decSeconds % 60);
    e.mag16 = static_cast<uint8_t>(std::clamp(mag * 16, 0.0, 255.0));
    e.colour = static_cast<int8_t>(colour);
    return e;
}

// Stars spread evenly over the sphere; magnitudes follow N(<m) ~ 10^(0.45 (m - 12)), about the
// counts of the Tycho-2 catalogue.
bool generateTycho(GeneratedFolder& folder) {
    folder.path = fs::temp_directory_path() / ("nocturnel-chart-bench-" + std::to_string(::getpid()));
    fs::create_directories(folder.path / "data");
    std::mt19937 rng(2026);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::vector<StarEntry> stars;
    stars.reserve(kTychoStars);
    for (int i = 0; i < kTychoStars; ++i) {
        const double dec = std::asin(2 * unit(rng) - 1) * 180 / M_PI;
        const double mag = std::max(-1.0, 12.4 + std::log10(std::max(1e-9, unit(rng))) / 0.45);
        stars.push_back(packStar(i + 1, 24 * unit(rng), dec, mag, static_cast<int>(unit(rng) * 20) - 3));
    }
    std::sort(stars.begin(), stars.end(), [](const StarEntry& a, const StarEntry& b) {
        return a.decD * 3600 + a.decM * 60 + a.decS < b.decD * 3600 + b.decM * 60 + b.decS;
    });
    struct Block {
        StarEntry entries[kStarsPerBlock];
    };
    std::vector<Block> blocks(kTychoStars / kStarsPerBlock);
    std::copy(stars.begin(), stars.end(), &blocks[0].entries[0]);
    writeFile(folder.path / "data" / "nocturnel_tycho_2500k.ppc", blocks);
    // The 1,646 default stars: the built file when there is one, else the brightest generated stars.
    const char* data = std::getenv("NOCTURNEL_TEST_DATA");
    const fs::path builtDefaults = data != nullptr ? fs::path(data) / "nocturnel_default_stars.ppc" : fs::path();
    if (!builtDefaults.empty() && fs::exists(builtDefaults)) {
        fs::copy_file(builtDefaults, folder.path / "data" / "nocturnel_default_stars.ppc");
        for (const char* name : {"nocturnel_obj_18k.ppc", "nocturnel_constellation.ppc", "nocturnel_constellation_lines.ppc",
                                 "nocturnel_constellation_bounds.ppc"})
            if (fs::exists(fs::path(data) / name)) fs::copy_file(fs::path(data) / name, folder.path / "data" / name);
    } else {
        std::vector<DefaultStarRecord> defaults;
        for (const StarEntry& s : stars) {
            if (s.mag16 > 5 * 16 || defaults.size() == 1646) continue;
            DefaultStarRecord r{};
            r.raHours = s.raH + (s.raM * 60 + s.raS) / 3600.0f;
            r.decDeg = s.decD + (s.decM * 60 + s.decS) / 3600.0f;
            r.mag = s.mag16 / 16.0f;
            defaults.push_back(r);
        }
        defaults.resize(1646);
        writeFile(folder.path / "data" / "nocturnel_default_stars.ppc", defaults);
    }
    setProgramFolder(folder.path);
    setUpPreferences(6);
    closeCatalogues();
    forgetChartCatalogues();
    if (!openDefaultStars() || !openStarCatalogLevel(6)) return false;
    openObjectFiles();
    return true;
}

void BM_ChartTycho2500k(benchmark::State& state) {
    static GeneratedFolder folder;
    static const bool ready = generateTycho(folder);
    if (!ready) {
        state.SkipWithError("generated catalogue could not be opened");
        return;
    }
    renderOnce(state, false);  // the Tycho-sized file serves every zoom level
}

}  // namespace

BENCHMARK(BM_ChartHipparcos)->DenseRange(0, 12)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_ChartDeepCard)->DenseRange(0, 12)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_ChartTycho2500k)->DenseRange(0, 12)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK_MAIN();
