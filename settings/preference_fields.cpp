#include "settings/preference_fields.h"

#include <array>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <type_traits>
#include <vector>
#include <string>
#include <variant>

#include "settings/location_page.h"
#include "settings/message.h"

namespace nocturnel {
namespace {

using P = Preferences;
constexpr double kMaxI32 = 2147483647.0;

// One element of an array field of the record (page 5/6 boxes, Telrad ring sizes).
struct Int32Element {
    int32_t* (*array)(P&);
    int index;
};
struct FloatElement {
    float* (*array)(P&);
    int index;
};

// Where a field lives in the record.
using Member = std::variant<std::monostate, int32_t P::*, int16_t P::*, float P::*, double P::*, Int32Element,
                            FloatElement>;

// Names of the array elements, "displayBox[0]" ..., kept for the whole run (fields refer to them).
std::string_view elementName(const char* array, int index) {
    static std::vector<std::unique_ptr<std::string>> names;
    names.push_back(std::make_unique<std::string>(std::string(array) + "[" + std::to_string(index) + "]"));
    return *names.back();
}

// The page 5/6 boxes in the order of Preferences::displayBox and scrollBox.
constexpr std::array<std::string_view, kDisplayBoxCount> kDisplayBoxLabels = {
    "Const. Names", "FOV: Eyepiece", "Const. Lines", "FOV: CCD", "Obj. Names", "Alt/Az Grid", "Obj. Drilldown",
    "Hide Grid", "Stars Legend", "Hide ToolBar", "Stars Symbols", "Hide InfoBar", "Ecliptic", "Hide Compass", "Telrad"};
constexpr std::array<std::string_view, kScrollBoxCount> kScrollBoxLabels = {"More Stars", "More Objects", "Show Grid",
                                                                             "Stars as Pixel"};
constexpr std::array<std::string_view, 3> kTelradLabels = {"Telrad 1:", "Telrad 2:", "Telrad 3:"};

// Reads an element's value as a number, and writes one.
double elementValue(P& p, const Int32Element& e) { return e.array(p)[e.index]; }
double elementValue(P& p, const FloatElement& e) { return e.array(p)[e.index]; }

struct FieldEntry {
    PreferenceField info;
    Member member;
};

FieldEntry listField(std::string_view name, int32_t P::*m, std::string_view meaning, bool fixed = false) {
    return {{name, FieldType::Index, 0, 0, false, 0, fixed, meaning}, m};
}
FieldEntry intField(std::string_view name, Member m, double low, double high, std::string_view meaning,
                    bool fixed = false) {
    return {{name, FieldType::Integer, low, high, false, 0, fixed, meaning}, m};
}
FieldEntry realField(std::string_view name, Member m, double low, double high, std::string_view meaning,
                     bool fixed = false, bool lowExclusive = false) {
    return {{name, FieldType::Real, low, high, lowExclusive, 0, fixed, meaning}, m};
}

const std::vector<FieldEntry>& entries() {
    static const std::vector<FieldEntry> table = [] {
    std::vector<FieldEntry> t = {
        {{"siteName", FieldType::Text, 0, 0, false, 11, false, "name of the current site"}, {}},
        realField("latitudeDeg", &P::latitudeDeg, -90, 90, "site latitude, degrees north"),
        realField("longitudeDeg", &P::longitudeDeg, -180, 180, "site longitude, degrees WEST positive"),
        intField("altitudeM", &P::altitudeM, 0, 31999, "height above sea level, metres"),
        intField("utcOffsetMin", &P::utcOffsetMin, -1439, 1439, "local = UT + offset, minutes, daylight saving included"),
        intField("dstFlag", &P::dstFlag, 0, 1, "daylight saving in force (changes utcOffsetMin by 60)"),
        intField("temperatureC", &P::temperatureC, -70, 59, "air temperature, C", true),
        intField("pressureMbar", &P::pressureMbar, 900, 1100, "air pressure, mbar", true),
        intField("humidityPct", &P::humidityPct, 0, 99, "relative humidity, percent", true),
        {{"skyQuality", FieldType::Index, 0, 0, false, 0, true, "Sky quality"}, &P::skyQuality},
        listField("scopeDrive", &P::scopeDrive, "Scope Drive (the drive code)"),
        intField("scopePort", &P::scopePort, 0, 9, "Scope Port"),
        intField("gpsPort", &P::gpsPort, 0, 9, "GPS Port"),
        intField("cameraPort", &P::cameraPort, 0, 9, "Camera Port"),
        intField("extraPort", &P::extraPort, 0, 9, "further port number"),
        intField("portSetting", &P::portSetting, 0, 9, "setting kept beside the ports", true),
        listField("raFormat", &P::raFormat, "RA Format", true),
        listField("decFormat", &P::decFormat, "Dec Format", true),
        listField("connectionMode", &P::connectionMode, "Connection"),
        listField("alignMethod", &P::alignMethod, "Align Method", true),
        listField("mountType", &P::mountType, "Mount Type"),
        intField("encoderAzSteps", &P::encoderAzSteps, -32127, 32127, "encoder steps per turn, azimuth (negative reverses)"),
        intField("encoderAltSteps", &P::encoderAltSteps, -32127, 32127, "encoder steps per turn, altitude"),
        listField("correction", &P::correction, "Correction"),
        listField("horizonIndex", &P::horizonIndex, "Horizon"),
        listField("experience", &P::experience, "Experience"),
        listField("ageIndex", &P::ageIndex, "Age"),
        listField("visionIndex", &P::visionIndex, "Vision"),
        listField("scopeDiameterIndex", &P::scopeDiameterIndex, "Diameter (mm)"),
        listField("fRatioIndex", &P::fRatioIndex, "F-Ratio"),
        listField("maxSelectedItems", &P::maxSelectedItems, "Max Selected items"),
        listField("timeUpdate", &P::timeUpdate, "Time Update"),
        listField("nightMode", &P::nightMode, "Night Mode"),
        listField("starColor", &P::starColor, "Star Color"),
        listField("background", &P::background, "Background"),
        listField("lineColor", &P::lineColor, "Line Color"),
        listField("starsChoice", &P::starsChoice, "Stars"),
        listField("cardCatalog", &P::cardCatalog, "Card Catalog"),
        listField("constLines", &P::constLines, "Const. Lines"),
        intField("eyepieceIndex", &P::eyepieceIndex, 0, 400, "Eyepiece (row of the eyepiece database)"),
        listField("chartType", &P::chartType, "Chart Type"),
        listField("fontSize", &P::fontSize, "Font Size"),
        listField("timeStep", &P::timeStep, "Time Step"),
        listField("cursorMode", &P::cursorMode, "Cursor"),
        realField("grsLongitudeDeg", &P::grsLongitudeDeg, 0, 360, "GRS Longitude, degrees", true),
        realField("deltaTSeconds", &P::deltaTSeconds, 40, 200, "Current DeltaT, TT - UT seconds", false, true),
        listField("deltaTFormula", &P::deltaTFormula, "DeltaT Formula"),
        intField("encoderAltOffset", &P::encoderAltOffset, -kMaxI32, kMaxI32, "Encoder Alt offset", true),
        intField("encoderAzOffset", &P::encoderAzOffset, -kMaxI32, kMaxI32, "Encoder Az offset", true),
        intField("nexstarPrecise", &P::nexstarPrecise, 0, 1, "use the 24-bit NexStar commands"),
        realField("nexstarRaOffsetHours", &P::nexstarRaOffsetHours, -24, 24, "NexStar RA offset, hours"),
        realField("nexstarDecOffsetDeg", &P::nexstarDecOffsetDeg, -90, 90, "NexStar Dec offset, degrees"),
        intField("simulatedScope", &P::simulatedScope, 0, 1, "simulators answer instead of the port"),
        intField("chartZoomLevel", &P::chartZoomLevel, 0, 12, "chart zoom level"),
        intField("chartProjectionMode", &P::chartProjectionMode, 0, 1, "0 zenithal stereographic, 1 rectangular"),
        intField("chartRotationDeg", &P::chartRotationDeg, -359, 359, "chart rotation, whole degrees"),
        {{"scopeDevice", FieldType::Text, 0, 0, false, 63, false, "device path offered after the port list"}, {}},
        intField("catalogEpochYear", &P::catalogEpochYear, 1950, 1950, "equinox year kept by the record", true),
    };
        for (int i = 0; i < kDisplayBoxCount; ++i)
            t.push_back(intField(elementName("displayBox", i), Int32Element{[](P& p) { return p.displayBox; }, i}, 0, 1,
                                 kDisplayBoxLabels[i]));
        for (int i = 0; i < kScrollBoxCount; ++i)
            t.push_back(intField(elementName("scrollBox", i), Int32Element{[](P& p) { return p.scrollBox; }, i}, 0, 1,
                                 kScrollBoxLabels[i]));
        for (int i = 0; i < 3; ++i)
            t.push_back(realField(elementName("telradRingDeg", i),
                                  FloatElement{[](P& p) { return p.telradRingDeg; }, i}, 0, 20, kTelradLabels[i]));
        return t;
    }();
    return table;
}

const FieldEntry* findEntry(std::string_view name) {
    for (const auto& e : entries())
        if (e.info.name == name) return &e;
    return nullptr;
}

const PreferenceList* listOf(const PreferenceField& field) { return findPreferenceList(field.name); }

std::string fixedText(const char* text, std::size_t size) {
    std::size_t n = 0;
    while (n < size && text[n] != '\0') ++n;
    return std::string(text, n);
}

std::optional<double> readNumber(std::string_view text, bool wholeOnly) {
    const std::string s(text);
    if (s.empty() || s.size() > 40 || std::isspace(static_cast<unsigned char>(s[0]))) return std::nullopt;
    char* end = nullptr;
    errno = 0;
    const double v = std::strtod(s.c_str(), &end);
    if (errno != 0 || end != s.c_str() + s.size() || !std::isfinite(v)) return std::nullopt;
    if (wholeOnly && v != std::floor(v)) return std::nullopt;
    if (s.find_first_of("xXpPnN") != std::string::npos) return std::nullopt;  // no hex, inf or nan spellings
    return v;
}

std::string rangeText(const PreferenceField& f) {
    char buf[96];
    std::snprintf(buf, sizeof buf, "from %g%s to %g", f.low, f.lowExclusive ? " (excluded)" : "", f.high);
    return buf;
}

}  // namespace

std::span<const PreferenceField> preferenceFields() {
    static const std::vector<PreferenceField> infos = [] {
        std::vector<PreferenceField> v;
        for (const auto& e : entries()) v.push_back(e.info);
        return v;
    }();
    return infos;
}

const PreferenceField* findPreferenceField(std::string_view name) {
    for (const auto& f : preferenceFields())
        if (f.name == name) return &f;
    return nullptr;
}

double preferenceNumber(const Preferences& p, const PreferenceField& field) {
    const FieldEntry* e = findEntry(field.name);
    if (!e) return 0;
    return std::visit(
        [&p](auto m) -> double {
            using M = decltype(m);
            if constexpr (std::is_same_v<M, std::monostate>) return 0;
            else if constexpr (std::is_same_v<M, Int32Element> || std::is_same_v<M, FloatElement>)
                return elementValue(const_cast<P&>(p), m);
            else return static_cast<double>(p.*m);
        },
        e->member);
}

std::string preferenceText(const Preferences& p, const PreferenceField& field) {
    if (field.name == "siteName") return fixedText(p.siteName, sizeof p.siteName);
    if (field.name == "scopeDevice") return fixedText(p.scopeDevice, sizeof p.scopeDevice);
    if (field.type == FieldType::Index) {
        if (const PreferenceList* list = listOf(field))
            return std::string(labelAtIndex(*list, static_cast<int>(preferenceNumber(p, field))));
        return {};
    }
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.10g", preferenceNumber(p, field));
    return buf;
}

bool setPreferenceField(Preferences& p, std::string_view name, std::string_view value) {
    const FieldEntry* e = findEntry(name);
    if (!e) {
        showMessage("Unknown preference " + std::string(name), "Use \"prefs show\" for the field names.");
        return false;
    }
    const PreferenceField& f = e->info;
    const std::string valueText(value);
    auto refuse = [&](const std::string& why) {
        showMessage("Invalid value \"" + valueText + "\" for " + std::string(name), why);
        return false;
    };

    if (f.type == FieldType::Text) {
        if (value.size() > f.maxChars)
            return refuse("At most " + std::to_string(f.maxChars) + " characters.");
        if (value.find('\0') != std::string_view::npos) return refuse("The text holds a NUL character.");
        if (name == "siteName") copyFixedText(p.siteName, valueText.c_str());
        else copyFixedText(p.scopeDevice, valueText.c_str());
        return true;
    }

    double number = 0;
    if (f.type == FieldType::Index) {
        const PreferenceList* list = listOf(f);
        if (!list) return refuse("This field has no list.");
        int index = indexOfLabel(*list, value);
        if (index < 0) {
            const auto n = readNumber(value, true);
            if (!n || *n < 0 || *n >= listSize(*list))
                return refuse("Give an index from 0 to " + std::to_string(listSize(*list) - 1) +
                              " or the text of an entry.");
            index = static_cast<int>(*n);
        }
        number = index;
    } else {
        const auto n = readNumber(value, f.type == FieldType::Integer);
        if (!n) return refuse(f.type == FieldType::Integer ? "A whole number is expected." : "A number is expected.");
        const bool aboveLow = f.lowExclusive ? *n > f.low : *n >= f.low;
        if (!aboveLow || *n > f.high) return refuse("The value must be " + rangeText(f) + ".");
        number = *n;
    }

    if (name == "latitudeDeg") {
        setSitePosition(p, number, p.longitudeDeg, p.utcOffsetMin);
        return true;
    }
    if (name == "longitudeDeg") {
        setSitePosition(p, p.latitudeDeg, number, p.utcOffsetMin);
        return true;
    }
    if (name == "dstFlag") {
        // As the Location page's box: the offset gains or loses the hour at once, within the
        // offsets the page accepts.
        const int newOffset = p.utcOffsetMin + (number != 0 ? 60 : -60);
        if ((p.dstFlag != 0) != (number != 0) && (newOffset < -1439 || newOffset > 1439))
            return refuse("The UT offset would leave -1439..1439 minutes.");
        LocationPageFields page;
        setDaylightSaving(p, page, number != 0);
        return true;
    }
    std::visit(
        [&p, number](auto m) {
            using M = decltype(m);
            if constexpr (std::is_same_v<M, Int32Element>) m.array(p)[m.index] = static_cast<int32_t>(number);
            else if constexpr (std::is_same_v<M, FloatElement>) m.array(p)[m.index] = static_cast<float>(number);
            else if constexpr (!std::is_same_v<M, std::monostate>)
                p.*m = static_cast<std::remove_reference_t<decltype(p.*m)>>(number);
        },
        e->member);
    return true;
}

}  // namespace nocturnel
