#include "plans/new_observer_log.h"

#include <cmath>
#include <cstring>

#include "catalog/object_finder.h"
#include "settings/message.h"
#include "settings/preference_lists.h"

namespace nocturnel {

std::string telescopeText(const Preferences& p) {
    const PreferenceList* diameter = findPreferenceList("scopeDiameterIndex");
    const PreferenceList* ratio = findPreferenceList("fRatioIndex");
    if (diameter == nullptr || ratio == nullptr) return {};
    const std::string_view d = labelAtIndex(*diameter, p.scopeDiameterIndex);
    const std::string_view f = labelAtIndex(*ratio, p.fRatioIndex);
    if (d.empty()) return {};
    std::string text = std::string(d) + "mm";
    if (!f.empty()) text += " F/" + std::string(f);
    return text;
}

ObserverLog newObserverLog(std::string_view objectLatin1, const ObservingMoment& moment, const NewLogSky& sky,
                           bool& found) {
    ObserverLog log;
    log.object = std::string(objectLatin1);
    log.year = moment.year;
    log.month = moment.month;
    log.day = moment.day;
    log.hour = moment.hour;
    log.minute = moment.minute;
    log.moonPct = sky.moonIlluminatedPct;
    log.sunAltDeg = sky.sunAltitudeDeg;
    log.visualMagX10 = sky.visualLimitMagX10;
    const Preferences& p = prefs();
    log.location = std::string(p.siteName, strnlen(p.siteName, sizeof p.siteName));
    log.scope = telescopeText(p);
    FoundObject object;
    {
        MessageCapture quiet;  // an object the catalogues do not know is still a valid log
        found = findObjectByName(objectLatin1, object);
    }
    if (found) {
        log.raHours = static_cast<float>(object.raHours);
        log.decDeg = static_cast<float>(object.decDeg);
        log.typeCode = object.typeCode;
        log.objectMag = object.magKnown ? static_cast<int32_t>(std::lround(object.mag)) : 0;
    }
    return log;
}

}  // namespace nocturnel
