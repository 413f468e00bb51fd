#pragma once
// Two-star alignment: the 3x3 matrix that maps a celestial direction to the telescope's own
// direction, from two stars centred in the eyepiece. Angles of the star records are degrees;
// times are clock times as angles (hours x 15).
#include "align/matrix3.h"
#include "settings/preferences.h"

namespace nocturnel {

inline constexpr double kSiderealRate = 1.002737909350795;  // sidereal per solar time
inline constexpr double kAlignDegToRad = 0.0174532925199433;

// How the mount's angles relate to the sky. altAzimuth: the first telescope angle is an
// azimuth (counted the other way round from the celestial longitude, so it enters as 360 - hor).
// timeTerm: the mount does not follow the sky (alt-azimuth mounts and encoder boxes), so the
// celestial longitude of each star is moved back by the sky's rotation since the reference time.
struct MountGeometry {
    bool altAzimuth = false;
    bool timeTerm = false;
};

// The geometry of the preferences' mount type and drive code.
MountGeometry mountGeometryFromPreferences();

// Parses the reference time text ("HH:MM:SS", or decimal hours) to radians of clock angle.
// False when the text is not an angle text.
bool referenceTimeRadians(const char* toTime, double& radians);

// Computes T = M x C^-1 from the two stars. 1 on success; 0 on failure with the message
// "Please, fill all values" (telescope vectors parallel), "Null derterminant, cannot compute
// inverse matrix", or silently when the celestial vectors are parallel.
int computeAlignmentMatrix(const char* toTime, const AlignmentStarRecord& star1, const AlignmentStarRecord& star2,
                           const MountGeometry& geometry, Mat3& result);

// A sky place at an elapsed clock angle tauRad since the reference time, to telescope angles.
void skyToTelescopeAngles(const Mat3& t, const MountGeometry& geometry, double raHours, double decDeg,
                          double tauRad, double& horDeg, double& elvDeg);
// Telescope angles back to the sky (the inverse mapping). False when T cannot be inverted.
bool telescopeAnglesToSky(const Mat3& t, const MountGeometry& geometry, double horDeg, double elvDeg,
                          double tauRad, double& raHours, double& decDeg);

}  // namespace nocturnel
