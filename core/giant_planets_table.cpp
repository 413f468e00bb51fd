// Mean circular orbits of Jupiter, Saturn, Uranus and Neptune for the solar-system barycentre
// offset, from the NOVAS-C analytical Sun-Earth ephemeris (solsys3, after the Explanatory
// Supplement to the Astronomical Almanac 1992, p. 316): inverse mass ratio, semi-major axis
// (AU), mean longitude at J2000 (rad, mean ecliptic and equinox J2000), mean motion (rad/day).
#include "core/earth_ephemeris.h"

namespace nocturnel {

const std::array<GiantPlanetOrbit, 4> kGiantPlanetMeanOrbits = {{
    {1047.349, 5.203363, 0.600470, 1.450138e-3},
    {3497.898, 9.537070, 0.871693, 5.841727e-4},
    {22903.0, 19.191264, 5.466933, 2.047497e-4},
    {19412.2, 30.068963, 5.321160, 1.043891e-4},
}};

}  // namespace nocturnel
