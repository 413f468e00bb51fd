#pragma once
// A NexStar hand control for the far end of a PtyMount. It answers the echo ("Kx" -> "x#",
// "K?" -> "#"), position reads ("E" -> "34AB,12CE#", "e" -> "34AB0500,12CE0500#", or four raw
// bytes for a "Nexstar 5&8"), gotos ("R34AB,12CE", "r34AB0500,12CE0500", 'R' and four raw
// bytes: arrives at once, answers "#" except in raw mode), cancel goto ("M" -> "#") and the
// 8-byte pass-through motion packets ("P" ... -> "#"), which turn an axis until its stop
// packet comes (in real time, at the hand control's rate), and what Celestron's
// communication protocol defines for other software: "V" (version), "m" (model), "t"/"T"
// (tracking mode), "J" (alignment complete), "L" (goto in progress), "h"/"H" (time),
// "w"/"W" (location), "S"/"s" (sync), "Z"/"z" (alt-azimuth), the motor-version pass-through.
// Carriage returns are passed over.
#include "scope/nexstar_format.h"
#include "scope/guarded_state.h"
#include "scope/pty_mount.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace nocturnel {

struct NexStarMountState {
    double raDeg = 0;        // RA axis angle, degrees [0, 360)
    double decAngleDeg = 0;  // Dec axis angle as the mount counts it, degrees [0, 360)
    bool raw = false;        // a "Nexstar 5&8": raw-byte reads and gotos
    std::string echoReply = "x#";
    std::string gotoReply = "#";
    std::string ackReply = "#";   // answer to "M" and to motion packets
    bool silent = false;
    // Hand motion: degrees per second on each axis (0 still), applied as time passes.
    double raRateDegPerSec = 0;
    double decRateDegPerSec = 0;
    std::chrono::steady_clock::time_point motionSince{};
    int trackingMode = 2;               // 0 off, 1 alt-azimuth, 2 EQ north, 3 EQ south
    std::string timeBytes = std::string("\x14\x1E\x00\x0B\x15\x1A\x00\x00", 8);  // Q R S T U V W X
    std::string locationBytes = std::string(8, '\0');
    std::vector<std::string> commands;  // every command understood, bytes as received
    std::vector<NexStarPacket> packets; // motion packets received
};

class NexStarMountModel : public GuardedState<NexStarMountState> {
public:
    explicit NexStarMountModel(NexStarMountState initial = {}) : GuardedState(std::move(initial)) {}
    std::string respond(std::string& pending);
    // Whether either axis is turning.
    bool moving() const;
};

// Degrees per second of the hand control's fixed rates 0 (stop) to 9.
double nexstarFixedRateDegPerSec(int rateCode);

PtyMount::Responder makeNexStarResponder(std::shared_ptr<NexStarMountModel> model);
// A hand control pointing at (raDeg, decAngleDeg) in the mount's own angles.
PtyMount::Responder makeNexStarResponder(double raDeg = 0, double decAngleDeg = 0, bool raw = false);

}  // namespace nocturnel
