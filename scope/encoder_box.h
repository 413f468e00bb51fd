#pragma once
// Encoder boxes on the scope port (9600 baud): connection and set-up, raw counts, and angles
// through the encoder resolutions and offsets of the preferences. With the preference
// `simulatedScope` set, no port is used and a simulated box turns slowly on both axes.
// Results follow the program's convention: 1 success, 0 failure, with a message shown.
// A read that fails (bad status, no reply, short or unreadable reply) shows "Bad encoder
// status" and closes the port.
namespace nocturnel {

struct EncoderBoxState {
    bool encoderOpen = false;
    bool encoderInitialised = false;  // the box has received its set-up
    long simulatedAzCount = 0;
    long simulatedAltCount = 0;
    bool hasLastReading = false;      // last angles read (cleared by encoderReset)
    double lastAzDeg = 0;
    double lastAltDeg = 0;
};
const EncoderBoxState& encoderBoxState();

int encoderConnect(int driveCode);
int encoderDisconnect();
// Raw counts of the box (or of the simulation).
int encoderReadCounts(int driveCode, long& az, long& alt);
// Angles in degrees: azimuth [0, 360), altitude signed.
int encoderReadAzAlt(int driveCode, double& azDeg, double& altDeg);
// The same reading, the first value divided by 15 (hours).
int encoderReadRaDec(int driveCode, double& raHours, double& decDeg);
// Sets the offsets of the preferences so the present reading shows the expected angles.
int encoderSetOffsets(int driveCode, double expectedAzDeg, double expectedAltDeg);
// Clears the last readings (after a failed alignment).
void encoderReset();
// Back to the state of a fresh run (closed, not initialised, simulated counts 0).
void encoderResetState();
// Counts the simulated box starts from (the next read advances them by one step).
void encoderSetSimulatedCounts(long az, long alt);

}  // namespace nocturnel
