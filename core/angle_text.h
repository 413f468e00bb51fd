#pragma once
// Angle and time text in the four styles of the preferences (raFormat for hours, decFormat
// for degrees). Texts are 8-bit: the degree sign is the single Latin-1 byte 0xB0
// (kDegreeSign); toUtf8() converts a text for a UTF-8 terminal or page.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nocturnel {

using FixedAngle = int32_t;                       // 292818 units per hour (hour values) or per degree
inline constexpr int32_t kFixedAngleUnit = 292818;
inline constexpr char kDegreeSign = '\xB0';
inline constexpr std::size_t kAngleTextSize = 16;  // destination buffers hold at least this many bytes

// Each writes into buf (>= kAngleTextSize bytes) in the style of the preferences and returns buf.
char* hoursToText(double hours, char* buf);
char* degreesToText(double degrees, char* buf);
char* fixedHoursToText(FixedAngle value, char* buf);
char* fixedDegreesToText(FixedAngle value, char* buf);

// The same with an explicit style (0..3; other values follow each formatter's unknown-style rule).
char* hoursToTextStyle(double hours, int style, char* buf);
char* degreesToTextStyle(double degrees, int style, char* buf);
char* fixedHoursToTextStyle(FixedAngle value, int style, char* buf);
char* fixedDegreesToTextStyle(FixedAngle value, int style, char* buf);

// std::string conveniences in the preferences' styles.
std::string hoursText(double hours);
std::string degreesText(double degrees);

// Reads an angle text written by the formatters or typed in a form: "23.75", "23:45:00",
// "23h45m00", "23h45.0", "-70:45:00", "-70°45'00", "-70°45.0", "12 34 56" (degree sign as
// Latin-1 0xB0 or UTF-8). Returns hours or degrees as written; nothing for unreadable text.
std::optional<double> parseAngleText(std::string_view text);

// Latin-1 text (degree sign 0xB0) to UTF-8.
std::string toUtf8(std::string_view latin1);

}  // namespace nocturnel
