// nocturnel: the command line of the engine.
#include <CLI/CLI.hpp>

#include "shell/app.h"
#include "shell/commands.h"

int main(int argc, char** argv) {
    using namespace nocturnel;
    CLI::App app{"Nocturnel: planetarium and telescope control for the eyepiece", "nocturnel"};
    app.set_version_flag("--version", std::string("nocturnel ") + NOCTURNEL_VERSION);
    app.require_subcommand(1);
    GlobalOptions& g = globalOptions();
    app.add_option("--home", g.home, "Program folder holding data/, userlists/, userlogs/ and the preferences")
        ->envname("NOCTURNEL_HOME");
    app.add_option("--date", g.date, "Observing date YYYY-MM-DD, local civil date at the site (default: today)");
    app.add_option("--time", g.time, "Observing time HH:MM[:SS], local civil time at the site (default: now)");
    app.add_flag("--json", g.json, "Machine-readable output (JSON) on standard output");
    app.fallthrough();

    registerNowCommand(app);
    registerPrefsCommand(app);
    registerSiteCommand(app);
    registerWhereCommands(app);
    registerCatalogCommand(app);
    registerFindCommand(app);
    registerChartCommand(app);
    registerScopeCommand(app);
    registerAlignCommand(app);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e);
    }
    return exitCode();
}
