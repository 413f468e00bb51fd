// nocturnel: the command line of the engine.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <iostream>
#include <string>

#include "settings/message.h"
#include "shell/app.h"
#include "shell/commands.h"

namespace {
// Questions of the program ("Would you want to restore your last alignment?") are asked on the
// terminal; without one (scripts, CI) the --answer option, by default yes, answers them.
bool askOnTerminal(std::string_view question, const std::string& scriptedAnswer) {
    const bool interactive = isatty(STDIN_FILENO) && scriptedAnswer.empty();
    std::cerr << question << (interactive ? " [y/n] " : "");
    if (!interactive) {
        const bool yes = scriptedAnswer != "no";
        std::cerr << " " << (yes ? "yes" : "no") << std::endl;
        return yes;
    }
    std::string line;
    if (!std::getline(std::cin, line)) return false;
    return !line.empty() && (line[0] == 'y' || line[0] == 'Y');
}
}  // namespace

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
    std::string answer;
    app.add_option("--answer", answer, "Answer to the program's yes/no questions when no terminal asks them")
        ->check(CLI::IsMember({"yes", "no"}));
    app.fallthrough();
    setQuestionSink([&answer](std::string_view question) { return askOnTerminal(question, answer); });

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
