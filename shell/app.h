#pragma once
// Start-up and the options every command shares.
#include <string>
#include <string_view>

#include "settings/preferences.h"
#include "settings/saved_preferences.h"

namespace nocturnel {

struct GlobalOptions {
    std::string home;   // --home DIR (else NOCTURNEL_HOME, else the executable's folder)
    std::string date;   // --date YYYY-MM-DD, local civil date at the site (default: machine clock)
    std::string time;   // --time HH:MM[:SS], local civil time at the site (default: machine clock)
    bool json = false;  // --json: machine-readable output on standard output
};

GlobalOptions& globalOptions();

// The start-up order: program folder, preferences (defaults, the saved record read over them,
// then validated), the observing moment from --date/--time or the clock. False (message shown)
// on failure.
bool startUp();

// --date and --time texts over a moment: "YYYY-MM-DD" (year 0..9999) and "HH:MM" or
// "HH:MM:SS". False when the text is not a real date or time (the moment is then unchanged).
bool readDateOption(std::string_view text, ObservingMoment& moment);
bool readTimeOption(std::string_view text, ObservingMoment& moment);

// Changes the saved preferences: lock the folder, reload the saved record, apply `change`,
// save, unlock (updateSavedPreferences); prefs() then holds the saved record. False (message
// shown, exit code 1) when the change refuses or the save fails.
bool updatePrefsForCommand(const PreferencesChange& change);

// Exit code of the command line (0 success).
void setExitCode(int code);
int exitCode();

}  // namespace nocturnel
