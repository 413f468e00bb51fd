// The LX200 module against a simulated mount on a pseudo-terminal: exact bytes on the wire,
// the mount's documented answers, and the faults of a real line (silence, short and garbled
// replies, a device that vanishes).
#include "scope/serial_test_fixture.h"
#include "scope/lx200.h"

#include "scope/lx200_format.h"
#include "scope/lx200_sim.h"
#include "scope/pty_mount.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"

#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

const std::string kDeg(1, kLx200DegreeByte);

double hms(double h, double m, double s) { return h + m / 60 + s / 3600; }

constexpr int kLx200 = 5;
constexpr int kLosmandy = 17;

class Lx200Test : public SerialTestFixture {
protected:
    void SetUp() override {
        SerialTestFixture::SetUp();
        lx200ResetState();
    }
    // A mount with the given state on a fresh pty, selected as the telescope port.
    void startMount(Lx200MountState initial) {
        model_ = std::make_shared<Lx200MountModel>(std::move(initial));
        mount_ = std::make_unique<PtyMount>(makeLx200Responder(model_));
        ASSERT_TRUE(mount_->isReady());
        ASSERT_GT(selectAsScopePort(*mount_), 0);
    }
    void startMount(bool highPrecision) {
        Lx200MountState s;
        s.highPrecision = highPrecision;
        startMount(s);
    }
    // Connects, then forgets the connect's bytes so a test sees only its own command.
    void connected(int driveCode = kLx200) {
        ASSERT_EQ(lx200Connect(driveCode), 1);
        mount_->clearReceived();
    }

    std::shared_ptr<Lx200MountModel> model_;
    std::unique_ptr<PtyMount> mount_;
};

TEST_F(Lx200Test, TenByteDeclinationSwitchesToHighPrecisionForGood) {
    Lx200MountState s;
    s.highPrecision = true;
    s.raHours = hms(5, 34, 32);
    s.decDeg = hms(22, 0, 52);
    startMount(s);
    ASSERT_EQ(lx200Connect(kLx200), 1);
    EXPECT_EQ(mount_->received(), ":GD#");
    EXPECT_TRUE(lx200HighPrecision());

    mount_->clearReceived();
    double ra = 0, dec = 0;
    ASSERT_EQ(lx200ReadRaDec(ra, dec), 1);
    EXPECT_EQ(mount_->received(), "#:GR#:GD#");
    EXPECT_NEAR(ra, hms(5, 34, 32), 1e-9);
    EXPECT_NEAR(dec, hms(22, 0, 52), 1e-9);
    lx200Disconnect();
    EXPECT_FALSE(serialIsOpen());

    // The mount falls back to short replies: a later connect does not clear the mode.
    model_->update([](Lx200MountState& m) { m.highPrecision = false; });
    ASSERT_EQ(lx200Connect(kLx200), 1);
    EXPECT_TRUE(lx200HighPrecision());
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(Lx200Test, SevenByteDeclinationStaysInLowPrecision) {
    Lx200MountState s;
    s.highPrecision = false;
    s.raHours = hms(5, 34, 30);
    s.decDeg = -0.2;
    startMount(s);
    connected();
    EXPECT_FALSE(lx200HighPrecision());
    double ra = 0, dec = 0;
    ASSERT_EQ(lx200ReadRaDec(ra, dec), 1);
    EXPECT_NEAR(ra, hms(5, 34, 30), 1e-9);
    EXPECT_NEAR(dec, -0.2, 1e-9);

    mount_->clearReceived();
    EXPECT_EQ(lx200Goto(kLx200, hms(5, 34, 30), -0.2), 0);
    EXPECT_EQ(mount_->received(), "#:Sr 05:34.5#:Sd -00" + kDeg + "12#:MS#");
}

TEST_F(Lx200Test, ConnectFailures) {
    struct Case {
        int driveCode;
        bool silent;
        std::string dateReply;
        std::vector<std::string> messages;
        std::string sent;
    };
    const Case cases[] = {
        {kLx200, true, "11/21/26#", {"Fail to open Meade connection"}, ":GD#"},
        {2, true, "11/21/26#", {"Fail to open Meade connection"}, ":GD#"},
        {6, false, "11/21/2#", {"Fail to open Meade connection"}, "#:GC#"},  // 8 bytes of 9
        {8, false, "", {"Seems scope is not Meade !", "Fail to open Meade connection"}, ""},
        {-1, false, "", {"Seems scope is not Meade !", "Fail to open Meade connection"}, ""},
    };
    for (const Case& c : cases) {
        Lx200MountState s;
        s.silent = c.silent;
        s.dateReply = c.dateReply;
        startMount(s);
        messages_.clear();
        EXPECT_EQ(lx200Connect(c.driveCode), 0) << c.driveCode;
        ASSERT_EQ(messages_.messages().size(), c.messages.size()) << c.driveCode;
        for (std::size_t i = 0; i < c.messages.size(); ++i) EXPECT_EQ(messages_.messages()[i].title, c.messages[i]);
        EXPECT_EQ(mount_->received(), c.sent) << c.driveCode;
        EXPECT_FALSE(serialIsOpen()) << c.driveCode;
    }
}

TEST_F(Lx200Test, MagellanConnectsByDate) {
    startMount(true);
    for (int code : {6, 7}) {
        mount_->clearReceived();
        ASSERT_EQ(lx200Connect(code), 1) << code;
        EXPECT_EQ(mount_->received(), "#:GC#");
        lx200Disconnect();
    }
    EXPECT_FALSE(lx200HighPrecision());  // the date query says nothing about precision
}

TEST_F(Lx200Test, ShortConnectReplyFails) {
    startMount(true);
    // Five bytes: fewer than the six a connect needs.
    mount_->setResponder([](std::string& pending) {
        pending.clear();
        return std::string("+22") + kLx200DegreeByte + "0";
    });
    EXPECT_EQ(lx200Connect(kLx200), 0);
    EXPECT_EQ(messages_.lastTitle(), "Fail to open Meade connection");
}

TEST_F(Lx200Test, NoPortSelected) {
    EXPECT_EQ(lx200Connect(kLx200), 0);
    ASSERT_EQ(messages_.messages().size(), 2u);
    EXPECT_EQ(messages_.messages()[0].title, "No communication port is selected.\n");
    EXPECT_EQ(messages_.messages()[1].title, "Fail to open serial connection");
}

TEST_F(Lx200Test, GotoSendsTheTargetAndSlews) {
    startMount(true);
    connected();
    // M1: 5h34m31.94s +22 00' 52.2"
    EXPECT_EQ(lx200Goto(kLx200, hms(5, 34, 31.94), hms(22, 0, 52.2)), 0);
    EXPECT_EQ(mount_->received(), "#:Sr 05:34:32#:Sd +22" + kDeg + "00:52#:MS#");
    EXPECT_TRUE(messages_.messages().empty());
    Lx200MountState m = model_->state();
    EXPECT_NEAR(m.raHours, hms(5, 34, 32), 1e-9);
    EXPECT_NEAR(m.decDeg, hms(22, 0, 52), 1e-9);
}

TEST_F(Lx200Test, LosmandyNamesTheObjectBetweenRaAndDec) {
    startMount(true);
    connected(kLosmandy);
    EXPECT_EQ(lx200Goto(kLosmandy, hms(10, 20, 35), -hms(5, 6, 7)), 0);
    EXPECT_EQ(mount_->received(), "#:Sr 10:20:35#:ON#:Sd -05" + kDeg + "06:07#:MS#");
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(Lx200Test, SlewAnswers) {
    struct Case {
        std::string reply;
        int result;
        std::string message;  // empty: none
    };
    const Case cases[] = {
        {"0", 0, ""},
        {"1Object Below Horizon #", 1, "Object is below horizon in Goto."},
        {"2Object Below Higher #", 2, "Declination is above upper limit.\n"},
        {"4", -1, "Unexpected return from command #:MS#\n"},
        {"E", -1, "Unexpected return from command #:MS#\n"},
        {"", 0, ""},  // no answer at all
    };
    startMount(true);
    connected();
    for (const Case& c : cases) {
        model_->update([&c](Lx200MountState& m) { m.gotoReply = c.reply; });
        messages_.clear();
        EXPECT_EQ(lx200Goto(kLx200, 1.0, 2.0), c.result) << c.reply;
        if (c.message.empty()) {
            EXPECT_TRUE(messages_.messages().empty()) << c.reply;
        } else {
            ASSERT_EQ(messages_.messages().size(), 1u) << c.reply;
            EXPECT_EQ(messages_.messages()[0].title, c.message);
        }
    }
}

TEST_F(Lx200Test, WrongAcknowledgementsAreReportedAndTheGotoGoesOn) {
    startMount(true);
    connected();
    model_->update([](Lx200MountState& m) { m.setReply = "0"; });
    EXPECT_EQ(lx200Goto(kLx200, 1.0, 2.0), 0);
    ASSERT_EQ(messages_.messages().size(), 2u);
    EXPECT_EQ(messages_.messages()[0].title, "Fail to get Meade ack for ra set");
    EXPECT_EQ(messages_.messages()[1].title, "Fail to get Meade ack for dec set");
    EXPECT_TRUE(mount_->received().ends_with(":MS#"));

    // A mount that does not acknowledge at all is not an error.
    model_->update([](Lx200MountState& m) { m.setReply.clear(); });
    messages_.clear();
    mount_->clearReceived();
    EXPECT_EQ(lx200Goto(kLx200, 1.0, 2.0), 0);
    EXPECT_TRUE(messages_.messages().empty());
    EXPECT_TRUE(mount_->received().ends_with(":MS#"));
}

TEST_F(Lx200Test, SyncKeepsItsRaQuirkAndReadsNoReplyToTheSync) {
    startMount(true);
    connected();
    EXPECT_EQ(lx200Sync(hms(10, 20, 35), hms(41, 16, 9)), 1);
    ASSERT_TRUE(mount_->waitUntilReceived(":CM#"));
    EXPECT_EQ(mount_->received(), "#:Sr 10:20.35#:Sd +41" + kDeg + "16:09##:CM#");
    // The mount's object text after ":CM#", unread by the sync, does not spoil the next read.
    double ra = 0, dec = 0;
    ASSERT_EQ(lx200ReadRaDec(ra, dec), 1);
    EXPECT_NEAR(dec, hms(41, 16, 9), 1e-9);
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(Lx200Test, RatesMovesAndStopsSendTheirCommands) {
    startMount(true);
    connected();
    std::string expected;
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(lx200SetRate(i), 1);
        EXPECT_EQ(lx200StartMove(i), 1);
        EXPECT_EQ(lx200StopMove(i), 1);
        expected += std::string(lx200RateCommand(i)) + std::string(lx200MoveCommand(i)) + std::string(lx200StopCommand(i));
    }
    EXPECT_EQ(lx200StopAll(), 1);
    expected += "#:Q#";
    EXPECT_EQ(lx200SetRate(4), 0);
    EXPECT_EQ(lx200StartMove(-1), 0);
    ASSERT_TRUE(mount_->waitUntilReceived("#:Q#"));
    EXPECT_EQ(mount_->received(), expected);
    EXPECT_EQ(model_->state().rate, 3);
    EXPECT_EQ(model_->state().moving, -1);
}

TEST_F(Lx200Test, ReadFailsOnSilenceAndSurvivesGarbage) {
    startMount(true);
    connected();
    model_->update([](Lx200MountState& m) { m.silent = true; });
    double ra = 7, dec = 8;
    EXPECT_EQ(lx200ReadRaDec(ra, dec), 0);
    EXPECT_EQ(ra, 7);
    EXPECT_EQ(dec, 8);

    // Noise on the line is not a position: the read fails and leaves the values alone.
    for (const std::string& noise : {std::string("\xFF\x01:zz..#"), std::string("abc#"), std::string("12:3x:00#")}) {
        mount_->setResponder([noise](std::string& pending) {
            pending.clear();
            return noise;
        });
        EXPECT_EQ(lx200ReadRaDec(ra, dec), 0) << noise;
        EXPECT_EQ(ra, 7);
        EXPECT_EQ(dec, 8);
        serialDiscardInput();
    }
}

TEST_F(Lx200Test, VanishedMountFailsTheGotoWithAMessage) {
    startMount(true);
    connected();
    mount_->closeNow();
    EXPECT_EQ(lx200Goto(kLx200, 1.0, 2.0), 0);
    EXPECT_EQ(messages_.lastTitle(), "Fail to send string");
    double ra = 0, dec = 0;
    EXPECT_EQ(lx200ReadRaDec(ra, dec), 0);
    EXPECT_EQ(lx200Disconnect(), 1);
    EXPECT_FALSE(serialIsOpen());
}

TEST_F(Lx200Test, TraceShowsEachCommandAndReply) {
    startMount(true);
    toggleTrace();
    ASSERT_EQ(lx200Connect(kLx200), 1);
    double ra = 0, dec = 0;
    ASSERT_EQ(lx200ReadRaDec(ra, dec), 1);
    lx200Goto(kLx200, 1.0, 2.0);
    lx200Sync(1.0, 2.0);
    std::vector<std::string> titles;
    for (const auto& m : messages_.messages()) titles.push_back(m.title);
    const std::vector<std::string> expected{"Connect:Send",   "Connect:Receive", "QueryEQ:Send",   "QueryEQ:Receive",
                                            "QueryEQ:Send",   "QueryEQ:Receive", "GotoEQ:Set ra",  "GotoEQ:Set dec",
                                            "GotoEQ:Ask goto", "SyncEQ:Set ra",  "SyncEQ:Set dec", "SyncEQ:Sync"};
    EXPECT_EQ(titles, expected);
    EXPECT_EQ(messages_.messages()[0].detail, ":GD#");
    EXPECT_EQ(messages_.messages()[1].detail, "+00\\xDF00:00#");  // the degree byte as an escape
    EXPECT_EQ(messages_.messages()[2].detail, "#:GR#");
}

TEST_F(Lx200Test, LowPrecisionAltAzimuthRead) {
    Lx200MountState s;
    s.highPrecision = false;
    s.azDeg = hms(254, 9, 0);
    s.altDeg = -hms(3, 30, 0);
    startMount(s);
    connected();
    double az = 0, alt = 0;
    ASSERT_EQ(lx200ReadAzAlt(az, alt), 1);
    EXPECT_EQ(mount_->received(), "#:GZ#:GA#");
    EXPECT_NEAR(az, hms(254, 9, 0), 1e-9);
    EXPECT_NEAR(alt, -3.5, 1e-9);
}

// The simulated telescope answers instead of the port.
TEST_F(Lx200Test, SimulatedTelescopeWalksToTheTargetAndDrifts) {
    prefs().simulatedScope = 1;
    ASSERT_EQ(lx200Connect(kLx200), 1);  // no port selected, and no message
    EXPECT_FALSE(serialIsOpen());
    EXPECT_EQ(lx200Goto(kLx200, 6.0, 30.0), 0);
    double ra = 0, dec = 0;
    ASSERT_EQ(lx200ReadRaDec(ra, dec), 1);
    EXPECT_NEAR(ra, 0.6, 1e-12);   // one tenth of the way
    EXPECT_NEAR(dec, 3.0, 1e-12);
    for (int i = 0; i < 80; ++i) lx200ReadRaDec(ra, dec);
    EXPECT_DOUBLE_EQ(ra, 6.0);
    EXPECT_DOUBLE_EQ(dec, 30.0);

    // Rate 0 is 2 degrees per read: north lowers Dec, east lowers RA by rate/15 hours.
    EXPECT_EQ(lx200SetRate(0), 1);
    EXPECT_EQ(lx200StartMove(0), 1);
    lx200ReadRaDec(ra, dec);
    EXPECT_NEAR(dec, 28.0, 1e-12);
    EXPECT_EQ(lx200StopMove(0), 1);
    lx200ReadRaDec(ra, dec);
    EXPECT_NEAR(dec, 28.0, 1e-12);  // stopped where it was

    ASSERT_EQ(lx200Sync(0.05, -89.5), 1);
    EXPECT_EQ(lx200SetRate(1), 1);
    EXPECT_EQ(lx200StartMove(2), 1);
    EXPECT_EQ(lx200StartMove(1), 1);  // south raises Dec... towards the pole clamp
    lx200ReadRaDec(ra, dec);
    EXPECT_NEAR(ra, 0.05 - 0.5 / 15 + 0, 1e-12);
    EXPECT_NEAR(dec, -89.0, 1e-12);
    lx200ReadRaDec(ra, dec);
    EXPECT_NEAR(ra, 24 + 0.05 - 1.0 / 15, 1e-12);  // wrapped into [0, 24)
    EXPECT_EQ(lx200StopAll(), 1);
    EXPECT_EQ(lx200StartMove(0), 1);
    for (int i = 0; i < 400; ++i) lx200ReadRaDec(ra, dec);
    EXPECT_DOUBLE_EQ(dec, -90.0);
    EXPECT_EQ(lx200Disconnect(), 1);
    EXPECT_TRUE(messages_.messages().empty());
}

}  // namespace
}  // namespace nocturnel
