#pragma once
// The visibility estimate: how easily an object shows to this observer, at this site, in this
// telescope, and at which magnification and with which eyepiece it shows best.
//
// Models, all published:
// - Sky brightness and extinction: Schaefer, "To the Visual Limits", Sky & Telescope 95 (5),
//   57 (1998), after Krisciunas & Schaefer, PASP 103, 1033 (1991): extinction from height,
//   humidity, temperature, latitude and month; the Moon's and the Sun's (twilight, daylight)
//   scattered light. The moonless night sky is the site's sky quality (a zenith brightness).
// - Naked-eye limit and stars in the telescope: Schaefer, "Telescopic Limiting Magnitudes",
//   PASP 102, 212 (1990): the point-source threshold I = C (1 + sqrt(K B))^2 and the
//   telescope's correction factors (transmission, pupil, aperture, magnification, seeing);
//   the eye pupil's shrinking with age (his eq. 5) and the acuity factor 1/SN^2 of Schaefer,
//   "Astronomy and the limits of vision", Vistas in Astronomy 36, 311 (1993).
// - Extended objects: Clark's method ("Visual Astronomy of the Deep Sky", 1990) on Blackwell's
//   threshold contrasts: the object's contrast against the sky is compared with the threshold
//   contrast for its apparent size and for the background brightness at the eye, at each
//   magnification of the telescope's useful range (exit pupil 7 mm to twice the aperture in mm).
//
// The visibility ratio is 1 + the contrast reserve (log10 of object contrast over threshold
// contrast; for a star 0.4 x its margin in magnitudes over the conditions' limit): 1 is the
// threshold, 2 an object ten times above it. It is 0 for an object at or beyond the telescope's
// limiting magnitude 7.5 + 5 log10(aperture mm / 10), and for an object of unknown magnitude.
#include <string>
#include <vector>

#include "catalog/formats.h"
#include "settings/preferences.h"

namespace nocturnel {

// Page 2/6 "User Informations".
struct ObserverProfile {
    double ageYears = 25;
    double snellenRatio = 1.0;  // "Vision" 10/10 is 1.0
    int experience = 1;         // 0 "Beginner", 1 "Hobbyst", 2 "Expert"
};

// Page 2/6 "Scope Informations" and the eyepiece database.
struct TelescopeSetup {
    double apertureMm = 200;
    double focalLengthMm = 1200;
    std::vector<double> eyepieceFocalMm;  // the eyepiece database in record order (0: unusable record)
};

// The Sun and the Moon as seen from the site at the moment. The defaults are a dark sky (both
// far below the horizon); the solar-system code fills these from its positions.
struct SunMoonState {
    double sunAltitudeDeg = -90;
    double sunSeparationDeg = 120;   // from the direction looked at
    double moonAltitudeDeg = -90;
    double moonPhaseAngleDeg = 180;  // Sun-Moon angle seen from the Moon: 0 full, 180 new
    double moonSeparationDeg = 90;   // from the direction looked at
};

// The site block of the preferences.
struct SiteSky {
    int skyQuality = 3;  // 0 "Bright town", 1 "Town", 2 "Bright country", 3 "Country", 4 "Desert/Mountain"
    double heightM = 0;
    double latitudeDeg = 45;
    double temperatureC = 10;
    double pressureMbar = 1013;
    double humidityPct = 40;
    int month = 1;       // season of the aerosol and ozone terms
};

struct VisibilitySetup {
    SiteSky site;
    SunMoonState sunMoon;
    ObserverProfile observer;
    TelescopeSetup telescope;
};

// Everything of the estimate that does not depend on the object, computed once.
struct VisibilityConditions {
    VisibilitySetup setup;
    double extinctionPerAirmass = 0;   // V magnitudes per airmass
    double skyZenithMagArcsec2 = 0;    // sky at the zenith: night sky + Moon + Sun
    double nakedEyeLimitMag = 0;       // at the zenith, this observer
    double scopeLimitMag = 0;          // 7.5 + 5 log10(D / 10), to 0.1
    double starLimitShiftMag = 0;      // this sky and observer against the formula's dark sky
    double eyePupilMm = 7;
    double observerLogFactor = 0;      // log10 of the observer's threshold factor for extended objects
    double minMagnification = 0, maxMagnification = 0;  // the useful range
    std::vector<double> eyepieceMagnifications;         // per eyepiece record, 0 when unusable
};

struct VisibilityTarget {
    double mag = 0;             // visual magnitude
    bool magKnown = true;
    double majorArcmin = 0;     // apparent size; 0: a point
    double minorArcmin = 0;     // 0: round (the major axis)
    int typeCode = 0;           // row of the object-type table (stars are points whatever their size)
    double altitudeDeg = 90;    // where the object stands (extinction, sky gradient)
};

struct VisibilityEstimate {
    bool known = false;             // false: no magnitude, or below the horizon
    double ratio = 0;
    const char* word = "Too faint";
    double surfaceBrightness = 0;   // mag/arcsec^2 (extended objects with a size), else 0
    bool extended = false;
    double bestMagnification = 0;   // in the useful range
    int eyepieceIndex = -1;         // record of the eyepiece database giving it, -1 when none
    double eyepieceMagnification = 0;
};

// Best magnification of a star cluster of a given size (arcminutes) in a telescope, inside the
// useful range [lo, hi]: the one that frames it in half the true field of a standard 50 degree
// eyepiece, and for a globular cluster at least the one that shows the telescope's resolution
// to the eye (its stars resolved); 0 when the type is not a cluster.
double clusterMagnification(int typeCode, double sizeArcmin, double apertureMm, double lo, double hi);

// 7.5 + 5 log10(aperture mm / 10), rounded to 0.1.
double telescopeLimitingMagnitude(double apertureMm);
// "Too faint" (ratio <= 0.5), "Very difficult" (<= 1.0), "Difficult" (<= 1.5), "Easy" (<= 2.0), "Very easy".
const char* visibilityWord(double ratio);
// Zenith brightness of the moonless night sky of a sky-quality index, V mag/arcsec^2.
double skyQualityBrightness(int skyQuality);
// Mean surface brightness of an elliptical object, V mag/arcsec^2 (minor 0: round).
double surfaceBrightnessMagArcsec2(double mag, double majorArcmin, double minorArcmin);
// Blackwell/Clark threshold contrast (log10) for a background at the eye (mag/arcsec^2) and an
// apparent size at the eye (arcminutes): bilinear in the table, straight beyond its last row.
double logThresholdContrast(double backgroundMagArcsec2, double apparentSizeArcmin);
// Schaefer (1990) eye pupil of the dark-adapted eye at an age, mm: 7 exp(-0.5 (age/100)^2).
double eyePupilForAge(double ageYears);
// Schaefer (1990) threshold of a point source against a background of B nanolamberts, as the
// limiting magnitude without any factor: -16.57 - 2.5 log10(C (1 + sqrt(K B))^2).
double pointSourceThresholdMag(double backgroundNanolambert);
// Conversions between nanolamberts and V mag/arcsec^2 (Schaefer 1990 eq. 17).
double nanolambertFromMagArcsec2(double magArcsec2);
double magArcsec2FromNanolambert(double nanolambert);

VisibilityConditions prepareVisibility(const VisibilitySetup& setup);
VisibilityEstimate estimateVisibility(const VisibilityTarget& target, const VisibilityConditions& conditions);

// The observer, site and telescope of the preferences with the eyepieces given (the eyepiece
// database), the Sun and the Moon as given (a dark sky by default).
VisibilitySetup visibilitySetupFromPreferences(const Preferences& p, const std::vector<EyepieceRecord>& eyepieces,
                                               const SunMoonState& sunMoon = {});

}  // namespace nocturnel
