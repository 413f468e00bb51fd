// nocturnel: the command line of the engine.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <string>
#include <vector>

#include "core/angle_text.h"
#include "settings/message.h"
#include "shell/app.h"
#include "shell/command_line.h"
#include "shell/json_output.h"

namespace {
// Questions of the program ("Would you want to restore your last alignment?") are asked on the
// terminal; without one (scripts, CI) the --answer option, by default yes, answers them.
bool askOnTerminal(std::string_view question, const std::string& scriptedAnswer) {
    const bool interactive = isatty(STDIN_FILENO) && scriptedAnswer.empty();
    std::cerr << nocturnel::toUtf8(question) << (interactive ? " [y/n] " : "");
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
    std::string answer;
    addGlobalOptions(app, answer);
    registerAllCommands(app);

    // Messages are 8-bit texts (the degree sign is Latin-1); the terminal reads UTF-8. They are
    // kept too: with --json a failed run prints them as a JSON error on standard output.
    const std::vector<std::string> words(argv + 1, argv + argc);
    const bool json = jsonRequested(words);
    std::vector<Message> shown;
    setMessageSink([&shown](const Message& m) {
        shown.push_back(m);
        printMessageToStderr(Message{toUtf8(m.title), toUtf8(m.detail)});
    });
    setQuestionSink([&answer](std::string_view question) { return askOnTerminal(question, answer); });

    int code = 0;
    try {
        app.parse(argc, argv);
        code = exitCode();
    } catch (const CLI::ParseError& e) {
        if (e.get_exit_code() == 0) return app.exit(e);  // --help, --version
        code = reportCommandLineError(app, e, words);
    }
    if (json) printJsonError(code, shown);
    return code;
}
