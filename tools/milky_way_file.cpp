#include "tools/milky_way_file.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace nocturnel {
namespace {

double separationDeg(double ra1, double dec1, double ra2, double dec2) {
    constexpr double k = M_PI / 180;
    const double c = std::sin(dec1 * k) * std::sin(dec2 * k) + std::cos(dec1 * k) * std::cos(dec2 * k) * std::cos((ra1 - ra2) * k);
    return std::acos(std::clamp(c, -1.0, 1.0)) / k;
}

}  // namespace

bool buildMilkyWay(std::string_view json, std::vector<MilkyWayPoint>& points, std::string& error) {
    points.clear();
    const auto doc = nlohmann::json::parse(json, nullptr, false);
    if (!doc.is_object() || !doc.contains("features") || !doc["features"].is_array()) {
        error = "no feature list";
        return false;
    }
    for (const auto& feature : doc["features"]) {
        const std::string id = feature.value("id", std::string());
        if (id.size() != 3 || id.compare(0, 2, "ol") != 0 || id[2] < '1' || id[2] > '5') {
            error = "feature \"" + id + "\" is not one of ol1 .. ol5";
            return false;
        }
        const uint8_t level = static_cast<uint8_t>(id[2] - '0');
        const auto& geometry = feature["geometry"];
        if (!geometry.is_object() || geometry.value("type", "") != "MultiPolygon" || !geometry["coordinates"].is_array()) {
            error = "feature " + id + " is not a MultiPolygon";
            return false;
        }
        for (const auto& polygon : geometry["coordinates"]) {
            bool outlineRing = true;
            for (const auto& ring : polygon) {
                std::size_t kept = 0;
                double lastRa = 0, lastDec = 0;
                for (const auto& vertex : ring) {
                    if (!vertex.is_array() || vertex.size() < 2 || !vertex[0].is_number() || !vertex[1].is_number()) {
                        error = "feature " + id + ": a vertex is not a pair of numbers";
                        return false;
                    }
                    double ra = vertex[0].get<double>();
                    const double dec = vertex[1].get<double>();
                    if (ra < 0) ra += 360;
                    if (ra < 0 || ra > 360 || std::fabs(dec) > 90) {
                        error = "feature " + id + ": a vertex lies off the sky";
                        return false;
                    }
                    if (kept > 0 && separationDeg(ra, dec, lastRa, lastDec) < kMilkyWayStepDeg) continue;
                    points.push_back({static_cast<float>(ra / 15.0), static_cast<float>(dec), level,
                                      static_cast<uint8_t>(kept == 0 ? (outlineRing ? 1 : 2) : 0), 0});
                    ++kept;
                    lastRa = ra;
                    lastDec = dec;
                }
                outlineRing = false;
            }
        }
    }
    if (points.empty()) {
        error = "no outline";
        return false;
    }
    if (points.size() > 65535) {
        error = "more than 65,535 points";
        return false;
    }
    return true;
}

}  // namespace nocturnel
