#include "chart/star_images.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>

#include "settings/preferences.h"

namespace nocturnel {
namespace {

struct Rgb {
    double r, g, b;
};

// Colour of each row on a dark sky: the colour of a black body at the temperature of a star of
// the row's typical B-V (-0.35, -0.2, 0.1, 0.4, 0.65, 1.05, 1.6; Ballesteros' B-V to
// temperature), from blue-white O/B stars to orange-red M stars.
constexpr std::array<Rgb, kStripRows> kRowColoursDark = {{{0.61, 0.71, 1.00}, {0.71, 0.79, 1.00}, {0.87, 0.90, 1.00},
                                                          {1.00, 0.97, 0.93}, {1.00, 0.92, 0.80}, {1.00, 0.80, 0.58},
                                                          {1.00, 0.64, 0.38}}};
// The same classes printed on white: darker shades that keep their hue.
constexpr std::array<Rgb, kStripRows> kRowColoursLight = {{{0.10, 0.25, 0.75}, {0.20, 0.35, 0.70}, {0.10, 0.10, 0.10},
                                                           {0.45, 0.40, 0.05}, {0.60, 0.45, 0.00}, {0.70, 0.30, 0.00},
                                                           {0.75, 0.10, 0.05}}};

Rgb discColour(StarStrip id, int row) {
    switch (id) {
        case kStripColourOnWhite: return kRowColoursLight[static_cast<std::size_t>(row)];
        case kStripColourOnBlack: return kRowColoursDark[static_cast<std::size_t>(row)];
        case kStripPlainOnBlack: return {0.95, 0.95, 0.95};
        case kStripPlainOnWhite: return {0.0, 0.0, 0.0};
    }
    return {1, 1, 1};
}

StripPixels drawStrip(StarStrip id, int factor) {
    StripPixels strip;
    strip.id = id;
    strip.cell = kStripCell * factor;
    const int width = kStripColumns * strip.cell, height = kStripRows * strip.cell;
    const bool whiteGround = id == kStripColourOnWhite || id == kStripPlainOnWhite;
    strip.transparentRgb = whiteGround ? 0xFFFFFFu : 0u;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cairo_t* cr = cairo_create(surface);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
    for (int row = 0; row < kStripRows; ++row) {
        const Rgb colour = discColour(id, row);
        for (int column = 0; column < kStripColumns; ++column) {
            // Centre of the cell's middle pixel (13-pixel cells) or of the cell (26-pixel cells).
            const double half = factor == 1 ? 6.5 : strip.cell / 2.0;
            const double cx = column * strip.cell + half, cy = row * strip.cell + half;
            const double radius = starDiscDiameterAt(column, factor) / 2;
            if (radius <= 0.5 * factor) {
                // The smallest steps: one full pixel (a 2 x 2 block at double density); the last
                // columns of the double-density family dim that block, a visible step each.
                const double dim = factor == 2 ? 1.0 - 0.2 * std::max(0, column - (kStripColumns - 4)) : 1.0;
                cairo_rectangle(cr, cx - 0.5 * factor, cy - 0.5 * factor, factor, factor);
                cairo_set_source_rgba(cr, colour.r, colour.g, colour.b, dim);
                cairo_fill(cr);
                continue;
            }
            cairo_arc(cr, cx, cy, radius, 0, 2 * M_PI);
            cairo_set_source_rgb(cr, colour.r, colour.g, colour.b);
            if (id == kStripColourOnWhite && radius >= 2.5 * factor) {
                cairo_fill_preserve(cr);
                cairo_set_source_rgb(cr, 0, 0, 0);
                cairo_set_line_width(cr, 0.8 * factor);
                cairo_stroke(cr);
            } else {
                cairo_fill(cr);
            }
            if (!whiteGround && radius >= 2.0 * factor) {
                // A paler core on the larger discs of a dark sky, as the eye sees bright stars.
                cairo_arc(cr, cx, cy, radius * 0.45, 0, 2 * M_PI);
                cairo_set_source_rgba(cr, 1, 1, 1, 0.55);
                cairo_fill(cr);
            } else {
                // Small discs light their centre fully, so they stay crisp.
                cairo_rectangle(cr, cx - 0.5 * factor, cy - 0.5 * factor, factor, factor);
                cairo_set_source_rgb(cr, colour.r, colour.g, colour.b);
                cairo_fill(cr);
            }
        }
    }
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    strip.pixels.resize(static_cast<std::size_t>(width) * height);
    for (int y = 0; y < height; ++y) {
        const auto* line = reinterpret_cast<const uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride);
        for (int x = 0; x < width; ++x) strip.pixels[static_cast<std::size_t>(y) * width + x] = line[x];
    }
    cairo_surface_destroy(surface);
    return strip;
}

// Premultiplied source over an opaque destination pixel.
uint32_t blendOver(uint32_t source, uint32_t destination) {
    const uint32_t alpha = source >> 24;
    if (alpha == 0xFF) return source;
    const uint32_t keep = 255 - alpha;
    uint32_t out = 0xFF000000u;
    for (int shift = 0; shift <= 16; shift += 8) {
        const uint32_t s = (source >> shift) & 0xFF, d = (destination >> shift) & 0xFF;
        out |= std::min<uint32_t>(255, s + (d * keep + 127) / 255) << shift;
    }
    return out;
}

}  // namespace

StarStyle starStyleFromPreferences() {
    StarStyle style;
    style.plainStarFlag = prefs().starColor == 1 ? 1 : 0;
    style.alternateStripFlag = prefs().nightMode != 0 ? 1 : 0;
    style.displayScheme = prefs().background;
    style.screenFactor = 1;  // set by the chart from its request's resolution factor
    return style;
}

StarStrip chooseStarStrip(const StarStyle& style, uint32_t& transparentRgb) {
    if (style.displayScheme == 2 && style.plainStarFlag == 0) {
        transparentRgb = 0xFFFFFFu;
        return style.alternateStripFlag ? kStripPlainOnWhite : kStripColourOnWhite;
    }
    transparentRgb = 0u;
    if (style.plainStarFlag > 0) return kStripPlainOnBlack;
    return style.alternateStripFlag ? kStripPlainOnBlack : kStripColourOnBlack;
}

int starSizeStep(const StarStyle& style, int zoomLevel, int magnitudeStep) {
    const auto& offsets = style.screenFactor == 2 ? kSizeOffsetDoubleResolution
                          : style.plainStarFlag > 0 ? kSizeOffsetPlain
                                                    : kSizeOffsetNormal;
    const int offset = offsets[static_cast<std::size_t>(std::clamp(zoomLevel, 0, 12))];
    return std::clamp(offset + magnitudeStep, 0, kStripColumns - 1);
}

int starColourRow(const StarStyle& style, int colourClass) {
    if (style.plainStarFlag > 0) return 2;
    if (colourClass < -3) return 0;
    if (colourClass <= -1) return 1;
    if (colourClass <= 2) return 2;
    if (colourClass <= 5) return 3;
    if (colourClass <= 7) return 4;
    if (colourClass <= 13) return 5;
    return 6;
}

double starDiscDiameter(int column) {
    // Concave grading: 13 pixels at column 0 to 1 at column 12, d = 1 + 12 ((12 - k) / 12)^0.75.
    const int k = std::clamp(column, 0, kStripColumns - 1);
    return 1.0 + 12.0 * std::pow((12.0 - k) / 12.0, 0.75);
}

double starDiscDiameterAt(int column, int factor) {
    if (factor != 2) return starDiscDiameter(column);
    constexpr int kShift = 3;
    const int k = std::clamp(column, 0, kStripColumns - 1);
    return k + kShift < kStripColumns ? 2.0 * starDiscDiameter(k + kShift) : 2.0;
}

const StripPixels& starStripPixels(StarStrip id, int screenFactor) {
    static std::mutex mutex;
    static std::map<int, StripPixels> strips;
    const int factor = screenFactor == 2 ? 2 : 1;
    const std::lock_guard lock(mutex);
    auto it = strips.find(id * 4 + factor);
    if (it == strips.end()) it = strips.emplace(id * 4 + factor, drawStrip(id, factor)).first;
    return it->second;
}

void StarPainter::paintStar(cairo_surface_t* chart, int zoomLevel, int magnitudeStep, int colourClass, int x, int y) {
    if (strip_ == nullptr) {
        uint32_t transparent = 0;
        strip_ = &starStripPixels(chooseStarStrip(style_, transparent), style_.screenFactor);
    }
    const int column = starSizeStep(style_, zoomLevel, magnitudeStep);
    const int row = starColourRow(style_, colourClass);
    const int width = cairo_image_surface_get_width(chart);
    const int height = cairo_image_surface_get_height(chart);
    const int stride = cairo_image_surface_get_stride(chart);
    unsigned char* data = cairo_image_surface_get_data(chart);
    if (data == nullptr) return;
    const int cell = strip_->cell, stripWidth = kStripColumns * cell;
    const int left = x - (cell == kStripCell ? 6 : cell / 2), top = y - (cell == kStripCell ? 6 : cell / 2);
    for (int dy = 0; dy < cell; ++dy) {
        const int ty = top + dy;
        if (ty < 0 || ty >= height) continue;
        auto* line = reinterpret_cast<uint32_t*>(data + static_cast<std::ptrdiff_t>(ty) * stride);
        const uint32_t* source =
            &strip_->pixels[static_cast<std::size_t>(row * cell + dy) * stripWidth + column * cell];
        for (int dx = 0; dx < cell; ++dx) {
            const int tx = left + dx;
            if (tx < 0 || tx >= width || source[dx] == 0) continue;
            line[tx] = blendOver(source[dx], line[tx]);
        }
    }
}

}  // namespace nocturnel
