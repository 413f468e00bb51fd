#include "scope/serial_test_fixture.h"
#include "scope/servocat.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "scope/pty_mount.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {

TEST(ServoCatWire, GotoText) {
    struct {
        double ra, dec;
        const char* text;
    } cases[] = {
        {5.5, 22.25, "g05.500 +22.250"},
        {23.75, -5.5, "g23.750 -05.500"},
        {12.0, 0.0, "g12.0 -00.0"},        // Dec exactly 0 goes with '-'
        {0.0, 89.5, "g00.0 +89.500"},
        {10.046875, -45.03125, "g10.46 -45.31"},  // thousandths are not padded: 46 is written "46"
        {1.007, 0.004, "g01.7 +00.4"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(servoCatGotoCommand(c.ra, c.dec), c.text);
    }
}

TEST(ServoCatWire, PositionReplyIsSplitAtBytesSixAndFourteen) {
    struct {
        std::string reply;
        bool ok;
        double ra, dec;
    } cases[] = {
        {"05.500 +22.250", true, 5.5, 22.25},
        {"23.999 -89.999", true, 23.999, -89.999},
        {"00.000 -00.500", true, 0.0, -0.5},
        {"05.500 +22.250#extra", true, 5.5, 22.25},  // bytes after the fourteenth are ignored
        {"05.500 +22.25", false, 0, 0},              // 13 bytes: short
        {"", false, 0, 0},
        {"hello world!!!", false, 0, 0},             // not numbers
        {"05.5x0 +22.250", false, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reply);
        auto position = parseServoCatPosition(c.reply);
        ASSERT_EQ(position.has_value(), c.ok);
        if (!c.ok) continue;
        EXPECT_NEAR(position->raHours, c.ra, 1e-9);
        EXPECT_NEAR(position->decDeg, c.dec, 1e-9);
    }
}

class ServoCatLink : public SerialTestFixture {};

TEST_F(ServoCatLink, ReadsThePositionOfTheSimulator) {
    PtyMount mount(makeServoCatResponder(6.75, -12.5));
    ASSERT_GT(selectAsScopePort(mount), 0);
    ASSERT_EQ(servoCatConnect(), 1);
    double ra = 0, dec = 0;
    ASSERT_EQ(servoCatReadRaDec(ra, dec), 1);
    EXPECT_NEAR(ra, 6.75, 1e-9);
    EXPECT_NEAR(dec, -12.5, 1e-9);
    EXPECT_EQ(mount.received(), "\r");
    servoCatDisconnect();
    EXPECT_TRUE(messages_.messages().empty());
}

TEST_F(ServoCatLink, GotoSendsTheTextAndTheMountArrives) {
    PtyMount mount(makeServoCatResponder());
    ASSERT_GT(selectAsScopePort(mount), 0);
    ASSERT_EQ(servoCatConnect(), 1);
    ASSERT_EQ(servoCatGoto(3.25, 0.0), 1);
    double ra = 0, dec = 0;
    ASSERT_EQ(servoCatReadRaDec(ra, dec), 1);
    EXPECT_EQ(mount.received(), "g03.250 -00.0\r");
    EXPECT_NEAR(ra, 3.25, 1e-9);
    EXPECT_NEAR(dec, 0.0, 1e-9);
}

TEST_F(ServoCatLink, TraceShowsTheGotoText) {
    PtyMount mount(makeServoCatResponder());
    ASSERT_GT(selectAsScopePort(mount), 0);
    toggleTrace();
    ASSERT_EQ(servoCatConnect(), 1);
    ASSERT_EQ(servoCatGoto(1.5, 2.5), 1);
    bool traced = false;
    for (const Message& m : messages_.messages())
        if (m.title == "GotoEQ:Set ra and dec" && m.detail == "g01.500 +02.500") traced = true;
    EXPECT_TRUE(traced);
}

TEST_F(ServoCatLink, FaultsFailWithoutHanging) {
    struct Fault {
        const char* what;
        PtyMount::Responder responder;
    };
    Fault faults[] = {
        {"silent", [](std::string& pending) { pending.clear(); return std::string(); }},
        {"short", [](std::string& pending) { pending.clear(); return std::string("05.500 +22"); }},
        {"garbage", [](std::string& pending) { pending.clear(); return std::string("ERR ERR ERR ERR"); }},
    };
    for (Fault& fault : faults) {
        SCOPED_TRACE(fault.what);
        PtyMount mount(fault.responder);
        ASSERT_GT(selectAsScopePort(mount), 0);
        ASSERT_EQ(servoCatConnect(), 1);
        double ra = 1, dec = 1;
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(servoCatReadRaDec(ra, dec), 0);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));  // a bound, not a speed target
        servoCatDisconnect();
    }
}

TEST_F(ServoCatLink, VanishedDeviceFailsTheSend) {
    PtyMount mount(makeServoCatResponder());
    ASSERT_GT(selectAsScopePort(mount), 0);
    ASSERT_EQ(servoCatConnect(), 1);
    mount.closeNow();
    double ra = 0, dec = 0;
    EXPECT_EQ(servoCatReadRaDec(ra, dec), 0);
    EXPECT_EQ(servoCatGoto(1.0, 1.0), 0);
    EXPECT_TRUE(messages_.shown("Fail to send string"));
}

}  // namespace
}  // namespace nocturnel
