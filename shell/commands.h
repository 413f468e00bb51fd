#pragma once
// Each command of the `nocturnel` command line lives in its own cmd_*.cpp and registers
// itself on the application here. A command's callback calls startUp() first, prints its
// result (JSON on standard output with --json) and sets the exit code.
#include <CLI/CLI.hpp>

namespace nocturnel {

void registerNowCommand(CLI::App& app);      // nocturnel now
void registerPrefsCommand(CLI::App& app);    // nocturnel prefs show|set|reset
void registerSiteCommand(CLI::App& app);     // nocturnel site set|store|recall
void registerWhereCommands(CLI::App& app);   // nocturnel where, nocturnel mean
void registerCatalogCommand(CLI::App& app);  // nocturnel catalog build
void registerFindCommand(CLI::App& app);     // nocturnel find
void registerChartCommand(CLI::App& app);    // nocturnel chart
void registerScopeCommand(CLI::App& app);    // nocturnel scope
void registerAlignCommand(CLI::App& app);    // nocturnel align
void registerInfoCommand(CLI::App& app);     // nocturnel info
void registerPlanetsCommand(CLI::App& app);  // nocturnel planets, nocturnel rise
void registerSkyEventCommands(CLI::App& app);  // nocturnel twilight, moon, events
void registerLogCommand(CLI::App& app);      // nocturnel log
void registerRoamCommands(CLI::App& app);    // nocturnel roam, list, memo, usercat
void registerListCommands(CLI::App& app);    // nocturnel list, memo, usercat (from registerRoamCommands)
void registerServeCommand(CLI::App& app);    // nocturnel serve

}  // namespace nocturnel
