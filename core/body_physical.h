#pragma once
// Physical data of a body as seen by an observer: phase angle, illuminated fraction, apparent
// diameter, elongation, distances and the apparent visual magnitude (Mallama & Hilton 2018 for
// the planets; the Sun from its absolute magnitude; the Moon from Allen's phase law).
#include "core/body_place.h"

namespace nocturnel {

// Equatorial radius, km.
double bodyRadiusKm(SolarBody body);

struct BodyPhysical {
    double phaseAngleDeg = 0.0;      // Sun - body - observer
    double illuminatedFraction = 1.0;
    double diameterArcsec = 0.0;     // apparent equatorial diameter
    double elongationDeg = 0.0;      // Sun - observer - body
    double distanceAu = 0.0;         // from the observer
    double sunDistanceAu = 0.0;      // body from the Sun
    double magnitude = 0.0;
    double saturnRingTiltDeg = 0.0;  // Saturn: the rings' opening towards the observer (signed)
};
BodyPhysical bodyPhysical(SolarBody body, const BodyPlace& place);

// Apparent visual magnitude from the distances (AU) and phase angle (degrees); ringTiltDeg is
// Saturn's ring opening (ignored for the others); the year matters for Neptune, which
// brightened between 1980 and 2000.
double apparentMagnitude(SolarBody body, double sunDistanceAu, double observerDistanceAu, double phaseAngleDeg,
                         double ringTiltDeg, double year = 2000.0);

// Saturn's ring plane tilt towards a direction (J2000 unit vector from Saturn to the observer), degrees.
double saturnRingTiltDeg(const Vec3& saturnToObserver);

}  // namespace nocturnel
