#include "scope/mount_simulators.h"

#include <cmath>
#include <cstdlib>
#include <memory>

#include "scope/drive_types.h"
#include "scope/encoder_box_simulator.h"
#include "scope/lx200_sim.h"
#include "scope/nexstar_sim.h"
#include "scope/servocat.h"
#include "scope/skycommander_simulator.h"
#include "scope/takahashi_simulator.h"
#include "settings/preferences.h"

namespace nocturnel {

long encoderCountForAngle(double angleDeg, long resolution, bool isAltitude) {
    const long r = std::labs(resolution);
    if (r == 0) return 0;
    long value = std::lround(angleDeg * static_cast<double>(r) / 360.0) % r;
    if (value < 0) value += r;
    (void)isAltitude;  // a negative altitude is the same count as its value + R
    return resolution < 0 ? r - value : value;
}

PtyMount::Responder makeMountSimulator(int driveCode, const SimulatorOptions& options) {
    switch (driveFamily(driveCode)) {
        case DriveFamily::Lx200:
            return makeLx200Responder(std::make_shared<Lx200MountModel>(
                lx200MountForDrive(driveCode, options.highPrecision, options.raHours, options.decDeg)));
        case DriveFamily::Magellan:
            // Connected by the date query, a Magellan is never switched to the long formats.
            return makeLx200Responder(false, options.raHours, options.decDeg);
        case DriveFamily::NexStar: {
            // The mount counts angles in whole turns: a southern declination is 360 + Dec.
            const double decAngle = options.decDeg < 0 ? options.decDeg + 360.0 : options.decDeg;
            return makeNexStarResponder(options.raHours * 15.0, decAngle, driveCode == kDriveNexstar58);
        }
        case DriveFamily::ServoCat: return makeServoCatResponder(options.raHours, options.decDeg);
        case DriveFamily::Takahashi: {
            auto simulation = std::make_shared<TakahashiSimulation>();
            simulation->raHours = options.raHours;
            simulation->decDeg = options.decDeg;
            return makeTakahashiResponder(simulation);
        }
        case DriveFamily::SkyCommander: {
            auto simulation = std::make_shared<SkyCommanderSimulation>();
            simulation->first = options.raHours;
            simulation->second = options.decDeg;
            return makeSkyCommanderResponder(simulation);
        }
        case DriveFamily::EncoderBox: {
            auto simulation = std::make_shared<EncoderBoxSimulation>();
            simulation->azCount = encoderCountForAngle(options.azDeg, prefs().encoderAzSteps, false);
            simulation->altCount = encoderCountForAngle(options.altDeg, prefs().encoderAltSteps, true);
            return makeEncoderResponder(driveCode, simulation);
        }
        case DriveFamily::None:
        case DriveFamily::SiderealTech:
        case DriveFamily::PowerFlex:
        case DriveFamily::Dynastar:
        case DriveFamily::Unknown: break;
    }
    return {};
}

bool hasMountSimulator(int driveCode) {
    switch (driveFamily(driveCode)) {
        case DriveFamily::None:
        case DriveFamily::SiderealTech:
        case DriveFamily::PowerFlex:
        case DriveFamily::Dynastar:
        case DriveFamily::Unknown: return false;
        default: return true;
    }
}

}  // namespace nocturnel
