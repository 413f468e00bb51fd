#include "chart/sun_moon_sky.h"

#include <cmath>
#include <filesystem>

#include "core/delta_t_model.h"
#include "core/planet_series_format.h"
#include "core/solar_system_sky.h"
#include "core/time.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {
constexpr double kDegToRad = 3.14159265358979323846 / 180.0;

double separationDeg(double ra1Hours, double dec1Deg, double ra2Hours, double dec2Deg) {
    const double d1 = dec1Deg * kDegToRad, d2 = dec2Deg * kDegToRad;
    const double dRa = (ra1Hours - ra2Hours) * 15.0 * kDegToRad;
    const double c = std::sin(d1) * std::sin(d2) + std::cos(d1) * std::cos(d2) * std::cos(dRa);
    return std::acos(std::fmax(-1.0, std::fmin(1.0, c))) / kDegToRad;
}

bool sunAndMoon(double jdUt, SolarBodyReport* sun, SolarBodyReport* moon) {
    // Without the planet file the estimate keeps its dark sky, without a message of its own.
    std::error_code ec;
    if (!std::filesystem::exists(dataPath(kPlanetSeriesFileName), ec)) return false;
    SkyRequest request = skyRequestFromPreferences(false);
    request.jdUt = jdUt;
    const double deltaT = modelDeltaTSeconds(jdUt);
    return solarBodyAt(SolarBody::Sun, request, deltaT, sun) == 0 && solarBodyAt(SolarBody::Moon, request, deltaT, moon) == 0;
}
}  // namespace

double jdUtOfMoment(const ObservingMoment& m) {
    return julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, prefs().utcOffsetMin);
}

bool sunMoonStateAt(double jdUt, SunMoonState* state) {
    SolarBodyReport sun, moon;
    if (!sunAndMoon(jdUt, &sun, &moon)) return false;
    state->sunAltitudeDeg = sun.altDeg;
    state->moonAltitudeDeg = moon.altDeg;
    state->moonPhaseAngleDeg = moon.physical.phaseAngleDeg;
    return true;
}

bool sunMoonStateAt(double jdUt, double raHours, double decDeg, SunMoonState* state) {
    SolarBodyReport sun, moon;
    if (!sunAndMoon(jdUt, &sun, &moon)) return false;
    state->sunAltitudeDeg = sun.altDeg;
    state->moonAltitudeDeg = moon.altDeg;
    state->moonPhaseAngleDeg = moon.physical.phaseAngleDeg;
    state->sunSeparationDeg = separationDeg(raHours, decDeg, sun.topocentric.raHours, sun.topocentric.decDeg);
    state->moonSeparationDeg = separationDeg(raHours, decDeg, moon.topocentric.raHours, moon.topocentric.decDeg);
    return true;
}

}  // namespace nocturnel
