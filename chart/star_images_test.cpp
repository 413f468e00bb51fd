#include "chart/star_images.h"

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

StarStyle style(int plain, int alternate, int scheme, int factor = 1) { return {plain, alternate, scheme, factor}; }

TEST(StarImages, SizeStepByZoomAndMagnitude) {
    struct Case { StarStyle style; int zoom, step, column; };
    const Case cases[] = {
        {style(0, 0, 0), 0, 4, 12},    // widest zoom: magnitude step 4 is already the smallest image
        {style(0, 0, 0), 0, 5, 12},    // clamped
        {style(0, 0, 0), 0, 0, 8},
        {style(1, 0, 0), 12, 0, 0},    // plain stars at the closest zoom: -1 clamps to the largest
        {style(0, 0, 0), 12, 3, 3},    // one column per whole magnitude
        {style(1, 0, 0), 5, 2, 7},
        {style(0, 0, 0, 2), 11, 0, 0}, // double resolution replaces both rows
        {style(1, 0, 0, 2), 3, 4, 9},
        {style(0, 0, 0), 20, 2, 2},    // zoom beyond the table takes the last column of offsets
    };
    for (const Case& c : cases)
        EXPECT_EQ(starSizeStep(c.style, c.zoom, c.step), c.column) << "zoom " << c.zoom << " step " << c.step;
}

TEST(StarImages, ColourRowByColourClass) {
    const std::pair<int, int> cases[] = {{-128, 0}, {-4, 0}, {-3, 1}, {-1, 1}, {0, 2}, {2, 2}, {3, 3}, {5, 3},
                                         {6, 4},    {7, 4},  {8, 5},  {13, 5}, {14, 6}, {127, 6}};
    for (const auto& [colourClass, row] : cases) EXPECT_EQ(starColourRow(style(0, 0, 0), colourClass), row) << colourClass;
    EXPECT_EQ(starColourRow(style(1, 0, 0), -4), 2);
    EXPECT_EQ(starColourRow(style(1, 0, 0), 14), 2);
}

TEST(StarImages, StripChoiceAndTransparentColour) {
    struct Case { StarStyle style; StarStrip strip; uint32_t transparent; };
    const Case cases[] = {
        {style(0, 0, 2), kStripColourOnWhite, 0xFFFFFF}, {style(0, 1, 2), kStripPlainOnWhite, 0xFFFFFF},
        {style(1, 0, 2), kStripPlainOnBlack, 0},         {style(1, 1, 0), kStripPlainOnBlack, 0},
        {style(0, 1, 0), kStripPlainOnBlack, 0},         {style(0, 0, 0), kStripColourOnBlack, 0},
        {style(0, 0, 1), kStripColourOnBlack, 0},
    };
    for (const Case& c : cases) {
        uint32_t transparent = 12345;
        EXPECT_EQ(chooseStarStrip(c.style, transparent), c.strip);
        EXPECT_EQ(transparent, c.transparent);
        EXPECT_EQ(starStripPixels(c.strip).transparentRgb, c.transparent);
    }
}

// Lit (non-transparent) pixels of one cell of a strip.
int litPixels(const StripPixels& strip, int column, int row) {
    int lit = 0;
    for (int y = 0; y < kStripCell; ++y)
        for (int x = 0; x < kStripCell; ++x)
            lit += strip.pixels[static_cast<std::size_t>(row * kStripCell + y) * (kStripColumns * kStripCell) +
                                column * kStripCell + x] != 0;
    return lit;
}

TEST(StarImages, StripsHoldShrinkingCentredDiscs) {
    for (StarStrip id : {kStripColourOnWhite, kStripColourOnBlack, kStripPlainOnBlack, kStripPlainOnWhite}) {
        const StripPixels& strip = starStripPixels(id);
        ASSERT_EQ(strip.pixels.size(), static_cast<std::size_t>(kStripColumns * kStripCell * kStripRows * kStripCell));
        for (int row = 0; row < kStripRows; ++row) {
            EXPECT_GE(litPixels(strip, 0, row), 120) << id;   // the largest disc nearly fills its cell
            EXPECT_LE(litPixels(strip, 12, row), 5) << id;    // the smallest is a dot
            EXPECT_GE(litPixels(strip, 12, row), 1) << id;
            for (int column = 1; column < kStripColumns; ++column)
                EXPECT_LE(litPixels(strip, column, row), litPixels(strip, column - 1, row)) << id << " " << column;
            // Cell corners stay transparent.
            EXPECT_EQ(strip.pixels[static_cast<std::size_t>(row * kStripCell) * (kStripColumns * kStripCell)], 0u);
        }
    }
    // Colour strips give the blue row more blue than red and the red row the reverse.
    const StripPixels& colour = starStripPixels(kStripColourOnBlack);
    const auto centre = [&](int row) {
        return colour.pixels[static_cast<std::size_t>(row * kStripCell + 6) * (kStripColumns * kStripCell) + 6];
    };
    EXPECT_GT(centre(0) & 0xFF, (centre(0) >> 16) & 0xFF);
    EXPECT_LT(centre(6) & 0xFF, (centre(6) >> 16) & 0xFF);
}

TEST(StarImages, PaintStarCopiesTheCellCentredAndCutsAtTheEdges) {
    cairo_surface_t* chart = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 40, 30);
    cairo_surface_flush(chart);
    StarPainter painter(style(0, 0, 0));
    EXPECT_FALSE(painter.stripLoaded());
    painter.paintStar(chart, 12, 0, 0, 20, 15);  // the largest disc
    EXPECT_TRUE(painter.stripLoaded());
    painter.paintStar(chart, 0, 0, 0, 0, 0);     // corner: partly off the chart
    painter.paintStar(chart, 0, 0, 0, -100, 500);
    const unsigned char* data = cairo_image_surface_get_data(chart);
    const int stride = cairo_image_surface_get_stride(chart);
    const auto pixel = [&](int x, int y) { return reinterpret_cast<const uint32_t*>(data + y * stride)[x] & 0xFFFFFF; };
    EXPECT_NE(pixel(20, 15), 0u);
    EXPECT_NE(pixel(14, 15), 0u);   // the disc reaches 6 pixels left ...
    EXPECT_NE(pixel(26, 15), 0u);   // ... and right
    EXPECT_EQ(pixel(13, 15), 0u);   // but not 7
    EXPECT_EQ(pixel(27, 15), 0u);
    EXPECT_EQ(pixel(14, 9), 0u);    // the cell's corner is transparent
    EXPECT_NE(pixel(0, 0), 0u);
    cairo_surface_destroy(chart);
}

}  // namespace
}  // namespace nocturnel
