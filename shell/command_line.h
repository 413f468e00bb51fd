#pragma once
// The `nocturnel` command line: the global options and every command, built once for main()
// and for the tests that run commands in-process.
#include <CLI/CLI.hpp>
#include <memory>
#include <string>

namespace nocturnel {

// --home, --date, --time, --json (into globalOptions()) and --answer (into `answer`).
void addGlobalOptions(CLI::App& app, std::string& answer);
// Every command of commands.h.
void registerAllCommands(CLI::App& app);

}  // namespace nocturnel
