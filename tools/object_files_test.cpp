// Stretches of the object index and the mapping of Stellarium's object types.
#include "tools/object_files.h"

#include <gtest/gtest.h>

#include "catalog/object_tables.h"

namespace nocturnel {
namespace {

TEST(ObjectIndexStretches, UsableSlotsEndWhereTheNextStretchBegins) {
    const struct {
        int catalog;
        int first, end;
    } cases[] = {
        {36, 1126, 1127},     // Maffei: 1126..10034 in the table, cut by Caldwell at 1127
        {kCatalogCaldwell, 1127, 1130},
        {1, 1130, 3869},      // Abell
        {27, 4323, 4344},     // Hogg, before Haute Provence
        {24, 4344, 4345},
        {kCatalogIC, 4345, 9977},
        {35, 10019, 10033},   // Lynga: its own end
        {kCatalogNGC, 10054, 18520},
        {67, 19400, 19401},   // Westerlund, the last
        {kCatalogMessier, 0, 0},
        {kCatalogHipparcos, 0, 0},
    };
    for (const auto& c : cases) {
        const auto [first, end] = usableStretch(c.catalog);
        EXPECT_EQ(first, c.first) << kCatalogDefinitions[c.catalog].name;
        EXPECT_EQ(end, c.end) << kCatalogDefinitions[c.catalog].name;
    }
}

TEST(ObjectTypes, StellariumTypesMapToTheTypeTable) {
    const struct {
        uint32_t stellarium;
        const char* abbreviation;
    } cases[] = {
        {0, "GALXY"}, {3, "GALXY"}, {33, "GALCL"}, {6, "OPNCL"}, {7, "GLOCL"}, {11, "PLNNB"},
        {12, "DRKNB"}, {13, "BRTNB"}, {17, "BRTNB"}, {16, "CL+NB"}, {18, "SNREM"}, {28, "1STAR"}, {10, "NEBUL"},
        {36, "   "}, {1000, "   "},
    };
    for (const auto& c : cases)
        EXPECT_STREQ(kObjectTypes[stellariumTypeToObjectType(c.stellarium)].abbreviation, c.abbreviation) << c.stellarium;
}

}  // namespace
}  // namespace nocturnel
