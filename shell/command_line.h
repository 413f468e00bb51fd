#pragma once
// The `nocturnel` command line: the global options and every command, built once for main()
// and for the tests that run commands in-process.
#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

namespace nocturnel {

// --home, --date, --time, --json (into globalOptions()) and --answer (into `answer`).
void addGlobalOptions(CLI::App& app, std::string& answer);
// Every command of commands.h.
void registerAllCommands(CLI::App& app);

// True when the words (argv without the program name) ask for --json output.
bool jsonRequested(const std::vector<std::string>& words);

// A command line the parser refused, as the program's message: an unknown command names the
// commands there are, anything else says what the parser found. Returns the exit code (2).
// Help and --version are not errors: the caller prints them (exit code 0).
int reportCommandLineError(CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& words);

}  // namespace nocturnel
