#include "shell/scope_clock.h"

#include "scope/scope_interface.h"
#include "settings/preferences.h"
#include "shell/app.h"

namespace nocturnel {

void useCommandLineClockForScope() {
    if (!globalOptions().date.empty() || !globalOptions().time.empty()) {
        const ObservingMoment fixed = prefs().moment;
        setScopeClock([fixed] { return fixed; });
    } else {
        setScopeClock({});
    }
}

}  // namespace nocturnel
