#pragma once
// SkyRoamer and the saved lists as the command line and the web interface share them: the
// current selection list read and written with the preferences' capacity, a run over it from
// typed criteria, and the "Choose Selection Criteria" form and the list picker as JSON.
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "plans/selection_form.h"
#include "plans/selection_list.h"
#include "plans/selection_run.h"

namespace nocturnel {

// The current list (selection.lst) with the preferences' capacity.
struct CurrentList {
    SelectionList list;
    bool load();
    // "Can't save the selection list" when it cannot be written.
    bool save();
    // The selection fields and the user catalogue's name go into the saved preferences.
    static bool saveCriteria();
};

// A short selection's name ("messier", "galaxies", ...); nothing after a message listing them.
std::optional<ShortSelection> shortSelectionOf(const std::string& name);

// One SkyRoamer run as the user asks it: the criteria typed (index or text, as setCriterion
// reads them), the trash icon first when reset, then "N", "+" or "-", or a short selection.
struct RoamRequest {
    std::vector<std::pair<Criterion, std::string>> criteria;
    SelectionMode mode = SelectionMode::kNew;
    bool reset = false;
    std::optional<std::string> shortSelection;
};

struct RoamResult {
    SelectionList list;
    SelectionOutcome outcome;
    std::string report;  // a short selection's "%d visible Messiers." (empty otherwise)
};

// Runs the request over the current list, saves the list and the criteria. False after a
// message when the run could not start or its result could not be saved; a run that failed
// midway (outcome.failed) is saved and returns true.
bool roamCurrentList(const RoamRequest& request, std::function<bool()> stopRequested,
                     std::function<void(std::string_view)> stageLine, RoamResult& out);

// The "Choose Selection Criteria" form: {"criteria":[{"key","label","choices":[...],"value"}]}
// with each criterion's choices in stored-index order and the index of its current value; the
// size criterion has no choices and its value is the reference magnification (0 when unset).
nlohmann::json selectionCriteriaJson(const SelectionCriteria& criteria);
// The key of a criterion in that form ("visibility", "mag", ...); nothing for an unknown key.
std::optional<Criterion> criterionOfKey(std::string_view key);

// The list picker: {"lists":[{"file","name","count","line"}]} (UTF-8).
nlohmann::json listPickerJson();

}  // namespace nocturnel
