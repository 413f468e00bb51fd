// nocturnel: the command line of the engine.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <string>

#include "core/angle_text.h"
#include "settings/message.h"
#include "shell/app.h"
#include "shell/command_line.h"

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

    // Messages are 8-bit texts (the degree sign is Latin-1); the terminal reads UTF-8.
    setMessageSink([](const Message& m) { printMessageToStderr(Message{toUtf8(m.title), toUtf8(m.detail)}); });
    setQuestionSink([&answer](std::string_view question) { return askOnTerminal(question, answer); });

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e);
    }
    return exitCode();
}
