#include "shell/api_sky.h"

#include <httplib.h>

#include <optional>
#include <string>

#include "shell/engine.h"
#include "shell/http_readers.h"
#include "shell/http_reply.h"
#include "shell/sky_reports.h"

namespace nocturnel {
namespace {

using httplib::Request;
using httplib::Response;

constexpr std::size_t kNameMaxChars = 80;

// Reads the required name= of a request; false with the 400 answer written when absent or bad.
bool readName(const Request& req, Response& res, const char* key, const char* example, std::string& name) {
    QueryReader r(req.params);
    std::optional<std::string> value;
    r.text(key, kNameMaxChars, value);
    if (r.ok() && (!value || value->empty())) r.refuse(std::string("Invalid ") + key, std::string("Give ") + key + "=, for example " + example + ".");
    if (!r.ok()) {
        replyError(res, 400, r.error());
        return false;
    }
    name = *value;
    return true;
}

}  // namespace

void registerSkyRoutes(httplib::Server& s, Engine& engine) {
    s.Get("/api/planets", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) { return planetsReportJson(out); });
    });
    // date=YYYY-MM-DD (optional): the twilights of another local day than the moment's.
    s.Get("/api/twilight", [&engine](const Request& req, Response& res) {
        QueryReader r(req.params);
        std::optional<std::string> date;
        r.text("date", 10, date);
        if (!r.ok()) return replyError(res, 400, r.error());
        answerJob(engine, res, [&](nlohmann::json& out) {
            return date && !date->empty() ? twilightReportJsonForDate(*date, out) : twilightReportJson(out);
        });
    });
    s.Get("/api/moon", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [](nlohmann::json& out) { return moonReportJson(out); });
    });
    s.Get("/api/rise", [&engine](const Request& req, Response& res) {
        std::string name;
        if (!readName(req, res, "name", "Vega or Jupiter", name)) return;
        answerJob(engine, res, [&](nlohmann::json& out) { return riseReportJson(name, out); });
    });
    s.Get("/api/info", [&engine](const Request& req, Response& res) {
        std::string name;
        if (!readName(req, res, "name", "M 42 or Vega", name)) return;
        answerJob(engine, res, [&](nlohmann::json& out) { return infoReportJson(name, out); });
    });
    s.Get("/api/find/suggest", [&engine](const Request& req, Response& res) {
        std::string prefix;
        if (!readName(req, res, "prefix", "orio", prefix)) return;
        answerJob(engine, res, [&](nlohmann::json& out) {
            out = suggestionsJson(prefix, kWebSuggestionsMax);
            return true;
        });
    });
    s.Get("/api/events", [&engine](const Request& req, Response& res) {
        QueryReader r(req.params);
        std::optional<std::string> from, to, kind;
        r.text("from", 10, from);
        r.text("to", 10, to);
        r.text("kind", 40, kind);
        if (r.ok() && (!from || !to)) r.refuse("Invalid date", "Give from= and to=, as YYYY-MM-DD.");
        if (!r.ok()) return replyError(res, 400, r.error());
        answerJob(engine, res, [&](nlohmann::json& out) {
            return eventsReportJson(*from, *to, kind.value_or(""), kWebEventsMaxYears, out);
        });
    });
}

}  // namespace nocturnel
