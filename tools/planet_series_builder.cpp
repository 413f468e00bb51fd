#include "tools/planet_series_builder.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <nlohmann/json.hpp>
#include <vector>

#include "core/planet_series_format.h"
#include "settings/message.h"
#include "tools/record_io.h"

namespace nocturnel {
namespace fs = std::filesystem;
namespace {

constexpr const char* kVsopPlanets[] = {"mercury", "venus", "earth", "mars", "jupiter", "saturn", "uranus", "neptune"};
constexpr const char* kCoordinates[] = {"L", "B", "R"};

struct Series {
    std::vector<PlanetSeriesRecord> records;
    std::vector<PlanetSeriesTerm> terms;
};

bool readJsonModule(const fs::path& file, nlohmann::json& doc, std::string& error) {
    std::string text;
    if (!readWholeFile(file, text)) {
        error = "cannot read " + file.string();
        return false;
    }
    doc = nlohmann::json::parse(astronomiaModuleToJson(text), nullptr, false);
    if (!doc.is_object()) {
        error = file.filename().string() + ": not an object literal";
        return false;
    }
    return true;
}

// Appends the series of one coordinate: {"0": [[...], ...], "1": ...}, one row per term.
bool addCoordinate(const nlohmann::json& powers, SeriesBody body, int coordinate, bool elp, Series& out,
                   std::string& error) {
    if (!powers.is_object()) {
        error = "coordinate " + std::to_string(coordinate) + " is not an object";
        return false;
    }
    for (const auto& [key, rows] : powers.items()) {
        if (key.empty() || key.size() > 1 || !std::isdigit(static_cast<unsigned char>(key[0])) || !rows.is_array()) {
            error = "bad power " + key;
            return false;
        }
        PlanetSeriesRecord r{static_cast<uint8_t>(body), static_cast<uint8_t>(coordinate),
                             static_cast<uint8_t>(std::stoi(key)), 0, static_cast<uint32_t>(out.terms.size()),
                             static_cast<uint32_t>(rows.size()), 0};
        for (const auto& row : rows) {
            const size_t want = elp ? 6 : 3;
            if (!row.is_array() || row.size() != want) {
                error = "a term of power " + key + " has not " + std::to_string(want) + " numbers";
                return false;
            }
            PlanetSeriesTerm t{};
            for (const auto& v : row)
                if (!v.is_number()) {
                    error = "a term of power " + key + " holds a non-number";
                    return false;
                }
            t.amplitude = row[0].get<double>();
            for (size_t i = 1; i < want; ++i) t.phase[i - 1] = row[i].get<double>();
            out.terms.push_back(t);
        }
        if (r.termCount) out.records.push_back(r);
    }
    return true;
}

}  // namespace

fs::path astronomiaDataFolder(const fs::path& sourcesFolder) {
    for (const char* c : {"astronomia/data", "package/data"})
        if (fs::exists(sourcesFolder / c / "vsop87Bearth.js")) return sourcesFolder / c;
    return sourcesFolder / "astronomia/data";
}

std::string astronomiaModuleToJson(std::string_view module) {
    const size_t open = module.find('{'), close = module.rfind('}');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) return {};
    std::string out;
    out.reserve(close - open + 64);
    bool inString = false;
    for (size_t i = open; i <= close; ++i) {
        const char c = module[i];
        if (inString) {
            out += c;
            if (c == '"') inString = false;
            continue;
        }
        if (c == '"') {
            inString = true;
            out += c;
            continue;
        }
        // A bare key: an identifier directly followed by a colon.
        if ((std::isalpha(static_cast<unsigned char>(c)) || c == '_') &&
            (out.empty() || out.back() == '{' || out.back() == ',' || std::isspace(static_cast<unsigned char>(out.back())))) {
            size_t j = i;
            while (j <= close && (std::isalnum(static_cast<unsigned char>(module[j])) || module[j] == '_')) ++j;
            if (j <= close && module[j] == ':') {
                out += '"';
                out.append(module.substr(i, j - i));
                out += '"';
                i = j - 1;
                continue;
            }
        }
        out += c;
    }
    return out;
}

bool buildPlanetSeriesBytes(const fs::path& dataFolder, std::string& bytes, std::string& error) {
    Series s;
    nlohmann::json doc;
    for (int p = 0; p < 8; ++p) {
        const fs::path file = dataFolder / (std::string("vsop87B") + kVsopPlanets[p] + ".js");
        if (!readJsonModule(file, doc, error)) return false;
        if (doc.value("type", "") != "B") {
            error = file.filename().string() + ": not a VSOP87B series";
            return false;
        }
        for (int c = 0; c < 3; ++c) {
            if (!doc.contains(kCoordinates[c]) ||
                !addCoordinate(doc[kCoordinates[c]], static_cast<SeriesBody>(p), c, false, s, error)) {
                error = file.filename().string() + ": " + (error.empty() ? "no series " + std::string(kCoordinates[c]) : error);
                return false;
            }
        }
    }
    const fs::path elp = dataFolder / "elpMppDeFull.js";
    if (!readJsonModule(elp, doc, error)) return false;
    for (int c = 0; c < 3; ++c) {
        if (!doc.contains(kCoordinates[c]) || !addCoordinate(doc[kCoordinates[c]], SeriesBody::Moon, c, true, s, error)) {
            error = "elpMppDeFull.js: " + (error.empty() ? "no series " + std::string(kCoordinates[c]) : error);
            return false;
        }
    }
    const auto& w1 = doc["W1"];
    if (!w1.is_array() || w1.size() != 5 || !std::all_of(w1.begin(), w1.end(), [](const auto& v) { return v.is_number(); })) {
        error = "elpMppDeFull.js: W1 is not five numbers";
        return false;
    }
    PlanetSeriesTerm mean{1.0, {}};
    for (size_t i = 0; i < 5; ++i) mean.phase[i] = w1[i].get<double>();
    s.records.push_back({static_cast<uint8_t>(SeriesBody::Moon), kMoonMeanLongitude, 0, 0,
                         static_cast<uint32_t>(s.terms.size()), 1, 0});
    s.terms.push_back(mean);

    const PlanetSeriesHeader header{kPlanetSeriesMagic, kPlanetSeriesVersion, sizeof(PlanetSeriesTerm),
                                    static_cast<uint32_t>(s.records.size()), static_cast<uint32_t>(s.terms.size())};
    bytes.assign(sizeof header + s.records.size() * sizeof(PlanetSeriesRecord) + s.terms.size() * sizeof(PlanetSeriesTerm), '\0');
    char* p = bytes.data();
    std::memcpy(p, &header, sizeof header);
    p += sizeof header;
    std::memcpy(p, s.records.data(), s.records.size() * sizeof(PlanetSeriesRecord));
    p += s.records.size() * sizeof(PlanetSeriesRecord);
    std::memcpy(p, s.terms.data(), s.terms.size() * sizeof(PlanetSeriesTerm));
    return true;
}

bool writePlanetSeriesFile(const fs::path& sourcesFolder, const fs::path& stageFolder, BuildReport& report) {
    std::string bytes, error;
    if (!buildPlanetSeriesBytes(astronomiaDataFolder(sourcesFolder), bytes, error)) {
        showMessage("Malformed catalogue source", error);
        return false;
    }
    if (!writeWholeFile(stageFolder / kPlanetSeriesFileName, bytes)) {
        showMessage("Could not write catalogue file", (stageFolder / kPlanetSeriesFileName).string());
        return false;
    }
    PlanetSeriesHeader header{};
    std::memcpy(&header, bytes.data(), sizeof header);
    report.files.push_back({kPlanetSeriesFileName, header.termCount, 0});
    return true;
}

std::string planetSeriesSourcesText(const fs::path& sourcesFolder) {
    std::string version = "unknown version", text;
    if (readWholeFile(astronomiaDataFolder(sourcesFolder).parent_path() / "package.json", text)) {
        const auto doc = nlohmann::json::parse(text, nullptr, false);
        if (doc.is_object() && doc.contains("version") && doc["version"].is_string()) version = doc["version"].get<std::string>();
    }
    return "\nastronomia " + version + " (npm), MIT licence, (c) 2013 Sonia Keys, 2016 commenthol:\n"
           "  data/vsop87B*.js (VSOP87B, Bretagnon & Francou 1988, full series of the eight planets),\n"
           "  data/elpMppDeFull.js (ELP/MPP02 fitted to DE405, Chapront & Francou 2003, full series).\n"
           "  -> nocturnel_planets.ppc.\n";
}

}  // namespace nocturnel
