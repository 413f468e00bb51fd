#pragma once
// The telescope's own angles for the two-star alignment: encoder boxes give their two axes,
// the other drives their RA (as degrees) and Dec.
namespace nocturnel {

// hor, elv in degrees. False (message shown) when the drive cannot be read.
bool readTelescopeAngles(double& horDeg, double& elvDeg);

}  // namespace nocturnel
