#pragma once
// The JSON that the command line prints with --json and the web API serves unchanged. Texts of
// the records are Latin-1; they are turned into UTF-8 here, once, on the way out.
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "catalog/object_finder.h"
#include "settings/message.h"
#include "settings/preference_fields.h"
#include "settings/preferences.h"

namespace nocturnel {

// `now --json`: the observing moment of p and the time scales derived from it.
nlohmann::json nowJson(const Preferences& p);

// One field of `prefs show --json` (number, or UTF-8 text).
nlohmann::json preferenceFieldJson(const Preferences& p, const PreferenceField& field);
// `prefs show --json`: every field, and "labels" with the shown entry of each list field.
nlohmann::json prefsJson(const Preferences& p);

// `find --json`: one found object.
nlohmann::json foundObjectJson(const FoundObject& object);
// Name of a constellation by its record number; empty when unknown.
std::string constellationNameOf(int number);

// A message box as the page shows it: {"caption":"Information","title","detail"} in UTF-8.
nlohmann::json messageJson(const Message& message);
nlohmann::json messagesJson(const std::vector<Message>& messages);

}  // namespace nocturnel
