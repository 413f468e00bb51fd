#include "scope/nexstar_sim.h"

namespace nocturnel {
namespace {

constexpr std::size_t kMaxPendingBytes = 256;

// How many bytes the command starting `pending` needs; 0 for a byte that starts none.
std::size_t commandLength(const std::string& pending, bool raw) {
    switch (pending[0]) {
        case 'K': return 2;
        case 'E': case 'e': case '?': case 'M': case 'L': case 'J': case '\r': return 1;
        case 'R': return raw ? 5 : 10;
        case 'r': return 18;
        case 'P': return 8;
        case 0x05: return 2;
        default: return 0;
    }
}

}  // namespace

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
            case 'L': case 'J': reply = "0#"; break;
            case 'M': reply = s.ackReply; break;
            case 'P': {
                NexStarPacket packet{};
                for (std::size_t i = 0; i < packet.size(); ++i) packet[i] = static_cast<uint8_t>(command[i]);
                s.packets.push_back(packet);
                reply = s.ackReply;
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
