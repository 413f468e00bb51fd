#include "scope/servocat.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <regex>

#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {

namespace {

// A decimal number filling the whole field (spaces allowed around it).
std::optional<double> decimalField(std::string_view field) {
    std::string text(field);
    const char* begin = text.c_str();
    char* end = nullptr;
    const double value = std::strtod(begin, &end);
    if (end == begin) return std::nullopt;
    for (const char* p = end; *p; ++p)
        if (*p != ' ') return std::nullopt;
    if (!std::isfinite(value)) return std::nullopt;
    return value;
}

}  // namespace

std::string servoCatGotoCommand(double raHours, double decDeg) {
    // Whole thousandths, truncated; the tiny nudge keeps a value written with three decimals
    // (1.007) from losing its last unit to binary rounding (1.00699999...).
    constexpr double kNudge = 1e-9;
    const int raWhole = static_cast<int>(raHours + kNudge);
    const int raThousandths = static_cast<int>((raHours + kNudge - raWhole) * 1000.0);
    const double decAbs = std::fabs(decDeg) + kNudge;
    const int decWhole = static_cast<int>(decAbs);
    const int decThousandths = static_cast<int>((decAbs - decWhole) * 1000.0);
    char text[48];
    std::snprintf(text, sizeof text, decDeg > 0 ? "g%02d.%d +%02d.%d" : "g%02d.%d -%02d.%d", raWhole, raThousandths,
                  decWhole, decThousandths);
    return text;
}

std::optional<ServoCatPosition> parseServoCatPosition(std::string_view reply) {
    if (reply.size() < kServoCatReplyBytes) return std::nullopt;
    auto ra = decimalField(reply.substr(0, 6));
    auto dec = decimalField(reply.substr(7, 7));
    if (!ra || !dec) return std::nullopt;
    return ServoCatPosition{*ra, *dec};
}

std::string servoCatPositionReply(double raHours, double decDeg) {
    char text[32];
    std::snprintf(text, sizeof text, "%06.3f %+07.3f", raHours, decDeg);
    return std::string(text).substr(0, kServoCatReplyBytes);
}

int servoCatConnect() {
    if (!serialOpen(prefs().scopePort, kServoCatBaud)) {
        showMessage("Fail to open serial connection");
        return 0;
    }
    return 1;
}

int servoCatDisconnect() {
    serialClose();
    return 1;
}

int servoCatReadRaDec(double& raHours, double& decDeg) {
    traceMessage("QueryEQ:Send", "\r");
    if (!serialWrite("\r", 1)) {
        showMessage("Fail to send string");
        return 0;
    }
    char buffer[kServoCatReplyBytes] = {};
    const int got = serialRead(buffer, sizeof buffer);
    const std::string reply(buffer, static_cast<std::size_t>(got > 0 ? got : 0));
    traceMessage("QueryEQ:Receive", reply);
    auto position = parseServoCatPosition(reply);
    if (!position) return 0;
    raHours = position->raHours;
    decDeg = position->decDeg;
    return 1;
}

int servoCatGoto(double raHours, double decDeg) {
    const std::string command = servoCatGotoCommand(raHours, decDeg);
    traceMessage("GotoEQ:Set ra and dec", command);
    if (!serialWrite(command.data(), command.size())) {
        showMessage("Fail to send string");
        return 0;
    }
    return 1;
}

PtyMount::Responder makeServoCatResponder(double raHours, double decDeg) {
    auto position = std::make_shared<ServoCatPosition>(ServoCatPosition{raHours, decDeg});
    return [position](std::string& pending) {
        static const std::regex gotoText(R"(^g(\d{2})\.(\d+) ([+-])(\d{2})\.(\d+))");
        std::string reply;
        while (!pending.empty()) {
            if (pending.front() == '\r') {
                pending.erase(0, 1);
                reply += servoCatPositionReply(position->raHours, position->decDeg);
                continue;
            }
            if (pending.front() == 'g') {
                std::smatch match;
                if (!std::regex_search(pending, match, gotoText)) {
                    if (pending.find('\r') == std::string::npos) break;  // wait for the rest of the text
                    pending.erase(0, 1);  // a broken goto text followed by a query: dropped
                    continue;
                }
                const double ra = std::stoi(match[1]) + std::stoi(match[2]) / 1000.0;
                const double dec = std::stoi(match[4]) + std::stoi(match[5]) / 1000.0;
                position->raHours = ra;
                position->decDeg = match[3] == "-" ? -dec : dec;
                pending.erase(0, static_cast<std::size_t>(match.length(0)));
                continue;
            }
            pending.erase(0, 1);  // a byte a ServoCat does not know: ignored
        }
        return reply;
    };
}

}  // namespace nocturnel
