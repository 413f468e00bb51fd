// Byte-level checks of the LX200 texts. Reply shapes follow Meade's LX200 command set:
// low precision "HH:MM.T#" (05:47.4) and "sDD*MM#" (+45*59), high precision "HH:MM:SS#"
// (13:15:36) and "sDD*MM:SS#" (+45*59:45), '*' being the byte 223 on the wire.
#include "scope/lx200_format.h"

#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

const std::string kDeg(1, kLx200DegreeByte);

double hms(double h, double m, double s) { return h + m / 60 + s / 3600; }

TEST(Lx200Parse, RepliesReadAsAngles) {
    struct Case {
        std::string reply;
        double expected;
        const char* what;
    };
    const Case cases[] = {
        {"05:34.5#", hms(5, 34, 30), "low-precision RA, tenths of a minute"},
        {"05:47.4#", hms(5, 47, 24), "Meade's low-precision example"},
        {"13:15:36#", hms(13, 15, 36), "Meade's high-precision example"},
        {"+22" + kDeg + "00#", 22.0, "low-precision Dec with the degree byte"},
        {"+45*59#", hms(45, 59, 0), "Meade's sDD*MM example"},
        {"+45*59:45#", hms(45, 59, 45), "Meade's long-format example"},
        {"-00" + kDeg + "12#", -0.2, "negative Dec below one degree keeps its sign"},
        {"-12" + kDeg + "30'00#", -12.5, "Autostar apostrophe before the seconds"},
        {"254*09#", hms(254, 9, 0), "azimuth DDD*MM"},
        {"24:00:00#", 24.0, "24 h is not wrapped"},
        {"12:34.56#", 12 + 34 / 60.0 + 336 / 3600.0, "two characters after the point are read as tenths"},
        {"12", 12.0, "a lone field"},
    };
    for (const Case& c : cases) {
        double value = -999;
        EXPECT_TRUE(parseLx200Sexagesimal(c.reply, value)) << c.what;
        EXPECT_NEAR(value, c.expected, 1e-9) << c.what;
        EXPECT_NEAR(parseLx200Value(c.reply), c.expected, 1e-9) << c.what;
    }
}

TEST(Lx200Parse, NonSexagesimalTextFallsBackToADecimalNumber) {
    double value = 0;
    EXPECT_FALSE(parseLx200Sexagesimal("", value));
    EXPECT_FALSE(parseLx200Sexagesimal("12.5#", value));
    EXPECT_DOUBLE_EQ(parseLx200Value("12.5#"), 12.5);
    EXPECT_DOUBLE_EQ(parseLx200Value("-3.25"), -3.25);
    EXPECT_DOUBLE_EQ(parseLx200Value(""), 0.0);
    // Noise parses to something finite rather than failing loudly or running off the end.
    for (std::string noise : {"#", "::::", "\xFF\xFE", "99999999999999999999:9999999999999:99999999999", "+", "-:"})
        EXPECT_TRUE(std::isfinite(parseLx200Value(noise))) << noise;
}

TEST(Lx200Commands, GotoSetCommands) {
    struct Case {
        std::string command;
        std::string expected;
        const char* what;
    };
    const Case cases[] = {
        {lx200RaSetCommand(hms(23, 59, 59.9), true), "#:Sr 24:00:00#", "half a second rounds up to 24h, unwrapped"},
        {lx200RaSetCommand(hms(10, 20, 35), true), "#:Sr 10:20:35#", "high-precision RA"},
        {lx200RaSetCommand(hms(5, 34, 32.6), true), "#:Sr 05:34:33#", "half a second rounds up"},
        {lx200RaSetCommand(hms(5, 34, 30), false), "#:Sr 05:34.5#", "low-precision RA in tenths of a minute"},
        {lx200RaSetCommand(hms(5, 34, 26.9), false), "#:Sr 05:34.4#", "tenths are truncated"},
        {lx200RaSetCommand(0, true), "#:Sr 00:00:00#", "zero"},
        {lx200DecSetCommand(-0.2, false), ":Sd -00" + kDeg + "12#", "small negative Dec keeps '-' and the degree byte"},
        {lx200DecSetCommand(hms(45, 59, 45), true), ":Sd +45" + kDeg + "59:45#", "high-precision Dec"},
        {lx200DecSetCommand(-hms(45, 59, 45), true), ":Sd -45" + kDeg + "59:45#", "negative high-precision Dec"},
        {lx200DecSetCommand(hms(10, 59, 59.6), true), ":Sd +11" + kDeg + "00:00#", "half an arc second carries into the degrees"},
        {lx200DecSetCommand(0, true), ":Sd +00" + kDeg + "00:00#", "zero is positive"},
        {lx200DecSetCommand(-90, false), ":Sd -90" + kDeg + "00#", "south pole"},
        {lx200SyncRaSetCommand(hms(10, 20, 35), true), "#:Sr 10:20.35#", "sync quirk: seconds in the tenths field"},
        {lx200SyncRaSetCommand(hms(10, 20, 35), false), "#:Sr 10:20.5#", "low-precision sync is the goto's"},
        {lx200SyncRaSetCommand(hms(10, 20, 5), true), "#:Sr 10:20.5#", "quirk: 5 seconds are not padded"},
    };
    for (const Case& c : cases) EXPECT_EQ(c.command, c.expected) << c.what;
}

TEST(Lx200Commands, NonFiniteTargetsStillMakeWellFormedCommands) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(lx200RaSetCommand(nan, true), "#:Sr 00:00:00#");
    EXPECT_EQ(lx200DecSetCommand(nan, false), ":Sd +00" + kDeg + "00#");
    EXPECT_FALSE(lx200RaSetCommand(std::numeric_limits<double>::infinity(), true).empty());
}

TEST(Lx200Commands, RatesDirectionsAndStops) {
    const char* rates[] = {"#:RS#", "#:RM#", "#:RC#", "#:RG#"};
    const char* moves[] = {"#:Mn#", "#:Ms#", "#:Me#", "#:Mw#"};
    const char* stops[] = {"#:Qn#", "#:Qs#", "#:Qe#", "#:Qw#"};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(lx200RateCommand(i), rates[i]);
        EXPECT_EQ(lx200MoveCommand(i), moves[i]);
        EXPECT_EQ(lx200StopCommand(i), stops[i]);
        EXPECT_EQ(lx200StopCommand(i).size(), 5u);
    }
    for (int bad : {-1, 4, 100}) {
        EXPECT_TRUE(lx200RateCommand(bad).empty());
        EXPECT_TRUE(lx200MoveCommand(bad).empty());
        EXPECT_TRUE(lx200StopCommand(bad).empty());
    }
}

TEST(Lx200Commands, GotoAnswers) {
    EXPECT_EQ(lx200GotoAnswerCode('0'), 0);
    EXPECT_EQ(lx200GotoAnswerCode('1'), 1);
    EXPECT_EQ(lx200GotoAnswerCode('2'), 2);
    for (char other : {'4', '3', '#', '\0', 'E'}) EXPECT_EQ(lx200GotoAnswerCode(other), -1) << other;
}

// The simulator's replies in Meade's documented shapes.
TEST(Lx200Replies, DocumentedShapes) {
    EXPECT_EQ(lx200RaReply(hms(13, 15, 36), true), "13:15:36#");
    EXPECT_EQ(lx200RaReply(hms(5, 47, 24), false), "05:47.4#");
    EXPECT_EQ(lx200DecReply(hms(45, 59, 45), true), "+45" + kDeg + "59:45#");
    EXPECT_EQ(lx200DecReply(-0.2, false), "-00" + kDeg + "12#");
}

}  // namespace
}  // namespace nocturnel
