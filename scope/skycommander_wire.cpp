#include "scope/skycommander_wire.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace nocturnel {
namespace {

std::string threeDecimals(double value) {
    char text[48];
    std::snprintf(text, sizeof text, "%.3f", value);
    return text;
}

// A decimal number filling the field, spaces allowed around it.
std::optional<double> decimalField(std::string_view field) {
    const std::string text(field);
    const char* begin = text.c_str();
    char* end = nullptr;
    const double value = std::strtod(begin, &end);
    if (end == begin || !std::isfinite(value)) return std::nullopt;
    for (const char* p = end; *p; ++p)
        if (*p != ' ' && *p != '\r' && *p != '\n') return std::nullopt;
    return value;
}

}  // namespace

std::string skyCommanderTargetCommand(double first, double second) {
    std::string command = first < 10 ? "L0 0" : "L0 ";
    command += threeDecimals(first);
    command += second < 0 ? " -0" : " +0";
    const double magnitude = std::fabs(second);
    if (magnitude >= 10) command.pop_back();  // written over the zero
    command += threeDecimals(magnitude);
    command += "\n";
    return command;
}

std::optional<SkyCommanderPosition> parseSkyCommanderPosition(std::string_view reply) {
    if (reply.size() < kSkyCommanderReplyBytes) return std::nullopt;
    auto first = decimalField(reply.substr(0, 7));
    auto second = decimalField(reply.substr(8, kSkyCommanderReplyBytes - 8));
    if (!first || !second) return std::nullopt;
    return SkyCommanderPosition{*first, *second};
}

std::string skyCommanderPositionReply(double first, double second) {
    char text[64];
    std::snprintf(text, sizeof text, "%7.3f %+8.3f", first, second);
    std::string reply(text);
    reply.resize(kSkyCommanderReplyBytes, ' ');
    return reply;
}

}  // namespace nocturnel
