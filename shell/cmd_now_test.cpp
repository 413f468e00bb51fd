// The foundation commands end to end, in-process: now, prefs and site, with a temporary
// program folder, each run a fresh start-up as the real command line does.
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <erfa.h>
#include <gtest/gtest.h>

#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/preferences_file.h"
#include "settings/program_folder.h"
#include "shell/app.h"
#include "shell/cli_test_runner.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class FoundationCommands : public ::testing::Test {
protected:
    void SetUp() override {
        home_ = fs::temp_directory_path() / ("nocturnel_cmd_now_" + std::to_string(::getpid()) + "_" +
                                             ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(home_);
        fs::create_directories(home_);
    }
    void TearDown() override { fs::remove_all(home_); }

    // One command line with --home pointing at the temporary folder, each a fresh start-up.
    CliRun run(std::vector<std::string> args) {
        prefs() = Preferences{};
        args.insert(args.begin(), {"--home", home_.string()});
        return runCommandLine(std::move(args));
    }

    fs::path home_;
};

TEST_F(FoundationCommands, NowJsonForAFixedMoment) {
    const CliRun r = run({"now", "--date", "2000-01-01", "--time", "12:00", "--json"});
    ASSERT_EQ(r.exit, 0) << r.out;
    const auto j = r.json();
    EXPECT_EQ(j["year"], 2000);
    EXPECT_EQ(j["month"], 1);
    EXPECT_EQ(j["day"], 1);
    EXPECT_EQ(j["hour"], 12);
    EXPECT_EQ(j["minute"], 0);
    EXPECT_EQ(j["second"], 0);
    EXPECT_EQ(j["utcOffsetMin"], 60);
    // 12:00 at UT+60 min is 11:00 UT.
    EXPECT_NEAR(j["jd"].get<double>(), 2451544.9583333, 1e-7);
    EXPECT_NEAR(j["deltaT"].get<double>(), 63.8, 0.05);
    // GMST at 0h UT of 2000-01-01 from ERFA's IAU 1982 model.
    EXPECT_NEAR(j["gmst0"].get<double>(), eraGmst82(2451544.5, 0) * 12 / M_PI, 1e-7);
    // LST at the default site, 1.8 degrees west.
    const double expectedLst = std::fmod(eraGmst82(2451544.5, 11.0 / 24) * 12 / M_PI - 1.8 / 15 + 24, 24);
    EXPECT_NEAR(j["lst"].get<double>(), expectedLst, 2e-6);
    EXPECT_NEAR(j["decimalYear"].get<double>(), 2000 + (1 + 12.0 / 24) / 366, 1e-9);
}

TEST_F(FoundationCommands, NowTextUsesTheHourStyle) {
    const CliRun r = run({"now", "--date", "2024-03-21", "--time", "21:30:15"});
    ASSERT_EQ(r.exit, 0);
    EXPECT_NE(r.out.find("2024-03-21 21:30:15 local (UT+60 min)"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("Local sidereal time: "), std::string::npos);
    EXPECT_NE(r.out.find("m"), std::string::npos);
}

TEST_F(FoundationCommands, BadDateOrTimeFails) {
    struct Case { const char* option; const char* value; const char* title; };
    const Case cases[] = {
        {"--date", "2023-02-29", "Invalid date \"2023-02-29\""},
        {"--date", "2024-13-01", "Invalid date \"2024-13-01\""},
        {"--date", "21/03/2024", "Invalid date \"21/03/2024\""},
        {"--time", "24:00", "Invalid time \"24:00\""},
        {"--time", "12:60", "Invalid time \"12:60\""},
        {"--time", "12", "Invalid time \"12\""},
    };
    for (const auto& c : cases) {
        const CliRun r = run({"now", c.option, c.value, "--json"});
        EXPECT_EQ(r.exit, 1) << c.value;
        ASSERT_EQ(r.messages.size(), 1u) << c.value;
        EXPECT_EQ(r.messages[0].title, c.title);
        // With --json the failure is the JSON error on standard output, and nothing else.
        const auto j = r.json();
        EXPECT_EQ(j["error"]["caption"], "Information") << c.value;
        EXPECT_EQ(j["error"]["title"], c.title) << c.value;
    }
}

TEST_F(FoundationCommands, SiteSurvivesARestartAndMovesTheJulianDate) {
    CliRun r = run({"site", "set", "--lat", "-33:52:08", "--lon", "-151.2093", "--utc-offset", "600", "--name",
                    "Sydney", "--height", "58"});
    ASSERT_EQ(r.exit, 0) << r.out;
    // A name typed in UTF-8 is kept in Latin-1 and shown in UTF-8 again (11 Latin-1 characters fit).
    r = run({"prefs", "set", "siteName", "Z\xC3\xBCrich S\xC3\xBC" "d"});
    ASSERT_EQ(r.exit, 0) << r.out;
    EXPECT_EQ(run({"site", "show", "--json"}).json()["name"], "Z\xC3\xBCrich S\xC3\xBC" "d");
    r = run({"prefs", "set", "siteName", "Sydney"});
    ASSERT_EQ(r.exit, 0) << r.out;
    r = run({"site", "show", "--json"});
    ASSERT_EQ(r.exit, 0);
    auto j = r.json();
    EXPECT_EQ(j["name"], "Sydney");
    EXPECT_NEAR(j["latitudeDeg"].get<double>(), -(33 + 52 / 60.0 + 8 / 3600.0), 1e-5);
    EXPECT_NEAR(j["longitudeDeg"].get<double>(), -151.2093, 1e-4);
    EXPECT_EQ(j["utcOffsetMin"], 600);
    EXPECT_EQ(j["altitudeM"], 58);
    r = run({"now", "--date", "2000-01-01", "--time", "12:00", "--json"});
    EXPECT_NEAR(r.json()["jd"].get<double>(), 2451544.5 + 2.0 / 24, 1e-7);
}

TEST_F(FoundationCommands, SiteSetRefusesBadValuesAndKeepsTheOldSite) {
    ASSERT_EQ(run({"site", "set", "--lat", "45", "--lon", "-5", "--utc-offset", "60", "--name", "Lyon"}).exit, 0);
    struct Case { std::vector<std::string> args; const char* title; };
    const Case cases[] = {
        {{"--lat", "91", "--lon", "0", "--utc-offset", "0"}, "Invalid latitude \"91\""},
        {{"--lat", "north", "--lon", "0", "--utc-offset", "0"}, "Invalid latitude \"north\""},
        {{"--lat", "10", "--lon", "180.5", "--utc-offset", "0"}, "Invalid longitude \"180.5\""},
        {{"--lat", "10", "--lon", "0", "--utc-offset", "1440"}, "Invalid UT offset \"1440\""},
        {{"--lat", "10", "--lon", "0", "--utc-offset", "0", "--height", "32000"}, "Invalid height \"32000\""},
        {{"--lat", "10", "--lon", "0", "--utc-offset", "abc"}, "Invalid UT offset \"abc\""},
        {{"--lat", "10", "--lon", "0", "--utc-offset", "0", "--name", "\xE2\x82\xAC uro"}, "Invalid site name \"? uro\""},
        {{"--lat", "10", "--lon", "0", "--utc-offset", "0", "--name", "A name too long"},
         "Invalid site name \"A name too long\""},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"site", "set"};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const CliRun r = run(args);
        EXPECT_EQ(r.exit, 1) << c.title;
        ASSERT_FALSE(r.messages.empty()) << c.title;
        EXPECT_EQ(r.messages[0].title, c.title);
    }
    const auto j = run({"site", "show", "--json"}).json();
    EXPECT_EQ(j["name"], "Lyon");
    EXPECT_NEAR(j["latitudeDeg"].get<double>(), 45, 1e-6);
}

TEST_F(FoundationCommands, SiteMemoriesStoreAndRecall) {
    ASSERT_EQ(run({"site", "set", "--lat", "51.4779", "--lon", "0.0015", "--utc-offset", "0", "--name",
                   "Greenwich"}).exit, 0);
    ASSERT_EQ(run({"site", "store", "3"}).exit, 0);
    ASSERT_EQ(run({"site", "set", "--lat", "19.8207", "--lon", "155.4681", "--utc-offset", "-600"}).exit, 0);
    CliRun r = run({"site", "recall", "3", "--json"});
    ASSERT_EQ(r.exit, 0);
    auto j = r.json();
    EXPECT_EQ(j["name"], "Greenwich");
    EXPECT_NEAR(j["latitudeDeg"].get<double>(), 51.4779, 1e-4);
    EXPECT_EQ(j["utcOffsetMin"], 0);
    EXPECT_EQ(j["memories"][2]["name"], "Greenwich");
    r = run({"site", "recall", "4"});
    EXPECT_EQ(r.exit, 1);
    EXPECT_EQ(r.messages.at(0).title, "There is no site memory 4");
}

TEST_F(FoundationCommands, PrefsSetShowAndReset) {
    CliRun r = run({"prefs", "set", "scopeDrive", "Takahashi"});
    ASSERT_EQ(r.exit, 0);
    r = run({"prefs", "set", "deltaTSeconds", "69.5"});
    ASSERT_EQ(r.exit, 0);
    r = run({"prefs", "set", "latitudeDeg", "95"});
    EXPECT_EQ(r.exit, 1);
    EXPECT_EQ(r.messages.at(0).title, "Invalid value \"95\" for latitudeDeg");
    r = run({"prefs", "set", "mountTypo", "1"});
    EXPECT_EQ(r.exit, 1);
    EXPECT_EQ(r.messages.at(0).title, "Unknown preference mountTypo");
    r = run({"prefs", "show", "--json"});
    ASSERT_EQ(r.exit, 0);
    auto j = r.json();
    EXPECT_EQ(j["scopeDrive"], 14);
    EXPECT_EQ(j["labels"]["scopeDrive"], "Takahashi");
    EXPECT_NEAR(j["deltaTSeconds"].get<double>(), 69.5, 1e-5);
    EXPECT_NEAR(j["latitudeDeg"].get<double>(), 48.1, 1e-5);
    {
        QuestionAnswerer no(false);  // a reset declined changes nothing
        r = run({"prefs", "reset"});
        EXPECT_EQ(r.exit, 1);
        EXPECT_EQ(run({"prefs", "show", "--json"}).json()["scopeDrive"], 14);
    }
    QuestionAnswerer yes(true);
    r = run({"prefs", "reset"});
    ASSERT_EQ(r.exit, 0);
    EXPECT_NE(r.out.find("Preferences reset to their defaults"), std::string::npos) << r.out;
    j = run({"prefs", "show", "--json"}).json();
    EXPECT_EQ(j["scopeDrive"], 5);
    EXPECT_NEAR(j["deltaTSeconds"].get<double>(), 65.4, 1e-5);
}

TEST_F(FoundationCommands, FieldsFixedAtStartAreForcedOnTheNextRun) {
    ASSERT_EQ(run({"prefs", "set", "raFormat", "1"}).exit, 0);
    ASSERT_EQ(run({"prefs", "set", "temperatureC", "25"}).exit, 0);
    const auto j = run({"prefs", "show", "--json"}).json();
    EXPECT_EQ(j["raFormat"], 2);
    EXPECT_EQ(j["temperatureC"], 10);
}

TEST_F(FoundationCommands, DamagedPreferencesFileGivesDefaultsAndIsKept) {
    ASSERT_EQ(run({"site", "set", "--lat", "10", "--lon", "20", "--utc-offset", "0", "--name", "Here"}).exit, 0);
    const fs::path file = home_ / kPreferencesFileName;
    fs::resize_file(file, 100);
    const auto size = fs::file_size(file);
    CliRun r = run({"site", "show", "--json"});
    ASSERT_EQ(r.exit, 0);
    EXPECT_EQ(r.json()["name"], "None");
    ASSERT_EQ(r.messages.size(), 1u);
    EXPECT_EQ(r.messages[0].title, "The preferences file is too short");
    EXPECT_EQ(fs::file_size(file), size);
}

TEST_F(FoundationCommands, SavedLatitudeOutOfRangeStartsAtMinus90) {
    ASSERT_EQ(run({"site", "set", "--lat", "10", "--lon", "20", "--utc-offset", "0"}).exit, 0);
    Preferences damaged{};
    setProgramFolder(home_);
    ASSERT_EQ(loadPreferences(damaged), PreferencesLoad::Loaded);
    damaged.latitudeDeg = 95;
    ASSERT_TRUE(savePreferences(damaged));
    const auto j = run({"site", "show", "--json"}).json();
    EXPECT_NEAR(j["latitudeDeg"].get<double>(), -90, 1e-9);
    EXPECT_NEAR(prefs().sinLatitude, -1.0, 1e-6);
    EXPECT_NEAR(prefs().cosLatitude, 0.0, 1e-6);
    EXPECT_NEAR(j["longitudeDeg"].get<double>(), 20, 1e-6);
}

TEST(OptionTexts, DatesAndTimes) {
    struct Case { const char* text; bool ok; };
    for (const Case c : {Case{"2024-02-29", true}, Case{"2023-02-29", false}, Case{"0000-01-01", true},
                         Case{"2024-1-5", true}, Case{"24-01-05", false}, Case{"2024-01-05x", false},
                         Case{"", false}, Case{"2024--01", false}}) {
        ObservingMoment m;
        EXPECT_EQ(readDateOption(c.text, m), c.ok) << c.text;
    }
    for (const Case c : {Case{"0:00", true}, Case{"23:59:59", true}, Case{"23:59:60", false}, Case{"7:5", false},
                         Case{"07:05:", false}, Case{"-1:00", false}, Case{"12:00:00:00", false}}) {
        ObservingMoment m;
        EXPECT_EQ(readTimeOption(c.text, m), c.ok) << c.text;
    }
}

}  // namespace
}  // namespace nocturnel
