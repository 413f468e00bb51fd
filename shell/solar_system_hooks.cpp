#include "shell/solar_system_hooks.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/object_finder.h"
#include "catalog/object_tables.h"
#include "chart/identify.h"
#include "chart/solar_system_layer.h"
#include "chart/sun_moon_sky.h"
#include "core/body_place.h"
#include "core/solar_system_finder.h"
#include "settings/preferences.h"
#include "shell/target_names.h"

namespace nocturnel {
namespace {
constexpr int kPlanetTypeCode = 27;  // "Planet" in the object-type table

bool findBody(std::string_view name, FoundObject& out) {
    SolarSystemFind body;
    if (!findSolarSystemBody(name, jdUtOfMoment(prefs().moment), &body)) return false;
    out = FoundObject{};
    out.name = solarBodyName(body.body);
    out.commonName = out.name;
    out.catalogCode = kCatalogPlanets;
    out.number = static_cast<int32_t>(body.body);
    out.typeCode = kPlanetTypeCode;
    out.raHours = body.raJ2000Hours;
    out.decDeg = body.decJ2000Deg;
    out.mag = body.magnitude;
    out.magKnown = true;
    out.majorArcmin = body.diameterArcsec / 60.0;
    return true;
}

std::vector<std::string> suggestBodies(std::string_view prefix, std::size_t limit) {
    std::vector<std::string> names;
    for (int i = 0; i < kSolarBodyCount && names.size() < limit; ++i) {
        const std::string name = solarBodyName(static_cast<SolarBody>(i));
        if (prefix.empty() || prefix.size() > name.size()) continue;
        bool same = true;
        for (std::size_t k = 0; k < prefix.size() && same; ++k)
            same = std::tolower(static_cast<unsigned char>(prefix[k])) == std::tolower(static_cast<unsigned char>(name[k]));
        if (same) names.push_back(name);
    }
    return names;
}

bool resolveBody(std::string_view name, const ObservingMoment& moment, ResolvedTarget& out) {
    if (!solarBodyByName(name)) return false;
    SolarSystemFind body;
    if (!findSolarSystemBody(name, jdUtOfMoment(moment), &body)) return false;
    out.name = solarBodyName(body.body);
    out.raHours = body.raJ2000Hours;
    out.decDeg = body.decJ2000Deg;
    return true;
}
}  // namespace

void registerSolarSystemHooks() {
    static int registeredGeneration = -1;
    setSolarSystemFinder(findBody, suggestBodies);
    setSolarSystemSpots(solarSystemSpots);
    if (registeredGeneration == targetFinderGeneration()) return;
    registeredGeneration = targetFinderGeneration();
    addTargetFinder(resolveBody);
}

}  // namespace nocturnel
