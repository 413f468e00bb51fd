#pragma once
// The entries a preference field may hold, each with the index the record stores for it: the
// lists of the pages (drives, sky quality, formats ...), the serial ports found on this
// machine, the eyepieces of the eyepiece database, and the page 5/6 boxes by their labels.
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/preference_fields.h"
#include "settings/preferences.h"

namespace nocturnel {

struct FieldEntryText {
    int index = 0;      // the value the record stores for this entry
    std::string label;  // as the page shows it (Latin-1)
};

// Entries of a field; nothing when the field holds no list. `field` may also name a group of
// boxes ("displayBox", "scrollBox", "telradRingDeg"): then each element's index and label.
std::optional<std::vector<FieldEntryText>> fieldEntries(std::string_view field);

// A page 5/6 box or Telrad ring named by its label ("Const. Names", "Telrad 1:"): the field
// name ("displayBox[0]"); the name itself when it is already a field; empty when unknown.
std::string fieldNameFromLabel(std::string_view nameOrLabel);

// Whether `index` is an entry of the field's list (true for fields without a list).
bool isListedIndex(std::string_view field, long index);

// {"field": name, "entries": [{"index": 0, "label": "..."}, ...]} (labels in UTF-8).
nlohmann::json entriesJson(std::string_view field, const std::vector<FieldEntryText>& entries);

}  // namespace nocturnel
