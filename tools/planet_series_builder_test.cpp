// The planet series builder step on the excerpts of tools/testdata/astronomia, read back by the
// engine's own reader.
#include "tools/planet_series_builder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <unistd.h>

#include "core/planet_series.h"
#include "tools/builder_test_sources.h"
#include "tools/record_io.h"

namespace nocturnel {
namespace {

TEST(PlanetSeriesBuilder, ModuleLiteralBecomesJson) {
    const std::string json = astronomiaModuleToJson("const m = {\n  L: {\"0\": [[1.5, 2, 3e-5]]},\n  name: \"a:b\",\n  type: \"B\"\n};\nexport default m;\n");
    EXPECT_EQ(json, "{\n  \"L\": {\"0\": [[1.5, 2, 3e-5]]},\n  \"name\": \"a:b\",\n  \"type\": \"B\"\n}");
    EXPECT_EQ(astronomiaModuleToJson("no object here"), "");
}

TEST(PlanetSeriesBuilder, ExcerptsRoundTripThroughTheEngineReader) {
    const auto data = testing::testDataFolder() / "astronomia/data";
    std::string bytes, error;
    ASSERT_TRUE(buildPlanetSeriesBytes(data, bytes, error)) << error;
    PlanetSeriesSet set;
    ASSERT_TRUE(parsePlanetSeries(bytes, set, error)) << error;
    for (int b = 0; b < kSeriesBodyCount; ++b) EXPECT_TRUE(set.has(static_cast<SeriesBody>(b))) << b;
    // The Earth's L0 excerpt: its first three terms (1.75347045673, 0, 0), (0.03341656453,
    // 4.66925680415, 6283.0758499914), (0.00034894275, 4.62610242189, 12566.1516999828).
    const double tau = 0.1;
    const double expected = 1.75347045673 + 0.03341656453 * std::cos(4.66925680415 + 6283.0758499914 * tau) +
                            0.00034894275 * std::cos(4.62610242189 + 12566.1516999828 * tau);
    const auto& l0 = set.series[static_cast<int>(SeriesBody::Earth)][0].front();
    ASSERT_EQ(l0.power, 0);
    ASSERT_EQ(l0.count, 3u);
    double sum = 0.0;
    for (uint32_t i = 0; i < l0.count; ++i) {
        const PlanetSeriesTerm& t = set.terms[l0.first + i];
        sum += t.amplitude * std::cos(t.phase[0] + t.phase[1] * tau);
    }
    EXPECT_DOUBLE_EQ(sum, expected);
    // The Moon's W1 is its own one-term series.
    const auto& w1 = set.series[static_cast<int>(SeriesBody::Moon)][kMoonMeanLongitude];
    ASSERT_EQ(w1.size(), 1u);
    EXPECT_DOUBLE_EQ(set.terms[w1[0].first].phase[1], 8399.68473007193);
}

TEST(PlanetSeriesBuilder, DamagedFilesAreRefusedWithAReason) {
    std::string bytes, error;
    ASSERT_TRUE(buildPlanetSeriesBytes(testing::testDataFolder() / "astronomia/data", bytes, error)) << error;
    PlanetSeriesSet set;
    struct Case {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"empty", ""},
        {"truncated", bytes.substr(0, bytes.size() - 1)},
        {"bad magic", "XXXX" + bytes.substr(4)},
    };
    for (const Case& c : cases) {
        error.clear();
        EXPECT_FALSE(parsePlanetSeries(c.bytes, set, error)) << c.what;
        EXPECT_FALSE(error.empty()) << c.what;
    }
    EXPECT_FALSE(buildPlanetSeriesBytes(testing::testDataFolder() / "no-such-folder", bytes, error));
}

TEST(PlanetSeriesBuilder, MalformedSeriesAreRefusedNotThrown) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path() / ("nocturnel-planet-series-" + std::to_string(::getpid()));
    struct Case {
        const char* what;
        const char* file;
        const char* text;
    } cases[] = {
        {"power not a digit", "vsop87Bearth.js", "const m = {L: {\"99999999999999\": []}, B: {}, R: {}, type: \"B\"};"},
        {"term of two numbers", "vsop87Bearth.js", "const m = {L: {\"0\": [[1, 2]]}, B: {}, R: {}, type: \"B\"};"},
        {"text in a term", "vsop87Bearth.js", "const m = {L: {\"0\": [[1, \"x\", 3]]}, B: {}, R: {}, type: \"B\"};"},
        {"not VSOP87B", "vsop87Bearth.js", "const m = {L: {}, B: {}, R: {}, type: \"D\"};"},
        {"W1 of text", "elpMppDeFull.js", "const m = {W1: [\"a\", 1, 2, 3, 4], L: {}, B: {}, R: {}};"},
        {"no object", "elpMppDeFull.js", "nothing"},
    };
    for (const Case& c : cases) {
        fs::remove_all(folder);
        fs::copy(testing::testDataFolder() / "astronomia/data", folder);
        ASSERT_TRUE(writeWholeFile(folder / c.file, c.text));
        std::string bytes, error;
        EXPECT_FALSE(buildPlanetSeriesBytes(folder, bytes, error)) << c.what;
        EXPECT_FALSE(error.empty()) << c.what;
    }
    fs::remove_all(folder);
}

}  // namespace
}  // namespace nocturnel
