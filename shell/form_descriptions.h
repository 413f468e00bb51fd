#pragma once
// The program's forms as data: each form is described once (its numbered controls, their
// labels, list entries in stored-index order, help texts and current values) and the page
// draws any form from its description. Described here: "Preference 1/6" .. "Preference 6/6",
// the Location page, the date/time dialog and the two-star alignment form.
//
// A description (JSON):
//   {"id":"prefs1","formId":1100,"title":"Preference 1/6","help":"...",
//    "groups":[{"label":"Interfaces","help":"...","controls":[CONTROL...]}],
//    "buttons":[{"id":1197,"label":"Prev","action":"prev","form":"prefs6"}, ...]}
//   CONTROL: {"id":1101,"name":"scopeDrive","type":"list|number|check|text|static|selector",
//             "label":"Scope Drive","help":"...","entries":["None",...] (index = stored value),
//             "min":..,"max":..,"maxChars":..,"readOnly":bool,"value":...,
//             "action":"recall"} (a control with an action posts it as soon as it changes)
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "core/date_dialog.h"
#include "settings/location_page.h"

namespace nocturnel {

// Ids of every described form, in menu order: "prefs1".."prefs6", "location", "datetime", "align".
std::vector<std::string> formIds();
bool isPreferencePage(std::string_view id);
// The description of a form with the record's current values; null JSON for an unknown id.
nlohmann::json describeForm(std::string_view id);

// The preference field names a preference page edits (its controls that are not read-only).
std::vector<std::string> preferencePageFields(std::string_view id);

// Descriptions of the stateful dialogs with the values being edited.
nlohmann::json describeLocationPage(const LocationPageFields& fields);
nlohmann::json describeDateDialog(const DateDialog& dialog, int timeUpdate);
struct AlignmentFormTexts {
    std::string toTime;
    std::string star[2][6];  // name, time, ra, dec, hor, elv (Latin-1 texts)
};
nlohmann::json describeAlignmentForm(const AlignmentFormTexts& texts);
// The alignment form filled from the working star records of the preferences.
AlignmentFormTexts alignmentFormFromPreferences();

}  // namespace nocturnel
