#include "shell/identify_json.h"

#include <cmath>
#include <cstdio>

#include "catalog/object_tables.h"

namespace nocturnel {

nlohmann::json identifiedObjectJson(const IdentifiedObject& o) {
    if (!o.found) return nullptr;
    const bool known = o.catalogCode >= 0 && o.catalogCode < kCatalogCount;
    return {{"kind", o.kind},
            {"name", o.name},
            {"designation", o.designation},
            {"catalog", known ? kCatalogDefinitions[o.catalogCode].prefix : ""},
            {"number", o.number},
            {"ra", o.raHours},
            {"dec", o.decDeg},
            {"mag", o.magKnown ? nlohmann::json(std::round(o.mag * 100) / 100) : nlohmann::json(nullptr)},
            {"x", o.x},
            {"y", o.y},
            {"distancePx", std::round(o.distancePx * 10) / 10}};
}

std::string identifiedObjectText(const IdentifiedObject& o) {
    if (!o.found) return "Nothing drawn there";
    char text[160];
    const std::string extra = o.designation.empty() || o.designation == o.name ? "" : " (" + o.designation + ")";
    if (o.magKnown)
        std::snprintf(text, sizeof text, "%s%s, %s, mag %.2f, drawn at %d,%d", o.name.c_str(), extra.c_str(), o.kind.c_str(),
                      o.mag, o.x, o.y);
    else
        std::snprintf(text, sizeof text, "%s%s, %s, drawn at %d,%d", o.name.c_str(), extra.c_str(), o.kind.c_str(), o.x, o.y);
    return text;
}

}  // namespace nocturnel
