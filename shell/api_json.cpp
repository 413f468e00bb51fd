#include "shell/api_json.h"

#include "shell/json_output.h"

#include <cmath>
#include <cstring>

#include "catalog/constellations.h"
#include "catalog/object_tables.h"
#include "catalog/objects.h"
#include "core/angle_text.h"
#include "core/time.h"

namespace nocturnel {
namespace {
// Magnitudes and sizes are stored as floats: three decimals keep all they hold without the
// noise of widening them to double.
double roundedValue(double value) { return std::round(value * 1000.0) / 1000.0; }
}  // namespace

nlohmann::json nowJson(const Preferences& p) {
    const ObservingMoment& m = p.moment;
    const int offset = p.utcOffsetMin;
    const double jd = julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, offset);
    const double deltaT = deltaTForDate(m.year, m.month, m.day);
    const double gmst0 = greenwichSiderealAtMidnight(m.year, m.month, m.day);
    const double lst = localSiderealTime(m.year, m.month, m.day, m.hour, m.minute, m.second, p.longitudeDeg, offset);
    const double year = decimalYear(m.year, m.month, m.day, m.hour, m.minute, m.second);
    return {
        {"year", m.year},     {"month", m.month},   {"day", m.day},           {"hour", m.hour},
        {"minute", m.minute}, {"second", m.second}, {"utcOffsetMin", offset}, {"jd", jd},
        {"deltaT", deltaT},   {"gmst0", gmst0},     {"lst", lst},             {"decimalYear", year},
    };
}

nlohmann::json preferenceFieldJson(const Preferences& p, const PreferenceField& f) {
    if (f.type == FieldType::Text) return toUtf8(preferenceText(p, f));
    const double v = preferenceNumber(p, f);
    if (f.type == FieldType::Real) return jsonNumberOfField(v);  // the digits the record holds
    return static_cast<long long>(v);
}

nlohmann::json prefsJson(const Preferences& p) {
    nlohmann::json out = nlohmann::json::object();
    nlohmann::json labels = nlohmann::json::object();
    for (const auto& f : preferenceFields()) {
        out[std::string(f.name)] = preferenceFieldJson(p, f);
        if (f.type == FieldType::Index) labels[std::string(f.name)] = toUtf8(preferenceText(p, f));
    }
    out["labels"] = labels;
    return out;
}

std::string constellationNameOf(int number) {
    const auto& list = constellations().constellations;
    if (number < 0 || number >= static_cast<int>(list.size())) return {};
    char name[sizeof list[number].name + 1] = {};
    std::memcpy(name, list[number].name, sizeof list[number].name);
    return name;
}

nlohmann::json foundObjectJson(const FoundObject& object) {
    const bool known = object.catalogCode >= 0 && object.catalogCode < kCatalogCount;
    nlohmann::json j;
    j["name"] = toUtf8(object.name);
    j["catalog"] = known ? kCatalogDefinitions[object.catalogCode].prefix : "";
    j["catalogName"] = known ? kCatalogDefinitions[object.catalogCode].name : "";
    j["commonName"] = toUtf8(object.commonName);
    j["number"] = object.number;
    j["type"] = objectTypeName(object.typeCode);
    j["ra"] = object.raHours;
    j["dec"] = object.decDeg;
    if (object.magKnown) j["mag"] = roundedValue(object.mag);
    else j["mag"] = nullptr;
    j["majorArcmin"] = roundedValue(object.majorArcmin);
    j["minorArcmin"] = roundedValue(object.minorArcmin);
    j["constellation"] = constellationNameOf(object.constellation);
    return j;
}

nlohmann::json messageJson(const Message& message) {
    return {{"caption", std::string(kMessageCaption)}, {"title", toUtf8(message.title)}, {"detail", toUtf8(message.detail)}};
}

nlohmann::json messagesJson(const std::vector<Message>& messages) {
    nlohmann::json list = nlohmann::json::array();
    for (const Message& m : messages) list.push_back(messageJson(m));
    return list;
}

}  // namespace nocturnel
