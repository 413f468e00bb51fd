#pragma once
// The rotation from the catalogues' mean J2000 places to the true equator and equinox of the
// chart's date (precession, then nutation), in floating and in fixed point. An inactive frame
// leaves J2000 places as they are.
#include <array>

#include "core/fixed24.h"
#include "core/vector3.h"

namespace nocturnel {

struct SkyFrame {
    bool active = false;
    Mat3 toDate{};                                  // J2000 -> true of date
    std::array<std::array<fixed24, 3>, 3> toDateFixed{};
};

// The frame of a UT Julian date (precession and nutation of the core).
SkyFrame skyFrameForDate(double jdUt);
// J2000 RA hours / Dec degrees -> date, and back.
void j2000ToDate(const SkyFrame& frame, double raHours, double decDeg, double& raDateHours, double& decDateDeg);
void dateToJ2000(const SkyFrame& frame, double raDateHours, double decDateDeg, double& raHours, double& decDeg);
// The same forward rotation on fixed24 radians (RA in [0, 2 pi)).
void j2000ToDateFixed(const SkyFrame& frame, fixed24 ra, fixed24 dec, fixed24& raDate, fixed24& decDate);

}  // namespace nocturnel
