// nocturnel where: a J2000 place to altitude and azimuth for the saved site and the moment;
// nocturnel mean: the inverse, from the place used back to J2000.
#include <cmath>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "core/angle_text.h"
#include "core/apparent_place.h"
#include "core/mean_place.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "shell/app.h"
#include "shell/commands.h"

namespace nocturnel {
namespace {

struct PlaceOptions {
    std::string ra;
    std::string dec;
    std::optional<int> level;
};

const char* levelName(int level) {
    switch (level) {
        case 0:
            return "Geocentric";
        case 1:
            return "Geoc. + Refract";
        case 2:
            return "Topocentric";
        case 3:
            return "Topo + Refract";
        default:
            return level < 0 ? "Catalogue place" : "Topocentric";
    }
}

// Reads --ra (hours 0..24) and --dec (degrees -90..90), decimal or sexagesimal.
bool readPlace(const PlaceOptions& options, double* raHours, double* decDeg) {
    const std::optional<double> ra = parseAngleText(options.ra);
    if (!ra || !std::isfinite(*ra) || *ra < 0.0 || *ra > 24.0) {
        showMessage("Invalid right ascension \"" + options.ra + "\"",
                    "Give hours from 0 to 24, for example 5.919 or 5:55:10.");
        return false;
    }
    const std::optional<double> dec = parseAngleText(options.dec);
    if (!dec || !std::isfinite(*dec) || *dec < -90.0 || *dec > 90.0) {
        showMessage("Invalid declination \"" + options.dec + "\"",
                    "Give degrees from -90 to 90, for example -16.7 or -16:42:58.");
        return false;
    }
    *raHours = *ra;
    *decDeg = *dec;
    return true;
}

void runWhere(const PlaceOptions& options) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    double ra2000 = 0.0, dec2000 = 0.0;
    if (!readPlace(options, &ra2000, &dec2000)) {
        setExitCode(1);
        return;
    }
    const int level = options.level.value_or(pointingLevelFromPreferences());
    double alt = 0.0, az = 0.0, ra = 0.0, dec = 0.0;
    if (equatorialToHorizontal(ra2000, dec2000, level, prefs().moment, &alt, &az, &ra, &dec) != 0) {
        setExitCode(1);  // the reduction has shown its message
        return;
    }
    if (globalOptions().json) {
        const nlohmann::json out = {{"alt", alt}, {"az", az}, {"ra", ra}, {"dec", dec}, {"level", level}};
        std::cout << out.dump(2) << "\n";
        return;
    }
    std::cout << "Altitude:  " << toUtf8(degreesText(alt)) << "\n"
              << "Azimuth:   " << toUtf8(degreesText(az)) << "\n"
              << "RA used:   " << toUtf8(hoursText(ra)) << "\n"
              << "Dec used:  " << toUtf8(degreesText(dec)) << "\n"
              << "Level:     " << level << " (" << levelName(level) << ")\n";
}

void runMean(const PlaceOptions& options) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    double raUsed = 0.0, decUsed = 0.0;
    if (!readPlace(options, &raUsed, &decUsed)) {
        setExitCode(1);
        return;
    }
    const int level = options.level.value_or(pointingLevelFromPreferences());
    double ra = 0.0, dec = 0.0;
    const int result = meanPlaceFromPlaceUsed(raUsed, decUsed, level, prefs().moment, &ra, &dec);
    if (result == 1)
        showMessage("The mean place did not converge", "No J2000 place found within 20 iterations.");
    if (result != 0) {
        setExitCode(1);
        return;
    }
    if (globalOptions().json) {
        const nlohmann::json out = {{"ra", ra}, {"dec", dec}};
        std::cout << out.dump(2) << "\n";
        return;
    }
    std::cout << "RA (J2000):  " << toUtf8(hoursText(ra)) << "\n"
              << "Dec (J2000): " << toUtf8(degreesText(dec)) << "\n";
}

void addPlaceOptions(CLI::App* command, PlaceOptions& options) {
    command->add_option("--ra", options.ra, "Right ascension, hours (5.919 or 5:55:10)")->required();
    command->add_option("--dec", options.dec, "Declination, degrees (7.4 or 7:24:25)")->required();
    command->add_option("--level", options.level,
                        "Correction level: <0 none, 0 geocentric, 1 geocentric + refraction, "
                        "2 topocentric, 3 topocentric + refraction (default: the preferences' Correction)");
}

}  // namespace

void registerWhereCommands(CLI::App& app) {
    auto whereOptions = std::make_shared<PlaceOptions>();
    CLI::App* where = app.add_subcommand(
        "where", "Altitude, azimuth and the RA/Dec used for a J2000 place, at the saved site and the moment");
    addPlaceOptions(where, *whereOptions);
    where->callback([whereOptions] { runWhere(*whereOptions); });

    auto meanOptions = std::make_shared<PlaceOptions>();
    CLI::App* mean = app.add_subcommand(
        "mean", "The J2000 place whose place used (as `where` prints it) is the given RA/Dec");
    addPlaceOptions(mean, *meanOptions);
    mean->callback([meanOptions] { runMean(*meanOptions); });
}

}  // namespace nocturnel
