// The Takahashi module against a simulated mount on a pseudo-terminal: exact bytes sent,
// answers understood, and every fault ending in a message and a 0.
#include "scope/serial_test_fixture.h"
#include "scope/takahashi.h"

#include <chrono>
#include <cmath>
#include <numbers>
#include <memory>
#include <string>

#include <erfa.h>
#include <gtest/gtest.h>

#include "scope/pty_mount.h"
#include "scope/scope_interface.h"
#include "scope/serial_link.h"
#include "scope/takahashi_simulator.h"
#include "scope/takahashi_wire.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

constexpr const char* kZenithQuestion =
    "Please, point your telescope to zenith and press Yes if it is placed at the East side, else press No.";
constexpr double kTokyoLatitudeDeg = 35 + 40 / 60.0 + 30 / 3600.0;

class TakahashiLink : public SerialTestFixture {
protected:
    void SetUp() override {
        SerialTestFixture::SetUp();
        prefs().latitudeDeg = static_cast<float>(kTokyoLatitudeDeg);
        setSerialSettleMillisecondsForTests(0);
        setTakahashiPollPauseMillisecondsForTests(0);
        takahashiResetState();
        takahashiSetSiderealTime(6.5);
        sim_ = std::make_shared<TakahashiSimulation>();
        sim_->pollsPerMove = 1;
        mount_ = std::make_unique<PtyMount>(makeTakahashiResponder(sim_));
        ASSERT_GT(selectAsScopePort(*mount_), 0);
    }
    void TearDown() override {
        SerialTestFixture::TearDown();
        takahashiResetState();
        setTakahashiPollPauseMillisecondsForTests(250);
        setScopeClock({});
    }
    // A first connection (site and pier side sent), then a clean transcript and message list.
    void connectOnce() {
        QuestionAnswerer yes(true);
        takahashiSetSiderealTime(6.5);
        ASSERT_EQ(takahashiConnect(), 1);
        ASSERT_TRUE(mount_->waitUntilReceived("Z\r\n"));
        mount_->clearReceived();
        messages_.clear();
    }
    template <class F>
    void withSim(F change) {
        std::lock_guard lock(sim_->mutex);
        change(*sim_);
    }

    std::shared_ptr<TakahashiSimulation> sim_;
    std::unique_ptr<PtyMount> mount_;
};

TEST_F(TakahashiLink, FirstConnectionSendsSiteAndPierSideThenNeverAgain) {
    QuestionAnswerer yes(true);  // the telescope stands on the East side
    ASSERT_EQ(takahashiConnect(), 1);
    ASSERT_TRUE(mount_->waitUntilReceived("Z\r\n"));
    // The mount starts on the West side: after the zenith command it reports 'F' (moving)
    // once, then 'W', so the program flips it with the four bytes P T CR , LF.
    EXPECT_EQ(mount_->received(),
              "v\r\n"
              "T063000\r\nI+35405\r\n"
              "T063000\r\nZ\r\n"
              "E\r\nE\r\nPT\r,\n"
              "T063000\r\nZ\r\n");
    EXPECT_EQ(yes.questions(), std::vector<std::string>{kZenithQuestion});
    EXPECT_EQ(takahashiState().latitudeSent, 1);
    EXPECT_EQ(takahashiState().pierSideAnswer, 1);
    withSim([](TakahashiSimulation& s) {
        EXPECT_EQ(s.flipCount, 1);
        EXPECT_EQ(s.zenithCount, 2);
        EXPECT_NEAR(s.latitudeDeg, 35 + 40.5 / 60, 1e-9);  // 40.5 arcminutes: the tenth is kept
        EXPECT_NEAR(s.lstHours, 6.5, 1e-9);
    });

    takahashiDisconnect();
    mount_->clearReceived();
    ASSERT_EQ(takahashiConnect(), 1);
    EXPECT_EQ(mount_->received(), "v\r\n");
    EXPECT_EQ(yes.questions().size(), 1u);
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(TakahashiLink, SouthernSiteOnTheRequestedSideNeedsNoFlip) {
    prefs().latitudeDeg = static_cast<float>(-kTokyoLatitudeDeg);
    QuestionAnswerer no(false);  // West side, where the simulated mount already stands
    ASSERT_EQ(takahashiConnect(), 1);
    ASSERT_TRUE(mount_->waitUntilReceived("Z\r\nE\r\nE\r\nT063000\r\nZ\r\n"));
    EXPECT_EQ(mount_->received(), "v\r\nT063000\r\nI-35405\r\nT063000\r\nZ\r\nE\r\nE\r\nT063000\r\nZ\r\n");
    EXPECT_EQ(takahashiState().pierSideAnswer, 0);
    EXPECT_EQ(takahashiState().pierFlag, 'W');
}

TEST_F(TakahashiLink, FailedVersionAnswerIsNoConnection) {
    struct Case {
        const char* what;
        std::string versionReply;
        bool silent;
    };
    const Case cases[] = {
        {"10 bytes, even starting with v", "v1234567\r\n", false},
        {"not starting with v", "xTemma PC v2.01\r\n", false},
        {"silent mount", "", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        withSim([&](TakahashiSimulation& s) {
            s.versionReply = c.versionReply;
            s.silent = c.silent;
        });
        mount_->clearReceived();
        messages_.clear();
        QuestionAnswerer yes(true);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(takahashiConnect(), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));  // a bound, not a speed target
        EXPECT_EQ(messages_.lastTitle(), "Fail to open Takahasi connection.");
        EXPECT_FALSE(serialIsOpen());
        EXPECT_EQ(mount_->received(), "v\r\n");  // no site data for a mount that did not answer
        EXPECT_TRUE(yes.questions().empty());
        EXPECT_EQ(takahashiState().latitudeSent, 0);
    }
}

TEST_F(TakahashiLink, NoPortSelected) {
    prefs().scopePort = 0;
    EXPECT_EQ(takahashiConnect(), 0);
    EXPECT_TRUE(messages_.shown("Fail to open serial connection"));
}

TEST_F(TakahashiLink, ReadsPositionAndPierFlag) {
    connectOnce();
    withSim([](TakahashiSimulation& s) {
        s.raHours = 18 + 36 / 60.0 + 56 / 3600.0;
        s.decDeg = -(38 + 47.3 / 60);
        s.side = 'E';
        s.movingPolls = 0;  // arrived at the zenith
    });
    double ra = 0, dec = 0;
    ASSERT_EQ(takahashiReadRaDec(ra, dec), 1);
    EXPECT_EQ(mount_->received(), "E\r\n");
    EXPECT_NEAR(ra, 18 + 36 / 60.0 + 56 / 3600.0, 1e-9);
    EXPECT_NEAR(dec, -(38 + 47.3 / 60), 1e-9);
    EXPECT_EQ(takahashiState().pierFlag, 'E');
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(TakahashiLink, ReadFaultsGiveMessageAndZero) {
    connectOnce();
    struct Case {
        const char* what;
        std::optional<std::string> reply;
        bool silent;
    };
    const Case cases[] = {
        {"silent", std::nullopt, true},
        {"short", std::string("E0530\r\n"), false},
        {"garbage", std::string("Exx3000+20300WH\r\n"), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        withSim([&](TakahashiSimulation& s) {
            s.positionOverride = c.reply;
            s.silent = c.silent;
        });
        messages_.clear();
        double ra = -1, dec = -1;
        EXPECT_EQ(takahashiReadRaDec(ra, dec), 0);
        EXPECT_EQ(messages_.lastTitle(), "No response from Takahashi");
        EXPECT_EQ(ra, -1);  // outputs untouched on failure
    }
}

TEST_F(TakahashiLink, VanishedMountFailsTheRead) {
    connectOnce();
    mount_->closeNow();
    double ra = 0, dec = 0;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(takahashiReadRaDec(ra, dec), 0);
    EXPECT_EQ(takahashiGoto(1.0, 1.0), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_TRUE(messages_.shown("No response from Takahashi"));
    EXPECT_TRUE(messages_.shown("Fail to send string"));
}

TEST_F(TakahashiLink, GotoSendsLatitudeOnceThenSiderealTimeAndTarget) {
    connectOnce();
    takahashiSetSiderealTime(6.5);
    ASSERT_EQ(takahashiGoto(5.5, 0.0), 1);
    EXPECT_EQ(mount_->received(), "I+35405\r\nT063000\r\nP053000 00000\r\n");  // Dec exactly 0
    mount_->clearReceived();
    takahashiSetSiderealTime(7.25);
    ASSERT_EQ(takahashiGoto(12.0 + 1 / 60.0, -20.5), 1);
    EXPECT_EQ(mount_->received(), "T071500\r\nP120100-20300\r\n");
    withSim([](TakahashiSimulation& s) {
        EXPECT_NEAR(s.raHours, 12.0 + 1 / 60.0, 1e-9);
        EXPECT_NEAR(s.decDeg, -20.5, 1e-9);
    });
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(TakahashiLink, GotoAnswersAndTheirMessages) {
    connectOnce();
    struct Case {
        const char* answer;
        const char* title;
        const char* detail;
    };
    const Case cases[] = {
        {"R1\r\n", "Takahashi", "Wrong ra in Goto."},
        {"R2\r\n", "Takahashi", "Wrong dec in Goto."},
        {"R3\r\n", "Takahashi", "Too many digits in Goto."},
        {"", "No response from Takahashi", ""},
        {"OK\r\n", "No response from Takahashi", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer);
        withSim([&](TakahashiSimulation& s) { s.gotoAnswer = c.answer; });
        messages_.clear();
        EXPECT_EQ(takahashiGoto(5.5, 20.0), 0);
        ASSERT_EQ(messages_.messages().size(), 1u);
        EXPECT_EQ(messages_.messages()[0].title, c.title);
        EXPECT_EQ(messages_.messages()[0].detail, c.detail);
    }
}

TEST_F(TakahashiLink, SyncSetsTheMountPosition) {
    connectOnce();
    takahashiSetSiderealTime(6.5);
    ASSERT_EQ(takahashiSync(3.0, 10.5), 1);
    EXPECT_EQ(mount_->received(), "I+35405\r\nT063000\r\nD030000+10300\r\n");
    double ra = 0, dec = 0;
    ASSERT_EQ(takahashiReadRaDec(ra, dec), 1);
    EXPECT_NEAR(ra, 3.0, 1e-9);
    EXPECT_NEAR(dec, 10.5, 1e-9);
}

TEST_F(TakahashiLink, RatePicksTheMotionSet) {
    connectOnce();
    struct Case {
        int rate, direction;
        int rateResult;
        const char* bytes;
    };
    const Case cases[] = {
        {3, 0, 1, "MH\r\n"}, {2, 0, 1, "MI\r\n"}, {0, 3, 1, "ME\r\n"},
        {3, 2, 1, "MB\r\n"}, {1, 1, 1, "MQ\r\n"}, {7, 0, 0, "MI\r\n"},  // unknown rate: slow set, failure
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bytes);
        mount_->clearReceived();
        EXPECT_EQ(takahashiSetRate(c.rate), c.rateResult);
        EXPECT_EQ(takahashiStartMove(c.direction), 1);
        EXPECT_TRUE(mount_->waitUntilReceived(c.bytes));
        EXPECT_EQ(mount_->received(), c.bytes);
    }
    EXPECT_EQ(takahashiStartMove(4), 0);
    EXPECT_TRUE(messages_.shown("Fail to send string"));
}

TEST_F(TakahashiLink, StopForms) {
    connectOnce();
    EXPECT_EQ(takahashiStopMove(0), 0);  // the hand-motion stop always answers 0
    ASSERT_TRUE(mount_->waitUntilReceived("M@\r\n"));
    EXPECT_EQ(mount_->received(), "M@\r\n");
    mount_->clearReceived();
    EXPECT_EQ(takahashiStopAll(), 1);
    EXPECT_EQ(mount_->received(), "M@\r\nPS\r\ns\r\n");  // the hand motion too
    EXPECT_TRUE(messages_.messages().empty());

    // The answer to "s" was drained: the next read is not shifted by it.
    double ra = 0, dec = 0;
    EXPECT_EQ(takahashiReadRaDec(ra, dec), 1);
}

TEST_F(TakahashiLink, PierSideProcedureGivesUpOnAMountThatNeverSettles) {
    withSim([](TakahashiSimulation& s) { s.positionOverride = takahashiPositionReply(6.5, 35.0, 'F'); });
    QuestionAnswerer yes(true);
    EXPECT_EQ(takahashiConnect(), 1);  // the mount answered its version
    EXPECT_TRUE(messages_.shown("No response from Takahashi"));
    EXPECT_EQ(takahashiState().latitudeSent, 1);
    const std::string sent = mount_->received();
    std::size_t polls = 0;
    for (std::size_t at = sent.find("E\r\n"); at != std::string::npos; at = sent.find("E\r\n", at + 1)) ++polls;
    EXPECT_EQ(polls, static_cast<std::size_t>(kTakahashiPierPollLimit));
    EXPECT_EQ(sent.find("PT"), std::string::npos);
}

// Without a value handed over, the sidereal time sent is the clock's, at the site: checked
// against ERFA's Greenwich mean sidereal time (IAU 1982) plus the east longitude.
TEST_F(TakahashiLink, SiderealTimeFollowsTheClockAndSite) {
    struct Case {
        ObservingMoment local;
        float longitudeWestDeg;
        int16_t utcOffsetMin;
        int utYear, utMonth, utDay;
        double utHours;
    };
    const Case cases[] = {
        {{2024, 3, 20, 21, 30, 0}, -139.6917f, 540, 2024, 3, 20, 12.5},            // Tokyo
        {{2026, 11, 21, 0, 15, 30}, 71.55f, -300, 2026, 11, 21, 5.25 + 30 / 3600.0},  // Chile, offset -5 h
        {{2000, 1, 1, 0, 0, 0}, 0.0f, 60, 1999, 12, 31, 23.0},                      // the day before in UT
    };
    for (const Case& c : cases) {
        takahashiResetState();  // no handed value, no site data sent yet
        prefs().longitudeDeg = c.longitudeWestDeg;
        prefs().utcOffsetMin = c.utcOffsetMin;
        setScopeClock([&c] { return c.local; });
        mount_->clearReceived();
        QuestionAnswerer yes(true);
        ASSERT_EQ(takahashiConnect(), 1);
        ASSERT_TRUE(mount_->waitUntilReceived("Z\r\n"));
        takahashiDisconnect();
        const std::string sent = mount_->received();
        const auto at = sent.find("\r\nT");
        ASSERT_NE(at, std::string::npos) << sent;
        const std::string t = sent.substr(at + 3, 6);
        const double sentHours = std::stoi(t.substr(0, 2)) + std::stoi(t.substr(2, 2)) / 60.0 + std::stoi(t.substr(4, 2)) / 3600.0;

        double jd0 = 0, jd1 = 0;
        ASSERT_EQ(eraCal2jd(c.utYear, c.utMonth, c.utDay, &jd0, &jd1), 0);
        const double gmstHours = eraGmst82(jd0, jd1 + c.utHours / 24.0) * 12.0 / std::numbers::pi;
        double expected = std::fmod(gmstHours - c.longitudeWestDeg / 15.0 + 48.0, 24.0);
        double diffSeconds = (sentHours - expected) * 3600.0;
        if (diffSeconds > 43200) diffSeconds -= 86400;
        if (diffSeconds < -43200) diffSeconds += 86400;
        EXPECT_NEAR(diffSeconds, -0.5, 1.0) << t;  // whole seconds, truncated
    }
}

TEST_F(TakahashiLink, AltAzReadIsNotImplemented) {
    EXPECT_EQ(takahashiReadAltAz(), 0);
    EXPECT_EQ(messages_.lastTitle(), "Takahasi query AZ not implemented");
}

TEST_F(TakahashiLink, TraceShowsCommands) {
    toggleTrace();
    QuestionAnswerer yes(true);
    ASSERT_EQ(takahashiConnect(), 1);
    bool version = false, sidereal = false, zenith = false;
    for (const Message& m : messages_.messages()) {
        version |= m.title == "Connect:Send" && m.detail == "v\\r\\n";  // CR LF shown as escapes
        sidereal |= m.title == "QueryEQ:Send localSiderealTime" && m.detail == "T063000\\r\\n";
        zenith |= m.title == "Connect:Send zenith cmd " && m.detail == "Z\\r\\n";
    }
    EXPECT_TRUE(version);
    EXPECT_TRUE(sidereal);
    EXPECT_TRUE(zenith);
}

}  // namespace
}  // namespace nocturnel
