#include "scope/takahashi_simulator.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "scope/takahashi_wire.h"

namespace nocturnel {
namespace {

bool digitsAt(const std::string& text, std::size_t from, std::size_t count) {
    if (text.size() < from + count) return false;
    for (std::size_t i = from; i < from + count; ++i)
        if (text[i] < '0' || text[i] > '9') return false;
    return true;
}

// "HHMMSS" + sign + "DDMMt" starting at `from`; nothing when the fields are malformed.
bool parsePosition(const std::string& text, std::size_t from, double& raHours, double& decDeg) {
    if (text.size() != from + 12 || !digitsAt(text, from, 6) || !digitsAt(text, from + 7, 5)) return false;
    const char sign = text[from + 6];
    if (sign != '+' && sign != '-' && sign != ' ') return false;
    int h = 0, m = 0, s = 0, d = 0, dm = 0, t = 0;
    std::sscanf(text.c_str() + from, "%2d%2d%2d", &h, &m, &s);
    std::sscanf(text.c_str() + from + 7, "%2d%2d%1d", &d, &dm, &t);
    raHours = h + m / 60.0 + s / 3600.0;
    decDeg = d + dm / 60.0 + t / 600.0;
    if (sign == '-') decDeg = -decDeg;
    return true;
}

// Turns the mount for the time since the last command while a direction is held.
void applyMotion(TakahashiSimulation& sim) {
    const auto now = std::chrono::steady_clock::now();
    const double seconds = std::chrono::duration<double>(now - sim.motionSince).count();
    sim.motionSince = now;
    if (sim.motionDirection < 0 || seconds <= 0 || seconds > 3600) return;
    const double step = (sim.motionFast ? 2.0 : 0.1) * seconds;
    switch (sim.motionDirection) {
        case 0: sim.decDeg = std::min(90.0, sim.decDeg + step); break;
        case 1: sim.decDeg = std::max(-90.0, sim.decDeg - step); break;
        case 2: sim.raHours = std::fmod(sim.raHours + step / 15 + 24, 24); break;
        default: sim.raHours = std::fmod(sim.raHours - step / 15 + 24, 24); break;
    }
}

// The hand-motion commands: slow "MI" "MQ" "MC" "ME", fast "MH" "MP" "MB" "MD" (north,
// south, east, west); "M@" stops.
void takeMotion(TakahashiSimulation& sim, const std::string& line) {
    static constexpr std::string_view kSlow = "IQCE", kFast = "HPBD";
    sim.lastMotion = line;
    sim.motionDirection = -1;
    if (auto slow = kSlow.find(line[1]); slow != std::string_view::npos) {
        sim.motionDirection = static_cast<int>(slow);
        sim.motionFast = false;
    } else if (auto fast = kFast.find(line[1]); fast != std::string_view::npos) {
        sim.motionDirection = static_cast<int>(fast);
        sim.motionFast = true;
    }
}

std::string answerLine(TakahashiSimulation& sim, const std::string& line) {
    applyMotion(sim);
    if (line == "v") return sim.versionReply;
    if (line == "g") {  // the sidereal time the mount keeps, "gHHMMSS"
        const long seconds = std::lround(std::fmod(std::fabs(sim.lstHours), 24.0) * 3600) % 86400;
        char text[32];
        std::snprintf(text, sizeof text, "g%02ld%02ld%02ld\r\n", seconds / 3600, seconds / 60 % 60, seconds % 60);
        return text;
    }
    if (line == "i") {  // the latitude the mount keeps, "isDDMMt" (t: tenths of a minute)
        const long tenths = std::lround(std::fmin(std::fabs(sim.latitudeDeg), 90.0) * 600);
        char text[32];
        std::snprintf(text, sizeof text, "i%c%02ld%02ld%01ld\r\n", sim.latitudeDeg < 0 ? '-' : '+', tenths / 600,
                      tenths / 10 % 60, tenths % 10);
        return text;
    }
    if (line == "STN-COD") return sim.motorsOn ? "stn-on\r\n" : "stn-off\r\n";
    if (line == "STN-ON" || line == "STN-OFF") {
        sim.motorsOn = line == "STN-ON";
        return sim.motorsOn ? "stn-on\r\n" : "stn-off\r\n";
    }
    if (line == "E") {
        if (sim.positionOverride) return *sim.positionOverride;
        char flag = sim.side;
        if (sim.movingPolls > 0) {
            flag = 'F';
            --sim.movingPolls;
        }
        return takahashiPositionReply(sim.raHours, sim.decDeg, flag);
    }
    if (line == "Z") {
        sim.raHours = sim.lstHours;
        sim.decDeg = sim.latitudeDeg;
        sim.movingPolls = sim.pollsPerMove;
        ++sim.zenithCount;
        return {};
    }
    if (line.rfind("PT", 0) == 0) {  // the program's flip text carries CR and ',' after "PT"
        sim.side = sim.side == 'E' ? 'W' : 'E';
        sim.movingPolls = sim.pollsPerMove;
        ++sim.flipCount;
        return {};
    }
    if (line == "PS") {
        sim.slewing = false;
        sim.motionDirection = -1;
        return {};
    }
    if (line == "s") return sim.slewing ? "s1\r\n" : "s0\r\n";
    if (line.size() == 2 && line[0] == 'M') {
        takeMotion(sim, line);
        return {};
    }
    if (line.size() == 7 && line[0] == 'T' && digitsAt(line, 1, 6)) {
        int h = 0, m = 0, s = 0;
        std::sscanf(line.c_str() + 1, "%2d%2d%2d", &h, &m, &s);
        sim.lstHours = h + m / 60.0 + s / 3600.0;
        return {};
    }
    if (line.size() == 7 && line[0] == 'I' && (line[1] == '+' || line[1] == '-') && digitsAt(line, 2, 5)) {
        int d = 0, m = 0, t = 0;
        std::sscanf(line.c_str() + 2, "%2d%2d%1d", &d, &m, &t);
        sim.latitudeDeg = (line[1] == '-' ? -1 : 1) * (d + m / 60.0 + t / 600.0);
        sim.hasLatitude = true;
        return {};
    }
    if (line[0] == 'P' || line[0] == 'D') {
        if (line.size() > 13) return "R3\r\n";
        double ra = 0, dec = 0;
        if (!parsePosition(line, 1, ra, dec)) return "R1\r\n";
        if (line[0] == 'D') {
            sim.raHours = ra;
            sim.decDeg = dec;
            return "R0\r\n";
        }
        if (parseTakahashiGotoAnswer(sim.gotoAnswer) == TakahashiGotoAnswer::Accepted) {
            sim.raHours = ra;
            sim.decDeg = dec;
            sim.slewing = true;
        }
        return sim.gotoAnswer;
    }
    return {};  // unknown commands get no answer
}

}  // namespace

PtyMount::Responder makeTakahashiResponder(std::shared_ptr<TakahashiSimulation> simulation) {
    if (!simulation) simulation = std::make_shared<TakahashiSimulation>();
    return [simulation](std::string& pending) {
        std::lock_guard lock(simulation->mutex);
        std::string reply;
        for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
            std::string line = pending.substr(0, end);
            pending.erase(0, end + 1);
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (line.empty()) continue;
            std::string answer = answerLine(*simulation, line);  // a silent mount still obeys
            if (!simulation->silent) reply += answer;
        }
        return reply;
    };
}

}  // namespace nocturnel
