#pragma once
// Test support: runs one `nocturnel` command line in-process, as main() builds it, capturing
// standard output and every message shown. The caller sets prefs() and the program folder.
#include <CLI/CLI.hpp>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "settings/message.h"
#include "shell/app.h"
#include "shell/command_line.h"
#include "shell/json_output.h"

namespace nocturnel {

struct CliRun {
    int exit = 0;
    std::string out;
    std::vector<Message> messages;
    nlohmann::json json() const { return nlohmann::json::parse(out); }

    bool shown(const std::string& title) const {
        for (const Message& m : messages)
            if (m.title == title) return true;
        return false;
    }
    std::string titles() const {
        std::string all;
        for (const Message& m : messages) all += "[" + m.title + "] ";
        return all;
    }
};

// args are the words after "nocturnel"; a CLI11 parse error gives exit 2.
inline CliRun runCommandLine(std::vector<std::string> args) {
    globalOptions() = GlobalOptions{};
    setExitCode(0);
    CLI::App app{"nocturnel", "nocturnel"};
    app.require_subcommand(1);
    std::string answer;
    addGlobalOptions(app, answer);
    registerAllCommands(app);
    const bool json = jsonRequested(args);
    const std::vector<std::string> words = args;
    args.insert(args.begin(), "nocturnel");
    std::vector<char*> argv;
    for (std::string& a : args) argv.push_back(a.data());
    CliRun result;
    std::ostringstream out;
    std::streambuf* previous = std::cout.rdbuf(out.rdbuf());
    {
        MessageCapture capture;
        try {
            app.parse(static_cast<int>(argv.size()), argv.data());
            result.exit = exitCode();
        } catch (const CLI::ParseError& e) {
            result.exit = e.get_exit_code() == 0 ? 0 : reportCommandLineError(app, e, words);
        }
        result.messages = capture.messages();
        if (json) printJsonError(result.exit, result.messages);  // as main() does
    }
    std::cout.rdbuf(previous);
    result.out = out.str();
    return result;
}

}  // namespace nocturnel
