// nocturnel planets: the Sun, the Moon and the planets for the moment at the site.
// nocturnel rise NAME: rise, transit and set of a body or catalogue object for the local day.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <nlohmann/json.hpp>

#include "catalog/constellations.h"
#include "catalog/object_finder.h"
#include "core/angle_text.h"
#include "core/delta_t_model.h"
#include "core/planet_surfaces.h"
#include "core/solar_system_finder.h"
#include "core/solar_system_json.h"
#include "core/time.h"
#include "shell/cmd_planets.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "shell/app.h"
#include "shell/commands.h"
#include "shell/sky_reports.h"
#include "shell/star_names.h"

namespace nocturnel {
namespace {

std::string clockText(const nlohmann::json& isoOrNull) {
    return isoOrNull.is_string() ? isoOrNull.get<std::string>().substr(11, 5) : "--:--";
}

void runPlanets() {
    if (!startUp()) return setExitCode(1);
    nlohmann::json out;
    if (!planetsReportJson(out)) return setExitCode(1);
    if (globalOptions().json) {
        std::cout << out.dump(2) << "\n";
        return;
    }
    char line[256];
    std::snprintf(line, sizeof line, "JD %.5f (UT)   DeltaT %.1f s", out["jd"].get<double>(), out["deltaT"].get<double>());
    std::cout << line << "\n";
    std::cout << "Body     RA (topo)    Dec (topo)    Alt     Az      Mag   Diam\"   Illum  Dist AU    Con  Rise  Trans Set\n";
    for (const auto& b : out["bodies"]) {
        if (b["outsideTheory"].get<bool>()) {
            std::snprintf(line, sizeof line, "%-8s not computed for this date (known only from 1885 to 2099)",
                          b["name"].get<std::string>().c_str());
            std::cout << line << "\n";
            continue;
        }
        std::snprintf(line, sizeof line, "%-8s %-12s %-12s %6.1f %6.1f %6.2f %7.1f %5.0f%% %10.5f %-4s %s %s %s",
                      b["name"].get<std::string>().c_str(), toUtf8(hoursText(b["ra"])).c_str(),
                      toUtf8(degreesText(b["dec"])).c_str(), b["alt"].get<double>(), b["az"].get<double>(),
                      b["mag"].get<double>(), b["diameterArcsec"].get<double>(), 100.0 * b["illuminated"].get<double>(),
                      b["distanceAu"].get<double>(), b["constellation"].get<std::string>().c_str(),
                      clockText(b["rise"]).c_str(), clockText(b["transit"]).c_str(), clockText(b["set"]).c_str());
        std::cout << line << "\n";
    }
}

std::string riseName;

void runRise() {
    if (!startUp()) return setExitCode(1);
    nlohmann::json out;
    if (!riseReportJson(riseName, out)) return setExitCode(1);
    if (globalOptions().json) {
        std::cout << out.dump(2) << "\n";
        return;
    }
    std::cout << out["name"].get<std::string>() << "\n";
    if (out["circumpolar"].get<bool>()) std::cout << "circumpolar\n";
    if (out["neverRises"].get<bool>()) std::cout << "never rises\n";
    char line[128];
    if (out["rise"].is_string()) {
        std::snprintf(line, sizeof line, "Rise:    %s  azimuth %.1f", out["rise"].get<std::string>().c_str(),
                      out["riseAz"].get<double>());
        std::cout << line << "\n";
    }
    if (out["transit"].is_string()) {
        std::snprintf(line, sizeof line, "Transit: %s  altitude %.1f", out["transit"].get<std::string>().c_str(),
                      out["transitAlt"].get<double>());
        std::cout << line << "\n";
    }
    if (out["set"].is_string()) {
        std::snprintf(line, sizeof line, "Set:     %s  azimuth %.1f", out["set"].get<std::string>().c_str(),
                      out["setAz"].get<double>());
        std::cout << line << "\n";
    }
}

}  // namespace

bool findAndPrintSolarSystemBody(const std::string& name) {
    if (!solarBodyByName(name)) return false;
    const ObservingMoment& m = prefs().moment;
    const double jd = julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, prefs().utcOffsetMin);
    SolarSystemFind f;
    if (!findSolarSystemBody(name, jd, &f)) {
        setExitCode(1);
        return true;
    }
    const char* type = f.body == SolarBody::Sun ? "Star" : f.body == SolarBody::Moon ? "Moon" : "Planet";
    const std::string constellation = constellationAbbreviation(f.raJ2000Hours, f.decJ2000Deg);
    if (globalOptions().json) {
        const nlohmann::json j = {{"name", solarBodyName(f.body)}, {"type", type},
                                  {"ra", f.raJ2000Hours},         {"dec", f.decJ2000Deg},
                                  {"raApparent", f.raHours},      {"decApparent", f.decDeg},
                                  {"alt", f.altDeg},              {"az", f.azDeg},
                                  {"mag", std::round(f.magnitude * 100.0) / 100.0},
                                  {"diameterArcsec", f.diameterArcsec},
                                  {"illuminated", f.illuminatedFraction},
                                  {"distanceAu", f.distanceAu},   {"constellation", constellation}};
        std::cout << j.dump(2) << "\n";
        return true;
    }
    char line[96];
    std::cout << solarBodyName(f.body) << "\n";
    std::cout << "Type:          " << type << "\n";
    std::cout << "RA (J2000):    " << toUtf8(hoursText(f.raJ2000Hours)) << "\n";
    std::cout << "Dec (J2000):   " << toUtf8(degreesText(f.decJ2000Deg)) << "\n";
    std::cout << "RA (date):     " << toUtf8(hoursText(f.raHours)) << "\n";
    std::cout << "Dec (date):    " << toUtf8(degreesText(f.decDeg)) << "\n";
    std::snprintf(line, sizeof line, "Altitude:      %.2f  Azimuth: %.2f", f.altDeg, f.azDeg);
    std::cout << line << "\n";
    std::snprintf(line, sizeof line, "Magnitude:     %.2f  Diameter: %.1f\"  Illuminated: %.0f%%", f.magnitude,
                  f.diameterArcsec, 100.0 * f.illuminatedFraction);
    std::cout << line << "\n";
    if (!constellation.empty()) std::cout << "Constellation: " << constellation << "\n";
    if (f.body == SolarBody::Jupiter) {
        JupiterMeridians cm;
        if (jupiterCentralMeridiansAt(jd + modelDeltaTSeconds(jd) / 86400.0, &cm) == 0) {
            std::snprintf(line, sizeof line, "Central meridian: System I %.1f, System II %.1f", cm.systemIDeg, cm.systemIIDeg);
            std::cout << line << "\n";
        }
        const auto transits = greatRedSpotTransits(jd, jd + 1.0, prefs().grsLongitudeDeg);
        std::cout << "GRS transits:  ";
        for (double t : transits) std::cout << " " << localIsoTime(t, prefs().utcOffsetMin).substr(11, 5);
        std::cout << "\n";
    }
    return true;
}

void registerPlanetsCommand(CLI::App& app) {
    CLI::App* planets = app.add_subcommand("planets", "The Sun, the Moon and the planets for the moment at the site");
    planets->callback(runPlanets);
    CLI::App* rise = app.add_subcommand("rise", "Rise, transit and set of a body or catalogue object on the local day");
    rise->add_option("name", riseName, "Sun, Moon, a planet, or a catalogue name (\"Vega\", \"M 31\")")->required();
    rise->callback(runRise);
}

}  // namespace nocturnel
