#include "scope/lx200.h"

#include "scope/drive_types.h"
#include "scope/lx200_format.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences.h"

#include <cmath>
#include <string>

namespace nocturnel {
namespace {

constexpr int kLx200Baud = 9600;

// The telescope that answers instead of the port while prefs().simulatedScope is set. The
// shown position walks towards the target one tenth of the way per read, or drifts while a
// direction key is held.
struct SimulatedTelescope {
    double raHours = 0;
    double decDeg = 0;
    double targetRaHours = 0;
    double targetDecDeg = 0;
    double raDriftHours = 0;  // per read
    double decDriftDeg = 0;   // per read
    double rateDeg = 2.0;     // per read
};

struct Lx200State {
    int highPrecision = 0;
    SimulatedTelescope simulated;
};

Lx200State& state() {
    static Lx200State s;
    return s;
}

bool simulated() { return prefs().simulatedScope != 0; }

int send(std::string_view label, std::string_view command) {
    traceMessage(std::string(label), std::string(command));
    return serialWrite(command.data(), command.size());
}

int sendOrComplain(std::string_view label, std::string_view command) {
    if (send(label, command)) return 1;
    showMessage("Fail to send string");
    return 0;
}

// Reads up to `max` bytes; the text that came (empty on a time-out).
std::string receive(std::string_view label, int max) {
    std::string reply(static_cast<std::size_t>(max), '\0');
    int got = serialRead(reply.data(), reply.size());
    reply.resize(static_cast<std::size_t>(got > 0 ? got : 0));
    if (!label.empty()) traceMessage(std::string(label), reply);
    return reply;
}

// One query: the command, then a reply of the given length parsed as a number.
bool query(std::string_view command, int replyLength, std::string_view sendLabel, std::string_view receiveLabel,
           double& value) {
    if (!send(sendLabel, command)) return false;
    std::string reply = receive(receiveLabel, replyLength);
    if (reply.empty() || !isLx200PositionText(reply)) return false;
    value = parseLx200Value(reply);
    return true;
}

void simulatedRead(double& raHours, double& decDeg) {
    SimulatedTelescope& t = state().simulated;
    if (t.raDriftHours != 0) {
        t.raHours += t.raDriftHours;
    } else if (std::fabs(t.targetRaHours - t.raHours) > 0.06666666666666667) {
        t.raHours += (t.targetRaHours - t.raHours) / 10;
    } else {
        t.raHours = t.targetRaHours;
    }
    t.raHours = std::fmod(t.raHours, 24.0);
    if (t.raHours < 0) t.raHours += 24.0;

    if (t.decDriftDeg != 0) {
        t.decDeg += t.decDriftDeg;
    } else if (std::fabs(t.targetDecDeg - t.decDeg) > 1.0) {
        t.decDeg += (t.targetDecDeg - t.decDeg) / 10;
    } else {
        t.decDeg = t.targetDecDeg;
    }
    if (t.decDeg > 90) t.decDeg = 90;
    if (t.decDeg < -90) t.decDeg = -90;
    raHours = t.raHours;
    decDeg = t.decDeg;
}

void simulatedStop() {
    SimulatedTelescope& t = state().simulated;
    t.targetRaHours = t.raHours;
    t.targetDecDeg = t.decDeg;
    t.raDriftHours = 0;
    t.decDriftDeg = 0;
}

bool finite(double a, double b) { return std::isfinite(a) && std::isfinite(b); }

}  // namespace

int lx200Connect(int driveCode) {
    if (simulated()) return 1;
    if (!serialOpen(prefs().scopePort, kLx200Baud)) {
        showMessage("Fail to open serial connection");
        return 0;
    }
    serialDiscardInput();
    bool connected = false;
    switch (driveCode) {
        case kDriveAutoStar:
        case kDriveLx200:
        case kDriveLosmandy:
            if (send("Connect:Send", kLx200GetDec)) {
                std::string reply = receive("Connect:Receive", kLx200ConnectReplyMax);
                connected = static_cast<int>(reply.size()) >= kLx200ConnectReplyMin;
                if (static_cast<int>(reply.size()) == kLx200ConnectReplyMax) state().highPrecision = 1;
            }
            break;
        case kDriveMagellan1:
        case kDriveMagellan2:
            if (send("Connect:Send", kLx200GetDate)) {
                std::string reply = receive("Connect:Receive", kLx200DateReplyLength);
                connected = static_cast<int>(reply.size()) == kLx200DateReplyLength;
            }
            break;
        default:
            showMessage("Seems scope is not Meade !");
            break;
    }
    if (connected) return 1;
    showMessage("Fail to open Meade connection", serialLastReadTimedOut() ? kMountDidNotAnswerInTime : "");
    serialClose();
    return 0;
}

int lx200Disconnect() {
    if (!simulated()) serialClose();
    return 1;
}

int lx200ReadRaDec(double& raHours, double& decDeg) {
    if (simulated()) {
        simulatedRead(raHours, decDeg);
        return 1;
    }
    bool high = state().highPrecision != 0;
    serialDiscardInput();
    double ra = 0;
    double dec = 0;
    if (!query(kLx200GetRa, lx200RaReplyLength(high), "QueryEQ:Send", "QueryEQ:Receive", ra)) return 0;
    if (!query(kLx200GetDec, lx200DecReplyLength(high), "QueryEQ:Send", "QueryEQ:Receive", dec)) return 0;
    raHours = ra;
    decDeg = dec;
    return 1;
}

int lx200ReadAzAlt(double& azDeg, double& altDeg) {
    if (simulated()) {
        showMessage("Failed to get Meade Az and Alt", "The simulated telescope reports RA and Dec only");
        return 0;
    }
    bool high = state().highPrecision != 0;
    serialDiscardInput();
    double az = 0;
    double alt = 0;
    if (!query(kLx200GetAz, lx200DecReplyLength(high), "QueryAZ:Send", "QueryAZ:Receive", az)) return 0;
    if (!query(kLx200GetAlt, lx200DecReplyLength(high), "QueryAZ:Send", "QueryAZ:Receive", alt)) return 0;
    azDeg = az;
    altDeg = alt;
    return 1;
}

int lx200Goto(int driveCode, double raHours, double decDeg) {
    if (simulated()) {
        if (!finite(raHours, decDeg)) return 0;
        SimulatedTelescope& t = state().simulated;
        t.targetRaHours = raHours;
        t.targetDecDeg = decDeg;
        t.raDriftHours = 0;
        t.decDriftDeg = 0;
        return 0;
    }
    bool high = state().highPrecision != 0;
    serialDiscardInput();
    if (!sendOrComplain("GotoEQ:Set ra", lx200RaSetCommand(raHours, high))) return 0;
    std::string ack = receive({}, 1);
    if (ack.size() == 1 && ack[0] != '1') showMessage("Fail to get Meade ack for ra set");

    if (driveCode == kDriveLosmandy && !sendOrComplain("Gemini :ON#:Set object", kLx200GeminiObjectName)) return 0;

    if (!sendOrComplain("GotoEQ:Set dec", lx200DecSetCommand(decDeg, high))) return 0;
    ack = receive({}, 1);
    if (ack.size() == 1 && ack[0] != '1') showMessage("Fail to get Meade ack for dec set");

    if (!sendOrComplain("GotoEQ:Ask goto", kLx200SlewToTarget)) return 0;
    std::string answer = receive({}, 1);
    if (answer.empty()) return 0;
    int code = lx200GotoAnswerCode(answer[0]);
    switch (code) {
        case 0: break;
        case 1: showMessage("Object is below horizon in Goto."); break;
        case 2: showMessage("Declination is above upper limit.\n"); break;
        default: showMessage("Unexpected return from command #:MS#\n"); break;
    }
    return code;
}

int lx200Sync(double raHours, double decDeg) {
    if (simulated()) {
        if (!finite(raHours, decDeg)) return 0;
        SimulatedTelescope& t = state().simulated;
        t.targetRaHours = t.raHours = raHours;
        t.targetDecDeg = t.decDeg = decDeg;
        t.raDriftHours = 0;
        t.decDriftDeg = 0;
        return 1;
    }
    bool high = state().highPrecision != 0;
    serialDiscardInput();
    if (!sendOrComplain("SyncEQ:Set ra", lx200SyncRaSetCommand(raHours, high))) return 0;
    receive({}, 1);
    if (!sendOrComplain("SyncEQ:Set dec", lx200DecSetCommand(decDeg, high))) return 0;
    receive({}, 1);
    return sendOrComplain("SyncEQ:Sync", kLx200SyncToTarget);
}

int lx200SetRate(int rate) {
    std::string_view command = lx200RateCommand(rate);
    if (command.empty()) return 0;
    if (simulated()) {
        static constexpr double kRatesDeg[4] = {2.0, 0.5, 0.1, 0.05};
        state().simulated.rateDeg = kRatesDeg[rate];
        return 1;
    }
    return sendOrComplain("SetRate:Send", command);
}

int lx200StartMove(int direction) {
    std::string_view command = lx200MoveCommand(direction);
    if (command.empty()) return 0;
    if (simulated()) {
        SimulatedTelescope& t = state().simulated;
        switch (direction) {
            case 0: t.decDriftDeg = -t.rateDeg; break;  // north lowers Dec, as the simulator always did
            case 1: t.decDriftDeg = t.rateDeg; break;
            case 2: t.raDriftHours = t.rateDeg / -15; break;
            default: t.raDriftHours = t.rateDeg / 15; break;
        }
        return 1;
    }
    return sendOrComplain("StartMove:Send", command);
}

int lx200StopMove(int direction) {
    std::string_view command = lx200StopCommand(direction);
    if (command.empty()) return 0;
    if (simulated()) {
        simulatedStop();
        return 1;
    }
    return sendOrComplain("StopMove:Send", command);
}

int lx200StopAll() {
    if (simulated()) {
        simulatedStop();
        return 1;
    }
    return sendOrComplain("StopAll:Send", kLx200StopAll);
}

void lx200ResetState() { state() = Lx200State{}; }

bool lx200HighPrecision() { return state().highPrecision != 0; }

}  // namespace nocturnel
