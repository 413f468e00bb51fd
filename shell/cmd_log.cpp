// nocturnel log ls|show|new|edit|rm|export and log oal export|import: the observer logs.
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "catalog/object_tables.h"
#include "core/angle_text.h"
#include "plans/new_observer_log.h"
#include "plans/oal_exchange.h"
#include "plans/observer_log_choices.h"
#include "plans/observer_log_export.h"
#include "plans/observer_logs.h"
#include "settings/message.h"
#include "settings/program_folder.h"
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/commands.h"
#include "shell/log_fields.h"
#include "shell/observer_log_json.h"

namespace nocturnel {
namespace {

void addFieldOptions(CLI::App* cmd, LogFieldOptions& f) {
    cmd->add_option("--on", f.on, "Date of the observation, YYYY-MM-DD");
    cmd->add_option("--at", f.at, "Local time of the observation, HH:MM");
    cmd->add_option("--ra", f.ra, "Right ascension J2000, hours (\"16:41:41\" or 16.69)");
    cmd->add_option("--dec", f.dec, "Declination J2000, degrees (\"36:27:35\" or 36.46)");
    cmd->add_option("--type", f.type, "Object type: its name (\"Globular Cluster\") or code");
    cmd->add_option("--mag", f.mag, "Object magnitude, whole magnitudes");
    cmd->add_option("--moon", f.moon, "Illuminated fraction of the Moon, percent");
    cmd->add_option("--sun", f.sun, "Altitude of the Sun, degrees");
    cmd->add_option("--vis-mag", f.visMag, "Estimated limiting magnitude, one decimal (\"5.8\")");
    cmd->add_option("--transparency", f.transparency, "Poor, Fair, Good, Very Good, Excellent (or 0..4)");
    cmd->add_option("--seeing", f.seeing, "Poor, Fair, Good, Very Good, Excellent (or 0..4)");
    cmd->add_option("--scope", f.scope, "Telescope, at most 19 characters");
    cmd->add_option("--location", f.location, "Location, at most 29 characters");
    cmd->add_option("--filter", f.filter, "Filter, at most 14 characters");
    cmd->add_option("--note", f.note, "The note, at most 287 characters");
    cmd->add_option("--rating", f.rating, "How it showed: 0 not rated, 1 very simple .. 7 not seen (or the words)");
    cmd->add_option("--eyepiece", f.eyepiece, "Eyepiece: 0 none, else its number in the eyepiece list + 1");
    cmd->add_option("--result", f.result, "Seen, Sketched, Imaged, Not seen (or 0..3)");
}

void printLog(const ObserverLog& log, int index) {
    if (globalOptions().json) {
        std::cout << observerLogJson(log, index).dump(2) << "\n";
        return;
    }
    const nlohmann::json j = observerLogJson(log, index);
    std::cout << "Object:       " << j["object"].get<std::string>() << "\n"
              << "Date, time:   " << j["date"].get<std::string>() << " " << j["time"].get<std::string>() << "\n"
              << "RA, Dec:      " << toUtf8(hoursText(log.raHours)) << "  " << toUtf8(degreesText(log.decDeg)) << "\n"
              << "Type, mag:    " << j["type"].get<std::string>() << ", " << log.objectMag << "\n"
              << "Moon, Sun:    " << log.moonPct << "%, " << log.sunAltDeg << "\u00b0\n"
              << "Vis. mag:     " << j["visualMag"].get<double>() << "\n"
              << "Transparency: " << j["transparencyText"].get<std::string>() << "\n"
              << "Seeing:       " << j["seeingText"].get<std::string>() << "\n"
              << "Scope:        " << j["scope"].get<std::string>() << "\n"
              << "Location:     " << j["location"].get<std::string>() << "\n"
              << "Filter:       " << j["filter"].get<std::string>() << "\n"
              << "Rating:       " << j["ratingText"].get<std::string>() << "\n"
              << "Result:       " << j["resultText"].get<std::string>() << "\n"
              << "Note:         " << j["note"].get<std::string>() << "\n";
}

// Runs a command body after the start-up; a false result sets exit code 1.
template <typename Body>
void run(Body body) {
    if (!startUp() || !body()) setExitCode(1);
}

}  // namespace

void registerLogCommand(CLI::App& app) {
    CLI::App* log = app.add_subcommand("log", "Observer logs in userlogs/: list, show, record, edit, remove, export");
    log->require_subcommand(1);

    log->add_subcommand("ls", "List the logs in listing order")->callback([] {
        run([] {
            const nlohmann::json list = observerLogListJson();
            if (globalOptions().json) {
                std::cout << list.dump(2) << "\n";
                return true;
            }
            for (const auto& entry : list["logs"]) {
                if (entry.contains("damaged")) {
                    std::cout << entry["index"].get<int>() << "  " << entry["file"].get<std::string>() << "  (damaged)\n";
                    continue;
                }
                std::cout << entry["index"].get<int>() << "  " << entry["object"].get<std::string>() << "  "
                          << entry["date"].get<std::string>() << " " << entry["time"].get<std::string>() << "\n";
            }
            if (list["logs"].empty()) std::cout << "No observer log in " << userLogsFolder().string() << "\n";
            return true;
        });
    });

    auto showName = std::make_shared<std::string>();
    CLI::App* show = log->add_subcommand("show", "Show one log");
    show->add_option("name", *showName, "Object name of the log")->required();
    show->callback([showName] {
        run([showName] {
            const auto name = logObjectName(*showName);
            if (!name) return false;
            ObserverLog record;
            const int index = observerLogIndex(*name);
            if (!openObserverLog(index, record)) return false;
            printLog(record, index);
            return true;
        });
    });

    auto newName = std::make_shared<std::string>();
    auto newFields = std::make_shared<LogFieldOptions>();
    CLI::App* create = log->add_subcommand(
        "new", "Record an observation of NAME at the moment of --date/--time, with the catalogue's place, type and "
               "magnitude, the site's name and the telescope of the preferences");
    create->add_option("name", *newName, "Object name (at most 19 characters)")->required();
    addFieldOptions(create, *newFields);
    create->callback([newName, newFields] {
        run([newName, newFields] {
            const auto name = logObjectName(*newName);
            if (!name) return false;
            if (observerLogIndex(*name) >= 0)
                return refuseLog("A log of " + *newName + " exists already", "Use nocturnel log edit to change it.");
            bool found = false;
            ObserverLog record = newObserverLog(*name, prefs().moment, newLogSkyAt(prefs().moment), found);
            if (!applyLogFields(*newFields, record) || !saveObserverLog(record, -1)) return false;
            if (!found && !globalOptions().json)
                std::cout << "Not in the catalogues: the position, type and magnitude are yours to give.\n";
            printLog(record, observerLogIndex(*name));
            return true;
        });
    });

    auto editName = std::make_shared<std::string>();
    auto editFields = std::make_shared<LogFieldOptions>();
    CLI::App* edit = log->add_subcommand("edit", "Change fields of a log (--object renames it)");
    edit->add_option("name", *editName, "Object name of the log")->required();
    addFieldOptions(edit, *editFields);
    edit->add_option("--object", editFields->object, "A new object name: the log moves to its new file");
    edit->callback([editName, editFields] {
        run([editName, editFields] {
            const auto name = logObjectName(*editName);
            if (!name) return false;
            const int index = observerLogIndex(*name);
            ObserverLog record;
            if (!openObserverLog(index, record) || !applyLogFields(*editFields, record)) return false;
            if (editFields->object && record.object != *name && observerLogIndex(record.object) >= 0)
                return refuseLog("A log of " + *editFields->object + " exists already", "Choose another name.");
            if (!saveObserverLog(record, index)) return false;
            printLog(record, observerLogIndex(record.object));
            return true;
        });
    });

    auto rmName = std::make_shared<std::string>();
    CLI::App* rm = log->add_subcommand("rm", "Remove a log");
    rm->add_option("name", *rmName, "Object name of the log")->required();
    rm->callback([rmName] {
        run([rmName] {
            const auto name = logObjectName(*rmName);
            return name && deleteObserverLog(observerLogIndex(*name));
        });
    });

    log->add_subcommand("export", "Export every log to userlogs/logs_<n>.txt for a spreadsheet (asks first)")
        ->callback([] { run([] { return exportObserverLogs(localeDateIsDayFirst()) >= 0; }); });

    CLI::App* oal = log->add_subcommand("oal", "Exchange with other logging programs (OpenAstronomyLog 2.x XML)");
    oal->require_subcommand(1);
    auto oalOut = std::make_shared<std::string>();
    CLI::App* oalExport = oal->add_subcommand("export", "Write every log to an OAL file");
    oalExport->add_option("file", *oalOut, "The OAL file to write")->required();
    oalExport->callback([oalOut] {
        run([oalOut] {
            const int n = exportLogsToOal(*oalOut, prefs().utcOffsetMin);
            if (n < 0) return false;
            std::cout << n << " observation" << (n > 1 ? "s" : "") << " written to " << *oalOut << "\n";
            return true;
        });
    });
    auto oalIn = std::make_shared<std::string>();
    CLI::App* oalImport = oal->add_subcommand("import", "Save the observations of an OAL file as logs");
    oalImport->add_option("file", *oalIn, "The OAL file to read")->required();
    oalImport->callback([oalIn] {
        run([oalIn] {
            const int n = importLogsFromOal(*oalIn, prefs().utcOffsetMin);
            if (n < 0) return false;
            std::cout << n << " observation" << (n > 1 ? "s" : "") << " imported into " << userLogsFolder().string() << "\n";
            return true;
        });
    });
}

}  // namespace nocturnel
