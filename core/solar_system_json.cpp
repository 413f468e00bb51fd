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
        // An extrapolated place is no place: every value stays null, the name and flag say why.
        if (b.outsideTheory)
            for (auto& [key, value] : j.items())
                if (key != "name") value = nullptr;
        j["outsideTheory"] = b.outsideTheory;
        bodies.push_back(j);
    }
    return {{"jd", report.jdUt},
            {"deltaT", report.deltaTSec},
            {"deltaTSource", deltaTSourceName(report.deltaTSource)},
            {"bodies", bodies}};
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

nlohmann::json twilightJson(const std::string& localDate, const TwilightTimes& t, int offset) {
    return {{"date", localDate},
            {"sunrise", localIsoTimeOrNull(t.sun.riseJdUt, offset)},
            {"sunset", localIsoTimeOrNull(t.sun.setJdUt, offset)},
            {"civilDawn", localIsoTimeOrNull(t.civil.riseJdUt, offset)},
            {"civilDusk", localIsoTimeOrNull(t.civil.setJdUt, offset)},
            {"nauticalDawn", localIsoTimeOrNull(t.nautical.riseJdUt, offset)},
            {"nauticalDusk", localIsoTimeOrNull(t.nautical.setJdUt, offset)},
            {"astronomicalDawn", localIsoTimeOrNull(t.astronomical.riseJdUt, offset)},
            {"astronomicalDusk", localIsoTimeOrNull(t.astronomical.setJdUt, offset)}};
}

nlohmann::json moonJson(const SolarBodyReport& moon, double ageDays, double elongation, const MoonLibration& libration,
                        const std::vector<MoonPhaseEvent>& nextPhases, int offset) {
    nlohmann::json phases = nlohmann::json::array();
    for (const MoonPhaseEvent& p : nextPhases)
        phases.push_back({{"phase", moonPhaseName(p.quarter)}, {"time", localIsoTime(p.jdUt, offset)}, {"jd", p.jdUt}});
    const std::optional<double> none;
    return {{"phase", moonPhaseDescription(elongation)},
            {"age", ageDays},
            {"illuminated", moon.physical.illuminatedFraction},
            {"elongation", moon.physical.elongationDeg},
            {"distanceKm", moon.geocentric.distanceAu * kKmPerAu},
            {"diameterArcsec", moon.physical.diameterArcsec},
            {"librationLonDeg", libration.longitudeDeg},
            {"librationLatDeg", libration.latitudeDeg},
            {"rise", localIsoTimeOrNull(moon.riseSet ? moon.riseSet->riseJdUt : none, offset)},
            {"transit", localIsoTimeOrNull(moon.riseSet ? moon.riseSet->transitJdUt : none, offset)},
            {"set", localIsoTimeOrNull(moon.riseSet ? moon.riseSet->setJdUt : none, offset)},
            {"nextPhases", phases}};
}

nlohmann::json eventsJson(const std::vector<PlanetEvent>& events, int offset) {
    nlohmann::json list = nlohmann::json::array();
    for (const PlanetEvent& e : events)
        list.push_back({{"kind", e.kind},
                        {"time", localIsoTime(e.jdUt, offset)},
                        {"jd", e.jdUt},
                        {"bodies", e.bodies},
                        {"separationDeg", e.separationDeg ? nlohmann::json(*e.separationDeg) : nlohmann::json(nullptr)}});
    return {{"events", list}};
}

}  // namespace nocturnel
