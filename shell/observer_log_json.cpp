#include "shell/observer_log_json.h"

#include <cmath>
#include <cstdio>

#include "catalog/object_tables.h"
#include "plans/observer_log_choices.h"
#include "plans/observer_logs.h"
#include "settings/text_encoding.h"

namespace nocturnel {
namespace {
template <std::size_t N>
std::string choiceText(const std::array<std::string_view, N>& list, int32_t index) {
    return index >= 0 && index < static_cast<int32_t>(N) ? std::string(list[static_cast<std::size_t>(index)]) : "";
}
double rounded(float value, double scale) { return std::round(static_cast<double>(value) * scale) / scale; }
}  // namespace

nlohmann::json observerLogJson(const ObserverLog& log, int listingIndex) {
    char date[32], time[16];
    std::snprintf(date, sizeof date, "%04d-%02d-%02d", log.year, log.month, log.day);
    std::snprintf(time, sizeof time, "%02d:%02d", log.hour, log.minute);
    const bool typeKnown = log.typeCode >= 0 && log.typeCode < kObjectTypeCount;
    return {
        {"index", listingIndex},
        {"object", latin1ToUtf8(log.object)},
        {"date", date},
        {"time", time},
        {"ra", rounded(log.raHours, 1e6)},
        {"dec", rounded(log.decDeg, 1e5)},
        {"moonPct", log.moonPct},
        {"sunAltDeg", log.sunAltDeg},
        {"visualMag", log.visualMagX10 / 10.0},
        {"typeCode", log.typeCode},
        {"type", typeKnown ? kObjectTypes[static_cast<std::size_t>(log.typeCode)].name : ""},
        {"objectMag", log.objectMag},
        {"transparency", log.transparency},
        {"transparencyText", choiceText(kTransparencyChoices, log.transparency)},
        {"seeing", log.seeing},
        {"seeingText", choiceText(kSeeingChoices, log.seeing)},
        {"scope", latin1ToUtf8(log.scope)},
        {"location", latin1ToUtf8(log.location)},
        {"filter", latin1ToUtf8(log.filter)},
        {"note", latin1ToUtf8(log.text)},
        {"rating", log.choices[kChoiceRating]},
        {"ratingText", choiceText(kRatingChoices, log.choices[kChoiceRating])},
        {"eyepiece", log.choices[kChoiceEyepiece]},
        {"result", log.choices[kChoiceResult]},
        {"resultText", choiceText(kResultChoices, log.choices[kChoiceResult])},
    };
}

nlohmann::json observerLogListJson() {
    nlohmann::json list = nlohmann::json::array();
    const std::vector<LogEntry> entries = listObserverLogs();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        ObserverLog log;
        if (readObserverLogFile(entries[i].path, log) == LogReadStatus::kOk)
            list.push_back(observerLogJson(log, static_cast<int>(i)));
        else
            list.push_back({{"index", i}, {"file", entries[i].path.filename().string()}, {"damaged", true}});
    }
    return {{"logs", list}};
}

}  // namespace nocturnel
