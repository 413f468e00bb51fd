#pragma once
// ServoCat (drive code 13): a position query answered by two decimal numbers, and a goto
// text with no reply. 9600 baud on the scope port of the preferences.
// Results follow the program's convention: 1 success, 0 failure (message shown).
#include <optional>
#include <string>
#include <string_view>

#include "scope/pty_mount.h"

namespace nocturnel {

inline constexpr int kServoCatBaud = 9600;
inline constexpr std::size_t kServoCatReplyBytes = 14;

struct ServoCatPosition {
    double raHours = 0;
    double decDeg = 0;
};

// Wire format (pure). The goto text: "g%02d.%d +%02d.%d" when Dec > 0, "g%02d.%d -%02d.%d"
// otherwise (|Dec| is written; Dec 0 goes with '-'); the fractions are thousandths, not padded.
std::string servoCatGotoCommand(double raHours, double decDeg);
// The 14-byte position reply: RA (hours) in bytes 0..5, Dec (degrees) in bytes 7..13, each a
// decimal number. Nothing when the reply is short or a field is not a number.
std::optional<ServoCatPosition> parseServoCatPosition(std::string_view reply);
// The reply a ServoCat gives for a position (used by the simulator).
std::string servoCatPositionReply(double raHours, double decDeg);

int servoCatConnect();
int servoCatDisconnect();
int servoCatReadRaDec(double& raHours, double& decDeg);
int servoCatGoto(double raHours, double decDeg);

// A simulated ServoCat for a PtyMount: answers CR with its position and takes goto texts
// (the mount arrives at the target at once).
PtyMount::Responder makeServoCatResponder(double raHours = 0.0, double decDeg = 0.0);

}  // namespace nocturnel
