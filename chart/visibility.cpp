#include "chart/visibility.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>

#include "catalog/object_tables.h"
#include "chart/contrast_threshold_table.h"
#include "settings/preference_lists.h"

namespace nocturnel {
namespace {
constexpr double kDegToRad = std::numbers::pi / 180.0;

// Moonless zenith sky of each sky-quality index (V mag/arcsec^2), from "Bright town" to
// "Desert/Mountain": typical sky-quality-meter readings of those skies (Bortle classes 8, 7, 5,
// 3 and 1-2).
constexpr std::array<double, 5> kSkyQualityMagArcsec2 = {18.0, 19.0, 20.3, 21.2, 21.8};
// The dark sky for which the telescope formula 7.5 + 5 log10(D/10) holds.
constexpr double kFormulaSkyMagArcsec2 = 21.5;

// Telescope: light transmitted through the optics (Clark's 0.7; with the eye pupil of 7.5 mm it
// gives his 2.833 x aperture in inches), reference pupil of Blackwell's observers, seeing disc
// radius (arcseconds) for Schaefer's seeing factor.
constexpr double kTransmission = 0.7;
constexpr double kBlackwellPupilMm = 7.5;
constexpr double kSeeingRadiusArcsec = 1.5;
constexpr double kSmallestExitPupilMm = 0.5;   // 2 x D in mm
constexpr double kLargestExitPupilMm = 7.0;    // D / 7

// Schaefer's point-source threshold constants (foot-candles, nanolamberts): scotopic below
// about 1500 nL, photopic above.
constexpr double kPhotopicFromNl = 1500.0;
constexpr double kScotopicC = 1.5849e-10, kScotopicK = 1.2589e-2;  // 10^-9.80, 10^-1.90
constexpr double kPhotopicC = 4.4668e-9, kPhotopicK = 1.2589e-6;   // 10^-8.35, 10^-5.90
// Schaefer (1998) V-band constants: the Sun's and the reference magnitude of his brightness units.
constexpr double kSunMagV = -26.74, kReferenceMagV = -11.05;
constexpr double kSchaeferUnitsPerNl = 1.11e-15;

// Observer experience as a shift of the threshold, magnitudes (Schaefer 1990 reports observers
// spreading by about a magnitude around the mean): beginners see 0.5 mag less, experts (averted
// vision, practice) 0.5 mag more than the average observer of the threshold data.
constexpr std::array<double, 3> kExperienceThresholdMag = {0.5, 0.0, -0.5};
constexpr double kReferenceAgeYears = 25;

// Star clusters. A cluster is a field of stars, not a uniform disc: it shows best framed with
// sky around it and with its stars apart. The framing rule puts it in half the true field of a
// 50 degree eyepiece (true field = apparent field / magnification, Nagler, "Choosing your
// telescope's magnification", Sky & Telescope, May 1991). A globular cluster's stars are tightly
// packed: they are resolved when the telescope's resolution (Dawes' limit, 116"/D mm) is shown
// to the eye at about 2', the dark-adapted eye's own resolution for faint points, that is at
// about 1x per millimetre of aperture (an exit pupil near 1 mm); faint stars also gain contrast
// with magnification (the sky darkens, the star does not: Sky & Telescope's "An eyepiece primer").
constexpr double kStandardApparentFieldDeg = 50;
constexpr double kFramedShareOfField = 0.5;
constexpr double kDawesArcsecMm = 116;
constexpr double kEyeResolutionArcsec = 120;

// Magnification samples of the useful range: a coarse log-spaced pass and a finer pass around its best.
constexpr int kCoarseSamples = 14;
constexpr int kFineSamples = 8;

double airmass(double zenithDeg) {
    const double c = std::cos(zenithDeg * kDegToRad);
    return c > 0 ? 1.0 / (c + 0.025 * std::exp(-11.0 * c)) : 40.0;
}

double fromMag(double mag) { return std::pow(10.0, -0.4 * mag); }

// Schaefer (1998) V-band extinction per airmass: Rayleigh, aerosol, ozone and water terms.
double extinctionCoefficient(const SiteSky& site) {
    const double monthAngle = (site.month - 3) * std::numbers::pi / 6.0;
    const double latRad = site.latitudeDeg * kDegToRad;
    const double humidity = std::clamp(site.humidityPct, 1.0, 99.0) / 100.0;
    const double pressureFactor = site.pressureMbar > 0 ? site.pressureMbar / 1013.25 : 1.0;
    const double rayleigh = 0.1066 * std::exp(-site.heightM / 8200.0) * pressureFactor;
    double aerosol = 0.1 * std::exp(-site.heightM / 1500.0) * std::pow(1.0 - 0.32 / std::log(humidity), 1.33);
    aerosol *= site.latitudeDeg < 0 ? 1.0 - std::sin(monthAngle) : 1.0 + std::sin(monthAngle);
    const double ozone = 0.031 * (3.0 + 0.4 * (latRad * std::cos(monthAngle) - std::cos(3.0 * latRad))) / 3.0;
    const double water = 0.031 * 0.94 * humidity * std::exp(site.temperatureC / 15.0) * std::exp(-site.heightM / 8200.0);
    return rayleigh + aerosol + ozone + water;
}

// Schaefer's scattering function of the angle from a bright body (degrees).
double scatteringFunction(double separationDeg) {
    const double rho = std::max(separationDeg, 0.5);
    const double c = std::cos(rho * kDegToRad);
    return 6.2e7 / (rho * rho) + std::pow(10.0, 6.15 - rho / 40.0) + 229086.0 * (1.06 + c * c);
}

// Moonlight and sunlight (twilight or daylight, whichever is fainter) scattered towards a
// direction of the given zenith distance, nanolamberts.
double sunMoonSkyNl(const SunMoonState& s, double k, double zenithDeg) {
    const double x = airmass(zenithDeg);
    const double scatteredShare = 1.0 - fromMag(k * x);
    double moon = 0;
    if (s.moonAltitudeDeg > -5.0) {
        const double phase = std::abs(s.moonPhaseAngleDeg);
        const double moonMag = -12.73 + 0.026 * phase + 4e-9 * std::pow(phase, 4);
        const double direct = fromMag(k * airmass(90.0 - s.moonAltitudeDeg));
        moon = fromMag(moonMag - kReferenceMagV + 43.27) * scatteredShare *
               (scatteringFunction(s.moonSeparationDeg) * direct + 440000.0 * (1.0 - direct));
        if (s.moonAltitudeDeg < 0) moon *= std::exp(100.0 * s.moonAltitudeDeg * kDegToRad);
    }
    const double twilight = fromMag(kSunMagV - kReferenceMagV + 32.5 - s.sunAltitudeDeg - zenithDeg / (360.0 * k)) *
                            (100.0 / std::max(s.sunSeparationDeg, 0.5)) * (1.0 - fromMag(k));
    const double sunDirect = fromMag(k * airmass(90.0 - s.sunAltitudeDeg));
    const double daylight = fromMag(kSunMagV - kReferenceMagV + 43.27) * scatteredShare *
                            (scatteringFunction(s.sunSeparationDeg) * sunDirect + 440000.0 * (1.0 - sunDirect));
    return (moon + std::min(twilight, daylight)) / kSchaeferUnitsPerNl;
}

// Schaefer's brightening of the night sky away from the zenith (van Rhijn-like).
double skyGradient(double zenithDeg) {
    const double s = std::sin(zenithDeg * kDegToRad);
    return 0.4 + 0.6 / std::sqrt(1.0 - 0.96 * s * s);
}

// Threshold factor of the observer for point sources: pupil (age), acuity and experience.
double pointObserverFactor(const ObserverProfile& o) {
    const double pupil = eyePupilForAge(o.ageYears), reference = eyePupilForAge(kReferenceAgeYears);
    const double sn = std::max(o.snellenRatio, 0.05);
    const int experience = std::clamp(o.experience, 0, 2);
    return (reference / pupil) * (reference / pupil) / (sn * sn) / fromMag(kExperienceThresholdMag[experience]);
}

// Schaefer (1990) limiting magnitude of a star in the telescope at magnification m, for a sky of
// skyNl nanolamberts and an observer's factor and pupil.
double telescopicStarLimit(double apertureMm, double m, double skyNl, double pupilMm, double observerFactor) {
    const double exitPupil = apertureMm / m;
    const double used = std::min(exitPupil, pupilMm);
    const double backgroundNl = skyNl * kTransmission * (used / pupilMm) * (used / pupilMm);
    double factor = (1.0 / kTransmission) * (pupilMm / apertureMm) * (pupilMm / apertureMm) * observerFactor;
    if (exitPupil > pupilMm) factor *= (exitPupil / pupilMm) * (exitPupil / pupilMm);
    const double seeingDisc = 2.0 * kSeeingRadiusArcsec * m;
    if (seeingDisc > 900.0) factor *= std::sqrt(seeingDisc / 900.0);
    return pointSourceThresholdMag(backgroundNl) - 2.5 * std::log10(factor);
}

template <typename Score>
double bestMagnificationFor(double lo, double hi, Score score, double& bestScore) {
    auto at = [&](int i, int n, double a, double b) { return n == 1 ? a : a * std::pow(b / a, double(i) / (n - 1)); };
    int best = 0;
    bestScore = -1e300;
    for (int i = 0; i < kCoarseSamples; ++i) {
        const double s = score(at(i, kCoarseSamples, lo, hi));
        if (s > bestScore + 1e-12) bestScore = s, best = i;
    }
    const double a = at(std::max(best - 1, 0), kCoarseSamples, lo, hi);
    const double b = at(std::min(best + 1, kCoarseSamples - 1), kCoarseSamples, lo, hi);
    double bestM = at(best, kCoarseSamples, lo, hi);
    for (int i = 0; i < kFineSamples; ++i) {
        const double m = at(i, kFineSamples, a, b);
        const double s = score(m);
        if (s > bestScore + 1e-12) bestScore = s, bestM = m;
    }
    return bestM;
}

bool isPointType(int typeCode) {
    if (typeCode < 0 || typeCode >= kObjectTypeCount) return false;
    const int group = kObjectTypes[typeCode].group;
    return group == 5 || group == 6;
}

double labelNumber(std::string_view field, int index, double fallback) {
    const PreferenceList* list = findPreferenceList(field);
    if (!list) return fallback;
    const std::string_view label = labelAtIndex(*list, index);
    std::size_t i = 0;
    while (i < label.size() && !(label[i] >= '0' && label[i] <= '9')) ++i;
    if (i == label.size()) return fallback;
    return std::atof(std::string(label.substr(i)).c_str());
}
}  // namespace

double clusterMagnification(int typeCode, double sizeArcmin, double apertureMm, double lo, double hi) {
    bool globular = false;
    switch (typeCode) {
        case 2:
        case 3:
        case 4:
        case 5:  // "GLOCL", "GX+GC", "LMCGC", "SMCGC"
            globular = true;
            break;
        case 6:
        case 7:
        case 8:
        case 9:
        case 11:
        case 12:  // "OPNCL", "LMCOC", "SMCOC", "CL+NB", "LMCCN", "SMCCN"
            break;
        default:
            return 0;
    }
    if (!(sizeArcmin > 0) || !(apertureMm > 0) || !(hi >= lo)) return 0;
    double m = kFramedShareOfField * kStandardApparentFieldDeg * 60.0 / sizeArcmin;
    if (globular) m = std::max(m, kEyeResolutionArcsec / (kDawesArcsecMm / apertureMm));
    return std::clamp(m, lo, hi);
}

double telescopeLimitingMagnitude(double apertureMm) {
    if (!(apertureMm > 0)) return 0;
    return std::round((7.5 + 5.0 * std::log10(apertureMm / 10.0)) * 10.0) / 10.0;
}

const char* visibilityWord(double ratio) {
    if (ratio <= 0.5) return "Too faint";
    if (ratio <= 1.0) return "Very difficult";
    if (ratio <= 1.5) return "Difficult";
    if (ratio <= 2.0) return "Easy";
    return "Very easy";
}

double skyQualityBrightness(int skyQuality) {
    return kSkyQualityMagArcsec2[std::clamp(skyQuality, 0, static_cast<int>(kSkyQualityMagArcsec2.size()) - 1)];
}

double surfaceBrightnessMagArcsec2(double mag, double majorArcmin, double minorArcmin) {
    const double minor = minorArcmin > 0 ? minorArcmin : majorArcmin;
    // Area of the ellipse in square arcseconds: pi/4 x major x minor x 3600.
    return mag + 2.5 * std::log10(std::numbers::pi / 4.0 * 3600.0 * majorArcmin * minor);
}

double logThresholdContrast(double backgroundMagArcsec2, double apparentSizeArcmin) {
    const auto& sizes = kThresholdLogSizeArcmin;
    const auto& rows = kThresholdContrastTable;
    const double logSize = std::clamp(std::log10(std::max(apparentSizeArcmin, 1e-6)), sizes.front(), sizes.back());
    int col = 0;
    while (col < kThresholdSizeColumns - 2 && logSize > sizes[col + 1]) ++col;
    const double fs = (logSize - sizes[col]) / (sizes[col + 1] - sizes[col]);
    auto rowValue = [&](int r) { return rows[r].logThreshold[col] + fs * (rows[r].logThreshold[col + 1] - rows[r].logThreshold[col]); };
    const double first = rows.front().backgroundMagArcsec2;
    const double bg = std::clamp(std::isfinite(backgroundMagArcsec2) ? backgroundMagArcsec2 : first, first, first + 60.0);
    const int row = std::min(static_cast<int>(std::floor(bg - first)), kThresholdBackgroundRows - 2);
    const double fb = bg - rows[row].backgroundMagArcsec2;  // beyond the last row: straight on
    return rowValue(row) + fb * (rowValue(row + 1) - rowValue(row));
}

double eyePupilForAge(double ageYears) {
    const double a = std::max(ageYears, 0.0) / 100.0;
    return 7.0 * std::exp(-0.5 * a * a);
}

double pointSourceThresholdMag(double backgroundNanolambert) {
    const double b = std::max(backgroundNanolambert, 0.0);
    const bool photopic = b > kPhotopicFromNl;
    const double c = photopic ? kPhotopicC : kScotopicC, k = photopic ? kPhotopicK : kScotopicK;
    const double t = 1.0 + std::sqrt(k * b);
    return -16.57 - 2.5 * std::log10(c * t * t);
}

double nanolambertFromMagArcsec2(double magArcsec2) { return 34.08 * std::exp(20.7233 - 0.92104 * magArcsec2); }
double magArcsec2FromNanolambert(double nanolambert) {
    return (20.7233 - std::log(std::max(nanolambert, 1e-30) / 34.08)) / 0.92104;
}

VisibilityConditions prepareVisibility(const VisibilitySetup& setup) {
    VisibilityConditions c;
    c.setup = setup;
    const TelescopeSetup& scope = setup.telescope;
    const ObserverProfile& observer = setup.observer;
    c.extinctionPerAirmass = extinctionCoefficient(setup.site);
    const double nightNl = nanolambertFromMagArcsec2(skyQualityBrightness(setup.site.skyQuality));
    const double skyNl = nightNl + sunMoonSkyNl(setup.sunMoon, c.extinctionPerAirmass, 0.0);
    c.skyZenithMagArcsec2 = magArcsec2FromNanolambert(skyNl);
    const double observerFactor = pointObserverFactor(observer);
    c.nakedEyeLimitMag = pointSourceThresholdMag(skyNl) - 2.5 * std::log10(observerFactor) - c.extinctionPerAirmass;
    c.eyePupilMm = eyePupilForAge(observer.ageYears);
    c.observerLogFactor = 0.4 * kExperienceThresholdMag[std::clamp(observer.experience, 0, 2)];
    c.scopeLimitMag = telescopeLimitingMagnitude(scope.apertureMm);
    const double d = std::max(scope.apertureMm, 1.0);
    c.minMagnification = d / kLargestExitPupilMm;
    c.maxMagnification = d / kSmallestExitPupilMm;
    // The formula's limit holds for a dark sky and the average observer; this sky and observer
    // move it by the difference of Schaefer's telescopic limits, each at its best magnification.
    const double referencePupil = eyePupilForAge(kReferenceAgeYears);
    const double formulaSkyNl = nanolambertFromMagArcsec2(kFormulaSkyMagArcsec2);
    double actual = 0, reference = 0;
    bestMagnificationFor(c.minMagnification, c.maxMagnification,
                         [&](double m) { return telescopicStarLimit(d, m, skyNl, c.eyePupilMm, observerFactor); }, actual);
    bestMagnificationFor(c.minMagnification, c.maxMagnification,
                         [&](double m) { return telescopicStarLimit(d, m, formulaSkyNl, referencePupil, 1.0); }, reference);
    c.starLimitShiftMag = actual - reference;
    for (double f : scope.eyepieceFocalMm)
        c.eyepieceMagnifications.push_back(f > 0 && scope.focalLengthMm > 0 ? scope.focalLengthMm / f : 0.0);
    return c;
}

VisibilityEstimate estimateVisibility(const VisibilityTarget& target, const VisibilityConditions& c) {
    VisibilityEstimate e;
    if (!target.magKnown || !std::isfinite(target.mag)) return e;
    e.known = true;
    const double zenithDeg = 90.0 - std::clamp(target.altitudeDeg, 0.0, 90.0);
    const double k = c.extinctionPerAirmass;
    const double x = airmass(zenithDeg);
    const double skyMag = c.skyZenithMagArcsec2 - 2.5 * std::log10(skyGradient(zenithDeg));
    const double d = std::max(c.setup.telescope.apertureMm, 1.0);
    const double sizeArcmin = target.minorArcmin > 0 ? std::min(target.minorArcmin, target.majorArcmin) : target.majorArcmin;
    e.extended = target.majorArcmin > 0 && !isPointType(target.typeCode);

    // Contrast reserve at a magnification (log10 units).
    double objectLogContrast = 0;
    if (e.extended) {
        e.surfaceBrightness = surfaceBrightnessMagArcsec2(target.mag, target.majorArcmin, target.minorArcmin);
        objectLogContrast = -0.4 * (e.surfaceBrightness + k * x - skyMag);
    }
    auto extendedReserve = [&](double m) {
        const double used = std::min(d / m, c.eyePupilMm);
        const double background = skyMag - 2.5 * std::log10(kTransmission) + 5.0 * std::log10(kBlackwellPupilMm / used);
        return objectLogContrast - (logThresholdContrast(background, m * sizeArcmin) + c.observerLogFactor);
    };
    const double starMargin = c.scopeLimitMag + c.starLimitShiftMag - (target.mag + k * (x - 1.0));
    double best = 0;
    if (e.extended) {
        // The ratio is the best contrast reserve over the range; a cluster is best looked at
        // with its own rule (the reserve alone, treating it as a disc, always asks the lowest power).
        e.bestMagnification = bestMagnificationFor(c.minMagnification, c.maxMagnification, extendedReserve, best);
        const double cluster = clusterMagnification(target.typeCode, target.majorArcmin, d,
                                                    c.minMagnification, c.maxMagnification);
        if (cluster > 0) e.bestMagnification = cluster;
    } else {
        const double skyNl = nanolambertFromMagArcsec2(skyMag);
        const double factor = pointObserverFactor(c.setup.observer);
        e.bestMagnification = bestMagnificationFor(
            c.minMagnification, c.maxMagnification,
            [&](double m) { return telescopicStarLimit(d, m, skyNl, c.eyePupilMm, factor); }, best);
        best = 0.4 * starMargin;
    }
    e.ratio = target.mag >= c.scopeLimitMag ? 0.0 : std::max(0.0, 1.0 + best);
    e.word = visibilityWord(e.ratio);

    // The eyepiece of the database nearest the best magnification (in ratio), preferring those
    // inside the useful range.
    double bestDistance = 1e300;
    for (std::size_t i = 0; i < c.eyepieceMagnifications.size(); ++i) {
        const double m = c.eyepieceMagnifications[i];
        if (!(m > 0)) continue;
        const bool inside = m >= c.minMagnification * 0.999 && m <= c.maxMagnification * 1.001;
        const double distance = std::abs(std::log(m / e.bestMagnification)) + (inside ? 0.0 : 100.0);
        if (distance < bestDistance) {
            bestDistance = distance;
            e.eyepieceIndex = static_cast<int>(i);
            e.eyepieceMagnification = m;
        }
    }
    return e;
}

VisibilitySetup visibilitySetupFromPreferences(const Preferences& p, const std::vector<EyepieceRecord>& eyepieces,
                                               const SunMoonState& sunMoon) {
    VisibilitySetup s;
    s.site.skyQuality = p.skyQuality;
    s.site.heightM = p.altitudeM;
    s.site.latitudeDeg = p.latitudeDeg;
    s.site.temperatureC = p.temperatureC;
    s.site.pressureMbar = p.pressureMbar;
    s.site.humidityPct = p.humidityPct;
    s.site.month = p.moment.month;
    s.sunMoon = sunMoon;
    s.observer.ageYears = labelNumber("ageIndex", p.ageIndex, kReferenceAgeYears);
    s.observer.snellenRatio = labelNumber("visionIndex", p.visionIndex, 10.0) / 10.0;
    s.observer.experience = p.experience;
    s.telescope.apertureMm = labelNumber("scopeDiameterIndex", p.scopeDiameterIndex, 200.0);
    s.telescope.focalLengthMm = s.telescope.apertureMm * labelNumber("fRatioIndex", p.fRatioIndex, 6.0);
    for (const EyepieceRecord& r : eyepieces)
        s.telescope.eyepieceFocalMm.push_back(std::isfinite(r.focalLengthMm) && r.focalLengthMm > 0 ? r.focalLengthMm : 0.0);
    return s;
}

}  // namespace nocturnel
