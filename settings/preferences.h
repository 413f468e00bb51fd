#pragma once
// The one process-wide settings record. Every subsystem reads it in place; start-up fills it
// with defaults and brings every enumerated field back into range (resetAndValidate), after
// which no module re-checks it. Enumerated choices hold the index of the chosen entry in the
// list as shown (see preference_lists.h for the lists and the reverse-insertion rule).
// Angles are degrees (f32); longitude is positive WEST.
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "settings/selection_criteria.h"

namespace nocturnel {

// Local civil date and time at the site (never UT).
struct ObservingMoment {
    int32_t year = 2000;
    int32_t month = 1;
    int32_t day = 1;
    int32_t hour = 0;
    int32_t minute = 0;
    int32_t second = 0;
};

// One stored site ("Site1" .. "Site3").
struct SiteMemory {
    char name[12] = {};          // at most 10 characters are copied in or out
    float latitudeDeg = 0;       // degrees, north positive
    float longitudeDeg = 0;      // degrees, WEST positive
    int16_t skyQuality = 3;      // index, see the sky-quality list
    int16_t altitudeM = 0;       // metres
    int16_t utcOffsetMin = 0;    // minutes, local = UT + offset (daylight saving included)
    int16_t dstFlag = 0;         // 1 while daylight saving is in force
};

// One star of the two-star alignment (128 bytes in the preferences area).
struct AlignmentStarRecord {
    char name[48] = {};   // star name shown as "Star1" / "Star2" in the report
    double time = 0;      // observation time as an angle, degrees (hours x 15)
    double ra = 0;        // right ascension, degrees
    double dec = 0;       // declination, degrees
    double hor = 0;       // first telescope angle, degrees (azimuth, or the RA-axis reading)
    double elv = 0;       // second telescope angle, degrees (altitude, or the Dec-axis reading)
    char reserved[40] = {};
};
static_assert(sizeof(AlignmentStarRecord) == 128);

inline constexpr int kZoomTableSlots = 11;   // the per-zoom tables hold 11 entries (levels above 10 use entry 10)
inline constexpr int kDisplayBoxCount = 15;  // page 5/6 display on/off boxes, in the order the page lists them
inline constexpr int kScrollBoxCount = 4;    // page 5/6 scroll on/off boxes

struct Preferences {
    // ---- Site block (current site) ----
    char siteName[12] = {};
    float latitudeDeg = 48.1f;
    float longitudeDeg = 1.8f;     // positive WEST
    float sinLatitude = 0;         // kept in step with latitudeDeg (setSitePosition)
    float cosLatitude = 0;
    int16_t altitudeM = 0;
    int16_t utcOffsetMin = 60;     // local = UT + offset, daylight saving included
    int16_t temperatureC = 10;
    int16_t pressureMbar = 1013;
    int16_t humidityPct = 40;
    int16_t skyQuality = 3;        // 0 "Bright town" .. 4 "Desert/Mountain"
    SiteMemory siteMemory[3] = {};
    int16_t dstFlag = 0;

    // ---- Telescope link block (page 1/6 "Interfaces") ----
    int32_t scopeDrive = 5;        // DriveType code
    int32_t scopePort = 0;         // index into the serial port-name list (0 = no port)
    int32_t gpsPort = 0;
    int32_t cameraPort = 0;
    int32_t extraPort = 0;         // the record's further port number
    int32_t portSetting = 2;
    int32_t raFormat = 2;          // angle text style for hours, 0..3
    int32_t decFormat = 2;         // angle text style for degrees, 0..3
    int32_t connectionMode = 0;    // 0 "Persistant", 1 "Upon need"
    int32_t alignMethod = 1;       // 0 "Nocturnel 2 Stars", 1 "External" (as shown)
    int32_t mountType = 0;         // 0 "Equatorial", 1 "Azimuth"
    int32_t encoderAzSteps = -32127;   // counts per turn; negative reverses the axis
    int32_t encoderAltSteps = -32127;
    char scopeDevice[64] = {};     // a device path offered at the end of the port list (any path, a pty included)

    // ---- Computation (page 1/6) ----
    int32_t correction = 0;        // pointing frame: 0 "Geocentric", 1 "Geoc. + Refract", 2 "Topocentric", 3 "Topo + Refract"
    int32_t horizonIndex = 0;      // 0 "0°" .. 6 "10°"

    // ---- Page 2/6 ----
    int32_t experience = 0;        // 0 "Beginner", 1 "Hobbyst", 2 "Expert"
    int32_t ageIndex = 0;          // 0 "15" .. 8 ">95"
    int32_t visionIndex = 0;       // 0 "2/10" .. 10 "12/10"
    int32_t scopeDiameterIndex = 0;
    int32_t fRatioIndex = 0;       // 0 "4" .. 11 "15"
    int32_t maxSelectedItems = 0;
    int32_t timeUpdate = 0;        // 0 "Automatic", 1 "Manual"
    int32_t nightMode = 0;         // 0 "Off", 1 "Dark", 2 "Medium", 3 "Bright"

    // ---- Page 3/6 (sky chart global settings) ----
    int32_t starColor = 0;         // 0 "Color", 1 "Black&White"
    int32_t background = 0;        // 0 "Black", 1 "Dark Blue", 2 "White"
    int32_t lineColor = 0;         // 0 "Blue", 1 "Gray", 2 "Black"
    int32_t starsChoice = 0;       // 0 "Only Constellation", 1 "Only default stars"
    int32_t cardCatalog = 5;       // star catalogue level: 0 "No expansion card", 1 "Hipparchos 16K" .. 6 "Tycho 2.5 Million";
                                   // the catalogue builder makes the Hipparcos files and the Tycho 390K card (from Stellarium's
                                   // star catalogue), so a fresh record uses 5 "Tycho 390K"
    int32_t constLines = 0;        // 0 "Classic", 1 "Rey Lines"
    int32_t eyepieceIndex = 0;
    int32_t chartType = 0;         // 0 "Sky Map" .. 4 "Equatorial Sky"
    int32_t fontSize = 0;          // 0 "Small", 1 "Medium", 2 "Large"
    int32_t timeStep = 0;          // 0 "1 mn" .. 16 "90 Days"
    int32_t cursorMode = 0;        // 0 "Blinking", 1 "None"

    // ---- Page 4/6 (per zoom level) ----
    int32_t zoomStarLimit[kZoomTableSlots] = {};
    int32_t zoomObjectLimit[kZoomTableSlots] = {};
    int32_t zoomViewMode[kZoomTableSlots] = {};

    // ---- Page 5/6 ----
    int32_t displayBox[kDisplayBoxCount] = {1, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0};  // names, lines, object names, ecliptic on  // "Const. Names", "FOV: Eyepiece", "Const. Lines", "FOV: CCD", "Obj. Names",
                                                // "Alt/Az Grid", "Obj. Drilldown", "Hide Grid", "Stars Legend", "Hide ToolBar",
                                                // "Stars Symbols", "Hide InfoBar", "Ecliptic", "Hide Compass", "Telrad"
    float telradRingDeg[3] = {0.5f, 2.0f, 4.0f};
    int32_t scrollBox[kScrollBoxCount] = {};    // "More Stars", "More Objects", "Show Grid", "Stars as Pixel"

    // ---- Page 6/6 ----
    float grsLongitudeDeg = 104.0f;
    float deltaTSeconds = 65.4f;   // TT - UT, seconds
    int32_t deltaTFormula = 0;     // 0 "Chapront&Touzé 1997", 1 "JPL Horizon"

    // ---- Alignment and encoders ----
    int32_t encoderAltOffset = 0;  // counts
    int32_t encoderAzOffset = 0;
    AlignmentStarRecord alignStar[2] = {};       // working records
    AlignmentStarRecord savedAlignStar[2] = {};  // saved copies
    double alignmentJd = 0;        // UT Julian date of the last alignment (0: none)
    int32_t hasSavedAlignment = 0;
    int32_t savedEncoderAltOffset = 0;  // encoder offsets of the saved alignment (the live ones are reset at start)
    int32_t savedEncoderAzOffset = 0;

    // ---- Telescope protocol options ----
    int32_t nexstarPrecise = 0;        // use the 24-bit NexStar commands
    double nexstarRaOffsetHours = 0;   // subtracted on read, added on goto
    double nexstarDecOffsetDeg = 0;
    int32_t simulatedScope = 0;        // LX200 and encoder simulators answer instead of the port

    // ---- Chart view ----
    int32_t chartZoomLevel = 0;        // 0..12
    int32_t chartProjectionMode = 0;   // 0 zenithal stereographic, 1 rectangular alt-azimuth
    int32_t chartRotationDeg = 0;      // view rotation, whole degrees

    // ---- Other ----
    char userCatalogFile[32] = {};     // "nocturnel_user_catalog.pdb"
    int32_t catalogEpochYear = 1950;
    ObservingMoment moment;            // the current observing moment, local civil time

    // ---- SkyRoamer ----
    SelectionCriteria selection;       // kept last, so a record saved before it existed reads as a prefix
};
static_assert(std::is_trivially_copyable_v<Preferences>);

// The single process-wide record.
Preferences& prefs();

// Start-up step 1 on a record: the current site becomes "None" at 48.1 N, 1.8 W, UT+60 min,
// with its sine/cosine caches, and the drive code 5. A fresh Preferences{} plus this is the
// record of a first start.
void applyStartDefaults(Preferences& p);
// Start-up steps 2..8: every field brought back into range by replacement, the fields that are
// fixed at every start forced, the observing moment taken from the machine clock.
void validatePreferences(Preferences& p);
// Steps 1..8 in order (a full reset of the site block and the forced fields).
void resetAndValidatePreferences(Preferences& p);
// A fresh record after a full reset: what a first start or "prefs reset" gives.
Preferences defaultPreferences();

// Stores latitude (degrees north), longitude (degrees WEST) and the UT offset (minutes) of the
// current site, refreshing sinLatitude/cosLatitude in the same step.
void setSitePosition(Preferences& p, double latitudeDeg, double longitudeWestDeg, int utcOffsetMin);
void setSitePosition(double latitudeDeg, double longitudeWestDeg, int utcOffsetMin);  // on prefs()

// Copies text into a fixed char field, cut to at most maxChars characters and NUL-terminated.
template <std::size_t N>
void copyFixedText(char (&field)[N], const char* text, std::size_t maxChars = N - 1);

template <std::size_t N>
void copyFixedText(char (&field)[N], const char* text, std::size_t maxChars) {
    if (maxChars > N - 1) maxChars = N - 1;
    std::size_t n = 0;
    while (text && n < maxChars && text[n] != '\0') ++n;
    std::memset(field, 0, N);
    if (n) std::memcpy(field, text, n);
}

}  // namespace nocturnel
