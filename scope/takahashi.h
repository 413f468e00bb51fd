#pragma once
// Takahashi mount (drive code 14, 19200 baud on the scope port of the preferences).
// Results follow the program's convention: 1 success, 0 failure, with a message shown.
//
// Choices this module makes where the mount's conventions leave room:
// - Line options: the even-parity option set (246) is applied only when the scope port
//   number is 0. Port 0 is "no port" here, and the open fails before that step, so the rule
//   never applies: the port runs at 19200 baud, 8 data bits, no parity, like the program
//   always did in practice.
// - Latitude, sidereal time and the pier-side procedure go to the mount once per run, on the
//   first connection that the mount answers (a silent mount is not sent them, and the user is
//   not asked the zenith question for it). The zenith question goes through askMountQuestion
//   (mount_questions.h): when nobody can answer it the pier-side procedure is skipped, so the
//   mount is never sent to the zenith and resynchronised by a default answer.
// - Goto and sync read a 4-byte answer: "R0" accepted, "R1" wrong RA, "R2" wrong Dec, "R3"
//   too many digits; nothing or anything else is "No response from Takahashi".
// - Sync sends the position with the mount's "D" command (same layout as the goto) and reads
//   the same answer.
// - stopMove uses the second stop form ("M@": stop the hand motion) and, as the program always
//   did, returns 0; stopAll sends the second form too ("M@") and then the first ("PS" then "s":
//   stop the slew), so that it ends every motion, and drops the mount's answer to "s" so it
//   cannot prefix the next reply.
// - The sidereal time sent is the one handed over by takahashiSetSiderealTime just before the
//   operation, for that operation only; otherwise the local sidereal time of the telescope
//   clock (scopeNow) at the site of the preferences, so a later goto never sends a stale one.
// - A read that gets no usable position shows "No response from Takahashi".
namespace nocturnel {

inline constexpr int kTakahashiBaud = 19200;
inline constexpr unsigned kTakahashiLineOptions = 246;  // even parity, hardware handshake

// Module state, kept for the whole run.
struct TakahashiState {
    int latitudeSent = 0;      // latitude and pier side given to the mount on a connection
    int gotoLatitudeSent = 0;  // the goto's own flag for the latitude
    int pierSideAnswer = -1;   // zenith question: -1 not asked, 1 East (Yes), 0 West (No)
    int moveSpeedSet = 0;      // 0 slow motion commands, 1 fast
    char pierFlag = 0;         // status letter (byte 13) of the last position reply
    bool hasSiderealTime = false;  // a value was handed over by takahashiSetSiderealTime
    double siderealTimeHours = 0;  // the last value handed over, hours
    bool siderealTimePending = false;  // that value still serves the next operation
};
const TakahashiState& takahashiState();
void takahashiResetState();

int takahashiConnect();
int takahashiDisconnect();
// The local sidereal time (hours) for the next operation (connect, read, goto or sync).
void takahashiSetSiderealTime(double lstHours);
int takahashiReadRaDec(double& raHours, double& decDeg);
int takahashiReadAltAz();
int takahashiGoto(double raHours, double decDeg);
int takahashiSync(double raHours, double decDeg);
int takahashiSetRate(int rate);
int takahashiStartMove(int direction);
int takahashiStopMove(int direction);
int takahashiStopAll();

// The pier-side procedure polls the position while the mount reports 'F' (still moving),
// pausing between polls, at most kTakahashiPierPollLimit times (two minutes at the normal pause).
inline constexpr int kTakahashiPierPollLimit = 480;
void setTakahashiPollPauseMillisecondsForTests(int milliseconds);

}  // namespace nocturnel
