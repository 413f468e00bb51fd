#pragma once
// The telescope's own angles for the two-star alignment: encoder boxes give their two axes,
// the other drives their RA (as degrees) and Dec.
#include <string>

namespace nocturnel {

// hor, elv in degrees. False (message shown) when the drive cannot be read.
bool readTelescopeAngles(double& horDeg, double& elvDeg);

// A star of the alignment form read from the drive once the user centred it: the bright
// star's name as catalogued, the local time now, its RA and Dec, and the telescope's two angles
// (the first in hours on an equatorial mount), as the form's texts (Latin-1):
// fields = {name, time, ra, dec, hor, elv}. False (message shown) for an unknown star or a
// drive that cannot be read.
bool readAlignmentStarFromScope(const std::string& starName, std::string (&fields)[6]);

}  // namespace nocturnel
