#include "shell/form_descriptions.h"

#include <array>
#include <cstring>

#include "catalog/eyepieces.h"
#include "core/angle_text.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preference_fields.h"
#include "settings/preference_lists.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

using sv = std::string_view;

// ---- The six preference pages, as data ----

struct PageControl {
    sv field;      // preference field ("displayBox[0]" for an element)
    sv label;      // the control's caption
    sv help = {};  // its own "Inf" text, when it has one
};
struct PageGroup {
    sv label;
    sv help;
    std::vector<PageControl> controls;
};
struct PreferencePage {
    sv id;
    int formId;
    sv title;
    std::vector<PageGroup> groups;
};

constexpr sv kDeltaTHelp =
    " DeltaT is the difference between Terrestrial Time TT and Universal Time UT. It is used to compute topocentric "
    "positions.";

const std::vector<PreferencePage>& preferencePages() {
    static const std::vector<PreferencePage> pages = [] {
        std::vector<PreferencePage> p = {
            {"prefs1", 1100, "Preference 1/6",
             {{"Interfaces", " If applicable set Scope Port, GPS Port,and Camera Port.",
               {{"scopeDrive", "Scope Drive", " Select your drive from the list or tap None if yours is not present.\n"},
                {"connectionMode", "Connection"},
                {"encoderAzSteps", "Az:", " Encoders require binary input pulses and negative value for a reverse setting!"},
                {"encoderAltSteps", "Alt:", " Encoders require binary input pulses and negative value for a reverse setting!"},
                {"scopePort", "Scope Port"},
                {"gpsPort", "GPS Port"},
                {"cameraPort", "Camera Port"},
                {"scopeDevice", "Device"}}},
              {"Computation",
               " A star's position will be corrected for refraction and/or Earth effects of aberration, precession & "
               "nutation.",
               {{"correction", "Correction"},
                {"alignMethod", "Align Method", " Use Polar for polar aligned scopes and 2-Star for all others.\n"},
                {"horizonIndex", "Horizon", " Horizon is used to compute rise and set."}}}}},
            {"prefs2", 1200, "Preference 2/6",
             {{"User Informations",
               " These items are used, along with the Sun's and Moon's brightness, to compute your naked eye visual "
               "magnitude limit.",
               {{"experience", "Experience"}, {"ageIndex", "Age"}, {"visionIndex", "Vision"}}},
              {"Scope Informations", " Scope Diameter (in mm) and F-Ratio are used to compute an object's visibility indicator.",
               {{"scopeDiameterIndex", "Diameter"},
                {"fRatioIndex", "F-Ratio"},
                {"mountType", "Mount Type", " Mount Type is used for the 2- and N-StarAlignment tools."}}},
              {"Other", " It is a SkyRoamer selection criteria.",
               {{"maxSelectedItems", "Max Selected items", " It is a SkyRoamer selection criteria."},
                {"timeUpdate", "Time Update", " Time mode allows you to manually enter a date and time.\n"},
                {"nightMode", "Night Mode", " Night Mode will darken and redden the display to preserve night vision."}}}}},
            {"prefs3", 1300, "Preference 3/6",
             {{"SkyChart Global Settings", " The number selected is the set of objects to be displayed on the SkyChart.",
               {{"starColor", "Star Color"},
                {"background", "Background"},
                {"lineColor", "Line Color"},
                {"starsChoice", "Stars", " The number selected is the set of objects to be displayed on the SkyChart."},
                {"cardCatalog", "Card Catalog", " Set Rendering to Precision to get more accurate star and object positions."},
                {"constLines", "Const. Lines"},
                {"eyepieceIndex", "Eyepiece", " Select your eyepiece to display its field of view within Skychart."},
                {"chartType", "Chart Type"},
                {"fontSize", "Font Size"},
                {"timeStep", "Time Step"},
                {"cursorMode", "Cursor"}}}}},
            {"prefs4", 1400, "Preference 4/6", {}},  // rows built below
            {"prefs5", 1500, "Preference 5/6", {}},  // boxes built below
            {"prefs6", 1600, "Preference 6/6",
             {{"Constants", kDeltaTHelp,
               {{"grsLongitudeDeg", "GRS Longitude",
                 " Jupiter's Great Red Spot (GRS) longitude is used to compute its transit time."},
                {"deltaTSeconds", "Current DeltaT", kDeltaTHelp},
                {"deltaTFormula", "DeltaT Formula"}}},
              {"Output Formats", "Set the format for RA and Dec.", {{"raFormat", "RA Format"}, {"decFormat", "Dec Format"}}}}},
        };
        // Page 5/6: the display and scroll boxes, in the record's order, and the Telrad rings.
        static std::vector<std::string> names;  // kept for the string_views below
        names.reserve(kDisplayBoxCount + kScrollBoxCount + 3);
        PageGroup display{"SkyCharts Display Settings", {}, {}};
        for (int i = 0; i < kDisplayBoxCount; ++i) {
            names.push_back("displayBox[" + std::to_string(i) + "]");
            display.controls.push_back({names.back(), findPreferenceField(names.back())->meaning});
        }
        for (int i = 0; i < 3; ++i) {
            names.push_back("telradRingDeg[" + std::to_string(i) + "]");
            display.controls.push_back({names.back(), findPreferenceField(names.back())->meaning});
        }
        PageGroup scroll{"SkyCharts Scroll Settings", {}, {}};
        for (int i = 0; i < kScrollBoxCount; ++i) {
            names.push_back("scrollBox[" + std::to_string(i) + "]");
            scroll.controls.push_back({names.back(), findPreferenceField(names.back())->meaning});
        }
        p[4].groups = {display, scroll};
        return p;
    }();
    return pages;
}

const PreferencePage* findPage(sv id) {
    for (const auto& page : preferencePages())
        if (page.id == id) return &page;
    return nullptr;
}

nlohmann::json utf8Entries(const std::vector<std::string>& latin1) {
    nlohmann::json entries = nlohmann::json::array();
    for (const auto& e : latin1) entries.push_back(toUtf8(e));
    return entries;
}

// Entries of the lists that are not fixed tables: the eyepiece database and the port lists.
std::vector<std::string> dynamicEntries(sv field) {
    std::vector<std::string> entries;
    if (field == "eyepieceIndex") {
        std::vector<EyepieceRecord> eyepieces;
        MessageCapture quiet;  // no eyepiece file: the list is empty
        if (loadEyepieces(eyepieces))
            for (const auto& e : eyepieces) entries.push_back(eyepieceName(e));
    } else if (field == "scopePort" || field == "gpsPort" || field == "cameraPort") {
        rebuildPortNameList();
        entries = portNameList();
    }
    return entries;
}

nlohmann::json preferenceControl(const Preferences& p, const PageControl& c, int id) {
    const PreferenceField* f = findPreferenceField(c.field);
    nlohmann::json j = {{"id", id}, {"name", std::string(c.field)}, {"label", toUtf8(c.label)}};
    if (!c.help.empty()) j["help"] = std::string(c.help);
    const double value = f->type == FieldType::Text ? 0 : preferenceNumber(p, *f);
    if (const PreferenceList* list = findPreferenceList(c.field)) {
        j["type"] = "list";
        std::vector<std::string> entries;
        for (sv e : shownEntries(*list)) entries.emplace_back(e);
        j["entries"] = utf8Entries(entries);
        j["value"] = static_cast<long long>(value);
    } else if (auto entries = dynamicEntries(c.field); !entries.empty() || c.field == "eyepieceIndex") {
        j["type"] = "list";
        j["entries"] = utf8Entries(entries);
        j["value"] = static_cast<long long>(value);
    } else if (f->type == FieldType::Text) {
        j["type"] = "text";
        j["maxChars"] = f->maxChars;
        j["value"] = toUtf8(preferenceText(p, *f));
    } else if (f->type == FieldType::Integer && f->low == 0 && f->high == 1) {
        j["type"] = "check";
        j["value"] = value != 0;
    } else {
        j["type"] = "number";
        j["min"] = f->low;
        j["max"] = f->high;
        j["value"] = f->type == FieldType::Real ? nlohmann::json(value) : nlohmann::json(static_cast<long long>(value));
    }
    if (f->fixedAtStart) j["fixedAtStart"] = true;  // start-up sets it again
    return j;
}

// Page 4/6: one row per field of view, the choices start-up fixes (shown, not edited).
nlohmann::json zoomSettingsGroup(const Preferences& p, int formId) {
    static constexpr std::array<sv, 10> kRows = {"180\xB0", "150\xB0", "120\xB0", "90\xB0", "60\xB0",
                                                 "45\xB0",  "30\xB0",  "20\xB0",  "10\xB0", "<10\xB0"};
    nlohmann::json controls = nlohmann::json::array();
    int id = formId + 1;
    for (std::size_t row = 0; row < kRows.size(); ++row) {
        const std::string fov = toUtf8(kRows[row]);
        controls.push_back({{"id", id++}, {"name", "zoomStarLimit[" + std::to_string(row) + "]"}, {"type", "static"},
                            {"label", fov + " Stars"}, {"readOnly", true}, {"value", p.zoomStarLimit[row]}});
        controls.push_back({{"id", id++}, {"name", "zoomObjectLimit[" + std::to_string(row) + "]"}, {"type", "static"},
                            {"label", fov + " Objects"}, {"readOnly", true}, {"value", p.zoomObjectLimit[row]}});
        controls.push_back({{"id", id++},
                            {"name", "zoomViewMode[" + std::to_string(row) + "]"},
                            {"type", "list"},
                            {"label", fov + " View"},
                            {"entries", {"Eyes", "Scope"}},
                            {"readOnly", true},
                            {"value", p.zoomViewMode[row]}});
    }
    return {{"label", "SkyChart Zoom Settings"},
            {"help", "Set Star and Object magnitude limit for each Zoom Level."},
            {"controls", controls}};
}

nlohmann::json pageButtons(int formId, int index, int count) {
    auto page = [](int i) { return "prefs" + std::to_string(i + 1); };
    return nlohmann::json::array({
        {{"id", formId + 97}, {"label", "Prev"}, {"action", "prev"}, {"form", page((index + count - 1) % count)}},
        {{"id", formId + 98}, {"label", "Next"}, {"action", "next"}, {"form", page((index + 1) % count)}},
        {{"id", formId + 99}, {"label", "Ok"}, {"action", "ok"}},
    });
}

nlohmann::json describePreferencePage(const PreferencePage& page) {
    const Preferences& p = prefs();
    const auto& pages = preferencePages();
    const int index = static_cast<int>(&page - pages.data());
    nlohmann::json groups = nlohmann::json::array();
    int id = page.formId + 1;
    if (page.id == "prefs4") groups.push_back(zoomSettingsGroup(p, page.formId));
    for (const PageGroup& g : page.groups) {
        nlohmann::json controls = nlohmann::json::array();
        for (const PageControl& c : g.controls) controls.push_back(preferenceControl(p, c, id++));
        nlohmann::json group = {{"label", std::string(g.label)}, {"controls", controls}};
        if (!g.help.empty()) group["help"] = std::string(g.help);
        groups.push_back(group);
    }
    return {{"id", std::string(page.id)},
            {"formId", page.formId},
            {"title", std::string(page.title)},
            {"groups", groups},
            {"buttons", pageButtons(page.formId, index, static_cast<int>(pages.size()))}};
}

nlohmann::json control(int id, sv name, sv type, sv label, nlohmann::json value) {
    return {{"id", id}, {"name", std::string(name)}, {"type", std::string(type)}, {"label", toUtf8(label)},
            {"value", std::move(value)}};
}

nlohmann::json numberControl(int id, sv name, sv label, double low, double high, nlohmann::json value) {
    nlohmann::json j = control(id, name, "number", label, std::move(value));
    j["min"] = low;
    j["max"] = high;
    return j;
}

nlohmann::json textControl(int id, sv name, sv label, std::size_t maxChars, const std::string& latin1,
                           bool readOnly = false) {
    nlohmann::json j = control(id, name, "text", label, toUtf8(latin1));
    j["maxChars"] = maxChars;
    if (readOnly) j["readOnly"] = true;
    return j;
}

}  // namespace

std::vector<std::string> formIds() {
    std::vector<std::string> ids;
    for (const auto& page : preferencePages()) ids.emplace_back(page.id);
    ids.insert(ids.end(), {"location", "datetime", "align"});
    return ids;
}

bool isPreferencePage(std::string_view id) { return findPage(id) != nullptr; }

std::vector<std::string> preferencePageFields(std::string_view id) {
    std::vector<std::string> fields;
    if (const PreferencePage* page = findPage(id))
        for (const auto& g : page->groups)
            for (const auto& c : g.controls) fields.emplace_back(c.field);
    return fields;
}

nlohmann::json describeLocationPage(const LocationPageFields& f) {
    constexpr int kForm = 1700;
    const PreferenceList* sky = findPreferenceList("skyQuality");
    std::vector<std::string> skyEntries;
    for (sv e : shownEntries(*sky)) skyEntries.emplace_back(e);
    nlohmann::json skyControl = control(kForm + 9, "skyQuality", "list", "Sky quality", f.skyQuality);
    skyControl["entries"] = utf8Entries(skyEntries);
    nlohmann::json memory = control(kForm + 11, "memory", "selector", "", f.memory);
    memory["entries"] = {"Site1", "Site2", "Site3"};
    memory["action"] = "recall";  // choosing a site memory shows its values at once
    nlohmann::json daylightSaving = control(kForm + 10, "daylightSaving", "check", "DST", f.daylightSaving);
    daylightSaving["action"] = "dst";  // the box moves the GMT offset by an hour at once
    nlohmann::json controls = {
        textControl(kForm + 1, "name", "Location:", kLocationNameChars, f.name),
        textControl(kForm + 2, "latitude", "Latitude:", kLocationPositionChars, f.latitude, true),
        textControl(kForm + 3, "longitude", "Longitude:", kLocationPositionChars, f.longitude, true),
        textControl(kForm + 4, "height", "Height:", kHeightChars, f.height),
        textControl(kForm + 5, "utcOffset", "GMT (mn):", kUtcOffsetChars, f.utcOffset),
        textControl(kForm + 6, "temperature", "T\xB0 (C\xB0):", kTemperatureChars, f.temperature),
        textControl(kForm + 7, "pressure", "P (mbar):", kPressureChars, f.pressure),
        textControl(kForm + 8, "humidity", "Humidity (%):", kHumidityChars, f.humidity),
        skyControl,
        daylightSaving,
        memory,
    };
    return {{"id", "location"},
            {"formId", kForm},
            {"title", "Location"},
            {"groups", {{{"label", "Location"}, {"controls", controls}}}},
            {"buttons", {{{"id", kForm + 99}, {"label", "Ok"}, {"action", "accept"}}}}};
}

nlohmann::json describeDateDialog(const DateDialog& d, int timeUpdate) {
    constexpr int kForm = 1800;
    nlohmann::json minutes = nlohmann::json::array();
    for (int m = 0; m < 60; m += 5) minutes.push_back(m);
    nlohmann::json minute = numberControl(kForm + 5, "minute", "Minute", 0, 59, d.minute);
    minute["picks"] = minutes;
    nlohmann::json scale = control(kForm + 7, "showsUt", "selector", "", d.showsUt ? 1 : 0);
    scale["entries"] = {"Local", "UT"};
    scale["action"] = "ut";  // the fields are shown again in the chosen time scale
    const PreferenceList* update = findPreferenceList("timeUpdate");
    nlohmann::json updateControl = control(kForm + 9, "timeUpdate", "list", "Time Update", timeUpdate);
    updateControl["entries"] = nlohmann::json::array();
    for (sv e : shownEntries(*update)) updateControl["entries"].push_back(std::string(e));
    updateControl["help"] = " Time mode allows you to manually enter a date and time.\n";
    nlohmann::json controls = {
        numberControl(kForm + 1, "year", "Year", 0, 9999, d.year),
        numberControl(kForm + 2, "month", "Month", 1, 12, d.month),
        numberControl(kForm + 3, "day", "Day", 1, 31, d.day),
        numberControl(kForm + 4, "hour", "Hour", 0, 23, d.hour),
        minute,
        numberControl(kForm + 6, "second", "Second", 0, 59, d.second),
        scale,
        textControl(kForm + 8, "jd", "JD", 20, ""),
        updateControl,
    };
    return {{"id", "datetime"},
            {"formId", kForm},
            {"title", "Date & Time"},
            {"help", std::string(kDateDialogHelp)},
            {"groups", {{{"label", "Date & Time"}, {"controls", controls}}}},
            {"buttons",
             {{{"id", kForm + 97}, {"label", "JD"}, {"action", "jd"}},
              {{"id", kForm + 98}, {"label", "Now"}, {"action", "now"}},
              {{"id", kForm + 99}, {"label", "Ok"}, {"action", "accept"}}}}};
}

AlignmentFormTexts alignmentFormFromPreferences() {
    AlignmentFormTexts t;
    const Preferences& p = prefs();
    for (int i = 0; i < 2; ++i) {
        const AlignmentStarRecord& s = p.alignStar[i];
        if (s.name[0] == '\0' && s.time == 0 && s.ra == 0 && s.dec == 0) continue;  // never filled
        char buf[5][kAngleTextSize];
        t.star[i][0] = std::string(s.name, strnlen(s.name, sizeof s.name));
        t.star[i][1] = hoursToTextStyle(s.time / 15.0, 2, buf[0]);
        t.star[i][2] = hoursToTextStyle(s.ra / 15.0, 2, buf[1]);
        t.star[i][3] = degreesToTextStyle(s.dec, 2, buf[2]);
        t.star[i][4] = p.mountType == 0 ? hoursToTextStyle(s.hor / 15.0, 2, buf[3]) : degreesToTextStyle(s.hor, 2, buf[3]);
        t.star[i][5] = degreesToTextStyle(s.elv, 2, buf[4]);
    }
    return t;
}

nlohmann::json describeAlignmentForm(const AlignmentFormTexts& t) {
    constexpr int kForm = 1900;
    static constexpr std::array<sv, 6> kNames = {"name", "time", "ra", "dec", "hor", "elv"};
    const bool equatorial = prefs().mountType == 0;
    const std::array<sv, 6> labels = {"Star", "Time", "Ra", "Dec", equatorial ? "Hor (h)" : "Hor", "Elv"};
    nlohmann::json groups = nlohmann::json::array();
    for (int i = 0; i < 2; ++i) {
        nlohmann::json controls = nlohmann::json::array();
        for (int k = 0; k < 6; ++k)
            controls.push_back(textControl(kForm + 10 * (i + 1) + k, "star" + std::to_string(i + 1) + "." + std::string(kNames[k]),
                                           labels[k], k == 0 ? 47 : 16, t.star[i][k]));
        groups.push_back({{"label", "Star" + std::to_string(i + 1)}, {"controls", controls}});
    }
    groups.push_back({{"label", "Reference"}, {"controls", {textControl(kForm + 1, "toTime", "ToTime", 8, t.toTime)}}});
    return {{"id", "align"},
            {"formId", kForm},
            {"title", "2 Stars Alignment"},
            {"groups", groups},
            {"buttons",
             {{{"id", kForm + 96}, {"label", "Read Star1"}, {"action", "read1"}},
              {{"id", kForm + 97}, {"label", "Read Star2"}, {"action", "read2"}},
              {{"id", kForm + 98}, {"label", "Restore"}, {"action", "restore"}},
              {{"id", kForm + 99}, {"label", "Compute"}, {"action", "compute"}}}}};
}

nlohmann::json describeForm(std::string_view id) {
    if (const PreferencePage* page = findPage(id)) return describePreferencePage(*page);
    if (id == "location") {
        const LocationPageFields f =
            showLocationPage(prefs(), [](double deg) { return degreesText(deg); }, 0);
        return describeLocationPage(f);
    }
    if (id == "datetime") return describeDateDialog(openDateDialog(prefs().moment), prefs().timeUpdate);
    if (id == "align") return describeAlignmentForm(alignmentFormFromPreferences());
    return nullptr;
}

}  // namespace nocturnel
