// The log folder: saving, renaming, opening with its checks, names that must stay inside
// userlogs/, and files that are not logs.
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "plans/observer_logs.h"
#include "plans/plans_test_support.h"
#include "settings/message.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class ObserverLogsTest : public PlansFolderTest {
protected:
    static ObserverLog logOf(const std::string& object, const std::string& note = "") {
        ObserverLog log;
        log.object = object;
        log.year = 2026, log.month = 11, log.day = 23, log.hour = 21, log.minute = 5;
        log.text = note;
        return log;
    }
    fs::path logsDir() const { return home_ / "userlogs"; }
};

TEST_F(ObserverLogsTest, SaveMakesTheFolderAndOpenReadsTheRecordBack) {
    ASSERT_FALSE(fs::exists(logsDir()));
    ObserverLog log = logOf("M 13", "Resolved");
    log.magic = 5;  // the saved record always carries the magic
    ASSERT_TRUE(saveObserverLog(log, -1));
    ASSERT_TRUE(fs::is_regular_file(logsDir() / "M 13.log"));
    EXPECT_EQ(fs::file_size(logsDir() / "M 13.log"), kObserverLogSize);
    ObserverLog back;
    ASSERT_TRUE(openObserverLog(0, back));
    EXPECT_EQ(back.magic, kObserverLogMagic);
    EXPECT_EQ(back.text, "Resolved");
    for (const fs::directory_entry& e : fs::directory_iterator(logsDir()))
        EXPECT_EQ(e.path().filename(), "M 13.log") << "no temporary file is left";
}

TEST_F(ObserverLogsTest, SavingUnderANewNameRemovesTheSelectedEntrysFile) {
    ASSERT_TRUE(saveObserverLog(logOf("M 13"), -1));
    ASSERT_TRUE(saveObserverLog(logOf("M 92"), -1));
    ObserverLog log;
    ASSERT_TRUE(openObserverLog(0, log));
    log.object = "NGC 6205";
    ASSERT_TRUE(saveObserverLog(log, 0));
    const auto entries = listObserverLogs();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].name, "M 92");
    EXPECT_EQ(entries[1].name, "NGC 6205");
}

TEST_F(ObserverLogsTest, OpeningReportsEachFailure) {
    fs::create_directories(logsDir());
    const auto bytes = encodeObserverLog(logOf("x"));
    std::string good(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::string wrongMagic = good, farMagic = good;
    wrongMagic[0] = static_cast<char>(wrongMagic[0] + 1);  // off by one
    farMagic[3] = '\x7F';
    writeFile(logsDir() / "a.log", good.substr(0, 455));
    writeFile(logsDir() / "b.log", wrongMagic);
    writeFile(logsDir() / "c.log", farMagic);
    writeFile(logsDir() / "d.log", good + "trailing bytes are not read");
    struct { int index; const char* message; } cases[] = {
        {-1, "Please select an observation log."}, {4, "Please select an observation log."},
        {0, "Fail to read log file."}, {1, "It seems your log data are corrupted."},
        {2, "It seems your log data are corrupted."}, {3, nullptr},
    };
    for (const auto& c : cases) {
        MessageCapture capture;
        ObserverLog out;
        EXPECT_EQ(openObserverLog(c.index, out), c.message == nullptr) << c.index;
        if (c.message) EXPECT_TRUE(capture.shown(c.message)) << c.index << ": " << capture.lastTitle();
        else EXPECT_TRUE(capture.messages().empty());
    }
}

TEST_F(ObserverLogsTest, NamesNeverLeaveTheFolder) {
    const char* refused[] = {"", ".", "..", "../prefs", "a/b", "a\\b", ".hidden", "tab\there", "bell\x07",
                             "twenty characters xx"};
    for (const char* name : refused) {
        MessageCapture capture;
        EXPECT_FALSE(logFileNameFor(name)) << name;
        EXPECT_FALSE(saveObserverLog(logOf(name), -1)) << name;
        EXPECT_FALSE(capture.messages().empty()) << name;
    }
    EXPECT_FALSE(fs::exists(home_ / "prefs.log"));
    EXPECT_FALSE(fs::exists(logsDir() / "a"));
    EXPECT_EQ(logFileNameFor("NGC 7000"), "NGC 7000");
    EXPECT_EQ(logFileNameFor("19 characters ok..."), "19 characters ok...");
    EXPECT_EQ(logFileNameFor("\xE9toile"), "\xC3\xA9toile") << "Latin-1 names become UTF-8 file names";
}

TEST_F(ObserverLogsTest, WhatIsNotARegularLogFileIsNeitherListedNorBlocking) {
    fs::create_directories(logsDir() / "dir.log");
    ASSERT_EQ(::mkfifo((logsDir() / "fifo.log").c_str(), 0644), 0);
    fs::create_symlink("/etc/passwd", logsDir() / "link.log");
    writeFile(logsDir() / "notes.txt", "not a log");
    EXPECT_TRUE(listObserverLogs().empty());
    ObserverLog out;
    EXPECT_EQ(readObserverLogFile(logsDir() / "fifo.log", out), LogReadStatus::kShort) << "a FIFO never blocks";
}

TEST_F(ObserverLogsTest, AFailedWriteReportsAndKeepsWhatWasThere) {
    // A directory where the log file would go: the rename over it fails like a full disk.
    fs::create_directories(logsDir() / "M 13.log" / "keep");
    MessageCapture capture;
    EXPECT_FALSE(saveObserverLog(logOf("M 13"), -1));
    EXPECT_TRUE(capture.shown("Fail to write log file."));
    EXPECT_TRUE(fs::exists(logsDir() / "M 13.log" / "keep"));
    for (const fs::directory_entry& e : fs::directory_iterator(logsDir()))
        EXPECT_EQ(e.path().filename(), "M 13.log") << "no temporary file is left";
}

TEST_F(ObserverLogsTest, ADamagedLogIsKeptAsideBeforeItIsReplaced) {
    fs::create_directories(logsDir());
    writeFile(logsDir() / "M 13.log", "damaged bytes");
    ASSERT_TRUE(saveObserverLog(logOf("M 13", "new"), -1));
    int kept = 0;
    for (const fs::directory_entry& e : fs::directory_iterator(logsDir()))
        if (e.path().filename().string().starts_with("M 13.log.damaged-")) {
            ++kept;
            EXPECT_EQ(readFile(e.path()), "damaged bytes");
        }
    EXPECT_EQ(kept, 1);
    ObserverLog back;
    ASSERT_TRUE(openObserverLogNamed("M 13", back));
    EXPECT_EQ(back.text, "new");
}

TEST_F(ObserverLogsTest, DeleteRemovesOnlyTheSelectedLog) {
    ASSERT_TRUE(saveObserverLog(logOf("A"), -1));
    ASSERT_TRUE(saveObserverLog(logOf("B"), -1));
    {
        MessageCapture capture;
        EXPECT_FALSE(deleteObserverLog(-1));
        EXPECT_TRUE(capture.shown("Please select an observation log."));
    }
    ASSERT_TRUE(deleteObserverLog(observerLogIndex("B")));
    ASSERT_EQ(listObserverLogs().size(), 1u);
    EXPECT_EQ(listObserverLogs()[0].name, "A");
}

}  // namespace
}  // namespace nocturnel
