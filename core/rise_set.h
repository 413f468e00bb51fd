#pragma once
// Rise, transit and set within one day for anything whose geocentric apparent place is known
// at any moment (a body of the solar system, a catalogue place), and the crossings of a
// chosen altitude (twilight). The place is sampled every six hours and interpolated; the
// observer's offset from the Earth's centre (the Moon's parallax) is applied exactly, the
// altitude is the geometric one of the centre.
#include <functional>
#include <optional>

#include "core/planet_positions.h"
#include "core/topocentric_site.h"

namespace nocturnel {

// Geocentric apparent place (true equator and equinox of date) at a TT date; false on failure.
using GeocentricTrack = std::function<bool(double jdTt, double* raHours, double* decDeg, double* distanceAu)>;

struct RiseSetTimes {
    std::optional<double> riseJdUt, transitJdUt, setJdUt;
    double riseAzDeg = 0.0, setAzDeg = 0.0;
    double transitAltDeg = 0.0;  // geometric altitude of the centre at transit plus standard refraction
    bool circumpolar = false;    // above the rising altitude all day
    bool neverRises = false;     // below it all day
};

// The standard refraction at the horizon, degrees (34').
inline constexpr double kHorizonRefractionDeg = 34.0 / 60.0;

// Events in [jdUtStart, jdUtStart + 1): the centre crossing riseAltitudeDeg (geometric,
// topocentric) upwards (rise) and downwards (set), and the upper transit. A constant
// riseAltitudeDeg is given; for the Sun and Moon use riseSetAltitudeDeg. 0 success; 1 when the
// track failed.
int riseTransitSet(const GeocentricTrack& track, double jdUtStart, double riseAltitudeDeg, const SiteInfo& site,
                   RiseSetTimes* times);

// The altitude the centre has at rise and set: the horizon altitude ("Horizon" preference),
// less standard refraction, less the semi-diameter (Sun and Moon).
double riseSetAltitudeDeg(SolarBody body, double horizonDeg, double distanceAu);

// A body's track (geocentric apparent place) and a J2000 catalogue place's track.
GeocentricTrack bodyTrack(SolarBody body);
GeocentricTrack catalogueTrack(double raJ2000Hours, double decJ2000Deg);

// Topocentric geometric altitude and azimuth of a geocentric place for a UT date.
void topocentricAltAz(double raHours, double decDeg, double distanceAu, double jdUt, double jdTt, const SiteInfo& site,
                      double* altDeg, double* azDeg);

}  // namespace nocturnel
