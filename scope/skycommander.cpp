#include "scope/skycommander.h"

#include <algorithm>
#include <array>
#include <string>

#include "scope/serial_link.h"
#include "scope/skycommander_wire.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

std::string receive(const std::string& label, std::size_t max) {
    std::array<char, 32> buffer{};
    const int got = serialRead(buffer.data(), std::min(max, buffer.size()));
    std::string reply(buffer.data(), static_cast<std::size_t>(got > 0 ? got : 0));
    traceMessage(label, reply);
    return reply;
}

}  // namespace

int skyCommanderConnect() {
    if (!serialOpen(prefs().scopePort, kSkyCommanderBaud)) {
        showMessage("Fail to open serial connection");
        return 0;
    }
    return 1;
}

int skyCommanderDisconnect() {
    serialClose();
    return 1;
}

int skyCommanderReadPosition(double& first, double& second) {
    traceMessage("Query Position", std::string(kSkyCommanderQueryCommand));
    if (!serialWrite(kSkyCommanderQueryCommand.data(), kSkyCommanderQueryCommand.size())) {
        showMessage("Fail to send string");
        serialClose();
        return 0;
    }
    const auto position = parseSkyCommanderPosition(receive("Receive :", kSkyCommanderReplyBytes));
    if (!position) return 0;  // the dispatch says "Failed to get SkyCommander RA and Dec."
    first = position->first;
    second = position->second;
    return 1;
}

int skyCommanderSetTarget(double first, double second) {
    const std::string command = skyCommanderTargetCommand(first, second);
    traceMessage("GotoEQ:Set ra", command);
    if (!serialWrite(command.data(), command.size())) {
        showMessage("Fail to send string");
        return 0;
    }
    const std::string ack = receive("GotoEQ:Receive", 1);
    if (ack.size() != 1 || ack[0] != kSkyCommanderAck) {
        showMessage("Fail to get SkyCommander ack for ra & dec set.");
        return 0;
    }
    return 1;
}

}  // namespace nocturnel
