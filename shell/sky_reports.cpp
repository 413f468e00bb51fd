#include "shell/sky_reports.h"

#include <cstdio>
#include <cstring>

#include "catalog/constellations.h"
#include "catalog/object_finder.h"
#include "chart/object_info.h"
#include "core/angle_text.h"
#include "core/body_place.h"
#include "core/delta_t_model.h"
#include "core/ecliptic_place.h"
#include "core/moon_phases.h"
#include "core/planet_events.h"
#include "core/planet_surfaces.h"
#include "core/rise_set.h"
#include "core/solar_system_json.h"
#include "core/solar_system_sky.h"
#include "core/time.h"
#include "core/twilight.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "shell/app.h"
#include "shell/object_info_json.h"
#include "shell/star_names.h"

namespace nocturnel {

std::string constellationAbbreviation(double raJ2000Hours, double decJ2000Deg) {
    const int n = constellationOf(raJ2000Hours, decJ2000Deg);
    const auto& list = constellations().constellations;
    if (n < 0 || n >= static_cast<int>(list.size())) return {};
    char text[sizeof list[n].abbreviation + 1] = {};
    std::memcpy(text, list[n].abbreviation, sizeof list[n].abbreviation);
    return text;
}

namespace {

}  // namespace

bool planetsReportJson(nlohmann::json& out) {
    SolarSystemReport report;
    if (solarSystemAt(skyRequestFromPreferences(true), &report) != 0) return false;
    out = planetsJson(report, prefs().utcOffsetMin, constellationAbbreviation);
    return true;
}

bool riseReportJson(const std::string& wanted, nlohmann::json& out) {
    const SkyRequest request = skyRequestFromPreferences(true);
    RiseSetTimes times;
    std::string name = wanted;
    if (const auto body = solarBodyByName(wanted)) {
        SolarBodyReport report;
        if (solarBodyAt(*body, request, modelDeltaTSeconds(request.jdUt), &report) != 0 || !report.riseSet) return false;
        times = *report.riseSet;
        name = solarBodyName(*body);
    } else {
        double ra = 0.0, dec = 0.0;
        std::string canonical;
        FoundObject object;
        if (findBrightStarByName(wanted, canonical, ra, dec)) {
            name = canonical;
        } else if (findObjectByName(wanted, object)) {
            name = object.name;
            ra = object.raHours;
            dec = object.decDeg;
        } else {
            return false;  // the finder has shown why
        }
        if (riseTransitSet(catalogueTrack(ra, dec), *request.riseSetDayStartJdUt,
                           request.horizonDeg - kHorizonRefractionDeg, request.site, &times) != 0)
            return false;
    }
    out = riseJson(name, times, prefs().utcOffsetMin);
    return true;
}

bool twilightReportJson(nlohmann::json& out) {
    const SkyRequest request = skyRequestFromPreferences(true);
    TwilightTimes times;
    if (twilightForDay(*request.riseSetDayStartJdUt, request.site, request.horizonDeg, &times) != 0) return false;
    const ObservingMoment& m = prefs().moment;
    char date[16];
    std::snprintf(date, sizeof date, "%04d-%02d-%02d", m.year, m.month, m.day);
    out = twilightJson(date, times, prefs().utcOffsetMin);
    return true;
}

bool twilightReportJsonForDate(const std::string& dateText, nlohmann::json& out) {
    ObservingMoment day = prefs().moment;
    if (!readDateOption(dateText, day)) {
        showMessage("Invalid date", "use YYYY-MM-DD");
        return false;
    }
    const ObservingMoment kept = prefs().moment;
    prefs().moment = day;
    const bool ok = twilightReportJson(out);
    prefs().moment = kept;
    return ok;
}

bool moonReportJson(nlohmann::json& out) {
    const SkyRequest request = skyRequestFromPreferences(true);
    SolarBodyReport moon;
    if (solarBodyAt(SolarBody::Moon, request, modelDeltaTSeconds(request.jdUt), &moon) != 0) return false;
    const double elongation = moonElongationLongitudeDeg(request.jdUt);
    EclipticPlace ecliptic;
    apparentEclipticPlace(SolarBody::Moon, moon.geocentric.jdTt, &ecliptic);
    const MoonLibration libration = moonOpticalLibration(moon.geocentric.jdTt, ecliptic.longitudeDeg, ecliptic.latitudeDeg);
    out = moonJson(moon, moonAgeDays(request.jdUt), elongation, libration, nextMoonPhases(request.jdUt, 4),
                   prefs().utcOffsetMin);
    return true;
}

bool eventsReportJson(const std::string& fromText, const std::string& toText, const std::string& kind, double maxYears,
                      nlohmann::json& out) {
    ObservingMoment from = prefs().moment, to = prefs().moment;
    if (!readDateOption(fromText, from) || !readDateOption(toText, to)) {
        showMessage("Invalid date", "use YYYY-MM-DD for --from and --to");
        return false;
    }
    if (!kind.empty()) {
        bool known = false;
        for (const std::string& k : planetEventKinds()) known = known || k == kind;
        if (!known) {
            std::string list;
            for (const std::string& k : planetEventKinds()) list += (list.empty() ? "" : ", ") + k;
            showMessage("Unknown event kind", list);
            return false;
        }
    }
    const int offset = prefs().utcOffsetMin;
    const double a = julianDateFromLocal(from.year, from.month, from.day, 0, 0, 0, offset);
    const double b = julianDateFromLocal(to.year, to.month, to.day, 0, 0, 0, offset) + 1.0;  // the last day included
    if (!(b > a)) {
        showMessage("Invalid date", "--to is before --from");
        return false;
    }
    if (b - a > maxYears * 365.25 + 1.0) {
        char detail[48];
        std::snprintf(detail, sizeof detail, "at most %g years", maxYears);
        showMessage("Date range too long", detail);
        return false;
    }
    out = eventsJson(findPlanetEvents(a, b, kind), offset);
    return true;
}

bool infoReportJson(const std::string& name, nlohmann::json& out) {
    FoundObject object;
    ObjectInfo card;
    if (!findObjectByName(name, object) || !computeObjectInfo(object, prefs().moment, card)) return false;
    out = objectInfoJson(card);
    return true;
}

nlohmann::json suggestionsJson(const std::string& prefix, std::size_t limit) {
    nlohmann::json names = nlohmann::json::array();
    for (const std::string& n : suggestObjectNames(prefix, limit)) names.push_back(toUtf8(n));
    return names;
}

}  // namespace nocturnel
