#include "chart/star_images.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>

#include "settings/preferences.h"

namespace nocturnel {
namespace {

constexpr int kStripWidth = kStripColumns * kStripCell;
constexpr int kStripHeight = kStripRows * kStripCell;

struct Rgb {
    double r, g, b;
};

// Colour of each row on a dark sky: blue-white O/B stars to red M stars.
constexpr std::array<Rgb, kStripRows> kRowColoursDark = {{{0.62, 0.72, 1.00}, {0.75, 0.82, 1.00}, {1.00, 1.00, 1.00},
                                                          {1.00, 0.96, 0.80}, {1.00, 0.90, 0.58}, {1.00, 0.74, 0.45},
                                                          {1.00, 0.52, 0.38}}};
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

StripPixels drawStrip(StarStrip id) {
    StripPixels strip;
    strip.id = id;
    const bool whiteGround = id == kStripColourOnWhite || id == kStripPlainOnWhite;
    strip.transparentRgb = whiteGround ? 0xFFFFFFu : 0u;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kStripWidth, kStripHeight);
    cairo_t* cr = cairo_create(surface);
    const double ground = whiteGround ? 1.0 : 0.0;
    cairo_set_source_rgb(cr, ground, ground, ground);
    cairo_paint(cr);
    for (int row = 0; row < kStripRows; ++row) {
        const Rgb colour = discColour(id, row);
        for (int column = 0; column < kStripColumns; ++column) {
            const double cx = column * kStripCell + 6.5, cy = row * kStripCell + 6.5;
            const double radius = 6.5 - 0.5 * column;
            cairo_arc(cr, cx, cy, radius, 0, 2 * M_PI);
            cairo_set_source_rgb(cr, colour.r, colour.g, colour.b);
            if (id == kStripColourOnWhite && radius >= 2.5) {
                cairo_fill_preserve(cr);
                cairo_set_source_rgb(cr, 0, 0, 0);
                cairo_set_line_width(cr, 0.8);
                cairo_stroke(cr);
            } else {
                cairo_fill(cr);
            }
            // Every disc lights its centre pixel fully, so the faintest stay visible.
            cairo_rectangle(cr, cx - 0.5, cy - 0.5, 1, 1);
            cairo_set_source_rgb(cr, colour.r, colour.g, colour.b);
            cairo_fill(cr);
        }
    }
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    strip.pixels.resize(static_cast<std::size_t>(kStripWidth) * kStripHeight);
    for (int y = 0; y < kStripHeight; ++y) {
        const auto* line = reinterpret_cast<const uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride);
        for (int x = 0; x < kStripWidth; ++x) {
            const uint32_t rgb = line[x] & 0xFFFFFFu;
            strip.pixels[static_cast<std::size_t>(y) * kStripWidth + x] =
                rgb == strip.transparentRgb ? 0u : (0xFF000000u | rgb);
        }
    }
    cairo_surface_destroy(surface);
    return strip;
}

}  // namespace

StarStyle starStyleFromPreferences() {
    StarStyle style;
    style.plainStarFlag = prefs().starColor == 1 ? 1 : 0;
    style.alternateStripFlag = prefs().nightMode != 0 ? 1 : 0;
    style.displayScheme = prefs().background;
    style.screenFactor = 1;
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

const StripPixels& starStripPixels(StarStrip id) {
    static std::mutex mutex;
    static std::map<int, StripPixels> strips;
    const std::lock_guard lock(mutex);
    auto it = strips.find(id);
    if (it == strips.end()) it = strips.emplace(id, drawStrip(id)).first;
    return it->second;
}

void StarPainter::paintStar(cairo_surface_t* chart, int zoomLevel, int magnitudeStep, int colourClass, int x, int y) {
    if (strip_ == nullptr) {
        uint32_t transparent = 0;
        strip_ = &starStripPixels(chooseStarStrip(style_, transparent));
    }
    const int column = starSizeStep(style_, zoomLevel, magnitudeStep);
    const int row = starColourRow(style_, colourClass);
    const int width = cairo_image_surface_get_width(chart);
    const int height = cairo_image_surface_get_height(chart);
    const int stride = cairo_image_surface_get_stride(chart);
    unsigned char* data = cairo_image_surface_get_data(chart);
    if (data == nullptr) return;
    const int left = x - 6, top = y - 6;
    for (int dy = 0; dy < kStripCell; ++dy) {
        const int ty = top + dy;
        if (ty < 0 || ty >= height) continue;
        auto* line = reinterpret_cast<uint32_t*>(data + static_cast<std::ptrdiff_t>(ty) * stride);
        const uint32_t* source =
            &strip_->pixels[static_cast<std::size_t>(row * kStripCell + dy) * kStripWidth + column * kStripCell];
        for (int dx = 0; dx < kStripCell; ++dx) {
            const int tx = left + dx;
            if (tx < 0 || tx >= width || source[dx] == 0) continue;
            line[tx] = source[dx];
        }
    }
}

}  // namespace nocturnel
