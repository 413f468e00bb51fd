// The chart image as an output file: written whole or not at all.
#include <cairo.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "chart/chart_render.h"
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

}  // namespace
}  // namespace nocturnel
