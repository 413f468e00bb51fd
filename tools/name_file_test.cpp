#include "tools/name_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "catalog/object_tables.h"

namespace nocturnel {
namespace {

ObjectDescriptionRecord description(const std::string& text) {
    ObjectDescriptionRecord d{};
    std::strncpy(d.text, text.c_str(), sizeof d.text - 1);
    return d;
}

TEST(NameFile, DeepSkyNamesStarNamesAndDesignationsSortedByFoldedName) {
    ObjectFiles files;
    ObjectRecord m42{};
    m42.catalog = kCatalogNGC;
    m42.number = 1976;
    m42.description = 0;
    ObjectRecord plain{};
    plain.catalog = kCatalogIC;
    plain.number = 5;
    plain.description = -1;
    files.objects = {m42, plain};
    files.descriptions = {description("Orion Nebula; Great Orion Nebula; Morphology E")};
    std::map<int32_t, StarNames> stars;
    stars[91262] = {"Vega", "α", "3", "Lyr", 172167};
    stars[104214] = {"", "", "61", "Cyg", 201091};

    const std::vector<NameRecord> records = buildNameRecords(files, stars);
    const struct { const char* name; int catalog; int number; } expected[] = {
        {"3 Lyr", kCatalogHipparcos, 91262}, {"61 Cyg", kCatalogHipparcos, 104214}, {"alf Lyr", kCatalogHipparcos, 91262},
        {"Great Orion Nebula", kCatalogNGC, 1976}, {"Orion Nebula", kCatalogNGC, 1976}, {"Vega", kCatalogHipparcos, 91262},
    };
    ASSERT_EQ(records.size(), std::size(expected));
    for (std::size_t i = 0; i < records.size(); ++i) {
        EXPECT_STREQ(records[i].name, expected[i].name) << i;
        EXPECT_EQ(records[i].catalog, expected[i].catalog) << i;
        EXPECT_EQ(records[i].number, expected[i].number) << i;
    }
}

TEST(NameFile, CutNameAtTheEndOfAFullDescriptionIsLeftOut) {
    ObjectFiles files;
    ObjectRecord o{};
    o.catalog = kCatalogNGC;
    o.number = 1;
    o.description = 0;
    files.objects = {o};
    files.descriptions = {description("First Name; " + std::string(120, 'x'))};
    const std::vector<NameRecord> records = buildNameRecords(files, {});
    ASSERT_EQ(records.size(), 1u);
    EXPECT_STREQ(records[0].name, "First Name");
}

TEST(NameFile, FoldingMatchesBayerSpellings) {
    EXPECT_EQ(foldedName("alpha Lyr"), "alflyr");
    EXPECT_EQ(foldedName("α Lyr"), "alflyr");
    EXPECT_EQ(foldedName("ALF LYR"), "alflyr");
    EXPECT_EQ(foldedName("theta1 Ori"), "the1ori");
    EXPECT_EQ(foldedName("Omega Centauri"), "omegacentauri");
    EXPECT_EQ(foldedName("Barnard's  Loop"), "barnardsloop");
}

}  // namespace
}  // namespace nocturnel
