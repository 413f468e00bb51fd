#include "scope/lx200_format.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace nocturnel {
namespace {

constexpr double kHalfSecondHours = 0.0001388888888888889;  // 1/7200 h
constexpr double kHalfArcSecondDeg = 1.0 / 7200.0;          // 1/7200 degree, as sent

// The integer at `pos` read like C's atoi (blanks, a sign, digits); moves `pos` past the sign
// and the digits. Digits beyond nine are skipped without changing the value (no overflow).
long readInteger(std::string_view text, std::size_t& pos) {
    while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t')) ++pos;
    bool negative = false;
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) {
        negative = text[pos] == '-';
        ++pos;
    }
    long value = 0;
    int digits = 0;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') {
        if (digits++ < 9) value = value * 10 + (text[pos] - '0');
        ++pos;
    }
    return negative ? -value : value;
}

long integerAt(std::string_view text, std::size_t pos) {
    if (pos >= text.size()) return 0;
    return readInteger(text, pos);
}

// A finite value kept inside a range whose whole parts fit an int.
double tame(double value) {
    if (!std::isfinite(value)) return 0;
    return std::fmax(-1e6, std::fmin(1e6, value));
}

std::string format(const char* pattern, auto... args) {
    std::array<char, 64> buffer{};
    int n = std::snprintf(buffer.data(), buffer.size(), pattern, args...);
    if (n < 0) return {};
    return std::string(buffer.data(), std::min<std::size_t>(static_cast<std::size_t>(n), buffer.size() - 1));
}

}  // namespace

std::string_view lx200RateCommand(int rate) {
    static constexpr std::array<std::string_view, 4> kCommands{"#:RS#", "#:RM#", "#:RC#", "#:RG#"};
    return rate >= 0 && rate < 4 ? kCommands[static_cast<std::size_t>(rate)] : std::string_view{};
}

std::string_view lx200MoveCommand(int direction) {
    static constexpr std::array<std::string_view, 4> kCommands{"#:Mn#", "#:Ms#", "#:Me#", "#:Mw#"};
    return direction >= 0 && direction < 4 ? kCommands[static_cast<std::size_t>(direction)] : std::string_view{};
}

std::string_view lx200StopCommand(int direction) {
    static constexpr std::array<std::string_view, 4> kCommands{"#:Qn#", "#:Qs#", "#:Qe#", "#:Qw#"};
    return direction >= 0 && direction < 4 ? kCommands[static_cast<std::size_t>(direction)] : std::string_view{};
}

bool parseLx200Sexagesimal(std::string_view text, double& value) {
    if (text.empty()) return false;
    std::size_t pos = 0;
    if (text[pos] == '+' || text[pos] == '-') ++pos;
    long degrees = 0;
    int digits = 0;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') {
        if (digits++ < 9) degrees = degrees * 10 + (text[pos] - '0');
        ++pos;
    }
    if (pos < text.size() && text[pos] == '.') return false;

    // The separator after each field may be any one character: ':', '*' or the degree byte.
    long minutes = 0;
    ++pos;
    if (pos < text.size()) minutes = readInteger(text, pos);

    long seconds = 0;
    if (pos < text.size() && text[pos] == '.') {
        std::size_t tenths = 0;
        seconds = readInteger(text.substr(pos + 1, 2), tenths) * 60 / 10;
    } else {
        seconds = integerAt(text, pos + 1);
    }
    value = std::labs(degrees) + minutes / 60.0 + seconds / 3600.0;
    if (text[0] == '-') value = -value;
    return true;
}

bool isLx200PositionText(std::string_view text) {
    std::size_t pos = 0;
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) ++pos;
    if (pos >= text.size() || text[pos] < '0' || text[pos] > '9') return false;
    for (; pos < text.size(); ++pos) {
        const char c = text[pos];
        const bool allowed = (c >= '0' && c <= '9') || c == ':' || c == '.' || c == '*' || c == kLx200DegreeByte ||
                             c == '\'' || c == ' ';
        if (c == '#') return pos + 1 == text.size();
        if (!allowed) return false;
    }
    return true;
}

double parseLx200Value(std::string_view text) {
    double value = 0;
    if (parseLx200Sexagesimal(text, value)) return value;
    std::string copy(text);
    char* end = nullptr;
    value = std::strtod(copy.c_str(), &end);
    return std::isfinite(value) ? value : 0;
}

std::string lx200RaSetCommand(double raHours, bool highPrecision) {
    double rounded = tame(raHours) + kHalfSecondHours;
    int hours = static_cast<int>(rounded);
    double minutes = (rounded - hours) * 60;
    int wholeMinutes = static_cast<int>(minutes);
    double rest = minutes - wholeMinutes;
    if (highPrecision) return format("#:Sr %02d:%02d:%02d#", hours, wholeMinutes, static_cast<int>(rest * 60));
    return format("#:Sr %02d:%02d.%d#", hours, wholeMinutes, static_cast<int>(rest * 10));
}

std::string lx200SyncRaSetCommand(double raHours, bool highPrecision) {
    if (!highPrecision) return lx200RaSetCommand(raHours, false);
    double rounded = tame(raHours) + kHalfSecondHours;
    int hours = static_cast<int>(rounded);
    double minutes = (rounded - hours) * 60;
    int wholeMinutes = static_cast<int>(minutes);
    return format("#:Sr %02d:%02d.%d#", hours, wholeMinutes, static_cast<int>((minutes - wholeMinutes) * 60));
}

std::string lx200DecSetCommand(double decDeg, bool highPrecision) {
    double dec = tame(decDeg);
    char sign = dec >= 0 ? '+' : '-';
    double magnitude = std::fabs(dec) + kHalfArcSecondDeg;
    int degrees = static_cast<int>(magnitude);
    double minutes = (magnitude - degrees) * 60;
    int wholeMinutes = static_cast<int>(minutes);
    int seconds = static_cast<int>((minutes - wholeMinutes) * 60);
    if (highPrecision) return format(":Sd %c%02d%c%02d:%02d#", sign, degrees, kLx200DegreeByte, wholeMinutes, seconds);
    return format(":Sd %c%02d%c%02d#", sign, degrees, kLx200DegreeByte, wholeMinutes);
}

int lx200GotoAnswerCode(char answer) {
    switch (answer) {
        case '0': return 0;
        case '1': return 1;
        case '2': return 2;
        default: return -1;
    }
}

std::string lx200RaReply(double raHours, bool highPrecision) {
    double ra = tame(raHours);
    if (highPrecision) {
        long long total = std::llround(ra * 3600);
        total = ((total % 86400) + 86400) % 86400;
        return format("%02d:%02d:%02d#", static_cast<int>(total / 3600), static_cast<int>(total / 60 % 60), static_cast<int>(total % 60));
    }
    long long tenths = std::llround(ra * 600);
    tenths = ((tenths % 14400) + 14400) % 14400;
    return format("%02d:%02d.%d#", static_cast<int>(tenths / 600), static_cast<int>(tenths / 10 % 60), static_cast<int>(tenths % 10));
}

std::string lx200DecReply(double decDeg, bool highPrecision) {
    double dec = tame(decDeg);
    char sign = dec < 0 ? '-' : '+';
    if (highPrecision) {
        long long total = std::llround(std::fabs(dec) * 3600);
        return format("%c%02d%c%02d:%02d#", sign, static_cast<int>(total / 3600), kLx200DegreeByte, static_cast<int>(total / 60 % 60),
                      static_cast<int>(total % 60));
    }
    long long total = std::llround(std::fabs(dec) * 60);
    return format("%c%02d%c%02d#", sign, static_cast<int>(total / 60), kLx200DegreeByte, static_cast<int>(total % 60));
}

std::string lx200AzimuthReply(double azDeg, bool highPrecision) {
    double az = tame(azDeg);
    if (highPrecision) {
        long long total = std::llround(az * 3600);
        total = ((total % 1296000) + 1296000) % 1296000;
        return format("%03d%c%02d:%02d#", static_cast<int>(total / 3600), kLx200DegreeByte, static_cast<int>(total / 60 % 60),
                      static_cast<int>(total % 60));
    }
    long long total = std::llround(az * 60);
    total = ((total % 21600) + 21600) % 21600;
    return format("%03d%c%02d#", static_cast<int>(total / 60), kLx200DegreeByte, static_cast<int>(total % 60));
}

}  // namespace nocturnel
