#pragma once
// The simulated mount of each drive family, chosen by drive code, for `nocturnel scope
// simulate` and the tests: the responder a PtyMount answers with.
#include "scope/pty_mount.h"

namespace nocturnel {

struct SimulatorOptions {
    bool highPrecision = true;  // LX200: answer the long (high precision) formats
    double raHours = 5.5;       // where the equatorial mounts start
    double decDeg = 22.0;
    double azDeg = 180.0;       // where the encoder boxes start (their axis angles, with the
    double altDeg = 45.0;       // encoder resolutions of the preferences and zero offsets)
};

// The responder for a drive code; empty when the code has no simulator (none, SiderealTech,
// PowerFlex, Dynastar, unknown codes).
PtyMount::Responder makeMountSimulator(int driveCode, const SimulatorOptions& options = {});
bool hasMountSimulator(int driveCode);

// The raw count an encoder reports for an axis angle (inverse of the count-to-angle rule with
// a zero offset).
long encoderCountForAngle(double angleDeg, long resolution, bool isAltitude);

}  // namespace nocturnel
