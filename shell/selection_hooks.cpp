#include "shell/selection_hooks.h"

#include <cmath>
#include <filesystem>
#include <memory>

#include "catalog/eyepieces.h"
#include "chart/sun_moon_sky.h"
#include "chart/visibility.h"
#include "core/time.h"
#include "plans/selection_sky.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {

SelectionRunHooks selectionHooksFor(SelectionCriteria& c, std::function<bool()> stopRequested) {
    const Preferences& p = prefs();
    const ObservingMoment& m = p.moment;
    c.selectionYear = static_cast<int16_t>(m.year);
    c.selectionMonth = static_cast<int16_t>(m.month);
    c.selectionDay = static_cast<int16_t>(m.day);
    c.selectionHour = static_cast<int16_t>(m.hour);
    c.selectionMinute = static_cast<int16_t>(m.minute);
    SelectionRunHooks hooks;
    hooks.conditions.localSiderealHours =
        localSiderealTime(m.year, m.month, m.day, m.hour, m.minute, m.second, p.longitudeDeg, p.utcOffsetMin);
    hooks.conditions.latitudeDeg = p.latitudeDeg;
    {
        MessageCapture quiet;  // without an eyepiece the size test has no reference
        EyepieceField field;
        if (chosenEyepieceField(field))
            hooks.conditions.eyepieceMagnification = eyepieceMagnification(field.eyepiece, telescopeFocalLengthMm());
    }
    // The estimate of the moment: the Sun and the Moon where they stand, this observer and telescope.
    std::vector<EyepieceRecord> eyepieces;
    std::error_code ec;
    if (std::filesystem::exists(dataPath(kEyepieceFile), ec)) {
        MessageCapture quiet;
        loadEyepieces(eyepieces);
    }
    const double jdUt = jdUtOfMoment(m);
    SunMoonState sunMoon;
    sunMoonStateAt(jdUt, &sunMoon);
    auto visibility = std::make_shared<const VisibilityConditions>(
        prepareVisibility(visibilitySetupFromPreferences(p, eyepieces, sunMoon)));
    refreshLimitMagnitudes(c, *visibility);
    const double lst = hooks.conditions.localSiderealHours, latitude = hooks.conditions.latitudeDeg;
    hooks.conditions.estimate = [visibility, lst, latitude](const ObjectReference& object) {
        return estimateForSelection(object, *visibility, lst, latitude);
    };
    hooks.planets = [jdUt] { return solarSystemReferences(jdUt); };
    hooks.stopRequested = std::move(stopRequested);
    return hooks;
}

}  // namespace nocturnel
