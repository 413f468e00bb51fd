#pragma once
// The horizontal place of a J2000 position for the answers of the web interface.
#include <nlohmann/json.hpp>

namespace nocturnel {

// Adds "alt" and "az" (degrees, in the pointing frame of the preferences, at the program's
// moment) of a J2000 place to j; nothing when the place cannot be reduced.
void addHorizontalPlace(nlohmann::json& j, double raHours, double decDeg);

}  // namespace nocturnel
