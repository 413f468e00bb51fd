#pragma once
// An LX200 mount for the far end of a PtyMount, answering Meade's LX200 command set as
// other software uses it: the ACK byte (0x06, answered with the alignment mode), ":GD#",
// ":GR#", ":GA#", ":GZ#", the clock from the simulated clock (":GC#", ":GL#", ":Ga#",
// ":GG#", ":Gc#"), the site (":Gt#", ":Gg#", ":GM#".. ":GP#"), ":GT#", ":GS#", the product
// (":GVP#", ":GVN#", ":GVD#", ":GVT#", ":GVF#"), ":Gr#"/":Gd#" (target), ":D#" (distance
// bars); takes ":Sr"/":Sd" targets (answering '1'), slews on ":MS#" (answering '0' and
// arriving at once), syncs on ":CM#", sets the clock and site (":SC", ":SL", ":SG", ":St",
// ":Sg", answering '1'), keeps the rate and direction keys (":RS#".. ":Mn#".. ":Q#": a held
// key turns the mount in real time at the rate's speed until its stop), toggles precision on
// ":U#". Replies follow Meade's formats: high precision "HH:MM:SS#" and "sDD\xDFMM:SS#",
// low precision "HH:MM.T#" and "sDD\xDFMM#".
#include "scope/guarded_state.h"
#include "scope/pty_mount.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace nocturnel {

struct Lx200MountState {
    double raHours = 0;
    double decDeg = 0;
    double azDeg = 0;
    double altDeg = 0;
    double targetRaHours = 0;
    double targetDecDeg = 0;
    bool highPrecision = true;
    std::string setReply = "1";     // answer to ":Sr" and ":Sd" (empty: no answer)
    std::string gotoReply = "0";    // answer to ":MS#" (empty: no answer)
    std::optional<std::string> dateReply;  // sent instead of the simulated clock's date
    std::string syncReply = " M31 EX GAL MAG 3.5 SZ178.0'#";
    int rate = 0;                   // 0 slew .. 3 guide
    int moving = -1;                // direction key held, -1 none
    std::chrono::steady_clock::time_point motionSince{};  // when the motion was last applied
    // Answer to the ACK byte: Meade's alignment mode 'A' alt-az, 'P' polar, 'L' land; a Gemini
    // answers its start-up state, "G#" when ready.
    std::string ackReply = "P";
    std::string product = "LX200 Classic";
    // The simulated clock: the machine's UT plus these seconds (moved by ":SC"/":SL"), shown
    // in the local time of utcOffsetHours (east positive; ":GG#" answers its negation, as Meade).
    double clockShiftSeconds = 0;
    double utcOffsetHours = 0;
    double latitudeDeg = 45.0;
    double longitudeWestDeg = 0.0;  // Meade counts longitude positive west
    bool silent = false;            // obeys every command but answers nothing
    std::vector<std::string> commands;  // every command understood, without ':' and '#'
};

class Lx200MountModel : public GuardedState<Lx200MountState> {
public:
    explicit Lx200MountModel(Lx200MountState initial = {}) : GuardedState(std::move(initial)) {}
    // Consumes every complete command of `pending` and returns the replies.
    std::string respond(std::string& pending);

private:
    std::string answer(const std::string& command);
};

// Degrees per second of the simulated mount's rates 0 slew, 1 find, 2 centre, 3 guide.
double lx200SimulatedRateDegPerSec(int rate);

PtyMount::Responder makeLx200Responder(std::shared_ptr<Lx200MountModel> model);
// A mount at the given place, in high or low precision.
PtyMount::Responder makeLx200Responder(bool highPrecision = true, double raHours = 0, double decDeg = 0);
// The hand box of a drive code: "LX200 Classic" answering 'P' to ACK, an "Autostar" for
// AutoStar, a Losmandy "Gemini" answering "G#" (ready) for Losmandy.
Lx200MountState lx200MountForDrive(int driveCode, bool highPrecision, double raHours, double decDeg);

}  // namespace nocturnel
