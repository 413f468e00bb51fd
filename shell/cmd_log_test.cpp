// nocturnel log end to end, in-process: record three objects, edit, export, move to OAL and
// back, and the failures a user meets.
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "catalog/catalogues.h"
#include "catalog/name_index.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "shell/cli_test_runner.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class LogCommands : public ::testing::Test {
protected:
    void SetUp() override {
        home_ = fs::temp_directory_path() / ("nocturnel_cmd_log_" + std::to_string(::getpid()) + "_" +
                                             ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(home_);
        fs::create_directories(home_);
        if (const char* data = std::getenv("NOCTURNEL_TEST_DATA")) fs::create_directory_symlink(data, home_ / "data");
        closeCatalogues();  // the catalogues of an earlier test's folder
        resetNameIndex();
    }
    void TearDown() override {
        closeCatalogues();
        resetNameIndex();
        fs::remove_all(home_);
    }
    CliRun run(std::vector<std::string> args) {
        prefs() = Preferences{};
        args.insert(args.begin(), {"--home", home_.string()});
        return runCommandLine(std::move(args));
    }
    fs::path home_;
};

TEST_F(LogCommands, ThreeObjectsLoggedExportedAndMovedThroughOal) {
    ASSERT_EQ(run({"--date", "2026-11-23", "--time", "21:30", "log", "new", "M 13", "--note", "Resolved",
                   "--transparency", "Good", "--seeing", "3", "--vis-mag", "6.1"}).exit, 0);
    ASSERT_EQ(run({"--date", "2026-11-23", "--time", "21:45", "log", "new", "NGC 7000", "--filter", "OIII"}).exit, 0);
    ASSERT_EQ(run({"--date", "2026-11-23", "--time", "22:00", "log", "new", "Garden comet", "--ra", "3:00:00",
                   "--dec", "-10.5", "--type", "Comet&Asteroid"}).exit, 0);
    const CliRun list = run({"log", "ls", "--json"});
    ASSERT_EQ(list.exit, 0);
    const auto logs = list.json()["logs"];
    ASSERT_EQ(logs.size(), 3u);
    EXPECT_EQ(logs[0]["object"], "Garden comet");
    EXPECT_EQ(logs[1]["object"], "M 13");
    EXPECT_EQ(logs[1]["transparencyText"], "Good");
    EXPECT_DOUBLE_EQ(logs[1]["visualMag"].get<double>(), 6.1);
    if (fs::exists(home_ / "data")) {
        EXPECT_NEAR(logs[1]["ra"].get<double>(), 16.695, 0.01) << "the catalogue's place of M 13";
        EXPECT_EQ(logs[1]["type"], "Globular Cluster");
    }
    {
        QuestionAnswerer yes(true);  // the terminal's answer to "Do you want to export ...?"
        EXPECT_EQ(run({"log", "export"}).exit, 0);
        ASSERT_EQ(yes.questions().size(), 1u);
    }
    std::ifstream in(home_ / "userlogs" / "logs_3.txt");
    std::string header, columns, line;
    std::getline(in, header);
    std::getline(in, columns);
    EXPECT_EQ(header, "Nocturnel Observer log 1");
    int rows = 0;
    while (std::getline(in, line)) {
        ++rows;
        EXPECT_EQ(std::count(line.begin(), line.end(), ';'), 16) << "17 columns: " << line;
    }
    EXPECT_EQ(rows, 3);

    ASSERT_EQ(run({"log", "oal", "export", (home_ / "x.oal").string()}).exit, 0);
    for (const char* name : {"M 13", "NGC 7000", "Garden comet"}) ASSERT_EQ(run({"log", "rm", name}).exit, 0);
    ASSERT_EQ(run({"log", "oal", "import", (home_ / "x.oal").string()}).exit, 0);
    const CliRun show = run({"log", "show", "M 13", "--json"});
    ASSERT_EQ(show.exit, 0);
    EXPECT_EQ(show.json()["note"], "Resolved");
    EXPECT_EQ(show.json()["time"], "21:30");
}

TEST_F(LogCommands, NewLogTakesTheMoonTheSunAndTheEyesLimitOfTheMoment) {
    if (!fs::exists(home_ / "data" / "nocturnel_planets.ppc")) GTEST_SKIP() << "no planet file";
    ASSERT_EQ(run({"site", "set", "--lat", "48.1", "--lon", "-1.8", "--utc-offset", "60"}).exit, 0);
    for (const auto& [field, value] : std::vector<std::pair<std::string, std::string>>{
             {"ageIndex", "35"}, {"visionIndex", "10/10"}, {"experience", "Hobbyst"}})
        ASSERT_EQ(run({"prefs", "set", field, value}).exit, 0) << field;
    // 2026-11-24 is a full Moon, high at midnight; on 2026-12-03 at 05:00 a waning Moon, past its last quarter.
    ASSERT_EQ(run({"--date", "2026-11-24", "--time", "23:50", "log", "new", "M 42"}).exit, 0);
    ASSERT_EQ(run({"--date", "2026-12-03", "--time", "05:00", "log", "new", "M 13"}).exit, 0);
    const CliRun full = run({"log", "show", "M 42", "--json"});
    const CliRun crescent = run({"log", "show", "M 13", "--json"});
    ASSERT_EQ(full.exit, 0);
    ASSERT_EQ(crescent.exit, 0);
    EXPECT_GE(full.json()["moonPct"].get<int>(), 95);
    EXPECT_LT(full.json()["sunAltDeg"].get<int>(), -50);
    EXPECT_LT(crescent.json()["moonPct"].get<int>(), 70);
    EXPECT_GT(crescent.json()["moonPct"].get<int>(), 10);
    // The full Moon brightens the sky: the eyes' limit is lower than under the crescent before dawn.
    const double moonlit = full.json()["visualMag"].get<double>();
    const double darker = crescent.json()["visualMag"].get<double>();
    EXPECT_GT(moonlit, 3.0);
    EXPECT_LT(darker, 7.5);
    EXPECT_LT(moonlit, darker);
}

TEST_F(LogCommands, EditRenamesAndRefusesWhatCannotBeStored) {
    ASSERT_EQ(run({"log", "new", "M 13"}).exit, 0);
    EXPECT_EQ(run({"log", "new", "M 13"}).exit, 1) << "a second log of the same object";
    ASSERT_EQ(run({"log", "edit", "M 13", "--object", "M13", "--note", "caf\xC3\xA9"}).exit, 0);
    EXPECT_FALSE(fs::exists(home_ / "userlogs" / "M 13.log"));
    EXPECT_EQ(run({"log", "show", "M13", "--json"}).json()["note"], "caf\xC3\xA9") << "UTF-8 in, UTF-8 out";
    struct { std::vector<std::string> args; const char* title; } refused[] = {
        {{"log", "edit", "M13", "--note", "\xE2\x98\x83"}, "Invalid note"},
        {{"log", "edit", "M13", "--ra", "25"}, "Invalid right ascension"},
        {{"log", "edit", "M13", "--dec", "nan"}, "Invalid declination"},
        {{"log", "edit", "M13", "--seeing", "Superb"}, "Invalid seeing \"Superb\""},
        {{"log", "edit", "M13", "--vis-mag", "inf"}, "Invalid visual magnitude \"inf\""},
        {{"log", "new", "../../etc/passwd"}, "Invalid object name for a log"},
        {{"log", "show", "Nothing"}, "Please select an observation log."},
    };
    for (const auto& r : refused) {
        const CliRun result = run(r.args);
        EXPECT_EQ(result.exit, 1) << r.title;
        EXPECT_TRUE(result.shown(r.title)) << r.title << " got " << result.titles();
    }
    EXPECT_EQ(run({"log", "show", "M13", "--json"}).json()["note"], "caf\xC3\xA9") << "refused edits change nothing";
}

}  // namespace
}  // namespace nocturnel
