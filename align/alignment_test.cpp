// The alignment as the program keeps it: the form's texts, the saved records that survive a
// restart, the report text, and the mapping at a moment.
#include "align/alignment.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "align/alignment_report.h"
#include "core/time.h"
#include "settings/message.h"
#include "settings/preferences_file.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {

class AlignmentTest : public ::testing::Test {
protected:
    void SetUp() override {
        home_ = std::filesystem::temp_directory_path() /
                ("nocturnel-align-" + std::to_string(std::random_device{}()));
        std::filesystem::create_directories(home_);
        setProgramFolder(home_);
        prefs() = Preferences{};
        prefs().latitudeDeg = 48.5f;
        prefs().longitudeDeg = 1.75f;
        prefs().utcOffsetMin = 60;
        prefs().scopeDrive = 5;
        prefs().mountType = 0;
        prefs().alignMethod = 1;
        prefs().raFormat = prefs().decFormat = 2;
        clearAlignmentState();
    }
    void TearDown() override { std::filesystem::remove_all(home_); }

    static AlignmentForm equatorialForm() {
        AlignmentForm form;
        form.star[0] = {"Vega", "21:00:00", "18:36:56", "38:47:01", "18:40:00", "39:00:00"};
        form.star[1] = {"Deneb", "21:10:00", "20:41:26", "45:16:49", "20:44:00", "45:30:00"};
        return form;
    }

    std::filesystem::path home_;
};

TEST_F(AlignmentTest, FormStoresBothStarsAndSavesThem) {
    MessageCapture messages;
    ASSERT_EQ(computeAlignmentFromForm(equatorialForm(), 2461366.4), 1) << messages.lastTitle();
    EXPECT_TRUE(alignmentState().valid);
    EXPECT_STREQ(alignmentState().toTime, "21:00:00");
    EXPECT_EQ(prefs().hasSavedAlignment, 1);
    EXPECT_DOUBLE_EQ(prefs().alignmentJd, 2461366.4);
    // Equatorial mount: the RA axis was typed in hours and is kept in degrees.
    EXPECT_NEAR(prefs().savedAlignStar[0].hor, (18 + 40 / 60.0) * 15.0, 1e-9);
    EXPECT_NEAR(prefs().savedAlignStar[1].ra, (20 + 41 / 60.0 + 26 / 3600.0) * 15.0, 1e-9);
    EXPECT_STREQ(prefs().savedAlignStar[1].name, "Deneb");
}

TEST_F(AlignmentTest, UnreadableFormLeavesThePreviousMatrix) {
    ASSERT_EQ(computeAlignmentFromForm(equatorialForm(), 2461366.4), 1);
    const Mat3 before = alignmentState().matrix;
    AlignmentForm bad = equatorialForm();
    bad.star[1].dec = "north-ish";
    MessageCapture messages;
    EXPECT_EQ(computeAlignmentFromForm(bad, 2461366.5), 0);
    ASSERT_FALSE(messages.messages().empty());
    EXPECT_EQ(messages.messages().back().title, "Fail to compute align matrix");
    EXPECT_EQ(messages.messages().back().detail, "Please verify inputs.");
    EXPECT_DOUBLE_EQ(prefs().alignmentJd, 2461366.4);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_EQ(alignmentState().matrix.m[i][j], before.m[i][j]);
}

TEST_F(AlignmentTest, SavedAlignmentSurvivesARestart) {
    ASSERT_EQ(computeAlignmentFromForm(equatorialForm(), 2461366.4), 1);
    const Mat3 computed = alignmentState().matrix;

    // A new run: a fresh record read back from the program folder, no matrix in memory.
    prefs() = Preferences{};
    clearAlignmentState();
    applyStartDefaults(prefs());
    ASSERT_EQ(loadPreferences(prefs()), PreferencesLoad::Loaded);
    validatePreferences(prefs());
    ASSERT_EQ(prefs().hasSavedAlignment, 1);
    QuestionAnswerer yes(true);
    EXPECT_TRUE(offerAlignmentRestore());
    ASSERT_EQ(yes.questions().size(), 1u);
    EXPECT_EQ(yes.questions()[0], "Would you want to restore your last alignment?");
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_NEAR(alignmentState().matrix.m[i][j], computed.m[i][j], 1e-12);
}

TEST_F(AlignmentTest, RestoreIsOfferedOnlyWhenSomethingWasSavedAndTheUserSaysYes) {
    QuestionAnswerer no(false);
    EXPECT_FALSE(offerAlignmentRestore());
    EXPECT_TRUE(no.questions().empty());
    ASSERT_EQ(computeAlignmentFromForm(equatorialForm(), 2461366.4), 1);
    clearAlignmentState();
    EXPECT_FALSE(offerAlignmentRestore());
    EXPECT_EQ(no.questions().size(), 1u);
    EXPECT_FALSE(alignmentState().valid);
}

TEST_F(AlignmentTest, BrokenSavedAlignmentAsksToRedoIt) {
    prefs().hasSavedAlignment = 1;  // two identical records: no matrix can come of them
    MessageCapture messages;
    EXPECT_EQ(restoreAlignment(), 0);
    ASSERT_GE(messages.messages().size(), 1u);
    EXPECT_EQ(messages.messages().back().title, "Fail to compute align matrix");
    EXPECT_EQ(messages.messages().back().detail, "Please redo 2 star alignment.");
}

TEST_F(AlignmentTest, ReportText) {
    ASSERT_EQ(computeAlignmentFromForm(equatorialForm(), 2461366.4), 1);
    std::string text;
    writeAlignmentReport(text, CalendarDate{2026, 11, 21, 22, 5, 9});
    EXPECT_EQ(text,
              "2026/11/21 22:05:09 Nocturnel alignment data\n"
              "\nConfig data:\n"
              "Longitude: 01\xB0" "45'00\n"
              "Latitude: 48\xB0" "30'00\n"
              "GMT: 60\n"
              "ScopeDrive: 5\n"
              "Scope Port: 0\n"
              "Mount type: 0\n"
              "AlignMethod: 1\n"
              "\n2Star alignment data:\n"
              "\nToTime: 21:00:00\n"
              "Star1: Vega\nTime: 21h00m00\nRa: 18h36m56\nDec: 38\xB0" "47'01\n"
              "Hor: 280\xB0" "00'00\nElv: 39\xB0" "00'00\n"
              "Star2: Deneb\nTime: 21h10m00\nRa: 20h41m26\nDec: 45\xB0" "16'49\n"
              "Hor: 311\xB0" "00'00\nElv: 45\xB0" "30'00\n");
}

TEST_F(AlignmentTest, ReportOfAnEncoderDriveListsTheEncoders) {
    prefs().scopeDrive = 3;  // BBox
    prefs().encoderAltSteps = 8192;
    prefs().encoderAzSteps = -8192;
    prefs().encoderAltOffset = 12;
    prefs().encoderAzOffset = -7;
    const std::string section = configDataSection();
    EXPECT_NE(section.find("ScopeDrive: 3\nEncoder Alt resolution: 8192\nEncoder Az resolution: -8192\n"
                           "Encoder Alt offset: 12\nEncoder Az offset: -7\nScope Port: 0\n"),
              std::string::npos)
        << section;
}

TEST_F(AlignmentTest, MappingAtAMomentGoesBothWays) {
    prefs().mountType = 1;  // alt-azimuth: the time term is on
    prefs().scopeDrive = 3;
    AlignmentForm form;
    form.star[0] = {"Vega", "21:00:00", "18:36:56", "38:47:01", "290:00:00", "60:00:00"};
    form.star[1] = {"Arcturus", "21:10:00", "14:15:40", "19:10:57", "250:00:00", "25:00:00"};
    const double jd = julianDateFromLocal(2026, 11, 21, 21, 20, 0, 60);
    ASSERT_EQ(computeAlignmentFromForm(form, jd), 1);
    for (double later : {0.0, 0.1, 1.0, 3.0}) {
        double hor, elv, ra, dec;
        ASSERT_TRUE(skyToTelescope(19.8464, 8.8683, jd + later, hor, elv));
        ASSERT_TRUE(telescopeToSky(hor, elv, jd + later, ra, dec));
        EXPECT_NEAR(ra, 19.8464, 1e-9);
        EXPECT_NEAR(dec, 8.8683, 1e-9);
    }
    // The reference time is 21:00 local on the day of the alignment, 20:00 UT.
    EXPECT_NEAR(alignmentState().referenceJd, julianDateFromLocal(2026, 11, 21, 21, 0, 0, 60), 1e-9);
}

}  // namespace
}  // namespace nocturnel
