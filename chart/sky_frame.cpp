#include "chart/sky_frame.h"

#include <algorithm>
#include <cmath>

#include "chart/fixed_trig.h"
#include "core/nutation.h"
#include "core/precession.h"

namespace nocturnel {
namespace {

constexpr double kJ2000 = 2451545.0;
constexpr double kHoursToRad = M_PI / 12;
constexpr double kDegToRad = M_PI / 180;

Vec3 unitVector(double raHours, double decDeg) {
    const double a = raHours * kHoursToRad, d = decDeg * kDegToRad;
    return {std::cos(d) * std::cos(a), std::cos(d) * std::sin(a), std::sin(d)};
}

void toAngles(const Vec3& v, double& raHours, double& decDeg) {
    decDeg = std::asin(std::clamp(v[2], -1.0, 1.0)) / kDegToRad;
    raHours = std::atan2(v[1], v[0]) / kHoursToRad;
    if (raHours < 0) raHours += 24;
}

}  // namespace

SkyFrame skyFrameForDate(double jdUt) {
    SkyFrame frame;
    frame.active = true;
    frame.toDate = nutationMatrix(earthTilt(jdUt)) * precessionMatrix(kJ2000, jdUt);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            frame.toDateFixed[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)] =
                static_cast<fixed24>(std::lround(frame.toDate[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)] * kFixed24One));
    return frame;
}

void j2000ToDate(const SkyFrame& frame, double raHours, double decDeg, double& raDateHours, double& decDateDeg) {
    if (!frame.active) {
        raDateHours = raHours;
        decDateDeg = decDeg;
        return;
    }
    toAngles(frame.toDate * unitVector(raHours, decDeg), raDateHours, decDateDeg);
}

void dateToJ2000(const SkyFrame& frame, double raDateHours, double decDateDeg, double& raHours, double& decDeg) {
    if (!frame.active) {
        raHours = raDateHours;
        decDeg = decDateDeg;
        return;
    }
    toAngles(transposed(frame.toDate) * unitVector(raDateHours, decDateDeg), raHours, decDeg);
}

void j2000ToDateFixed(const SkyFrame& frame, fixed24 ra, fixed24 dec, fixed24& raDate, fixed24& decDate) {
    if (!frame.active) {
        raDate = ra;
        decDate = dec;
        return;
    }
    const fixed24 cd = fixedCos(dec);
    const std::array<fixed24, 3> v = {fixedMul(cd, fixedCos(ra)), fixedMul(cd, fixedSin(ra)), fixedSin(dec)};
    std::array<fixed24, 3> w{};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto& row = frame.toDateFixed[i];
        w[i] = fixedMul(row[0], v[0]) + fixedMul(row[1], v[1]) + fixedMul(row[2], v[2]);
    }
    decDate = fixedAsin(w[2]);
    raDate = fixedAtan2(w[1], w[0]);
    if (raDate < 0) raDate += kFixed24TwoPi;
}

}  // namespace nocturnel
