#pragma once
// A new log's sensible defaults: the moment, the object's catalogue place, type and magnitude,
// the site's name and the telescope of the preferences.
#include <string_view>

#include "plans/observer_log_record.h"
#include "settings/preferences.h"

namespace nocturnel {

struct NewLogSky {
    int moonIlluminatedPct = 0;   // the Moon's illuminated fraction at the moment
    int sunAltitudeDeg = 0;       // the Sun's altitude at the moment
    int visualLimitMagX10 = 0;    // the naked-eye limiting magnitude x 10 of the visibility estimate
};

// The sky of a new log at a local moment: the Moon and the Sun from the solar-system positions
// (zeros when the planet file is missing) and the naked-eye limit of the visibility estimate.
NewLogSky newLogSkyAt(const ObservingMoment& moment);

// The log of an object (Latin-1 name) observed at a local moment. The object is looked up in
// the catalogues without a message; an object they do not know keeps position, type and
// magnitude 0 and `found` false.
ObserverLog newObserverLog(std::string_view objectLatin1, const ObservingMoment& moment, const NewLogSky& sky,
                           bool& found);

// "200mm F/6" from the preferences' "Diameter" and "F-Ratio" entries; empty when unknown.
std::string telescopeText(const Preferences& p);

}  // namespace nocturnel
