#include "core/solar_system_finder.h"

#include "core/body_place.h"
#include "core/delta_t_model.h"
#include "core/solar_system_sky.h"

namespace nocturnel {

bool findSolarSystemBody(std::string_view name, double jdUt, SolarSystemFind* found) {
    const std::optional<SolarBody> body = solarBodyByName(name);
    if (!body) return false;
    SkyRequest request = skyRequestFromPreferences(false);
    request.jdUt = jdUt;
    SolarBodyReport report;
    if (solarBodyAt(*body, request, modelDeltaTSeconds(jdUt), &report) != 0) return false;
    found->body = *body;
    found->raJ2000Hours = report.raJ2000Hours;
    found->decJ2000Deg = report.decJ2000Deg;
    found->raHours = report.topocentric.raHours;
    found->decDeg = report.topocentric.decDeg;
    found->altDeg = report.altDeg;
    found->azDeg = report.azDeg;
    found->magnitude = report.physical.magnitude;
    found->diameterArcsec = report.physical.diameterArcsec;
    found->illuminatedFraction = report.physical.illuminatedFraction;
    found->distanceAu = report.geocentric.distanceAu;
    return true;
}

}  // namespace nocturnel
