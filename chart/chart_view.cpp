#include "chart/chart_view.h"

#include <algorithm>
#include <cmath>

#include "chart/fixed_trig.h"

namespace nocturnel {
namespace {

constexpr double kHoursToRad = 0.261799387799183;
constexpr double kDegToRad = 0.0174532925199433;
constexpr double kRadToDeg = 57.29577951308232;
constexpr double kRadToDegOver64 = 0.8952465548;  // degrees per radian / 64
constexpr double kTwoPow34 = 17179869184.0;
constexpr double kTwoPow40 = 1099511627776.0;

// Horizontal position (radians) of an hour angle and declination (radians).
void hourAngleToHorizontal(const ChartView& view, double hRad, double decRad, double& sinAlt, double& azRad) {
    const double sphi = view.sinLatitude, cphi = view.cosLatitude;
    const double cd = std::cos(decRad), sd = std::sin(decRad), cH = std::cos(hRad);
    sinAlt = cphi * cd * cH + sphi * sd;
    azRad = std::atan2(-cd * std::sin(hRad), cphi * sd - sphi * cd * cH);
    if (azRad < 0) azRad += 2 * M_PI;
}

int32_t truncToUnits(double value) {
    return static_cast<int32_t>(std::clamp(value, -2.0e9, 2.0e9));
}

// Chart units of an altitude and azimuth (radians) in the view's mode.
void horizontalToChart(const ChartView& view, double altRad, double azRad, int32_t& u, int32_t& v) {
    if (view.projectionMode != 0) {
        v = truncToUnits(azRad * kRadToDegOver64 * view.scale);
        u = truncToUnits(altRad * kRadToDegOver64 * view.scale);
        return;
    }
    const double r = std::tan((M_PI / 2 - altRad) / 2);
    const double p = r * std::cos(azRad), q = r * std::sin(azRad);
    u = truncToUnits((view.sinRotation * q + view.cosRotation * p) * view.scale);
    v = truncToUnits((view.cosRotation * q - view.sinRotation * p) * view.scale);
}

int64_t toMultiplier(double pixelsPerUnit) { return std::llround(pixelsPerUnit * kTwoPow34); }

// Multipliers giving the zoom level's field of view across the chart's smaller side.
void computeMultipliers(ChartView& view) {
    const double side = std::max(1, std::min(view.width, view.height));
    const double fovDeg = fieldOfViewDeg(view.zoomLevel);
    if (view.projectionMode != 0) {
        const double pixelsPerUnit = side / fovDeg * 64.0 / view.scale;
        view.xMultiplier = -toMultiplier(pixelsPerUnit);  // azimuth grows to the right
        // Vertically the panorama never shows more than the sky above the horizon and a strip of
        // ground: at the widest levels the altitudes are stretched to fill the chart's height
        // instead of leaving it empty above the zenith.
        const double verticalFovDeg = std::min(fovDeg * view.height / side, kPanoramaMaxAltitudeSpanDeg);
        view.yMultiplier = toMultiplier(view.height / verticalFovDeg * 64.0 / view.scale);
        return;
    }
    // Stereographic radius tan(z/2) at the upper and lower ends of the vertical arc through the
    // centre (a negative zenith distance lies beyond the zenith).
    const double zc = 90.0 - view.centreAltDeg;
    const double zFar = std::min(zc + fovDeg / 2, 178.0);
    const double zNear = zFar - fovDeg;
    const double span = std::tan(zFar * kDegToRad / 2) - std::tan(zNear * kDegToRad / 2);
    const double pixelsPerUnit = side / span / view.scale;
    view.xMultiplier = toMultiplier(pixelsPerUnit);
    view.yMultiplier = toMultiplier(pixelsPerUnit);
}

void placeCentre(ChartView& view) {
    computeMultipliers(view);
    int32_t u = 0, v = 0;
    projectHorizontal(view, view.centreAzDeg, view.centreAltDeg, u, v);
    view.centreX = view.width / 2 + static_cast<int>((static_cast<int64_t>(v) * view.xMultiplier) >> 34);
    view.centreY = view.height / 2 + static_cast<int>((static_cast<int64_t>(u) * view.yMultiplier) >> 34);
}

}  // namespace

double fieldOfViewDeg(int zoomLevel) {
    return kFieldOfViewTenths[static_cast<std::size_t>(std::clamp(zoomLevel, 0, kZoomLevelCount - 1))] / 10.0;
}

ChartView makeChartView(int width, int height, int projectionMode, double latitudeDeg) {
    ChartView view;
    view.width = std::max(1, width);
    view.height = std::max(1, height);
    view.projectionMode = projectionMode;
    view.latitudeDeg = latitudeDeg;
    const double phi = latitudeDeg * kDegToRad;
    view.sinLatitude = static_cast<float>(std::sin(phi));
    view.cosLatitude = static_cast<float>(std::cos(phi));
    view.sinLatitudeFixed = doubleToFixed(view.sinLatitude);
    view.cosLatitudeFixed = doubleToFixed(view.cosLatitude);
    view.clip = {0, view.width - 1, 0, view.height - 1};
    view.centreAzDeg = 180;
    view.centreAltDeg = 90;
    setViewRotation(view, 0);
    placeCentre(view);
    return view;
}

void setViewRotation(ChartView& view, int degrees) {
    view.rotationDeg = degrees;
    const double theta = degrees * kDegToRad;
    view.cosRotation = static_cast<float>(std::cos(theta));
    view.sinRotation = static_cast<float>(std::sin(theta));
    view.cosRotationScaled = static_cast<int64_t>(view.cosRotation * view.scale);
    view.sinRotationScaled = static_cast<int64_t>(view.sinRotation * view.scale);
    view.sinLatitudeScaled = static_cast<int64_t>(view.sinLatitude * view.scale);
    view.cosLatitudeScaled = static_cast<int64_t>(view.cosLatitude * view.scale);
    placeCentre(view);
}

void setZoomLevel(ChartView& view, int zoomLevel) {
    view.zoomLevel = std::clamp(zoomLevel, 0, kZoomLevelCount - 1);
    placeCentre(view);
}

void setViewCentreHorizontal(ChartView& view, double azDeg, double altDeg) {
    if (!std::isfinite(azDeg) || !std::isfinite(altDeg)) return;  // no place to centre on: the view stays
    azDeg = std::fmod(azDeg, 360.0);
    if (azDeg < 0) azDeg += 360.0;
    view.centreAzDeg = azDeg;
    view.centreAltDeg = std::clamp(altDeg, -89.0, 90.0);
    placeCentre(view);
}

void setViewCentreEquatorial(ChartView& view, double raHours, double decDeg) {
    if (!std::isfinite(raHours) || !std::isfinite(decDeg)) return;
    double sinAlt = 0, azRad = 0;
    hourAngleToHorizontal(view, (view.lstHours - raHours) * kHoursToRad, decDeg * kDegToRad, sinAlt, azRad);
    setViewCentreHorizontal(view, azRad * kRadToDeg, std::asin(std::clamp(sinAlt, -1.0, 1.0)) * kRadToDeg);
}

void setDefaultViewCentre(ChartView& view) {
    const double fovDeg = fieldOfViewDeg(view.zoomLevel);
    const double facingAz = view.rotationDeg + 180.0;
    if (view.projectionMode != 0) {
        const double verticalFov = std::min(fovDeg * view.height / std::max(1, std::min(view.width, view.height)),
                                            kPanoramaMaxAltitudeSpanDeg);
        // The zenith at the top edge when the whole height is needed, else the horizon near the bottom.
        setViewCentreHorizontal(view, facingAz, verticalFov >= 90 ? 90 - verticalFov / 2 : std::max(45.0, 0.45 * verticalFov));
    } else if (view.zoomLevel == 0) {
        setViewCentreHorizontal(view, facingAz, 90.0);
    } else {
        setViewCentreHorizontal(view, facingAz, std::max(45.0, fovDeg / 2));
    }
}

bool projectStar(const ChartView& view, double lstHours, double raHours, double decDeg, int32_t& u, int32_t& v) {
    if (!std::isfinite(lstHours) || !std::isfinite(raHours) || !std::isfinite(decDeg)) return false;
    double hourAngle = lstHours - raHours;
    while (hourAngle > 12) hourAngle -= 24;
    while (hourAngle < -12) hourAngle += 24;
    double sinAlt = 0, azRad = 0;
    hourAngleToHorizontal(view, hourAngle * kHoursToRad, decDeg * kDegToRad, sinAlt, azRad);
    if (!(sinAlt >= 0)) return false;
    horizontalToChart(view, std::asin(std::min(sinAlt, 1.0)), azRad, u, v);
    return true;
}

bool projectStarFixed(const ChartView& view, fixed24 lst, fixed24 ra, fixed24 dec, int32_t& u, int32_t& v) {
    int64_t hourAngle = static_cast<int64_t>(lst) - ra;
    while (hourAngle > kFixed24Pi) hourAngle -= kFixed24TwoPi;
    while (hourAngle < -kFixed24Pi) hourAngle += kFixed24TwoPi;
    const fixed24 h = static_cast<fixed24>(hourAngle);
    const fixed24 sH = fixedSin(h), cH = fixedCos(h);
    const fixed24 sd = fixedSin(dec), cd = fixedCos(dec);
    const fixed24 sphi = view.sinLatitudeFixed, cphi = view.cosLatitudeFixed;
    const fixed24 cdcH = fixedMul(cd, cH);
    const fixed24 sinAlt = fixedMul(cphi, cdcH) + fixedMul(sphi, sd);
    if (sinAlt < 0) return false;
    const fixed24 north = fixedMul(cphi, sd) - fixedMul(sphi, cdcH);  // cos h cos A
    const fixed24 east = -fixedMul(cd, sH);                          // cos h sin A
    if (view.projectionMode != 0) {
        const int64_t unitsPerRadian = static_cast<int64_t>(kRadToDegOver64 * view.scale);
        fixed24 az = fixedAtan2(east, north);
        if (az < 0) az += kFixed24TwoPi;
        v = static_cast<int32_t>(az * unitsPerRadian / kFixed24One);
        // The altitude from its sine and cosine stays accurate near the zenith, where an arc
        // sine of the sine alone would not.
        const uint64_t cosSquared = static_cast<uint64_t>(static_cast<int64_t>(north) * north) +
                                    static_cast<uint64_t>(static_cast<int64_t>(east) * east);
        const fixed24 alt = fixedAtan2(sinAlt, static_cast<int32_t>(integerSqrt(cosSquared)));
        u = static_cast<int32_t>(static_cast<int64_t>(alt) * unitsPerRadian / kFixed24One);
        return true;
    }
    // tan((pi/2 - h)/2) (cos A, sin A) = (north, east) / (1 + sin h).
    const int64_t denominator = int64_t{kFixed24One} + sinAlt;
    const int64_t p = (static_cast<int64_t>(north) << kFixed24Shift) / denominator;
    const int64_t q = (static_cast<int64_t>(east) << kFixed24Shift) / denominator;
    // Divisions (not shifts) truncate toward zero like the floating-point path.
    u = static_cast<int32_t>((view.sinRotationScaled * q + view.cosRotationScaled * p) / kFixed24One);
    v = static_cast<int32_t>((view.cosRotationScaled * q - view.sinRotationScaled * p) / kFixed24One);
    return true;
}

bool projectHorizontal(const ChartView& view, double azDeg, double altDeg, int32_t& u, int32_t& v) {
    if (view.projectionMode == 0 && altDeg < -80) return false;
    double az = std::fmod(azDeg, 360.0);
    if (az < 0) az += 360.0;
    horizontalToChart(view, altDeg * kDegToRad, az * kDegToRad, u, v);
    return true;
}

ScreenPoint chartToScreen(const ChartView& view, int32_t u, int32_t v) {
    const int64_t dx = (static_cast<int64_t>(v) * view.xMultiplier) >> 24 >> 10;
    const int64_t dy = (static_cast<int64_t>(u) * view.yMultiplier) >> 24 >> 10;
    constexpr int64_t kLimit = int64_t{1} << 30;
    return {static_cast<int>(std::clamp(view.centreX - dx, -kLimit, kLimit)),
            static_cast<int>(std::clamp(view.centreY - dy, -kLimit, kLimit))};
}

void screenToHorizontal(const ChartView& view, int x, int y, double& azDeg, double& altDeg) {
    constexpr int64_t kMaxOffset = int64_t{1} << 28;  // keeps offset << 34 within 64 bits
    const int64_t offX = std::clamp(static_cast<int64_t>(view.centreX) - x, -kMaxOffset, kMaxOffset);
    const int64_t offY = std::clamp(static_cast<int64_t>(view.centreY) - y, -kMaxOffset, kMaxOffset);
    if (view.projectionMode != 0) {
        altDeg = offY * kTwoPow40 / (static_cast<double>(view.yMultiplier) * view.scale);
        azDeg = offX * kTwoPow40 / (static_cast<double>(view.xMultiplier) * view.scale);
    } else {
        const double dx = static_cast<double>((offX << 34) / view.xMultiplier) * view.reciprocalScale;
        const double dy = static_cast<double>((offY << 34) / view.yMultiplier) * view.reciprocalScale;
        const double p = dy * view.cosRotation - dx * view.sinRotation;
        const double q = dx * view.cosRotation + dy * view.sinRotation;
        azDeg = std::atan2(q, p) * kRadToDeg;
        altDeg = (M_PI / 2 - 2 * std::atan(std::hypot(p, q))) * kRadToDeg;
    }
    azDeg = std::fmod(azDeg, 360.0);
    if (azDeg < 0) azDeg += 360.0;
}

void screenToSky(const ChartView& view, int x, int y, double& raHours, double& decDeg) {
    double azDeg = 0, altDeg = 0;
    screenToHorizontal(view, x, y, azDeg, altDeg);
    const double a = azDeg * kDegToRad, h = altDeg * kDegToRad;
    const double sphi = view.sinLatitude, cphi = view.cosLatitude;
    decDeg = std::asin(std::clamp(std::cos(a) * cphi * std::cos(h) + sphi * std::sin(h), -1.0, 1.0)) * kRadToDeg;
    const double hourAngle =
        std::atan2(-std::cos(h) * std::sin(a), cphi * std::sin(h) - sphi * std::cos(h) * std::cos(a)) * kRadToDeg / 15;
    raHours = view.lstHours - hourAngle + 24;
    while (raHours >= 24) raHours -= 24;
    while (raHours < 0) raHours += 24;
}

int chartPeriodPixels(const ChartView& view) {
    if (view.projectionMode == 0) return 0;
    const int64_t turnUnits = static_cast<int64_t>(360.0 / 64.0 * view.scale);
    return static_cast<int>(std::llabs((turnUnits * view.xMultiplier) >> 34));
}

int wrapPanoramaX(const ChartView& view, int x) {
    if (view.projectionMode != 1) return x;
    const int period = chartPeriodPixels(view);
    if (x < view.clip.left) return x + period;
    if (x > view.clip.right) return x - period;
    return x;
}

bool insideClip(const ChartView& view, int x, int y) {
    return y >= view.clip.top && y <= view.clip.bottom && x >= view.clip.left && x <= view.clip.right;
}

}  // namespace nocturnel
