#include "shell/selection_hooks.h"

#include <cmath>

#include "catalog/eyepieces.h"
#include "core/time.h"
#include "settings/message.h"

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
    hooks.stopRequested = std::move(stopRequested);
    return hooks;
}

}  // namespace nocturnel
