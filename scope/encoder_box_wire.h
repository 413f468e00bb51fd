#pragma once
// Encoder boxes (digital setting circles): the set-up texts sent to each kind of box, the
// parsing of their count replies and the conversion of raw counts to angles. Pure functions.
//
// Drive codes served: 1 "AAM Skyvector", 3 "BBox", 4 "Dave Ek", 11 "NGC-Max", 12 "Ouranos",
// 16 "Intelliscope", 21 (a "skywizard" box).
#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace nocturnel {

inline constexpr int kEncoderBaud = 9600;
inline constexpr std::size_t kEncoderCountsReplyBytes = 13;   // "+AAAAA\tBBBBBB"-style text
inline constexpr std::size_t kDaveEkCountsReplyBytes = 4;     // binary, little-endian pairs
inline constexpr std::string_view kEncoderQueryCommand = "Q";
inline constexpr std::string_view kDaveEkQueryCommand = "y";
inline constexpr std::string_view kDaveEkStatusCommand = "a";
inline constexpr std::string_view kDaveEkAckCommand = "A";
inline constexpr int kOuranosSetupResolution = 32767;

// True for the drive codes above.
bool isEncoderDrive(int driveCode);

// What a box is sent when it is first connected, and whether it answers.
enum class EncoderSetupReply { None, AtLeastOneByte, OneByteThenAck };
struct EncoderSetup {
    std::string bytes;                          // empty: nothing is sent
    EncoderSetupReply reply = EncoderSetupReply::None;
    std::string traceLabel;
};
// Resolutions are counts per turn; their absolute values are sent.
EncoderSetup encoderSetupFor(int driveCode, long azResolution, long altResolution);

struct EncoderCounts {
    long az = 0;
    long alt = 0;
};
// The 13-byte reply to "Q": Az count in bytes 0..5, Alt count in bytes 7..12, each a signed
// decimal integer (spaces allowed around it). Nothing when short or a field is not a number.
std::optional<EncoderCounts> parseEncoderCounts(std::string_view reply);
// The 4-byte reply of a Dave Ek box to "y": Alt = byte0 + 256 byte1, Az = byte2 + 256 byte3.
std::optional<EncoderCounts> parseDaveEkCounts(std::string_view reply);

// The replies a box gives for given counts (used by the simulator).
std::string encoderCountsReply(long az, long alt);
std::string daveEkCountsReply(long az, long alt);

// Counts to degrees: R = |resolution|; a negative resolution reverses the count (R - count);
// the offset (counts) is subtracted; the value is brought into [0, R); an altitude above R/2
// becomes negative. Result value x 360 / R. Nothing for a resolution of 0.
std::optional<double> countsToDegrees(long count, long resolution, long offset, bool isAltitude);

// The offset (whole counts, truncated) that makes a reading taken with offset 0 show the
// expected angle: (reading - expected) x |resolution| / 360.
long encoderOffsetFor(double readingWithoutOffsetDeg, double expectedDeg, long resolution);

// One step of the simulated box: the count advances by |resolution| / 300 and wraps by one
// resolution when it passes half a resolution (Az) or a quarter (Alt).
long advanceSimulatedCount(long count, long resolution, bool isAltitude);

}  // namespace nocturnel
