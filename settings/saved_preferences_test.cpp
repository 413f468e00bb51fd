// Saved preferences under several processes: no lost update, no partial read, kill -9 leaves
// the old or the new record, damaged files are kept, strange files never block.
#include "settings/saved_preferences.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "settings/atomic_file.h"
#include "settings/folder_lock.h"
#include "settings/message.h"
#include "settings/preferences_file.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class SavedPreferences : public ::testing::Test {
protected:
    void SetUp() override {
        home_ = fs::temp_directory_path() / ("nocturnel_saved_prefs_" + std::to_string(::getpid()) + "_" +
                                             ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(home_);
        fs::create_directories(home_);
        setProgramFolder(home_);
    }
    void TearDown() override { fs::remove_all(home_); }

    static Preferences withSite(const char* name, int altitude) {
        Preferences p = defaultPreferences();
        copyFixedText(p.siteName, name);
        setSitePosition(p, 42.5, -3.25, 120);
        p.altitudeM = static_cast<int16_t>(altitude);
        return p;
    }
    // Runs body in a child process; the child exits 0 when body returns true.
    template <typename Body>
    static pid_t spawn(Body body) {
        const pid_t pid = ::fork();
        if (pid == 0) {
            setMessageSink([](const Message&) {});
            ::_exit(body() ? 0 : 1);
        }
        return pid;
    }
    static int exitStatus(pid_t pid) {
        int status = 0;
        ::waitpid(pid, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    int entries() const {
        return static_cast<int>(std::distance(fs::directory_iterator(home_), fs::directory_iterator{}));
    }

    fs::path home_;
};

TEST_F(SavedPreferences, TwoWritersOfDifferentFieldsBothKeepTheirValues) {
    ASSERT_TRUE(savePreferences(withSite("Pic du Midi", 2877)));
    constexpr int kRounds = 60;
    const pid_t a = spawn([] {
        for (int i = 1; i <= kRounds; ++i)
            if (!updateSavedPreferences([i](Preferences& p) { return (p.scopePort = i % 10), true; })) return false;
        return updateSavedPreferences([](Preferences& p) { return (p.scopePort = 7), true; });
    });
    const pid_t b = spawn([] {
        for (int i = 1; i <= kRounds; ++i)
            if (!updateSavedPreferences([i](Preferences& p) { return (p.siteMemory[2].altitudeM = int16_t(i)), true; }))
                return false;
        return true;
    });
    EXPECT_EQ(exitStatus(a), 0) << "every save of writer A succeeded";
    EXPECT_EQ(exitStatus(b), 0) << "every save of writer B succeeded";
    Preferences p = defaultPreferences();
    ASSERT_EQ(loadPreferences(p), PreferencesLoad::Loaded);
    EXPECT_EQ(p.scopePort, 7);
    EXPECT_EQ(p.siteMemory[2].altitudeM, kRounds);
    EXPECT_STREQ(p.siteName, "Pic du Midi");
    EXPECT_EQ(p.altitudeM, 2877);
    EXPECT_FLOAT_EQ(p.latitudeDeg, 42.5f);
    EXPECT_EQ(entries(), 2) << "the record and the lock file, nothing else";
}

TEST_F(SavedPreferences, AReaderDuringReplacementSeesTheOldOrTheNewRecord) {
    const Preferences a = withSite("Alpha", 100), b = withSite("Beta", 200);
    ASSERT_TRUE(savePreferences(a));
    const pid_t writer = spawn([&] {
        for (int i = 0; i < 300; ++i)
            if (!savePreferences(i % 2 ? a : b)) return false;
        return true;
    });
    int reads = 0, wrong = 0;
    MessageCapture capture;
    for (;;) {
        int status = 0;
        const bool done = ::waitpid(writer, &status, WNOHANG) == writer;
        Preferences p = defaultPreferences();
        const PreferencesLoad result = loadPreferences(p);
        ++reads;
        if (result != PreferencesLoad::Loaded ||
            (std::strcmp(p.siteName, "Alpha") != 0 && std::strcmp(p.siteName, "Beta") != 0))
            ++wrong;
        if (done) {
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
            break;
        }
    }
    EXPECT_EQ(wrong, 0) << "of " << reads << " reads";
    EXPECT_TRUE(capture.messages().empty()) << capture.lastTitle();
}

// A writer killed at a random moment leaves the old or the new record, and its temporary is
// removed by the next start.
TEST_F(SavedPreferences, KillDashNineLeavesTheOldOrTheNewRecord) {
    const Preferences a = withSite("Alpha", 100), b = withSite("Beta", 200);
    ASSERT_TRUE(savePreferences(a));
    for (int round = 0; round < 25; ++round) {
        const pid_t writer = spawn([&] {
            for (int i = 0;; ++i) savePreferences(i % 2 ? a : b);
            return true;
        });
        std::this_thread::sleep_for(std::chrono::microseconds(500 + 397 * (round % 13)));
        ::kill(writer, SIGKILL);
        exitStatus(writer);
        Preferences p = defaultPreferences();
        ASSERT_EQ(loadPreferences(p), PreferencesLoad::Loaded) << "round " << round;
        EXPECT_TRUE(std::strcmp(p.siteName, "Alpha") == 0 || std::strcmp(p.siteName, "Beta") == 0) << p.siteName;
    }
    // The next program's start: everything written before it by a writer now gone goes.
    removeLeftoverTemporaryFiles(home_, fs::file_time_type::clock::now() + std::chrono::seconds(1));
    EXPECT_EQ(entries(), 2) << "the record and the lock file, no leftover";
}

TEST_F(SavedPreferences, ADamagedFileIsKeptAsideWhenAChangeIsSaved) {
    ASSERT_TRUE(savePreferences(withSite("Backyard", 300)));
    std::ofstream(preferencesFilePath(), std::ios::binary | std::ios::in | std::ios::out).write("XX", 2);
    const std::string damaged = [] {
        std::ifstream in(preferencesFilePath(), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }();
    MessageCapture capture;
    Preferences p = defaultPreferences();
    EXPECT_EQ(loadPreferences(p), PreferencesLoad::Damaged);
    ASSERT_TRUE(updateSavedPreferences([](Preferences& r) { return (r.scopePort = 3), true; }));
    ASSERT_TRUE(capture.shown("The damaged preferences file was set aside")) << capture.lastTitle();
    const std::string detail = capture.messages().back().detail;
    fs::path kept;
    for (const auto& e : fs::directory_iterator(home_))
        if (e.path().filename().string().rfind("nocturnel_prefs.dat.damaged-", 0) == 0) kept = e.path();
    ASSERT_FALSE(kept.empty());
    EXPECT_NE(detail.find(kept.string()), std::string::npos) << "the message says where it went: " << detail;
    std::ifstream in(kept, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), damaged);
    Preferences now = defaultPreferences();
    ASSERT_EQ(loadPreferences(now), PreferencesLoad::Loaded);
    EXPECT_EQ(now.scopePort, 3);
}

TEST_F(SavedPreferences, AnUnreadableFileIsKeptAsideToo) {
    if (::geteuid() == 0) GTEST_SKIP() << "root reads every file";
    ASSERT_TRUE(savePreferences(withSite("Backyard", 300)));
    fs::permissions(preferencesFilePath(), fs::perms::none);
    MessageCapture capture;
    ASSERT_TRUE(updateSavedPreferences([](Preferences& r) { return (r.scopePort = 3), true; }));
    EXPECT_TRUE(capture.shown("The damaged preferences file was set aside"));
}

TEST_F(SavedPreferences, StrangeFilesInPlaceOfThePreferencesNeverBlock) {
    const fs::path outside = home_ / "elsewhere";
    fs::create_directories(outside);
    std::ofstream(outside / "target") << "not ours";
    struct Case {
        const char* what;
        void (*make)(const fs::path& file, const fs::path& outside);
    };
    const Case cases[] = {
        {"fifo", [](const fs::path& f, const fs::path&) { ASSERT_EQ(::mkfifo(f.c_str(), 0600), 0); }},
        {"folder", [](const fs::path& f, const fs::path&) { fs::create_directories(f); }},
        {"link out of the folder", [](const fs::path& f, const fs::path& o) { fs::create_symlink(o / "target", f); }},
    };
    for (const Case& c : cases) {
        fs::remove_all(preferencesFilePath());
        c.make(preferencesFilePath(), outside);
        MessageCapture capture;
        Preferences p = defaultPreferences();
        EXPECT_EQ(loadPreferences(p), PreferencesLoad::NotAFile) << c.what;
        EXPECT_EQ(capture.lastTitle(), "The preferences file is not a regular file") << c.what;
        EXPECT_FALSE(updateSavedPreferences([](Preferences& r) { return (r.scopePort = 3), true; })) << c.what;
        EXPECT_EQ(capture.lastTitle(), "Can't save the preferences") << c.what;
        EXPECT_FALSE(savePreferences(p)) << c.what;
        struct stat info {};
        ASSERT_EQ(::lstat(preferencesFilePath().c_str(), &info), 0) << c.what;
        EXPECT_FALSE(S_ISREG(info.st_mode)) << c.what << ": left as it was";
    }
    std::ifstream in(outside / "target");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "not ours");
}

TEST_F(SavedPreferences, AFifoInPlaceOfTheLockFileGivesAMessage) {
    ASSERT_EQ(::mkfifo((home_ / kFolderLockFileName).c_str(), 0600), 0);
    MessageCapture capture;
    EXPECT_FALSE(updateSavedPreferences([](Preferences&) { return true; }));
    EXPECT_EQ(capture.lastTitle(), "Can't save the preferences");
    EXPECT_FALSE(fs::exists(preferencesFilePath()));
}

TEST_F(SavedPreferences, ARefusedChangeSavesNothing) {
    ASSERT_TRUE(savePreferences(withSite("Backyard", 300)));
    EXPECT_FALSE(updateSavedPreferences([](Preferences& p) {
        p.altitudeM = 1;
        return false;
    }));
    Preferences p = defaultPreferences();
    ASSERT_EQ(loadPreferences(p), PreferencesLoad::Loaded);
    EXPECT_EQ(p.altitudeM, 300);
}

TEST_F(SavedPreferences, ABusyFolderGivesAMessageAfterItsPatience) {
    FolderLock held(home_);
    ASSERT_TRUE(held.locked());
    const pid_t other = spawn([] {
        FolderLock lock(programFolder(), std::chrono::milliseconds(50), true);
        return !lock.locked() && !lock.problem().empty();
    });
    EXPECT_EQ(exitStatus(other), 0);
}

}  // namespace
}  // namespace nocturnel
