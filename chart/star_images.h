#pragma once
// Star images: a strip of 13 columns (size steps, column 0 the largest disc) by 7 rows (colour
// classes, blue to red) of 13 x 13 pixel cells. Four strips exist (4103..4106); each is drawn
// by our own code the first time it is needed and kept. A strip's transparent colour (white
// or black) marks the pixels that a copy leaves untouched.
//
// The discs are anti-aliased and graded from 13 pixels across (column 0) down to a single pixel
// (column 12), with the larger steps growing faster so that every whole magnitude is a visible
// step; each row has the colour of a star of its B-V. On a double-resolution screen (screen
// factor 2) the double-density family is used: cells of 26 x 26 pixels holding the same discs at
// twice the size, so stars keep their apparent size. Edge pixels carry partial coverage (alpha)
// and are blended over the chart.
//
// Which preference fields drive the choice: the plain-star flag is "Star Color" set to
// "Black&White" (prefs().starColor == 1), the display scheme is prefs().background (2 is
// "White"), and the alternate strip is used while night mode is on (prefs().nightMode != 0).
#include <array>
#include <cstdint>
#include <vector>

#include <cairo.h>

namespace nocturnel {

inline constexpr int kStripColumns = 13;
inline constexpr int kStripRows = 7;
inline constexpr int kStripCell = 13;  // pixels

enum StarStrip : int {
    kStripColourOnWhite = 4103,  // colour discs with a dark rim, transparent white
    kStripColourOnBlack = 4104,  // colour discs, transparent black
    kStripPlainOnBlack = 4105,   // grey-white discs, transparent black (plain stars, night)
    kStripPlainOnWhite = 4106,   // black discs, transparent white (night on the white scheme)
};

inline constexpr std::array<int, 13> kSizeOffsetNormal = {8, 8, 8, 7, 7, 6, 5, 5, 4, 3, 2, 1, 0};
inline constexpr std::array<int, 13> kSizeOffsetPlain = {7, 7, 7, 6, 6, 5, 4, 4, 3, 2, 1, 0, -1};
inline constexpr std::array<int, 13> kSizeOffsetDoubleResolution = {6, 6, 6, 5, 5, 4, 4, 3, 2, 1, 0, -1, -2};

struct StarStyle {
    int plainStarFlag = 0;       // positive: black-and-white stars
    int alternateStripFlag = 0;  // set: the alternate strip (night mode)
    int displayScheme = 0;       // 2: white background
    int screenFactor = 1;        // 2 on a double-resolution screen
};

StarStyle starStyleFromPreferences();
// The strip resource of a style and its transparent colour (0xRRGGBB).
StarStrip chooseStarStrip(const StarStyle& style, uint32_t& transparentRgb);
// Column 0..12 for a zoom level and magnitude step.
int starSizeStep(const StarStyle& style, int zoomLevel, int magnitudeStep);
// Row 0..6 for a colour class (B-V x 10).
int starColourRow(const StarStyle& style, int colourClass);

// Diameter in pixels of the disc of a column (0..12) on a single-resolution strip.
double starDiscDiameter(int column);
// Diameter in the strip's own pixels of a column of the strip family of a resolution factor.
// At factor 2 the size-offset row and the magnitude step (without its +1) move every star three
// columns toward the large discs, so column k of the double-density family is the single-resolution
// disc of column k + 3 drawn at twice its width: a star keeps its apparent size on the screen.
// Columns 9 to 12 are 2 x 2 dots (one single-resolution pixel), dimmer column by column.
double starDiscDiameterAt(int column, int factor);

// A strip as premultiplied ARGB pixels (13 cells x 7 cells), transparent pixels with alpha 0.
struct StripPixels {
    StarStrip id = kStripColourOnBlack;
    uint32_t transparentRgb = 0;
    int cell = kStripCell;  // pixels per cell side: 13, or 26 in the double-density family
    std::vector<uint32_t> pixels;
};
// The strip of a screen factor (1, or 2 for the double-density family), drawn once and kept.
const StripPixels& starStripPixels(StarStrip id, int screenFactor = 1);

// Paints stars from the strip of its style, loaded on the first star painted.
class StarPainter {
public:
    explicit StarPainter(StarStyle style) : style_(style) {}
    // Blends the cell of the star's size step and colour row centred on (x, y) into the chart
    // (an ARGB32 or RGB24 image surface). Cells partly off the chart are cut.
    void paintStar(cairo_surface_t* chart, int zoomLevel, int magnitudeStep, int colourClass, int x, int y);
    bool stripLoaded() const { return strip_ != nullptr; }
    const StarStyle& style() const { return style_; }

private:
    StarStyle style_;
    const StripPixels* strip_ = nullptr;
};

}  // namespace nocturnel
