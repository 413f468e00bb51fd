#include "core/date_dialog.h"

#include <gtest/gtest.h>

#include "core/time.h"
#include "settings/message.h"

namespace nocturnel {
namespace {

struct Fields { int y, mo, d, h, mi, s; };

Fields fieldsOf(const DateDialog& d) { return {d.year, d.month, d.day, d.hour, d.minute, d.second}; }
void expectFields(const DateDialog& d, Fields f, const char* what) {
    EXPECT_EQ(d.year, f.y) << what;
    EXPECT_EQ(d.month, f.mo) << what;
    EXPECT_EQ(d.day, f.d) << what;
    EXPECT_EQ(d.hour, f.h) << what;
    EXPECT_EQ(d.minute, f.mi) << what;
    EXPECT_EQ(d.second, f.s) << what;
}

TEST(DateDialog, SwitchingBetweenLocalAndUt) {
    struct Case { ObservingMoment local; int offset; Fields ut; const char* what; };
    const Case cases[] = {
        {{2024, 1, 1, 0, 30, 15}, 60, {2023, 12, 31, 23, 30, 15}, "back over the new year"},
        {{2024, 3, 1, 1, 0, 0}, 120, {2024, 2, 29, 23, 0, 0}, "into a leap day"},
        {{2023, 12, 31, 20, 0, 0}, -300, {2024, 1, 1, 1, 0, 0}, "west of Greenwich"},
        {{2024, 6, 15, 12, 0, 0}, 0, {2024, 6, 15, 12, 0, 0}, "at Greenwich"},
    };
    for (const auto& c : cases) {
        DateDialog d = openDateDialog(c.local);
        setDateDialogShowsUt(d, true, c.offset);
        EXPECT_TRUE(d.showsUt);
        expectFields(d, c.ut, c.what);
        setDateDialogShowsUt(d, true, c.offset);  // already UT: unchanged
        expectFields(d, c.ut, c.what);
        const ObservingMoment back = acceptDateDialog(d, c.offset);
        EXPECT_EQ(back.year, c.local.year) << c.what;
        EXPECT_EQ(back.day, c.local.day) << c.what;
        EXPECT_EQ(back.hour, c.local.hour) << c.what;
        setDateDialogShowsUt(d, false, c.offset);
        expectFields(d, {c.local.year, c.local.month, c.local.day, c.local.hour, c.local.minute, c.local.second},
                     c.what);
    }
}

TEST(DateDialog, DayClampedWhenMonthOrYearChanges) {
    DateDialog d = openDateDialog({2024, 1, 31, 10, 0, 0});
    setDateDialogMonth(d, 2);
    EXPECT_EQ(d.day, 29);
    setDateDialogYear(d, 2023);
    EXPECT_EQ(d.day, 28);
    setDateDialogMonth(d, 4);
    EXPECT_EQ(d.day, 28);
    setDateDialogMonth(d, 13);  // not a month: ignored
    EXPECT_EQ(d.month, 4);
    DateDialog e = openDateDialog({2000, 3, 31, 0, 0, 0});
    setDateDialogYear(e, 1900);
    EXPECT_EQ(e.day, 31);
    setDateDialogMonth(e, 2);
    EXPECT_EQ(e.day, 28);  // 1900 is not leap
}

TEST(DateDialog, PickingAMinuteClearsTheSeconds) {
    DateDialog d = openDateDialog({2024, 1, 1, 10, 7, 42});
    pickDateDialogMinute(d, 35);
    EXPECT_EQ(d.minute, 35);
    EXPECT_EQ(d.second, 0);
}

TEST(DateDialog, TypedJulianDates) {
    struct Case { const char* text; bool ut; bool accepted; Fields fields; const char* what; };
    const Case cases[] = {
        {"2451545.0", true, true, {2000, 1, 1, 12, 0, 0}, "J2000 in UT"},
        {"2451545.0", false, true, {2000, 1, 1, 13, 0, 0}, "J2000 shown in local time (UT+60)"},
        {"1721057.5", true, true, {0, 1, 1, 0, 0, 0}, "first accepted date"},
        {"2524593.4", true, true, {2199, 12, 31, 21, 36, 0}, "just before the limit"},
        {"2524593.5", true, false, {}, "the limit itself"},
        {"1721057.4", true, false, {}, "before year 0"},
        {"abc", true, false, {}, "not a number"},
        {"", true, false, {}, "empty"},
        {"2451545.0x", true, false, {}, "trailing text"},
        {"nan", true, false, {}, "nan"},
    };
    for (const auto& c : cases) {
        DateDialog d = openDateDialog({2010, 5, 6, 7, 8, 9});
        d.showsUt = c.ut;
        const Fields before = fieldsOf(d);
        MessageCapture capture;
        EXPECT_EQ(enterDateDialogJulianDate(d, c.text, 60), c.accepted) << c.what;
        if (c.accepted) {
            expectFields(d, c.fields, c.what);
            EXPECT_TRUE(capture.messages().empty());
        } else {
            expectFields(d, before, c.what);
            EXPECT_EQ(capture.lastTitle(), "Invalid JD date") << c.what;
        }
    }
}

TEST(DateDialog, TypedJulianDateRoundTripsThroughTheObservingMoment) {
    for (double jd = 2440000.5; jd < 2470000.0; jd += 1234.375) {
        DateDialog d = openDateDialog({2000, 1, 1, 0, 0, 0});
        char text[32];
        std::snprintf(text, sizeof text, "%.6f", jd);
        ASSERT_TRUE(enterDateDialogJulianDate(d, text, -180));
        const ObservingMoment m = acceptDateDialog(d, -180);
        EXPECT_NEAR(julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, -180), jd, 1.0 / 86400)
            << text;
    }
}

}  // namespace
}  // namespace nocturnel
