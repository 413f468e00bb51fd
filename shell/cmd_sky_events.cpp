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
#include "shell/sky_reports.h"

namespace nocturnel {
namespace {

std::string text(const nlohmann::json& v) { return v.is_string() ? v.get<std::string>() : "-"; }

void runTwilight() {
    if (!startUp()) return setExitCode(1);
    nlohmann::json out;
    if (!twilightReportJson(out)) return setExitCode(1);
    if (globalOptions().json) {
        std::cout << out.dump(2) << "\n";
        return;
    }
    std::cout << "Twilight on " << out["date"].get<std::string>() << " (local time)\n";
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
    nlohmann::json out;
    if (!moonReportJson(out)) return setExitCode(1);
    if (globalOptions().json) {
        std::cout << out.dump(2) << "\n";
        return;
    }
    char line[160];
    std::snprintf(line, sizeof line, "%s, age %.1f days, %.0f%% illuminated, %.0f km, %.1f'",
                  out["phase"].get<std::string>().c_str(), out["age"].get<double>(), 100.0 * out["illuminated"].get<double>(),
                  out["distanceKm"].get<double>(), out["diameterArcsec"].get<double>() / 60.0);
    std::cout << line << "\n";
    std::snprintf(line, sizeof line, "Libration: longitude %+.2f, latitude %+.2f", out["librationLonDeg"].get<double>(),
                  out["librationLatDeg"].get<double>());
    std::cout << line << "\n";
    std::cout << "Rise " << text(out["rise"]) << "  transit " << text(out["transit"]) << "  set " << text(out["set"]) << "\n";
    for (const auto& p : out["nextPhases"]) std::cout << p["time"].get<std::string>() << "  " << p["phase"].get<std::string>() << "\n";
}

constexpr double kEventsMaxYears = 20.0;
std::string fromText, toText, kindText;

void runEvents() {
    if (!startUp()) return setExitCode(1);
    nlohmann::json out;
    if (!eventsReportJson(fromText, toText, kindText, kEventsMaxYears, out)) return setExitCode(1);
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
