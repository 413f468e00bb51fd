#pragma once
// --drive and --port, shared by the commands that talk to the telescope (scope, align
// --from-scope): they override the saved drive and serial port for this run only and are
// never saved.
#include <CLI/CLI.hpp>
#include <string>

namespace nocturnel {

void addDriveOptions(CLI::App* command, std::string& drive, std::string& port);

// Puts the overrides into prefs() (scopeDrive; scopeDevice and scopePort). False with the
// program's message for an unknown drive or an unusable device path.
bool applyDriveOptions(const std::string& drive, const std::string& port);

}  // namespace nocturnel
