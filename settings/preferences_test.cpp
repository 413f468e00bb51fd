#include "settings/preferences.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace nocturnel {
namespace {

// A record after start-up steps 2..8 from the given damaged values.
Preferences validated(Preferences p) {
    validatePreferences(p);
    return p;
}

TEST(PreferencesReset, FreshRecordGetsTheFirstStartSite) {
    const Preferences p = defaultPreferences();
    EXPECT_STREQ(p.siteName, "None");
    EXPECT_FLOAT_EQ(p.latitudeDeg, 48.1f);
    EXPECT_FLOAT_EQ(p.longitudeDeg, 1.8f);
    EXPECT_EQ(p.utcOffsetMin, 60);
    EXPECT_EQ(p.scopeDrive, 5);
    EXPECT_NEAR(p.sinLatitude, std::sin(48.1 * M_PI / 180), 1e-6);
    EXPECT_NEAR(p.cosLatitude, std::cos(48.1 * M_PI / 180), 1e-6);
    EXPECT_FLOAT_EQ(p.deltaTSeconds, 65.4f);
    EXPECT_STREQ(p.userCatalogFile, "nocturnel_user_catalog.pdb");
    EXPECT_EQ(p.catalogEpochYear, 1950);
}

TEST(PreferencesReset, StepOneOverwritesTheSiteEvenOfALoadedRecord) {
    Preferences p;
    copyFixedText(p.siteName, "Paris");
    setSitePosition(p, 48.85, -2.35, 120);
    p.scopeDrive = 14;
    resetAndValidatePreferences(p);
    EXPECT_STREQ(p.siteName, "None");
    EXPECT_FLOAT_EQ(p.latitudeDeg, 48.1f);
    EXPECT_EQ(p.utcOffsetMin, 60);
    EXPECT_EQ(p.scopeDrive, 5);
}

TEST(PreferencesValidate, SitePositionGoesToTheLowerBoundWithMatchingCaches) {
    struct Case { float lat, lon; float latOut, lonOut; };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Case cases[] = {
        {95, 10, -90, 10}, {-90.5f, 10, -90, 10}, {90, 180, 90, 180}, {-90, -180, -90, -180},
        {45, 181, 45, -180}, {45, -200, 45, -180}, {nan, nan, -90, -180}, {12.5f, -3.25f, 12.5f, -3.25f},
    };
    for (const auto& c : cases) {
        Preferences p;
        p.latitudeDeg = c.lat;
        p.longitudeDeg = c.lon;
        const Preferences v = validated(p);
        EXPECT_FLOAT_EQ(v.latitudeDeg, c.latOut) << c.lat;
        EXPECT_FLOAT_EQ(v.longitudeDeg, c.lonOut) << c.lon;
        EXPECT_NEAR(v.sinLatitude, std::sin(c.latOut * M_PI / 180), 1e-6) << c.lat;
        EXPECT_NEAR(v.cosLatitude, std::cos(c.latOut * M_PI / 180), 1e-6) << c.lat;
    }
}

TEST(PreferencesValidate, SiteValueClamps) {
    struct Case { int16_t altitude, offset, dst; int16_t altOut, offsetOut, dstOut; };
    const Case cases[] = {
        {0, -720, 0, 0, -720, 0},       {9000, 720, 1, 9000, 720, 1}, {9001, 721, 2, 0, -720, 0},
        {-1, -721, -1, 0, -720, 0},     {120, 60, 1, 120, 60, 1},
    };
    for (const auto& c : cases) {
        Preferences p;
        p.altitudeM = c.altitude;
        p.utcOffsetMin = c.offset;
        p.dstFlag = c.dst;
        const Preferences v = validated(p);
        EXPECT_EQ(v.altitudeM, c.altOut);
        EXPECT_EQ(v.utcOffsetMin, c.offsetOut);
        EXPECT_EQ(v.dstFlag, c.dstOut);
    }
}

TEST(PreferencesValidate, SiteMemoriesClampedAndSkyQualityForced) {
    Preferences p;
    p.siteMemory[0] = {"Home", 95, 200, 9, 9500, 800, 3};
    p.siteMemory[1] = {"Away", -33.9f, -151.2f, 1, 50, 600, 1};
    std::memset(p.siteMemory[2].name, 'x', sizeof p.siteMemory[2].name);  // no terminator
    const Preferences v = validated(p);
    EXPECT_FLOAT_EQ(v.siteMemory[0].latitudeDeg, -90);
    EXPECT_FLOAT_EQ(v.siteMemory[0].longitudeDeg, -180);
    EXPECT_EQ(v.siteMemory[0].altitudeM, 0);
    EXPECT_EQ(v.siteMemory[0].utcOffsetMin, -720);
    EXPECT_EQ(v.siteMemory[0].dstFlag, 0);
    EXPECT_FLOAT_EQ(v.siteMemory[1].latitudeDeg, -33.9f);
    EXPECT_EQ(v.siteMemory[1].utcOffsetMin, 600);
    EXPECT_EQ(v.siteMemory[1].dstFlag, 1);
    for (const auto& m : v.siteMemory) EXPECT_EQ(m.skyQuality, 3);
    EXPECT_EQ(std::strlen(v.siteMemory[2].name), sizeof v.siteMemory[2].name - 1);
}

TEST(PreferencesValidate, DeltaTRule) {
    struct Case { float in, out; };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Case cases[] = {{40, 65.4f}, {250, 65.4f}, {39.9f, 65.4f}, {70, 70}, {200, 200}, {200.1f, 65.4f},
                          {40.1f, 40.1f}, {-5, 65.4f}, {nan, 65.4f}};
    for (const auto& c : cases) {
        Preferences p;
        p.deltaTSeconds = c.in;
        EXPECT_FLOAT_EQ(validated(p).deltaTSeconds, c.out) << c.in;
    }
}

TEST(PreferencesValidate, EnumeratedFieldsOutsideTheirListsBecomeZero) {
    struct Case { int32_t Preferences::*field; int32_t lastValid; };
    const Case cases[] = {
        {&Preferences::connectionMode, 1}, {&Preferences::mountType, 1},      {&Preferences::correction, 3},
        {&Preferences::nightMode, 3},      {&Preferences::experience, 2},     {&Preferences::maxSelectedItems, 10},
        {&Preferences::scopeDiameterIndex, 17}, {&Preferences::horizonIndex, 6}, {&Preferences::cardCatalog, 6},
        {&Preferences::ageIndex, 8},       {&Preferences::timeStep, 16},      {&Preferences::visionIndex, 10},
        {&Preferences::fRatioIndex, 11},   {&Preferences::chartType, 4},      {&Preferences::eyepieceIndex, 400},
        {&Preferences::scopePort, 9},      {&Preferences::gpsPort, 9},        {&Preferences::cameraPort, 9},
        {&Preferences::extraPort, 9},      {&Preferences::deltaTFormula, 1},  {&Preferences::chartZoomLevel, 12},
    };
    for (const auto& c : cases) {
        Preferences p;
        p.*c.field = c.lastValid;
        EXPECT_EQ(validated(p).*c.field, c.lastValid);
        p.*c.field = c.lastValid + 1;
        EXPECT_EQ(validated(p).*c.field, 0);
        p.*c.field = -1;
        EXPECT_EQ(validated(p).*c.field, 0);
    }
}

TEST(PreferencesValidate, EncoderStepsAndPageBoxes) {
    struct Case { int32_t in, out; };
    for (const Case c : {Case{-32128, -32127}, Case{-32127, -32127}, Case{32127, 32127}, Case{32128, -32127},
                         Case{4000, 4000}}) {
        Preferences p;
        p.encoderAzSteps = c.in;
        p.encoderAltSteps = c.in;
        const Preferences v = validated(p);
        EXPECT_EQ(v.encoderAzSteps, c.out) << c.in;
        EXPECT_EQ(v.encoderAltSteps, c.out) << c.in;
    }
    Preferences p;
    p.displayBox[3] = 1;
    p.displayBox[4] = 7;
    p.scrollBox[0] = -2;
    const Preferences v = validated(p);
    EXPECT_EQ(v.displayBox[3], 1);
    EXPECT_EQ(v.displayBox[4], 0);
    EXPECT_EQ(v.scrollBox[0], 0);
}

TEST(PreferencesValidate, ForcedFieldsWhateverTheyHeld) {
    Preferences p;
    p.alignMethod = 0;
    p.grsLongitudeDeg = 12;
    p.portSetting = 7;
    p.raFormat = 0;
    p.decFormat = 3;
    p.encoderAltOffset = 55;
    p.encoderAzOffset = -3;
    p.skyQuality = 0;
    p.temperatureC = 30;
    p.pressureMbar = 950;
    p.humidityPct = 80;
    p.catalogEpochYear = 2000;
    copyFixedText(p.userCatalogFile, "other.pdb");
    for (int i = 0; i < kZoomTableSlots; ++i) {
        p.zoomStarLimit[i] = 9;
        p.zoomObjectLimit[i] = 9;
        p.zoomViewMode[i] = i % 5;
    }
    const Preferences v = validated(p);
    EXPECT_EQ(v.alignMethod, 1);
    EXPECT_FLOAT_EQ(v.grsLongitudeDeg, 104.0f);
    EXPECT_EQ(v.portSetting, 2);
    EXPECT_EQ(v.raFormat, 2);
    EXPECT_EQ(v.decFormat, 2);
    EXPECT_EQ(v.encoderAltOffset, 0);
    EXPECT_EQ(v.encoderAzOffset, 0);
    EXPECT_EQ(v.skyQuality, 3);
    EXPECT_EQ(v.temperatureC, 10);
    EXPECT_EQ(v.pressureMbar, 1013);
    EXPECT_EQ(v.humidityPct, 40);
    EXPECT_EQ(v.catalogEpochYear, 1950);
    EXPECT_STREQ(v.userCatalogFile, "nocturnel_user_catalog.pdb");
    for (int i = 0; i < kZoomTableSlots; ++i) {
        EXPECT_EQ(v.zoomStarLimit[i], 2);
        EXPECT_EQ(v.zoomObjectLimit[i], 3);
        EXPECT_EQ(v.zoomViewMode[i], 0);
    }
}

TEST(PreferencesValidate, MomentFromTheClockAtTheSiteOffset) {
    Preferences p;
    p.utcOffsetMin = 0;
    const Preferences atUt = validated(p);
    p.utcOffsetMin = 720;
    const Preferences ahead = validated(p);
    // Twelve hours ahead of UT: the clock hour differs by 12 (modulo a day).
    const int utMinutes = atUt.moment.hour * 60 + atUt.moment.minute;
    const int aheadMinutes = ahead.moment.hour * 60 + ahead.moment.minute;
    const int diff = ((aheadMinutes - utMinutes) % 1440 + 1440) % 1440;
    EXPECT_NEAR(diff, 720, 1);  // a minute may tick between the two readings
    EXPECT_GE(atUt.moment.year, 2024);
    EXPECT_GE(atUt.moment.month, 1);
    EXPECT_LE(atUt.moment.month, 12);
}

TEST(SetSitePosition, KeepsTheCachesInStep) {
    Preferences p;
    setSitePosition(p, -33.86, -151.21, 600);
    EXPECT_FLOAT_EQ(p.latitudeDeg, -33.86f);
    EXPECT_FLOAT_EQ(p.longitudeDeg, -151.21f);
    EXPECT_EQ(p.utcOffsetMin, 600);
    EXPECT_NEAR(p.sinLatitude, std::sin(-33.86 * M_PI / 180), 1e-6);
    EXPECT_NEAR(p.cosLatitude, std::cos(-33.86 * M_PI / 180), 1e-6);
}

TEST(CopyFixedText, CutsAndTerminates) {
    char field[12];
    copyFixedText(field, "A very long site name");
    EXPECT_STREQ(field, "A very long");
    copyFixedText(field, "A very long site name", 10);
    EXPECT_STREQ(field, "A very lon");
    copyFixedText(field, nullptr);
    EXPECT_STREQ(field, "");
}

}  // namespace
}  // namespace nocturnel
