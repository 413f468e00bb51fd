#include "settings/preference_lists.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace nocturnel {
namespace {

std::string listedAt(std::string_view field, int index) {
    const PreferenceList* list = findPreferenceList(field);
    return list ? std::string(labelAtIndex(*list, index)) : std::string("<no list>");
}

// The stored index of each list counts from the top of the list as shown, which is the
// reverse of the order the page adds the entries.
TEST(PreferenceLists, StoredIndexesFollowTheReverseInsertionRule) {
    struct Case { const char* field; int index; const char* label; };
    const Case cases[] = {
        {"scopeDrive", 0, "None"},          {"scopeDrive", 5, "LX200"},          {"scopeDrive", 19, "SkyCommander"},
        {"scopeDrive", 8, "Nexstar 5&8"},   {"skyQuality", 0, "Bright town"},    {"skyQuality", 4, "Desert/Mountain"},
        {"mountType", 0, "Equatorial"},     {"mountType", 1, "Azimuth"},         {"alignMethod", 1, "External"},
        {"alignMethod", 0, "Nocturnel 2 Stars"}, {"correction", 0, "Geocentric"}, {"correction", 3, "Topo + Refract"},
        {"raFormat", 0, "23.75"},           {"raFormat", 1, "23:45:00"},         {"raFormat", 2, "23h45m00"},
        {"raFormat", 3, "23h45.0"},         {"decFormat", 0, "-70.75"},          {"decFormat", 1, "-70:45:00"},
        {"horizonIndex", 0, "0\xB0"},       {"horizonIndex", 6, "10\xB0"},       {"experience", 0, "Beginner"},
        {"ageIndex", 0, "15"},              {"ageIndex", 8, ">95"},              {"visionIndex", 0, "2/10"},
        {"fRatioIndex", 0, "4"},            {"fRatioIndex", 11, "15"},           {"timeStep", 0, "1 mn"},
        {"timeStep", 16, "90 Days"},        {"cardCatalog", 0, "No expansion card"}, {"cardCatalog", 6, "Tycho 2.5 Million"},
        {"chartType", 0, "Sky Map"},        {"nightMode", 0, "Off"},             {"timeUpdate", 0, "Automatic"},
        {"connectionMode", 0, "Persistant"}, {"connectionMode", 1, "Upon need"},  {"maxSelectedItems", 0, "500"},
        {"maxSelectedItems", 10, "25"},     {"scopeDiameterIndex", 0, "762"},    {"scopeDiameterIndex", 17, "50"},
        {"deltaTFormula", 0, "Chapront&Touz\xE9 1997"}, {"starColor", 0, "Color"}, {"background", 0, "Black"},
        {"lineColor", 0, "Blue"},           {"starsChoice", 0, "Only Constellation"}, {"constLines", 0, "Classic"},
        {"fontSize", 0, "Small"},           {"cursorMode", 0, "Blinking"},
    };
    for (const auto& c : cases) EXPECT_EQ(listedAt(c.field, c.index), c.label) << c.field << " " << c.index;
}

TEST(PreferenceLists, ListLengthsAndDistinctEntries) {
    struct Case { const char* field; int size; };
    const Case cases[] = {{"scopeDrive", 20}, {"scopeDiameterIndex", 18}, {"maxSelectedItems", 11},
                          {"timeStep", 17},   {"visionIndex", 11},        {"ageIndex", 9},
                          {"raFormat", 4},    {"skyQuality", 5},          {"horizonIndex", 7}};
    for (const auto& c : cases) {
        const PreferenceList* list = findPreferenceList(c.field);
        ASSERT_NE(list, nullptr) << c.field;
        EXPECT_EQ(listSize(*list), c.size) << c.field;
    }
    for (const auto& list : preferenceLists()) {
        const auto shown = shownEntries(list);
        EXPECT_EQ(std::set<std::string_view>(shown.begin(), shown.end()).size(), shown.size()) << list.field;
        for (int i = 0; i < listSize(list); ++i) EXPECT_EQ(indexOfLabel(list, shown[i]), i) << list.field;
    }
}

TEST(PreferenceLists, LabelLookupIsForgiving) {
    const PreferenceList* dec = findPreferenceList("decFormat");
    ASSERT_NE(dec, nullptr);
    EXPECT_EQ(indexOfLabel(*dec, "-70\xC2\xB0" "45'00"), 2);  // degree sign typed as UTF-8
    EXPECT_EQ(indexOfLabel(*dec, "-70\xB0" "45.0"), 3);
    const PreferenceList* drive = findPreferenceList("scopeDrive");
    ASSERT_NE(drive, nullptr);
    EXPECT_EQ(indexOfLabel(*drive, "lx200"), 5);
    EXPECT_EQ(indexOfLabel(*drive, "Meade"), -1);
    EXPECT_EQ(labelAtIndex(*drive, 20), "");
    EXPECT_EQ(labelAtIndex(*drive, -1), "");
    EXPECT_EQ(findPreferenceList("latitudeDeg"), nullptr);
}

}  // namespace
}  // namespace nocturnel
