#include "shell/engine_prefs.h"

#include <cstring>

#include "settings/preferences.h"

namespace nocturnel {

bool updateEnginePrefs(const PreferencesChange& change) {
    Preferences saved;
    if (!updateSavedPreferences(change, &saved)) return false;
    const ObservingMoment moment = prefs().moment;
    prefs() = saved;
    prefs().moment = moment;
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
