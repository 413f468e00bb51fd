#pragma once
// LX200 wire format: the command texts (sent as they are, no terminator added; every '#' is
// part of the command) and the parsing of the mount's sexagesimal replies. Pure functions.
#include <string>
#include <string_view>

namespace nocturnel {

inline constexpr char kLx200DegreeByte = static_cast<char>(0xDF);  // the hand box's degree sign

inline constexpr std::string_view kLx200GetDec = ":GD#";
inline constexpr std::string_view kLx200GetRa = "#:GR#";
inline constexpr std::string_view kLx200GetDate = "#:GC#";
inline constexpr std::string_view kLx200GetAz = "#:GZ#";
inline constexpr std::string_view kLx200GetAlt = ":GA#";
inline constexpr std::string_view kLx200SlewToTarget = ":MS#";
inline constexpr std::string_view kLx200SyncToTarget = "#:CM#";
inline constexpr std::string_view kLx200GeminiObjectName = ":ON#";
inline constexpr std::string_view kLx200StopAll = "#:Q#";

// Reply lengths in bytes, '#' included: "HH:MM:SS#" / "HH:MM.T#", "sDD*MM:SS#" / "sDD*MM#".
inline constexpr int lx200RaReplyLength(bool highPrecision) { return highPrecision ? 9 : 8; }
inline constexpr int lx200DecReplyLength(bool highPrecision) { return highPrecision ? 10 : 7; }
inline constexpr int kLx200ConnectReplyMax = 10;   // ":GD#" at connect
inline constexpr int kLx200ConnectReplyMin = 6;
inline constexpr int kLx200DateReplyLength = 9;    // "MM/DD/YY#"

// Rate 0 slew, 1 find, 2 centre, 3 guide; direction 0 north, 1 south, 2 east, 3 west.
// Empty for a value outside 0..3.
std::string_view lx200RateCommand(int rate);
std::string_view lx200MoveCommand(int direction);
std::string_view lx200StopCommand(int direction);

// Reads "sDD*MM:SS#", "HH:MM.T#" and the like: true and the value when the text is
// sexagesimal. Tenths of a minute become seconds in integer arithmetic (".5" gives 30 s).
bool parseLx200Sexagesimal(std::string_view text, double& value);
// Whether a reply looks like a position at all: an optional sign, digits, then only digits,
// the separators ':', '.', '*', the degree byte, "'" or a space, and the closing '#'. Noise
// on the line fails this before any parsing.
bool isLx200PositionText(std::string_view text);
// A reply as a number: sexagesimal when it is, else a plain decimal number (0 if neither).
double parseLx200Value(std::string_view text);

// Set commands, after adding half a second (RA) or half an arc second (Dec) so whole fields
// round; 24:00:00 is not wrapped. High precision "#:Sr HH:MM:SS#" and ":Sd sDD\xDFMM:SS#",
// low precision "#:Sr HH:MM.T#" and ":Sd sDD\xDFMM#".
std::string lx200RaSetCommand(double raHours, bool highPrecision);
std::string lx200DecSetCommand(double decDeg, bool highPrecision);
// The sync's RA command: in high precision it keeps the low-precision shape with whole seconds
// in the last field ("#:Sr 10:20.35#" for 10h20m35s); in low precision it is the goto's.
std::string lx200SyncRaSetCommand(double raHours, bool highPrecision);

// Answer to ":MS#": 0 slewing, 1 below the horizon, 2 above the upper limit, -1 anything else.
int lx200GotoAnswerCode(char answer);

// Texts for the simulator's replies (the mount side of the same formats).
std::string lx200RaReply(double raHours, bool highPrecision);
std::string lx200DecReply(double decDeg, bool highPrecision);      // signed degrees
std::string lx200AzimuthReply(double azDeg, bool highPrecision);   // "DDD\xDFMM:SS#" / "DDD\xDFMM#"

}  // namespace nocturnel
