#include "scope/encoder_box.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>

#include "scope/encoder_box_wire.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

constexpr int kDaveEkAckPauseMs = 250;
constexpr std::size_t kSetupReplyMax = 16;  // the whole answer is drained so it cannot prefix a count reply

EncoderBoxState& state() {
    static EncoderBoxState s;
    return s;
}

bool send(const std::string& label, std::string_view bytes) {
    traceMessage(label, std::string(bytes));
    return serialWrite(bytes.data(), bytes.size()) != 0;
}

std::string receive(const std::string& label, std::size_t max) {
    std::array<char, 32> buffer{};
    const int got = serialRead(buffer.data(), std::min(max, buffer.size()));
    std::string reply(buffer.data(), static_cast<std::size_t>(got > 0 ? got : 0));
    traceMessage(label, reply);
    return reply;
}

// Code 4 answers "a" with 'Y' when it is ready; the other boxes have no status.
bool statusIsGood(int driveCode) {
    if (driveCode != 4) return true;
    if (!send("Send Query DaveEk encoder status", kDaveEkStatusCommand)) return false;
    const std::string reply = receive("Receive :", 1);
    return reply.size() == 1 && reply[0] == 'Y';
}

bool sendSetup(int driveCode) {
    const EncoderSetup setup = encoderSetupFor(driveCode, prefs().encoderAzSteps, prefs().encoderAltSteps);
    if (setup.bytes.empty()) return true;
    if (!send(setup.traceLabel, setup.bytes)) return false;
    switch (setup.reply) {
        case EncoderSetupReply::None:
            return true;
        case EncoderSetupReply::AtLeastOneByte:
            return !receive("Receive :", kSetupReplyMax).empty() && statusIsGood(driveCode);
        case EncoderSetupReply::OneByteThenAck:
            if (receive("Receive :", 1).empty()) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(kDaveEkAckPauseMs));
            return send("Send ack", kDaveEkAckCommand);
    }
    return false;
}

std::optional<EncoderCounts> queryCounts(int driveCode) {
    if (driveCode == 4) {
        if (!send("Query Position", kDaveEkQueryCommand)) return std::nullopt;
        return parseDaveEkCounts(receive("Receive :", kDaveEkCountsReplyBytes));
    }
    if (!send("Query Position", kEncoderQueryCommand)) return std::nullopt;
    if (driveCode == 16 && receive("Receive :", 1).empty()) return std::nullopt;
    return parseEncoderCounts(receive("Receive :", kEncoderCountsReplyBytes));
}

bool checkResolutions() {
    if (prefs().encoderAltSteps == 0) {
        showMessage("Bad Alt encoder resolution", "Please check.");
        return false;
    }
    if (prefs().encoderAzSteps == 0) {
        showMessage("Bad Azt encoder resolution", "Please check.");
        return false;
    }
    return true;
}

}  // namespace

const EncoderBoxState& encoderBoxState() { return state(); }

int encoderConnect(int driveCode) {
    if (state().encoderOpen || prefs().simulatedScope) return 1;
    if (!serialOpen(prefs().scopePort, kEncoderBaud)) {
        showMessage("Fail to open serial connection");
        return 0;
    }
    if (!state().encoderInitialised) {
        if (!sendSetup(driveCode)) {
            showMessage("Fail to open encoder connection");
            serialClose();
            return 0;
        }
        state().encoderInitialised = true;
    }
    state().encoderOpen = true;
    return 1;
}

int encoderDisconnect() {
    serialClose();
    state().encoderOpen = false;
    return 1;
}

int encoderReadCounts(int driveCode, long& az, long& alt) {
    if (prefs().simulatedScope) {
        state().simulatedAzCount = advanceSimulatedCount(state().simulatedAzCount, prefs().encoderAzSteps, false);
        state().simulatedAltCount = advanceSimulatedCount(state().simulatedAltCount, prefs().encoderAltSteps, true);
        az = state().simulatedAzCount;
        alt = state().simulatedAltCount;
        return 1;
    }
    if (!state().encoderOpen) {
        showMessage("Connection not open!");
        return 0;
    }
    std::optional<EncoderCounts> counts;
    if (statusIsGood(driveCode)) counts = queryCounts(driveCode);
    if (!counts) {
        showMessage("Bad encoder status");
        encoderDisconnect();
        return 0;
    }
    az = counts->az;
    alt = counts->alt;
    return 1;
}

int encoderReadAzAlt(int driveCode, double& azDeg, double& altDeg) {
    long azCount = 0, altCount = 0;
    if (!encoderReadCounts(driveCode, azCount, altCount) || !checkResolutions()) return 0;
    const Preferences& p = prefs();
    azDeg = *countsToDegrees(azCount, p.encoderAzSteps, p.encoderAzOffset, false);
    altDeg = *countsToDegrees(altCount, p.encoderAltSteps, p.encoderAltOffset, true);
    state().hasLastReading = true;
    state().lastAzDeg = azDeg;
    state().lastAltDeg = altDeg;
    return 1;
}

int encoderReadRaDec(int driveCode, double& raHours, double& decDeg) {
    double first = 0, second = 0;
    if (!encoderReadAzAlt(driveCode, first, second)) return 0;
    raHours = first / 15.0;
    decDeg = second;
    return 1;
}

int encoderSetOffsets(int driveCode, double expectedAzDeg, double expectedAltDeg) {
    long azCount = 0, altCount = 0;
    if (!encoderReadCounts(driveCode, azCount, altCount) || !checkResolutions()) return 0;
    Preferences& p = prefs();
    const double azReading = *countsToDegrees(azCount, p.encoderAzSteps, 0, false);
    const double altReading = *countsToDegrees(altCount, p.encoderAltSteps, 0, true);
    p.encoderAzOffset = static_cast<int32_t>(encoderOffsetFor(azReading, expectedAzDeg, p.encoderAzSteps));
    p.encoderAltOffset = static_cast<int32_t>(encoderOffsetFor(altReading, expectedAltDeg, p.encoderAltSteps));
    return 1;
}

void encoderReset() {
    state().hasLastReading = false;
    state().lastAzDeg = 0;
    state().lastAltDeg = 0;
}

void encoderResetState() { state() = EncoderBoxState{}; }

void encoderSetSimulatedCounts(long az, long alt) {
    state().simulatedAzCount = az;
    state().simulatedAltCount = alt;
}

}  // namespace nocturnel
