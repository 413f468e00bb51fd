// Parsers of d3-celestial's GeoJSON data files (stars, star names, constellations).
#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "tools/sources.h"

namespace nocturnel {
namespace {
using nlohmann::json;

// Reads a number that the files write either as a JSON number or as a numeric string.
bool numberField(const json& value, double& out) {
    if (value.is_number()) {
        out = value.get<double>();
        return std::isfinite(out);
    }
    if (!value.is_string()) return false;
    const std::string& text = value.get_ref<const std::string&>();
    if (text.empty()) return false;
    char* end = nullptr;
    out = std::strtod(text.c_str(), &end);
    return end && *end == '\0' && std::isfinite(out);
}

double unwrapLongitude(double lonDeg) { return lonDeg < 0 ? lonDeg + 360.0 : lonDeg; }

bool parseDocument(std::string_view text, json& doc, std::string& error) {
    doc = json::parse(text.begin(), text.end(), nullptr, false);
    if (doc.is_discarded()) {
        error = "not valid JSON";
        return false;
    }
    return true;
}

bool features(const json& doc, const json*& list, std::string& error) {
    if (!doc.is_object() || !doc.contains("features") || !doc["features"].is_array()) {
        error = "no \"features\" array";
        return false;
    }
    list = &doc["features"];
    return true;
}

bool point(const json& feature, double& lonDeg, double& latDeg) {
    if (!feature.contains("geometry") || !feature["geometry"].is_object()) return false;
    const json& c = feature["geometry"].value("coordinates", json());
    if (!c.is_array() || c.size() != 2 || !c[0].is_number() || !c[1].is_number()) return false;
    lonDeg = c[0].get<double>();
    latDeg = c[1].get<double>();
    return lonDeg >= -180.0 && lonDeg <= 360.0 && latDeg >= -90.0 && latDeg <= 90.0;
}

std::string stringField(const json& object, const char* key) {
    auto it = object.find(key);
    return it != object.end() && it->is_string() ? it->get<std::string>() : std::string{};
}

// "HD 172167" (with a thin space in the file) -> 172167; 0 when absent.
int32_t hdNumber(const std::string& text) {
    auto first = std::find_if(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    int32_t value = 0;
    for (auto it = first; it != text.end() && *it >= '0' && *it <= '9' && value < 10000000; ++it)
        value = value * 10 + (*it - '0');
    return value;
}

using Path = std::vector<std::pair<double, double>>;
bool readPath(const json& coordinates, Path& path) {
    if (!coordinates.is_array()) return false;
    for (const json& p : coordinates) {
        if (!p.is_array() || p.size() < 2 || !p[0].is_number() || !p[1].is_number()) return false;
        const double lat = p[1].get<double>();
        if (lat < -90.0 || lat > 90.0) return false;
        path.emplace_back(unwrapLongitude(p[0].get<double>()), lat);
    }
    return true;
}
}  // namespace

static bool hipparcosStars(std::string_view text, std::vector<HipparcosStar>& stars, std::string& error) {
    json doc;
    const json* list = nullptr;
    if (!parseDocument(text, doc, error) || !features(doc, list, error)) return false;
    stars.clear();
    stars.reserve(list->size());
    for (const json& f : *list) {
        HipparcosStar star;
        double lon = 0, lat = 0;
        if (!f.is_object() || !f.contains("id") || !f["id"].is_number_integer() || !point(f, lon, lat) ||
            !f.contains("properties") || !f["properties"].is_object() ||
            !numberField(f["properties"].value("mag", json()), star.mag)) {
            error = "star " + std::to_string(stars.size() + 1) + " lacks a number, position or magnitude";
            return false;
        }
        const int64_t hip = f["id"].get<int64_t>();
        if (hip < 1 || hip > 120999) {
            error = "HIP number out of range: " + std::to_string(hip);
            return false;
        }
        star.hip = static_cast<int32_t>(hip);
        star.raDeg = unwrapLongitude(lon);
        star.decDeg = lat;
        star.hasBv = numberField(f["properties"].value("bv", json()), star.bv);
        if (!star.hasBv) star.bv = 0;
        stars.push_back(star);
    }
    if (stars.empty()) {
        error = "no stars";
        return false;
    }
    return true;
}

static bool starNames(std::string_view text, std::map<int32_t, StarNames>& names, std::string& error) {
    json doc;
    if (!parseDocument(text, doc, error)) return false;
    if (!doc.is_object()) {
        error = "not an object keyed by HIP number";
        return false;
    }
    names.clear();
    for (const auto& [key, value] : doc.items()) {
        char* end = nullptr;
        const long hip = std::strtol(key.c_str(), &end, 10);
        if (!end || *end != '\0' || hip < 1 || hip > 120999 || !value.is_object()) {
            error = "bad entry \"" + key + "\"";
            return false;
        }
        StarNames entry;
        entry.name = stringField(value, "name");
        entry.bayer = stringField(value, "bayer");
        entry.flamsteed = stringField(value, "flam");
        entry.constellation = stringField(value, "c");
        entry.hd = hdNumber(stringField(value, "hd"));
        names.emplace(static_cast<int32_t>(hip), std::move(entry));
    }
    return true;
}

static bool constellationSources(std::string_view namesJson, std::string_view linesJson, std::string_view boundsJson,
                         std::vector<ConstellationSource>& constellations, std::string& error) {
    json names, lines, bounds;
    const json *nameList = nullptr, *lineList = nullptr, *boundList = nullptr;
    std::string where;
    if (!parseDocument(namesJson, names, error) || !features(names, nameList, error)) {
        error = "constellations.json: " + error;
        return false;
    }
    if (!parseDocument(linesJson, lines, error) || !features(lines, lineList, error)) {
        error = "constellations.lines.json: " + error;
        return false;
    }
    if (!parseDocument(boundsJson, bounds, error) || !features(bounds, boundList, error)) {
        error = "constellations.bounds.json: " + error;
        return false;
    }
    std::map<std::string, ConstellationSource> byAbbreviation;
    for (const json& f : *nameList) {
        double lon = 0, lat = 0;
        const std::string id = f.is_object() ? stringField(f, "id") : std::string{};
        if (id.size() != 3 || !point(f, lon, lat)) {
            error = "constellations.json: entry without a three-letter id or a label position";
            return false;
        }
        auto [it, added] = byAbbreviation.try_emplace(id);
        if (!added) {
            it->second.name = it->second.name.substr(0, it->second.name.find(' '));  // "Serpens Caput" -> "Serpens"
            continue;
        }
        it->second.abbreviation = id;
        it->second.name = stringField(f.value("properties", json::object()), "name");
        it->second.labelRaDeg = unwrapLongitude(lon);
        it->second.labelDecDeg = lat;
    }
    auto addPaths = [&](const json* list, const char* file, bool isLines) {
        for (const json& f : *list) {
            const std::string id = f.is_object() ? stringField(f, "id") : std::string{};
            auto it = byAbbreviation.find(id);
            const json geometry = f.is_object() ? f.value("geometry", json()) : json();
            const json coords = geometry.is_object() ? geometry.value("coordinates", json()) : json();
            if (it == byAbbreviation.end() || !coords.is_array()) {
                error = std::string(file) + ": unknown constellation \"" + id + "\" or no coordinates";
                return false;
            }
            for (const json& ring : coords) {
                Path path;
                if (!readPath(ring, path) || path.size() < 2) {
                    error = std::string(file) + ": bad coordinates for " + id;
                    return false;
                }
                (isLines ? it->second.lines : it->second.bounds).push_back(std::move(path));
            }
        }
        return true;
    };
    if (!addPaths(lineList, "constellations.lines.json", true) || !addPaths(boundList, "constellations.bounds.json", false))
        return false;
    constellations.clear();
    for (auto& [id, c] : byAbbreviation) {
        if (c.bounds.empty()) {
            error = "constellations.bounds.json: no boundary for " + id;
            return false;
        }
        constellations.push_back(std::move(c));
    }
    if (constellations.empty()) {
        error = "no constellations";
        return false;
    }
    return true;
}

// The JSON library reports type mismatches by exceptions: none may leave the parsers.
template <typename Parse>
static bool guarded(std::string& error, Parse parse) {
    try {
        return parse();
    } catch (const nlohmann::json::exception& e) {
        error = std::string("unexpected JSON structure: ") + e.what();
        return false;
    }
}

bool parseHipparcosStars(std::string_view text, std::vector<HipparcosStar>& stars, std::string& error) {
    return guarded(error, [&] { return hipparcosStars(text, stars, error); });
}

bool parseStarNames(std::string_view text, std::map<int32_t, StarNames>& names, std::string& error) {
    return guarded(error, [&] { return starNames(text, names, error); });
}

bool parseConstellations(std::string_view namesJson, std::string_view linesJson, std::string_view boundsJson,
                         std::vector<ConstellationSource>& constellations, std::string& error) {
    return guarded(error, [&] { return constellationSources(namesJson, linesJson, boundsJson, constellations, error); });
}

}  // namespace nocturnel
