#include "scope/encoder_box_wire.h"

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

TEST(EncoderBoxWire, SetupBytesPerBox) {
    struct Case {
        int driveCode;
        std::string bytes;
        EncoderSetupReply reply;
    };
    // Az resolution -32127 (reversed), Alt resolution 4000: absolute values are sent.
    const Case cases[] = {
        {3, "Z32127\t04000\n", EncoderSetupReply::AtLeastOneByte},
        {21, "Z\t+32127\t+04000\n", EncoderSetupReply::AtLeastOneByte},
        {12, "I32767\t32767\r", EncoderSetupReply::None},  // the box's own fixed numbers
        {4, std::string("z\x7F\x7D\xA0\x0F", 5), EncoderSetupReply::OneByteThenAck},  // 32127 = 0x7D7F, 4000 = 0x0FA0
        {1, "", EncoderSetupReply::None},
        {11, "", EncoderSetupReply::None},
        {16, "", EncoderSetupReply::None},
    };
    for (const Case& c : cases) {
        const EncoderSetup setup = encoderSetupFor(c.driveCode, -32127, 4000);
        EXPECT_EQ(setup.bytes, c.bytes) << "code " << c.driveCode;
        EXPECT_EQ(setup.reply, c.reply) << "code " << c.driveCode;
    }
    EXPECT_EQ(encoderSetupFor(4, 0, 0).bytes, std::string("z\0\0\0\0", 5));  // NUL bytes are sent, not dropped
}

TEST(EncoderBoxWire, CountsToDegrees) {
    struct Case {
        long count, resolution, offset;
        bool altitude;
        double expectedDeg;
        const char* what;
    };
    const Case cases[] = {
        {6000, 8000, 0, true, -90.0, "Alt 3R/4 reads -90"},
        {2000, 8000, 0, true, 90.0, "Alt R/4 reads +90"},
        {4000, 8000, 0, true, 180.0, "Alt exactly R/2 stays positive"},
        {4001, 8000, 0, true, -179.955, "Alt just past R/2 turns negative"},
        {6000, 8000, 0, false, 270.0, "Az is never signed"},
        {2000, -8000, 0, false, 270.0, "negative resolution reverses Az: R - count"},
        {2000, -8000, 0, true, -90.0, "negative resolution reverses Alt"},
        {100, 8000, 100, false, 0.0, "offset subtracted"},
        {0, 8000, 100, false, 355.5, "below zero wraps up by one turn"},
        {18000, 8000, 0, false, 90.0, "more than a turn wraps down"},
        {-30000, 8000, 0, false, 90.0, "several turns below zero"},
    };
    for (const Case& c : cases) {
        auto deg = countsToDegrees(c.count, c.resolution, c.offset, c.altitude);
        ASSERT_TRUE(deg) << c.what;
        EXPECT_NEAR(*deg, c.expectedDeg, 1e-9) << c.what;
    }
    EXPECT_FALSE(countsToDegrees(100, 0, 0, false));
    EXPECT_FALSE(countsToDegrees(100, 0, 0, true));
}

TEST(EncoderBoxWire, OffsetMakesTheReadingShowTheExpectedAngle) {
    struct Case {
        long azCount, altCount, resolution;
        double expectedAz, expectedAlt;
    };
    const Case cases[] = {
        {1000, 500, 8192, 123.4, 45.0},
        {7000, 7900, -8192, 10.0, -5.0},
        {0, 0, 32127, 359.0, 89.0},
        {-2500, 3000, 4000, 200.0, -30.0},
    };
    for (const Case& c : cases) {
        const double azRaw = *countsToDegrees(c.azCount, c.resolution, 0, false);
        const double altRaw = *countsToDegrees(c.altCount, c.resolution, 0, true);
        const long azOffset = encoderOffsetFor(azRaw, c.expectedAz, c.resolution);
        const long altOffset = encoderOffsetFor(altRaw, c.expectedAlt, c.resolution);
        const double step = 360.0 / std::labs(c.resolution);
        double az = *countsToDegrees(c.azCount, c.resolution, azOffset, false);
        if (az - c.expectedAz > 180) az -= 360;
        EXPECT_NEAR(az, c.expectedAz, step) << c.azCount;
        EXPECT_NEAR(*countsToDegrees(c.altCount, c.resolution, altOffset, true), c.expectedAlt, step) << c.altCount;
    }
    EXPECT_EQ(encoderOffsetFor(100.0, 90.0, 3600), 100);
    EXPECT_EQ(encoderOffsetFor(10.05, 10.0, 3600), 0);    // whole counts, truncated
    EXPECT_EQ(encoderOffsetFor(10.0, 10.15, -3600), -1);  // |resolution|; truncated toward zero
}

TEST(EncoderBoxWire, ParsesTextCounts) {
    auto counts = parseEncoderCounts("+01234\t-00500");
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->az, 1234);
    EXPECT_EQ(counts->alt, -500);

    counts = parseEncoderCounts("  1234\t   -50\r");
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->az, 1234);
    EXPECT_EQ(counts->alt, -50);

    const char* bad[] = {"", "+01234\t-0050", "+01a34\t-00500", "+01234\t      ", "++1234\t-00500", "      \t+00001"};
    for (const char* reply : bad) EXPECT_FALSE(parseEncoderCounts(reply)) << reply;
}

TEST(EncoderBoxWire, ParsesDaveEkCounts) {
    auto counts = parseDaveEkCounts(std::string("\x10\x27\x20\x4E", 4));
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->alt, 10000);
    EXPECT_EQ(counts->az, 20000);

    counts = parseDaveEkCounts(std::string("\xFF\xFF\x00\x80", 4));  // bytes are unsigned
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->alt, 65535);
    EXPECT_EQ(counts->az, 32768);

    EXPECT_FALSE(parseDaveEkCounts(std::string("\x10\x27\x20", 3)));
}

TEST(EncoderBoxWire, SimulatedCountsAdvanceAndWrap) {
    EXPECT_EQ(advanceSimulatedCount(0, 30000, false), 100);
    EXPECT_EQ(advanceSimulatedCount(0, -30000, false), 100);
    EXPECT_EQ(advanceSimulatedCount(14900, 30000, false), 15000);     // exactly half: kept
    EXPECT_EQ(advanceSimulatedCount(14950, 30000, false), -14950);    // past half: one turn back
    EXPECT_EQ(advanceSimulatedCount(7450, 30000, true), -22450);      // Alt limit is a quarter
    EXPECT_EQ(advanceSimulatedCount(7400, 30000, true), 7500);
}

}  // namespace
}  // namespace nocturnel
