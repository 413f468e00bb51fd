// The chart image as an output file: written whole or not at all, and read back pixel for
// pixel by an independent decoder (cairo's PNG reader, libpng).
#include <cairo.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "chart/chart_render.h"
#include "chart/png_writer.h"
#include "settings/message.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

TEST(ChartPngOutput, AFullDeviceFailsWithAMessageAndAFullFolderKeepsTheOldImage) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 64, 48);
    MessageCapture capture;
    EXPECT_FALSE(saveChartPng(surface, "/dev/full"));
    ASSERT_EQ(capture.messages().size(), 1u);
    EXPECT_EQ(capture.lastTitle(), "Can't create file");

    const fs::path folder = fs::temp_directory_path() / ("nocturnel_png_output_" + std::to_string(::getpid()));
    fs::create_directories(folder);
    const fs::path file = folder / "chart.png";
    ASSERT_TRUE(saveChartPng(surface, file));
    const auto size = fs::file_size(file);
    EXPECT_GT(size, 50u);
    // A folder in place of the image: refused, nothing else written beside it.
    EXPECT_FALSE(saveChartPng(surface, folder));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator{}), 1);
    fs::remove_all(folder);
    cairo_surface_destroy(surface);
}

// Decodes a PNG held in memory with cairo's reader; null when it is refused.
cairo_surface_t* decodeWithCairo(const std::vector<uint8_t>& png) {
    struct Reader {
        const std::vector<uint8_t>* bytes;
        std::size_t at = 0;
    } reader{&png};
    cairo_surface_t* image = cairo_image_surface_create_from_png_stream(
        [](void* closure, unsigned char* data, unsigned int length) {
            auto* r = static_cast<Reader*>(closure);
            if (r->at + length > r->bytes->size()) return CAIRO_STATUS_READ_ERROR;
            std::memcpy(data, r->bytes->data() + r->at, length);
            r->at += length;
            return CAIRO_STATUS_SUCCESS;
        },
        &reader);
    if (cairo_surface_status(image) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(image);
        return nullptr;
    }
    return image;
}

TEST(ChartPngOutput, EveryKindOfPictureDecodesToTheSamePixels) {
    // Sizes from one pixel up; pictures that deflate very differently: flat sky, soft gradients,
    // translucent bands, noise (every byte value, more than one block of symbols), and steps
    // of geometrically rarer sizes (a Huffman tree deeper than deflate's 15-bit codes allow).
    const std::pair<int, int> sizes[] = {{1, 1}, {3, 17}, {800, 800}, {641, 37}};
    std::mt19937 rng(7);
    for (const auto& [width, height] : sizes)
        for (int picture = 0; picture < 5; ++picture) {
            SCOPED_TRACE(testing::Message() << width << "x" << height << " picture " << picture);
            cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
            cairo_t* cr = cairo_create(surface);
            cairo_set_source_rgb(cr, 0.03, 0.07, 0.22);
            cairo_paint(cr);
            if (picture == 1) {
                cairo_pattern_t* gradient = cairo_pattern_create_radial(width / 2.0, height / 2.0, 1, width / 2.0, height / 2.0, width);
                cairo_pattern_add_color_stop_rgb(gradient, 0, 0.5, 0.55, 0.7);
                cairo_pattern_add_color_stop_rgb(gradient, 1, 0, 0, 0.05);
                cairo_set_source(cr, gradient);
                cairo_paint(cr);
                cairo_pattern_destroy(gradient);
            } else if (picture == 2) {
                for (int level = 0; level < 5; ++level) {
                    cairo_arc(cr, width / 2.0, height / 2.0, width * (0.5 - 0.08 * level), 0, 2 * M_PI);
                    cairo_set_source_rgba(cr, 0.55, 0.62, 0.80, 0.09);
                    cairo_fill(cr);
                }
            }
            cairo_destroy(cr);
            cairo_surface_flush(surface);
            unsigned char* data = cairo_image_surface_get_data(surface);
            const int stride = cairo_image_surface_get_stride(surface);
            if (picture == 3)
                for (int y = 0; y < height; ++y)
                    for (int x = 0; x < width; ++x)
                        reinterpret_cast<uint32_t*>(data + y * stride)[x] = 0xFF000000u | (rng() & 0xFFFFFFu);
            if (picture == 4)
                for (int y = 0; y < height; ++y) {
                    uint32_t blue = 0;
                    for (int x = 0; x < width; ++x) {
                        blue = (blue + static_cast<uint32_t>(__builtin_ctz(static_cast<uint32_t>(rng()) | 0x80000000u))) & 0xFF;
                        reinterpret_cast<uint32_t*>(data + y * stride)[x] = 0xFF000000u | blue;
                    }
                }
            cairo_surface_mark_dirty(surface);

            std::vector<uint8_t> png;
            ASSERT_TRUE(encodePng(surface, png));
            cairo_surface_t* decoded = decodeWithCairo(png);
            ASSERT_NE(decoded, nullptr);
            ASSERT_EQ(cairo_image_surface_get_width(decoded), width);
            ASSERT_EQ(cairo_image_surface_get_height(decoded), height);
            const unsigned char* back = cairo_image_surface_get_data(decoded);
            const int backStride = cairo_image_surface_get_stride(decoded);
            int wrong = 0;
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const uint32_t a = reinterpret_cast<const uint32_t*>(data + y * stride)[x] & 0xFFFFFFu;
                    const uint32_t b = reinterpret_cast<const uint32_t*>(back + y * backStride)[x] & 0xFFFFFFu;
                    wrong += a != b;
                }
            EXPECT_EQ(wrong, 0);
            cairo_surface_destroy(decoded);
            cairo_surface_destroy(surface);
        }
}

TEST(ChartPngOutput, OnlyImageSurfacesOfColourPixelsAreEncoded) {
    std::vector<uint8_t> png;
    EXPECT_FALSE(encodePng(nullptr, png));
    cairo_surface_t* alphaOnly = cairo_image_surface_create(CAIRO_FORMAT_A8, 8, 8);
    EXPECT_FALSE(encodePng(alphaOnly, png));
    cairo_surface_destroy(alphaOnly);
}

}  // namespace
}  // namespace nocturnel
