#pragma once
// Orientation data of the observed discs: Jupiter's central meridians (Systems I and II) and
// the Great Red Spot's transits for the "GRS Longitude" preference, the Moon's optical
// libration, Saturn's ring tilt (see body_physical.h).
#include <vector>

namespace nocturnel {

struct JupiterMeridians {
    double systemIDeg = 0.0;   // [0, 360)
    double systemIIDeg = 0.0;
};
// For a TT Julian date (Meeus, Astronomical Algorithms ch. 43, with the light time and the
// phase correction from the given Earth-Jupiter distance in AU).
JupiterMeridians jupiterCentralMeridians(double jdTt, double earthDistanceAu);

// UT Julian dates of the Great Red Spot's transits (System II longitude grsLongitudeDeg on
// the central meridian) within [fromJdUt, toJdUt).
std::vector<double> greatRedSpotTransits(double fromJdUt, double toJdUt, double grsLongitudeDeg);

struct MoonLibration {
    double longitudeDeg = 0.0;  // positive: the east limb (Mare Crisium) turned towards us
    double latitudeDeg = 0.0;   // positive: the north limb
};
// Optical libration (Meeus ch. 53) for a TT date from the Moon's apparent geocentric ecliptic
// longitude and latitude of date (degrees).
MoonLibration moonOpticalLibration(double jdTt, double apparentLongitudeDeg, double apparentLatitudeDeg);

}  // namespace nocturnel
