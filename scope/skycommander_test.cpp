// The SkyCommander module against a simulated device on a pseudo-terminal.
#include "scope/serial_test_fixture.h"
#include "scope/skycommander.h"

#include <chrono>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "scope/pty_mount.h"
#include "scope/serial_link.h"
#include "scope/skycommander_simulator.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

class SkyCommanderLink : public SerialTestFixture {
protected:
    void SetUp() override {
        SerialTestFixture::SetUp();
        sim_ = std::make_shared<SkyCommanderSimulation>();
        mount_ = std::make_unique<PtyMount>(makeSkyCommanderResponder(sim_));
        ASSERT_GT(selectAsScopePort(*mount_), 0);
    }
    template <class F>
    void withSim(F change) {
        std::lock_guard lock(sim_->mutex);
        change(*sim_);
    }

    std::shared_ptr<SkyCommanderSimulation> sim_;
    std::unique_ptr<PtyMount> mount_;
};

TEST_F(SkyCommanderLink, ConnectSendsNothing) {
    ASSERT_EQ(skyCommanderConnect(), 1);
    EXPECT_TRUE(serialIsOpen());
    EXPECT_EQ(mount_->received(), "");
    EXPECT_EQ(skyCommanderDisconnect(), 1);
    EXPECT_FALSE(serialIsOpen());
}

TEST_F(SkyCommanderLink, TargetTextsAreAcknowledged) {
    ASSERT_EQ(skyCommanderConnect(), 1);
    struct Case {
        double first, second;
        const char* text;
    };
    const Case cases[] = {{5.5, -3.25, "L0 05.500 -03.250\n"}, {12.5, 45.0, "L0 12.500 +45.000\n"}, {0.0, 0.0, "L0 00.000 +00.000\n"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        mount_->clearReceived();
        EXPECT_EQ(skyCommanderSetTarget(c.first, c.second), 1);
        EXPECT_EQ(mount_->received(), c.text);
        double first = -1, second = -1;
        ASSERT_EQ(skyCommanderReadPosition(first, second), 1);  // the device now points there
        EXPECT_NEAR(first, c.first, 5e-4);
        EXPECT_NEAR(second, c.second, 5e-4);
    }
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(SkyCommanderLink, ReadsPosition) {
    withSim([](SkyCommanderSimulation& s) {
        s.first = 18.615;
        s.second = -38.783;
    });
    ASSERT_EQ(skyCommanderConnect(), 1);
    double first = 0, second = 0;
    ASSERT_EQ(skyCommanderReadPosition(first, second), 1);
    EXPECT_EQ(mount_->received(), "\r");
    EXPECT_NEAR(first, 18.615, 1e-9);
    EXPECT_NEAR(second, -38.783, 1e-9);
}

TEST_F(SkyCommanderLink, WrongOrMissingAck) {
    ASSERT_EQ(skyCommanderConnect(), 1);
    for (bool silent : {false, true}) {
        SCOPED_TRACE(silent ? "silent" : "wrong ack");
        withSim([&](SkyCommanderSimulation& s) {
            s.ack = 'N';
            s.silent = silent;
        });
        messages_.clear();
        EXPECT_EQ(skyCommanderSetTarget(5.5, -3.25), 0);
        EXPECT_EQ(messages_.lastTitle(), "Fail to get SkyCommander ack for ra & dec set.");
    }
}

TEST_F(SkyCommanderLink, ReadFaultsGiveMessageAndZero) {
    struct Case {
        const char* what;
        std::optional<std::string> reply;
        bool silent;
    };
    const Case cases[] = {
        {"silent", std::nullopt, true},
        {"short", std::string("005.500 -03"), false},
        {"garbage", std::string("ERR ERR ERR ERR!"), false},
    };
    ASSERT_EQ(skyCommanderConnect(), 1);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        withSim([&](SkyCommanderSimulation& s) {
            s.positionOverride = c.reply;
            s.silent = c.silent;
        });
        messages_.clear();
        double first = -1, second = -1;
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(skyCommanderReadPosition(first, second), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));  // a bound, not a speed target
        EXPECT_TRUE(messages_.messages().empty()) << messages_.lastTitle();  // the dispatch reports the failure once
        EXPECT_EQ(first, -1);
    }
}

TEST_F(SkyCommanderLink, VanishedDeviceFailsTheSendAndClosesThePort) {
    ASSERT_EQ(skyCommanderConnect(), 1);
    mount_->closeNow();
    double first = 0, second = 0;
    EXPECT_EQ(skyCommanderReadPosition(first, second), 0);
    EXPECT_EQ(messages_.lastTitle(), "Fail to send string");
    EXPECT_FALSE(serialIsOpen());
    EXPECT_EQ(skyCommanderSetTarget(1.0, 1.0), 0);
    EXPECT_EQ(messages_.lastTitle(), "Fail to send string");
}

TEST_F(SkyCommanderLink, NoPortSelected) {
    prefs().scopePort = 0;
    EXPECT_EQ(skyCommanderConnect(), 0);
    EXPECT_TRUE(messages_.shown("Fail to open serial connection"));
}

}  // namespace
}  // namespace nocturnel
