#pragma once
// Start-up and the options every command shares.
#include <string>

namespace nocturnel {

struct GlobalOptions {
    std::string home;   // --home DIR (else NOCTURNEL_HOME, else the executable's folder)
    std::string date;   // --date YYYY-MM-DD, local civil date at the site (default: machine clock)
    std::string time;   // --time HH:MM[:SS], local civil time at the site (default: machine clock)
    bool json = false;  // --json: machine-readable output on standard output
};

GlobalOptions& globalOptions();

// The start-up order: program folder, preferences (loaded, then reset and validated), the
// observing moment from --date/--time or the clock. False (message shown) on failure.
bool startUp();

// Exit code of the command line (0 success).
void setExitCode(int code);
int exitCode();

}  // namespace nocturnel
