#include "scope/encoder_box_wire.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace nocturnel {
namespace {

// A signed decimal integer filling the field, spaces allowed around it.
std::optional<long> integerField(std::string_view field) {
    const std::string text(field);
    const char* begin = text.c_str();
    while (*begin == ' ') ++begin;
    if (*begin == '\0') return std::nullopt;
    char* end = nullptr;
    const long value = std::strtol(begin, &end, 10);
    if (end == begin || (*begin != '+' && *begin != '-' && (*begin < '0' || *begin > '9'))) return std::nullopt;
    for (const char* p = end; *p; ++p)
        if (*p != ' ') return std::nullopt;
    return value;
}

}  // namespace

bool isEncoderDrive(int driveCode) {
    switch (driveCode) {
        case 1: case 3: case 4: case 11: case 12: case 16: case 21: return true;
        default: return false;
    }
}

EncoderSetup encoderSetupFor(int driveCode, long azResolution, long altResolution) {
    const long az = std::labs(azResolution);
    const long alt = std::labs(altResolution);
    char text[48];
    switch (driveCode) {
        case 3:
            std::snprintf(text, sizeof text, "Z%05d\t%05d\n", static_cast<int>(az), static_cast<int>(alt));
            return {text, EncoderSetupReply::AtLeastOneByte, "Initialize BBox send:"};
        case 21:
            std::snprintf(text, sizeof text, "Z\t+%05ld\t+%05ld\n", az, alt);
            return {text, EncoderSetupReply::AtLeastOneByte, "Initialize skywizard send:"};
        case 12:
            std::snprintf(text, sizeof text, "I%05d\t%05d\r", kOuranosSetupResolution, kOuranosSetupResolution);
            return {text, EncoderSetupReply::None, "Initialize Ouranos send:"};
        case 4: {
            std::string bytes{'z', static_cast<char>(az & 0xFF), static_cast<char>((az >> 8) & 0xFF),
                              static_cast<char>(alt & 0xFF), static_cast<char>((alt >> 8) & 0xFF)};
            return {bytes, EncoderSetupReply::OneByteThenAck, "Send resolution"};
        }
        default:
            return {};
    }
}

std::optional<EncoderCounts> parseEncoderCounts(std::string_view reply) {
    if (reply.size() < kEncoderCountsReplyBytes) return std::nullopt;
    auto az = integerField(reply.substr(0, 6));
    auto alt = integerField(reply.substr(7, 6));
    if (!az || !alt) return std::nullopt;
    return EncoderCounts{*az, *alt};
}

std::optional<EncoderCounts> parseDaveEkCounts(std::string_view reply) {
    if (reply.size() < kDaveEkCountsReplyBytes) return std::nullopt;
    auto byte = [&](std::size_t i) { return static_cast<long>(static_cast<unsigned char>(reply[i])); };
    return EncoderCounts{byte(2) + 256 * byte(3), byte(0) + 256 * byte(1)};
}

std::string encoderCountsReply(long az, long alt) {
    char text[32];
    std::snprintf(text, sizeof text, "%+06ld\t%+06ld", az, alt);
    return text;
}

std::string daveEkCountsReply(long az, long alt) {
    return std::string{static_cast<char>(alt & 0xFF), static_cast<char>((alt >> 8) & 0xFF),
                       static_cast<char>(az & 0xFF), static_cast<char>((az >> 8) & 0xFF)};
}

std::optional<double> countsToDegrees(long count, long resolution, long offset, bool isAltitude) {
    if (resolution == 0) return std::nullopt;
    const long r = std::labs(resolution);
    long value = resolution < 0 ? r - count : count;
    value -= offset;
    value %= r;
    if (value < 0) value += r;
    if (isAltitude && value > r / 2) value -= r;
    return static_cast<double>(value) * 360.0 / static_cast<double>(r);
}

long encoderOffsetFor(double readingWithoutOffsetDeg, double expectedDeg, long resolution) {
    return static_cast<long>((readingWithoutOffsetDeg - expectedDeg) * static_cast<double>(std::labs(resolution)) / 360.0);
}

long advanceSimulatedCount(long count, long resolution, bool isAltitude) {
    const long r = std::labs(resolution);
    count += r / 300;
    if (count > (isAltitude ? r / 4 : r / 2)) count -= r;
    return count;
}

}  // namespace nocturnel
