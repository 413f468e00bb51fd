// nocturnel where: a J2000 place to altitude and azimuth for the saved site and the moment;
// nocturnel mean: the inverse, from the place used back to J2000.
#include <cmath>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "core/angle_text.h"
#include "core/apparent_place.h"
#include "core/mean_place.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "shell/app.h"
#include "shell/commands.h"
#include "shell/option_checks.h"
#include "shell/target_names.h"

namespace nocturnel {
namespace {

struct PlaceOptions {
    std::vector<std::string> name;  // one or more words: where M 42
    std::string ra;
    std::string dec;
    std::string level;
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
            return "Catalogue place";
    }
}

// --level: -1 (no correction) to 3, else the preferences' Correction.
std::optional<int> readLevel(const PlaceOptions& options) {
    if (options.level.empty()) return pointingLevelFromPreferences();
    const auto level = checkedInteger(options.level, -1, 3, "--level");
    if (!level) return std::nullopt;
    return static_cast<int>(*level);
}

void runWhere(const PlaceOptions& options) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    ResolvedTarget target;
    const std::optional<int> level = readLevel(options);
    if (!level || !resolveTargetOrPlace(joinedName(options.name), options.ra, options.dec, target)) {
        setExitCode(1);
        return;
    }
    const double ra2000 = target.raHours, dec2000 = target.decDeg;
    double alt = 0.0, az = 0.0, ra = 0.0, dec = 0.0;
    if (equatorialToHorizontal(ra2000, dec2000, *level, prefs().moment, &alt, &az, &ra, &dec) != 0) {
        setExitCode(1);  // the reduction has shown its message
        return;
    }
    if (globalOptions().json) {
        const nlohmann::json out = {{"name", toUtf8(target.name)}, {"alt", alt}, {"az", az},
                                    {"ra", ra},                     {"dec", dec}, {"level", *level}};
        std::cout << out.dump(2) << "\n";
        return;
    }
    if (!options.name.empty()) std::cout << "Object:    " << toUtf8(target.name) << "\n";
    std::cout << "Altitude:  " << toUtf8(degreesText(alt)) << "\n"
              << "Azimuth:   " << toUtf8(degreesText(az)) << "\n"
              << "RA used:   " << toUtf8(hoursText(ra)) << "\n"
              << "Dec used:  " << toUtf8(degreesText(dec)) << "\n"
              << "Level:     " << *level << " (" << levelName(*level) << ")\n";
}

void runMean(const PlaceOptions& options) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    const std::optional<int> level = readLevel(options);
    const auto raUsed = level ? checkedRightAscension(options.ra) : std::nullopt;
    const auto decUsed = raUsed ? checkedDeclination(options.dec) : std::nullopt;
    if (!decUsed) {
        setExitCode(1);
        return;
    }
    double ra = 0.0, dec = 0.0;
    const int result = meanPlaceFromPlaceUsed(*raUsed, *decUsed, *level, prefs().moment, &ra, &dec);
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

constexpr const char* kLevelHelp =
    "Correction level 0..3: 0 geocentric, 1 geocentric + refraction, 2 topocentric, 3 topocentric + refraction; "
    "-1 none (default: the preferences' Correction)";

void addPlaceOptions(CLI::App* command, PlaceOptions& options, bool named) {
    command->add_option("--ra", options.ra, named ? "Right ascension, hours (J2000): 5.588 or 5:35:17"
                                                  : "Right ascension, hours: 5.588 or 5:35:17")
        ->required(!named);
    command->add_option("--dec", options.dec, "Declination, degrees: -5.39 or -5:23:28")->required(!named);
    command->add_option("--level", options.level, kLevelHelp);
}

}  // namespace

void registerWhereCommands(CLI::App& app) {
    auto whereOptions = std::make_shared<PlaceOptions>();
    CLI::App* where = app.add_subcommand(
        "where", "Altitude, azimuth and the RA/Dec used for a named object or a J2000 place, at the saved site and "
                 "the moment");
    where->add_option("name", whereOptions->name, "Object name: Vega, M 42, NGC 1976, HIP 27989 (or give --ra/--dec)");
    addPlaceOptions(where, *whereOptions, true);
    where->callback([whereOptions] { runWhere(*whereOptions); });

    auto meanOptions = std::make_shared<PlaceOptions>();
    CLI::App* mean = app.add_subcommand(
        "mean", "The J2000 place whose place used (as `where` prints it) is the given RA/Dec");
    addPlaceOptions(mean, *meanOptions, false);
    mean->callback([meanOptions] { runMean(*meanOptions); });
}

}  // namespace nocturnel
