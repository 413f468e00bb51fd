#pragma once
// Setting preference fields from what a user types (the command line's "prefs set" and the
// web API's PUT /api/prefs share it).
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "settings/preferences.h"

namespace nocturnel {

// Sets one field from UTF-8 text: latitude and longitude may be any angle text ("48:06:00"),
// texts must be Latin-1 characters. False (message shown, p unchanged) when refused.
bool setPreferenceFromUserText(Preferences& p, std::string_view name, std::string value);

// Sets every field of a JSON object (field -> number, text or true/false) on a copy of p; only
// when all are accepted is p changed. False (message shown, p unchanged) otherwise.
bool setPreferencesFromJson(Preferences& p, const nlohmann::json& fields);

}  // namespace nocturnel
