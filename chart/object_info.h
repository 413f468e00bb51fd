#pragma once
// The object information card: everything the program knows of one found object at the
// observing moment and site of the preferences — its designations and names, type,
// constellation, magnitude, size and surface brightness, J2000 and apparent place, altitude
// and azimuth, the transit nearest the moment, and the visibility estimate with the best
// magnification and the eyepiece of the eyepiece database that gives it.
#include <string>
#include <vector>

#include "catalog/object_finder.h"
#include "chart/visibility.h"
#include "core/time.h"
#include "settings/preferences.h"

namespace nocturnel {

struct ObjectInfo {
    FoundObject object;
    std::vector<std::string> names;   // every designation and name
    std::string description;          // from the description file, empty when none
    std::string typeName;
    std::string constellationName;    // empty when unknown
    double raJ2000Hours = 0, decJ2000Deg = 0;
    double raHours = 0, decDeg = 0;   // apparent place of the moment (topocentric, true equator of date)
    double altDeg = 0, azDeg = 0;     // at the preferences' correction level (refraction when chosen)
    bool hasTransit = false;          // false when the reduction failed
    CalendarDate transitLocal;        // local civil time of the transit nearest the moment
    double transitAltDeg = 0;         // altitude at that transit (geometric)
    VisibilityEstimate visibility;    // at the altitude now, or at transit while below the horizon
    double limitingMagNakedEye = 0;
    double limitingMagScope = 0;
    std::string eyepieceName;         // empty when none
};

// Fills the card for the moment and prefs(), with the Sun and the Moon of the moment from the
// solar-system positions (a dark sky when the planet file is missing). False when the place
// cannot be reduced (the reduction has shown its message).
bool computeObjectInfo(const FoundObject& object, const ObservingMoment& moment, ObjectInfo& out);
// The same under a given Sun and Moon.
bool computeObjectInfo(const FoundObject& object, const ObservingMoment& moment, ObjectInfo& out,
                       const SunMoonState& sunMoon);

// "2026-11-23T17:02:41"
std::string isoLocalText(const CalendarDate& date);

}  // namespace nocturnel
