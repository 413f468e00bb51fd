#include "settings/location_page.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "settings/message.h"

namespace nocturnel {
namespace {

std::string decimalDegrees(double deg) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.4f", deg);
    return buf;
}

Preferences paris() {
    Preferences p = defaultPreferences();
    copyFixedText(p.siteName, "Paris");
    setSitePosition(p, 48.8566, -2.3522, 60);
    p.altitudeM = 35;
    return p;
}

TEST(LocationPage, ShowsHemispheresAndTheOffsetWithoutDaylightSaving) {
    struct Case { double lat, lon; int offset; int dst; const char* latText; const char* lonText; const char* offsetText; };
    const Case cases[] = {
        {48.8566, -2.3522, 60, 0, "48.8566 N", "2.3522 E", "60"},
        {-33.8688, -151.2093, 660, 1, "33.8688 S", "151.2093 E", "600"},
        {40.7128, 74.0060, -240, 1, "40.7128 N", "74.0060 W", "-300"},
        {0, 0, 0, 0, "0.0000 N", "0.0000 W", "0"},
    };
    for (const auto& c : cases) {
        Preferences p = defaultPreferences();
        setSitePosition(p, c.lat, c.lon, c.offset);
        p.dstFlag = static_cast<int16_t>(c.dst);
        const LocationPageFields f = showLocationPage(p, decimalDegrees);
        EXPECT_EQ(f.latitude, c.latText);
        EXPECT_EQ(f.longitude, c.lonText);
        EXPECT_EQ(f.utcOffset, c.offsetText);
        EXPECT_EQ(f.daylightSaving, c.dst == 1);
    }
}

TEST(LocationPage, PositionTextsAreCutTo12Characters) {
    Preferences p = defaultPreferences();
    setSitePosition(p, -45.123456789, 120.5, 0);
    const LocationPageFields f = showLocationPage(p, [](double d) { return decimalDegrees(d) + "0000000"; });
    EXPECT_EQ(f.latitude.size(), 12u);
    EXPECT_EQ(f.latitude, "45.123500000");  // the hemisphere letter falls off
    EXPECT_EQ(f.longitude.size(), 12u);
}

TEST(LocationPage, DaylightSavingBoxMovesTheOffsetAtOnce) {
    Preferences p = paris();
    LocationPageFields f = showLocationPage(p, decimalDegrees);
    setDaylightSaving(p, f, true);
    EXPECT_EQ(p.utcOffsetMin, 120);
    EXPECT_EQ(p.dstFlag, 1);
    setDaylightSaving(p, f, true);  // already ticked: nothing more
    EXPECT_EQ(p.utcOffsetMin, 120);
    setDaylightSaving(p, f, false);
    EXPECT_EQ(p.utcOffsetMin, 60);
    EXPECT_EQ(p.dstFlag, 0);
}

TEST(LocationPage, AcceptStoresValidNumbersAndTheSelectedMemory) {
    Preferences p = paris();
    p.dstFlag = 1;
    p.utcOffsetMin = 120;
    LocationPageFields f = showLocationPage(p, decimalDegrees, 2);
    f.name = "Observatoire de Paris";
    f.height = "67";
    f.utcOffset = "60";  // shown without the DST hour
    f.temperature = "-5";
    f.pressure = "990";
    f.humidity = "85";
    f.skyQuality = 1;
    MessageCapture capture;
    ASSERT_TRUE(acceptLocationPage(p, f));
    EXPECT_TRUE(capture.messages().empty());
    EXPECT_STREQ(p.siteName, "Observatoir");  // 12-character field
    EXPECT_EQ(p.altitudeM, 67);
    EXPECT_EQ(p.utcOffsetMin, 120);
    EXPECT_EQ(p.temperatureC, -5);
    EXPECT_EQ(p.pressureMbar, 990);
    EXPECT_EQ(p.humidityPct, 85);
    EXPECT_EQ(p.skyQuality, 1);
    const SiteMemory& m = p.siteMemory[2];
    EXPECT_STREQ(m.name, "Observatoi");  // 10 characters into a memory
    EXPECT_FLOAT_EQ(m.latitudeDeg, p.latitudeDeg);
    EXPECT_FLOAT_EQ(m.longitudeDeg, p.longitudeDeg);
    EXPECT_EQ(m.utcOffsetMin, 120);
    EXPECT_EQ(m.dstFlag, 1);
    EXPECT_EQ(m.altitudeM, 67);
    EXPECT_EQ(m.skyQuality, 1);
}

TEST(LocationPage, AcceptRangesAndWidths) {
    struct Case { std::string LocationPageFields::*field; const char* text; bool valid; };
    using F = LocationPageFields;
    const Case cases[] = {
        {&F::height, "0", true},         {&F::height, "31999", true},    {&F::height, "32000", false},
        {&F::height, "-1", false},       {&F::height, "0031999", false}, {&F::height, "12a", false},
        {&F::height, "", false},         {&F::utcOffset, "-1439", true}, {&F::utcOffset, "1439", true},
        {&F::utcOffset, "1440", false},  {&F::utcOffset, "+600", true},  {&F::temperature, "-70", true},
        {&F::temperature, "59", true},   {&F::temperature, "60", false}, {&F::temperature, "-71", false},
        {&F::pressure, "900", true},     {&F::pressure, "1100", true},   {&F::pressure, "899", false},
        {&F::pressure, "1101", false},   {&F::humidity, "0", true},      {&F::humidity, "99", true},
        {&F::humidity, "100", false},    {&F::humidity, "-", false},
    };
    for (const auto& c : cases) {
        Preferences p = paris();
        LocationPageFields f = showLocationPage(p, decimalDegrees);
        const LocationPageFields shown = f;
        f.*c.field = c.text;
        MessageCapture capture;
        const Preferences before = p;
        EXPECT_EQ(acceptLocationPage(p, f), c.valid) << c.text;
        EXPECT_EQ(capture.messages().empty(), c.valid) << c.text;
        if (!c.valid) {
            EXPECT_EQ(f.*c.field, shown.*c.field) << c.text << ": the field is reset";
            EXPECT_EQ(p.altitudeM, before.altitudeM);
            EXPECT_EQ(p.humidityPct, before.humidityPct);
            EXPECT_STREQ(p.siteMemory[0].name, "") << "no memory stored when a value is refused";
        }
    }
}

TEST(LocationPage, OffsetRangeCountsTheDaylightSavingHour) {
    Preferences p = paris();
    p.dstFlag = 1;
    LocationPageFields f = showLocationPage(p, decimalDegrees);
    f.utcOffset = "1380";  // 1440 once the hour is added
    MessageCapture capture;
    EXPECT_FALSE(acceptLocationPage(p, f));
    EXPECT_EQ(f.utcOffset, "0");  // reset to the stored 60 minus the DST hour
    f.utcOffset = "1379";
    EXPECT_TRUE(acceptLocationPage(p, f));
    EXPECT_EQ(p.utcOffsetMin, 1439);
}

TEST(SiteMemories, StoreAndRecallRoundTrip) {
    Preferences p = paris();
    p.dstFlag = 1;
    p.skyQuality = 2;
    ASSERT_TRUE(storeSiteMemory(p, 0));
    Preferences q = defaultPreferences();
    q.siteMemory[0] = p.siteMemory[0];
    ASSERT_TRUE(recallSiteMemory(q, 0));
    EXPECT_STREQ(q.siteName, "Paris");
    EXPECT_FLOAT_EQ(q.latitudeDeg, p.latitudeDeg);
    EXPECT_FLOAT_EQ(q.longitudeDeg, p.longitudeDeg);
    EXPECT_NEAR(q.sinLatitude, std::sin(p.latitudeDeg * M_PI / 180), 1e-6);
    EXPECT_NEAR(q.cosLatitude, std::cos(p.latitudeDeg * M_PI / 180), 1e-6);
    EXPECT_EQ(q.utcOffsetMin, 60);
    EXPECT_EQ(q.dstFlag, 1);
    EXPECT_EQ(q.altitudeM, 35);
    EXPECT_EQ(q.skyQuality, 2);
}

TEST(SiteMemories, OnlyThreeMemories) {
    Preferences p = paris();
    const Preferences before = p;
    MessageCapture capture;
    EXPECT_FALSE(storeSiteMemory(p, 3));
    EXPECT_FALSE(recallSiteMemory(p, -1));
    EXPECT_EQ(capture.messages().size(), 2u);
    EXPECT_STREQ(p.siteName, before.siteName);
}

TEST(LocationList, ChoosingAPlace) {
    Preferences p = paris();
    p.dstFlag = 1;
    chooseLocation(p, "San Francisco Bay", 37.77, 122.42, -480);
    EXPECT_STREQ(p.siteName, "San Francis");  // 11 characters
    EXPECT_FLOAT_EQ(p.latitudeDeg, 37.77f);
    EXPECT_FLOAT_EQ(p.longitudeDeg, 122.42f);
    EXPECT_EQ(p.utcOffsetMin, -420);  // plus the DST hour
    EXPECT_EQ(p.altitudeM, 0);
    EXPECT_NEAR(p.sinLatitude, std::sin(37.77 * M_PI / 180), 1e-6);
}

}  // namespace
}  // namespace nocturnel

namespace nocturnel {
namespace {
TEST(LocationPage, PositionTextsWithTheirHemisphere) {
    struct Case { const char* text; bool latitude; double value; bool ok; };
    const Case cases[] = {
        {"111.6W", false, 111.6, true},        {"111.6e", false, -111.6, true},     {"E 2.35", false, -2.35, true},
        {"111:36:00 W", false, 111.6, true},   {"111\xB0" "36'00 W", false, 111.6, true},
        {"111\xC2\xB0" "36'00 E", false, -111.6, true}, {"-111.6", false, -111.6, true}, {"111.6", false, 111.6, true},
        {"-111.6W", false, 0, false},          {"180.5W", false, 0, false},         {"111.6N", false, 0, false},
        {"31.96N", true, 31.96, true},         {"33:52:08 S", true, -(33 + 52 / 60.0 + 8 / 3600.0), true},
        {"91N", true, 0, false},               {"", true, 0, false},                {"nan", true, 0, false},
        {"12:60:00 N", true, 0, false},        {"1.5:30 N", true, 0, false},
    };
    for (const Case& c : cases) {
        const auto v = c.latitude ? readLatitudeText(c.text) : readLongitudeText(c.text);
        ASSERT_EQ(v.has_value(), c.ok) << c.text;
        if (c.ok) {
            EXPECT_NEAR(*v, c.value, 1e-9) << c.text;
        }
    }
}

TEST(LocationPage, AcceptReadsTheChangedPositionWithItsHemisphere) {
    Preferences p = paris();
    LocationPageFields f = showLocationPage(p, decimalDegrees);
    f.longitude = "111.6W";
    f.latitude = "31:57:36 N";
    MessageCapture capture;
    ASSERT_TRUE(acceptLocationPage(p, f));
    EXPECT_NEAR(p.longitudeDeg, 111.6, 1e-5);
    EXPECT_NEAR(p.latitudeDeg, 31.96, 1e-5);
    EXPECT_NEAR(p.sinLatitude, std::sin(31.96 * M_PI / 180), 1e-6);

    // An unreadable longitude is not stored, its field shows the stored value again.
    f = showLocationPage(p, decimalDegrees);
    f.longitude = "-111.6W";
    EXPECT_FALSE(acceptLocationPage(p, f));
    EXPECT_NEAR(p.longitudeDeg, 111.6, 1e-5);
    EXPECT_EQ(f.longitude, f.longitudeShown);
    EXPECT_FALSE(capture.messages().empty());

    // The page's own (rounded) texts, untouched, leave the position as it is.
    setSitePosition(p, 31.958765, 111.598765, p.utcOffsetMin);
    f = showLocationPage(p, decimalDegrees);
    ASSERT_TRUE(acceptLocationPage(p, f));
    EXPECT_NEAR(p.longitudeDeg, 111.598765, 1e-5);
}

TEST(SiteMemories, RecallOfAnEmptyMemoryIsRefused) {
    Preferences p = paris();
    const Preferences before = p;
    MessageCapture capture;
    EXPECT_FALSE(recallSiteMemory(p, 1));
    EXPECT_EQ(capture.lastTitle(), "Site2 is empty");
    EXPECT_EQ(std::string(p.siteName), "Paris");
    EXPECT_EQ(p.latitudeDeg, before.latitudeDeg);
}
}  // namespace
}  // namespace nocturnel
