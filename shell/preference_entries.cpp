#include "shell/preference_entries.h"

#include <cctype>

#include "catalog/eyepieces.h"
#include "core/angle_text.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preference_lists.h"

namespace nocturnel {
namespace {

bool isPortField(std::string_view field) {
    return field == "scopePort" || field == "gpsPort" || field == "cameraPort" || field == "extraPort";
}

bool sameLabel(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) return false;
    return true;
}

// The elements of a box group: "displayBox[0]" ... with their labels (the field's meaning).
std::vector<FieldEntryText> groupEntries(std::string_view group) {
    std::vector<FieldEntryText> out;
    const std::string prefix = std::string(group) + "[";
    for (const PreferenceField& f : preferenceFields())
        if (f.name.substr(0, prefix.size()) == prefix)
            out.push_back({static_cast<int>(out.size()), std::string(f.meaning)});
    return out;
}

}  // namespace

std::optional<std::vector<FieldEntryText>> fieldEntries(std::string_view field) {
    std::vector<FieldEntryText> out;
    if (isPortField(field)) {
        rebuildPortNameList();
        const std::vector<std::string>& ports = portNameList();
        for (std::size_t i = 0; i < ports.size(); ++i)
            out.push_back({static_cast<int>(i), i == 0 && ports[i].empty() ? std::string("(no port)") : ports[i]});
        return out;
    }
    if (field == "eyepieceIndex") {
        std::vector<EyepieceRecord> eyepieces;
        MessageCapture quiet;  // no eyepiece file: an empty list
        loadEyepieces(eyepieces);
        for (std::size_t i = 0; i < eyepieces.size(); ++i)
            out.push_back({static_cast<int>(i), eyepieceName(eyepieces[i])});
        return out;
    }
    if (const PreferenceList* list = findPreferenceList(field)) {
        const std::vector<std::string_view> shown = shownEntries(*list);
        for (std::size_t i = 0; i < shown.size(); ++i) {
            if (field == "scopeDrive" && shown[i].empty()) continue;  // a code that names no drive
            out.push_back({static_cast<int>(i), std::string(shown[i])});
        }
        return out;
    }
    if (field == "displayBox" || field == "scrollBox" || field == "telradRingDeg") return groupEntries(field);
    return std::nullopt;
}

std::string fieldNameFromLabel(std::string_view nameOrLabel) {
    if (findPreferenceField(nameOrLabel)) return std::string(nameOrLabel);
    for (const PreferenceField& f : preferenceFields()) {
        const bool element = f.name.find('[') != std::string_view::npos;
        if (element && sameLabel(f.meaning, nameOrLabel)) return std::string(f.name);
    }
    return {};
}

bool isListedIndex(std::string_view field, long index) {
    if (!isPortField(field) && field != "eyepieceIndex") return true;  // the field's own checks apply
    const auto entries = fieldEntries(field);
    if (!entries) return true;
    for (const FieldEntryText& e : *entries)
        if (e.index == index) return true;
    return false;
}

nlohmann::json entriesJson(std::string_view field, const std::vector<FieldEntryText>& entries) {
    nlohmann::json list = nlohmann::json::array();
    for (const FieldEntryText& e : entries) list.push_back({{"index", e.index}, {"label", toUtf8(e.label)}});
    return {{"field", std::string(field)}, {"entries", list}};
}

}  // namespace nocturnel
