#include "shell/api_prefs.h"
#include "shell/http_params.h"

#include <cstdio>

#include "core/angle_text.h"
#include "settings/message.h"
#include "settings/preference_fields.h"
#include "settings/text_encoding.h"

namespace nocturnel {

bool setPreferenceFromUserText(Preferences& p, std::string_view name, std::string value) {
    // Latitude and longitude may be typed in any angle text ("48:06:00", "-1°30'00").
    if (name == "latitudeDeg" || name == "longitudeDeg") {
        if (const auto angle = parseAngleText(value)) {
            char buf[40];
            std::snprintf(buf, sizeof buf, "%.9g", *angle);
            value = buf;
        }
    }
    // Texts are kept in Latin-1; terminals and pages type UTF-8.
    const PreferenceField* field = findPreferenceField(name);
    if (field && field->type == FieldType::Text) {
        const auto latin1 = utf8ToLatin1(value);
        if (!latin1) {
            showMessage(invalidValueTitle(name), "Only Latin-1 characters can be stored.");
            return false;
        }
        value = *latin1;
    }
    return setPreferenceField(p, name, value);
}

bool setPreferencesFromJson(Preferences& p, const nlohmann::json& fields) {
    if (!fields.is_object() || fields.empty()) {
        showMessage("Invalid preferences", "Send a JSON object of field names and values.");
        return false;
    }
    Preferences edited = p;
    for (const auto& [name, value] : fields.items()) {
        std::string text;
        if (value.is_string()) text = value.get<std::string>();
        else if (value.is_boolean()) text.assign(1, value.get<bool>() ? '1' : '0');
        else if (value.is_number_integer() || value.is_number_unsigned()) text = value.dump();
        else if (value.is_number_float()) {
            char buf[40];
            std::snprintf(buf, sizeof buf, "%.17g", value.get<double>());
            text = buf;
        } else {
            showMessage(invalidValueTitle(name), "Give a number, a text or true/false.");
            return false;
        }
        if (!setPreferenceFromUserText(edited, name, text)) return false;
    }
    p = edited;
    return true;
}

}  // namespace nocturnel
