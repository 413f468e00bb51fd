#include "scope/lx200_sim.h"

#include "scope/lx200_format.h"

#include <algorithm>
#include <cmath>

namespace nocturnel {
namespace {

constexpr std::size_t kMaxPendingBytes = 256;  // a line without any '#' is noise past this

std::string_view argumentOf(std::string_view command) {
    std::string_view argument = command.substr(2);
    while (!argument.empty() && argument.front() == ' ') argument.remove_prefix(1);
    return argument;
}

// A held direction key moves the mount a step per position query, by the selected rate.
void applyMotion(Lx200MountState& s) {
    static constexpr double kStepDeg[4] = {2.0, 0.5, 0.1, 0.05};
    if (s.moving < 0) return;
    double step = kStepDeg[std::clamp(s.rate, 0, 3)];
    switch (s.moving) {
        case 0: s.decDeg = std::min(90.0, s.decDeg + step); break;
        case 1: s.decDeg = std::max(-90.0, s.decDeg - step); break;
        case 2: s.raHours = std::fmod(s.raHours + step / 15 + 24, 24); break;
        default: s.raHours = std::fmod(s.raHours - step / 15 + 24, 24); break;
    }
}

}  // namespace

std::string Lx200MountModel::respond(std::string& pending) {
    std::lock_guard lock(mutex_);
    std::string replies;
    for (std::size_t end = pending.find('#'); end != std::string::npos; end = pending.find('#')) {
        std::string segment = pending.substr(0, end);
        pending.erase(0, end + 1);
        std::size_t colon = segment.find(':');
        if (colon == std::string::npos) continue;  // an empty command ("#") or noise
        std::string command = segment.substr(colon + 1);
        state_.commands.push_back(command);
        if (!state_.silent) replies += answer(command);
    }
    if (pending.size() > kMaxPendingBytes) pending.clear();
    return replies;
}

std::string Lx200MountModel::answer(const std::string& command) {
    Lx200MountState& s = state_;
    std::string_view c = command;
    auto is = [&c](std::string_view name) { return c == name; };
    if (is("GR")) {
        applyMotion(s);
        return lx200RaReply(s.raHours, s.highPrecision);
    }
    if (is("GD")) return lx200DecReply(s.decDeg, s.highPrecision);
    if (is("GA")) return lx200DecReply(s.altDeg, s.highPrecision);
    if (is("GZ")) return lx200AzimuthReply(s.azDeg, s.highPrecision);
    if (is("GC")) return s.dateReply;
    if (c.starts_with("Sr")) {
        double value = 0;
        bool ok = parseLx200Sexagesimal(argumentOf(c), value) && value >= 0 && value <= 24;
        if (ok) s.targetRaHours = value;
        return ok ? s.setReply : std::string("0");
    }
    if (c.starts_with("Sd")) {
        double value = 0;
        bool ok = parseLx200Sexagesimal(argumentOf(c), value) && std::fabs(value) <= 90;
        if (ok) s.targetDecDeg = value;
        return ok ? s.setReply : std::string("0");
    }
    if (is("MS")) {
        if (s.gotoReply.starts_with('0')) {
            s.raHours = std::fmod(s.targetRaHours, 24.0);
            s.decDeg = s.targetDecDeg;
        }
        return s.gotoReply;
    }
    if (is("CM")) {
        s.raHours = std::fmod(s.targetRaHours, 24.0);
        s.decDeg = s.targetDecDeg;
        return s.syncReply;
    }
    static constexpr std::string_view kRates[4] = {"RS", "RM", "RC", "RG"};
    static constexpr std::string_view kMoves[4] = {"Mn", "Ms", "Me", "Mw"};
    for (int i = 0; i < 4; ++i) {
        if (c == kRates[i]) s.rate = i;
        if (c == kMoves[i]) s.moving = i;
    }
    if (c.starts_with('Q')) s.moving = -1;
    if (is("U")) s.highPrecision = !s.highPrecision;
    return {};
}

PtyMount::Responder makeLx200Responder(std::shared_ptr<Lx200MountModel> model) {
    return [model = std::move(model)](std::string& pending) { return model->respond(pending); };
}

PtyMount::Responder makeLx200Responder(bool highPrecision, double raHours, double decDeg) {
    Lx200MountState initial;
    initial.highPrecision = highPrecision;
    initial.raHours = initial.targetRaHours = raHours;
    initial.decDeg = initial.targetDecDeg = decDeg;
    return makeLx200Responder(std::make_shared<Lx200MountModel>(std::move(initial)));
}

}  // namespace nocturnel
