#include "settings/preference_fields.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "settings/message.h"

namespace nocturnel {
namespace {

TEST(PreferenceFields, AcceptedValues) {
    struct Case { const char* name; const char* value; double expected; };
    const Case cases[] = {
        {"raFormat", "1", 1},            {"raFormat", "23:45:00", 1},      {"decFormat", "-70.75", 0},
        {"scopeDrive", "LX200", 5},      {"scopeDrive", "19", 19},         {"mountType", "Azimuth", 1},
        {"altitudeM", "31999", 31999},   {"utcOffsetMin", "-1439", -1439}, {"deltaTSeconds", "69.2", 69.2},
        {"deltaTSeconds", "200", 200},   {"latitudeDeg", "-33.5", -33.5},  {"longitudeDeg", "180", 180},
        {"encoderAzSteps", "-32127", -32127}, {"maxSelectedItems", "500", 0}, {"skyQuality", "Town", 1},
        {"eyepieceIndex", "400", 400},
    };
    for (const auto& c : cases) {
        Preferences p = defaultPreferences();
        MessageCapture capture;
        ASSERT_TRUE(setPreferenceField(p, c.name, c.value)) << c.name << " " << c.value;
        EXPECT_TRUE(capture.messages().empty());
        EXPECT_NEAR(preferenceNumber(p, *findPreferenceField(c.name)), c.expected, 1e-5) << c.name;
    }
}

TEST(PreferenceFields, RefusedValuesChangeNothing) {
    struct Case { const char* name; const char* value; const char* title; };
    const Case cases[] = {
        {"raFormat", "4", "Invalid value \"4\" for raFormat"},
        {"raFormat", "12h", "Invalid value \"12h\" for raFormat"},
        {"scopeDrive", "20", "Invalid value \"20\" for scopeDrive"},
        {"altitudeM", "32000", "Invalid value \"32000\" for altitudeM"},
        {"altitudeM", "12.5", "Invalid value \"12.5\" for altitudeM"},
        {"utcOffsetMin", "1440", "Invalid value \"1440\" for utcOffsetMin"},
        {"deltaTSeconds", "40", "Invalid value \"40\" for deltaTSeconds"},
        {"deltaTSeconds", "nan", "Invalid value \"nan\" for deltaTSeconds"},
        {"deltaTSeconds", "inf", "Invalid value \"inf\" for deltaTSeconds"},
        {"latitudeDeg", "90.5", "Invalid value \"90.5\" for latitudeDeg"},
        {"latitudeDeg", "", "Invalid value \"\" for latitudeDeg"},
        {"siteName", "Twelve chars", "Invalid value \"Twelve chars\" for siteName"},
        {"encoderAltSteps", "99999999999999999999", "Invalid value \"99999999999999999999\" for encoderAltSteps"},
        {"noSuchField", "1", "Unknown preference noSuchField"},
    };
    for (const auto& c : cases) {
        Preferences p = defaultPreferences();
        const Preferences before = p;
        MessageCapture capture;
        EXPECT_FALSE(setPreferenceField(p, c.name, c.value)) << c.name << " " << c.value;
        EXPECT_EQ(capture.lastTitle(), c.title);
        EXPECT_FALSE(capture.messages().back().detail.empty());
        EXPECT_EQ(std::memcmp(&p, &before, sizeof p), 0) << c.name;
    }
}

TEST(PreferenceFields, SiteFieldsKeepTheirCompanions) {
    Preferences p = defaultPreferences();
    ASSERT_TRUE(setPreferenceField(p, "latitudeDeg", "-30"));
    EXPECT_NEAR(p.sinLatitude, -0.5, 1e-6);
    EXPECT_NEAR(p.cosLatitude, std::sqrt(3.0) / 2, 1e-6);
    ASSERT_TRUE(setPreferenceField(p, "dstFlag", "1"));
    EXPECT_EQ(p.utcOffsetMin, 120);
    ASSERT_TRUE(setPreferenceField(p, "dstFlag", "1"));
    EXPECT_EQ(p.utcOffsetMin, 120);
    ASSERT_TRUE(setPreferenceField(p, "dstFlag", "0"));
    EXPECT_EQ(p.utcOffsetMin, 60);
    ASSERT_TRUE(setPreferenceField(p, "siteName", "Eleven char"));
    EXPECT_EQ(preferenceText(p, *findPreferenceField("siteName")), "Eleven char");
}

TEST(PreferenceFields, EveryFieldReadsBackWhatPrefsShowWouldPrint) {
    const Preferences p = defaultPreferences();
    for (const auto& f : preferenceFields()) {
        const std::string text = preferenceText(p, f);
        if (f.type == FieldType::Index) {
            EXPECT_FALSE(text.empty()) << f.name << " default index has no entry";
            // Setting a list field by its own shown text gives the same index back.
            Preferences q = p;
            EXPECT_TRUE(setPreferenceField(q, f.name, text)) << f.name;
            EXPECT_EQ(preferenceNumber(q, f), preferenceNumber(p, f)) << f.name;
        }
    }
}

}  // namespace
}  // namespace nocturnel
