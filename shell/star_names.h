#pragma once
// Finding one of the default bright stars by its name ("Vega", "alf Lyr", "HIP 91262").
#include <string>

namespace nocturnel {

// Opens the default stars when needed; true with the star's name as the catalogue writes it
// and its J2000 place (RA hours, Dec degrees).
bool findBrightStarByName(const std::string& name, std::string& canonical, double& raHours, double& decDeg);

}  // namespace nocturnel
