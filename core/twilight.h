#pragma once
// Sunrise and sunset, and the civil, nautical and astronomical twilights (the Sun's centre
// 6, 12 and 18 degrees below the horizon, geometric) of one local day.
#include "core/rise_set.h"

namespace nocturnel {

struct TwilightTimes {
    RiseSetTimes sun;           // sunrise, noon, sunset ("Horizon" altitude, refraction, semi-diameter)
    RiseSetTimes civil;         // rise = dawn, set = dusk
    RiseSetTimes nautical;
    RiseSetTimes astronomical;
};
inline constexpr double kCivilTwilightDeg = -6.0;
inline constexpr double kNauticalTwilightDeg = -12.0;
inline constexpr double kAstronomicalTwilightDeg = -18.0;

// For the day [dayStartJdUt, dayStartJdUt + 1). 0 success; 1 no planet file.
int twilightForDay(double dayStartJdUt, const SiteInfo& site, double horizonDeg, TwilightTimes* out);

}  // namespace nocturnel
