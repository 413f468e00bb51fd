#include "shell/server_startup.h"

#include "catalog/catalogues.h"
#include "settings/machine_clock.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "shell/app.h"
#include "shell/engine.h"

namespace nocturnel {

bool startEngine(Engine& engine) {
    bool started = false;
    const std::vector<Message> messages = engine.run([&] {
        if (!startUp()) return;
        started = true;
        // The chart needs the default stars; the rest is drawn when present.
        if (openCatalogues() != 0 && !objectSlot().isOpen()) openObjectFiles();
    });
    for (const Message& m : messages) showMessage(m.title, m.detail);
    if (!started) return false;
    const bool fixedMoment = !globalOptions().date.empty() || !globalOptions().time.empty();
    engine.setBeforeEachJob([fixedMoment] {
        constexpr int kTimeUpdateAutomatic = 0;
        if (!fixedMoment && prefs().timeUpdate == kTimeUpdateAutomatic)
            prefs().moment = localMomentFromClock(prefs().utcOffsetMin);
    });
    return true;
}

}  // namespace nocturnel
