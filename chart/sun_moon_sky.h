#pragma once
// The Sun and the Moon of the visibility estimate, from the solar-system positions at the
// moment and site of the preferences.
#include "chart/visibility.h"
#include "settings/preferences.h"

namespace nocturnel {

// The Sun's and the Moon's altitudes, the Moon's phase angle and both separations from the
// direction looked at (topocentric, true equator of date). When the planet file cannot be read
// the sky stays dark (the defaults) and true is not returned.
bool sunMoonStateAt(double jdUt, double raHours, double decDeg, SunMoonState* state);
// The same for the whole sky (no direction): the separations keep their defaults.
bool sunMoonStateAt(double jdUt, SunMoonState* state);
// The moment of the preferences as a UT Julian date.
double jdUtOfMoment(const ObservingMoment& moment);

}  // namespace nocturnel
