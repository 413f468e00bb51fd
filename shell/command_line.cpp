#include "shell/command_line.h"

#include "shell/app.h"
#include "shell/commands.h"

namespace nocturnel {

void addGlobalOptions(CLI::App& app, std::string& answer) {
    GlobalOptions& g = globalOptions();
    app.add_option("--home", g.home, "Program folder holding data/, userlists/, userlogs/ and the preferences")
        ->envname("NOCTURNEL_HOME");
    app.add_option("--date", g.date, "Observing date YYYY-MM-DD, local civil date at the site (default: today)");
    app.add_option("--time", g.time, "Observing time HH:MM[:SS], local civil time at the site (default: now)");
    app.add_flag("--json", g.json, "Machine-readable output (JSON) on standard output");
    app.add_option("--answer", answer, "Answer to the program's yes/no questions when no terminal asks them")
        ->check(CLI::IsMember({"yes", "no"}));
    app.fallthrough();
}

void registerAllCommands(CLI::App& app) {
    registerNowCommand(app);
    registerPrefsCommand(app);
    registerSiteCommand(app);
    registerWhereCommands(app);
    registerCatalogCommand(app);
    registerFindCommand(app);
    registerChartCommand(app);
    registerScopeCommand(app);
    registerAlignCommand(app);
    registerServeCommand(app);
}

}  // namespace nocturnel
