#pragma once
// The NexStar family of drives: 8 "Nexstar 5&8" (raw bytes), 9 "NexStar old GT",
// 10 "NexStarGPS,GT,CGE" (and code 20, served alike), 15 "Ultima2000" (6-bit line options 208
// and a "\r" after its commands). The port is opened at 9600 baud on prefs().scopePort.
// prefs().nexstarPrecise selects the 24-bit commands; the offsets prefs().nexstarRaOffsetHours
// and prefs().nexstarDecOffsetDeg are subtracted on read and added on goto.
// Results: 1 success, 0 failure.
namespace nocturnel {

int nexstarConnect(int driveCode);
int nexstarDisconnect();  // releases the port through serialClose; always 1
// RA in hours [0, 24), Dec in degrees, offsets applied.
int nexstarReadRaDec(int driveCode, double& raHours, double& decDeg);
// Not offered by the family: "NexstarQueryAZ not implemented", 0.
int nexstarReadAzAlt(int driveCode, double& azDeg, double& altDeg);
int nexstarGoto(int driveCode, double raHours, double decDeg);
// Reads the mount and sets the offsets so that the next read gives (raHours, decDeg) and a
// goto to that place sends the mount where it is now. The mount itself is not told.
int nexstarSync(int driveCode, double raHours, double decDeg);
int nexstarSetRate(int driveCode, int rate);          // 0 slew, 1 find, 2 centre, 3 guide
int nexstarStartMove(int driveCode, int direction);   // 0 north, 1 south, 2 east, 3 west
int nexstarStopMove(int driveCode, int direction);
int nexstarStopAll(int driveCode);                    // cancels a goto
// The hand-control rate code in use (9 after start-up).
int nexstarRateCodeInUse();

}  // namespace nocturnel
