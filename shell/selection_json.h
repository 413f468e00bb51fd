#pragma once
// The selection list as JSON and as text lines, shared by roam, list show and the web interface.
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "plans/selection_list.h"

namespace nocturnel {

// {"stages":[...],"objects":[{"name","catalog","type","ra","dec","mag","lists"}]}; mag null when
// unknown; lists names the observing lists the object belongs to ("Herschel", "110 Best of NGC").
nlohmann::json selectionJson(const SelectionList& list, const std::vector<std::string>& stages);
// "12  M 42  Bright Nebula  05h35m17 -05°23'28  4.0" (UTF-8).
std::string selectionLine(const ObjectReference& object, int index);

}  // namespace nocturnel
