// Encoder boxes against simulated boxes on a pseudo-terminal: the set-up bytes of each kind,
// the reads and their conversion to angles, and the faults.
#include "scope/serial_test_fixture.h"
#include "scope/encoder_box.h"

#include <chrono>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "scope/encoder_box_simulator.h"
#include "scope/pty_mount.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

class EncoderBoxLink : public SerialTestFixture {
protected:
    void SetUp() override {
        SerialTestFixture::SetUp();
        prefs().encoderAzSteps = 8000;
        prefs().encoderAltSteps = 8000;
        encoderResetState();
        sim_ = std::make_shared<EncoderBoxSimulation>();
    }
    void TearDown() override {
        encoderDisconnect();
        encoderResetState();
        SerialTestFixture::TearDown();
    }
    void startBox(int driveCode) {
        mount_ = std::make_unique<PtyMount>(makeEncoderResponder(driveCode, sim_));
        ASSERT_GT(selectAsScopePort(*mount_), 0);
    }
    void setCounts(long az, long alt) {
        std::lock_guard lock(sim_->mutex);
        sim_->azCount = az;
        sim_->altCount = alt;
    }

    std::shared_ptr<EncoderBoxSimulation> sim_;
    std::unique_ptr<PtyMount> mount_;
};

TEST_F(EncoderBoxLink, EachBoxGetsItsSetupOnce) {
    prefs().encoderAzSteps = -32127;
    prefs().encoderAltSteps = 4000;
    struct Case {
        int driveCode;
        std::string sent;  // everything the box receives on connecting
    };
    const Case cases[] = {
        {3, "Z32127\t04000\n"},
        {21, "Z\t+32127\t+04000\n"},
        {12, "I32767\t32767\r"},
        {4, std::string("z\x7F\x7D\xA0\x0F", 5) + "A"},  // set-up, one byte back, then the ack
        {1, ""},
        {11, ""},
        {16, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.driveCode);
        encoderDisconnect();
        encoderResetState();
        startBox(c.driveCode);
        ASSERT_EQ(encoderConnect(c.driveCode), 1);
        if (!c.sent.empty()) {
            ASSERT_TRUE(mount_->waitUntilReceived(c.sent));
        }
        EXPECT_EQ(mount_->received(), c.sent);
        EXPECT_TRUE(encoderBoxState().encoderInitialised);

        // Connecting again, open or reopened, sends no set-up.
        mount_->clearReceived();
        ASSERT_EQ(encoderConnect(c.driveCode), 1);
        encoderDisconnect();
        ASSERT_EQ(encoderConnect(c.driveCode), 1);
        EXPECT_EQ(mount_->received(), "");
        EXPECT_TRUE(messages_.messages().empty());
    }
}

TEST_F(EncoderBoxLink, ReadsCountsOfEachDialect) {
    struct Case {
        int driveCode;
        const char* query;  // what the box receives for one read
        const char* setupEnd;  // last bytes of its set-up, for the boxes that do not answer it
    };
    const Case cases[] = {{3, "Q", ""},  {21, "Q", ""}, {1, "Q", ""}, {11, "Q", ""},
                          {12, "Q", "\r"}, {16, "Q", ""}, {4, "ay", "A"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.driveCode);
        encoderDisconnect();
        encoderResetState();
        startBox(c.driveCode);
        setCounts(2000, 6000);  // a quarter turn in Az; 3/4 of a turn in Alt
        ASSERT_EQ(encoderConnect(c.driveCode), 1);
        ASSERT_TRUE(mount_->waitUntilReceived(c.setupEnd));
        mount_->clearReceived();
        double az = 0, alt = 0;
        ASSERT_EQ(encoderReadAzAlt(c.driveCode, az, alt), 1);
        EXPECT_EQ(mount_->received(), c.query);
        EXPECT_NEAR(az, 90.0, 1e-9);
        EXPECT_NEAR(alt, -90.0, 1e-9);  // 3R/4 with no offset is -90
        double ra = 0, dec = 0;
        ASSERT_EQ(encoderReadRaDec(c.driveCode, ra, dec), 1);
        EXPECT_NEAR(ra, 6.0, 1e-9);     // the same reading, first value in hours
        EXPECT_NEAR(dec, -90.0, 1e-9);
        EXPECT_TRUE(messages_.messages().empty());
    }
}

TEST_F(EncoderBoxLink, NegativeResolutionReversesAzimuth) {
    startBox(3);
    setCounts(2000, 1000);
    prefs().encoderAzSteps = -8000;
    ASSERT_EQ(encoderConnect(3), 1);
    double az = 0, alt = 0;
    ASSERT_EQ(encoderReadAzAlt(3, az, alt), 1);
    EXPECT_NEAR(az, 270.0, 1e-9);
    EXPECT_NEAR(alt, 45.0, 1e-9);
}

TEST_F(EncoderBoxLink, OffsetsMakeTheBoxShowTheExpectedPosition) {
    startBox(11);
    setCounts(1234, 567);
    ASSERT_EQ(encoderConnect(11), 1);
    ASSERT_EQ(encoderSetOffsets(11, 200.0, 30.0), 1);
    EXPECT_NE(prefs().encoderAzOffset, 0);
    double az = 0, alt = 0;
    ASSERT_EQ(encoderReadAzAlt(11, az, alt), 1);
    EXPECT_NEAR(az, 200.0, 360.0 / 8000);
    EXPECT_NEAR(alt, 30.0, 360.0 / 8000);

    // A mount 2 degrees off level: the box's Alt counts move, the reading follows.
    setCounts(1234, 567 + 8000 * 2 / 360);
    ASSERT_EQ(encoderReadAzAlt(11, az, alt), 1);
    EXPECT_NEAR(alt, 32.0, 2 * 360.0 / 8000);
}

TEST_F(EncoderBoxLink, ResolutionZeroIsReported) {
    struct Case {
        int azSteps, altSteps;
        const char* title;
    };
    const Case cases[] = {{8000, 0, "Bad Alt encoder resolution"}, {0, 8000, "Bad Azt encoder resolution"}};
    startBox(1);
    ASSERT_EQ(encoderConnect(1), 1);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.title);
        prefs().encoderAzSteps = c.azSteps;
        prefs().encoderAltSteps = c.altSteps;
        messages_.clear();
        double az = 0, alt = 0;
        EXPECT_EQ(encoderReadAzAlt(1, az, alt), 0);
        ASSERT_EQ(messages_.messages().size(), 1u);
        EXPECT_EQ(messages_.messages()[0].title, c.title);
        EXPECT_EQ(messages_.messages()[0].detail, "Please check.");
    }
}

TEST_F(EncoderBoxLink, ReadWithoutConnection) {
    double az = 0, alt = 0;
    EXPECT_EQ(encoderReadAzAlt(3, az, alt), 0);
    EXPECT_EQ(messages_.lastTitle(), "Connection not open!");
}

TEST_F(EncoderBoxLink, DaveEkStatusMustBeY) {
    startBox(4);
    ASSERT_EQ(encoderConnect(4), 1);
    {
        std::lock_guard lock(sim_->mutex);
        sim_->statusAnswer = 'N';
    }
    double az = 0, alt = 0;
    EXPECT_EQ(encoderReadAzAlt(4, az, alt), 0);
    EXPECT_EQ(messages_.lastTitle(), "Bad encoder status");
    EXPECT_FALSE(serialIsOpen());  // a failed read closes the port
    EXPECT_FALSE(encoderBoxState().encoderOpen);
}

TEST_F(EncoderBoxLink, SilentBoxFailsTheSetup) {
    for (int code : {3, 21, 4}) {
        SCOPED_TRACE(code);
        encoderResetState();
        sim_->silent = true;
        startBox(code);
        messages_.clear();
        EXPECT_EQ(encoderConnect(code), 0);
        EXPECT_EQ(messages_.lastTitle(), "Fail to open encoder connection");
        EXPECT_FALSE(serialIsOpen());
        EXPECT_FALSE(encoderBoxState().encoderInitialised);
    }
}

TEST_F(EncoderBoxLink, ReadFaultsCloseThePort) {
    struct Case {
        const char* what;
        std::optional<std::string> reply;
        bool silent;
        bool vanish;
    };
    const Case cases[] = {
        {"silent", std::nullopt, true, false},
        {"short", std::string("+01234\t-00"), false, false},
        {"garbage", std::string("ERROR ERROR!!"), false, false},
        {"device closed", std::nullopt, false, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        encoderResetState();
        sim_ = std::make_shared<EncoderBoxSimulation>();
        startBox(3);
        ASSERT_EQ(encoderConnect(3), 1);
        {
            std::lock_guard lock(sim_->mutex);
            sim_->countsOverride = c.reply;
            sim_->silent = c.silent;
        }
        if (c.vanish) mount_->closeNow();
        messages_.clear();
        long az = -1, alt = -1;
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(encoderReadCounts(3, az, alt), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));  // a bound, not a speed target
        EXPECT_EQ(messages_.lastTitle(), "Bad encoder status");
        EXPECT_FALSE(serialIsOpen());
        EXPECT_EQ(az, -1);
    }
}

TEST_F(EncoderBoxLink, SimulatedBoxNeedsNoPort) {
    prefs().simulatedScope = 1;
    prefs().encoderAzSteps = 30000;
    prefs().encoderAltSteps = -30000;
    prefs().scopePort = 0;
    ASSERT_EQ(encoderConnect(3), 1);
    EXPECT_FALSE(serialIsOpen());
    encoderSetSimulatedCounts(14900, 7400);
    long az = 0, alt = 0;
    ASSERT_EQ(encoderReadCounts(3, az, alt), 1);
    EXPECT_EQ(az, 15000);
    EXPECT_EQ(alt, 7500);
    ASSERT_EQ(encoderReadCounts(3, az, alt), 1);
    EXPECT_EQ(az, 15100 - 30000);  // past half a turn: one turn back
    EXPECT_EQ(alt, 7600 - 30000);  // past a quarter turn
    EXPECT_TRUE(messages_.messages().empty());
}

}  // namespace
}  // namespace nocturnel
