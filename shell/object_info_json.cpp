#include "shell/object_info_json.h"

#include <cmath>

#include "core/angle_text.h"

namespace nocturnel {
namespace {
double rounded(double value, double step) { return std::round(value / step) * step; }
}  // namespace

nlohmann::json objectInfoJson(const ObjectInfo& info) {
    const FoundObject& o = info.object;
    const VisibilityEstimate& v = info.visibility;
    nlohmann::json j;
    j["name"] = o.name;
    j["names"] = info.names;
    j["type"] = info.typeName;
    j["constellation"] = info.constellationName.empty() ? nlohmann::json(nullptr) : nlohmann::json(info.constellationName);
    j["mag"] = o.magKnown ? nlohmann::json(rounded(o.mag, 0.01)) : nlohmann::json(nullptr);
    j["sizeArcmin"] = o.majorArcmin > 0 ? nlohmann::json(rounded(o.majorArcmin, 0.01)) : nlohmann::json(nullptr);
    j["surfaceBrightness"] = v.extended ? nlohmann::json(rounded(v.surfaceBrightness, 0.01)) : nlohmann::json(nullptr);
    j["raJ2000"] = info.raJ2000Hours;
    j["decJ2000"] = info.decJ2000Deg;
    j["ra"] = info.raHours;
    j["dec"] = info.decDeg;
    j["alt"] = info.altDeg;
    j["az"] = info.azDeg;
    j["transit"] = info.hasTransit ? nlohmann::json(isoLocalText(info.transitLocal)) : nlohmann::json(nullptr);
    nlohmann::json vis;
    vis["ratio"] = v.known ? nlohmann::json(rounded(v.ratio, 0.01)) : nlohmann::json(nullptr);
    vis["word"] = v.known ? nlohmann::json(v.word) : nlohmann::json(nullptr);
    vis["bestMagnification"] = v.known ? nlohmann::json(std::lround(v.bestMagnification)) : nlohmann::json(nullptr);
    vis["eyepiece"] = info.eyepieceName.empty() ? nlohmann::json(nullptr) : nlohmann::json(toUtf8(info.eyepieceName));
    j["visibility"] = vis;
    if (!info.description.empty()) j["description"] = info.description;
    return j;
}

}  // namespace nocturnel
