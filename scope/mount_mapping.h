#pragma once
// The hook through which an alignment maps sky directions to the telescope's own angles and
// back. The alignment (align/) installs it; the drive dispatch uses it for the drives that
// work in mount angles (encoder boxes, and the position display of the drives that cannot
// slew). With empty functions there is no alignment and the sky values are used as they are.
//
// horDeg / elvDeg are the two telescope angles in degrees: azimuth and altitude on an
// alt-azimuth mount, the RA-axis reading (hours x 15) and the Dec-axis reading on an
// equatorial one. raHours / decDeg are the sky position; jdUt the UT Julian date.
#include <functional>

namespace nocturnel {

struct MountMapping {
    std::function<bool(double raHours, double decDeg, double jdUt, double& horDeg, double& elvDeg)> skyToMount;
    std::function<bool(double horDeg, double elvDeg, double jdUt, double& raHours, double& decDeg)> mountToSky;
};

void setMountMapping(MountMapping mapping);  // empty functions: no alignment
const MountMapping& mountMapping();
void clearMountMapping();

}  // namespace nocturnel
