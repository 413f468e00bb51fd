#pragma once
// True-of-date equatorial place to the observer's horizon, with optional refraction.
#include "core/topocentric_site.h"

namespace nocturnel {

// Refraction option: 0 none; 2 the site's pressure and temperature; any other non-zero
// value a standard atmosphere (1010 mbar at sea level scaled by height, 10 C).
inline constexpr int kRefractionNone = 0;
inline constexpr int kRefractionStandard = 1;
inline constexpr int kRefractionSiteWeather = 2;

// Refraction in degrees for an observed zenith distance in degrees (0 below 0.1 and above 91).
double refractionDeg(const SiteInfo& site, int refractionOption, double observedZenithDistanceDeg);

struct HorizontalPlace {
    double zenithDistanceDeg = 0.0;  // refracted when refraction is asked for
    double azimuthDeg = 0.0;         // from north through east, [0, 360)
    double raHours = 0.0;            // the place shifted by refraction (unchanged without it)
    double decDeg = 0.0;
};

// jdTt: the date of the reductions (nutation); deltaTSec: TT - UT1, so the Earth turns to
// jdTt - deltaT; polar motion x, y in arcseconds; raHours/decDeg: true equator and equinox
// of date.
HorizontalPlace horizontalFromEquatorial(double jdTt, double deltaTSec, double xArcsec, double yArcsec,
                                         const SiteInfo& site, double raHours, double decDeg,
                                         int refractionOption);

}  // namespace nocturnel
