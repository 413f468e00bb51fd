#pragma once
// NexStar wire format. Positions travel as fractions of a turn: 16-bit (65536 per turn) or
// 24-bit (16777216 per turn) upper-case hexadecimal text, or for "Nexstar 5&8" two raw bytes
// per axis, high byte first. Pure functions; the protocol module composes them with the link.
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace nocturnel {

// Drive codes of the family.
inline constexpr int kNexStar58 = 8;          // "Nexstar 5&8": raw bytes
inline constexpr int kNexStarOldGt = 9;       // "NexStar old GT"
inline constexpr int kNexStarGps = 10;        // "NexStarGPS,GT,CGE" (code 20 is served alike)
inline constexpr int kNexStarUltima = 15;     // "Ultima2000": 6-bit line, extra "\r"

// Reply lengths in bytes: "34AB,12CE#", "34AB0500,12CE0500#", 4 raw bytes.
inline constexpr int kNexStarReplyLength = 10;
inline constexpr int kNexStarPreciseReplyLength = 18;
inline constexpr int kNexStarRawReplyLength = 4;

// degrees -> turn fraction: the whole part of degrees x 60 x 3.034... (16-bit) or
// x 3600 x 12.945... (24-bit), kept to the field's width (a full turn reads as 0).
uint32_t nexstarEncode16(double degrees);
uint32_t nexstarEncode24(double degrees);
double nexstarDecode16(uint32_t value);  // -> degrees
double nexstarDecode24(uint32_t value);

std::string nexstarHex16(double degrees);  // 4 upper-case hex digits
std::string nexstarHex24(double degrees);  // 6 upper-case hex digits

// Reads hex text two characters at a time. Within a pair a character that is not a hex digit
// is passed over: a pair led by one yields the second character's value alone, a non-hex
// second character leaves the first's value alone.
uint32_t nexstarReadHex(std::string_view text);

// The RA and Dec angles (degrees, as the mount counts them) of each reply form; garbage
// yields whatever the hex rule makes of it, never a fault.
struct NexStarAngles {
    double raDeg = 0;
    double decDeg = 0;
};
NexStarAngles nexstarParseReply(std::string_view reply);         // "34AB,12CE#"
NexStarAngles nexstarParsePreciseReply(std::string_view reply);  // "34AB0500,12CE0500#"
NexStarAngles nexstarParseRawReply(std::string_view reply);      // 4 bytes

// The mount's Dec angle to a declination, band by band as the program always folded it:
// (90, 180] mirrors to 180 - d; (180, 270] becomes d - 270; (270, 360] becomes d - 360.
double nexstarFoldDec(double decAngleDeg);
// A declination to the angle sent: negative values from -90 up get 360 added.
double nexstarDecAngleForGoto(double decDeg);

// Goto commands: "R34AB,12CE" (10 bytes), "r34AB0500,12CE0500" (18 bytes), and for
// "Nexstar 5&8" 'R' followed by the raw RA and Dec, high bytes first (5 bytes).
std::string nexstarGotoCommand(double raDeg, double decAngleDeg);
std::string nexstarPreciseGotoCommand(double raDeg, double decAngleDeg);
std::string nexstarRawGotoCommand(double raDeg, double decAngleDeg);

// Slew rate 0 slew, 1 find, 2 centre, 3 guide -> the hand control's rate 9, 7, 4, 2; 0 for
// a rate outside 0..3.
int nexstarRateCode(int rate);

// Fixed-rate pass-through packets of the GPS, GT and CGE hand controls (direction 0 north,
// 1 south, 2 east, 3 west), each answered by '#'. A stop packet carries rate 0.
using NexStarPacket = std::array<uint8_t, 8>;
NexStarPacket nexstarMovePacket(int direction, int rateCode);
NexStarPacket nexstarStopPacket(int direction);

// "NexStar old GT" motion packets, as this program defines them: a pass-through of 4 data
// bytes to the axis motor, 'P', 4, axis (0x10 RA, 0x11 Dec), 0x06 positive or 0x07 negative
// direction, the speed rate code x 100000 in three bytes high first, 0. North and west are
// positive, as in the fixed-rate packets. A stop is the same packet with speed 0.
NexStarPacket nexstarOldGtMovePacket(int direction, int rateCode);
NexStarPacket nexstarOldGtStopPacket(int direction);
// The old GT's cancel-goto bytes.
inline constexpr std::array<uint8_t, 2> kNexStarOldGtStopGoto{0x05, 0x19};

}  // namespace nocturnel
