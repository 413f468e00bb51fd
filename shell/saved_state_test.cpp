// Saved state through the command line: typed text converted once, outputs that fail say so,
// damaged preferences kept, leftovers of killed writers removed at start-up.
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "settings/preferences.h"
#include "settings/preferences_file.h"
#include "settings/program_folder.h"
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/cli_test_runner.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class SavedState : public ::testing::Test {
protected:
    void SetUp() override {
        home_ = fs::temp_directory_path() / ("nocturnel_saved_state_" + std::to_string(::getpid()) + "_" +
                                             ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(home_);
        fs::create_directories(home_);
    }
    void TearDown() override { fs::remove_all(home_); }

    CliRun run(std::vector<std::string> args) {
        prefs() = Preferences{};
        args.insert(args.begin(), {"--home", home_.string()});
        return runCommandLine(std::move(args));
    }
    std::vector<std::string> namesInHome() const {
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(home_)) names.push_back(e.path().filename().string());
        return names;
    }
    // What the terminal shows of a message: Latin-1 converted to UTF-8 once (as main() does).
    static std::string shownTitle(const CliRun& r) {
        return r.messages.empty() ? std::string{} : latin1ToUtf8(r.messages.back().title);
    }

    fs::path home_;
};

const std::vector<std::string> kSite = {"site", "set", "--lat", "45", "--lon", "-5", "--utc-offset", "60"};

TEST_F(SavedState, Utf8SiteNameRoundTrip) {
    auto args = kSite;
    args.insert(args.end(), {"--name", "\xC3\x89tang S\xC3\xA8te"});  // "Étang Sète"
    ASSERT_EQ(run(args).exit, 0);
    Preferences saved = defaultPreferences();
    setProgramFolder(home_);
    ASSERT_EQ(loadPreferences(saved), PreferencesLoad::Loaded);
    EXPECT_STREQ(saved.siteName, "\xC9tang S\xE8te") << "stored in Latin-1";
    const CliRun show = run({"site", "show", "--json"});
    EXPECT_EQ(show.json()["name"], "\xC3\x89tang S\xC3\xA8te") << "shown as typed";
    EXPECT_NE(run({"prefs", "show"}).out.find("siteName = \"\xC3\x89tang S\xC3\xA8te\""), std::string::npos);
}

TEST_F(SavedState, TypedTextInAMessageIsNotConvertedTwice) {
    auto args = kSite;
    args.insert(args.end(), {"--name", "\xE2\x98\x83 caf\xC3\xA9 and more"});  // a snowman, and too long
    const CliRun r = run(args);
    EXPECT_EQ(r.exit, 1);
    EXPECT_EQ(shownTitle(r), "Invalid site name \"? caf\xC3\xA9 and more\"");
    const CliRun date = run({"--date", "2024-\xC3\xA9", "now"});
    EXPECT_EQ(shownTitle(date), "Invalid date \"2024-\xC3\xA9\"");
    const CliRun snowman = run({"prefs", "set", "siteName", "\xE2\x98\x83"});
    EXPECT_EQ(snowman.exit, 1);
    EXPECT_EQ(shownTitle(snowman), "Invalid value for siteName");
    const CliRun label = run({"prefs", "set", "horizonIndex", "10\xC2\xB0"});
    EXPECT_EQ(label.exit, 0) << label.titles();
}

TEST_F(SavedState, AlignmentReportToAFullDeviceFails) {
    // A report needs an alignment first.
    ASSERT_EQ(run({"align", "--star1", "Vega,21:00:00,18:36:56,38:47:01,18:40:00,39:00:00", "--star2",
                   "Deneb,21:10:00,20:41:26,45:16:49,20:44:00,45:30:00"}).exit, 0);
    const CliRun r = run({"align", "report", "-o", "/dev/full"});
    EXPECT_EQ(r.exit, 1);
    EXPECT_TRUE(r.shown("Can't write the alignment report")) << r.titles();
    EXPECT_EQ(r.out.find("Written to"), std::string::npos);
    const CliRun missing = run({"align", "report", "-o", (home_ / "no" / "report.txt").string()});
    EXPECT_EQ(missing.exit, 1);
    EXPECT_FALSE(fs::exists(home_ / "no"));
    const CliRun good = run({"align", "report"});
    EXPECT_EQ(good.exit, 0);
    EXPECT_TRUE(fs::file_size(home_ / "nocturnel_alignment.txt") > 0);
}

TEST_F(SavedState, ADamagedPreferencesFileIsKeptWhenACommandSaves) {
    ASSERT_EQ(run(kSite).exit, 0);
    std::ofstream(home_ / kPreferencesFileName, std::ios::binary | std::ios::trunc) << "damaged";
    const CliRun r = run({"prefs", "set", "timeStep", "2"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    EXPECT_TRUE(r.shown("The damaged preferences file was set aside")) << r.titles();
    int kept = 0;
    for (const std::string& name : namesInHome()) {
        if (name.rfind("nocturnel_prefs.dat.damaged-", 0) != 0) continue;
        ++kept;
        std::ifstream in(home_ / name);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "damaged");
    }
    EXPECT_EQ(kept, 1);
}

TEST_F(SavedState, AFifoAsPreferencesNeverBlocksACommand) {
    ASSERT_EQ(::mkfifo((home_ / kPreferencesFileName).c_str(), 0600), 0);
    const CliRun show = run({"site", "show", "--json"});
    EXPECT_EQ(show.exit, 0);
    EXPECT_TRUE(show.shown("The preferences file is not a regular file"));
    const CliRun set = run(kSite);
    EXPECT_EQ(set.exit, 1);
    EXPECT_TRUE(set.shown("Can't save the preferences"));
    EXPECT_TRUE(fs::is_fifo(home_ / kPreferencesFileName));
}

TEST_F(SavedState, LeftoverOfAKilledWriterIsRemovedAtStartUp) {
    const fs::path leftover = home_ / "nocturnel_prefs.dat.tmp-999999999-1";
    std::ofstream(leftover) << "half a record";
    fs::last_write_time(leftover, fs::file_time_type::clock::now() - std::chrono::hours(1));
    ASSERT_EQ(run({"now"}).exit, 0);
    EXPECT_FALSE(fs::exists(leftover));
}

}  // namespace
}  // namespace nocturnel
