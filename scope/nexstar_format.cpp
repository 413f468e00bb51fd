#include "scope/nexstar_format.h"

#include <cmath>
#include <cstdio>

namespace nocturnel {
namespace {

constexpr double kUnits16PerArcMinute = 3.0340740740740744;   // 65536 / 21600
constexpr double kUnits24PerArcSecond = 12.945382716049384;   // 16777216 / 1296000

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The whole part of a product, kept to `bits` bits (two's complement for negative angles).
uint32_t wholeUnits(double units, int bits) {
    if (!std::isfinite(units)) return 0;
    double whole = std::trunc(units);
    double turn = std::ldexp(1.0, bits);
    whole = std::fmod(whole, turn);
    if (whole < 0) whole += turn;
    return static_cast<uint32_t>(whole) & ((1u << bits) - 1);
}

// A field of a fixed-size reply buffer, as a C string: it ends at the first NUL.
std::string_view field(std::string_view buffer, std::size_t start, std::size_t length) {
    if (start >= buffer.size()) return {};
    std::string_view f = buffer.substr(start, length);
    std::size_t nul = f.find('\0');
    return nul == std::string_view::npos ? f : f.substr(0, nul);
}

std::string padded(std::string_view reply, std::size_t size) {
    std::string buffer(reply.substr(0, size));
    buffer.resize(size, '\0');
    return buffer;
}

std::string hex(uint32_t value, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, static_cast<unsigned>(value));
    return text;
}

}  // namespace

uint32_t nexstarEncode16(double degrees) { return wholeUnits(degrees * 60 * kUnits16PerArcMinute, 16); }
uint32_t nexstarEncode24(double degrees) { return wholeUnits(degrees * 3600 * kUnits24PerArcSecond, 24); }
double nexstarDecode16(uint32_t value) { return value / 3.0 / 1.011358024691358 / 60; }
double nexstarDecode24(uint32_t value) { return value / 12.0 / 1.0787818930041153 / 3600; }

std::string nexstarHex16(double degrees) { return hex(nexstarEncode16(degrees), 4); }
std::string nexstarHex24(double degrees) { return hex(nexstarEncode24(degrees), 6); }

uint32_t nexstarReadHex(std::string_view text) {
    uint32_t value = 0;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        uint32_t pair = 0;
        for (std::size_t j = i; j < i + 2 && j < text.size(); ++j) {
            int digit = hexDigit(text[j]);
            if (digit >= 0) pair = pair * 16 + static_cast<uint32_t>(digit);
        }
        value = value * 256 + pair;
    }
    return value;
}

NexStarAngles nexstarParseReply(std::string_view reply) {
    std::string buffer = padded(reply, kNexStarReplyLength);
    return {nexstarDecode16(nexstarReadHex(field(buffer, 0, 4)) & 0xFFFF),
            nexstarDecode16(nexstarReadHex(field(buffer, 5, 4)) & 0xFFFF)};
}

NexStarAngles nexstarParsePreciseReply(std::string_view reply) {
    std::string buffer = padded(reply, kNexStarPreciseReplyLength);
    return {nexstarDecode24(nexstarReadHex(field(buffer, 0, 6)) & 0xFFFFFF),
            nexstarDecode24(nexstarReadHex(field(buffer, 9, 6)) & 0xFFFFFF)};
}

NexStarAngles nexstarParseRawReply(std::string_view reply) {
    std::string buffer = padded(reply, kNexStarRawReplyLength);
    auto byte = [&buffer](std::size_t i) { return static_cast<uint32_t>(static_cast<uint8_t>(buffer[i])); };
    return {nexstarDecode16(256 * byte(0) + byte(1)), nexstarDecode16(256 * byte(2) + byte(3))};
}

double nexstarFoldDec(double d) {
    if (d > 90 && d <= 180) d = 180 - d;
    if (d > 180 && d <= 270) d = d - 270;
    if (d > 270 && d <= 360) d = d - 360;
    return d;
}

double nexstarDecAngleForGoto(double decDeg) {
    if (decDeg < 0 && decDeg >= -90) return decDeg + 360;
    return decDeg;
}

std::string nexstarGotoCommand(double raDeg, double decAngleDeg) {
    char text[16];
    std::snprintf(text, sizeof text, "R%04X,%04X", static_cast<unsigned>(nexstarEncode16(raDeg)),
                  static_cast<unsigned>(nexstarEncode16(decAngleDeg)));
    return text;
}

std::string nexstarPreciseGotoCommand(double raDeg, double decAngleDeg) {
    char text[24];
    std::snprintf(text, sizeof text, "r%06X00,%06X00", static_cast<unsigned>(nexstarEncode24(raDeg)),
                  static_cast<unsigned>(nexstarEncode24(decAngleDeg)));
    return text;
}

std::string nexstarRawGotoCommand(double raDeg, double decAngleDeg) {
    uint32_t ra = nexstarEncode16(raDeg);
    uint32_t dec = nexstarEncode16(decAngleDeg);
    std::string command = "R";
    for (uint32_t byte : {ra >> 8, ra & 0xFF, dec >> 8, dec & 0xFF}) command += static_cast<char>(byte);
    return command;
}

int nexstarRateCode(int rate) {
    static constexpr int kCodes[4] = {9, 7, 4, 2};
    return rate >= 0 && rate < 4 ? kCodes[rate] : 0;
}

namespace {

constexpr uint8_t kAxisRa = 0x10;
constexpr uint8_t kAxisDec = 0x11;

bool isDecDirection(int direction) { return direction == 0 || direction == 1; }
// North and west drive their axis the positive way.
bool isPositiveDirection(int direction) { return direction == 0 || direction == 3; }

}  // namespace

NexStarPacket nexstarMovePacket(int direction, int rateCode) {
    uint8_t axis = isDecDirection(direction) ? kAxisDec : kAxisRa;
    uint8_t sense = isPositiveDirection(direction) ? 0x24 : 0x25;
    return {'P', 0x02, axis, sense, static_cast<uint8_t>(rateCode), 0, 0, 0};
}

NexStarPacket nexstarStopPacket(int direction) {
    uint8_t axis = isDecDirection(direction) ? kAxisDec : kAxisRa;
    return {'P', 0x02, axis, 0x24, 0, 0, 0, 0};
}

NexStarPacket nexstarOldGtMovePacket(int direction, int rateCode) {
    uint8_t axis = isDecDirection(direction) ? kAxisDec : kAxisRa;
    uint8_t sense = isPositiveDirection(direction) ? 0x06 : 0x07;
    uint32_t speed = rateCode > 0 && rateCode <= 9 ? static_cast<uint32_t>(rateCode) * 100000u : 0u;
    return {'P', 0x04, axis, sense, static_cast<uint8_t>(speed >> 16), static_cast<uint8_t>(speed >> 8),
            static_cast<uint8_t>(speed), 0};
}

NexStarPacket nexstarOldGtStopPacket(int direction) { return nexstarOldGtMovePacket(direction, 0); }

}  // namespace nocturnel
