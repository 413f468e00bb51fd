#include "shell/http_params.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace nocturnel {
namespace {

TEST(RequestNumbers, WholeAndRealAcceptOnlyPlainDecimalText) {
    struct Case {
        const char* text;
        bool whole, real;
    };
    for (const Case c : {Case{"42", true, true}, Case{"+42", true, true}, Case{"-42", true, true},
                         Case{"4.5", false, true}, Case{"-1e3", false, true}, Case{".5", false, true},
                         Case{"+-1", false, false}, Case{"-+1", false, false}, Case{"++1", false, false},
                         Case{"--1", false, false}, Case{"", false, false}, Case{"+", false, false},
                         Case{"nan", false, false}, Case{"1e999", false, false}, Case{"0x10", false, false},
                         Case{" 1", false, false}, Case{"12345678901", false, true}}) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(readWholeNumber(c.text, LONG_MIN, LONG_MAX).has_value(), c.whole);
        EXPECT_EQ(readRealNumber(c.text, -1e300, 1e300).has_value(), c.real);
    }
    EXPECT_EQ(readRealNumber("+-1", -10, 10), std::nullopt) << "a second sign was once read as -1";
    EXPECT_EQ(readWholeNumber("13", 0, 12), std::nullopt);
}

TEST(RequestMoments, FieldsAreDigitsOnly) {
    const auto m = readMomentText("2026-02-28T23:59:58");
    ASSERT_TRUE(m);
    EXPECT_EQ(m->year, 2026);
    EXPECT_EQ(m->day, 28);
    EXPECT_EQ(m->second, 58);
    EXPECT_TRUE(readMomentText("2026-02-28 23:59"));
    for (const char* bad : {"2026-+1-05T10:30", "2026-01-05T-0:30", "+026-01-05T10:30", "2026-01-05T10:+9",
                            "2026-01-05T10:30:-0", "2026-02-29T10:30", "2026-01-05X10:30", "2026-1-05T10:30"}) {
        SCOPED_TRACE(bad);
        EXPECT_EQ(readMomentText(bad), std::nullopt);
    }
}

}  // namespace
}  // namespace nocturnel
