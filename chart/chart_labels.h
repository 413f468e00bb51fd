#pragma once
// Texts written on the chart: the corner label with field of view and magnitude limits, the
// status line with the time and sidereal time, and the loading message. Texts are built in the
// program's 8-bit form (degree sign 0xB0) and drawn as UTF-8.
#include <string>

#include <cairo.h>

namespace nocturnel {

inline constexpr char kLoadingSkyText[] = "Loading sky...";
inline constexpr char kLoadingMeasureText[] = "Loading current sky...";

struct FieldLabel {
    std::string fieldOfView;  // "FOV 10\xB0" or "FOV 2.5\xB0"
    std::string limits;       // "All, S<%d" or "O<%d, S<%d"
};

// The two lines for a zoom level (magnitude limits of the preferences); false outside 0..12.
bool fieldLabelText(int zoomLevel, FieldLabel& label);
// Label font size in pixels of the "Font Size" choice.
double labelFontSize();
// Paints the corner label with its first line at (x + 1, y) (baseline below y); nothing outside 0..12.
void paintFieldLabel(cairo_t* cr, int x, int y, int zoomLevel);
// "%s %02d:%02d LST:%02d:%02d": date text, local hour and minute, sidereal hours and minutes.
std::string statusLineText(const char* dateText, int hour, int minute, double lstHours);
// The loading message centred horizontally in a chart of the given width (the longer text
// sets the width), baseline at y; returns the x where the text starts.
double paintLoadingMessage(cairo_t* cr, int chartWidth, int y);

}  // namespace nocturnel
