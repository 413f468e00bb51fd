#include "scope/skycommander_wire.h"

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

TEST(SkyCommanderWire, TargetCommand) {
    struct Case {
        double first, second;
        const char* expected;
    };
    const Case cases[] = {
        {5.5, -3.25, "L0 05.500 -03.250\n"},
        {12.5, 45.0, "L0 12.500 +45.000\n"},
        {12.5, 0.0, "L0 12.500 +00.000\n"},        // 0 goes with '+'
        {0.0, -45.0, "L0 00.000 -45.000\n"},
        {23.9999, -89.99949, "L0 24.000 -89.999\n"},  // three decimals, rounded
        {10.0, 10.0, "L0 10.000 +10.000\n"},        // exactly 10: no extra zero
        {9.0004, -9.0004, "L0 09.000 -09.000\n"},
        {123.456, -123.456, "L0 123.456 -123.456\n"},  // wider numbers keep all their digits
    };
    for (const Case& c : cases) EXPECT_EQ(skyCommanderTargetCommand(c.first, c.second), c.expected) << c.expected;
}

TEST(SkyCommanderWire, ParsesPositionReply) {
    auto position = parseSkyCommanderPosition("005.500 -03.250\r");
    ASSERT_TRUE(position);
    EXPECT_DOUBLE_EQ(position->first, 5.5);
    EXPECT_DOUBLE_EQ(position->second, -3.25);

    position = parseSkyCommanderPosition(" 12.5001+45.0000");  // byte 7 is dropped whatever it is
    ASSERT_TRUE(position);
    EXPECT_DOUBLE_EQ(position->first, 12.5);
    EXPECT_DOUBLE_EQ(position->second, 45.0);

    const char* bad[] = {"", "005.500 -03.25", "abc.def -03.250\r", "005.500 --3.250\r", "005.5x0 -03.250\r"};
    for (const char* reply : bad) EXPECT_FALSE(parseSkyCommanderPosition(reply)) << reply;
}

}  // namespace
}  // namespace nocturnel
