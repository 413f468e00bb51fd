#pragma once
// The chart's view and projection. Sky positions (RA hours, Dec degrees) are turned into
// altitude and azimuth for the site and the local sidereal time, then into chart units u
// (up the screen) and v (to the left of the screen), either by a zenithal stereographic
// projection turned to the facing direction (mode 0) or as a rectangular alt-azimuth
// panorama (any other mode). Chart units become pixels through the zoom multipliers:
//   x = centreX - ((v * xMultiplier) >> 34),   y = centreY - ((u * yMultiplier) >> 34).
//
// Scale and multipliers: one chart unit is 1/2^20 of the stereographic radius tan(z/2) in
// mode 0, and 64/2^20 degree in mode 1. The multipliers give each zoom level its nominal field
// of view across the chart's smaller side: in mode 0 the arc of that size through the view
// centre along the vertical fills the side (so the 180 degree level centred on the zenith
// shows the whole horizon circle), in mode 1 the degrees are uniform. The view centre (az/alt,
// or RA/Dec turned to az/alt) is panned by moving the screen centre so that it lands in the
// middle of the chart.
#include <array>
#include <cstdint>

#include "core/fixed24.h"

namespace nocturnel {

inline constexpr int kZoomLevelCount = 13;
// Field of view of each zoom level, tenths of a degree.
inline constexpr std::array<int, kZoomLevelCount> kFieldOfViewTenths = {1800, 1500, 1200, 900, 600, 450, 300,
                                                                        200,  100,  50,   25,  10,  5};
inline constexpr int kLastFixedPathZoom = 11;
// Largest altitude span (degrees) a panorama (mode 1) shows from top to bottom: the sky above
// the horizon and 5 degrees of ground.
inline constexpr double kPanoramaMaxAltitudeSpanDeg = 95.0;   // the fixed-point path serves levels 0..11
inline constexpr double kChartScale = 1048576.0;  // chart units per projected unit length (2^20)
inline constexpr double kDefaultLatitudeRad = 0.8395033435776618;

struct ClipRect {
    int left = 0, right = 0, top = 0, bottom = 0;  // pixels, inclusive bounds
};

struct ScreenPoint {
    int x = 0, y = 0;
};

struct ChartView {
    int projectionMode = 0;          // 0 zenithal stereographic, other: rectangular alt-az
    double latitudeDeg = kDefaultLatitudeRad * 57.29577951308232;
    float sinLatitude = 0, cosLatitude = 0;
    fixed24 sinLatitudeFixed = 0, cosLatitudeFixed = 0;
    int rotationDeg = 0;             // theta: the azimuth shown at the top in mode 0
    float sinRotation = 0, cosRotation = 1;
    int64_t sinLatitudeScaled = 0, cosLatitudeScaled = 0;  // trunc(sin phi * scale), ...
    int64_t cosRotationScaled = 0, sinRotationScaled = 0;  // trunc(cos theta * scale), ...
    double scale = kChartScale;
    double reciprocalScale = 1.0 / kChartScale;
    int64_t xMultiplier = 1, yMultiplier = 1;  // chart units -> pixels, 34 fraction bits
    int zoomLevel = 0;
    int screenFactor = 1;            // 1, or 2 on a double-resolution screen
    int width = 800, height = 800;   // pixels
    int centreX = 400, centreY = 400;  // pixel of the zenith (mode 0) or of az 0, alt 0 (mode 1)
    ClipRect clip;
    double lstHours = 0;             // local sidereal time of the redraw
    double centreAzDeg = 180, centreAltDeg = 90;  // sky point in the middle of the chart
};

// A view of the given size, mode and site latitude, zoom 0, facing south, centred on the zenith.
ChartView makeChartView(int width, int height, int projectionMode, double latitudeDeg);
// Rotation (whole degrees): stores the sines, cosines and their scaled integer forms.
void setViewRotation(ChartView& view, int degrees);
// Zoom level 0..12 (clamped); recomputes the multipliers and the screen centre.
void setZoomLevel(ChartView& view, int zoomLevel);
// Pans so that the horizontal position (azimuth from north through east, altitude) is in the middle.
void setViewCentreHorizontal(ChartView& view, double azDeg, double altDeg);
// The same for an equatorial position at the view's sidereal time.
void setViewCentreEquatorial(ChartView& view, double raHours, double decDeg);
// Default centre of a zoom level when none is given: the zenith at the widest levels, otherwise
// the facing direction (the azimuth at the bottom of the chart) at an altitude keeping the
// horizon near the lower edge.
void setDefaultViewCentre(ChartView& view);
// Field of view of the view's zoom level, degrees.
double fieldOfViewDeg(int zoomLevel);

// Forward projection: true when the point is above the horizon (sin h >= 0); u, v chart units.
bool projectStar(const ChartView& view, double lstHours, double raHours, double decDeg, int32_t& u, int32_t& v);
// The same in fixed point (LST, RA and Dec as fixed24 radians).
bool projectStarFixed(const ChartView& view, fixed24 lst, fixed24 ra, fixed24 dec, int32_t& u, int32_t& v);
// Projection of a horizontal position without the horizon cut (grid, horizon, rings); false
// only near the nadir, where mode 0 has no image.
bool projectHorizontal(const ChartView& view, double azDeg, double altDeg, int32_t& u, int32_t& v);

// Screen position of chart units (64-bit products).
ScreenPoint chartToScreen(const ChartView& view, int32_t u, int32_t v);
// Sky position under a screen point: RA hours [0, 24), Dec degrees.
void screenToSky(const ChartView& view, int x, int y, double& raHours, double& decDeg);
// Horizontal position under a screen point: azimuth [0, 360), altitude degrees.
void screenToHorizontal(const ChartView& view, int x, int y, double& azDeg, double& altDeg);

// Mode 1: pixels of one full turn of azimuth (the chart period); 0 in mode 0.
int chartPeriodPixels(const ChartView& view);
// Mode 1: moves an x beyond the left clip bound right by one period, beyond the right bound
// left by one; other modes leave x alone.
int wrapPanoramaX(const ChartView& view, int x);
bool insideClip(const ChartView& view, int x, int y);

}  // namespace nocturnel
