#pragma once
// The LX200 family of drives: 2 "AutoStar", 5 "LX200", 17 "Losmandy" (adds the Gemini
// ":ON#" between the RA and Dec set commands), 6 "Magelan-I" and 7 "Magelan-II" (connect by a
// date query, position read only). The port is opened at 9600 baud on prefs().scopePort.
// With prefs().simulatedScope set, a simulated telescope answers and no byte goes out.
// Results: 1 success, 0 failure (a message shown), except lx200Goto (see below).
namespace nocturnel {

int lx200Connect(int driveCode);
int lx200Disconnect();  // releases the port through serialClose; always 1
// RA in hours, Dec in degrees; azimuth and altitude in degrees.
int lx200ReadRaDec(double& raHours, double& decDeg);
int lx200ReadAzAlt(double& azDeg, double& altDeg);
// 0 slewing (or no answer), 1 below the horizon, 2 above the upper limit, -1 unexpected
// answer; 0 as well when a command cannot be sent ("Fail to send string").
int lx200Goto(int driveCode, double raHours, double decDeg);
int lx200Sync(double raHours, double decDeg);
int lx200SetRate(int rate);            // 0 slew, 1 find, 2 centre, 3 guide
int lx200StartMove(int direction);     // 0 north, 1 south, 2 east, 3 west
int lx200StopMove(int direction);
int lx200StopAll();
// Back to low precision and a simulated telescope at rest at 0h, 0 degrees.
void lx200ResetState();
// Whether the last connect saw a 10-byte declination (high-precision replies and commands).
bool lx200HighPrecision();

}  // namespace nocturnel
