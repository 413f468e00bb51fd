// The preferences record: the global instance, the start-up reset and validation, and the
// site position setter that keeps the latitude caches in step.
#include "settings/preferences.h"

#include <cmath>

#include "settings/machine_clock.h"
#include "settings/preference_lists.h"

namespace nocturnel {

Preferences& prefs() {
    static Preferences record;
    return record;
}

namespace {

constexpr double kDegToRad = 0.0174532925199433;

template <typename T>
void clampOr(T& field, long long low, long long high, T fallback) {
    if (field < low || field > high) field = fallback;
}

// A float/double angle outside [low, high] (NaN included) becomes low.
template <typename T>
void clampAngleToLow(T& value, double low, double high) {
    if (!(value >= low && value <= high)) value = static_cast<T>(low);
}

// Enumerated field stored as a list index: outside the list, 0.
void clampToList(int32_t& field, std::string_view name) {
    const PreferenceList* list = findPreferenceList(name);
    const int size = list ? listSize(*list) : 1;
    clampOr<int32_t>(field, 0, size - 1, 0);
}

void terminate(char* text, std::size_t size) { text[size - 1] = '\0'; }

void refreshLatitudeCaches(Preferences& p) {
    const double radians = static_cast<double>(p.latitudeDeg) * kDegToRad;
    p.sinLatitude = static_cast<float>(std::sin(radians));
    p.cosLatitude = static_cast<float>(std::cos(radians));
}

}  // namespace

void setSitePosition(Preferences& p, double latitudeDeg, double longitudeWestDeg, int utcOffsetMin) {
    p.latitudeDeg = static_cast<float>(latitudeDeg);
    refreshLatitudeCaches(p);
    p.longitudeDeg = static_cast<float>(longitudeWestDeg);
    p.utcOffsetMin = static_cast<int16_t>(utcOffsetMin);
}

void setSitePosition(double latitudeDeg, double longitudeWestDeg, int utcOffsetMin) {
    setSitePosition(prefs(), latitudeDeg, longitudeWestDeg, utcOffsetMin);
}

void applyStartDefaults(Preferences& p) {
    copyFixedText(p.siteName, "None");
    p.longitudeDeg = 1.8f;
    p.latitudeDeg = 48.1f;
    p.utcOffsetMin = 60;
    p.cosLatitude = static_cast<float>(std::cos(0.8395033435776618));  // cos 48.1 degrees
    p.sinLatitude = static_cast<float>(std::sin(static_cast<double>(p.latitudeDeg) * kDegToRad));
    p.scopeDrive = 5;
}

// Steps 2..8. Where the start-up rules name a field this record does not have, the mapping
// onto the fields of preferences.h is:
//   two-valued flags 0..1      connectionMode, mountType, timeUpdate, starColor, starsChoice,
//                              constLines, cursorMode, deltaTFormula, the page 5/6 boxes,
//                              nexstarPrecise, simulatedScope, chartProjectionMode, hasSavedAlignment
//   four/three-valued choices  correction, nightMode (0..3); experience, background, lineColor,
//                              fontSize (their three-entry lists)
//   eight-valued choice        ageIndex, whose list has nine entries (0..8)
//   seven-valued choices       horizonIndex, cardCatalog (0..6)
//   fifteen-valued choice      timeStep, whose list has seventeen entries (0..16)
//   the field bounded by 400   eyepieceIndex (a row of the eyepiece database)
//   other lists                visionIndex 0..10, fRatioIndex 0..11, chartType 0..4, each
//                              clamped to the length of its list in preference_lists.cpp
//   the further port number    extraPort (0..9, step 5)
//   chart view                 chartZoomLevel 0..12, chartRotationDeg -359..359
// The fields bounded by 20000/10000, the two link fields forced to 8 and 2, the three counters
// forced to 5, 20 and 40 and the further flag forced to 1 have no counterpart in this record.
void validatePreferences(Preferences& p) {
    terminate(p.siteName, sizeof p.siteName);
    terminate(p.scopeDevice, sizeof p.scopeDevice);
    terminate(p.userCatalogFile, sizeof p.userCatalogFile);
    for (auto& star : p.alignStar) terminate(star.name, sizeof star.name);
    for (auto& star : p.savedAlignStar) terminate(star.name, sizeof star.name);

    // 2. Site position: the lower bound, so that a damaged position is visibly wrong.
    clampAngleToLow(p.latitudeDeg, -90.0, 90.0);
    clampAngleToLow(p.longitudeDeg, -180.0, 180.0);
    refreshLatitudeCaches(p);

    // 3. Site values.
    p.skyQuality = 3;
    clampOr<int16_t>(p.altitudeM, 0, 9000, 0);
    clampOr<int16_t>(p.utcOffsetMin, -720, 720, -720);
    clampOr<int16_t>(p.dstFlag, 0, 1, 0);
    p.temperatureC = 10;
    p.pressureMbar = 1013;
    p.humidityPct = 40;

    // 4. The three stored sites.
    for (auto& m : p.siteMemory) {
        terminate(m.name, sizeof m.name);
        clampAngleToLow(m.latitudeDeg, -90.0, 90.0);
        clampAngleToLow(m.longitudeDeg, -180.0, 180.0);
        clampOr<int16_t>(m.skyQuality, 0, 4, 0);
        m.skyQuality = 3;
        clampOr<int16_t>(m.altitudeM, 0, 9000, 0);
        clampOr<int16_t>(m.utcOffsetMin, -720, 720, -720);
        clampOr<int16_t>(m.dstFlag, 0, 1, 0);
    }

    // 5. Serial ports and the forced formats.
    for (int32_t* port : {&p.scopePort, &p.gpsPort, &p.cameraPort, &p.extraPort}) clampOr<int32_t>(*port, 0, 9, 0);
    p.portSetting = 2;
    p.raFormat = 2;
    p.decFormat = 2;

    // 6. The other enumerated fields, then the fields fixed at every start.
    struct ListField { std::string_view name; int32_t Preferences::*member; };
    static constexpr ListField kListFields[] = {
        {"connectionMode", &Preferences::connectionMode}, {"mountType", &Preferences::mountType},
        {"timeUpdate", &Preferences::timeUpdate},         {"starColor", &Preferences::starColor},
        {"starsChoice", &Preferences::starsChoice},       {"constLines", &Preferences::constLines},
        {"cursorMode", &Preferences::cursorMode},         {"deltaTFormula", &Preferences::deltaTFormula},
        {"correction", &Preferences::correction},         {"nightMode", &Preferences::nightMode},
        {"experience", &Preferences::experience},         {"background", &Preferences::background},
        {"lineColor", &Preferences::lineColor},           {"fontSize", &Preferences::fontSize},
        {"maxSelectedItems", &Preferences::maxSelectedItems}, {"ageIndex", &Preferences::ageIndex},
        {"scopeDiameterIndex", &Preferences::scopeDiameterIndex}, {"horizonIndex", &Preferences::horizonIndex},
        {"cardCatalog", &Preferences::cardCatalog},       {"timeStep", &Preferences::timeStep},
        {"visionIndex", &Preferences::visionIndex},       {"fRatioIndex", &Preferences::fRatioIndex},
        {"chartType", &Preferences::chartType},
    };
    for (const auto& f : kListFields) clampToList(p.*f.member, f.name);
    for (auto& box : p.displayBox) clampOr<int32_t>(box, 0, 1, 0);
    for (auto& box : p.scrollBox) clampOr<int32_t>(box, 0, 1, 0);
    for (int32_t* flag : {&p.nexstarPrecise, &p.simulatedScope, &p.chartProjectionMode, &p.hasSavedAlignment})
        clampOr<int32_t>(*flag, 0, 1, 0);
    clampOr<int32_t>(p.eyepieceIndex, 0, 400, 0);
    clampOr<int32_t>(p.chartZoomLevel, 0, 12, 0);
    clampOr<int32_t>(p.chartRotationDeg, -359, 359, 0);
    clampOr<int32_t>(p.encoderAzSteps, -32127, 32127, -32127);
    clampOr<int32_t>(p.encoderAltSteps, -32127, 32127, -32127);
    if (!(std::fabs(p.nexstarRaOffsetHours) <= 24.0)) p.nexstarRaOffsetHours = 0;
    if (!(std::fabs(p.nexstarDecOffsetDeg) <= 90.0)) p.nexstarDecOffsetDeg = 0;
    if (!std::isfinite(p.alignmentJd)) p.alignmentJd = 0;
    static constexpr float kTelradDefaults[3] = {0.5f, 2.0f, 4.0f};
    for (int i = 0; i < 3; ++i)
        if (!(p.telradRingDeg[i] > 0.0f && p.telradRingDeg[i] <= 180.0f)) p.telradRingDeg[i] = kTelradDefaults[i];

    p.alignMethod = 1;
    p.grsLongitudeDeg = 104.0f;
    for (int i = 0; i < kZoomTableSlots; ++i) {
        clampOr<int32_t>(p.zoomViewMode[i], 0, 3, 0);
        p.zoomStarLimit[i] = 2;
        p.zoomObjectLimit[i] = 3;
        p.zoomViewMode[i] = 0;
    }
    p.encoderAltOffset = 0;
    p.encoderAzOffset = 0;

    // 7. DeltaT: 40 marks a value that was never set.
    if (!(p.deltaTSeconds >= 40.0f && p.deltaTSeconds <= 200.0f)) p.deltaTSeconds = 40.0f;
    if (p.deltaTSeconds == 40.0f) p.deltaTSeconds = 65.4f;

    // 8. The observing moment from the machine clock, and the fixed catalogue settings.
    p.moment = localMomentFromClock(p.utcOffsetMin);
    p.catalogEpochYear = 1950;
    copyFixedText(p.userCatalogFile, "nocturnel_user_catalog.pdb");
}

void resetAndValidatePreferences(Preferences& p) {
    applyStartDefaults(p);
    validatePreferences(p);
}

Preferences defaultPreferences() {
    Preferences p;
    resetAndValidatePreferences(p);
    return p;
}

}  // namespace nocturnel
