// SkyRoamer with the visibility estimate of the moment, and the chart marking the list it
// leaves, end to end on the built catalogues (skipped without them).
#include <unistd.h>

#include <cairo.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "catalog/catalogues.h"
#include "catalog/name_index.h"
#include "settings/preferences.h"
#include "shell/cli_test_runner.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class RoamWithEstimate : public ::testing::Test {
protected:
    void SetUp() override {
        const char* data = std::getenv("NOCTURNEL_TEST_DATA");
        if (!data || !fs::exists(fs::path(data) / "nocturnel_planets.ppc")) GTEST_SKIP() << "no catalogues: run make-catalogs.sh";
        home_ = fs::temp_directory_path() / ("nocturnel_roam_estimate_" + std::to_string(::getpid()) + "_" +
                                             ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(home_);
        fs::create_directories(home_);
        fs::create_directory_symlink(fs::absolute(data), home_ / "data");
        closeCatalogues();
        resetNameIndex();
        // A dark country site at 45 N; a 200 mm F/6 telescope, an observer of 35 with good eyes; the longest list.
        ASSERT_EQ(run({"site", "set", "--name", "Causse", "--lat", "45", "--lon", "-3", "--utc-offset", "60"}).exit, 0);
        for (const auto& [field, value] : std::vector<std::pair<std::string, std::string>>{
                 {"scopeDiameterIndex", "203"}, {"fRatioIndex", "6"}, {"maxSelectedItems", "500"},
                 {"ageIndex", "35"}, {"visionIndex", "10/10"}, {"experience", "Hobbyst"}})
            ASSERT_EQ(run({"prefs", "set", field, value}).exit, 0) << field;
    }
    void TearDown() override {
        closeCatalogues();
        resetNameIndex();
        if (!home_.empty()) fs::remove_all(home_);
    }
    // A winter evening without the Moon (new Moon on 2026-01-18).
    CliRun run(std::vector<std::string> args) {
        prefs() = Preferences{};
        args.insert(args.begin(), {"--home", home_.string(), "--date", "2026-01-16", "--time", "21:30"});
        return runCommandLine(std::move(args));
    }
    fs::path home_;
};

bool listed(const nlohmann::json& objects, const std::string& part) {
    for (const auto& o : objects)
        if (o["name"].get<std::string>().find(part) != std::string::npos) return true;
    return false;
}

TEST_F(RoamWithEstimate, EasyAndVisibleOnAWinterEvening) {
    const CliRun r = run({"--json", "roam", "--visibility", "Visible", "--difficulty", "Easy"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    const nlohmann::json objects = r.json()["objects"];
    ASSERT_GT(objects.size(), 10u);
    EXPECT_TRUE(listed(objects, "M42")) << "the Orion Nebula stands high and shows easily";
    EXPECT_FALSE(listed(objects, "M13")) << "Hercules is below the horizon";
    for (const auto& o : objects) {
        if (o["type"].get<std::string>().find("Galaxy") == std::string::npos || o["mag"].is_null()) continue;
        EXPECT_LT(o["mag"].get<double>(), 14.0) << o.dump() << ": a faint galaxy is not easy in 200 mm";
    }
    // The same run asking for "Very Difficult" has no Orion Nebula.
    const CliRun hard = run({"--json", "roam", "--visibility", "Visible", "--difficulty", "Very Difficult"});
    ASSERT_EQ(hard.exit, 0) << hard.titles();
    EXPECT_FALSE(listed(hard.json()["objects"], "M42"));
}

// The pixel (x, y) of a PNG as 0xRRGGBB.
uint32_t pixelAt(const fs::path& png, int x, int y) {
    cairo_surface_t* s = cairo_image_surface_create_from_png(png.c_str());
    uint32_t value = 0xFFFFFFFF;
    if (cairo_surface_status(s) == CAIRO_STATUS_SUCCESS) {
        cairo_surface_flush(s);
        const unsigned char* row = cairo_image_surface_get_data(s) + y * cairo_image_surface_get_stride(s);
        value = reinterpret_cast<const uint32_t*>(row)[x] & 0xFFFFFF;
    }
    cairo_surface_destroy(s);
    return value;
}

TEST_F(RoamWithEstimate, TheChartRingsTheListedObjects) {
    const std::vector<std::string> chart = {"chart", "--center", "M 42", "--zoom", "7", "--size", "301x301", "-o"};
    auto withOutput = [&](const fs::path& file) {
        std::vector<std::string> args = chart;
        args.push_back(file.string());
        return args;
    };
    ASSERT_EQ(run(withOutput(home_ / "before.png")).exit, 0);
    ASSERT_EQ(run({"--json", "roam", "--catalog", "Messier", "--visibility", "Visible"}).exit, 0);
    ASSERT_EQ(run(withOutput(home_ / "after.png")).exit, 0);
    // On the ring around the centre (M 42) and nowhere far from any listed object.
    int changedOnRing = 0;
    for (const auto& [dx, dy] : std::vector<std::pair<int, int>>{{8, 0}, {-8, 0}, {0, 8}, {0, -8}})
        changedOnRing += pixelAt(home_ / "before.png", 150 + dx, 150 + dy) != pixelAt(home_ / "after.png", 150 + dx, 150 + dy);
    EXPECT_GE(changedOnRing, 3);
    EXPECT_EQ(pixelAt(home_ / "before.png", 150, 150 + 30), pixelAt(home_ / "after.png", 150, 150 + 30));
}

}  // namespace
}  // namespace nocturnel
