#include "shell/engine_prefs.h"

#include <cstring>

#include "settings/preferences.h"
#include "shell/scope_session.h"

namespace nocturnel {

bool updateEnginePrefs(const PreferencesChange& change) {
    Preferences saved;
    LinkSettings savedLinkBefore;
    const auto changeNotingTheLink = [&](Preferences& record) {
        savedLinkBefore = linkSettingsOf(record);
        return change(record);
    };
    if (!updateSavedPreferences(changeNotingTheLink, &saved)) return false;
    const ObservingMoment moment = prefs().moment;
    const LinkSettings engineLink = linkSettingsOf(prefs());
    prefs() = saved;
    prefs().moment = moment;
    if (linkSettingsOf(saved) == savedLinkBefore) applyLinkSettings(engineLink, prefs());
    return true;
}

bool copyLocationBlock(const Preferences& from, Preferences& to) {
    std::memcpy(to.siteMemory, from.siteMemory, sizeof to.siteMemory);
    std::memcpy(to.siteName, from.siteName, sizeof to.siteName);
    to.latitudeDeg = from.latitudeDeg;
    to.longitudeDeg = from.longitudeDeg;
    to.altitudeM = from.altitudeM;
    to.utcOffsetMin = from.utcOffsetMin;
    to.dstFlag = from.dstFlag;
    to.temperatureC = from.temperatureC;
    to.pressureMbar = from.pressureMbar;
    to.humidityPct = from.humidityPct;
    to.skyQuality = from.skyQuality;
    return true;
}

}  // namespace nocturnel
