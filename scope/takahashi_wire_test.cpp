#include "scope/takahashi_wire.h"

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

double dms(double d, double m, double s) { return d + m / 60.0 + s / 3600.0; }

TEST(TakahashiWire, LatitudeCommand) {
    struct Case {
        double latitudeDeg;
        const char* expected;
        const char* what;
    };
    const Case cases[] = {
        {dms(35, 40, 30), "I+35405\r\n", "35°40'30\" N: tenths = trunc(30 x 10 / 60)"},
        {-dms(35, 40, 30), "I-35405\r\n", "the same latitude south"},
        {0.0, "I+00000\r\n", "equator counts as north"},
        {dms(51, 28, 40), "I+51286\r\n", "40 arcseconds are 6 tenths (truncated, not 7)"},
        {-dms(33, 52, 5), "I-33520\r\n", "5 arcseconds are 0 tenths"},
        {dms(10, 0, 59.4), "I+10009\r\n", "59.4 arcseconds round to 59 in the text, then 9 tenths"},
        {dms(89, 59, 59), "I+89599\r\n", "last tenth of the last minute"},
    };
    for (const Case& c : cases) EXPECT_EQ(takahashiLatitudeCommand(c.latitudeDeg), c.expected) << c.what;
}

TEST(TakahashiWire, SiderealTimeCommand) {
    struct Case {
        double lstHours;
        const char* expected;
    };
    const Case cases[] = {
        {0.0, "T000000\r\n"},
        {6.5, "T063000\r\n"},
        {12.3456, "T122044\r\n"},        // 12h20m44.16s: whole seconds, truncated
        {23.0 + 59.0 / 60 + 59.9 / 3600, "T235959\r\n"},
        {24.0, "T000000\r\n"},           // an exact 24.0 wraps to 0
        {-1.0, "T230000\r\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(takahashiSiderealTimeCommand(c.lstHours), c.expected) << c.lstHours;
}

TEST(TakahashiWire, GotoAndSyncCommands) {
    struct Case {
        double raHours, decDeg;
        const char* gotoText;
    };
    const Case cases[] = {
        {5.5, 20.5, "P053000+20300\r\n"},
        {5.5, 0.0, "P053000 00000\r\n"},                       // Dec exactly 0
        {5.5, -0.5, "P053000-00300\r\n"},
        {dms(18, 36, 56), dms(38, 47, 1), "P183656+38470\r\n"},  // Vega
        {dms(6, 45, 9), -dms(16, 42, 58), "P064509-16429\r\n"},  // Sirius: 58" are 9 tenths
        {23.99999, -dms(89, 59, 59.8), "P000000-90000\r\n"},   // rounding to the second carries and wraps
    };
    for (const Case& c : cases) {
        EXPECT_EQ(takahashiGotoCommand(c.raHours, c.decDeg), c.gotoText) << c.raHours << " " << c.decDeg;
        std::string sync = c.gotoText;
        sync[0] = 'D';
        EXPECT_EQ(takahashiSyncCommand(c.raHours, c.decDeg), sync);
    }
}

TEST(TakahashiWire, MotionCommandsAndSpeedSets) {
    const char* slow[] = {"MI\r\n", "MQ\r\n", "MC\r\n", "ME\r\n"};
    const char* fast[] = {"MH\r\n", "MP\r\n", "MB\r\n", "MD\r\n"};
    for (int direction = 0; direction < 4; ++direction) {
        EXPECT_EQ(takahashiMoveCommand(direction, 0), slow[direction]);
        EXPECT_EQ(takahashiMoveCommand(direction, 1), fast[direction]);
    }
    EXPECT_EQ(takahashiMoveCommand(4, 0), "");
    EXPECT_EQ(takahashiMoveCommand(-1, 1), "");

    EXPECT_EQ(takahashiSpeedSetForRate(0), 0);
    EXPECT_EQ(takahashiSpeedSetForRate(1), 0);
    EXPECT_EQ(takahashiSpeedSetForRate(2), 0);
    EXPECT_EQ(takahashiSpeedSetForRate(3), 1);
    EXPECT_FALSE(takahashiSpeedSetForRate(4));
    EXPECT_FALSE(takahashiSpeedSetForRate(-1));
}

TEST(TakahashiWire, VersionReplyNeedsMoreThanTenBytesStartingWithV) {
    EXPECT_TRUE(isTakahashiVersionReply("vTemma PC v2.01\r\n"));
    EXPECT_TRUE(isTakahashiVersionReply("v1234567890"));  // 11 bytes
    EXPECT_FALSE(isTakahashiVersionReply("v123456789"));  // 10 bytes
    EXPECT_FALSE(isTakahashiVersionReply("xTemma PC v2.01\r\n"));
    EXPECT_FALSE(isTakahashiVersionReply(""));
}

TEST(TakahashiWire, ParsesPositionReply) {
    auto position = parseTakahashiPosition("E053015-20305WH\r\n");
    ASSERT_TRUE(position);
    EXPECT_NEAR(position->raHours, dms(5, 30, 15), 1e-12);
    EXPECT_NEAR(position->decDeg, -dms(20, 30, 30), 1e-12);  // 5 tenths of an arcminute = 30"
    EXPECT_EQ(position->pierFlag, 'W');

    position = parseTakahashiPosition("E000000 00000F");  // 14 bytes are enough
    ASSERT_TRUE(position);
    EXPECT_EQ(position->decDeg, 0.0);
    EXPECT_EQ(position->pierFlag, 'F');

    const char* bad[] = {"", "E053015-20305", "E05301x-20305WH\r\n", "E053015*20305WH\r\n", "E053015-2030.WH\r\n"};
    for (const char* reply : bad) EXPECT_FALSE(parseTakahashiPosition(reply)) << reply;
}

TEST(TakahashiWire, GotoAnswers) {
    struct Case {
        const char* reply;
        TakahashiGotoAnswer expected;
    };
    const Case cases[] = {
        {"R0\r\n", TakahashiGotoAnswer::Accepted},      {"R1\r\n", TakahashiGotoAnswer::WrongRa},
        {"R2\r\n", TakahashiGotoAnswer::WrongDec},      {"R3\r\n", TakahashiGotoAnswer::TooManyDigits},
        {"", TakahashiGotoAnswer::NoResponse},          {"R", TakahashiGotoAnswer::NoResponse},
        {"R9\r\n", TakahashiGotoAnswer::NoResponse},    {"X0\r\n", TakahashiGotoAnswer::NoResponse},
    };
    for (const Case& c : cases) EXPECT_EQ(parseTakahashiGotoAnswer(c.reply), c.expected) << c.reply;
}

}  // namespace
}  // namespace nocturnel
