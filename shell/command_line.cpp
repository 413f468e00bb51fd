#include "shell/command_line.h"

#include "settings/message.h"
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
    registerInfoCommand(app);
    registerPlanetsCommand(app);
    registerSkyEventCommands(app);
    registerLogCommand(app);
    registerRoamCommands(app);
    registerServeCommand(app);
}

bool jsonRequested(const std::vector<std::string>& words) {
    for (const std::string& w : words) {
        if (w == "--") return false;
        if (w == "--json") return true;
    }
    return false;
}

int reportCommandLineError(CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& words) {
    std::string commands;
    for (const CLI::App* sub : app.get_subcommands([](CLI::App*) { return true; }))
        commands += (commands.empty() ? "" : ", ") + sub->get_name();
    if (app.get_subcommands().empty()) {
        // No command was recognised: name the word taken for one, and the commands there are.
        std::string word;
        for (std::size_t i = 0; i < words.size(); ++i) {
            if (words[i].rfind("-", 0) == 0) {
                const bool takesValue = words[i] == "--home" || words[i] == "--date" || words[i] == "--time" ||
                                        words[i] == "--answer";
                if (takesValue) ++i;
                continue;
            }
            word = words[i];
            break;
        }
        if (word.empty())
            showMessage("No command given", "Commands: " + commands + ". Try nocturnel --help.");
        else
            showMessage("Unknown command \"" + word + "\"", "Commands: " + commands + ". Try nocturnel --help.");
    } else {
        showMessage("Invalid command line", error.what());
    }
    setExitCode(2);
    return 2;
}

}  // namespace nocturnel
