// NexStar encodings against Celestron's NexStar communication protocol document: "E" answers
// "34AB,12CE#", where 12CE is 4814/65536 of a turn = 26.4441 degrees; the precise "e" answers
// "34AB0500,12CE0500#" of which only the upper 24 bits count ("12AB0500" = 26.252 degrees).
#include "scope/nexstar_format.h"

#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

// The middle of a 16-bit (or 24-bit) step, so truncation lands on the step itself.
double degreesOf16(uint32_t v) { return (v + 0.5) * 360.0 / 65536.0; }
double degreesOf24(uint32_t v) { return (v + 0.5) * 360.0 / 16777216.0; }

std::string bytes(std::initializer_list<int> values) {
    std::string s;
    for (int v : values) s += static_cast<char>(v);
    return s;
}

TEST(NexStarFormat, DocumentExamplesDecode) {
    NexStarAngles a = nexstarParseReply("34AB,12CE#");
    EXPECT_NEAR(a.decDeg, 26.4441, 5e-5);
    EXPECT_NEAR(a.raDeg, 0x34AB * 360.0 / 65536, 1e-9);

    NexStarAngles p = nexstarParsePreciseReply("34AB0500,12CE0500#");
    EXPECT_NEAR(p.raDeg, 0x34AB05 * 360.0 / 16777216, 1e-9);
    EXPECT_NEAR(p.decDeg, 0x12CE05 * 360.0 / 16777216, 1e-9);
    EXPECT_NEAR(nexstarParsePreciseReply("12AB0500,40000500#").raDeg, 26.252, 5e-4);
    EXPECT_NEAR(nexstarParsePreciseReply("12AB0500,40000500#").decDeg, 0x400005 * 360.0 / 16777216, 1e-9);

    NexStarAngles r = nexstarParseRawReply(bytes({0x34, 0xAB, 0x12, 0xCE}));
    EXPECT_DOUBLE_EQ(r.raDeg, a.raDeg);
    EXPECT_DOUBLE_EQ(r.decDeg, a.decDeg);
}

TEST(NexStarFormat, EncodingsTruncateToTheirWidth) {
    struct Case {
        double degrees;
        uint32_t expected16;
        uint32_t expected24;
    };
    const Case cases[] = {
        {0, 0x0000, 0x000000},         {90, 0x4000, 0x400000},   {180, 0x8000, 0x800000},
        {330, 0xEAAA, 0xEAAAAA},       {360, 0x0000, 0x000000},  {26.4441, 0x12CE, 0x12CE00},
        {359.999, 0xFFFF, 0xFFFFD1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(nexstarEncode16(c.degrees), c.expected16) << c.degrees;
        EXPECT_EQ(nexstarEncode24(c.degrees), c.expected24) << c.degrees;
    }
    EXPECT_EQ(nexstarHex16(degreesOf16(0x34AB)), "34AB");
    EXPECT_EQ(nexstarHex16(degreesOf16(0x00FE)), "00FE");
    EXPECT_EQ(nexstarHex24(degreesOf24(0x12CE05)), "12CE05");
    EXPECT_EQ(nexstarHex16(std::numeric_limits<double>::quiet_NaN()), "0000");
    for (uint32_t v : {0u, 1u, 0x34ABu, 0xFFFFu}) EXPECT_EQ(nexstarEncode16(degreesOf16(v)), v);
    for (uint32_t v : {0u, 1u, 0x34AB05u, 0xFFFFFFu}) EXPECT_EQ(nexstarEncode24(degreesOf24(v)), v);
}

TEST(NexStarFormat, HexPairsAreReadTwoCharactersAtATime) {
    struct Case {
        const char* text;
        uint32_t expected;
    };
    const Case cases[] = {
        {"34AB", 0x34AB}, {"34ab", 0x34AB}, {"12CE05", 0x12CE05},
        {"G4AB", 0x04AB},  // non-hex first character: the second's value alone
        {"3GAB", 0x03AB},  // non-hex second character is passed over
        {"GGAB", 0x00AB}, {"", 0}, {"A", 0xA},
    };
    for (const Case& c : cases) EXPECT_EQ(nexstarReadHex(c.text), c.expected) << c.text;
}

TEST(NexStarFormat, ShortAndGarbledRepliesDecodeWithoutFault) {
    for (const std::string& reply : {std::string(""), std::string("34"), std::string("34AB,"), std::string("\xFF\xFF\xFF"), std::string("zzzz,zzzz#"), std::string(40, '#')}) {
        NexStarAngles a = nexstarParseReply(reply);
        NexStarAngles p = nexstarParsePreciseReply(reply);
        NexStarAngles r = nexstarParseRawReply(reply);
        for (double v : {a.raDeg, a.decDeg, p.raDeg, p.decDeg, r.raDeg, r.decDeg}) {
            EXPECT_TRUE(v >= 0 && v < 360) << reply;
        }
    }
    EXPECT_NEAR(nexstarParseReply("34AB,1").decDeg, 0x1 * 360.0 / 65536, 1e-12);  // a field cut short
}

TEST(NexStarFormat, DeclinationFoldsBandByBand) {
    struct Case {
        double angle;
        double dec;
    };
    const Case cases[] = {
        {45, 45},   {90, 90},  {100, 80}, {180, 0},  // mirror band
        {181, -89}, {200, -70}, {270, 0},            // second band, kept as built
        {271, -89}, {330, -30}, {360, 0},            // third band
    };
    for (const Case& c : cases) EXPECT_DOUBLE_EQ(nexstarFoldDec(c.angle), c.dec) << c.angle;

    EXPECT_DOUBLE_EQ(nexstarDecAngleForGoto(-30), 330);
    EXPECT_DOUBLE_EQ(nexstarDecAngleForGoto(-90), 270);
    EXPECT_DOUBLE_EQ(nexstarDecAngleForGoto(-91), -91);
    EXPECT_DOUBLE_EQ(nexstarDecAngleForGoto(0), 0);
    EXPECT_DOUBLE_EQ(nexstarDecAngleForGoto(41.5), 41.5);
}

TEST(NexStarFormat, GotoCommands) {
    const double ra = degreesOf16(0x34AB);
    const double dec = degreesOf16(0x12CE);
    EXPECT_EQ(nexstarGotoCommand(ra, dec), "R34AB,12CE");
    EXPECT_EQ(nexstarGotoCommand(ra, 330), "R34AB,EAAA");
    EXPECT_EQ(nexstarPreciseGotoCommand(degreesOf24(0x34AB05), degreesOf24(0x12CE05)), "r34AB0500,12CE0500");
    EXPECT_EQ(nexstarPreciseGotoCommand(0, 0).size(), 18u);
    EXPECT_EQ(nexstarRawGotoCommand(ra, dec), bytes({'R', 0x34, 0xAB, 0x12, 0xCE}));
    EXPECT_EQ(nexstarRawGotoCommand(0, 0), std::string("R\0\0\0\0", 5));
}

TEST(NexStarFormat, MotionPackets) {
    EXPECT_EQ(nexstarRateCode(0), 9);
    EXPECT_EQ(nexstarRateCode(1), 7);
    EXPECT_EQ(nexstarRateCode(2), 4);
    EXPECT_EQ(nexstarRateCode(3), 2);
    EXPECT_EQ(nexstarRateCode(4), 0);
    EXPECT_EQ(nexstarRateCode(-1), 0);

    using P = NexStarPacket;
    EXPECT_EQ(nexstarMovePacket(0, 7), (P{'P', 0x02, 0x11, 0x24, 7, 0, 0, 0}));  // north
    EXPECT_EQ(nexstarMovePacket(1, 7), (P{'P', 0x02, 0x11, 0x25, 7, 0, 0, 0}));  // south
    EXPECT_EQ(nexstarMovePacket(2, 9), (P{'P', 0x02, 0x10, 0x25, 9, 0, 0, 0}));  // east
    EXPECT_EQ(nexstarMovePacket(3, 2), (P{'P', 0x02, 0x10, 0x24, 2, 0, 0, 0}));  // west
    for (int d : {0, 1}) EXPECT_EQ(nexstarStopPacket(d), (P{'P', 0x02, 0x11, 0x24, 0, 0, 0, 0}));
    for (int d : {2, 3}) EXPECT_EQ(nexstarStopPacket(d), (P{'P', 0x02, 0x10, 0x24, 0, 0, 0, 0}));

    // Old GT: speed = rate code x 100000 in three bytes (900000 = 0x0DBBA0).
    EXPECT_EQ(nexstarOldGtMovePacket(0, 9), (P{'P', 0x04, 0x11, 0x06, 0x0D, 0xBB, 0xA0, 0}));
    EXPECT_EQ(nexstarOldGtMovePacket(2, 2), (P{'P', 0x04, 0x10, 0x07, 0x03, 0x0D, 0x40, 0}));
    EXPECT_EQ(nexstarOldGtStopPacket(1), (P{'P', 0x04, 0x11, 0x07, 0, 0, 0, 0}));
}

}  // namespace
}  // namespace nocturnel
