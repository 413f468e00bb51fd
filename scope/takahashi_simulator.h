#pragma once
// A simulated Takahashi (Temma) mount for a PtyMount: answers the version, position, goto and
// sync commands, the sidereal time "g", the latitude "i" and the motor state "STN-COD", keeps the sidereal time and latitude it is given, goes to the zenith and flips
// sides on request (reporting 'F', still moving, for a few polls after each), and stays silent
// for the commands a mount does not answer. The state is shared with the caller so a test or
// the command line can look at it and change it; lock `mutex` while doing so.
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "scope/pty_mount.h"

namespace nocturnel {

struct TakahashiSimulation {
    std::mutex mutex;

    // Behaviour.
    std::string versionReply = "vTemma PC v2.01\r\n";
    std::string gotoAnswer = "R0\r\n";            // answer to 'P' (goto); 'D' (sync) always "R0"
    std::optional<std::string> positionOverride;  // sent instead of the real 'E' reply
    bool silent = false;                           // obeys every command but answers nothing
    int pollsPerMove = 2;                          // 'F' answers after a zenith or a flip command

    // Mount state.
    double raHours = 6.0;
    double decDeg = 45.0;
    char side = 'W';        // 'E' or 'W'
    int movingPolls = 0;    // 'F' answers still to give
    double lstHours = 0;
    bool hasLatitude = false;
    double latitudeDeg = 0;
    int zenithCount = 0;
    int flipCount = 0;
    std::string lastMotion;  // last "M?" command, without CR LF
    // Hand motion: the direction held (0 north, 1 south, 2 east, 3 west; -1 none) turns the
    // mount in real time, slow (0.1 degree/s) or fast (2 degrees/s), until "M@" or "PS".
    int motionDirection = -1;
    bool motionFast = false;
    std::chrono::steady_clock::time_point motionSince{};
    bool slewing = false;
    bool motorsOn = true;   // "STN-ON" / "STN-OFF", asked with "STN-COD"
};

// A fresh simulation (West side, RA 6h, Dec +45) when none is given.
PtyMount::Responder makeTakahashiResponder(std::shared_ptr<TakahashiSimulation> simulation = nullptr);

}  // namespace nocturnel
