#include "shell/api_scope.h"

#include <httplib.h>

#include <cmath>
#include <chrono>
#include <cstring>
#include <memory>

#include "align/alignment.h"
#include "align/alignment_report.h"
#include "catalog/object_finder.h"
#include "core/angle_text.h"
#include "core/time.h"
#include "scope/drive_types.h"
#include "scope/scope_interface.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"
#include "shell/chart_marker.h"
#include "shell/engine.h"
#include "shell/http_readers.h"
#include "shell/http_reply.h"
#include "shell/sky_place.h"
#include "shell/star_names.h"
#include "shell/telescope_angles.h"

namespace nocturnel {
namespace {

using httplib::Request;
using httplib::Response;

constexpr std::chrono::milliseconds kWatchdogPeriod{100};



// A target: {"ra": hours, "dec": degrees} (J2000, numbers or angle texts) or {"name": ...}
// (a bright star's name, or a catalogue name such as "M 31").
bool readTarget(const nlohmann::json& body, double& raHours, double& decDeg, std::string& name) {
    if (body.contains("name")) {
        if (!body["name"].is_string() || body["name"].get<std::string>().empty() ||
            body["name"].get<std::string>().size() > 80) {
            showMessage("Invalid name", "Give the object's name, for example Vega or M 31.");
            return false;
        }
        const std::string typed = body["name"].get<std::string>();
        {
            MessageCapture quiet;  // not a bright star: the catalogues are asked next
            if (findBrightStarByName(typed, name, raHours, decDeg)) return true;
        }
        FoundObject object;
        if (!findObjectByName(typed, object)) return false;
        name = object.name;
        raHours = object.raHours;
        decDeg = object.decDeg;
        return true;
    }
    auto angle = [&](const char* key, double low, double high, double& out) {
        const auto it = body.find(key);
        std::optional<double> value;
        if (it != body.end() && it->is_number()) value = it->get<double>();
        else if (it != body.end() && it->is_string()) value = parseAngleText(it->get<std::string>());
        if (!value || !std::isfinite(*value) || *value < low || *value > high) {
            showMessage(std::string("Invalid ") + (key[0] == 'r' ? "right ascension" : "declination"),
                        it == body.end() ? "Give ra and dec (J2000), or name." : it->dump());
            return false;
        }
        out = *value;
        return true;
    };
    return angle("ra", 0, 24, raHours) && angle("dec", -90, 90, decDeg);
}

std::optional<int> directionCode(const nlohmann::json& body) {
    const auto it = body.find("dir");
    if (it == body.end() || !it->is_string()) return std::nullopt;
    const std::string d = it->get<std::string>();
    if (d == "n" || d == "N") return 0;
    if (d == "s" || d == "S") return 1;
    if (d == "e" || d == "E") return 2;
    if (d == "w" || d == "W") return 3;
    return std::nullopt;
}


nlohmann::json matrixJson() {
    const AlignmentState& s = alignmentState();
    nlohmann::json rows = nlohmann::json::array();
    for (const auto& row : s.matrix.m) rows.push_back({row[0], row[1], row[2]});
    return {{"toTime", s.toTime}, {"matrix", rows}, {"mountType", prefs().mountType},
            {"scopeDrive", prefs().scopeDrive}};
}

double nowJd() {
    const ObservingMoment& m = prefs().moment;
    return julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, prefs().utcOffsetMin);
}

void registerHandBox(httplib::Server& s, Engine& engine, const std::shared_ptr<ScopeSession>& session) {
    s.Post("/api/scope/connect", [&engine, session](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        answerJob(engine, res, [&](nlohmann::json& out) {
            // Optional drive and port for this session (not saved; Preference 1/6 saves them).
            if (body->contains("drive")) {
                const auto& d = (*body)["drive"];
                const int code = d.is_string() ? driveCodeFromName(d.get<std::string>())
                                 : d.is_number_integer() ? driveCodeFromName(std::to_string(d.get<long long>()))
                                                         : -1;
                if (code < 0) {
                    showMessage("Unknown scope drive", d.dump());
                    return false;
                }
                prefs().scopeDrive = code;
            }
            if (body->contains("port")) {
                const auto& port = (*body)["port"];
                if (!port.is_string() || port.get<std::string>().size() >= sizeof prefs().scopeDevice) {
                    showMessage("Can't open serial port", port.dump());
                    return false;
                }
                copyFixedText(prefs().scopeDevice, port.get<std::string>().c_str());
            }
            if (!connectScope(*session)) return false;
            const int code = prefs().scopeDrive;
            out = {{"ok", true}, {"action", "Connected to " + std::string(driveListName(code))}, {"drive", code}};
            return true;
        });
    });
    s.Post("/api/scope/disconnect", [&engine, session](const Request&, Response& res) {
        answerJob(engine, res, [&](nlohmann::json& out) {
            disconnectScope(*session);
            out = {{"ok", true}, {"action", "Disconnect"}};
            return true;
        });
    });
    s.Post("/api/scope/read", [&engine, session](const Request&, Response& res) {
        answerJob(engine, res, [&](nlohmann::json& out) {
            prepareScope(*session);
            double first = 0, second = 0;
            if (!scopeReadPosition(first, second)) return false;
            const int code = prefs().scopeDrive;
            const bool altAz = (driveFamily(code) == DriveFamily::EncoderBox || code == kDriveSiderealTech) &&
                               prefs().mountType == 1;
            out = altAz ? nlohmann::json{{"az", first}, {"alt", second}} : nlohmann::json{{"ra", first}, {"dec", second}};
            return true;
        });
    });
    for (const bool isGoto : {true, false}) {
        s.Post(isGoto ? "/api/scope/goto" : "/api/scope/sync", [&engine, session, isGoto](const Request& req, Response& res) {
            const auto body = readJsonBody(req, res);
            if (!body) return;
            answerJob(engine, res, [&](nlohmann::json& out) {
                double ra = 0, dec = 0;
                std::string name;
                if (!readTarget(*body, ra, dec, name)) return false;
                prepareScope(*session);
                const int ok = isGoto ? scopeGotoEquatorial(ra, dec) : scopeSyncEquatorial(ra, dec);
                if (!ok) {
                    if (isGoto) showMessage("Goto failed");
                    return false;
                }
                const ScopeTarget& t = lastScopeTarget();
                out = {{"ok", true},       {"action", isGoto ? "goto" : "sync"}, {"ra", t.raHours}, {"dec", t.decDeg},
                       {"az", t.azDeg},    {"alt", t.altDeg},                    {"answer", t.driveAnswer}};
                if (!name.empty()) out["name"] = toUtf8(name);
                return true;
            });
        });
    }
    s.Post("/api/scope/rate", [&engine, session](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        JsonReader r(*body);
        std::optional<int> rate;
        r.whole("rate", 0, 3, rate);
        if (r.ok() && !rate) r.refuse("Invalid value for rate", "Give rate 0 (slew) .. 3 (guide).");
        if (!r.ok()) return replyError(res, 400, r.error());
        answerJob(engine, res, [&](nlohmann::json& out) {
            prepareScope(*session);
            if (!operationSucceeded([&] { return scopeSetSlewRate(*rate); })) return false;
            out = {{"ok", true}, {"action", "Rate " + std::to_string(*rate)}, {"rate", *rate}};
            return true;
        });
    });
    s.Post("/api/scope/move", [&engine, session](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        const auto direction = directionCode(*body);
        if (!direction) return replyError(res, 400, Message{"Unknown direction", "Give dir: n, s, e or w."});
        answerJob(engine, res, [&](nlohmann::json& out) {
            prepareScope(*session);
            if (!operationSucceeded([&] { return scopeStartMove(*direction); })) return false;
            // Held from now on: the page renews it (/api/scope/move/renew) until the release.
            session->heldMoves.hold(*direction);
            out = {{"ok", true}, {"action", "Move"}, {"direction", *direction},
                   {"watchdogMs", MoveWatchdog::kDefaultGrace.count()}};
            return true;
        });
    });
    s.Post("/api/scope/stop", [&engine, session](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        const bool all = !body->contains("dir");
        const auto direction = directionCode(*body);
        if (!all && !direction) return replyError(res, 400, Message{"Unknown direction", "Give dir: n, s, e or w, or nothing to stop all."});
        answerJob(engine, res, [&](nlohmann::json& out) {
            prepareScope(*session);
            if (all) {
                session->heldMoves.releaseAll();
                if (!operationSucceeded(scopeStopAll)) return false;
                out = {{"ok", true}, {"action", "Stop"}};
                return true;
            }
            session->heldMoves.release(*direction);
            if (!stopMove(*direction)) return false;
            out = {{"ok", true}, {"action", "Stop"}, {"direction", *direction}};
            return true;
        });
    });
    // The page still holds a direction key: answered on the request's thread (never behind a
    // long engine job). {"held": false} when the move was already stopped, by a release, Stop,
    // or the watchdog after a silence.
    s.Post("/api/scope/move/renew", [session](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        const auto direction = directionCode(*body);
        if (!direction) return replyError(res, 400, Message{"Unknown direction", "Give dir: n, s, e or w."});
        replyJson(res, {{"held", session->heldMoves.renew(*direction)}, {"direction", *direction}});
    });
    s.Get("/api/scope/position", [&engine, session](const Request& req, Response& res) {
        // The view parameters of the chart the page shows (as for chart.png) place the marker.
        ChartMarkerPlacer marker;
        if (!marker.read(req.params)) return replyError(res, 400, marker.error());
        answerJob(engine, res, [&](nlohmann::json& out) {
            out = {{"connected", false}};
            if (!session->connected) return true;
            prepareScope(*session);
            double ra = 0, dec = 0;
            const int ok = scopeTrackPosition(ra, dec);
            scopeDisconnect();
            if (!ok) {
                session->connected = false;  // the marker timer stops; the message says why
                setHoldOpen(0);
                serialClose();
                return true;
            }
            out = {{"connected", true}, {"ra", ra}, {"dec", dec}};
            addHorizontalPlace(out, ra, dec);
            if (out.contains("alt") && out.contains("az")) {
                if (const auto point = marker.place(out["az"], out["alt"])) {
                    out["x"] = point->x;
                    out["y"] = point->y;
                }
            }
            return true;
        });
    });
}

void registerAlignment(httplib::Server& s, Engine& engine, const std::shared_ptr<ScopeSession>& session) {
    s.Post("/api/align", [&engine, session](const Request& req, Response& res) {
        const auto body = readJsonBody(req, res);
        if (!body) return;
        answerJob(engine, res, [&](nlohmann::json& out) {
            // {"fromScope": true, "star": 1|2, "name": "Vega"}: the user centred the star; its
            // fields are read from the drive and returned for the form.
            const auto fromScope = body->find("fromScope");
            if (fromScope != body->end() && fromScope->is_boolean() && fromScope->get<bool>()) {
                const auto name = body->find("name");
                const auto starIt = body->find("star");
                const int star = starIt != body->end() && starIt->is_number_integer() ? starIt->get<int>() : 0;
                if (name == body->end() || !name->is_string() || name->get<std::string>().size() > 47 ||
                    (star != 1 && star != 2)) {
                    showMessage("Fail to compute align matrix", "Give star 1 or 2 and the name of the centred star.");
                    return false;
                }
                prepareScope(*session);
                std::string fields[6];
                if (!readAlignmentStarFromScope(name->get<std::string>(), fields)) return false;
                out = {{"star", star}, {"name", toUtf8(fields[0])}, {"time", fields[1]}, {"ra", toUtf8(fields[2])},
                       {"dec", toUtf8(fields[3])}, {"hor", toUtf8(fields[4])}, {"elv", toUtf8(fields[5])}};
                return true;
            }
            AlignmentForm form;
            const auto stars = body->find("stars");
            if (stars == body->end() || !stars->is_array() || stars->size() != 2) {
                showMessage("Fail to compute align matrix", "Give stars: two of {name, time, ra, dec, hor, elv}.");
                return false;
            }
            for (int i = 0; i < 2; ++i) {
                const nlohmann::json& star = (*stars)[i];
                auto field = [&](const char* key) {
                    const auto it = star.find(key);
                    if (it == star.end()) return std::string();
                    return it->is_string() ? it->get<std::string>().substr(0, 48) : it->dump();
                };
                form.star[i] = {field("name"), field("time"), field("ra"), field("dec"), field("hor"), field("elv")};
            }
            if (body->contains("toTime") && (*body)["toTime"].is_string()) form.toTime = (*body)["toTime"].get<std::string>().substr(0, 8);
            prepareScope(*session);
            if (!computeAlignmentFromForm(form, nowJd())) return false;
            installAlignmentMapping();
            out = matrixJson();
            return true;
        });
    });
    s.Post("/api/align/restore", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [&](nlohmann::json& out) {
            if (!prefs().hasSavedAlignment) {
                showMessage("Please do 2 stars alignment first.");
                return false;
            }
            if (!restoreAlignment()) return false;
            installAlignmentMapping();
            out = matrixJson();
            return true;
        });
    });
    s.Get("/api/align/report", [&engine](const Request&, Response& res) {
        answerJob(engine, res, [&](nlohmann::json& out) {
            if (!alignmentState().valid) {
                if (!prefs().hasSavedAlignment) {
                    showMessage("Please do 2 stars alignment first.");
                    return false;
                }
                if (!restoreAlignment()) return false;
            }
            const ObservingMoment& m = prefs().moment;
            const CalendarDate now{m.year, m.month, m.day, m.hour, m.minute, m.second};
            const std::filesystem::path file = programFolder() / kAlignmentReportFile;
            if (!saveAlignmentReport(file, now)) return false;
            std::string text;
            writeAlignmentReport(text, now);
            out = {{"file", file.string()}, {"text", toUtf8(text)}};
            return true;
        });
    });
}

}  // namespace

void registerScopeRoutes(httplib::Server& s, Engine& engine, const std::shared_ptr<ScopeSession>& session) {
    // The held-move watchdog looks at its deadlines a few times a second on the engine thread.
    engine.setPeriodicTask(kWatchdogPeriod, [session] { stopAbandonedMoves(*session); });
    registerHandBox(s, engine, session);
    registerAlignment(s, engine, session);
}

}  // namespace nocturnel
