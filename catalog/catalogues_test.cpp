#include "catalog/catalogues.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalog/catalog_test_support.h"
#include "catalog/star_catalog.h"
#include "settings/message.h"
#include "settings/program_folder.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {
using test::CatalogFolderTest;

std::vector<std::string> texts(const MessageCapture& capture) {
    std::vector<std::string> out;
    for (const Message& m : capture.messages()) out.push_back(m.text());
    return out;
}

class StartUpTest : public CatalogFolderTest {
protected:
    void writeDefaultStars() { test::writePatternFile("nocturnel_default_stars.ppc", 3, 44, 5); }
    void writeObjects(const char* name, uint32_t count, uint32_t version = 24) {
        test::writePatternFile(name, count, 60, version);
    }
    // A star block file of `records` records of 42 entries (only the header's count matters here).
    void writeStarFile(int level, uint32_t records) {
        test::writeBytes(kStarCatalogFiles[level], test::header(1, records, 42 * 12));
    }
};

TEST_F(StartUpTest, WithoutDefaultStarsStartUpAborts) {
    writeObjects("nocturnel_obj_1k.ppc", 10);
    MessageCapture messages;
    EXPECT_EQ(openCatalogues(), -1);
    EXPECT_EQ(texts(messages),
              std::vector<std::string>{"Could not open star database\nPlease install nocturnel_default_stars.ppc in " +
                                       dataPath("x").parent_path().string()});
    EXPECT_FALSE(objectSlot().isOpen());
}

TEST_F(StartUpTest, WithoutObjectFilesStartUpAborts) {
    writeDefaultStars();
    MessageCapture messages;
    EXPECT_EQ(openCatalogues(), -1);
    EXPECT_EQ(texts(messages), std::vector<std::string>{"Could not open object database\n\nPlease install either:\n"
                                                        "nocturnel_obj_1k.ppc or,\nnocturnel_obj_18k.ppc\nin " +
                                                        dataPath("x").parent_path().string()});
}

TEST_F(StartUpTest, OnlyTheSmallObjectFileOpensSilently) {
    writeDefaultStars();
    writeObjects("nocturnel_obj_1k.ppc", 10);
    MessageCapture messages;
    EXPECT_EQ(openCatalogues(), 0);
    EXPECT_TRUE(messages.messages().empty());
    EXPECT_TRUE(defaultStarSlot().isOpen());
    EXPECT_EQ(recordCount(objectSlot()), 10);
    EXPECT_FALSE(starCatalogSlot().isOpen());
    EXPECT_EQ(starsPerBlock(), 0);
    for (DatabaseSlot* optional : {&moonSlot(), &marsSlot(), &cometSlot(), &satelliteSlot(), &objectIndexSlot(),
                                   &objectDescriptionSlot()})
        EXPECT_FALSE(optional->isOpen());
}

TEST_F(StartUpTest, TheLargeObjectFileIsPreferredAndTheSmallIndexOpened) {
    writeDefaultStars();
    writeObjects("nocturnel_obj_1k.ppc", 10);
    writeObjects("nocturnel_obj_18k.ppc", 2500);
    test::writePatternFile("nocturnel_obj_1k_idx.ppc", 4, 20);
    test::writePatternFile("nocturnel_mars.ppc", 2, 36);
    test::writePatternFile("nocturnel_comet.ppc", 2, 128);
    EXPECT_EQ(openCatalogues(), 0);
    EXPECT_EQ(recordCount(objectSlot()), 2500);
    EXPECT_EQ(recordCount(objectIndexSlot()), 4);
    EXPECT_EQ(openObjectIndexSize(), 0);
    EXPECT_TRUE(marsSlot().isOpen());
    EXPECT_TRUE(cometSlot().isOpen());
}

TEST_F(StartUpTest, OldObjectAndMoonFilesAreReportedButUsed) {
    writeDefaultStars();
    writeObjects("nocturnel_obj_1k.ppc", 10, 23);
    test::writePatternFile("nocturnel_moon.ppc", 2, 44, 22);
    MessageCapture messages;
    EXPECT_EQ(openCatalogues(), 0);
    EXPECT_EQ(texts(messages),
              (std::vector<std::string>{
                  "You did not install the last version of nocturnel_obj_18k.ppc or nocturnel_obj_1k.ppc\n",
                  "You did not install the last version of nocturnel_moon.ppc\n"}));
    EXPECT_TRUE(objectSlot().isOpen());
    EXPECT_TRUE(moonSlot().isOpen());
}

TEST_F(StartUpTest, TheOptionalStarCatalogueFollowsThePreference) {
    writeDefaultStars();
    writeObjects("nocturnel_obj_1k.ppc", 10);
    writeStarFile(2, 300);
    prefs().cardCatalog = 2;
    EXPECT_EQ(openCatalogues(), 0);
    EXPECT_EQ(starCatalogLevel(), 2);
    EXPECT_EQ(starsPerBlock(), 42);

    // A missing optional file ends start-up without an alert, before the object files.
    prefs().cardCatalog = 3;
    MessageCapture messages;
    EXPECT_EQ(openCatalogues(), -1);
    EXPECT_TRUE(messages.messages().empty());
    EXPECT_FALSE(starCatalogSlot().isOpen());
    EXPECT_FALSE(objectSlot().isOpen());
}

TEST(StarsPerBlock, MoreThan25000RecordsHold80Stars) {
    struct Case {
        uint32_t records;
        int perBlock;
    };
    for (const Case c : {Case{0, 42}, Case{217, 42}, Case{25000, 42}, Case{25001, 80}, Case{65535, 80}})
        EXPECT_EQ(starsPerBlockForRecordCount(c.records), c.perBlock) << c.records;
}

TEST_F(StartUpTest, LargeCataloguesAreReadWith80StarsPerBlock) {
    writeDefaultStars();
    writeObjects("nocturnel_obj_1k.ppc", 10);
    writeStarFile(6, 31250);
    prefs().cardCatalog = 6;
    ASSERT_EQ(openCatalogues(), 0);
    EXPECT_EQ(starsPerBlock(), 80);
    EXPECT_EQ(starCatalogStarCount(), 31250u * 80u);
}

class ZoomSwitchTest : public StartUpTest {
protected:
    void SetUp() override {
        StartUpTest::SetUp();
        writeDefaultStars();
        writeObjects("nocturnel_obj_1k.ppc", 10);
        writeStarFile(0, 217);  // HR
        writeStarFile(1, 380);  // HIP 16k
    }
};

TEST_F(ZoomSwitchTest, PreferenceZeroKeepsTheDefaultStars) {
    ASSERT_EQ(openCatalogues(), 0);
    MessageCapture messages;
    EXPECT_FALSE(switchStarCatalogForZoom(8));
    EXPECT_FALSE(starCatalogSlot().isOpen());
    EXPECT_TRUE(messages.messages().empty());
}

TEST_F(ZoomSwitchTest, ZoomLevelsPickTheirCatalogueCappedByThePreference) {
    prefs().cardCatalog = 1;
    ASSERT_EQ(openCatalogues(), 0);
    struct Case {
        int zoom;
        int level;
    };
    for (const Case c : {Case{0, 0}, Case{4, 0}, Case{5, 1}, Case{12, 1}, Case{15, 1}, Case{2, 0}}) {
        SCOPED_TRACE(c.zoom);
        EXPECT_TRUE(switchStarCatalogForZoom(c.zoom));
        EXPECT_EQ(starCatalogLevel(), c.level);
        EXPECT_EQ(starsPerBlock(), 42);
    }
    EXPECT_FALSE(switchStarCatalogForZoom(16));
    EXPECT_FALSE(switchStarCatalogForZoom(-2));
}

TEST_F(ZoomSwitchTest, TheSameZoomLevelDoesNotReopen) {
    prefs().cardCatalog = 6;
    ASSERT_EQ(openCatalogues(), -1);  // the Tycho 2.5M file is not installed
    ASSERT_TRUE(switchStarCatalogForZoom(3));
    const RecordFile* opened = starCatalogSlot().file.get();
    EXPECT_TRUE(switchStarCatalogForZoom(3));
    EXPECT_EQ(starCatalogSlot().file.get(), opened);
    EXPECT_TRUE(switchStarCatalogForZoom(4));  // same file, opened anew
    EXPECT_EQ(starCatalogLevel(), 0);
}

TEST_F(ZoomSwitchTest, AMissingFileLeavesOnlyTheDefaultStars) {
    prefs().cardCatalog = 6;
    openCatalogues();
    ASSERT_TRUE(switchStarCatalogForZoom(5));
    MessageCapture messages;
    EXPECT_FALSE(switchStarCatalogForZoom(6));
    EXPECT_EQ(texts(messages), (std::vector<std::string>{
                                   "Please install nocturnel_hip_32k.ppc in /PALM/Programs/Nocturnel folder.\nLooked in " +
                                       dataPath("x").parent_path().string(),
                                   "Could not open optional stellar database\nUse only default stars"}));
    EXPECT_EQ(starsPerBlock(), 0);
    EXPECT_FALSE(starCatalogSlot().isOpen());
    // The remembered zoom level was forgotten: the same level is tried again.
    messages.clear();
    EXPECT_FALSE(switchStarCatalogForZoom(6));
    EXPECT_EQ(messages.messages().size(), 2u);
    EXPECT_TRUE(switchStarCatalogForZoom(5));
    EXPECT_EQ(starsPerBlock(), 42);
}

TEST_F(ZoomSwitchTest, DirectOpeningByLevel) {
    ASSERT_EQ(openCatalogues(), 0);
    EXPECT_TRUE(openStarCatalogLevel(1));
    EXPECT_EQ(starCatalogLevel(), 1);
    MessageCapture messages;
    EXPECT_FALSE(openStarCatalogLevel(4));
    EXPECT_EQ(messages.lastTitle(), "Please install nocturnel_hip_110k.ppc in /PALM/Programs/Nocturnel folder.");
    EXPECT_FALSE(starCatalogSlot().isOpen());
    EXPECT_EQ(starsPerBlock(), 0);
}

class ObjectIndexTest : public CatalogFolderTest {
protected:
    // Index records whose keys are `keys`, record i pointing to object i.
    static void writeIndex(const char* name, const std::vector<int32_t>& keys, int64_t declared = -1) {
        std::vector<ObjectIndexRecord> records;
        for (std::size_t i = 0; i < keys.size(); ++i)
            records.push_back({static_cast<int32_t>(i), 42, static_cast<int32_t>(i), keys[i], 0.0f});
        test::writeRecords(name, records, 24, declared);
    }
};

TEST_F(ObjectIndexTest, FindsEveryKeyAndNeverProbesRecordZero) {
    const std::vector<int32_t> keys = {5, 10, 20, 30, 40, 50, 60, 70};
    writeIndex("nocturnel_obj_1k_idx.ppc", keys);
    ASSERT_TRUE(openObjectIndexForSize(0));
    for (std::size_t i = 1; i < keys.size(); ++i) EXPECT_EQ(findObjectIndex(keys[i]), static_cast<int>(i)) << keys[i];
    // Record 0 holds key 5, but the search starts at record 1: it ends on the last record probed.
    EXPECT_EQ(findObjectIndex(5), 1);
    // A missing key ends at the last record probed, a neighbour of where it would be.
    const int near = findObjectIndex(35);
    EXPECT_TRUE(near == 3 || near == 4) << near;
    EXPECT_EQ(findObjectIndex(1000), 7);
}

TEST_F(ObjectIndexTest, NoIndexOrASingleRecord) {
    EXPECT_EQ(findObjectIndex(10), -1);
    writeIndex("nocturnel_obj_2k_idx.ppc", {99});
    ASSERT_TRUE(openObjectIndexForSize(1));
    EXPECT_EQ(findObjectIndex(10), 0);
    EXPECT_EQ(openObjectIndexSize(), 1);
}

TEST_F(ObjectIndexTest, UnreadableRecordIsReported) {
    writeIndex("nocturnel_obj_18k_idx.ppc", {0, 10, 20, 30}, 100);  // the header claims 100 records
    ASSERT_TRUE(openObjectIndexForSize(2));
    MessageCapture messages;
    EXPECT_EQ(findObjectIndex(30), -1);  // the first probe, record 50, lies past the end of the file
    EXPECT_EQ(messages.lastTitle(), "Can't find Object record number 50");
}

TEST_F(ObjectIndexTest, SwitchingClosesThePreviousIndex) {
    writeIndex("nocturnel_obj_1k_idx.ppc", {0, 1, 2});
    ASSERT_TRUE(openObjectIndexForSize(0));
    EXPECT_FALSE(openObjectIndexForSize(2));  // not installed
    EXPECT_FALSE(objectIndexSlot().isOpen());
    EXPECT_EQ(findObjectIndex(1), -1);
    EXPECT_FALSE(openObjectIndexForSize(3));
    EXPECT_FALSE(openObjectIndexForSize(-1));
}

}  // namespace
}  // namespace nocturnel
