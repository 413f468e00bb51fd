#include "scope/nexstar_sim.h"

#include <algorithm>
#include <cmath>

namespace nocturnel {
namespace {

constexpr std::size_t kMaxPendingBytes = 256;

// How many bytes the command starting `pending` needs; 0 for a byte that starts none.
std::size_t commandLength(const std::string& pending, bool raw) {
    switch (pending[0]) {
        case 'K': case 'T': return 2;
        case 'E': case 'e': case '?': case 'M': case 'L': case 'J': case '\r': case 'V': case 'm': case 't':
        case 'h': case 'w': case 'Z': case 'z': return 1;
        case 'R': return raw ? 5 : 10;
        case 'S': case 'B': return 10;
        case 'r': case 's': case 'b': return 18;
        case 'H': case 'W': return 9;
        case 'P': return 8;
        case 0x05: return 2;
        default: return 0;
    }
}

double wrapDegrees(double deg) {
    double wrapped = std::fmod(deg, 360.0);
    return wrapped < 0 ? wrapped + 360.0 : wrapped;
}

// Turns the axes for the time since the last look.
void applyMotion(NexStarMountState& s) {
    const auto now = std::chrono::steady_clock::now();
    const double seconds = std::chrono::duration<double>(now - s.motionSince).count();
    s.motionSince = now;
    if (seconds <= 0 || seconds > 3600) return;
    s.raDeg = wrapDegrees(s.raDeg + s.raRateDegPerSec * seconds);
    s.decAngleDeg = wrapDegrees(s.decAngleDeg + s.decRateDegPerSec * seconds);
}

// A pass-through packet: 'P', data length, device (0x10 RA/azimuth motor, 0x11 Dec/altitude
// motor), message id, up to three data bytes, reply length. Returns the reply.
std::string passThrough(NexStarMountState& s, const NexStarPacket& p) {
    const bool decAxis = p[2] == 0x11;
    double* rate = decAxis ? &s.decRateDegPerSec : &s.raRateDegPerSec;
    if (p[1] == 0x02 && (p[3] == 0x24 || p[3] == 0x25)) {  // fixed rate, positive or negative
        *rate = nexstarFixedRateDegPerSec(p[4]) * (p[3] == 0x24 ? 1 : -1);
        return s.ackReply;
    }
    if (p[1] == 0x04 && (p[3] == 0x06 || p[3] == 0x07)) {  // variable rate, speed in 3 bytes
        const uint32_t speed = (uint32_t{p[4]} << 16) | (uint32_t{p[5]} << 8) | p[6];
        *rate = nexstarFixedRateDegPerSec(static_cast<int>(std::min<uint32_t>(speed / 100000u, 9u))) *
                (p[3] == 0x06 ? 1 : -1);
        if (speed == 0) *rate = 0;
        return s.ackReply;
    }
    std::string data(std::min<std::size_t>(p[7], 8), '\0');  // as many bytes as the packet asks
    if (p[3] == 0xFE && data.size() >= 2) {                 // device firmware version 4.10
        data[0] = 4;
        data[1] = 10;
    }
    return data + "#";
}

}  // namespace

double nexstarFixedRateDegPerSec(int rateCode) {
    static constexpr double kRates[10] = {0, 0.002, 0.004, 0.008, 0.017, 0.033, 0.13, 0.5, 2.0, 4.0};
    return kRates[std::clamp(rateCode, 0, 9)];
}

bool NexStarMountModel::moving() const {
    std::lock_guard lock(mutex_);
    return state_.raRateDegPerSec != 0 || state_.decRateDegPerSec != 0;
}

std::string NexStarMountModel::respond(std::string& pending) {
    std::lock_guard lock(mutex_);
    NexStarMountState& s = state_;
    std::string replies;
    while (!pending.empty()) {
        std::size_t length = commandLength(pending, s.raw);
        if (length == 0) {
            pending.erase(0, 1);  // noise
            continue;
        }
        if (pending.size() < length) break;  // wait for the rest
        std::string command = pending.substr(0, length);
        pending.erase(0, length);
        if (command == "\r") continue;
        s.commands.push_back(command);
        applyMotion(s);
        std::string reply;
        switch (command[0]) {
            case 'K': reply = command == "K?" ? "#" : s.echoReply; break;
            case '?': reply = "#"; break;
            case 'E':
                if (s.raw) {
                    uint32_t ra = nexstarEncode16(s.raDeg);
                    uint32_t dec = nexstarEncode16(s.decAngleDeg);
                    for (uint32_t byte : {ra >> 8, ra & 0xFF, dec >> 8, dec & 0xFF}) reply += static_cast<char>(byte);
                } else {
                    reply = nexstarHex16(s.raDeg) + "," + nexstarHex16(s.decAngleDeg) + "#";
                }
                break;
            case 'e': reply = nexstarHex24(s.raDeg) + "00," + nexstarHex24(s.decAngleDeg) + "00#"; break;
            case 'R':
                if (s.raw) {
                    auto byte = [&command](std::size_t i) { return static_cast<uint32_t>(static_cast<uint8_t>(command[i])); };
                    s.raDeg = nexstarDecode16(256 * byte(1) + byte(2));
                    s.decAngleDeg = nexstarDecode16(256 * byte(3) + byte(4));
                } else {
                    NexStarAngles a = nexstarParseReply(command.substr(1));
                    s.raDeg = a.raDeg;
                    s.decAngleDeg = a.decDeg;
                    reply = s.gotoReply;
                }
                break;
            case 'r': {
                NexStarAngles a = nexstarParsePreciseReply(command.substr(1));
                s.raDeg = a.raDeg;
                s.decAngleDeg = a.decDeg;
                reply = s.gotoReply;
                break;
            }
            case 'L': reply = "0#"; break;          // no goto in progress: gotos arrive at once
            case 'J': reply = "\x01#"; break;       // alignment complete
            case 'V': reply = "\x04\x0A#"; break;   // hand control version 4.10
            case 'm': reply = "\x01#"; break;       // model: GPS series
            case 't': reply = std::string(1, static_cast<char>(s.trackingMode)) + "#"; break;
            case 'T': s.trackingMode = static_cast<uint8_t>(command[1]) & 3; reply = "#"; break;
            case 'h': reply = s.timeBytes + "#"; break;
            case 'H': s.timeBytes = command.substr(1); reply = "#"; break;
            case 'w': reply = s.locationBytes + "#"; break;
            case 'W': s.locationBytes = command.substr(1); reply = "#"; break;
            case 'S': case 's': {  // sync: the mount now counts its axes from the given place
                NexStarAngles a = command[0] == 'S' ? nexstarParseReply(command.substr(1))
                                                    : nexstarParsePreciseReply(command.substr(1));
                s.raDeg = a.raDeg;
                s.decAngleDeg = a.decDeg;
                reply = "#";
                break;
            }
            case 'Z': reply = nexstarHex16(s.raDeg) + "," + nexstarHex16(s.decAngleDeg) + "#"; break;
            case 'z': reply = nexstarHex24(s.raDeg) + "00," + nexstarHex24(s.decAngleDeg) + "00#"; break;
            case 'B': case 'b': reply = "#"; break;
            case 'M': reply = s.ackReply; break;
            case 'P': {
                NexStarPacket packet{};
                for (std::size_t i = 0; i < packet.size(); ++i) packet[i] = static_cast<uint8_t>(command[i]);
                s.packets.push_back(packet);
                reply = passThrough(s, packet);
                break;
            }
            default: break;  // the old GT's cancel-goto bytes: no answer
        }
        if (!s.silent) replies += reply;
    }
    if (pending.size() > kMaxPendingBytes) pending.clear();
    return replies;
}

PtyMount::Responder makeNexStarResponder(std::shared_ptr<NexStarMountModel> model) {
    return [model = std::move(model)](std::string& pending) { return model->respond(pending); };
}

PtyMount::Responder makeNexStarResponder(double raDeg, double decAngleDeg, bool raw) {
    NexStarMountState initial;
    initial.raDeg = raDeg;
    initial.decAngleDeg = decAngleDeg;
    initial.raw = raw;
    return makeNexStarResponder(std::make_shared<NexStarMountModel>(std::move(initial)));
}

}  // namespace nocturnel
