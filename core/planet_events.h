#pragma once
// The search for events of the Sun, Moon and planets over a range of dates: conjunctions in
// right ascension (planet-planet and Moon-planet, with the separation at that instant),
// oppositions, greatest elongations of Mercury and Venus, stations, perihelia and aphelia,
// the Moon's perigees and apogees, equinoxes and solstices. Places are apparent geocentric.
// Pluto takes part only from 1885 to 2099, the span of its series.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocturnel {

struct PlanetEvent {
    std::string kind;  // "conjunction", "opposition", "greatestElongation", "station", "perihelion",
                       // "aphelion", "perigee", "apogee", "equinox", "solstice"
    double jdUt = 0.0;
    std::vector<std::string> bodies;
    std::optional<double> separationDeg;  // conjunctions; the elongation for greatest elongations
};

// Every kind the search knows, in the order above.
const std::vector<std::string>& planetEventKinds();

// Events in [fromJdUt, toJdUt), sorted by time; kind empty for all kinds. The range is capped
// at 20 years. Empty when the planet file is missing.
std::vector<PlanetEvent> findPlanetEvents(double fromJdUt, double toJdUt, std::string_view kind = {});

}  // namespace nocturnel
