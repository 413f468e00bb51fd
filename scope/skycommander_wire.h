#pragma once
// SkyCommander wire format (pure): the target text and the position reply. The two numbers
// are passed through unchanged in both directions (right ascension first, then declination,
// in the units the device uses).
#include <optional>
#include <string>
#include <string_view>

namespace nocturnel {

inline constexpr int kSkyCommanderBaud = 9600;
inline constexpr std::string_view kSkyCommanderQueryCommand = "\r";
inline constexpr std::size_t kSkyCommanderReplyBytes = 16;
inline constexpr char kSkyCommanderAck = 'A';

// "L0 " + first (three decimals, at least two integer digits) + " +"/" -" + |second| (three
// decimals, at least two integer digits; "+" for 0) + "\n".
// 5.5, -3.25 gives "L0 05.500 -03.250\n"; 12.5, 45 gives "L0 12.500 +45.000\n".
std::string skyCommanderTargetCommand(double first, double second);

// The 16-byte reply: the first number in bytes 0..6, the second from byte 8 on. Nothing when
// the reply is short or a field is not a number.
struct SkyCommanderPosition {
    double first = 0;
    double second = 0;
};
std::optional<SkyCommanderPosition> parseSkyCommanderPosition(std::string_view reply);

// The reply a SkyCommander gives for a position (used by the simulator): exactly 16 bytes.
std::string skyCommanderPositionReply(double first, double second);

}  // namespace nocturnel
