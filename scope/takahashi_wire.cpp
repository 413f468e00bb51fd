#include "scope/takahashi_wire.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "core/angle_text.h"

namespace nocturnel {
namespace {

constexpr long kSecondsPerDay = 24L * 3600L;

// The two-letter motion commands by direction code, slow set then fast set.
constexpr std::array<std::array<const char*, 4>, 2> kMotionCommands{{
    {"MI", "MQ", "MC", "ME"},  // moveSpeedSet 0
    {"MH", "MP", "MB", "MD"},  // moveSpeedSet 1
}};

bool allDigits(std::string_view text) {
    for (char c : text)
        if (c < '0' || c > '9') return false;
    return !text.empty();
}

int digitsValue(std::string_view text) {
    int value = 0;
    for (char c : text) value = value * 10 + (c - '0');
    return value;
}

// "P"/"D" followed by the position fields of a goto or a sync.
std::string positionCommand(char letter, double raHours, double decDeg) {
    long raSeconds = std::lround(raHours * 3600.0) % kSecondsPerDay;
    if (raSeconds < 0) raSeconds += kSecondsPerDay;
    const int h = static_cast<int>(raSeconds / 3600);
    const int m = static_cast<int>(raSeconds / 60 % 60);
    const int s = static_cast<int>(raSeconds % 60);

    const long decArcseconds = std::lround(std::fabs(decDeg) * 3600.0);
    const int d = static_cast<int>(decArcseconds / 3600);
    const int dm = static_cast<int>(decArcseconds / 60 % 60);
    const int tenths = static_cast<int>(decArcseconds % 60 * 10 / 60);

    char text[40];
    if (decDeg > 0)
        std::snprintf(text, sizeof text, "%c%02d%02d%02d+%02d%02d%01d\r\n", letter, h, m, s, d, dm, tenths);
    else if (decDeg < 0)
        std::snprintf(text, sizeof text, "%c%02d%02d%02d-%02d%02d%01d\r\n", letter, h, m, s, d, dm, tenths);
    else
        std::snprintf(text, sizeof text, "%c%02d%02d%02d 00000\r\n", letter, h, m, s);
    return text;
}

}  // namespace

bool isTakahashiVersionReply(std::string_view reply) { return reply.size() > 10 && reply.front() == 'v'; }

std::string takahashiLatitudeCommand(double latitudeDeg) {
    char dms[kAngleTextSize + 8] = {};
    degreesToTextStyle(std::fabs(latitudeDeg), 1, dms);
    int d = 0, m = 0, s = 0;
    if (std::sscanf(dms, "%d:%d:%d", &d, &m, &s) != 3) d = m = s = 0;
    char text[24];
    std::snprintf(text, sizeof text, latitudeDeg >= 0 ? "I+%02d%02d%01d\r\n" : "I-%02d%02d%01d\r\n", d, m,
                  s * 10 / 60);
    return text;
}

std::string takahashiSiderealTimeCommand(double lstHours) {
    long seconds = static_cast<long>(std::floor(lstHours * 3600.0)) % kSecondsPerDay;
    if (seconds < 0) seconds += kSecondsPerDay;
    char text[24];
    std::snprintf(text, sizeof text, "T%02d%02d%02d\r\n", static_cast<int>(seconds / 3600),
                  static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60));
    return text;
}

std::string takahashiGotoCommand(double raHours, double decDeg) { return positionCommand('P', raHours, decDeg); }

std::string takahashiSyncCommand(double raHours, double decDeg) { return positionCommand('D', raHours, decDeg); }

std::string takahashiMoveCommand(int direction, int moveSpeedSet) {
    if (direction < 0 || direction > 3) return {};
    const auto& set = kMotionCommands[moveSpeedSet == 1 ? 1 : 0];
    return std::string(set[static_cast<std::size_t>(direction)]) + "\r\n";
}

std::optional<int> takahashiSpeedSetForRate(int rate) {
    if (rate >= 0 && rate <= 2) return 0;
    if (rate == 3) return 1;
    return std::nullopt;
}

std::optional<TakahashiPosition> parseTakahashiPosition(std::string_view reply) {
    if (reply.size() < 14) return std::nullopt;
    const std::string_view ra = reply.substr(1, 6);
    const char sign = reply[7];
    const std::string_view dec = reply.substr(8, 5);
    if (!allDigits(ra) || !allDigits(dec) || (sign != '+' && sign != '-' && sign != ' ')) return std::nullopt;

    TakahashiPosition position;
    position.raHours = digitsValue(ra.substr(0, 2)) + digitsValue(ra.substr(2, 2)) / 60.0 +
                       digitsValue(ra.substr(4, 2)) / 3600.0;
    // The last digit is tenths of an arcminute: 6 arcseconds each.
    const double decAbs = digitsValue(dec.substr(0, 2)) + digitsValue(dec.substr(2, 2)) / 60.0 +
                          digitsValue(dec.substr(4, 1)) * 6 / 3600.0;
    position.decDeg = sign == '-' ? -decAbs : decAbs;
    position.pierFlag = reply[13];
    return position;
}

std::string takahashiPositionReply(double raHours, double decDeg, char pierFlag) {
    long raSeconds = std::lround(raHours * 3600.0) % kSecondsPerDay;
    if (raSeconds < 0) raSeconds += kSecondsPerDay;
    const long decTenths = std::lround(std::fabs(decDeg) * 600.0);  // tenths of an arcminute
    char text[32];
    std::snprintf(text, sizeof text, "E%02d%02d%02d%c%02d%02d%01d%cH\r\n", static_cast<int>(raSeconds / 3600),
                  static_cast<int>(raSeconds / 60 % 60), static_cast<int>(raSeconds % 60), decDeg < 0 ? '-' : '+',
                  static_cast<int>(decTenths / 600), static_cast<int>(decTenths / 10 % 60),
                  static_cast<int>(decTenths % 10), pierFlag);
    return text;
}

TakahashiGotoAnswer parseTakahashiGotoAnswer(std::string_view reply) {
    if (reply.size() < 2 || reply[0] != 'R') return TakahashiGotoAnswer::NoResponse;
    switch (reply[1]) {
        case '0': return TakahashiGotoAnswer::Accepted;
        case '1': return TakahashiGotoAnswer::WrongRa;
        case '2': return TakahashiGotoAnswer::WrongDec;
        case '3': return TakahashiGotoAnswer::TooManyDigits;
        default: return TakahashiGotoAnswer::NoResponse;
    }
}

}  // namespace nocturnel
