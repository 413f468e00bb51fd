#pragma once
// Orientation data of the observed discs: Jupiter's central meridians (Systems I and II) and
// the Great Red Spot's transits for the "GRS Longitude" preference, the Moon's optical
// libration, Saturn's ring tilt (see body_physical.h).
#include <vector>

#include "core/body_place.h"

namespace nocturnel {

struct JupiterMeridians {
    double systemIDeg = 0.0;   // [0, 360)
    double systemIIDeg = 0.0;
};
// The geometric central meridians (the sub-Earth longitude, as almanacs give it; Meeus's
// "illuminated disc" values add up to 0.4 degree of phase) of Systems I and II, from the IAU
// rotation model (System I W = 67.1 + 877.900 d, System II W = 43.3 + 870.270 d, d at the
// moment the light left Jupiter) and Jupiter's geocentric place (its light time and the
// Earth's and Jupiter's positions).
JupiterMeridians jupiterCentralMeridians(const BodyPlace& jupiter);
// The same for a TT Julian date: 0 success, 1 no planet series file.
int jupiterCentralMeridiansAt(double jdTt, JupiterMeridians* out);

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
