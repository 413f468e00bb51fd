// nocturnel prefs show|set|reset: the preferences record by field name.
#include <cstdio>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "core/angle_text.h"
#include "settings/message.h"
#include "settings/preference_fields.h"
#include "settings/preferences.h"
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/commands.h"

namespace nocturnel {
namespace {

struct SetArguments {
    std::string name;
    std::string value;
};

nlohmann::json fieldJson(const Preferences& p, const PreferenceField& f) {
    if (f.type == FieldType::Text) return toUtf8(preferenceText(p, f));
    const double v = preferenceNumber(p, f);
    if (f.type == FieldType::Real) return v;
    return static_cast<long long>(v);
}

void printField(const Preferences& p, const PreferenceField& f) {
    std::string value = toUtf8(preferenceText(p, f));
    if (f.type == FieldType::Index) {
        char index[32];
        std::snprintf(index, sizeof index, "%lld", static_cast<long long>(preferenceNumber(p, f)));
        value = std::string(index) + " \"" + value + "\"";
    } else if (f.type == FieldType::Text) {
        value = "\"" + value + "\"";
    }
    std::cout << f.name << " = " << value;
    if (f.fixedAtStart) std::cout << "   (set again at every start)";
    std::cout << "\n";
}

void runShow() {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    const Preferences& p = prefs();
    if (globalOptions().json) {
        nlohmann::json out = nlohmann::json::object();
        nlohmann::json labels = nlohmann::json::object();
        for (const auto& f : preferenceFields()) {
            out[std::string(f.name)] = fieldJson(p, f);
            if (f.type == FieldType::Index) labels[std::string(f.name)] = toUtf8(preferenceText(p, f));
        }
        out["labels"] = labels;
        std::cout << out.dump(2) << "\n";
        return;
    }
    for (const auto& f : preferenceFields()) printField(p, f);
}

void runSet(const SetArguments& args) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    std::string value = args.value;
    // Latitude and longitude may be typed in any angle text ("48:06:00", "-1°30'00").
    if (args.name == "latitudeDeg" || args.name == "longitudeDeg") {
        if (const auto angle = parseAngleText(value)) {
            char buf[40];
            std::snprintf(buf, sizeof buf, "%.9g", *angle);
            value = buf;
        }
    }
    // Texts are kept in Latin-1; the terminal types UTF-8.
    const PreferenceField* field = findPreferenceField(args.name);
    if (field && field->type == FieldType::Text) {
        const auto latin1 = utf8ToLatin1(value);
        if (!latin1) {
            showMessage("Invalid value for " + args.name, "Only Latin-1 characters can be stored.");
            setExitCode(1);
            return;
        }
        value = *latin1;
    } else {
        // Numbers and list labels ("10°") are matched and quoted in Latin-1, like the lists.
        value = utf8ToLatin1ForMessage(value);
    }
    const std::string name = utf8ToLatin1ForMessage(args.name);  // quoted by "Unknown preference"
    if (!updatePrefsForCommand([&](Preferences& saved) { return setPreferenceField(saved, name, value); }))
        return;
    const PreferenceField* f = findPreferenceField(args.name);
    if (globalOptions().json) {
        std::cout << nlohmann::json{{std::string(f->name), fieldJson(prefs(), *f)}}.dump(2) << "\n";
        return;
    }
    printField(prefs(), *f);
}

void runReset() {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    if (!updatePrefsForCommand([](Preferences& saved) {
            saved = defaultPreferences();
            return true;
        }))
        return;
    if (!globalOptions().json) std::cout << "Preferences reset to their defaults.\n";
    else std::cout << nlohmann::json{{"reset", true}}.dump() << "\n";
}

}  // namespace

void registerPrefsCommand(CLI::App& app) {
    CLI::App* prefsCmd = app.add_subcommand("prefs", "Show, set or reset the preferences");
    prefsCmd->require_subcommand(1);

    prefsCmd->add_subcommand("show", "Every field of the preferences record with its value")->callback(runShow);

    auto args = std::make_shared<SetArguments>();
    CLI::App* set = prefsCmd->add_subcommand(
        "set", "Set one field (list fields take the index or the entry's text), checked as on the pages");
    set->add_option("name", args->name, "Field name as shown by \"prefs show\"")->required();
    set->add_option("value", args->value, "New value")->required();
    set->callback([args] { runSet(*args); });

    prefsCmd->add_subcommand("reset", "Back to the defaults of a first start (site, memories and pages)")
        ->callback(runReset);
}

}  // namespace nocturnel
