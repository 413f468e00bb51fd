#pragma once
// Catalogue place (J2000) to the observer's horizon at one of several levels of rigour
// (NOVAS-C vector astrometry: IAU 1976 precession, IAU 1980 nutation, light time, solar
// deflection, aberration, an analytical Earth ephemeris).
//
// Time: the pipeline hands the UT Julian date of the moment to the reductions as if it were
// dynamical time (TT) and never adds DeltaT to it; the Earth's rotation is then taken at
// UT1 = that date - DeltaT. Against the true place (TT = UT + DeltaT, UT1 = UT) the sidereal
// time therefore lags by DeltaT x 1.0027: about 17 arcminutes of hour angle for DeltaT = 69 s
// (2020), so altitude and azimuth move by up to 17' x cos(Dec) along the diurnal circle
// (the true-place test measures it). Precession, nutation and aberration change by less than
// 0.01 arcsecond for that 69 s shift.
#include <string>

#include "core/horizon.h"
#include "core/topocentric_site.h"
#include "settings/preferences.h"

namespace nocturnel {

struct BodyDescriptor {
    int type = 0;    // 0 major planet, 1 minor planet
    int number = 0;  // 3 Earth, 10 Sun, 11 Moon
    std::string name;
};

struct CatalogueEntry {
    char catalog[4] = {};  // 3 characters
    char starname[51] = {};
    long starnumber = 0;
    double raHours = 0.0;                // J2000
    double decDeg = 0.0;                 // J2000
    double pmRaSecPerCentury = 0.0;      // seconds of time per Julian century
    double pmDecArcsecPerCentury = 0.0;  // arcseconds per Julian century
    double parallaxArcsec = 0.0;
    double radialVelocityKmPerS = 0.0;
};

// Fills a body descriptor. 0 success; 1 type not 0 or 1; 2 number out of 1..30000.
int set_body(int type, int number, const std::string& name, BodyDescriptor* body);

// Geocentric apparent place (true equator and equinox of date) of a star for jdTt.
// 0 success, else the ephemeris error (1: date out of range, 2: bad body).
int app_star(double jdTt, const BodyDescriptor& earth, const CatalogueEntry& star, double* raHours,
             double* decDeg);

// Topocentric apparent place (true equator and equinox of date) for jdTt; the Earth turns to
// UT1 = jdTt - deltaT. 0 success, else the ephemeris error.
int topo_star(double jdTt, const BodyDescriptor& earth, double deltaTSec, const CatalogueEntry& star,
              const SiteInfo& site, double* raHours, double* decDeg);

// Mean J2000 place to the true equator and equinox of jd by one cached rotation (precession
// then nutation); RA in [0, 24].
void precessNutateFromJ2000(double jd, double raJ2000Hours, double decJ2000Deg, double* raDateHours,
                            double* decDateDeg);
// The rotation itself, kept in a cache keyed on jd.
const Mat3& j2000ToDateMatrix(double jd);

// The site of the preferences: longitude turned to east positive, height, weather.
SiteInfo siteInfoFromPreferences();

// 0 success; non-zero when the reduction failed (message already shown).
int equatorialToHorizontal(double raHours, double decDeg, int level, const ObservingMoment& moment,
                           double* altDeg, double* azDeg, double* raUsedHours, double* decUsedDeg);

// The level chosen by the preferences' pointing frame ("Correction"): prefs().correction,
// whose shown list is 0 "Geocentric", 1 "Geoc. + Refract", 2 "Topocentric", 3 "Topo + Refract".
int pointingLevelFromPreferences();

// The RA/Dec equatorialToHorizontal uses for a J2000 place at the level (refracted at levels
// 1 and 3), for a date, DeltaT and site given explicitly. 0 success; the topo_star error
// (message shown) otherwise.
int placeUsedForLevel(double raJ2000Hours, double decJ2000Deg, int level, double jd, double deltaTSec,
                      const SiteInfo& site, double* raUsedHours, double* decUsedDeg);

}  // namespace nocturnel
