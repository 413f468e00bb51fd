#include "shell/api_routes.h"

#include <httplib.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <utility>
#include <memory>
#include <string>

#include "catalog/object_finder.h"
#include "chart/png_writer.h"
#include "core/angle_text.h"
#include "core/time.h"
#include "settings/machine_clock.h"
#include "settings/preferences.h"
#include "settings/preferences_file.h"
#include "settings/time_steps.h"
#include "shell/api_chart.h"
#include "shell/api_forms.h"
#include "shell/api_json.h"
#include "shell/api_plans.h"
#include "shell/api_prefs.h"
#include "shell/api_scope.h"
#include "shell/api_sky.h"
#include "shell/chart_identify.h"
#include "shell/engine.h"
#include "shell/engine_prefs.h"
#include "shell/http_readers.h"
#include "shell/http_reply.h"

namespace nocturnel {
namespace {

using httplib::Request;
using httplib::Response;

// The last chart drawn, kept on the engine thread so that a tap on it is identified without
// drawing it again.
constexpr int kTimeUpdateAutomatic = 0;  // "Time Update" stored indexes
constexpr int kTimeUpdateManual = 1;

// A finger is about 24 CSS pixels across.
constexpr int kIdentifyTolerancePx = 24;

// A Server-Timing header: "queue;dur=0.012, draw;dur=18.402" (milliseconds).
std::string serverTiming(std::initializer_list<std::pair<const char*, std::chrono::steady_clock::duration>> parts) {
    std::string header;
    for (const auto& [name, duration] : parts) {
        char item[48];
        std::snprintf(item, sizeof item, "%s%s;dur=%.3f", header.empty() ? "" : ", ", name,
                      std::chrono::duration<double, std::milli>(duration).count());
        header += item;
    }
    return header;
}

struct ChartCache {
    std::string key;
    ChartResult result;
};



// Draws the chart of a query into result (and the cache); the surface, or null on failure.
ChartSurface drawChart(Engine& engine, const ChartQuery& query, ChartCache& cache) {
    const Preferences& p = prefs();
    ChartRequest request = chartRequestFor(query, p);
    request.stopRequested = [&engine] { return engine.stopRequested(); };
    const int night = nightModeFor(query, p);
    const std::string key = chartQueryKey(request, night);
    const int savedNight = prefs().nightMode;
    prefs().nightMode = night;
    ChartResult result;
    ChartSurface surface = renderChart(request, result);
    prefs().nightMode = savedNight;
    if (surface) {
        cache.key = key;
        cache.result = std::move(result);
    }
    return surface;
}

void registerStateRoutes(httplib::Server& s, Engine& engine, const std::shared_ptr<ScopeSession>& session) {
    s.Get("/api/now", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) {
            out = nowJson(prefs());
            return true;
        });
    });
    s.Get("/api/prefs", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) {
            out = prefsJson(prefs());
            return true;
        });
    });
    s.Put("/api/prefs", [&engine, session](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        answerJob(engine, res, [&](nlohmann::json& out) {
            if (!updateEnginePrefs([&](Preferences& saved) { return setPreferencesFromJson(saved, *body); })) return false;
            // A connected drive follows a change of its link at once; the change itself is saved
            // either way, and a link that cannot be opened is said with the program's message.
            const bool linkChanged = followLinkSettings(*session);
            out = prefsJson(prefs());
            if (linkChanged) out["scopeConnected"] = session->connected;
            return true;
        });
    });
    // Time stepping of the chart: the moment moves by "Time Step" and stays there (Time Update
    // becomes "Manual" for the session); /api/time/now goes back to the running clock.
    s.Post("/api/time/step", [&engine](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        JsonReader r(*body);
        std::optional<int> steps;
        r.whole("steps", -10000, 10000, steps);
        if (r.ok() && !steps) r.refuse("Invalid value for steps", "Give steps, for example 1 or -1.");
        if (!r.ok()) return replyError(res, 400, r.error());
        answerJob(engine, res, [&](nlohmann::json& out) {
            // Whole seconds from the moment's midnight; the date from the day count (taken at
            // 06:00 so that no rounding moves it to a neighbouring day).
            const ObservingMoment& m = prefs().moment;
            const long long seconds = m.hour * 3600LL + m.minute * 60LL + m.second +
                                      std::llround(*steps * timeStepSeconds(prefs().timeStep));
            const long long days = seconds >= 0 ? seconds / 86400 : -((-seconds + 86399) / 86400);
            const long long inDay = seconds - days * 86400;
            CalendarDate d = calendarFromJulian(julianDayAtMidnight(m.year, m.month, m.day) + static_cast<double>(days) + 0.25);
            d.hour = static_cast<int>(inDay / 3600);
            d.minute = static_cast<int>(inDay / 60 % 60);
            d.second = static_cast<int>(inDay % 60);
            if (d.year < 1 || d.year > 9999) {
                showMessage("Invalid JD date", "The time step leaves the calendar.");
                return false;
            }
            prefs().moment = ObservingMoment{d.year, d.month, d.day, d.hour, d.minute, d.second};
            prefs().timeUpdate = kTimeUpdateManual;
            out = nowJson(prefs());
            return true;
        });
    });
    s.Post("/api/time/now", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [&](nlohmann::json& out) {
            prefs().timeUpdate = kTimeUpdateAutomatic;
            prefs().moment = localMomentFromClock(prefs().utcOffsetMin);
            out = nowJson(prefs());
            return true;
        });
    });
    s.Post("/api/stop", [&engine](const Request&, Response& res) {
        engine.requestStop();
        replyJson(res, {{"ok", true}});
    });
    s.Get("/api/question", [&engine](const Request&, Response& res) {
        const auto question = engine.pendingQuestion();
        if (!question) return replyJson(res, nlohmann::json::object());
        replyJson(res, {{"id", question->id}, {"text", toUtf8(question->text)}});
    });
    s.Post("/api/answer", [&engine](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        JsonReader r(*body);
        std::optional<int> id;
        std::optional<bool> yes;
        r.whole("id", 1, 2147483647L, id);
        r.flag("yes", yes);
        if (r.ok() && (!id || !yes)) r.refuse("Invalid answer", "Give the question's id and yes: true or false.");
        if (!r.ok()) return replyError(res, 400, r.error());
        if (!engine.answer(*id, *yes))
            return replyError(res, 409, Message{"No such question", "The question was already answered or timed out."});
        replyJson(res, {{"ok", true}});
    });
}

void registerChartRoutes(httplib::Server& s, Engine& engine) {
    auto cache = std::make_shared<ChartCache>();
    s.Get("/api/chart.png", [&engine, cache](const Request& req, Response& res) {
        QueryReader r(req.params);
        ChartQuery query;
        if (!readChartQuery(r, query)) return replyError(res, 400, r.error());
        // The engine draws; the PNG is encoded here, on the request's own thread, so that the
        // engine is free for the next request meanwhile.
        using Clock = std::chrono::steady_clock;
        const Clock::time_point asked = Clock::now();
        Clock::time_point started, drawn;
        ChartSurface surface;
        const std::vector<Message> messages = engine.run([&] {
            started = Clock::now();
            surface = drawChart(engine, query, *cache);
            drawn = Clock::now();
        });
        std::vector<uint8_t> png;
        const bool ok = surface && encodePng(surface.get(), png);
        surface.reset();
        if (!ok) return replyFromJob(res, false, {}, messages);
        res.status = 200;
        res.set_header("Cache-Control", "no-store");
        // Where the time went (browsers' developer tools and the serve benchmark read it).
        res.set_header("Server-Timing", serverTiming({{"queue", started - asked},
                                                      {"draw", drawn - started},
                                                      {"png", Clock::now() - drawn}}));
        if (!messages.empty()) res.set_header("X-Nocturnel-Messages", messagesJson(messages).dump(-1, ' ', true));  // ASCII only
        res.set_content(reinterpret_cast<const char*>(png.data()), png.size(), "image/png");
    });
    s.Get("/api/identify", [&engine, cache](const Request& req, Response& res) {
        QueryReader r(req.params);
        ChartQuery query;
        std::optional<int> x, y;
        readChartQuery(r, query);
        r.whole("x", 0, kChartMaxSide, x);
        r.whole("y", 0, kChartMaxSide, y);
        if (r.ok() && (!x || !y)) r.refuse("Invalid point", "Give x and y, in CSS pixels of the chart.");
        if (!r.ok()) return replyError(res, 400, r.error());
        answerJob(engine, res, [&](nlohmann::json& out) {
            const ChartRequest request = chartRequestFor(query, prefs());
            if (*x >= request.width / request.resolutionFactor || *y >= request.height / request.resolutionFactor) {
                showMessage("Invalid point", "The point lies outside the chart.");
                return false;
            }
            if (cache->key != chartQueryKey(request, nightModeFor(query, prefs())) && !drawChart(engine, query, *cache))
                return false;
            const int scale = request.resolutionFactor;
            out = identifyAtChartPoint(cache->result, *x * scale, *y * scale, kIdentifyTolerancePx * scale);
            return true;
        });
    });
}

void registerFindRoute(httplib::Server& s, Engine& engine) {
    s.Get("/api/find", [&engine](const Request& req, Response& res) {
        QueryReader r(req.params);
        std::optional<std::string> name;
        r.text("name", 80, name);
        if (r.ok() && (!name || name->empty())) r.refuse("Invalid name", "Give name=, for example M 31 or NGC 224.");
        if (!r.ok()) return replyError(res, 400, r.error());
        answerJob(engine, res, [&](nlohmann::json& out) {
            FoundObject object;
            if (!findObjectByName(*name, object)) return false;
            out = foundObjectJson(object);
            return true;
        });
    });
}

}  // namespace

void registerApiRoutes(httplib::Server& s, Engine& engine) {
    auto session = std::make_shared<ScopeSession>();
    registerStateRoutes(s, engine, session);
    registerChartRoutes(s, engine);
    registerFindRoute(s, engine);
    registerSkyRoutes(s, engine);
    registerScopeRoutes(s, engine, session);
    registerFormRoutes(s, engine, session);
    registerPlansRoutes(s, engine);
}

}  // namespace nocturnel
