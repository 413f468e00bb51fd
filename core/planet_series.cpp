#include "core/planet_series.h"

#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>

#include "core/astro_constants.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {

std::unique_ptr<PlanetSeriesSet>& loadedSeries() {
    static std::unique_ptr<PlanetSeriesSet> set;
    return set;
}
bool& loadTried() {
    static bool tried = false;
    return tried;
}

bool readFile(const std::filesystem::path& file, std::string& bytes) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return false;
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return static_cast<bool>(in) || in.eof();
}

double horner(const double* c, int n, double t) {
    double s = 0.0;
    for (int i = n - 1; i >= 0; --i) s = s * t + c[i];
    return s;
}

}  // namespace

bool parsePlanetSeries(std::string_view bytes, PlanetSeriesSet& set, std::string& error) {
    PlanetSeriesHeader header{};
    if (bytes.size() < sizeof header) {
        error = "shorter than its header";
        return false;
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    if (header.magic != kPlanetSeriesMagic || header.version != kPlanetSeriesVersion ||
        header.termSize != sizeof(PlanetSeriesTerm)) {
        error = "not a planet series file of version " + std::to_string(kPlanetSeriesVersion);
        return false;
    }
    const size_t expected = sizeof header + size_t{header.seriesCount} * sizeof(PlanetSeriesRecord) +
                            size_t{header.termCount} * sizeof(PlanetSeriesTerm);
    if (bytes.size() != expected) {
        error = "length disagrees with its counts";
        return false;
    }
    set = PlanetSeriesSet{};
    const char* p = bytes.data() + sizeof header;
    for (uint32_t i = 0; i < header.seriesCount; ++i, p += sizeof(PlanetSeriesRecord)) {
        PlanetSeriesRecord r{};
        std::memcpy(&r, p, sizeof r);
        if (r.body >= kSeriesBodyCount || r.coordinate >= kSeriesCoordinateCount || r.power > 8 ||
            size_t{r.firstTerm} + r.termCount > header.termCount) {
            error = "series record " + std::to_string(i) + " out of range";
            return false;
        }
        set.series[r.body][r.coordinate].push_back({r.power, r.firstTerm, r.termCount});
    }
    set.terms.resize(header.termCount);
    if (header.termCount) std::memcpy(set.terms.data(), p, set.terms.size() * sizeof(PlanetSeriesTerm));
    // Every body needs its three coordinates, the Moon its mean longitude W1 as one term.
    for (int b = 0; b < kSeriesBodyCount; ++b)
        for (int c = 0; c < 3; ++c)
            if (set.series[b][c].empty()) {
                error = "series " + std::to_string(c) + " of body " + std::to_string(b) + " is missing";
                return false;
            }
    const auto& w1 = set.series[static_cast<int>(SeriesBody::Moon)][kMoonMeanLongitude];
    if (w1.size() != 1 || w1[0].count != 1) {
        error = "the Moon's mean longitude is missing";
        return false;
    }
    return true;
}

bool loadPlanetSeriesFrom(const std::filesystem::path& file) {
    loadTried() = true;
    std::string bytes, error;
    auto set = std::make_unique<PlanetSeriesSet>();
    if (!readFile(file, bytes)) {
        showMessage("Can't open planet file", file.string());
        loadedSeries().reset();
        return false;
    }
    if (!parsePlanetSeries(bytes, *set, error)) {
        showMessage("Can't open planet file", file.filename().string() + ": " + error);
        loadedSeries().reset();
        return false;
    }
    loadedSeries() = std::move(set);
    return true;
}

const PlanetSeriesSet* planetSeries() {
    if (!loadTried()) loadPlanetSeriesFrom(dataPath(kPlanetSeriesFileName));
    return loadedSeries().get();
}

SeriesValue vsopCoordinate(const PlanetSeriesSet& set, SeriesBody body, int coordinate, double tau) {
    double value = 0.0, rate = 0.0;
    for (const PlanetSeriesSet::Span& span : set.series[static_cast<int>(body)][coordinate]) {
        double sum = 0.0, sumRate = 0.0;
        const PlanetSeriesTerm* t = set.terms.data() + span.first;
        for (uint32_t i = 0; i < span.count; ++i, ++t) {
            const double arg = t->phase[0] + t->phase[1] * tau;
            sum += t->amplitude * std::cos(arg);
            sumRate -= t->amplitude * t->phase[1] * std::sin(arg);
        }
        const double tp = std::pow(tau, span.power);
        value += sum * tp;
        rate += sumRate * tp + (span.power > 0 ? span.power * sum * std::pow(tau, span.power - 1) : 0.0);
    }
    return {value, rate};
}

double vsopValue(const PlanetSeriesSet& set, SeriesBody body, int coordinate, double tau, double minAmplitude) {
    double value = 0.0;
    for (const PlanetSeriesSet::Span& span : set.series[static_cast<int>(body)][coordinate]) {
        double sum = 0.0;
        const PlanetSeriesTerm* t = set.terms.data() + span.first;
        for (uint32_t i = 0; i < span.count; ++i, ++t)
            if (std::abs(t->amplitude) >= minAmplitude) sum += t->amplitude * std::cos(t->phase[0] + t->phase[1] * tau);
        value += sum * std::pow(tau, span.power);
    }
    return value;
}

MoonSpherical elpMoonSpherical(const PlanetSeriesSet& set, double t) {
    const auto& moon = set.series[static_cast<int>(SeriesBody::Moon)];
    auto sum = [&](int coordinate) {
        double value = 0.0;
        for (const PlanetSeriesSet::Span& span : moon[coordinate]) {
            double s = 0.0;
            const PlanetSeriesTerm* term = set.terms.data() + span.first;
            for (uint32_t i = 0; i < span.count; ++i, ++term) s += term->amplitude * std::sin(horner(term->phase, 5, t));
            value += s * std::pow(t, span.power);
        }
        return value;
    };
    const PlanetSeriesTerm& w1 = set.terms[moon[kMoonMeanLongitude][0].first];
    const double arcsecToRad = 1.0 / kArcsecPerRadian;
    return {horner(w1.phase, 5, t) + sum(0) * arcsecToRad, sum(1) * arcsecToRad, sum(2)};
}

}  // namespace nocturnel
