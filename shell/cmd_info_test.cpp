// nocturnel info and find end to end on the built catalogues (NOCTURNEL_TEST_DATA), with the
// site and telescope set through `site set` and `prefs set` as a user would.
#include <unistd.h>

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

class InfoCommand : public ::testing::Test {
protected:
    void SetUp() override {
        const char* env = std::getenv("NOCTURNEL_TEST_DATA");
        if (!env || !*env || !fs::exists(fs::path(env) / kNameFile)) GTEST_SKIP() << "no built catalogues";
        home_ = fs::temp_directory_path() / ("nocturnel_cmd_info_" + std::to_string(::getpid()) + "_" +
                                             ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(home_);
        fs::create_directories(home_);
        fs::create_directory_symlink(fs::absolute(env), home_ / "data");
        closeCatalogues();
        resetNameIndex();
        ASSERT_EQ(run({"site", "set", "--lat", "45", "--lon", "-6", "--utc-offset", "120"}).exit, 0);
        for (const auto& [field, value] : std::vector<std::pair<std::string, std::string>>{
                 {"ageIndex", "35"}, {"visionIndex", "10/10"}, {"experience", "Hobbyst"}, {"fRatioIndex", "6"}})
            ASSERT_EQ(run({"prefs", "set", field, value}).exit, 0) << field;
    }
    void TearDown() override {
        closeCatalogues();
        resetNameIndex();
        if (!home_.empty()) fs::remove_all(home_);
    }
    CliRun run(std::vector<std::string> args, const std::string& date = "2026-06-15") {
        prefs() = Preferences{};
        args.insert(args.begin(), {"--home", home_.string(), "--date", date, "--time", "23:30"});
        return runCommandLine(std::move(args));
    }
    nlohmann::json info(const std::string& sky, const std::string& aperture, const std::string& name) {
        // The record's sky quality is set back at every start: the run gives its own.
        EXPECT_EQ(run({"prefs", "set", "scopeDiameterIndex", aperture}).exit, 0);
        const CliRun r = run({"info", name, "--sky", sky, "--json"});
        EXPECT_EQ(r.exit, 0) << r.titles();
        return r.exit == 0 ? r.json() : nlohmann::json{};
    }
    fs::path home_;
};

TEST_F(InfoCommand, M13EasyAtADarkSiteHarderInTown) {
    const nlohmann::json dark = info("Desert/Mountain", "203", "M 13");
    ASSERT_TRUE(dark.contains("visibility"));
    const std::string word = dark["visibility"]["word"];
    EXPECT_TRUE(word == "Easy" || word == "Very easy") << word;
    const double best = dark["visibility"]["bestMagnification"];
    EXPECT_GE(best, 203 / 7.0 - 1);
    EXPECT_LE(best, 2 * 203 + 1);
    EXPECT_TRUE(dark["visibility"]["eyepiece"].is_string());
    EXPECT_EQ(dark["constellation"], "Hercules");
    EXPECT_GT(dark["alt"].get<double>(), 30);
    const auto& names = dark["names"];
    EXPECT_NE(std::find(names.begin(), names.end(), "NGC6205"), names.end());
    EXPECT_EQ(dark["transit"].get<std::string>().size(), 19u);
    const nlohmann::json town = info("Town", "203", "M 13");
    EXPECT_LT(town["visibility"]["ratio"].get<double>(), dark["visibility"]["ratio"].get<double>());
}

TEST_F(InfoCommand, M13HarderUnderTheFullMoon) {
    // 2026-06-15 is a new Moon, 2026-06-29 a full Moon standing high at 23:30.
    const nlohmann::json moonless = info("Desert/Mountain", "203", "M 13");
    const CliRun full = run({"info", "M 13", "--sky", "Desert/Mountain", "--json"}, "2026-06-29");
    ASSERT_EQ(full.exit, 0) << full.titles();
    const nlohmann::json moonlit = full.json();
    EXPECT_LT(moonlit["visibility"]["ratio"].get<double>(), moonless["visibility"]["ratio"].get<double>() - 0.1);
}

TEST_F(InfoCommand, M101TooFaintInTownWithSixtyMillimetres) {
    const nlohmann::json j = info("Town", "60", "M101");
    EXPECT_EQ(j["visibility"]["word"], "Too faint");
}

TEST_F(InfoCommand, KeysAndApparentPlace) {
    const nlohmann::json j = info("Country", "150", "Vega");
    for (const char* key : {"name", "names", "type", "constellation", "mag", "sizeArcmin", "surfaceBrightness", "raJ2000",
                            "decJ2000", "ra", "dec", "alt", "az", "transit", "visibility"})
        EXPECT_TRUE(j.contains(key)) << key;
    // Precession from J2000 to 2026 moves Vega by about 0.9 minute of RA and 1.5' of Dec.
    EXPECT_NEAR((j["ra"].get<double>() - j["raJ2000"].get<double>()) * 60, 0.9, 0.3);
    EXPECT_NEAR((j["dec"].get<double>() - j["decJ2000"].get<double>()) * 60, 1.5, 0.6);
    EXPECT_TRUE(j["surfaceBrightness"].is_null());
}

TEST_F(InfoCommand, FindOrionNebulaAndUnknownNames) {
    const CliRun found = run({"find", "Orion Nebula", "--json"});
    ASSERT_EQ(found.exit, 0) << found.titles();
    EXPECT_EQ(found.json()["catalog"], "NGC");
    EXPECT_EQ(found.json()["number"], 1976);
    EXPECT_NE(found.json()["name"].get<std::string>().find("M42"), std::string::npos);
    const CliRun unknown = run({"info", "Nowhere Nebula"});
    EXPECT_EQ(unknown.exit, 1);
    EXPECT_TRUE(unknown.shown("Unknown object name"));
    const CliRun badSky = run({"info", "M 13", "--sky", "Suburb"});
    EXPECT_EQ(badSky.exit, 1);
    EXPECT_TRUE(badSky.shown("Unknown sky quality \"Suburb\""));
    const CliRun suggest = run({"find", "--suggest", "Ring N", "--json"});
    ASSERT_EQ(suggest.exit, 0);
    EXPECT_EQ(suggest.json()[0], "Ring Nebula");
}

}  // namespace
}  // namespace nocturnel
