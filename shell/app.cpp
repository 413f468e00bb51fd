#include "shell/app.h"

#include "settings/program_folder.h"

namespace nocturnel {

GlobalOptions& globalOptions() {
    static GlobalOptions options;
    return options;
}

namespace {
int& exitCodeRef() {
    static int code = 0;
    return code;
}
}  // namespace

void setExitCode(int code) { exitCodeRef() = code; }
int exitCode() { return exitCodeRef(); }

bool startUp() {
    if (!globalOptions().home.empty()) setProgramFolder(globalOptions().home);
    // Preferences loading and the observing moment are added by the settings work.
    return true;
}

}  // namespace nocturnel
