#include "shell/roam_session.h"

#include <cstring>

#include "plans/user_lists.h"
#include "settings/message.h"
#include "settings/program_folder.h"
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/selection_hooks.h"

namespace nocturnel {
namespace {

struct CriterionEntry {
    Criterion which;
    const char* key;
    const char* label;
};

// The form's fields, in the form's order; the keys are the command line's option names.
constexpr CriterionEntry kCriteria[] = {
    {Criterion::kVisibility, "visibility", "Visibility"},   {Criterion::kMagnitude, "mag", "Magnitude"},
    {Criterion::kConstellation, "constellation", "Constellation"}, {Criterion::kCatalog, "catalog", "Catalog"},
    {Criterion::kType, "type", "Type"},                     {Criterion::kGroup, "group", "Group"},
    {Criterion::kDifficulty, "difficulty", "Difficulty"},   {Criterion::kSize, "size", "Size"},
};

bool siteIsSet(const Preferences& p) {
    const std::string name(p.siteName, strnlen(p.siteName, sizeof p.siteName));
    return !name.empty() && name != "None";
}

}  // namespace

bool CurrentList::load() {
    list.capacity = selectionCapacity(prefs());
    return loadCurrentSelection(list, prefs().selection);
}

bool CurrentList::save() {
    if (saveCurrentSelection(list, prefs().selection)) return true;
    showMessage("Can't save the selection list", programFolder().string());
    return false;
}

bool CurrentList::saveCriteria() {
    const Preferences current = prefs();
    return updatePrefsForCommand([&](Preferences& saved) {
        saved.selection = current.selection;
        std::memcpy(saved.userCatalogFile, current.userCatalogFile, sizeof saved.userCatalogFile);
        return true;
    });
}

std::optional<ShortSelection> shortSelectionOf(const std::string& name) {
    static const std::pair<const char*, ShortSelection> kNames[] = {
        {"messier", ShortSelection::kMessier},   {"caldwell", ShortSelection::kCaldwell},
        {"herschel", ShortSelection::kHerschel}, {"sac", ShortSelection::kSac},
        {"stars", ShortSelection::kStars},       {"user", ShortSelection::kUser},
        {"comets", ShortSelection::kComets},     {"planets", ShortSelection::kPlanets},
        {"galaxies", ShortSelection::kGalaxies}, {"nebulae", ShortSelection::kNebulae},
        {"globulars", ShortSelection::kGlobulars}, {"multiples", ShortSelection::kMultiples},
        {"all", ShortSelection::kAll}};
    for (const auto& [text, which] : kNames)
        if (name == text) return which;
    showMessage("Unknown short selection \"" + name + "\"",
                "messier, caldwell, herschel, sac, stars, user, comets, planets, galaxies, nebulae, globulars, "
                "multiples or all");
    return std::nullopt;
}

bool roamCurrentList(const RoamRequest& request, std::function<bool()> stopRequested,
                     std::function<void(std::string_view)> stageLine, RoamResult& out) {
    Preferences& p = prefs();
    out.list = SelectionList{};
    out.list.capacity = selectionCapacity(p);
    SelectionCriteria& criteria = p.selection;
    SelectionCriteria previous = criteria;
    if (!loadCurrentSelection(out.list, previous)) return false;
    std::optional<ShortSelection> which;
    if (request.shortSelection && !(which = shortSelectionOf(*request.shortSelection))) return false;
    const SelectionCriteria before = criteria;
    if (request.reset) criteria = resetCriteria(criteria);
    for (const auto& [criterion, value] : request.criteria)
        if (!setCriterion(criteria, criterion, value)) {
            criteria = before;
            return false;
        }
    SelectionRunHooks hooks = selectionHooksFor(criteria, std::move(stopRequested));
    hooks.stageLine = std::move(stageLine);
    if (which) {
        if (!siteIsSet(p)) {
            showMessage("Please set your location first!");
            return false;
        }
        out.outcome = runShortSelection(*which, criteria, hooks, out.list, out.report);
    } else {
        out.outcome = runSelection(criteria, hooks, out.list, request.mode);
    }
    if (!saveCurrentSelection(out.list, criteria)) {
        showMessage("Can't save the selection list", programFolder().string());
        return false;
    }
    const SelectionCriteria chosen = criteria;
    return updatePrefsForCommand([&](Preferences& saved) {
        saved.selection = chosen;
        return true;
    });
}

nlohmann::json selectionCriteriaJson(const SelectionCriteria& criteria) {
    nlohmann::json fields = nlohmann::json::array();
    for (const auto& entry : kCriteria) {
        nlohmann::json field{{"key", entry.key}, {"label", entry.label}};
        if (entry.which == Criterion::kSize) {
            field["choices"] = nlohmann::json::array();
            field["value"] = criteria.sizeMatch ? criteria.sizeReference : 0;
        } else {
            const std::vector<std::string> choices = criterionChoices(entry.which);
            const std::string current = criterionText(criteria, entry.which);
            nlohmann::json texts = nlohmann::json::array();
            int value = 0;
            for (std::size_t i = 0; i < choices.size(); ++i) {
                texts.push_back(latin1ToUtf8(choices[i]));
                if (choices[i] == current) value = static_cast<int>(i);
            }
            field["choices"] = texts;
            field["value"] = value;
        }
        fields.push_back(field);
    }
    return {{"title", "Choose Selection Criteria"}, {"criteria", fields}};
}

std::optional<Criterion> criterionOfKey(std::string_view key) {
    for (const auto& entry : kCriteria)
        if (key == entry.key) return entry.which;
    return std::nullopt;
}

nlohmann::json listPickerJson() {
    nlohmann::json j = nlohmann::json::array();
    for (const auto& l : listPicker())
        j.push_back({{"file", l.file}, {"name", latin1ToUtf8(l.name)}, {"count", l.count}, {"line", latin1ToUtf8(l.line)}});
    return {{"lists", j}};
}

}  // namespace nocturnel
