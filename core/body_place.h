#pragma once
// Apparent places of the Sun, the Moon and the planets: light time, the Sun's deflection of
// light (planets), annual (and, topocentric, diurnal) aberration, precession (IAU 1976) and
// nutation (IAU 1980) to the true equator and equinox of date, and for the topocentric place
// the observer's offset from the Earth's centre (the Moon's parallax).
#include <optional>
#include <string_view>

#include "core/planet_positions.h"
#include "core/topocentric_site.h"

namespace nocturnel {

// "Sun", "Moon", "Mercury" ... "Pluto".
const char* solarBodyName(SolarBody body);
// A body by its name, case-insensitive ("jupiter", "MOON"); nothing for other names.
std::optional<SolarBody> solarBodyByName(std::string_view name);

struct BodyPlace {
    double raHours = 0.0;   // true equator and equinox of date, [0, 24)
    double decDeg = 0.0;
    double distanceAu = 0.0;     // observer to body, at the time the light left it
    double lightTimeDays = 0.0;
    double jdTt = 0.0;           // the moment
    Vec3 bodyHeliocentricAu{};      // J2000 equatorial, at the time the light left it
    Vec3 observerHeliocentricAu{};  // J2000 equatorial, at the moment
};

// Geocentric apparent place for a TT Julian date. 0 success; 1 no planet series file.
int geocentricPlace(SolarBody body, double jdTt, BodyPlace* place);
// Topocentric apparent place: the Earth turns to UT1 = jdTt - deltaT.
int topocentricPlace(SolarBody body, double jdTt, double deltaTSec, const SiteInfo& site, BodyPlace* place);

// Both at once: the body's own position is computed once (the light time from the site differs
// from the centre's by at most 21 ms, a shift below 0.01 arcsecond for the Moon).
int geocentricAndTopocentricPlace(SolarBody body, double jdTt, double deltaTSec, const SiteInfo& site, BodyPlace* geocentric,
                                  BodyPlace* topocentric);

// The observer's offset from the Earth's centre, J2000 equatorial (AU, AU/day).
StateVector siteOffsetJ2000(double jdTt, double deltaTSec, const SiteInfo& site);
// The apparent place seen from the Earth's centre plus an offset (J2000 equatorial).
int placeFromObserver(SolarBody body, double jdTt, const StateVector& observerOffset, BodyPlace* place);

}  // namespace nocturnel
