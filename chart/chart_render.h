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

struct ChartRequest {
    int width = 800, height = 800;        // pixels
    int zoomLevel = 0;                    // 0..12
    int projectionMode = 0;               // 0 stereographic, 1 rectangular alt-az
    // View rotation (azimuth at the top of a mode 0 chart). Unset: facing the given centre's
    // azimuth (that azimuth at the bottom), or south without a centre.
    std::optional<int> rotationDeg;
    std::optional<double> centreAzDeg, centreAltDeg;     // view centre as az/alt ...
    std::optional<double> centreRaHours, centreDecDeg;   // ... or as RA/Dec of date
    ObservingMoment moment;               // local civil time at the site of prefs()
    bool switchCatalogForZoom = true;     // open the star catalogue the zoom level wants
    bool precess = true;                  // J2000 places to the equator of date
    int resolutionFactor = 1;             // device pixels per CSS pixel (1 or 2): sizes of star images, lines and text
    StopRequested stopRequested;          // polled while loading field stars
    std::function<void(cairo_surface_t*)> present;  // shown the "Loading sky..." frame, then the chart
};

struct BrightStarSpot {
    int hip = 0;
    int x = 0, y = 0;
};

struct ChartResult {
    ChartView view;
    FieldStarLoad fieldStars;
    std::vector<BrightStarSpot> bright;  // default stars drawn, with their pixels
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
