#include "catalog/object_finder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numbers>
#include <vector>

#include "catalog/card_star_motion.h"
#include "catalog/catalog_test_support.h"
#include "catalog/object_index_key.h"
#include "catalog/object_tables.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {
using test::CatalogFolderTest;
using test::starEntry;

class FinderTest : public CatalogFolderTest {
protected:
    // A HIP-sized catalogue (the header claims 2,810 records of 42 stars) whose block 1 holds
    // stars 84..125, with the number index and a default star for HIP 84.
    void writeHipCatalogue() {
        std::vector<StarEntry> entries(42, starEntry(0, 0, 0, 0, -90, 0, 0, 15.9));
        for (int k = 0; k < 42; ++k) entries.push_back(starEntry(84 + k, 18, 36, 56, 38, 47, k, 0.5 + k / 16.0));
        test::writeStarBlocks("nocturnel_hip_110k.ppc", entries, 42, 2810);
        std::vector<HipIndexRecord> index(3);
        for (auto& r : index)
            for (auto& slot : r.block) slot = -1;
        for (int k = 0; k < 42; ++k) index[2].block[k] = 1;
        test::writeRecords("nocturnel_hip_110k_idx.ppc", index);
        std::vector<DefaultStarRecord> defaults(2);
        defaults[1].hip = 84;
        defaults[1].mag = 0.03f;
        std::strcpy(defaults[1].name, "Vega");
        test::writeRecords("nocturnel_default_stars.ppc", defaults);
    }
};

TEST_F(FinderTest, UnreadableAndUnsearchableNames) {
    MessageCapture messages;
    FoundObject found;
    EXPECT_FALSE(findObjectByName("Andromeda", found));
    EXPECT_EQ(messages.lastTitle(), "Unknown object name");
    EXPECT_FALSE(findObjectByName("H 400", found));
    EXPECT_EQ(messages.messages().back().text(),
              "Object not found\nObjects of the Herschel catalogue cannot be found by number.");
}

TEST_F(FinderTest, HipparcosStarsWithTheirDefaultStarNames) {
    writeHipCatalogue();
    FoundObject found;
    ASSERT_TRUE(findObjectByName("hip84", found));
    EXPECT_EQ(found.name, "Vega, HIP84");
    EXPECT_EQ(found.catalogCode, kCatalogHipparcos);
    EXPECT_EQ(found.number, 84);
    EXPECT_NEAR(found.raHours, 18 + 36 / 60.0 + 56 / 3600.0, 1e-6);
    EXPECT_NEAR(found.decDeg, 38 + 47 / 60.0, 1e-6);
    EXPECT_FLOAT_EQ(found.mag, 0.03f);  // the default star's unpacked magnitude
    EXPECT_TRUE(found.magKnown);
    EXPECT_STREQ(kObjectTypes[found.typeCode].name, "Star");

    ASSERT_TRUE(findObjectByName("HIP 90", found));
    EXPECT_EQ(found.name, "HIP90");
    EXPECT_NEAR(found.decDeg, 38 + 47 / 60.0 + 6 / 3600.0, 1e-6);
    EXPECT_NEAR(found.mag, 0.5 + 6 / 16.0, 1.0 / 32);

    MessageCapture messages;
    EXPECT_FALSE(findObjectByName("HIP 126", found));
    EXPECT_EQ(messages.messages().back().text(), "Object not found\nHIP126 is not in the catalogue.");
}

TEST_F(FinderTest, MissingStarCataloguesAreNamed) {
    MessageCapture messages;
    FoundObject found;
    EXPECT_FALSE(findObjectByName("HR 7001", found));
    EXPECT_EQ(messages.lastTitle(), "Please install nocturnel_hr.ppc in /PALM/Programs/Nocturnel folder.");
    EXPECT_FALSE(findObjectByName("TYC 3105-2070-1", found));
    EXPECT_EQ(messages.lastTitle(), "Please install nocturnel_tycho_2500k.ppc in /PALM/Programs/Nocturnel folder.");
}

TEST_F(FinderTest, TychoStarsFromTheSmallerTychoFile) {
    std::vector<StarEntry> entries(42, starEntry(0, 0, 0, 0, -90, 0, 0, 15.9));
    for (int k = 0; k < 42; ++k) entries.push_back(starEntry(310500000 + 2050 + k, 18, 36, 56, 38, 40 + k / 6, 0));
    test::writeStarBlocks("nocturnel_tycho_390k.ppc", entries, 42);
    std::vector<TychoRegionRecord> regions(3106, TychoRegionRecord{0, 0});
    regions[3105] = {38.5f, 39.0f};
    test::writeRecords("nocturnel_tycho_idx.ppc", regions);
    FoundObject found;
    ASSERT_TRUE(findObjectByName("TYC 3105-2070-1", found));
    EXPECT_EQ(found.name, "TYC3105-2070-1");
    EXPECT_EQ(found.number, 310502070);
    EXPECT_NEAR(found.decDeg, 38 + 43 / 60.0, 1e-6);
}

TEST_F(FinderTest, TychoStarsMoveByTheirCardsSideFile) {
    std::vector<StarEntry> entries(42, starEntry(0, 0, 0, 0, -90, 0, 0, 15.9));
    for (int k = 0; k < 42; ++k)
        entries.push_back(starEntry(310500000 + 2050 + k, 18, 36, 56, 38, 40 + k / 6, 0));
    test::writeStarBlocks("nocturnel_tycho_390k.ppc", entries, 42);
    std::vector<TychoRegionRecord> regions(3106, TychoRegionRecord{0, 0});
    regions[3105] = {38.5f, 39.0f};
    test::writeRecords("nocturnel_tycho_idx.ppc", regions);
    // Record 1, entry 20 is TYC 3105-2070-1: 1"/yr north.
    std::vector<CardStarMotion> motions(84, CardStarMotion{0, 0, 0});
    motions[42 + 20] = {310502070, 0.0f, 1000.0f};
    std::vector<uint8_t> bytes = test::header(kCardMotionFileVersion, 2, 42 * sizeof(CardStarMotion));
    const auto* raw = reinterpret_cast<const uint8_t*>(motions.data());
    bytes.insert(bytes.end(), raw, raw + motions.size() * sizeof(CardStarMotion));
    test::writeBytes("nocturnel_tycho_390k_pm.ppc", bytes);
    const Preferences saved = prefs();
    prefs().utcOffsetMin = 0;
    struct Case {
        ObservingMoment moment;
        double northArcsec;
    };
    const Case cases[] = {{{2000, 1, 1, 12, 0, 0}, 0.0}, {{2100, 1, 1, 12, 0, 0}, 100.0}};
    for (const Case& c : cases) {
        prefs().moment = c.moment;
        FoundObject found;
        ASSERT_TRUE(findObjectByName("TYC 3105-2070-1", found));
        EXPECT_NEAR(found.decDeg, 38 + 43 / 60.0 + c.northArcsec / 3600, 0.01 / 3600) << c.moment.year;
        // Its neighbour has no motion in the file.
        ASSERT_TRUE(findObjectByName("TYC 3105-2071-1", found));
        EXPECT_NEAR(found.decDeg, 38 + 43 / 60.0, 1e-6) << c.moment.year;
    }
    prefs() = saved;
}

TEST_F(FinderTest, DeepSkyObjectsThroughTheIndex) {
    std::vector<ObjectRecord> objects = {test::objectRecord(kCatalogNGC, 224, 16, 0.712f, 41.27f, 31, 0),
                                         test::objectRecord(kCatalogIC, 1, 16)};
    objects[0].mag = 3.4f;
    objects[0].majorArcmin = 190;
    objects[0].minorArcmin = 60;
    objects[0].constellation = -1;
    test::writeRecords("nocturnel_obj_1k.ppc", objects);
    test::writeRecords("nocturnel_obj_1k_idx.ppc",
                       std::vector<ObjectIndexRecord>{{-1, 0, 0, kKeyBeforeAll, 0},
                                                      {1, kCatalogIC, 1, objectIndexKey(kCatalogIC, 1), 0},
                                                      {0, kCatalogNGC, 224, objectIndexKey(kCatalogNGC, 224), 3.4f},
                                                      {-1, 0, 0, kKeyAfterAll, 0}});
    FoundObject found;
    for (const char* name : {"NGC 224", "M31", "m 31"}) {
        ASSERT_TRUE(findObjectByName(name, found)) << name;
        EXPECT_EQ(found.name, "M31, NGC224");
        EXPECT_EQ(found.catalogCode, kCatalogNGC);
        EXPECT_FLOAT_EQ(found.majorArcmin, 190);
        EXPECT_NEAR(found.decDeg, 41.27, 1e-5);
        EXPECT_TRUE(found.magKnown);
    }
    ASSERT_TRUE(findObjectByName("IC 1", found));
    EXPECT_FALSE(found.magKnown);  // 0.0 marks an unknown magnitude
    MessageCapture messages;
    EXPECT_FALSE(findObjectByName("NGC 225", found));
    EXPECT_EQ(messages.messages().back().text(), "Object not found\nNGC225 is not in the catalogue.");
}

TEST_F(FinderTest, DeepSkyWithoutObjectFiles) {
    MessageCapture messages;
    FoundObject found;
    EXPECT_FALSE(findObjectByName("NGC 224", found));
    EXPECT_EQ(messages.lastTitle(), "Could not open object database");
}

}  // namespace
}  // namespace nocturnel
