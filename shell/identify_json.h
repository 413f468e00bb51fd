#pragma once
// What a chart point shows, as JSON for `chart --at X,Y --json` and the web API's identify
// answer ({"kind","name","designation","catalog","number","ra","dec","mag","x","y","distancePx"},
// null when nothing is drawn there), and as the line `chart --at` prints.
#include <nlohmann/json.hpp>
#include <string>

#include "chart/identify.h"

namespace nocturnel {

nlohmann::json identifiedObjectJson(const IdentifiedObject& object);
std::string identifiedObjectText(const IdentifiedObject& object);

}  // namespace nocturnel
