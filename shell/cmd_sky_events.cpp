// nocturnel twilight, nocturnel moon, nocturnel events: the day's twilights, the Moon's phase
// and coming phases, and the events of the Sun, Moon and planets over a range of dates.
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>

#include "core/delta_t_model.h"
#include "core/ecliptic_place.h"
#include "core/solar_system_json.h"
#include "core/time.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "shell/app.h"
#include "shell/commands.h"

namespace nocturnel {
namespace {

std::string text(const nlohmann::json& v) { return v.is_string() ? v.get<std::string>() : "-"; }

void runTwilight() {
    if (!startUp()) return setExitCode(1);
    const SkyRequest request = skyRequestFromPreferences(true);
    TwilightTimes times;
    if (twilightForDay(*request.riseSetDayStartJdUt, request.site, request.horizonDeg, &times) != 0) return setExitCode(1);
    const ObservingMoment& m = prefs().moment;
    char date[16];
    std::snprintf(date, sizeof date, "%04d-%02d-%02d", m.year, m.month, m.day);
    const nlohmann::json out = twilightJson(date, times, prefs().utcOffsetMin);
    if (globalOptions().json) {
        std::cout << out.dump(2) << "\n";
        return;
    }
    std::cout << "Twilight on " << date << " (local time)\n";
    std::cout << "Astronomical dawn: " << text(out["astronomicalDawn"]) << "\n";
    std::cout << "Nautical dawn:     " << text(out["nauticalDawn"]) << "\n";
    std::cout << "Civil dawn:        " << text(out["civilDawn"]) << "\n";
    std::cout << "Sunrise:           " << text(out["sunrise"]) << "\n";
    std::cout << "Sunset:            " << text(out["sunset"]) << "\n";
    std::cout << "Civil dusk:        " << text(out["civilDusk"]) << "\n";
    std::cout << "Nautical dusk:     " << text(out["nauticalDusk"]) << "\n";
    std::cout << "Astronomical dusk: " << text(out["astronomicalDusk"]) << "\n";
}

void runMoon() {
    if (!startUp()) return setExitCode(1);
    const SkyRequest request = skyRequestFromPreferences(true);
    SolarBodyReport moon;
    if (solarBodyAt(SolarBody::Moon, request, modelDeltaTSeconds(request.jdUt), &moon) != 0) return setExitCode(1);
    const double elongation = moonElongationLongitudeDeg(request.jdUt);
    EclipticPlace ecliptic;
    apparentEclipticPlace(SolarBody::Moon, moon.geocentric.jdTt, &ecliptic);
    const MoonLibration libration = moonOpticalLibration(moon.geocentric.jdTt, ecliptic.longitudeDeg, ecliptic.latitudeDeg);
    const nlohmann::json out = moonJson(moon, moonAgeDays(request.jdUt), elongation, libration,
                                        nextMoonPhases(request.jdUt, 4), prefs().utcOffsetMin);
    if (globalOptions().json) {
        std::cout << out.dump(2) << "\n";
        return;
    }
    char line[160];
    std::snprintf(line, sizeof line, "%s, age %.1f days, %.0f%% illuminated, %.0f km, %.1f'",
                  out["phase"].get<std::string>().c_str(), out["age"].get<double>(), 100.0 * out["illuminated"].get<double>(),
                  out["distanceKm"].get<double>(), out["diameterArcsec"].get<double>() / 60.0);
    std::cout << line << "\n";
    std::snprintf(line, sizeof line, "Libration: longitude %+.2f, latitude %+.2f", libration.longitudeDeg, libration.latitudeDeg);
    std::cout << line << "\n";
    std::cout << "Rise " << text(out["rise"]) << "  transit " << text(out["transit"]) << "  set " << text(out["set"]) << "\n";
    for (const auto& p : out["nextPhases"]) std::cout << p["time"].get<std::string>() << "  " << p["phase"].get<std::string>() << "\n";
}

std::string fromText, toText, kindText;

void runEvents() {
    if (!startUp()) return setExitCode(1);
    ObservingMoment from = prefs().moment, to = prefs().moment;
    if (!readDateOption(fromText, from) || !readDateOption(toText, to)) {
        showMessage("Invalid date", "use YYYY-MM-DD for --from and --to");
        return setExitCode(1);
    }
    if (!kindText.empty()) {
        bool known = false;
        for (const std::string& k : planetEventKinds()) known = known || k == kindText;
        if (!known) {
            std::string list;
            for (const std::string& k : planetEventKinds()) list += (list.empty() ? "" : ", ") + k;
            showMessage("Unknown event kind", list);
            return setExitCode(1);
        }
    }
    const int offset = prefs().utcOffsetMin;
    const double a = julianDateFromLocal(from.year, from.month, from.day, 0, 0, 0, offset);
    const double b = julianDateFromLocal(to.year, to.month, to.day, 0, 0, 0, offset) + 1.0;  // --to day included
    if (!(b > a)) {
        showMessage("Invalid date", "--to is before --from");
        return setExitCode(1);
    }
    if (b - a > 20.0 * 365.25) {
        showMessage("Date range too long", "at most 20 years");
        return setExitCode(1);
    }
    const nlohmann::json out = eventsJson(findPlanetEvents(a, b, kindText), offset);
    if (globalOptions().json) {
        std::cout << out.dump(2) << "\n";
        return;
    }
    for (const auto& e : out["events"]) {
        std::string bodies;
        for (const auto& n : e["bodies"]) bodies += (bodies.empty() ? "" : " - ") + n.get<std::string>();
        char line[200];
        if (e["separationDeg"].is_number())
            std::snprintf(line, sizeof line, "%s  %-18s %-20s %.2f deg", e["time"].get<std::string>().c_str(),
                          e["kind"].get<std::string>().c_str(), bodies.c_str(), e["separationDeg"].get<double>());
        else
            std::snprintf(line, sizeof line, "%s  %-18s %s", e["time"].get<std::string>().c_str(),
                          e["kind"].get<std::string>().c_str(), bodies.c_str());
        std::cout << line << "\n";
    }
}

}  // namespace

void registerSkyEventCommands(CLI::App& app) {
    app.add_subcommand("twilight", "Sunrise, sunset and the civil, nautical and astronomical twilights of the local day")
        ->callback(runTwilight);
    app.add_subcommand("moon", "The Moon's phase, age, illumination, rise and set, and its next four phases")->callback(runMoon);
    CLI::App* events = app.add_subcommand("events", "Conjunctions, oppositions, elongations, stations, apsides, "
                                                    "perigees, apogees, equinoxes and solstices over a range of dates");
    events->add_option("--from", fromText, "First local date YYYY-MM-DD")->required();
    events->add_option("--to", toText, "Last local date YYYY-MM-DD (included)")->required();
    events->add_option("--kind", kindText, "Only this kind (conjunction, opposition, greatestElongation, station, "
                                           "perihelion, aphelion, perigee, apogee, equinox, solstice)");
    events->callback(runEvents);
}

}  // namespace nocturnel
