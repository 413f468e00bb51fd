#pragma once
// An LX200 mount for the far end of a PtyMount: answers ":GD#", ":GR#", ":GA#", ":GZ#",
// ":GC#", takes ":Sr"/":Sd" targets (answering '1'), slews on ":MS#" (answering '0' and
// arriving at once), syncs on ":CM#", keeps the rate and direction keys (":RS#".. ":Mn#"..
// ":Q#"), toggles precision on ":U#". Replies follow Meade's formats: high precision
// "HH:MM:SS#" and "sDD\xDFMM:SS#", low precision "HH:MM.T#" and "sDD\xDFMM#".
#include "scope/guarded_state.h"
#include "scope/pty_mount.h"

#include <memory>
#include <mutex>
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
    std::string dateReply = "11/21/26#";
    std::string syncReply = " M31 EX GAL MAG 3.5 SZ178.0'#";
    int rate = 0;                   // 0 slew .. 3 guide
    int moving = -1;                // direction key held, -1 none
    bool silent = false;            // answers nothing at all
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

PtyMount::Responder makeLx200Responder(std::shared_ptr<Lx200MountModel> model);
// A mount at the given place, in high or low precision.
PtyMount::Responder makeLx200Responder(bool highPrecision = true, double raHours = 0, double decDeg = 0);

}  // namespace nocturnel
