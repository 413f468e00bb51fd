#include "shell/selection_json.h"

#include <cmath>
#include <cstdio>

#include "catalog/objects.h"
#include "catalog/object_tables.h"
#include "core/angle_text.h"
#include "plans/list_members.h"
#include "settings/text_encoding.h"

namespace nocturnel {

namespace {
std::string catalogName(int code) {
    return code >= 0 && code < kCatalogCount ? kCatalogDefinitions[static_cast<std::size_t>(code)].name : "";
}
double rounded(double v, double scale) { return std::round(v * scale) / scale; }
}  // namespace

nlohmann::json selectionJson(const SelectionList& list, const std::vector<std::string>& stages) {
    nlohmann::json objects = nlohmann::json::array();
    const ListsByObject memberships = listsByObject();
    for (const ObjectReference& o : list.items) {
        nlohmann::json j = {{"name", latin1ToUtf8(referenceName(o))},
                            {"catalog", catalogName(o.catalog)},
                            {"type", objectTypeName(o.type)},
                            {"ra", rounded(o.raHours, 1e6)},
                            {"dec", rounded(o.decDeg, 1e5)}};
        j["mag"] = o.mag == 0.0f ? nlohmann::json(nullptr) : nlohmann::json(rounded(o.mag, 100));
        nlohmann::json lists = nlohmann::json::array();
        if (const auto found = memberships.find({o.catalog, o.number}); found != memberships.end())
            for (int code : found->second) lists.push_back(catalogName(code));
        j["lists"] = std::move(lists);
        objects.push_back(std::move(j));
    }
    nlohmann::json lines = nlohmann::json::array();
    for (const std::string& s : stages) lines.push_back(latin1ToUtf8(s));
    return {{"stages", lines}, {"objects", objects}};
}

std::string selectionLine(const ObjectReference& o, int index) {
    char mag[16] = "  ";
    if (o.mag != 0.0f) std::snprintf(mag, sizeof mag, "%.1f", static_cast<double>(o.mag));
    return std::to_string(index) + "  " + latin1ToUtf8(referenceName(o)) + "  " + objectTypeName(o.type) + "  " +
           toUtf8(hoursText(o.raHours)) + " " + toUtf8(degreesText(o.decDeg)) + "  " + mag;
}

}  // namespace nocturnel
