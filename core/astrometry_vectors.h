#pragma once
// The vector steps of an apparent place (NOVAS formulation): catalogue data to vectors,
// space motion, the shift to the observer with its light time, the Sun's gravitational
// deflection of light and the aberration of light. Positions AU, velocities AU/day.
#include "core/vector3.h"

namespace nocturnel {

struct StarVectors {
    Vec3 positionAu;
    Vec3 velocityAuPerDay;
};
// Barycentric vectors at the catalogue epoch. A parallax of zero or below is taken as 1e-7
// arcsecond (about 2e12 AU) so the star still has a finite distance.
StarVectors starVectors(double raHours, double decDeg, double pmRaSecPerCentury, double pmDecArcsecPerCentury,
                        double parallaxArcsec, double radialVelocityKmPerS);

// Position moved linearly from jdFrom to jdTo.
Vec3 properMotion(double jdFrom, const StarVectors& star, double jdTo);

// Position seen from the observer, and the light time in days.
Vec3 barycentricToObserver(const Vec3& position, const Vec3& observerBarycentricAu, double* lightTimeDays);

// Position deflected by the Sun; observerHeliocentricAu is the observer's vector from the Sun.
Vec3 solarDeflection(const Vec3& position, const Vec3& observerHeliocentricAu);

// Position corrected for aberration by the observer's barycentric velocity; a light time of
// zero is recomputed from the vector's length.
Vec3 aberration(const Vec3& position, const Vec3& observerVelocityAuPerDay, double lightTimeDays);

// Vector to right ascension (hours [0, 24)) and declination (degrees). 0 success; 1 when the
// vector lies on the polar axis (RA 0); 2 for the zero vector (RA and Dec 0).
int vectorToRaDec(const Vec3& position, double* raHours, double* decDeg);
// Unit (or distance-scaled) vector of RA (hours) and Dec (degrees).
Vec3 raDecToVector(double raHours, double decDeg, double distance = 1.0);

}  // namespace nocturnel
