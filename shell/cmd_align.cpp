// nocturnel align: the two-star alignment from the command line.
//   align --star1 NAME,TIME,RA,DEC,HOR,ELV --star2 ... [--to-time HH:MM:SS]
//   align --from-scope NAME1 NAME2 [--drive D --port P]  (centre each star, press Enter)
//   align report [-o FILE] | align restore | align map --ra H --dec D
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "align/alignment.h"
#include "align/alignment_report.h"
#include "core/angle_text.h"
#include "core/time.h"
#include "scope/drive_types.h"
#include "scope/encoder_box.h"
#include "scope/scope_interface.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/program_folder.h"
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/commands.h"
#include "shell/drive_options.h"
#include "shell/option_checks.h"
#include "shell/target_names.h"
#include "shell/scope_clock.h"
#include "shell/star_names.h"
#include "shell/telescope_angles.h"

namespace nocturnel {
namespace {

struct AlignOptions {
    std::string star1, star2, toTime, output;
    std::vector<std::string> fromScope;
    std::string drive, port;       // --drive / --port for --from-scope, as `scope` takes them
    std::vector<std::string> mapName;  // align map NAME (one or more words)
    std::string ra, dec;               // | --ra H --dec D
};

// The typed angles of one star, each within its range before the matrix is computed: time
// and RA in hours, Dec in degrees, then the telescope's own angles in the units of the mount
// type (equatorial: the RA axis in hours and the Dec axis in degrees; alt-azimuth: azimuth and
// altitude in degrees).
bool checkFormStar(const AlignmentFormStar& star, int number) {
    const std::string which = "star " + std::to_string(number) + " ";
    const bool equatorial = prefs().mountType == 0;
    return checkedRightAscension(star.time, which + "time (hours)") && checkedRightAscension(star.ra, which + "RA") &&
           checkedDeclination(star.dec, which + "Dec") &&
           (equatorial ? checkedRightAscension(star.hor, which + "HOR (RA axis, hours)").has_value()
                       : checkedAngle(star.hor, 0.0, 360.0, which + "HOR (azimuth, degrees)").has_value()) &&
           checkedAngle(star.elv, equatorial ? -180.0 : -90.0, equatorial ? 180.0 : 90.0,
                        which + (equatorial ? "ELV (Dec axis, degrees)" : "ELV (altitude, degrees)"));
}

bool splitStar(const std::string& text, AlignmentFormStar& star, int number) {
    std::vector<std::string> fields;
    std::stringstream in(text);
    for (std::string field; std::getline(in, field, ',');) fields.push_back(field);
    if (fields.size() != 6) {
        showMessage("Fail to compute align matrix", "A star is NAME,TIME,RA,DEC,HOR,ELV");
        return false;
    }
    // The name is kept in the record and the report in Latin-1, converted once here.
    const auto name = utf8ToLatin1(fields[0]);
    if (!name) {
        showMessage("Fail to compute align matrix", "A star name holds only Latin-1 characters.");
        return false;
    }
    star = {*name, fields[1], fields[2], fields[3], fields[4], fields[5]};
    return checkFormStar(star, number);
}

double nowJd() {
    const ObservingMoment& m = prefs().moment;
    return julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, prefs().utcOffsetMin);
}

void printMatrix() {
    const AlignmentState& s = alignmentState();
    if (globalOptions().json) {
        nlohmann::json rows = nlohmann::json::array();
        for (const auto& row : s.matrix.m) rows.push_back({row[0], row[1], row[2]});
        std::cout << nlohmann::json{{"toTime", s.toTime}, {"matrix", rows}, {"mountType", prefs().mountType},
                                    {"scopeDrive", prefs().scopeDrive}}
                         .dump()
                  << "\n";
        return;
    }
    std::printf("Alignment matrix (reference time %s):\n", s.toTime);
    for (const auto& row : s.matrix.m) std::printf("  %+.9f %+.9f %+.9f\n", row[0], row[1], row[2]);
}

std::string localTimeText() {
    const ObservingMoment m = scopeNow();
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", m.hour, m.minute, m.second);
    return text;
}

int alignFromScope(const std::vector<std::string>& names, const AlignOptions& options) {
    if (!applyDriveOptions(options.drive, options.port)) return 0;
    useCommandLineClockForScope();
    if (const char* settle = std::getenv("NOCTURNEL_SERIAL_SETTLE_MS")) setSerialSettleMillisecondsForTests(std::atoi(settle));
    // Both names are looked up before the user is asked to centre anything.
    ResolvedTarget stars[2];
    for (int i = 0; i < 2; ++i)
        if (!resolveTarget(names[i], stars[i])) return 0;
    AlignmentForm form;
    setHoldOpen(prefs().scopeDrive != 0 ? 1 : 0);
    int result = 1;
    for (int i = 0; i < 2 && result; ++i) {
        const double ra = stars[i].raHours, dec = stars[i].decDeg;
        const std::string& canonical = stars[i].name;
        std::cerr << "Centre " << toUtf8(canonical) << " in the eyepiece, then press Enter." << std::endl;
        std::string line;
        if (!std::getline(std::cin, line)) {
            showMessage("Fail to compute align matrix", "No answer on standard input.");
            result = 0;
            break;
        }
        double hor = 0, elv = 0;
        if (!readTelescopeAngles(hor, elv)) {
            result = 0;
            break;
        }
        char buf[3][kAngleTextSize];
        form.star[i] = {canonical, localTimeText(), hoursToTextStyle(ra, 1, buf[0]), degreesToTextStyle(dec, 1, buf[1]),
                        prefs().mountType == 0 ? hoursToTextStyle(hor / 15.0, 1, buf[2]) : degreesToTextStyle(hor, 0, buf[2]),
                        ""};
        char elvText[kAngleTextSize];
        form.star[i].elv = degreesToTextStyle(elv, 0, elvText);
    }
    setHoldOpen(0);
    serialClose();
    if (!result) return 0;
    const ObservingMoment m = scopeNow();
    return computeAlignmentFromForm(form, julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second,
                                                              prefs().utcOffsetMin));
}

bool ensureAlignment() {
    if (alignmentState().valid) return true;
    if (!prefs().hasSavedAlignment) {
        showMessage("Please do 2 stars alignment first.");
        return false;
    }
    return restoreAlignment() != 0;
}

}  // namespace

void registerAlignCommand(CLI::App& app) {
    auto options = std::make_shared<AlignOptions>();
    CLI::App* align = app.add_subcommand("align", "Two-star alignment: compute, restore, report, map");
    align->add_option("--star1", options->star1,
                      "First star: NAME,TIME,RA,DEC,HOR,ELV. TIME local HH:MM:SS; RA hours (J2000), DEC degrees; "
                      "HOR and ELV the telescope's two angles when the star was centred: on an equatorial mount "
                      "(mountType 0) HOR is the RA axis in HOURS and ELV the Dec axis in degrees, on an "
                      "alt-azimuth mount (mountType 1) HOR is the azimuth and ELV the altitude, in degrees. "
                      "Angles decimal or 12:34:56");
    align->add_option("--star2", options->star2, "Second star: NAME,TIME,RA,DEC,HOR,ELV, as --star1");
    align->add_option("--to-time", options->toTime, "Reference time HH:MM:SS (default: star 1's time)");
    align->add_option("--from-scope", options->fromScope,
                      "Centre two named stars (Vega, Deneb) in turn with the drive connected; Enter reads it")
        ->expected(2);
    addDriveOptions(align, options->drive, options->port);
    align->footer("With --from-scope, --drive and --port choose the telescope as for `scope`; the alignment is saved "
                  "with the drive and port it was made with.");
    align->require_subcommand(0, 1);
    align->callback([options, align]() {
        if (!align->get_subcommands().empty()) return;
        if (!startUp()) return setExitCode(1);
        int ok = 0;
        if (!options->fromScope.empty()) {
            ok = alignFromScope(options->fromScope, *options);
        } else if (!options->star1.empty() && !options->star2.empty()) {
            AlignmentForm form;
            form.toTime = options->toTime;
            if (splitStar(options->star1, form.star[0], 1) && splitStar(options->star2, form.star[1], 2) &&
                (options->toTime.empty() || checkedRightAscension(options->toTime, "--to-time")))
                ok = computeAlignmentFromForm(form, nowJd());
        } else {
            showMessage("Fail to compute align matrix", "Give --star1 and --star2, or --from-scope NAME1 NAME2.");
        }
        if (!ok) return setExitCode(1);
        installAlignmentMapping();
        printMatrix();
    });

    CLI::App* report = align->add_subcommand("report", "Write the alignment report to a text file and print it");
    report->add_option("-o,--output", options->output, "Report file (default: the program folder)");
    report->callback([options]() {
        if (!startUp()) return setExitCode(1);
        // Without an alignment the report would hold only zeros: the last report stays as it is.
        if (!ensureAlignment()) return setExitCode(1);
        const ObservingMoment& m = prefs().moment;
        const CalendarDate now{m.year, m.month, m.day, m.hour, m.minute, m.second};
        const std::filesystem::path file =
            options->output.empty() ? programFolder() / kAlignmentReportFile : std::filesystem::path(options->output);
        if (!saveAlignmentReport(file, now)) return setExitCode(1);
        std::string text;
        writeAlignmentReport(text, now);
        if (globalOptions().json)
            std::cout << nlohmann::json{{"file", file.string()}, {"text", toUtf8(text)}}.dump() << "\n";
        else
            std::cout << toUtf8(text) << "Written to " << file.string() << "\n";
    });

    CLI::App* restore = align->add_subcommand("restore", "Restore the last saved alignment");
    restore->callback([]() {
        if (!startUp()) return setExitCode(1);
        if (!prefs().hasSavedAlignment) {
            showMessage("Please do 2 stars alignment first.");
            return setExitCode(1);
        }
        if (!restoreAlignment()) return setExitCode(1);
        printMatrix();
    });

    CLI::App* map = align->add_subcommand(
        "map", "Telescope angles of a named object or a J2000 place for the observing moment");
    map->add_option("name", options->mapName, "Object name: Vega, M 42, NGC 1976 (or --ra/--dec)");
    map->add_option("--ra", options->ra, "Right ascension, hours (J2000): 5.588 or 5:35:17");
    map->add_option("--dec", options->dec, "Declination, degrees (J2000): -5.39 or -5:23:28");
    map->callback([options]() {
        if (!startUp()) return setExitCode(1);
        ResolvedTarget target;
        if (!resolveTargetOrPlace(joinedName(options->mapName), options->ra, options->dec, target)) return setExitCode(1);
        if (!ensureAlignment()) return setExitCode(1);
        double hor = 0, elv = 0;
        skyToTelescope(target.raHours, target.decDeg, nowJd(), hor, elv);
        if (globalOptions().json) {
            std::cout << nlohmann::json{{"hor", hor}, {"elv", elv}}.dump() << "\n";
        } else {
            char a[kAngleTextSize], b[kAngleTextSize];
            std::cout << "Hor: " << toUtf8(degreesToText(hor, a)) << "\nElv: " << toUtf8(degreesToText(elv, b)) << "\n";
        }
    });
}

}  // namespace nocturnel
