#pragma once
// A NexStar hand control for the far end of a PtyMount. It answers the echo ("Kx" -> "x#",
// "K?" -> "#"), position reads ("E" -> "34AB,12CE#", "e" -> "34AB0500,12CE0500#", or four raw
// bytes for a "Nexstar 5&8"), gotos ("R34AB,12CE", "r34AB0500,12CE0500", 'R' and four raw
// bytes: arrives at once, answers "#" except in raw mode), cancel goto ("M" -> "#") and the
// 8-byte pass-through motion packets ("P" ... -> "#"). Carriage returns are passed over.
#include "scope/nexstar_format.h"
#include "scope/guarded_state.h"
#include "scope/pty_mount.h"

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
    std::vector<std::string> commands;  // every command understood, bytes as received
    std::vector<NexStarPacket> packets; // motion packets received
};

class NexStarMountModel : public GuardedState<NexStarMountState> {
public:
    explicit NexStarMountModel(NexStarMountState initial = {}) : GuardedState(std::move(initial)) {}
    std::string respond(std::string& pending);

private:
};

PtyMount::Responder makeNexStarResponder(std::shared_ptr<NexStarMountModel> model);
// A hand control pointing at (raDeg, decAngleDeg) in the mount's own angles.
PtyMount::Responder makeNexStarResponder(double raDeg = 0, double decAngleDeg = 0, bool raw = false);

}  // namespace nocturnel
