#pragma once
// The JSON the command line prints with --json and the web API serves for the Sun, Moon and
// planets: angles in decimal hours and degrees, times as local ISO-8601 text, null where an
// event does not happen.
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "core/moon_phases.h"
#include "core/planet_events.h"
#include "core/planet_surfaces.h"
#include "core/rise_set.h"
#include "core/twilight.h"
#include "core/solar_system_sky.h"

namespace nocturnel {

// "2026-11-23T17:02:41": local civil time (UT + offset) of a UT Julian date, to the second.
std::string localIsoTime(double jdUt, int utcOffsetMin);
// The same, or null.
nlohmann::json localIsoTimeOrNull(const std::optional<double>& jdUt, int utcOffsetMin);

// The constellation (abbreviation) of a J2000 place; empty when unknown.
using ConstellationNamer = std::function<std::string(double raJ2000Hours, double decJ2000Deg)>;

// {"jd","deltaT","deltaTSource","bodies":[{"name","raGeo","decGeo","ra","dec","alt","az","mag",
//  "diameterArcsec","illuminated","distanceAu","constellation","rise","transit","set","outsideTheory"}]}
// deltaTSource: "observed", "current" (the "Current DeltaT" preference) or "formula". A body
// outside its theory's span (Pluto before 1885 or after 2099) keeps every key, null but
// "name", with "outsideTheory" true.
nlohmann::json planetsJson(const SolarSystemReport& report, int utcOffsetMin, const ConstellationNamer& constellation);

// {"name","rise","transit","set","riseAz","setAz","transitAlt","circumpolar","neverRises"}
nlohmann::json riseJson(const std::string& name, const RiseSetTimes& times, int utcOffsetMin);

// {"date","sunrise","sunset","civilDawn","civilDusk","nauticalDawn","nauticalDusk",
//  "astronomicalDawn","astronomicalDusk"}: dawn is the morning crossing, dusk the evening one.
nlohmann::json twilightJson(const std::string& localDate, const TwilightTimes& times, int utcOffsetMin);

// {"phase","age","illuminated","elongation","distanceKm","diameterArcsec","librationLonDeg",
//  "librationLatDeg","rise","transit","set","nextPhases":[{"phase","time","jd"}]}
nlohmann::json moonJson(const SolarBodyReport& moon, double ageDays, double elongationLongitudeDeg,
                        const MoonLibration& libration, const std::vector<MoonPhaseEvent>& nextPhases, int utcOffsetMin);

// {"events":[{"kind","time","jd","bodies","separationDeg"}]}
nlohmann::json eventsJson(const std::vector<PlanetEvent>& events, int utcOffsetMin);

}  // namespace nocturnel
