#include "shell/api_forms.h"

#include <httplib.h>

#include <algorithm>
#include <cstdio>

#include "align/alignment.h"
#include "core/angle_text.h"
#include "core/date_dialog.h"
#include "core/time.h"
#include "scope/scope_interface.h"
#include "settings/location_page.h"
#include "settings/machine_clock.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/preferences_file.h"
#include "settings/text_encoding.h"
#include "shell/api_prefs.h"
#include "shell/api_scope.h"
#include "shell/engine_prefs.h"
#include "shell/engine.h"
#include "shell/form_descriptions.h"
#include "shell/http_readers.h"
#include "shell/http_reply.h"
#include "shell/telescope_angles.h"

namespace nocturnel {
namespace {

using httplib::Request;
using httplib::Response;

const nlohmann::json& valuesOf(const nlohmann::json& body) {
    static const nlohmann::json empty = nlohmann::json::object();
    const auto it = body.find("values");
    return it != body.end() && it->is_object() ? *it : empty;
}

std::string actionOf(const nlohmann::json& body, const char* fallback) {
    const auto it = body.find("action");
    return it != body.end() && it->is_string() ? it->get<std::string>() : fallback;
}

// A text value of the page (UTF-8) as the record's Latin-1; false (message shown) otherwise.
bool latin1Value(const nlohmann::json& values, const char* name, std::size_t maxChars, std::string& out) {
    const auto it = values.find(name);
    if (it == values.end()) return true;  // left as it was
    std::string text = it->is_string() ? it->get<std::string>() : it->is_number() ? it->dump() : std::string("\x01");
    const auto latin1 = utf8ToLatin1(text);
    if (!latin1 || latin1->size() > maxChars || text == "\x01") {
        showMessage(invalidValueTitle(name), "At most " + std::to_string(maxChars) + " Latin-1 characters.");
        return false;
    }
    out = *latin1;
    return true;
}

// ---- Preference pages: every value of the page set at once, or none ----
bool submitPreferencePage(const std::string& id, const nlohmann::json& body) {
    const nlohmann::json& values = valuesOf(body);
    const std::vector<std::string> fields = preferencePageFields(id);
    for (const auto& [name, value] : values.items()) {
        if (std::find(fields.begin(), fields.end(), name) == fields.end()) {
            showMessage(invalidValueTitle(name), "This field is not on " + id + ".");
            return false;
        }
    }
    if (values.empty()) return true;  // nothing changed (Prev/Next/Ok without edits)
    return updateEnginePrefs([&values](Preferences& saved) { return setPreferencesFromJson(saved, values); });
}

// ---- Location page ----
bool submitLocationPage(const nlohmann::json& body, nlohmann::json& form) {
    const nlohmann::json& values = valuesOf(body);
    JsonReader r(values);
    std::optional<int> memory, sky;
    std::optional<bool> dst;
    r.whole("memory", 0, kSiteMemoryCount - 1, memory);
    r.whole("skyQuality", 0, 4, sky);
    r.flag("daylightSaving", dst);
    if (!r.ok()) {
        showMessage(r.error().title, r.error().detail);
        return false;
    }
    const std::string action = actionOf(body, "accept");
    const auto degrees = [](double deg) { return degreesText(deg); };
    LocationPageFields fields = showLocationPage(prefs(), degrees, memory.value_or(0));
    bool ok = true;
    if (action == "recall") {
        ok = recallSiteMemory(prefs(), memory.value_or(0));
        fields = showLocationPage(prefs(), degrees, memory.value_or(0));
    } else if (action == "dst") {
        setDaylightSaving(prefs(), fields, dst.value_or(!fields.daylightSaving));
    } else if (action == "accept") {
        if (!latin1Value(values, "name", kLocationNameChars, fields.name) ||
            !latin1Value(values, "height", kHeightChars, fields.height) ||
            !latin1Value(values, "utcOffset", kUtcOffsetChars, fields.utcOffset) ||
            !latin1Value(values, "temperature", kTemperatureChars, fields.temperature) ||
            !latin1Value(values, "pressure", kPressureChars, fields.pressure) ||
            !latin1Value(values, "humidity", kHumidityChars, fields.humidity))
            return false;
        if (sky) fields.skyQuality = *sky;
        if (dst && *dst != fields.daylightSaving) setDaylightSaving(prefs(), fields, *dst);
        ok = acceptLocationPage(prefs(), fields);
    } else {
        showMessage("Unknown action", action);
        return false;
    }
    // The page's site block onto the saved record (a command line's other changes kept).
    const Preferences edited = prefs();
    if (!updateEnginePrefs([&edited](Preferences& saved) { return copyLocationBlock(edited, saved); })) return false;
    form = describeLocationPage(fields);
    return ok;
}

// ---- Date/time dialog: the page sends the fields it shows with each action ----
bool readDateDialog(const nlohmann::json& values, DateDialog& d) {
    JsonReader r(values);
    std::optional<int> year, month, day, hour, minute, second;
    std::optional<bool> showsUt;
    r.whole("year", 0, 9999, year);
    r.whole("month", 1, 12, month);
    r.whole("day", 1, 31, day);
    r.whole("hour", 0, 23, hour);
    r.whole("minute", 0, 59, minute);
    r.whole("second", 0, 59, second);
    r.flag("showsUt", showsUt);
    if (!r.ok()) {
        showMessage(r.error().title, r.error().detail);
        return false;
    }
    d.showsUt = showsUt.value_or(d.showsUt);
    d.hour = hour.value_or(d.hour);
    d.second = second.value_or(d.second);
    d.minute = minute.value_or(d.minute);
    d.day = day.value_or(d.day);
    setDateDialogYear(d, year.value_or(d.year));
    setDateDialogMonth(d, month.value_or(d.month));  // the day is kept within the month
    return true;
}

bool submitDateDialog(const nlohmann::json& body, nlohmann::json& form) {
    const nlohmann::json& values = valuesOf(body);
    const int offset = prefs().utcOffsetMin;
    DateDialog d = openDateDialog(prefs().moment);
    std::optional<int> timeUpdate;
    {
        JsonReader r(values);
        r.whole("timeUpdate", 0, 1, timeUpdate);
        if (!r.ok()) {
            showMessage(r.error().title, r.error().detail);
            return false;
        }
    }
    // The shown fields are read in the time scale they were shown in.
    const bool shownUt = values.contains("showsUt") && values["showsUt"].is_boolean() && values["showsUt"].get<bool>();
    if (shownUt) setDateDialogShowsUt(d, true, offset);
    nlohmann::json fieldsOnly = values;
    fieldsOnly.erase("showsUt");
    if (!readDateDialog(fieldsOnly, d)) return false;
    const std::string action = actionOf(body, "accept");
    bool ok = true;
    if (action == "ut") {
        const auto it = body.find("showsUt");
        setDateDialogShowsUt(d, it != body.end() && it->is_boolean() ? it->get<bool>() : !d.showsUt, offset);
    } else if (action == "minute") {
        pickDateDialogMinute(d, d.minute - d.minute % 5);
    } else if (action == "jd") {
        const auto it = values.find("jd");
        const std::string text = it != values.end() && it->is_string() ? it->get<std::string>().substr(0, 40)
                                 : it != values.end() && it->is_number() ? it->dump()
                                                                         : std::string();
        ok = enterDateDialogJulianDate(d, text, offset);
    } else if (action == "now") {
        d = openDateDialog(localMomentFromClock(offset));
        if (shownUt) setDateDialogShowsUt(d, true, offset);
    } else if (action == "accept") {
        prefs().moment = acceptDateDialog(d, offset);
        const ObservingMoment moment = prefs().moment;
        if (!updateEnginePrefs([&](Preferences& saved) {
                saved.moment = moment;
                if (timeUpdate) saved.timeUpdate = static_cast<decltype(saved.timeUpdate)>(*timeUpdate);
                return true;
            }))
            return false;
        d = openDateDialog(prefs().moment);
    } else {
        showMessage("Unknown action", action);
        return false;
    }
    form = describeDateDialog(d, timeUpdate.value_or(prefs().timeUpdate));
    return ok;
}

// ---- Two-star alignment form ----
AlignmentFormTexts readAlignmentTexts(const nlohmann::json& values, bool& ok) {
    AlignmentFormTexts t = alignmentFormFromPreferences();
    static constexpr const char* kNames[] = {"name", "time", "ra", "dec", "hor", "elv"};
    ok = latin1Value(values, "toTime", 8, t.toTime);
    for (int i = 0; i < 2 && ok; ++i)
        for (int k = 0; k < 6 && ok; ++k) {
            const std::string key = "star" + std::to_string(i + 1) + "." + kNames[k];
            ok = latin1Value(values, key.c_str(), k == 0 ? 47 : 16, t.star[i][k]);
        }
    return t;
}

bool submitAlignmentForm(const nlohmann::json& body, nlohmann::json& form, ScopeSession& session) {
    bool ok = true;
    AlignmentFormTexts t = readAlignmentTexts(valuesOf(body), ok);
    if (!ok) return false;
    const std::string action = actionOf(body, "compute");
    prepareScope(session);
    if (action == "read1" || action == "read2") {
        const int i = action == "read1" ? 0 : 1;
        ok = readAlignmentStarFromScope(t.star[i][0], t.star[i]);
    } else if (action == "restore") {
        if (!prefs().hasSavedAlignment) {
            showMessage("Please do 2 stars alignment first.");
            ok = false;
        } else {
            ok = restoreAlignment() != 0;
            if (ok) {
                installAlignmentMapping();
                t = alignmentFormFromPreferences();
            }
        }
    } else if (action == "compute") {
        AlignmentForm f;
        f.toTime = t.toTime;
        for (int i = 0; i < 2; ++i)
            f.star[i] = {t.star[i][0], t.star[i][1], t.star[i][2], t.star[i][3], t.star[i][4], t.star[i][5]};
        const ObservingMoment& m = prefs().moment;
        ok = computeAlignmentFromForm(
                 f, julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, prefs().utcOffsetMin)) != 0;
        if (ok) installAlignmentMapping();
    } else {
        showMessage("Unknown action", action);
        return false;
    }
    form = describeAlignmentForm(t);
    if (ok && action == "compute") form["toTime"] = alignmentState().toTime;
    return ok;
}

}  // namespace

void registerFormRoutes(httplib::Server& s, Engine& engine, const std::shared_ptr<ScopeSession>& session) {
    s.Get("/api/forms", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) {
            nlohmann::json list = nlohmann::json::array();
            for (const std::string& id : formIds()) {
                const nlohmann::json form = describeForm(id);
                list.push_back({{"id", id}, {"formId", form.at("formId")}, {"title", form.at("title")}});
            }
            out = {{"forms", list}};
            return true;
        });
    });
    s.Get(R"(/api/forms/([a-z0-9]+))", [&engine](const Request& req, Response& res) {
        const std::string id = req.matches[1];
        answerJob(engine, res, [&](nlohmann::json& out) {
            out = describeForm(id);
            if (out.is_null()) {
                showMessage("Unknown form", id);
                return false;
            }
            return true;
        });
        if (res.status == 422) res.status = 404;
    });
    s.Post(R"(/api/forms/([a-z0-9]+))", [&engine, session](const Request& req, Response& res) {
        const std::string id = req.matches[1];
        const auto body = readJsonBody(req, res);
        if (!body) return;
        bool known = true;
        answerJob(engine, res, [&](nlohmann::json& out) {
            nlohmann::json form;
            bool ok = false;
            if (isPreferencePage(id)) {
                ok = submitPreferencePage(id, *body);
                // A connected drive follows a change of its link at once (see PUT /api/prefs).
                const bool linkChanged = ok && followLinkSettings(*session);
                form = describeForm(id);
                if (linkChanged) {
                    out = {{"ok", ok}, {"form", form}, {"scopeConnected", session->connected}};
                    return ok;
                }
            } else if (id == "location") {
                ok = submitLocationPage(*body, form);
            } else if (id == "datetime") {
                ok = submitDateDialog(*body, form);
            } else if (id == "align") {
                ok = submitAlignmentForm(*body, form, *session);
            } else {
                known = false;
                showMessage("Unknown form", id);
                return false;
            }
            out = {{"ok", ok}, {"form", form}};
            return ok;
        });
        if (!known) res.status = 404;
    });
}

}  // namespace nocturnel
