// nocturnel prefs show|set|reset: the preferences record by field name.
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "core/angle_text.h"
#include "settings/location_page.h"
#include "settings/message.h"
#include "settings/preference_fields.h"
#include "settings/preferences.h"
#include "settings/text_encoding.h"
#include "shell/api_json.h"
#include "shell/api_prefs.h"
#include "shell/app.h"
#include "shell/commands.h"
#include "shell/json_output.h"
#include "shell/option_checks.h"
#include "shell/preference_entries.h"

namespace nocturnel {
namespace {

struct SetArguments {
    std::string name;
    std::string value;
};

nlohmann::json fieldJson(const Preferences& p, const PreferenceField& f) { return preferenceFieldJson(p, f); }

// The field of a name or of a box label ("Const. Names"); message and nullptr when unknown.
const PreferenceField* fieldNamed(const std::string& nameOrLabel) {
    const std::string name = fieldNameFromLabel(nameOrLabel);
    if (const PreferenceField* f = name.empty() ? nullptr : findPreferenceField(name)) return f;
    showMessage("Unknown preference " + nameOrLabel, "Use \"prefs show\" for the field names.");
    return nullptr;
}

// A list's entries with their stored indexes, the current one marked.
void printEntries(std::string_view field, const std::vector<FieldEntryText>& entries, long current) {
    if (globalOptions().json) {
        nlohmann::json out = entriesJson(field, entries);
        if (current >= 0) out["current"] = current;
        std::cout << out.dump() << "\n";
        return;
    }
    if (entries.empty()) std::cout << "  (no entries)\n";
    for (const FieldEntryText& e : entries) {
        char index[16];
        std::snprintf(index, sizeof index, "%4d", e.index);
        std::cout << (e.index == current ? "* " : "  ") << index << "  " << toUtf8(e.label) << "\n";
    }
}

// After a refused value: the entries the field takes. With --json they go into the error
// (a second message), so that standard output stays one JSON document.
void showEntriesAfterRefusal(std::string_view field, const std::vector<FieldEntryText>& entries, long current) {
    if (!globalOptions().json) return printEntries(field, entries, current);
    std::string text;
    for (const FieldEntryText& e : entries) text += (text.empty() ? "" : ", ") + std::to_string(e.index) + " " + e.label;
    showMessage("The entries of " + std::string(field), text.empty() ? "(no entries)" : text);
}

// For a box group (displayBox, scrollBox, telradRingDeg): each element with its label and value.
bool printGroup(const Preferences& p, const std::string& group) {
    const auto entries = fieldEntries(group);
    if (!entries || findPreferenceField(group)) return false;
    nlohmann::json out = nlohmann::json::array();
    for (const FieldEntryText& e : *entries) {
        const std::string name = group + "[" + std::to_string(e.index) + "]";
        const PreferenceField* f = findPreferenceField(name);
        if (!f) continue;
        if (globalOptions().json) {
            out.push_back({{"field", name}, {"label", toUtf8(e.label)}, {"value", fieldJson(p, *f)}});
        } else {
            std::cout << name << " = " << toUtf8(preferenceText(p, *f)) << "   \"" << toUtf8(e.label) << "\"\n";
        }
    }
    if (globalOptions().json) std::cout << out.dump() << "\n";
    return true;
}

void printField(const Preferences& p, const PreferenceField& f) {
    std::string value = toUtf8(preferenceText(p, f));
    if (f.type == FieldType::Index) {
        char index[32];
        std::snprintf(index, sizeof index, "%lld", static_cast<long long>(preferenceNumber(p, f)));
        value = std::string(index) + " \"" + value + "\"";
    } else if (f.type == FieldType::Text) {
        value = "\"" + value + "\"";
    } else if (f.type == FieldType::Real) {
        char number[40];  // the digits the record's float holds: 31.96, not 31.95999908
        std::snprintf(number, sizeof number, "%.10g", jsonNumberOfField(preferenceNumber(p, f)));
        value = number;
    }
    std::cout << f.name << " = " << value;
    if (f.name.find('[') != std::string_view::npos) std::cout << "   \"" << toUtf8(std::string(f.meaning)) << "\"";
    if (f.fixedAtStart) std::cout << "   (set again at every start)";
    std::cout << "\n";
}

void runShowOne(const std::string& nameOrLabel) {
    const Preferences& p = prefs();
    if (printGroup(p, nameOrLabel)) return;
    const PreferenceField* f = fieldNamed(nameOrLabel);
    if (!f) return setExitCode(1);
    const auto entries = fieldEntries(f->name);
    const long current = static_cast<long>(preferenceNumber(p, *f));
    if (globalOptions().json) {
        nlohmann::json out = {{"field", std::string(f->name)}, {"value", fieldJson(p, *f)}};
        if (f->type == FieldType::Index) out["label"] = toUtf8(preferenceText(p, *f));
        if (entries) out["entries"] = entriesJson(f->name, *entries)["entries"];
        std::cout << out.dump(2) << "\n";
        return;
    }
    printField(p, *f);
    if (entries) printEntries(f->name, *entries, current);
}

void runList(const std::string& nameOrLabel) {
    if (!startUp()) return setExitCode(1);
    if (printGroup(prefs(), nameOrLabel)) return;
    const PreferenceField* f = fieldNamed(nameOrLabel);
    if (!f) return setExitCode(1);
    const auto entries = fieldEntries(f->name);
    if (!entries) {
        showMessage(std::string(f->name) + " holds no list", "It takes " + std::string(f->meaning) + ".");
        return setExitCode(1);
    }
    printEntries(f->name, *entries, static_cast<long>(preferenceNumber(prefs(), *f)));
}

void runShow(const std::string& name) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    if (!name.empty()) return runShowOne(name);
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
    std::string value = args.value;
    const PreferenceField* field = fieldNamed(args.name);
    if (!field) return setExitCode(1);
    const std::string name(field->name);
    // Latitude and longitude may be typed with their hemisphere ("111.6W", "31:57:30 N"); a
    // bare longitude counts positive west, as stored.
    if (name == "latitudeDeg" || name == "longitudeDeg") {
        if (const auto angle = name == "latitudeDeg" ? readLatitudeText(value) : readLongitudeText(value)) {
            char buf[40];
            std::snprintf(buf, sizeof buf, "%.9g", *angle);
            value = buf;
        }
    }
    // A port may be given by its device path; a port or an eyepiece must be one of its list.
    if (const auto entries = fieldEntries(name); entries && name != "scopeDrive" && field->type != FieldType::Index) {
        for (const FieldEntryText& e : *entries)
            if (e.label == value) value = std::to_string(e.index);
        const auto index = checkedInteger(value, 0, 1000000, name);
        if (!index) {
            showEntriesAfterRefusal(name, *entries, -1);
            return setExitCode(1);
        }
        if (!isListedIndex(name, *index)) {
            showMessage("Invalid value \"" + args.value + "\" for " + name,
                        entries->empty() ? "The list is empty." : "Give one of the indexes listed.");
            showEntriesAfterRefusal(name, *entries, static_cast<long>(preferenceNumber(prefs(), *field)));
            return setExitCode(1);
        }
    }
    // Texts are kept in Latin-1; the terminal types UTF-8.
    if (field->type == FieldType::Text) {
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
    bool refused = false;
    if (!updatePrefsForCommand([&](Preferences& saved) {
            if (setPreferenceField(saved, name, value)) return true;
            refused = true;
            return false;
        })) {
        if (const auto entries = fieldEntries(name); refused && entries && field->type == FieldType::Index)
            showEntriesAfterRefusal(name, *entries, static_cast<long>(preferenceNumber(prefs(), *field)));
        return;
    }
    const PreferenceField* f = field;
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
    // A deliberate reset, but the site, its memories and the alignment go with it: ask first,
    // and say what was replaced.
    const Preferences before = prefs();
    if (!askYesNo("Reset every preference, the site, the three site memories and the saved alignment to the "
                  "defaults?")) {
        showMessage("The preferences were not reset", "Nothing was changed.");
        return setExitCode(1);
    }
    if (!updatePrefsForCommand([](Preferences& saved) {
            saved = defaultPreferences();
            return true;
        }))
        return;
    int memories = 0;
    for (const SiteMemory& m : before.siteMemory) memories += siteMemoryIsEmpty(m) ? 0 : 1;
    const std::string site(before.siteName, strnlen(before.siteName, sizeof before.siteName));
    if (globalOptions().json) {
        std::cout << nlohmann::json{{"reset", true},
                                    {"previousSite", toUtf8(site)},
                                    {"previousLatitudeDeg", jsonNumber(before.latitudeDeg)},
                                    {"previousLongitudeDeg", jsonNumber(before.longitudeDeg)},
                                    {"siteMemoriesCleared", memories},
                                    {"alignmentCleared", before.hasSavedAlignment != 0}}
                         .dump()
                  << "\n";
        return;
    }
    char line[200];
    std::snprintf(line, sizeof line, "Preferences reset to their defaults. Replaced: site \"%s\" (latitude %.6g, "
                  "longitude %.6g west positive), %d site memor%s%s.", site.c_str(), before.latitudeDeg,
                  before.longitudeDeg, memories, memories == 1 ? "y" : "ies",
                  before.hasSavedAlignment ? ", the saved alignment" : "");
    std::cout << toUtf8(line) << "\n";
}

}  // namespace

void registerPrefsCommand(CLI::App& app) {
    CLI::App* prefsCmd = app.add_subcommand("prefs", "Show, set or reset the preferences");
    prefsCmd->require_subcommand(1);

    auto args = std::make_shared<SetArguments>();
    CLI::App* show = prefsCmd->add_subcommand(
        "show", "Every field of the preferences record with its value; with NAME that field, and for a list its "
                "entries with their stored indexes");
    show->add_option("name", args->name, "Field name, or a page 5/6 box label (\"Const. Names\")");
    show->callback([args] { runShow(args->name); });

    CLI::App* list = prefsCmd->add_subcommand(
        "list", "The entries of a list field with the index stored for each: scopeDrive, scopePort (the ports of "
                "this machine), eyepieceIndex (the eyepiece database), skyQuality, displayBox, scrollBox ...");
    list->add_option("name", args->name, "Field name")->required();
    list->callback([args] { runList(args->name); });

    CLI::App* set = prefsCmd->add_subcommand(
        "set", "Set one field (list fields take the index or the entry's text), checked as on the pages");
    set->add_option("name", args->name, "Field name as shown by \"prefs show\", or a page 5/6 box label")->required();
    set->add_option("value", args->value, "New value")->required();
    set->callback([args] { runSet(*args); });

    prefsCmd->add_subcommand("reset", "Back to the defaults of a first start (site, memories, alignment and pages), "
                                      "after a yes to the question (--answer yes in scripts)")
        ->callback(runReset);
}

}  // namespace nocturnel
