#include "scope/nexstar.h"

#include "scope/nexstar_format.h"
#include "scope/serial_link.h"
#include "scope/serial_options.h"
#include "settings/message.h"
#include "settings/preferences.h"

#include <cmath>
#include <string>

namespace nocturnel {
namespace {

constexpr int kNexStarBaud = 9600;
constexpr int kFirstNexStarCode = 8;
constexpr int kLastNexStarCode = 20;

int& rateCodeInUse() {
    static int code = 9;
    return code;
}

bool isUltima(int driveCode) { return driveCode == kNexStarUltima; }
bool isRaw(int driveCode) { return driveCode == kNexStar58; }

int send(std::string_view label, std::string_view bytes) {
    traceMessage(std::string(label), std::string(bytes));
    return serialWrite(bytes.data(), bytes.size());
}

std::string receive(std::string_view label, int max) {
    std::string reply(static_cast<std::size_t>(max), '\0');
    int got = serialRead(reply.data(), reply.size());
    reply.resize(static_cast<std::size_t>(got > 0 ? got : 0));
    if (!label.empty()) traceMessage(std::string(label), reply);
    return reply;
}

std::string_view packetBytes(const NexStarPacket& packet) {
    return {reinterpret_cast<const char*>(packet.data()), packet.size()};
}

// Sends a pass-through packet and checks the '#' that answers it.
int sendMotionPacket(const NexStarPacket& packet) {
    if (!send("Send", packetBytes(packet))) return 0;
    std::string answer = receive({}, 1);
    if (answer != "#") showMessage("No acknowledgement from telescope in StopSlew.");
    return 1;
}

// The two angles as the mount reports them (degrees), before folding and offsets.
bool readMountAngles(int driveCode, NexStarAngles& angles) {
    serialDiscardInput();
    if (isRaw(driveCode)) {
        if (!send("Send", "?")) return false;
        receive("receive", 1);
        if (!send("Send", "E")) return false;
        std::string reply = receive("receive", kNexStarRawReplyLength);
        if (reply.empty()) return false;
        angles = nexstarParseRawReply(reply);
        return true;
    }
    bool precise = prefs().nexstarPrecise != 0;
    if (!send("Send", precise ? "e" : "E")) return false;
    if (isUltima(driveCode) && !precise && !send("Send", "\r")) return false;
    std::string reply = receive("receive", precise ? kNexStarPreciseReplyLength : kNexStarReplyLength);
    if (reply.empty()) return false;
    angles = precise ? nexstarParsePreciseReply(reply) : nexstarParseReply(reply);
    return true;
}

double wrapHours(double hours) {
    double wrapped = std::fmod(hours, 24.0);
    return wrapped < 0 ? wrapped + 24.0 : wrapped;
}

}  // namespace

int nexstarConnect(int driveCode) {
    if (!serialOpen(prefs().scopePort, kNexStarBaud)) {
        showMessage("Fail to open serial connection");
        return 0;
    }
    serialDiscardInput();
    bool connected = false;
    if (driveCode < kFirstNexStarCode || driveCode > kLastNexStarCode) {
        showMessage("Seems scope is not a Nexstar !");
    } else if (isRaw(driveCode)) {
        connected = send("Send", "K?") && receive("Wait initialization answer", 1) == "#";
    } else if (isUltima(driveCode)) {
        connected = serialSetLineOptions(kLineOptionsNexStarUltima) && send("Send", "Kx") &&
                    send("Send Ultima validation", "\r");
        if (connected) {
            std::string reply = receive("Receive", 2);
            connected = !reply.empty() && reply[0] == 'x';
        }
    } else {
        connected = send("Send", "Kx") != 0;
        if (connected) {
            std::string reply = receive("Receive", 2);
            connected = !reply.empty() && (reply[0] == 'x' || reply[0] == 'X');
        }
    }
    if (connected) {
        traceMessage("Nexstar open", "");
        return 1;
    }
    showMessage("Fail to open Nexstar connection", serialLastReadTimedOut() ? kMountDidNotAnswerInTime : "");
    serialClose();
    return 0;
}

int nexstarDisconnect() {
    serialClose();
    return 1;
}

int nexstarReadRaDec(int driveCode, double& raHours, double& decDeg) {
    NexStarAngles angles;
    if (!readMountAngles(driveCode, angles)) return 0;
    raHours = wrapHours(angles.raDeg / 15 - prefs().nexstarRaOffsetHours);
    decDeg = nexstarFoldDec(angles.decDeg) - prefs().nexstarDecOffsetDeg;
    return 1;
}

int nexstarReadAzAlt(int /*driveCode*/, double& /*azDeg*/, double& /*altDeg*/) {
    showMessage("NexstarQueryAZ not implemented");
    return 0;
}

int nexstarGoto(int driveCode, double raHours, double decDeg) {
    if (!std::isfinite(raHours) || !std::isfinite(decDeg)) return 0;
    double raDeg = (raHours + prefs().nexstarRaOffsetHours) * 15;
    double decAngle = nexstarDecAngleForGoto(decDeg + prefs().nexstarDecOffsetDeg);
    serialDiscardInput();
    if (isRaw(driveCode)) {
        if (!send("Send", "?")) return 0;
        receive({}, 1);
        return send("Send", nexstarRawGotoCommand(raDeg, decAngle));
    }
    std::string command = prefs().nexstarPrecise ? nexstarPreciseGotoCommand(raDeg, decAngle) : nexstarGotoCommand(raDeg, decAngle);
    if (!send("Send", command)) return 0;
    if (isUltima(driveCode) && !send("Send", "\r")) return 0;
    return receive("receive", 1).size() == 1 ? 1 : 0;
}

int nexstarSync(int driveCode, double raHours, double decDeg) {
    if (!std::isfinite(raHours) || !std::isfinite(decDeg)) return 0;
    NexStarAngles angles;
    if (!readMountAngles(driveCode, angles)) {
        showMessage("Failed to get Celestron RA and Dec");
        return 0;
    }
    double offset = angles.raDeg / 15 - raHours;
    offset = std::remainder(offset, 24.0);  // the short way round, within +-12 h
    prefs().nexstarRaOffsetHours = offset;
    prefs().nexstarDecOffsetDeg = nexstarFoldDec(angles.decDeg) - decDeg;
    return 1;
}

int nexstarSetRate(int driveCode, int rate) {
    int code = nexstarRateCode(rate);
    if (code == 0) return 0;
    if (driveCode != kNexStar58) rateCodeInUse() = code;
    return 1;
}

int nexstarStartMove(int driveCode, int direction) {
    if (direction < 0 || direction > 3) return 0;
    if (driveCode == kNexStar58 || isUltima(driveCode)) return 1;  // these hand controls take no motion packets
    if (driveCode == kNexStarOldGt) return sendMotionPacket(nexstarOldGtMovePacket(direction, rateCodeInUse()));
    return sendMotionPacket(nexstarMovePacket(direction, rateCodeInUse()));
}

int nexstarStopMove(int driveCode, int direction) {
    if (direction < 0 || direction > 3) return 0;
    if (driveCode == kNexStar58 || isUltima(driveCode)) return 1;
    if (driveCode == kNexStarOldGt) return sendMotionPacket(nexstarOldGtStopPacket(direction));
    return sendMotionPacket(nexstarStopPacket(direction));
}

int nexstarStopAll(int driveCode) {
    if (driveCode == kNexStar58) return 1;
    // Stop all ends every motion the program can start: both axes' hand motions (a goto's
    // cancel leaves them running), then the goto itself.
    if (!isUltima(driveCode)) {
        for (int direction : {0, 2}) {
            const NexStarPacket stop =
                driveCode == kNexStarOldGt ? nexstarOldGtStopPacket(direction) : nexstarStopPacket(direction);
            if (!sendMotionPacket(stop)) return 0;
        }
    }
    if (driveCode == kNexStarOldGt) {
        const auto& bytes = kNexStarOldGtStopGoto;
        return send("Send", {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    if (!send("Send", "M")) return 0;
    if (receive("receive", 1) != "#") showMessage("No acknowledgement from telescope in Stop Goto.");
    return 1;
}

int nexstarRateCodeInUse() { return rateCodeInUse(); }

}  // namespace nocturnel
