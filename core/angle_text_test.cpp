#include "core/angle_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

// Expected texts are written with "°" for readability and turned into the program's
// single Latin-1 byte here.
std::string latin1(std::string s) {
    for (std::size_t p; (p = s.find("\xC2\xB0")) != std::string::npos;) s.replace(p, 2, 1, kDegreeSign);
    return s;
}

constexpr FixedAngle kUnit = kFixedAngleUnit;
FixedAngle fixedOf(int whole, int minutes, int seconds) {
    const int64_t v = static_cast<int64_t>(whole) * kUnit + (static_cast<int64_t>(minutes) * kUnit) / 60 +
                      (static_cast<int64_t>(seconds) * kUnit) / 3600;
    return static_cast<FixedAngle>(v);
}

struct DoubleCase { double value; int style; const char* text; const char* what; };
struct FixedCase { FixedAngle value; int style; const char* text; const char* what; };

TEST(HoursToText, StylesWrapRoundingAndCarries) {
    const DoubleCase cases[] = {
        {23.75, 0, "23.7500", "decimal"},
        {23.75, 1, "23:45:00", "colon"},
        {23.75, 2, "23h45m00", "letters"},
        {23.75, 3, "23h45.0", "decimal minutes"},
        {23.99999, 2, "00h00m00", "seconds round to 60, carry through minutes and hours, wrap at 24"},
        {23.99999, 1, "00:00:00", "same carry in the colon style"},
        {-1.5, 2, "22h30m00", "negative hours gain 24"},
        {-25.5, 2, "22h30m00", "more than a day negative"},
        {49.25, 2, "01h15m00", "more than two days"},
        {24.0, 0, "24.0000", "an exact 24 stays in the decimal style"},
        {24.0, 2, "00h00m00", "an exact 24 wraps in the sexagesimal styles"},
        {5.75, 3, "05h45.0", "tenth of a minute"},
        {5.0 + 45.5 / 60, 3, "05h45.5", "+5 s rounds 30 s to the tenth"},
        {5.0 + 45.0 / 60 + 54.0 / 3600, 3, "05h45.9", "54 s + 5 = 59 s"},
        {5.0 + 45.0 / 60 + 55.0 / 3600, 3, "05h46.0", "55 s + 5 carries into the minute"},
        {12.0 + 34.0 / 60 + 56.4 / 3600, 1, "12:34:56", "seconds round down below .5"},
        {12.0 + 34.0 / 60 + 56.6 / 3600, 1, "12:34:57", "seconds round up from .5"},
        {12.0 + 59.0 / 60 + 59.7 / 3600, 2, "13h00m00", "seconds and minutes carry into the hour"},
    };
    char buf[kAngleTextSize];
    for (const auto& c : cases) EXPECT_STREQ(hoursToTextStyle(c.value, c.style, buf), c.text) << c.what;
}

TEST(HoursToText, UnknownStyleShowsLetterFormAndTheMessage) {
    MessageCapture capture;
    char buf[kAngleTextSize];
    EXPECT_STREQ(hoursToTextStyle(6.5, 7, buf), "06h30m00");
    ASSERT_EQ(capture.messages().size(), 1u);
    EXPECT_EQ(capture.lastTitle(), "HMSToStr Unkown hour format");
    EXPECT_STREQ(hoursToTextStyle(6.5, -1, buf), "06h30m00");
    EXPECT_EQ(capture.messages().size(), 2u);
}

TEST(DegreesToText, StylesSignAndCarries) {
    const DoubleCase cases[] = {
        {-70.75, 0, "-70.7500", "decimal"},
        {-70.75, 1, "-70:45:00", "colon, negative"},
        {-70.75, 2, "-70°45'00", "degree sign, negative"},
        {-70.75, 3, "-70°45.0", "decimal minutes, negative"},
        {70.75, 2, "70°45'00", "positive has no sign"},
        {-0.5, 2, "-00°30'00", "negative below one degree keeps its sign"},
        {5.0 + 1.0 / 60 + 59.6 / 3600, 2, "05°01'00", "seconds wrap by fmod without a minute carry"},
        {12.0 + 10.0 / 60 + 55.0 / 3600, 3, "12°11.0", "55 s + 5 carries into the minute"},
        {12.0 + 59.0 / 60 + 56.0 / 3600, 3, "13°00.0", "and through the minutes into the degree"},
        {359.0 + 59.0 / 60 + 57.0 / 3600, 3, "00°00.0", "the degree wraps at 360"},
        {400.25, 1, "40:15:00", "degrees above 360 wrap"},
        {89.999, 1, "89:59:56", "just below 90"},
    };
    char buf[kAngleTextSize];
    for (const auto& c : cases) EXPECT_EQ(std::string(degreesToTextStyle(c.value, c.style, buf)), latin1(c.text)) << c.what;
}

TEST(DegreesToText, UnknownStyleIsTheSilentColonForm) {
    MessageCapture capture;
    char buf[kAngleTextSize];
    EXPECT_STREQ(degreesToTextStyle(-12.5, 9, buf), "-12:30:00");
    EXPECT_TRUE(capture.messages().empty());
}

TEST(FixedHoursToText, RoundingByFiftyUnitsAndNoCarry) {
    const FixedCase cases[] = {
        {5 * kUnit, 0, "05.0", "thousandths of an hour without padding"},
        {5 * kUnit + kUnit / 2, 0, "05.500", "half an hour"},
        {5 * kUnit + kUnit / 20, 0, "05.50", "fifty thousandths print as .50"},
        {fixedOf(23, 45, 0), 1, "23:45:00", "colon"},
        {fixedOf(23, 45, 0), 2, "23h45m00", "letters"},
        {fixedOf(23, 45, 30), 3, "23h45.50", "hundredths of a minute"},
        {fixedOf(23, 45, 59), 3, "23h45.98", "no +5 rounding: 59 s is .98"},
        {24 * kUnit - 10, 2, "24h00m00", "+50 units reach 24 h and nothing wraps"},
        {24 * kUnit - 100, 2, "23h59m59", "below the fifty-unit rounding"},
        {0, 2, "00h00m00", "zero"},
    };
    char buf[kAngleTextSize];
    for (const auto& c : cases) EXPECT_STREQ(fixedHoursToTextStyle(c.value, c.style, buf), c.text) << c.what;
}

TEST(FixedHoursToText, UnknownStyleShowsItsMessage) {
    MessageCapture capture;
    char buf[kAngleTextSize];
    EXPECT_STREQ(fixedHoursToTextStyle(fixedOf(1, 2, 3), 4, buf), "01h02m03");
    EXPECT_EQ(capture.lastTitle(), "HmsFixToStr Unknown hour format.");
}

TEST(FixedDegreesToText, SignRoundingAndCarries) {
    const FixedCase cases[] = {
        {-fixedOf(70, 45, 0), 0, "-70.750", "decimal with sign"},
        {-fixedOf(70, 45, 0), 1, "-70:45:00", "colon"},
        {-fixedOf(70, 45, 0), 2, "-70°45'00", "degree sign"},
        {-fixedOf(70, 45, 0), 3, "-70°45.0", "decimal minutes"},
        {fixedOf(10, 59, 55), 3, "11°00.0", "+5 s carries through minutes into degrees"},
        {fixedOf(359, 59, 59), 3, "00°00.0", "and wraps at 360"},
        {fixedOf(12, 30, 30), 3, "12°30.5", "thirty seconds are half a minute"},
        {-(kUnit / 2), 2, "-00°30'00", "sign below one degree"},
        {fixedOf(45, 0, 0), 6, "45:00:00", "unknown style: colon form"},
        {std::numeric_limits<FixedAngle>::min(), 1, "-133:51:05", "the most negative value does not overflow (7333 degrees wrap)"},
    };
    char buf[kAngleTextSize];
    for (const auto& c : cases)
        EXPECT_EQ(std::string(fixedDegreesToTextStyle(c.value, c.style, buf)), latin1(c.text)) << c.what;
}

TEST(AngleText, PreferenceStylesAreUsed) {
    const Preferences saved = prefs();
    prefs().raFormat = 1;
    prefs().decFormat = 3;
    EXPECT_EQ(hoursText(6.25), "06:15:00");
    EXPECT_EQ(degreesText(-6.25), latin1("-06°15.0"));
    char buf[kAngleTextSize];
    EXPECT_STREQ(fixedHoursToText(fixedOf(6, 15, 0), buf), "06:15:00");
    EXPECT_EQ(std::string(fixedDegreesToText(fixedOf(6, 15, 0), buf)), latin1("06°15.0"));
    prefs() = saved;
}

TEST(AngleText, HugeValuesGiveAReadableTextWithoutLooping) {
    char buf[kAngleTextSize];
    for (double v : {1e300, -1e300, 1e15, -4e9}) {
        for (int style = 0; style <= 3; ++style) {
            if (style > 0) {
                const auto h = parseAngleText(hoursToTextStyle(v, style, buf));
                ASSERT_TRUE(h.has_value()) << buf;
                EXPECT_LE(*h, 24.0) << buf;
            }
            degreesToTextStyle(v, style, buf);
            EXPECT_LT(std::string(buf).size(), kAngleTextSize);
        }
    }
}

TEST(AngleText, NonFiniteValuesHaveAPlaceholder) {
    char buf[kAngleTextSize];
    EXPECT_STREQ(hoursToTextStyle(std::nan(""), 2, buf), "--");
    EXPECT_STREQ(degreesToTextStyle(std::numeric_limits<double>::infinity(), 1, buf), "--");
    EXPECT_FALSE(parseAngleText("--").has_value());
}

TEST(ParseAngleText, TypedAndFormattedTexts) {
    struct Case { const char* text; double value; };
    const Case cases[] = {
        {"23.75", 23.75}, {"23:45:00", 23.75}, {"23h45m00", 23.75}, {"23h45.0", 23.75},
        {"-70:45:00", -70.75}, {"-70°45'00", -70.75}, {"-70°45.0", -70.75}, {"12 34 56", 12 + 34 / 60.0 + 56 / 3600.0},
        {"  +5:30", 5.5}, {"-00°30'00", -0.5}, {"05h45.5", 5 + 45.5 / 60}, {"12:34:56.5", 12 + 34 / 60.0 + 56.5 / 3600},
        {"12h34m56s", 12 + 34 / 60.0 + 56 / 3600.0}, {"10d30'", 10.5}, {"7", 7.0}, {"-0.25", -0.25},
        {"23h45.50", 23 + 45.5 / 60},
    };
    for (const auto& c : cases) {
        const auto v = parseAngleText(latin1(c.text));
        ASSERT_TRUE(v.has_value()) << c.text;
        EXPECT_NEAR(*v, c.value, 1e-12) << c.text;
    }
    // The UTF-8 degree sign is read as well.
    const auto utf8 = parseAngleText("-70\xC2\xB0" "45'00");
    ASSERT_TRUE(utf8.has_value());
    EXPECT_NEAR(*utf8, -70.75, 1e-12);
}

TEST(ParseAngleText, RejectsUnreadableText) {
    for (const char* text : {"", " ", "-", "abc", "12:60:00", "12:30:75", "12.5:30", "1:2:3:4", "12h30x",
                             "12::30", "1e5", "12 34 56 78", "--5", "12:", ":30"}) {
        EXPECT_FALSE(parseAngleText(text).has_value()) << text;
    }
}

TEST(ParseAngleText, ReadsBackEveryStyleOfTheFormatters) {
    char buf[kAngleTextSize];
    for (double hours = 0.0; hours < 24.0; hours += 0.7391) {
        for (int style = 0; style <= 3; ++style) {
            const auto v = parseAngleText(hoursToTextStyle(hours, style, buf));
            ASSERT_TRUE(v.has_value()) << buf;
            // Style 3 keeps a tenth of a minute (0.1/60 h); the others a second or better.
            EXPECT_NEAR(*v, hours, style == 3 ? 0.1 / 60 : 1.0 / 3600) << buf;
        }
    }
    for (double deg = -89.9; deg < 90.0; deg += 3.137) {
        for (int style = 0; style <= 3; ++style) {
            const auto v = parseAngleText(degreesToTextStyle(deg, style, buf));
            ASSERT_TRUE(v.has_value()) << buf;
            EXPECT_NEAR(*v, deg, style == 3 ? 0.1 / 60 : 1.0 / 3600) << buf;
        }
    }
}

TEST(ToUtf8, DegreeSignAndPlainText) {
    EXPECT_EQ(toUtf8(latin1("-70°45'00")), "-70\xC2\xB0" "45'00");
    EXPECT_EQ(toUtf8("23h45m00"), "23h45m00");
    EXPECT_EQ(toUtf8("\xE9"), "\xC3\xA9");
    EXPECT_EQ(toUtf8(""), "");
}

}  // namespace
}  // namespace nocturnel
