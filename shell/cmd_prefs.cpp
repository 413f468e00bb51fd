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
#include "shell/api_json.h"
#include "shell/api_prefs.h"
#include "shell/app.h"
#include "shell/commands.h"

namespace nocturnel {
namespace {

struct SetArguments {
    std::string name;
    std::string value;
};

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
        std::cout << prefsJson(p).dump(2) << "\n";
        return;
    }
    for (const auto& f : preferenceFields()) printField(p, f);
}

void runSet(const SetArguments& args) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    Preferences edited = prefs();
    if (!setPreferenceFromUserText(edited, args.name, args.value)) {
        setExitCode(1);
        return;
    }
    prefs() = edited;
    if (!savePrefsForCommand()) return;
    const PreferenceField* f = findPreferenceField(args.name);
    if (globalOptions().json) {
        std::cout << nlohmann::json{{std::string(f->name), preferenceFieldJson(prefs(), *f)}}.dump(2) << "\n";
        return;
    }
    printField(prefs(), *f);
}

void runReset() {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    const ObservingMoment moment = prefs().moment;
    prefs() = defaultPreferences();
    prefs().moment = moment;
    if (!savePrefsForCommand()) return;
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
