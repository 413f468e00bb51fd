#include "core/solar_system_json.h"

#include <cmath>
#include <cstdio>

#include "core/astro_constants.h"
#include "core/time.h"

namespace nocturnel {

std::string localIsoTime(double jdUt, int utcOffsetMin) {
    // Rounded to the second first, so that 59.6 s never prints as 60.
    const double local = std::round((jdUt + utcOffsetMin / 1440.0) * kSecondsPerDay) / kSecondsPerDay;
    const double z = std::floor(local + 0.5);
    const double dayFraction = local + 0.5 - z;
    const CalendarDate date = calendarFromJulian(z - 0.5 + 1e-9);
    long seconds = std::lround(dayFraction * kSecondsPerDay);
    if (seconds >= 86400) seconds = 86399;
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02ld:%02ld:%02ld", date.year, date.month, date.day, seconds / 3600,
                  (seconds / 60) % 60, seconds % 60);
    return text;
}

nlohmann::json localIsoTimeOrNull(const std::optional<double>& jdUt, int utcOffsetMin) {
    return jdUt ? nlohmann::json(localIsoTime(*jdUt, utcOffsetMin)) : nlohmann::json(nullptr);
}

nlohmann::json planetsJson(const SolarSystemReport& report, int utcOffsetMin, const ConstellationNamer& constellation) {
    nlohmann::json bodies = nlohmann::json::array();
    for (const SolarBodyReport& b : report.bodies) {
        nlohmann::json j = {
            {"name", solarBodyName(b.body)},
            {"raGeo", b.geocentric.raHours},
            {"decGeo", b.geocentric.decDeg},
            {"ra", b.topocentric.raHours},
            {"dec", b.topocentric.decDeg},
            {"alt", b.altDeg},
            {"az", b.azDeg},
            {"mag", std::round(b.physical.magnitude * 100.0) / 100.0},
            {"diameterArcsec", b.physical.diameterArcsec},
            {"illuminated", b.physical.illuminatedFraction},
            {"distanceAu", b.geocentric.distanceAu},
            {"constellation", constellation ? constellation(b.raJ2000Hours, b.decJ2000Deg) : std::string()},
        };
        const std::optional<double> none;
        j["rise"] = localIsoTimeOrNull(b.riseSet ? b.riseSet->riseJdUt : none, utcOffsetMin);
        j["transit"] = localIsoTimeOrNull(b.riseSet ? b.riseSet->transitJdUt : none, utcOffsetMin);
        j["set"] = localIsoTimeOrNull(b.riseSet ? b.riseSet->setJdUt : none, utcOffsetMin);
        bodies.push_back(j);
    }
    return {{"jd", report.jdUt}, {"deltaT", report.deltaTSec}, {"bodies", bodies}};
}

nlohmann::json riseJson(const std::string& name, const RiseSetTimes& t, int utcOffsetMin) {
    return {{"name", name},
            {"rise", localIsoTimeOrNull(t.riseJdUt, utcOffsetMin)},
            {"transit", localIsoTimeOrNull(t.transitJdUt, utcOffsetMin)},
            {"set", localIsoTimeOrNull(t.setJdUt, utcOffsetMin)},
            {"riseAz", t.riseJdUt ? nlohmann::json(t.riseAzDeg) : nlohmann::json(nullptr)},
            {"setAz", t.setJdUt ? nlohmann::json(t.setAzDeg) : nlohmann::json(nullptr)},
            {"transitAlt", t.transitJdUt ? nlohmann::json(t.transitAltDeg) : nlohmann::json(nullptr)},
            {"circumpolar", t.circumpolar},
            {"neverRises", t.neverRises}};
}

}  // namespace nocturnel
