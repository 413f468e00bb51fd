#include "scope/takahashi_simulator.h"

#include <cstdio>

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

std::string answerLine(TakahashiSimulation& sim, const std::string& line) {
    if (line == "v") return sim.versionReply;
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
        return {};
    }
    if (line == "s") return sim.slewing ? "s1\r\n" : "s0\r\n";
    if (line.size() == 2 && line[0] == 'M') {
        sim.lastMotion = line;
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
            if (line.empty() || simulation->silent) continue;
            reply += answerLine(*simulation, line);
        }
        return reply;
    };
}

}  // namespace nocturnel
