// nocturnel now: the observing moment and the time scales derived from it.
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>

#include "core/angle_text.h"
#include "core/time.h"
#include "settings/preferences.h"
#include "shell/api_json.h"
#include "shell/app.h"
#include "shell/commands.h"

namespace nocturnel {
namespace {

void runNow() {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    const Preferences& p = prefs();
    const ObservingMoment& m = p.moment;
    const int offset = p.utcOffsetMin;
    const double jd = julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, offset);
    const double deltaT = deltaTForDate(m.year, m.month, m.day);
    const double gmst0 = greenwichSiderealAtMidnight(m.year, m.month, m.day);
    const double lst = localSiderealTime(m.year, m.month, m.day, m.hour, m.minute, m.second, p.longitudeDeg, offset);
    const double year = decimalYear(m.year, m.month, m.day, m.hour, m.minute, m.second);

    if (globalOptions().json) {
        std::cout << nowJson(p).dump(2) << "\n";
        return;
    }
    char line[160];
    std::snprintf(line, sizeof line, "Observing moment:    %04d-%02d-%02d %02d:%02d:%02d local (UT%+d min)", m.year,
                  m.month, m.day, m.hour, m.minute, m.second, offset);
    std::cout << line << "\n";
    std::snprintf(line, sizeof line, "Julian date (UT):    %.7f", jd);
    std::cout << line << "\n";
    std::snprintf(line, sizeof line, "DeltaT (TT - UT):    %.1f s", deltaT);
    std::cout << line << "\n";
    std::snprintf(line, sizeof line, " (%.6f h)", gmst0);
    std::cout << "GMST at 0h UT:       " << toUtf8(hoursText(gmst0)) << line << "\n";
    std::snprintf(line, sizeof line, " (%.6f h)", lst);
    std::cout << "Local sidereal time: " << toUtf8(hoursText(lst)) << line << "\n";
    std::snprintf(line, sizeof line, "Decimal year:        %.6f", year);
    std::cout << line << "\n";
}

}  // namespace

void registerNowCommand(CLI::App& app) {
    CLI::App* now = app.add_subcommand(
        "now", "The observing moment (local civil time at the site), its UT Julian date, DeltaT, "
               "sidereal times and decimal year");
    now->callback(runNow);
}

}  // namespace nocturnel
