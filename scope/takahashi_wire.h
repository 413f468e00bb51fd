#pragma once
// Takahashi (Temma) wire format: the command texts the program sends and the parsing of the
// mount's replies. Pure functions, no I/O. Every command ends with carriage return and line
// feed; the one exception to a clean ending is the pier flip, kept exactly as the program has
// always built it ("PT", CR, ",", LF).
#include <optional>
#include <string>
#include <string_view>

namespace nocturnel {

inline constexpr std::string_view kTakahashiVersionCommand = "v\r\n";
inline constexpr std::string_view kTakahashiPositionCommand = "E\r\n";
inline constexpr std::string_view kTakahashiZenithCommand = "Z\r\n";
inline constexpr std::string_view kTakahashiFlipCommand = "PT\r,\n";
inline constexpr std::string_view kTakahashiStopGotoCommand = "PS\r\n";  // first stop form: stop the slew...
inline constexpr std::string_view kTakahashiStatusCommand = "s\r\n";     // ...then ask the slewing state
inline constexpr std::string_view kTakahashiStopMotionCommand = "M@\r\n"; // second stop form

inline constexpr std::size_t kTakahashiVersionReplyMax = 30;
inline constexpr std::size_t kTakahashiPositionReplyBytes = 17;
// The answer to a goto or a sync: "R" and a digit, then CR LF.
inline constexpr std::size_t kTakahashiGotoReplyBytes = 4;
// The answer to "s" (slewing state, "s0"/"s1" CR LF): read and dropped after a stop.
inline constexpr std::size_t kTakahashiStatusReplyBytes = 4;

// A version reply counts when more than 10 bytes came back and the first is 'v'.
bool isTakahashiVersionReply(std::string_view reply);

// "I+DDMMt" CR LF: latitude in degrees (north positive) as degrees, arcminutes and tenths of
// an arcminute (tenths = trunc(arcseconds x 10 / 60)); the sexagesimal text of the latitude
// (colon style) is split at its colons. 35°40'30" N gives "I+35405\r\n".
std::string takahashiLatitudeCommand(double latitudeDeg);

// "THHMMSS" CR LF: local sidereal time in hours, whole seconds (truncated), wrapped into [0, 24).
std::string takahashiSiderealTimeCommand(double lstHours);

// Goto ('P') and sync ('D') position: RA hours, minutes, seconds; Dec degrees, arcminutes and
// tenths of an arcminute with its sign, or " 00000" for a declination of exactly 0.
// RA in hours, Dec in degrees; both rounded to the nearest second of time / of arc first.
std::string takahashiGotoCommand(double raHours, double decDeg);
std::string takahashiSyncCommand(double raHours, double decDeg);

// Motion command of a direction (0 north, 1 south, 2 east, 3 west) in the slow (moveSpeedSet
// 0) or fast (1) set: "MI" CR LF ... "MD" CR LF. Empty for a direction outside 0..3.
std::string takahashiMoveCommand(int direction, int moveSpeedSet);

// Speed set chosen by a slew rate: rates 0, 1, 2 slow (0), rate 3 fast (1); nothing for any
// other value (the caller falls back to the slow set and fails).
std::optional<int> takahashiSpeedSetForRate(int rate);

// The position reply "E" HHMMSS sDDMMt F ...: RA hours, Dec degrees and the status letter of
// byte 13 ('E'/'W' side of the pier, 'F' still moving). Nothing when the reply is shorter
// than 14 bytes or a field is not made of digits.
struct TakahashiPosition {
    double raHours = 0;
    double decDeg = 0;
    char pierFlag = 0;
};
std::optional<TakahashiPosition> parseTakahashiPosition(std::string_view reply);

// The reply a mount gives for a position (used by the simulator): 17 bytes,
// "E" HHMMSS sDDMMt <flag> "H" CR LF (the extra letter is the hand-box flag).
std::string takahashiPositionReply(double raHours, double decDeg, char pierFlag);

// The answer to a goto or sync: "R0" accepted, "R1" wrong RA, "R2" wrong Dec, "R3" too many
// digits. An empty or unreadable answer counts as no response.
enum class TakahashiGotoAnswer { Accepted, NoResponse, WrongRa, WrongDec, TooManyDigits };
TakahashiGotoAnswer parseTakahashiGotoAnswer(std::string_view reply);

}  // namespace nocturnel
