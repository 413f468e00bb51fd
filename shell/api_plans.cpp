#include "shell/api_plans.h"

#include <httplib.h>

#include <filesystem>
#include <optional>
#include <string>

#include "plans/new_observer_log.h"
#include "plans/observer_log_choices.h"
#include "plans/observer_log_export.h"
#include "plans/observer_logs.h"
#include "plans/user_lists.h"
#include "settings/message.h"
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/engine.h"
#include "shell/http_readers.h"
#include "shell/http_reply.h"
#include "shell/log_fields.h"
#include "shell/observer_log_json.h"
#include "shell/roam_session.h"
#include "shell/selection_json.h"

namespace nocturnel {
namespace {

using httplib::Request;
using httplib::Response;

constexpr std::size_t kNameMaxChars = 80;

// A required text value of a body or query; nothing with the 400 answer written when absent.
std::optional<std::string> requiredText(ValueReader& r, Response& res, const char* name, const char* hint) {
    std::optional<std::string> value;
    r.text(name, kNameMaxChars, value);
    if (r.ok() && (!value || value->empty())) r.refuse(std::string("Invalid ") + name, hint);
    if (!r.ok()) {
        replyError(res, 400, r.error());
        return std::nullopt;
    }
    return value;
}

std::optional<std::string> latin1Name(const std::string& utf8) {
    auto latin1 = utf8ToLatin1(utf8);
    if (!latin1) showMessage("Invalid name", "The text holds characters that cannot be stored.");
    return latin1;
}

template <std::size_t N>
nlohmann::json choiceTexts(const std::array<std::string_view, N>& list) {
    nlohmann::json j = nlohmann::json::array();
    for (auto s : list) j.push_back(std::string(s));
    return j;
}

// The log form's choice lists, each in stored-index order.
nlohmann::json logFormJson() {
    return {{"transparency", choiceTexts(kTransparencyChoices)},
            {"seeing", choiceTexts(kSeeingChoices)},
            {"rating", choiceTexts(kRatingChoices)},
            {"result", choiceTexts(kResultChoices)}};
}

// The typed fields of a log form body ("fields": {"on", "at", "ra", ...}), numbers as text.
std::optional<LogFieldOptions> logFieldsOf(const nlohmann::json& body, Message& error) {
    LogFieldOptions f;
    if (!body.contains("fields")) return f;
    const nlohmann::json& fields = body["fields"];
    if (!fields.is_object()) {
        error = Message{"Invalid fields", "Give fields as an object."};
        return std::nullopt;
    }
    const std::pair<const char*, std::optional<std::string>*> keys[] = {
        {"on", &f.on},         {"at", &f.at},         {"ra", &f.ra},           {"dec", &f.dec},
        {"type", &f.type},     {"mag", &f.mag},       {"moon", &f.moon},       {"sun", &f.sun},
        {"visMag", &f.visMag}, {"transparency", &f.transparency}, {"seeing", &f.seeing},
        {"scope", &f.scope},   {"location", &f.location}, {"filter", &f.filter}, {"note", &f.note},
        {"rating", &f.rating}, {"eyepiece", &f.eyepiece}, {"result", &f.result}, {"object", &f.object}};
    for (const auto& [key, slot] : keys) {
        if (!fields.contains(key) || fields[key].is_null()) continue;
        const nlohmann::json& v = fields[key];
        if (v.is_string()) *slot = v.get<std::string>();
        else if (v.is_number()) *slot = v.dump();
        else {
            error = Message{std::string("Invalid ") + key, "Give text or a number."};
            return std::nullopt;
        }
    }
    return f;
}

void registerRoamRoutes(httplib::Server& s, Engine& engine) {
    s.Get("/api/roam/criteria", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) {
            out = selectionCriteriaJson(prefs().selection);
            return true;
        });
    });
    // {"criteria": {"visibility": 1, "mag": "Scope Limit", ...}, "mode": "new"|"add"|"remove",
    //  "reset": true} or {"short": "messier"}.
    s.Post("/api/roam", [&engine](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        RoamRequest request;
        JsonReader r(*body);
        std::optional<std::string> mode, shortName;
        std::optional<bool> reset;
        r.text("mode", 16, mode);
        r.text("short", 16, shortName);
        r.flag("reset", reset);
        if (r.ok() && mode && *mode != "new" && *mode != "add" && *mode != "remove" && *mode != "reset")
            r.refuse("Invalid mode \"" + *mode + "\"", "new, add, remove or reset");
        if (!r.ok()) return replyError(res, 400, r.error());
        if (mode == "add") request.mode = SelectionMode::kAdd;
        if (mode == "remove") request.mode = SelectionMode::kRemove;
        request.reset = reset.value_or(false) || mode == "reset";
        request.shortSelection = shortName;
        if (body->contains("criteria")) {
            const nlohmann::json& criteria = (*body)["criteria"];
            if (!criteria.is_object())
                return replyError(res, 400, Message{"Invalid criteria", "Give criteria as an object."});
            for (const auto& [key, value] : criteria.items()) {
                const auto which = criterionOfKey(key);
                if (!which || !(value.is_string() || value.is_number_integer()))
                    return replyError(res, 400, Message{"Invalid criterion \"" + key + "\"",
                                                        "visibility, mag, constellation, catalog, type, group, "
                                                        "difficulty or size; each an index or a choice's text"});
                request.criteria.emplace_back(*which, value.is_string() ? value.get<std::string>() : value.dump());
            }
        }
        answerJob(engine, res, [&](nlohmann::json& out) {
            RoamResult result;
            if (!roamCurrentList(request, [&engine] { return engine.stopRequested(); }, {}, result)) return false;
            out = selectionJson(result.list, result.outcome.stages);
            out["stopped"] = result.outcome.stopped;
            if (!result.report.empty()) out["report"] = latin1ToUtf8(result.report);
            return !result.outcome.failed;
        });
    });
}

void registerListRoutes(httplib::Server& s, Engine& engine) {
    s.Get("/api/list", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) {
            CurrentList c;
            if (!c.load()) return false;
            out = selectionJson(c.list, {});
            return true;
        });
    });
    s.Get("/api/lists", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) {
            out = listPickerJson();
            return true;
        });
    });
    s.Post("/api/lists/save", [&engine](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        JsonReader r(*body);
        const auto name = requiredText(r, res, "name", "Give the list's name.");
        if (!name) return;
        answerJob(engine, res, [&](nlohmann::json& out) {
            CurrentList c;
            const auto latin1 = latin1Name(*name);
            if (!latin1 || !c.load() || !saveUserList(*latin1, c.list, prefs().selection)) return false;
            out = listPickerJson();
            return true;
        });
    });
    s.Post("/api/lists/load", [&engine](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        JsonReader r(*body);
        const auto name = requiredText(r, res, "name", "Give the list's name.");
        if (!name) return;
        answerJob(engine, res, [&](nlohmann::json& out) {
            CurrentList c;
            const auto latin1 = latin1Name(*name);
            if (!latin1 || !c.load() || !loadUserList(*latin1, c.list, prefs().selection)) return false;
            if (!c.save() || !CurrentList::saveCriteria()) return false;
            out = selectionJson(c.list, {});
            return true;
        });
    });
    s.Get("/api/memos", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) {
            out = {{"memos", memoPicker()}};
            return true;
        });
    });
    s.Get("/api/memos/preview", [&engine](const Request& req, Response& res) {
        QueryReader r(req.params);
        const auto file = requiredText(r, res, "file", "Give file=, a memo of userlists/.");
        if (!file) return;
        answerJob(engine, res, [&](nlohmann::json& out) {
            std::string text;
            if (!memoPreview(*file, text)) return false;
            out = {{"file", *file}, {"text", latin1ToUtf8(text)}};
            return true;
        });
    });
    s.Post("/api/memos/import", [&engine](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        JsonReader r(*body);
        const auto file = requiredText(r, res, "file", "Give the memo's file.");
        if (!file) return;
        answerJob(engine, res, [&](nlohmann::json& out) {
            CurrentList c;
            if (!c.load()) return false;
            const int n = importMemo(*file, prefs().moment, c.list, prefs().selection);
            if (!c.save() || !CurrentList::saveCriteria()) return false;
            out = selectionJson(c.list, {});
            return n >= 0;
        });
    });
    s.Post("/api/memos/export", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) {
            CurrentList c;
            std::filesystem::path written;
            if (!c.load() || !exportMemo(memoTextOf(c.list), prefs().moment, &written)) return false;
            out = {{"file", written.filename().string()}};
            return true;
        });
    });
}

void registerLogRoutes(httplib::Server& s, Engine& engine) {
    s.Get("/api/logs", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) {
            out = observerLogListJson();
            out["form"] = logFormJson();
            return true;
        });
    });
    s.Get(R"(/api/logs/([^/]+))", [&engine](const Request& req, Response& res) {
        const std::string utf8 = req.matches[1];
        answerJob(engine, res, [&](nlohmann::json& out) {
            const auto name = logObjectName(utf8);
            if (!name) return false;
            ObserverLog record;
            const int index = observerLogIndex(*name);
            if (!openObserverLog(index, record)) return false;
            out = observerLogJson(record, index);
            return true;
        });
    });
    // {"mode": "new"|"edit", "name": object, "fields": {...}}: a new log takes the defaults of
    // `log new` (the moment, the catalogue's place, the site, the telescope) before the fields.
    s.Post("/api/logs", [&engine](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        JsonReader r(*body);
        std::optional<std::string> mode;
        r.text("mode", 8, mode);
        if (r.ok() && mode && *mode != "new" && *mode != "edit") r.refuse("Invalid mode \"" + *mode + "\"", "new or edit");
        if (!r.ok()) return replyError(res, 400, r.error());
        const auto utf8 = requiredText(r, res, "name", "Give the object's name.");
        if (!utf8) return;
        Message error;
        const auto fields = logFieldsOf(*body, error);
        if (!fields) return replyError(res, 400, error);
        const bool editing = mode == "edit";
        answerJob(engine, res, [&](nlohmann::json& out) {
            const auto name = logObjectName(*utf8);
            if (!name) return false;
            ObserverLog record;
            int index = observerLogIndex(*name);
            if (editing) {
                if (!openObserverLog(index, record) || !applyLogFields(*fields, record)) return false;
                if (fields->object && record.object != *name && observerLogIndex(record.object) >= 0)
                    return refuseLog("A log of " + *fields->object + " exists already", "Choose another name.");
            } else {
                if (index >= 0) return refuseLog("A log of " + *utf8 + " exists already", "Open it to change it.");
                bool found = false;
                record = newObserverLog(*name, prefs().moment, newLogSkyAt(prefs().moment), found);
                if (!applyLogFields(*fields, record)) return false;
                if (fields->object && observerLogIndex(record.object) >= 0)
                    return refuseLog("A log of " + *fields->object + " exists already", "Choose another name.");
            }
            if (!logFileNameFor(record.object) || !saveObserverLog(record, index)) return false;
            out = observerLogJson(record, observerLogIndex(record.object));
            return true;
        });
    });
    s.Delete(R"(/api/logs/([^/]+))", [&engine](const Request& req, Response& res) {
        const std::string utf8 = req.matches[1];
        answerJob(engine, res, [&](nlohmann::json& out) {
            const auto name = logObjectName(utf8);
            if (!name || !deleteObserverLog(observerLogIndex(*name))) return false;
            out = observerLogListJson();
            return true;
        });
    });
    s.Post("/api/logs/export", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) {
            const int n = exportObserverLogs(localeDateIsDayFirst());
            out = {{"exported", n}};
            return n >= 0;
        });
    });
}

}  // namespace

void registerPlansRoutes(httplib::Server& s, Engine& engine) {
    registerRoamRoutes(s, engine);
    registerListRoutes(s, engine);
    registerLogRoutes(s, engine);
}

}  // namespace nocturnel
