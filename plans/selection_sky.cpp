#include "plans/selection_sky.h"

#include <cmath>
#include <cstring>
#include <filesystem>

#include "catalog/constellations.h"
#include "catalog/object_tables.h"
#include "core/body_place.h"
#include "core/planet_series_format.h"
#include "core/solar_system_sky.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {
constexpr double kDegToRad = 3.14159265358979323846 / 180.0;
}

std::vector<ObjectReference> solarSystemReferences(double jdUt) {
    std::vector<ObjectReference> bodies;
    std::error_code ec;
    if (!std::filesystem::exists(dataPath(kPlanetSeriesFileName), ec)) return bodies;
    SkyRequest request = skyRequestFromPreferences(false);
    request.jdUt = jdUt;
    SolarSystemReport report;
    if (solarSystemAt(request, &report) != 0) return bodies;
    for (const SolarBodyReport& b : report.bodies) {
        if (b.outsideTheory) continue;  // Pluto beyond its series' years has no place to offer
        ObjectReference r{};
        r.catalog = kCatalogPlanets;
        r.number = static_cast<int32_t>(b.body);
        r.type = kPlanetTypeCode;
        r.constellation = constellationOf(b.raJ2000Hours, b.decJ2000Deg);
        r.raHours = b.raJ2000Hours;
        r.decDeg = b.decJ2000Deg;
        r.mag = static_cast<float>(b.physical.magnitude);
        r.sizeArcmin = static_cast<float>(b.physical.diameterArcsec / 60.0);
        std::strncpy(r.name, solarBodyName(b.body), sizeof r.name - 1);
        bodies.push_back(r);
    }
    return bodies;
}

std::optional<SelectionEstimate> estimateForSelection(const ObjectReference& object, const VisibilityConditions& conditions,
                                                      double localSiderealHours, double latitudeDeg) {
    VisibilityTarget target;
    target.mag = object.mag;
    // Planets may have magnitude 0 (Saturn at opposition); elsewhere 0 stores "unknown".
    target.magKnown = object.mag != 0.0f || object.catalog == kCatalogPlanets;
    target.majorArcmin = object.sizeArcmin;
    target.typeCode = object.type;
    const double phi = latitudeDeg * kDegToRad, dec = object.decDeg * kDegToRad;
    const double hourAngle = hourAngleHours(localSiderealHours, object.raHours) * 15.0 * kDegToRad;
    const double altNow = std::asin(std::sin(phi) * std::sin(dec) + std::cos(phi) * std::cos(dec) * std::cos(hourAngle)) / kDegToRad;
    target.altitudeDeg = altNow > 0 ? altNow : 90.0 - std::abs(latitudeDeg - object.decDeg);
    if (target.altitudeDeg <= 0) return SelectionEstimate{};
    const VisibilityEstimate e = estimateVisibility(target, conditions);
    if (!e.known) return std::nullopt;
    return SelectionEstimate{e.ratio, e.bestMagnification};
}

void refreshLimitMagnitudes(SelectionCriteria& criteria, const VisibilityConditions& conditions) {
    criteria.scopeLimitMag = static_cast<float>(conditions.scopeLimitMag);
    criteria.eyesLimitMag = static_cast<float>(conditions.nakedEyeLimitMag);
}

}  // namespace nocturnel
