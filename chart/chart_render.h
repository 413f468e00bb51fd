#pragma once
// Rendering of the whole sky chart into an off-screen cairo image surface of the chart's size:
// background and ground, alt/az grid, ecliptic, constellation lines, deep-sky objects, the
// default bright stars, field stars, constellation and star names, horizon and cardinal points,
// Telrad rings, the corner label and the status line, then night mode (red on black). The
// layers are switched by the preferences' display settings (page 5/6 boxes, background, line
// colour, font size, night mode). The surface is shown or saved in one piece.
#include <cairo.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "chart/chart_view.h"
#include "chart/field_stars.h"
#include "settings/preferences.h"

namespace nocturnel {

struct SurfaceDestroyer {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using ChartSurface = std::unique_ptr<cairo_surface_t, SurfaceDestroyer>;

// Page 5/6 display boxes by position in prefs().displayBox.
enum DisplayBox : int {
    kBoxConstNames = 0, kBoxEyepiece = 1, kBoxConstLines = 2, kBoxCcd = 3, kBoxObjNames = 4, kBoxAltAzGrid = 5,
    kBoxObjDrilldown = 6, kBoxHideGrid = 7, kBoxStarsLegend = 8, kBoxHideToolBar = 9, kBoxStarsSymbols = 10,
    kBoxHideInfoBar = 11, kBoxEcliptic = 12, kBoxHideCompass = 13, kBoxTelrad = 14,
};

// Half side (pixels at resolution factor 1) of the square around a tap kept free of labels.
inline constexpr int kTapClearancePixels = 20;

// Stars brighter than this keep the centre of their disc free of labels.
inline constexpr float kClearStarMagnitude = 3.0f;

// An object of the current selection list, marked on the chart (J2000).
struct MarkedPlace {
    double raHours = 0, decDeg = 0;
};

struct ChartRequest {
    int width = 800, height = 800;        // pixels
    int zoomLevel = 0;                    // 0..12
    int projectionMode = 0;               // 0 stereographic, 1 rectangular alt-az
    // Screen resolution factor: 1, or 2 on a high-density screen (the browser's device pixel
    // ratio rounded); width and height are then device pixels and stars, labels and lines are
    // drawn at double density.
    int resolutionFactor = 1;
    // View rotation (azimuth at the top of a mode 0 chart). Unset: facing the given centre's
    // azimuth (that azimuth at the bottom), or south without a centre.
    std::optional<int> rotationDeg;
    std::optional<double> centreAzDeg, centreAltDeg;     // view centre as az/alt ...
    std::optional<double> centreRaHours, centreDecDeg;   // ... or as RA/Dec of date
    ObservingMoment moment;               // local civil time at the site of prefs()
    // The point the user tapped (pixels), when the chart is redrawn around a tap: its
    // neighbourhood (a finger's width) is kept free of labels.
    std::optional<ScreenPoint> tap;
    bool switchCatalogForZoom = true;     // open the star catalogue the zoom level wants
    bool precess = true;                  // J2000 places to the equator of date
    std::vector<MarkedPlace> marked;      // the current list's objects, ringed
    StopRequested stopRequested;          // polled while loading field stars
    std::function<void(cairo_surface_t*)> present;  // shown the "Loading sky..." frame, then the chart
};

struct BrightStarSpot {
    int hip = 0;
    int x = 0, y = 0;
    float mag = 0;
};

// A text drawn on the chart (star and object labels, compass points), its box in pixels.
struct ChartText {
    std::string text;  // UTF-8
    double left = 0, top = 0, width = 0, height = 0;
};

struct ChartResult {
    ChartView view;
    FieldStarLoad fieldStars;
    std::vector<BrightStarSpot> bright;  // default stars drawn, with their pixels
    std::vector<ChartText> labels;       // star and object labels drawn
    std::vector<ChartText> compass;      // compass points drawn
    double jdUt = 0;
};

// The view (scale, rotation, centre, sidereal time) of a request at the site of prefs().
ChartView chartViewForRequest(const ChartRequest& request, double& jdUt);
// Renders the chart. Null (after "Can't allocate offscreen window") when the surface cannot be made.
ChartSurface renderChart(const ChartRequest& request, ChartResult& result);
// Writes the surface as PNG; false with a message when the file cannot be written.
bool saveChartPng(cairo_surface_t* surface, const std::filesystem::path& path);
// Releases the font caches of cairo and fontconfig at the end of a process that drew charts
// (no chart surface may be alive).
void releaseChartFonts();

}  // namespace nocturnel
