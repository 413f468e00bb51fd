#pragma once
// The preferences record by field name, for the command line and the web pages: what each
// field is, its accepted values (the same rules as the pages), reading it and setting it.
#include <span>
#include <string>
#include <string_view>

#include "settings/preference_lists.h"
#include "settings/preferences.h"

namespace nocturnel {

enum class FieldType {
    Index,    // a list index; set by index or by the entry's text
    Integer,  // whole number in [low, high]
    Real,     // number in [low, high] (low excluded when lowExclusive)
    Text,     // at most maxChars characters
};

struct PreferenceField {
    std::string_view name;  // the record's field name
    FieldType type;
    double low = 0, high = 0;
    bool lowExclusive = false;
    std::size_t maxChars = 0;
    bool fixedAtStart = false;  // start-up sets it again whatever was saved
    std::string_view meaning;
};

std::span<const PreferenceField> preferenceFields();
const PreferenceField* findPreferenceField(std::string_view name);

// Current value: numbers for Index/Integer/Real, text for Text (and the shown entry of a list).
double preferenceNumber(const Preferences& p, const PreferenceField& field);
std::string preferenceText(const Preferences& p, const PreferenceField& field);

// Sets a field from text. Site position fields go through setSitePosition; dstFlag adds or
// removes the daylight-saving hour as the Location page's box does. A bad name or value shows
// a message, leaves the record unchanged and returns false.
bool setPreferenceField(Preferences& p, std::string_view name, std::string_view value);

}  // namespace nocturnel
