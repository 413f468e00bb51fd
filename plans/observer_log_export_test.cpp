// The spreadsheet export: the line format, blanks, counts, the split into parts and the
// records it skips.
#include <algorithm>
#include <cstring>
#include <map>

#include <gtest/gtest.h>

#include "core/angle_text.h"
#include "plans/observer_log_export.h"
#include "plans/observer_logs.h"
#include "plans/plans_test_support.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

constexpr char kColumnLine[] =
    "Date;Time;Object;RA;Dec;Type;Obj Mag;Const;Moon;Sun;Vis. Mag;Transparency;Seeing;Scope;Location;Filter;Log\n";

class ObserverLogExportTest : public PlansFolderTest {
protected:
    void SetUp() override {
        PlansFolderTest::SetUp();
        prefs() = Preferences{};
        prefs().raFormat = 2;
        prefs().decFormat = 2;
    }
    static ObserverLog logOf(const std::string& object) {
        ObserverLog log;
        log.object = object;
        log.year = 2026, log.month = 3, log.day = 7, log.hour = 9, log.minute = 5;
        log.typeCode = 2, log.objectMag = 7, log.moonPct = 12, log.sunAltDeg = -20, log.visualMagX10 = 58;
        log.transparency = 3, log.seeing = 1;
        return log;
    }
};

TEST_F(ObserverLogExportTest, OneLineWithItsFormatsAndBlanks) {
    ObserverLog log = logOf("M 13");
    log.raHours = 12.5f;
    log.decDeg = -30.25f;
    log.scope = "200mm";
    log.text = "a;b";
    const std::string ra = hoursText(12.5), dec = degreesText(-30.25);
    EXPECT_EQ(observerLogExportLine(log, false),
              "03/07/2026;09:05;M 13;" + ra + ";" + dec + ";Globular Cluster;7.0; ;12%;-20\xB0;5.8;3;1;200mm; ; ;a,b\n")
        << "constellations are not loaded here, so Const is a blank";
    EXPECT_TRUE(observerLogExportLine(log, true).starts_with("07/03/2026;")) << "day first";
}

TEST_F(ObserverLogExportTest, CountsSayLogOrLogs) {
    QuestionAnswerer yes(true);
    {
        MessageCapture capture;
        EXPECT_EQ(exportObserverLogs(false), 0);
        EXPECT_TRUE(capture.shown("Nothing to export."));
    }
    ASSERT_TRUE(saveObserverLog(logOf("A"), -1));
    {
        MessageCapture capture;
        EXPECT_EQ(exportObserverLogs(false), 1);
        EXPECT_TRUE(capture.shown("1 Observer log exported.")) << capture.lastTitle();
    }
    ASSERT_TRUE(saveObserverLog(logOf("B"), -1));
    MessageCapture capture;
    EXPECT_EQ(exportObserverLogs(false), 2);
    EXPECT_TRUE(capture.shown("2 Observer logs exported.")) << capture.lastTitle();
    const std::string text = readFile(home_ / "userlogs" / "logs_2.txt");
    EXPECT_EQ(text, std::string("Nocturnel Observer log 1\n") + kColumnLine + observerLogExportLine(logOf("A"), false) +
                        observerLogExportLine(logOf("B"), false));
    EXPECT_EQ(yes.questions().back(), "Do you want to export your Observer Logs to a text file ?");
}

TEST_F(ObserverLogExportTest, DecliningWritesNothing) {
    ASSERT_TRUE(saveObserverLog(logOf("A"), -1));
    QuestionAnswerer no(false);
    EXPECT_EQ(exportObserverLogs(false), -1);
    EXPECT_FALSE(fs::exists(home_ / "userlogs" / "logs_1.txt"));
}

TEST_F(ObserverLogExportTest, LongExportsSplitAfter15884Bytes) {
    // Long notes make each line about 330 bytes: a part takes 49 of them before it passes 15884.
    constexpr int kLogs = 120;
    for (int i = 0; i < kLogs; ++i) {
        ObserverLog log = logOf("Log " + std::string(i < 10 ? "00" : i < 100 ? "0" : "") + std::to_string(i));
        log.text = std::string(250, 'n');
        ASSERT_TRUE(saveObserverLog(log, -1));
    }
    QuestionAnswerer yes(true);
    MessageCapture capture;
    ASSERT_EQ(exportObserverLogs(false), kLogs);
    // The parts in the order written (by their header's number).
    std::map<int, fs::path> parts;
    for (const fs::directory_entry& e : fs::directory_iterator(home_ / "userlogs")) {
        if (e.path().extension() != ".txt") continue;
        const std::string text = readFile(e.path());
        ASSERT_TRUE(text.starts_with("Nocturnel Observer log ")) << e.path();
        parts[std::stoi(text.substr(23, text.find('\n') - 23))] = e.path();
    }
    ASSERT_EQ(parts.size(), 3u);
    ASSERT_EQ(parts.begin()->first, 1);
    int records = 0;
    for (auto it = parts.begin(); it != parts.end(); ++it) {
        const std::string text = readFile(it->second);
        EXPECT_LE(text.size(), kLogExportBuffer);
        EXPECT_EQ(text.substr(text.find('\n') + 1, std::strlen(kColumnLine)), kColumnLine);
        records += static_cast<int>(std::count(text.begin(), text.end(), '\n')) - 2;
        // Before its last line was appended the part held at most 15884 bytes; with it, more.
        const std::size_t beforeLast = text.rfind('\n', text.size() - 2) + 1;
        EXPECT_LE(beforeLast, kLogExportSplit);
        const auto next = std::next(it);
        if (next == parts.end()) {
            EXPECT_EQ(it->second.filename(), "logs_" + std::to_string(kLogs) + ".txt") << "the last part: the count";
            continue;
        }
        EXPECT_GT(text.size(), kLogExportSplit);
        // A part is named by the listing index of the log that begins the next part.
        const std::string nextText = readFile(next->second);
        const std::size_t firstLine = nextText.find('\n', nextText.find('\n') + 1) + 1;
        const std::size_t nameAt = nextText.find(";Log ", firstLine) + 5;
        EXPECT_EQ(it->second.filename(), "logs_" + std::to_string(std::stoi(nextText.substr(nameAt, 3))) + ".txt");
    }
    EXPECT_EQ(records, kLogs);
    EXPECT_TRUE(capture.shown("120 Observer logs exported."));
}

TEST_F(ObserverLogExportTest, ShortAndDamagedRecordsAreReportedAndSkipped) {
    ASSERT_TRUE(saveObserverLog(logOf("A"), -1));
    ASSERT_TRUE(saveObserverLog(logOf("C"), -1));
    std::string bad = readFile(home_ / "userlogs" / "A.log");
    bad[1] = 'x';
    writeFile(home_ / "userlogs" / "B.log", bad);
    writeFile(home_ / "userlogs" / "B2.log", "short");
    QuestionAnswerer yes(true);
    MessageCapture capture;
    EXPECT_EQ(exportObserverLogs(false), 2);
    EXPECT_TRUE(capture.shown("It seems your log data are corrupted."));
    EXPECT_TRUE(capture.shown("Fail to read log file."));
    EXPECT_TRUE(capture.shown("2 Observer logs exported."));
    const std::string text = readFile(home_ / "userlogs" / "logs_4.txt");
    EXPECT_NE(text.find(";A;"), std::string::npos);
    EXPECT_NE(text.find(";C;"), std::string::npos);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 4);
}

}  // namespace
}  // namespace nocturnel
