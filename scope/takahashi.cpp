#include "scope/takahashi.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <thread>

#include "core/time.h"
#include "scope/mount_questions.h"
#include "scope/scope_interface.h"
#include "scope/serial_link.h"
#include "scope/takahashi_wire.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

constexpr const char* kZenithQuestion =
    "Please, point your telescope to zenith and press Yes if it is placed at the East side, else press No.";

TakahashiState& state() {
    static TakahashiState s;
    return s;
}

int& pollPauseMs() {
    static int pause = 250;
    return pause;
}

// Local sidereal time now (the telescope operations' clock) at the site of the preferences, hours.
double siderealTimeNow() {
    const Preferences& p = prefs();
    const ObservingMoment m = scopeNow();
    return localSiderealTime(m.year, m.month, m.day, m.hour, m.minute, m.second, p.longitudeDeg, p.utcOffsetMin);
}

// A sidereal time handed over by takahashiSetSiderealTime serves the operation that follows
// it, and only that one: later operations take the clock again rather than a stale value.
struct HandedSiderealTimeServesOneOperation {
    HandedSiderealTimeServesOneOperation() = default;
    HandedSiderealTimeServesOneOperation(const HandedSiderealTimeServesOneOperation&) = delete;
    HandedSiderealTimeServesOneOperation& operator=(const HandedSiderealTimeServesOneOperation&) = delete;
    ~HandedSiderealTimeServesOneOperation() { state().siderealTimePending = false; }
};

bool send(const std::string& label, std::string_view bytes) {
    traceMessage(label, std::string(bytes));
    return serialWrite(bytes.data(), bytes.size()) != 0;
}

std::string receive(const std::string& label, std::size_t max) {
    std::array<char, 64> buffer{};
    const int got = serialRead(buffer.data(), std::min(max, buffer.size()));
    std::string reply(buffer.data(), static_cast<std::size_t>(got > 0 ? got : 0));
    traceMessage(label, reply);
    return reply;
}

bool sendSiderealTime() {
    const double lst = state().siderealTimePending ? state().siderealTimeHours : siderealTimeNow();
    return send("QueryEQ:Send localSiderealTime", takahashiSiderealTimeCommand(lst));
}

bool sendLatitude() { return send("Connect:Send latitude", takahashiLatitudeCommand(prefs().latitudeDeg)); }

// One position query; keeps the status letter. Nothing on a failed send or an unusable reply.
std::optional<TakahashiPosition> queryPosition() {
    if (!send("QueryEQ:Send", kTakahashiPositionCommand)) return std::nullopt;
    const std::string reply = receive("QueryEQ:Receive position", kTakahashiPositionReplyBytes);
    auto position = parseTakahashiPosition(reply);
    if (position) state().pierFlag = position->pierFlag;
    return position;
}

// Zenith, then a flip when the mount stands on the other side, then zenith again.
int runPierSideProcedure(char side) {
    if (!sendSiderealTime() || !send("Connect:Send zenith cmd ", kTakahashiZenithCommand)) return 0;
    bool flipSent = false;
    for (int poll = 0;; ++poll) {
        if (!queryPosition()) return 0;
        const char flag = state().pierFlag;
        if (flag != 'F' && flag != side && !flipSent) {
            if (!send("Connect:Send flip side ", kTakahashiFlipCommand)) return 0;
            flipSent = true;
        }
        if (flag != 'F') break;
        if (poll + 1 >= kTakahashiPierPollLimit) return 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(pollPauseMs()));
    }
    if (!sendSiderealTime() || !send("Connect:Send zenith cmd ", kTakahashiZenithCommand)) return 0;
    return 1;
}

// Latitude, sidereal time and pier side: the mount's set-up on its first connection.
void sendSiteAndPierSide() {
    bool sent = sendSiderealTime() && sendLatitude();
    if (sent && state().pierSideAnswer < 0) {
        // The answer sends the mount to the zenith and resets where it believes it points:
        // asked once, and without an answer the mount is left as it is.
        if (auto answer = askMountQuestion(kZenithQuestion)) state().pierSideAnswer = *answer ? 1 : 0;
        if (state().pierSideAnswer >= 0) sent = runPierSideProcedure(state().pierSideAnswer == 1 ? 'E' : 'W') != 0;
    }
    if (!sent) showMessage("No response from Takahashi");
    state().latitudeSent = 1;
}

// Sends a goto or sync position and checks the mount's answer.
int sendPosition(const std::string& command) {
    if (!state().gotoLatitudeSent) {
        if (!sendLatitude()) {
            showMessage("Fail to send string");
            return 0;
        }
        state().gotoLatitudeSent = 1;
    }
    if (!sendSiderealTime() || !send("GotoEQ:send position", command)) {
        showMessage("Fail to send string");
        return 0;
    }
    const std::string answer = receive("GotoEQ:Receive", kTakahashiGotoReplyBytes);
    switch (parseTakahashiGotoAnswer(answer)) {
        case TakahashiGotoAnswer::Accepted: return 1;
        case TakahashiGotoAnswer::TooManyDigits: showMessage("Takahashi", "Too many digits in Goto."); return 0;
        case TakahashiGotoAnswer::WrongDec: showMessage("Takahashi", "Wrong dec in Goto."); return 0;
        case TakahashiGotoAnswer::WrongRa: showMessage("Takahashi", "Wrong ra in Goto."); return 0;
        case TakahashiGotoAnswer::NoResponse: break;
    }
    showMessage("No response from Takahashi");
    return 0;
}

}  // namespace

const TakahashiState& takahashiState() { return state(); }

void takahashiResetState() { state() = TakahashiState{}; }

void setTakahashiPollPauseMillisecondsForTests(int milliseconds) { pollPauseMs() = milliseconds < 0 ? 0 : milliseconds; }

int takahashiConnect() {
    HandedSiderealTimeServesOneOperation operation;
    if (!serialOpen(prefs().scopePort, kTakahashiBaud)) {
        showMessage("Fail to open serial connection");
        return 0;
    }
    // Port number 0 cannot be opened (it means "no port"), so this never applies; kept so the
    // rule stays where it always was.
    if (prefs().scopePort == 0) {
        traceMessage("Connect:SetFlags activate even parity", "");
        if (!serialSetLineOptions(kTakahashiLineOptions)) {
            showMessage("Fail to set Takahashi serial port parameters");
            return 0;
        }
    }
    bool made = send("Connect:Send", kTakahashiVersionCommand);
    if (made) made = isTakahashiVersionReply(receive("Connect:Receive", kTakahashiVersionReplyMax));
    if (!made) {
        showMessage("Fail to open Takahasi connection.", serialLastReadTimedOut() ? kMountDidNotAnswerInTime : "");
        serialClose();
        return 0;
    }
    if (!state().latitudeSent) sendSiteAndPierSide();
    return 1;
}

int takahashiDisconnect() {
    serialClose();
    return 1;
}

void takahashiSetSiderealTime(double lstHours) {
    state().hasSiderealTime = true;
    state().siderealTimeHours = lstHours;
    state().siderealTimePending = true;
}

int takahashiReadRaDec(double& raHours, double& decDeg) {
    HandedSiderealTimeServesOneOperation operation;
    auto position = queryPosition();
    if (!position) {
        showMessage("No response from Takahashi");
        return 0;
    }
    raHours = position->raHours;
    decDeg = position->decDeg;
    return 1;
}

int takahashiReadAltAz() {
    showMessage("Takahasi query AZ not implemented");
    return 0;
}

int takahashiGoto(double raHours, double decDeg) {
    HandedSiderealTimeServesOneOperation operation;
    return sendPosition(takahashiGotoCommand(raHours, decDeg));
}

int takahashiSync(double raHours, double decDeg) {
    HandedSiderealTimeServesOneOperation operation;
    return sendPosition(takahashiSyncCommand(raHours, decDeg));
}

int takahashiSetRate(int rate) {
    const auto set = takahashiSpeedSetForRate(rate);
    state().moveSpeedSet = set.value_or(0);
    return set ? 1 : 0;
}

int takahashiStartMove(int direction) {
    const std::string command = takahashiMoveCommand(direction, state().moveSpeedSet);
    if (command.empty() || !send("Move:Send", command)) {
        showMessage("Fail to send string");
        return 0;
    }
    return 1;
}

int takahashiStopMove(int /*direction*/) {
    if (!send("Stop:Send", kTakahashiStopMotionCommand)) showMessage("Fail to send string");
    return 0;
}

int takahashiStopAll() {
    // Every motion: the hand motion ("M@", the second stop form), then the slew (the first).
    const bool sent = send("Stop:Send", kTakahashiStopMotionCommand) && send("Stop:Send", kTakahashiStopGotoCommand) &&
                      send("Stop:Send", kTakahashiStatusCommand);
    if (!sent) {
        showMessage("Fail to send string");
        return 0;
    }
    receive("Stop:Receive", kTakahashiStatusReplyBytes);  // the slewing state, not needed
    return 1;
}

}  // namespace nocturnel
