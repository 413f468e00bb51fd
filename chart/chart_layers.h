#pragma once
// The drawing of each chart layer onto a cairo context, and the occupancy grid that keeps
// labels from piling on each other.
#include <cairo.h>

#include <string>
#include <vector>

#include "chart/chart_view.h"
#include "chart/sky_frame.h"

namespace nocturnel {

struct Rgb3 {
    double r = 0, g = 0, b = 0;
};

// Colours of the display scheme (prefs().background) and line colour (prefs().lineColor).
struct ChartPalette {
    Rgb3 sky, ground, lines, grid, text, horizon, ecliptic, telrad;
    Rgb3 galaxy, nebula, cluster, otherObject;
    Rgb3 starName, milkyWay;
};
ChartPalette chartPalette(int background, int lineColor);

// Coarse grid of the chart in cells; a label is placed only where its box finds every cell free.
class LabelGrid {
public:
    LabelGrid(int width, int height, int cellPixels = 6);
    // Marks the box (pixels) when free and answers whether it was.
    bool claim(double left, double top, double width, double height);
    // Marks the box (the part on the chart) whatever it held: kept free of later labels.
    void mark(double left, double top, double width, double height);
    // True when any cell of the box is taken.
    bool taken(double left, double top, double width, double height) const;

private:
    int columns_, rows_, cell_;
    std::vector<uint8_t> used_;
};

struct LayerContext {
    cairo_t* cr;
    const ChartView& view;
    const SkyFrame& frame;
    const ChartPalette& palette;
    LabelGrid& labels;
    double fontSize;  // pixels, already at the screen's resolution factor
    // Device pixels of a length given in pixels of a single-resolution chart: line widths,
    // dashes and symbol sizes double on a double-resolution screen, so that its chart looks
    // like the single-resolution one at twice the density.
    double px(double singleResolutionPixels) const { return singleResolutionPixels * view.screenFactor; }
};

// A label placed right of (x, y) when the grid has room; true when drawn.
bool placeLabel(const LayerContext& ctx, const std::string& text, double x, double y, const Rgb3& colour);

// The sky colour over the whole chart, and then (after the layers that lie on the sky's
// background, such as the Milky Way) the ground below the horizon.
void drawBackground(const LayerContext& ctx);
void drawGround(const LayerContext& ctx);
void drawAltAzGrid(const LayerContext& ctx);
void drawEcliptic(const LayerContext& ctx, double jdUt);
void drawConstellationLines(const LayerContext& ctx);
void drawConstellationNames(const LayerContext& ctx);
struct ChartLabel;
// Draws the deep-sky symbols; when `labels` is given, appends each drawn object's label and keeps
// its centre free of other labels.
void drawDeepSkyObjects(const LayerContext& ctx, float magnitudeLimit, std::vector<ChartLabel>* labels);
// The horizon line, and the compass points (whose places are kept free of labels); returns the
// compass points drawn with their boxes.
struct CompassText {
    std::string text;
    double left = 0, top = 0, width = 0, height = 0;
};
std::vector<CompassText> drawHorizonAndCompass(const LayerContext& ctx, bool compass);
// Keeps the places of the compass points free of labels (before the labels are placed).
void reserveCompassPoints(const LayerContext& ctx);
// Rings of the given diameters (degrees) around the chart's centre.
void drawTelradRings(const LayerContext& ctx, const float (&ringsDeg)[3]);
// The eyepiece's true field (diameter, degrees) as a circle around the chart's centre, in the
// Telrad colour, with `label` (Latin-1) above it. A field outside (0, 180] draws nothing.
void drawEyepieceField(const LayerContext& ctx, double trueFieldDeg, const std::string& label);
// Screen point of a J2000 place (false below the horizon or outside the chart's clip).
bool skyToScreen(const ChartView& view, const SkyFrame& frame, double raHours, double decDeg, ScreenPoint& point);
// Brightness of the red of a "Night Mode" level (0 "Off", 1 "Dark", 2 "Medium", 3 "Bright"),
// as a fraction of full red.
double nightModeBrightness(int nightMode);
// Reddens the finished chart: luminance to red on black (inverted on the white scheme), scaled
// by brightness (0..1) so that the darker levels keep the eye adapted.
void applyNightMode(cairo_surface_t* surface, bool whiteScheme, double brightness = 1.0);

}  // namespace nocturnel
