#pragma once
// The "Choose Selection Criteria" form as data: each criterion's choices in stored-index order,
// and the reading of a typed choice (its index or its text, as the preferences take them).
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "settings/selection_criteria.h"

namespace nocturnel {

enum class Criterion { kVisibility, kMagnitude, kConstellation, kCatalog, kType, kGroup, kDifficulty, kSize };

// The choices of a criterion in stored-index order (index 0 "No Criteria"). The constellation,
// catalogue and type lists come from the catalogue tables.
std::vector<std::string> criterionChoices(Criterion which);

// Sets one criterion from a typed value: its stored index, or its text (any case). The group
// takes "Planet", "Nebula", "Galaxy", "Double Star", "Cluster", "Star" and stores the type group;
// the size takes a magnification (0 clears it). False after a message listing the choices.
bool setCriterion(SelectionCriteria& criteria, Criterion which, std::string_view value);

// The text of a criterion's current value ("No Criteria" when unset).
std::string criterionText(const SelectionCriteria& criteria, Criterion which);

}  // namespace nocturnel
