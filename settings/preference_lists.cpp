#include "settings/preference_lists.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "settings/text_encoding.h"

namespace nocturnel {
namespace {

using sv = std::string_view;

// "Scope Drive": added from "SkyCommander" to "None", so the list shows the drive codes in
// order, "None" (code 0) at the top.
constexpr std::array<sv, 20> kScopeDrive = {
    "SkyCommander", "SiderealTech", "Losmandy", "Intelliscope", "Ultima2000", "Takahashi", "ServoCat",
    "Ouranos", "NGC-Max", "NexStarGPS,GT,CGE", "NexStar old GT", "Nexstar 5&8", "Magelan-II", "Magelan-I",
    "LX200", "Dave Ek", "BBox", "AutoStar", "AAM Skyvector", "None"};
// "Connection", "Max Selected items" and "Diameter" are listed by the program's data in stored
// order (0 "Persistant", 0 "500", 0 "762"); their pages add them in the reverse of that order.
constexpr std::array<sv, 2> kConnection = {"Upon need", "Persistant"};
constexpr std::array<sv, 4> kCorrection = {"Topo + Refract", "Topocentric", "Geoc. + Refract", "Geocentric"};
constexpr std::array<sv, 2> kAlignMethod = {"External", "Nocturnel 2 Stars"};
constexpr std::array<sv, 7> kHorizon = {"10\xB0", "8\xB0", "6\xB0", "5\xB0", "4\xB0", "2\xB0", "0\xB0"};
constexpr std::array<sv, 3> kExperience = {"Expert", "Hobbyst", "Beginner"};
constexpr std::array<sv, 9> kAge = {">95", "85", "75", "65", "55", "45", "35", "25", "15"};
constexpr std::array<sv, 11> kVision = {"12/10", "11/10", "10/10", "9/10", "8/10", "7/10",
                                        "6/10",  "5/10",  "4/10",  "3/10", "2/10"};
constexpr std::array<sv, 18> kDiameter = {"50",  "60",  "80",  "90",  "100", "125", "150", "166", "180",
                                          "203", "235", "254", "280", "368", "457", "558", "635", "762"};
constexpr std::array<sv, 12> kFRatio = {"15", "14", "13", "12", "11", "10", "9", "8", "7", "6", "5", "4"};
constexpr std::array<sv, 2> kMountType = {"Azimuth", "Equatorial"};
constexpr std::array<sv, 11> kMaxSelected = {"25", "50", "100", "150", "200", "250", "300", "350", "400", "450", "500"};
constexpr std::array<sv, 2> kTimeUpdate = {"Manual", "Automatic"};
constexpr std::array<sv, 4> kNightMode = {"Bright", "Medium", "Dark", "Off"};
constexpr std::array<sv, 2> kStarColor = {"Black&White", "Color"};
constexpr std::array<sv, 3> kBackground = {"White", "Dark Blue", "Black"};
constexpr std::array<sv, 3> kLineColor = {"Black", "Gray", "Blue"};
constexpr std::array<sv, 2> kStars = {"Only default stars", "Only Constellation"};
constexpr std::array<sv, 7> kCardCatalog = {"Tycho 2.5 Million", "Tycho 390K",     "Hipparchos 110K", "Hipparchos 64K",
                                            "Hipparchos 32K",    "Hipparchos 16K", "No expansion card"};
constexpr std::array<sv, 2> kConstLines = {"Rey Lines", "Classic"};
constexpr std::array<sv, 5> kChartType = {"Equatorial Sky", "Visible Sky", "Whole Sky", "Horizon View", "Sky Map"};
constexpr std::array<sv, 3> kFontSize = {"Large", "Medium", "Small"};
constexpr std::array<sv, 17> kTimeStep = {"90 Days", "60 Days", "30 Days", "1 Lunation", "14 Days", "10 Days",
                                          "5 Days",  "2 Days",  "1 Sid. Day", "1 Day",   "6 Hours", "1 Hour",
                                          "15 mn",   "10 mn",   "5 mn",       "2 mn",    "1 mn"};
constexpr std::array<sv, 2> kCursor = {"None", "Blinking"};
constexpr std::array<sv, 2> kDeltaTFormula = {"JPL Horizon", "Chapront&Touz\xE9 1997"};
constexpr std::array<sv, 4> kRaFormat = {"23h45.0", "23h45m00", "23:45:00", "23.75"};
constexpr std::array<sv, 4> kDecFormat = {"-70\xB0" "45.0", "-70\xB0" "45'00", "-70:45:00", "-70.75"};
constexpr std::array<sv, 5> kSkyQuality = {"Desert/Mountain", "Country", "Bright country", "Town", "Bright town"};

const std::array<PreferenceList, 29> kLists = {{
    {"scopeDrive", "Scope Drive", kScopeDrive},
    {"connectionMode", "Connection", kConnection},
    {"correction", "Correction", kCorrection},
    {"alignMethod", "Align Method", kAlignMethod},
    {"horizonIndex", "Horizon", kHorizon},
    {"experience", "Experience", kExperience},
    {"ageIndex", "Age", kAge},
    {"visionIndex", "Vision", kVision},
    {"scopeDiameterIndex", "Diameter", kDiameter},
    {"fRatioIndex", "F-Ratio", kFRatio},
    {"mountType", "Mount Type", kMountType},
    {"maxSelectedItems", "Max Selected items", kMaxSelected},
    {"timeUpdate", "Time Update", kTimeUpdate},
    {"nightMode", "Night Mode", kNightMode},
    {"starColor", "Star Color", kStarColor},
    {"background", "Background", kBackground},
    {"lineColor", "Line Color", kLineColor},
    {"starsChoice", "Stars", kStars},
    {"cardCatalog", "Card Catalog", kCardCatalog},
    {"constLines", "Const. Lines", kConstLines},
    {"chartType", "Chart Type", kChartType},
    {"fontSize", "Font Size", kFontSize},
    {"timeStep", "Time Step", kTimeStep},
    {"cursorMode", "Cursor", kCursor},
    {"deltaTFormula", "DeltaT Formula", kDeltaTFormula},
    {"raFormat", "RA Format", kRaFormat},
    {"decFormat", "Dec Format", kDecFormat},
    {"skyQuality", "Sky quality", kSkyQuality},
    // The sky quality of a stored site uses the same list.
    {"siteMemory.skyQuality", "Sky quality", kSkyQuality},
}};

bool equalIgnoringCase(sv a, sv b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

}  // namespace

std::span<const PreferenceList> preferenceLists() {
    return kLists;
}

const PreferenceList* findPreferenceList(std::string_view field) {
    for (const auto& list : preferenceLists())
        if (list.field == field) return &list;
    return nullptr;
}

int listSize(const PreferenceList& list) { return static_cast<int>(list.added.size()); }

std::vector<std::string_view> shownEntries(const PreferenceList& list) {
    return std::vector<std::string_view>(list.added.rbegin(), list.added.rend());
}

std::string_view labelAtIndex(const PreferenceList& list, int index) {
    if (index < 0 || index >= listSize(list)) return {};
    return list.added[list.added.size() - 1 - static_cast<std::size_t>(index)];
}

int indexOfLabel(const PreferenceList& list, std::string_view label) {
    const auto shown = shownEntries(list);
    for (std::size_t i = 0; i < shown.size(); ++i)
        if (shown[i] == label) return static_cast<int>(i);
    for (std::size_t i = 0; i < shown.size(); ++i)
        if (equalIgnoringCase(shown[i], label) || equalIgnoringCase(latin1ToUtf8(shown[i]), label))
            return static_cast<int>(i);
    return -1;
}

}  // namespace nocturnel
