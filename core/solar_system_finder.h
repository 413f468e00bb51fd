#pragma once
// Finding the Sun, the Moon or a planet by name for the finder, tap identification and GoTo:
// its place for the moment at the site of the preferences.
#include <string_view>

#include "core/planet_positions.h"

namespace nocturnel {

struct SolarSystemFind {
    SolarBody body = SolarBody::Sun;
    double raJ2000Hours = 0.0, decJ2000Deg = 0.0;  // topocentric apparent place turned back to J2000 (chart, GoTo)
    double raHours = 0.0, decDeg = 0.0;            // topocentric apparent place, true equator and equinox of date
    double altDeg = 0.0, azDeg = 0.0;              // refracted when the "Correction" preference asks
    double magnitude = 0.0, diameterArcsec = 0.0, illuminatedFraction = 1.0, distanceAu = 0.0;
};

// True with the body's place when name is "Sun", "Moon", "Mercury" ... "Pluto" (any case) and
// the planet file is readable; false otherwise (a message when the file is missing, or for
// Pluto outside 1885-2099).
bool findSolarSystemBody(std::string_view name, double jdUt, SolarSystemFind* found);

}  // namespace nocturnel
