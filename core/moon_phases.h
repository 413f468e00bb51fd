#pragma once
// The Moon's phases (the instants when the apparent geocentric longitudes of the Moon and the
// Sun differ by 0, 90, 180 and 270 degrees), its age and the name of its phase.
#include <string>
#include <vector>

namespace nocturnel {

// 0 "New Moon", 1 "First Quarter", 2 "Full Moon", 3 "Last Quarter".
const char* moonPhaseName(int quarter);

struct MoonPhaseEvent {
    int quarter = 0;
    double jdUt = 0.0;
};
// The next count phases after jdUt (UT). Empty when the planet file is missing.
std::vector<MoonPhaseEvent> nextMoonPhases(double jdUt, int count);
// All phases in [fromJdUt, toJdUt).
std::vector<MoonPhaseEvent> moonPhasesBetween(double fromJdUt, double toJdUt);

// Moon minus Sun apparent longitude at a UT date, degrees [0, 360); -1 when the file is missing.
double moonElongationLongitudeDeg(double jdUt);
// Days since the last new moon.
double moonAgeDays(double jdUt);
// "New Moon", "Waxing Crescent", "First Quarter", "Waxing Gibbous", "Full Moon",
// "Waning Gibbous", "Last Quarter", "Waning Crescent" for a longitude difference.
const char* moonPhaseDescription(double elongationLongitudeDeg);

}  // namespace nocturnel
