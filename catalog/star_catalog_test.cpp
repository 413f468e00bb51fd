#include "catalog/star_catalog.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numbers>
#include <vector>

#include "catalog/catalog_test_support.h"
#include "settings/message.h"

namespace nocturnel {
namespace {
using test::CatalogFolderTest;
using test::starEntry;

TEST(StarEntryDecoding, FixedAndFloatingPathsAgreeWithTheExactAngles) {
    struct Case {
        int h, m, s, d, dm, ds;
    };
    const Case cases[] = {
        {0, 0, 0, 0, 0, 0},       {18, 36, 56, 38, 47, 1},    {6, 45, 9, -16, -42, -58},
        {23, 59, 59, 89, 59, 59}, {12, 0, 0, -89, -59, -59}, {5, 35, 17, 0, -5, -23},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.h << "h" << c.m << "m" << c.s << "s " << c.d << " " << c.dm << " " << c.ds);
        const StarEntry e = starEntry(91262, c.h, c.m, c.s, c.d, c.dm, c.ds, 3.5, -3);
        const double raHours = c.h + c.m / 60.0 + c.s / 3600.0;
        const double decDeg = c.d + c.dm / 60.0 + c.ds / 3600.0;
        EXPECT_NEAR(starEntryRaHours(e), raHours, 1e-8);
        EXPECT_NEAR(starEntryDecDeg(e), decDeg, 1e-8);

        StarPosition p;
        decodeStarEntry(e, p);
        EXPECT_NEAR(fixedToDouble(p.ra), raHours * std::numbers::pi / 12.0, 2e-7);
        EXPECT_NEAR(fixedToDouble(p.dec), decDeg * std::numbers::pi / 180.0, 2e-7);
        EXPECT_EQ(p.id, 25726);  // the low 16 bits of 91262
        EXPECT_EQ(p.mag, 56);
        EXPECT_EQ(p.colour, -3);
    }
}

// A 42-star block file: record 0 empty at -90, then `blocks` blocks whose first entries lie at
// -80 + 5 b degrees, stepping one arcminute per entry. Stars are numbered 38, 39, ... in order.
class BlockFileTest : public CatalogFolderTest {
protected:
    static constexpr int kPerBlock = 42;
    static constexpr int kFirstNumber = 38;

    static int32_t numberAt(int block, int k) { return kFirstNumber + (block - 1) * kPerBlock + k; }
    static double firstDecOf(int block) { return -80.0 + 5.0 * block; }

    std::vector<StarEntry> makeBlocks(int blocks) {
        std::vector<StarEntry> entries;
        for (int k = 0; k < kPerBlock; ++k) entries.push_back(starEntry(0, 0, 0, 0, -90, 0, 0, 15.9));
        for (int b = 1; b <= blocks; ++b)
            for (int k = 0; k < kPerBlock; ++k)
                entries.push_back(starEntry(numberAt(b, k), b % 24, k, 0, static_cast<int>(firstDecOf(b)), k, 0, 6.0));
        return entries;
    }

    // Number index for the stars of makeBlocks: record r slot s -> block of star r * 42 + s.
    void writeNumberIndex(const char* name, int blocks) {
        const int largest = numberAt(blocks, kPerBlock - 1);
        std::vector<HipIndexRecord> index(largest / 42 + 1);
        for (auto& r : index)
            for (auto& slot : r.block) slot = -1;
        for (int b = 1; b <= blocks; ++b)
            for (int k = 0; k < kPerBlock; ++k) {
                const int n = numberAt(b, k);
                index[n / 42].block[n % 42] = static_cast<int16_t>(b);
            }
        test::writeRecords(name, index);
    }

    void openCatalogue(const std::vector<StarEntry>& entries, int64_t declaredRecords = -1) {
        test::writeStarBlocks(kStarCatalogFiles[1], entries, kPerBlock, declaredRecords);
        ASSERT_TRUE(openStarCatalogLevel(1));
    }
};

TEST_F(BlockFileTest, DeclinationSearchFindsEveryBlockStart) {
    const int blocks = 30;
    openCatalogue(makeBlocks(blocks));
    for (int b = 1; b <= blocks; ++b) EXPECT_EQ(findBlockByDeclination(static_cast<float>(firstDecOf(b))), b) << b;
    // Between block starts the search ends on one of the two neighbouring blocks.
    for (int b = 1; b < blocks; ++b) {
        const int found = findBlockByDeclination(static_cast<float>(firstDecOf(b) + 2.5));
        EXPECT_TRUE(found == b || found == b + 1) << b << " -> " << found;
    }
}

TEST_F(BlockFileTest, DeclinationKeyCarriesTheSignIntoTheArcminutes) {
    std::vector<StarEntry> entries;
    const int starts[][2] = {{-90, 0}, {-45, -30}, {0, -30}, {0, 15}, {10, 0}, {45, 30}, {89, 59}};
    for (const auto& start : starts)
        for (int k = 0; k < kPerBlock; ++k) entries.push_back(starEntry(1, 0, 0, 0, start[0], start[1], 0));
    openCatalogue(entries);
    struct Case {
        float decDeg;
        int block;
    };
    for (const Case c : {Case{-45.5f, 1}, Case{-0.5f, 2}, Case{0.25f, 3}, Case{10.0f, 4}, Case{45.5f, 5},
                         Case{89.99f, 6}})
        EXPECT_EQ(findBlockByDeclination(c.decDeg), c.block) << c.decDeg;
}

TEST_F(BlockFileTest, DeclinationSearchRefusals) {
    MessageCapture messages;
    EXPECT_EQ(findBlockByDeclination(10.0f), -1);  // no optional file
    openCatalogue(makeBlocks(3));
    for (float bad : {90.01f, -90.5f, std::nanf("")}) EXPECT_EQ(findBlockByDeclination(bad), -1) << bad;
    EXPECT_EQ(findBlockByDeclination(90.0f), 3);
    EXPECT_TRUE(messages.messages().empty());

    openCatalogue(std::vector<StarEntry>(kPerBlock, starEntry(1, 0, 0, 0, 0, 0, 0)));  // one record
    EXPECT_EQ(findBlockByDeclination(50.0f), 0);

    openCatalogue(makeBlocks(3), 40);  // the header claims 40 records
    EXPECT_EQ(findBlockByDeclination(80.0f), -1);
    EXPECT_EQ(messages.lastTitle(), "Can't find Hipparchos record number 20");
}

TEST_F(BlockFileTest, SequenceNumbersAddressBlockAndEntry) {
    MessageCapture messages;
    StarPosition p;
    EXPECT_EQ(readStarBySequence(43, p), 0);
    EXPECT_EQ(messages.lastTitle(), "Database Hipparchos isn't open!");
    openCatalogue(makeBlocks(4));
    EXPECT_EQ(readStarBySequence(42, p), numberAt(1, 0));
    EXPECT_EQ(readStarBySequence(3 * 42 + 17, p), numberAt(3, 17));
    EXPECT_NEAR(fixedToDouble(p.dec), (firstDecOf(3) + 17 / 60.0) * std::numbers::pi / 180, 2e-7);
    messages.clear();
    EXPECT_EQ(readStarBySequence(5 * 42, p), 0);
    EXPECT_EQ(messages.messages().at(0).text(), "Could not retrieve star record!\nrecId 5");
}

TEST_F(BlockFileTest, NumberLookupUsesTheIndexOfTheCataloguesSize) {
    // 217 records of 42 stars = 9,114 stars: an HR-sized catalogue.
    const int blocks = 216;
    openCatalogue(makeBlocks(blocks));
    ASSERT_EQ(starCatalogStarCount(), 9114u);
    writeNumberIndex("nocturnel_hr_idx.ppc", blocks);
    StarPosition p;
    struct Case {
        int32_t number;
        int block;
    };
    for (const Case c : {Case{38, 1}, Case{84, 2}, Case{5000, (5000 - kFirstNumber) / kPerBlock + 1},
                         Case{numberAt(blocks, 41), blocks}}) {
        SCOPED_TRACE(c.number);
        p = {};
        EXPECT_TRUE(findStarByNumber(c.number, p));
        EXPECT_EQ(findStarByHip(c.number, p), c.block);
        EXPECT_EQ(p.id, static_cast<int16_t>(c.number));
    }
    // Numbers outside 1..121,000 are refused at once, without a message.
    MessageCapture messages;
    for (int32_t bad : {0, -5, 121001}) EXPECT_EQ(findStarByHip(bad, p), -1) << bad;
    EXPECT_TRUE(messages.messages().empty());
    // A number the index does not hold.
    EXPECT_FALSE(findStarByNumber(20, p));
}

TEST_F(BlockFileTest, TheIndexDecidesTheBlockThatIsSearched) {
    openCatalogue(makeBlocks(216));
    // HIP 84 lies in index record 2, slot 0; point it at block 7 on purpose.
    std::vector<HipIndexRecord> index(3);
    for (auto& r : index)
        for (auto& slot : r.block) slot = -1;
    index[2].block[0] = 7;
    test::writeRecords("nocturnel_hr_idx.ppc", index);
    StarPosition p;
    EXPECT_EQ(findStarByHip(84, p), 7);  // the block is returned whether or not the star is there
    EXPECT_FALSE(findStarByNumber(84, p));
}

TEST_F(BlockFileTest, CataloguesWithoutAnIndexFailQuietly) {
    // 1,191 records of 42 = 50,022 stars: neither the HIP 110k nor the HR size.
    openCatalogue(makeBlocks(5), 1191);
    writeNumberIndex("nocturnel_hr_idx.ppc", 5);
    writeNumberIndex("nocturnel_hip_110k_idx.ppc", 5);
    MessageCapture messages;
    StarPosition p;
    EXPECT_EQ(findStarByHip(84, p), -1);
    EXPECT_TRUE(messages.messages().empty());
}

TEST_F(BlockFileTest, HipparcosSizedCataloguesUseTheHipIndex) {
    // 2,810 records of 42 = 118,020 stars (only the first blocks are really in the file).
    openCatalogue(makeBlocks(10), 2810);
    MessageCapture messages;
    StarPosition p;
    EXPECT_EQ(findStarByHip(84, p), -1);
    EXPECT_EQ(messages.lastTitle(), "Could not open Hipparchos index file");
    writeNumberIndex("nocturnel_hip_110k_idx.ppc", 10);
    EXPECT_EQ(findStarByHip(84, p), 2);
    // Index record 20 (stars 840..881) is past the end of this small index.
    messages.clear();
    EXPECT_EQ(findStarByHip(850, p), 20);
    EXPECT_EQ(messages.lastTitle(), "Can't find Hipparchos index record number 20");
}

TEST_F(BlockFileTest, TychoStarsAreFoundBetweenTheirRegionsDeclinations) {
    // Stars of region 5 are numbered 500,000 + n and sit in blocks 3 and 4.
    std::vector<StarEntry> entries = makeBlocks(6);
    for (int b = 3; b <= 4; ++b)
        for (int k = 0; k < kPerBlock; ++k) entries[b * kPerBlock + k].number = 500000 + (b - 3) * kPerBlock + k + 1;
    openCatalogue(entries);
    std::vector<TychoRegionRecord> regions(6, TychoRegionRecord{0, 0});
    regions[5] = {static_cast<float>(firstDecOf(3)), static_cast<float>(firstDecOf(4) + 41 / 60.0)};
    regions[4] = {50.0f, 10.0f};  // low above high
    MessageCapture messages;
    StarPosition p;
    EXPECT_FALSE(findTychoStar(500001, p));
    EXPECT_EQ(messages.lastTitle(), "Can't open Tycho index.");
    test::writeRecords("nocturnel_tycho_idx.ppc", regions);

    EXPECT_TRUE(findTychoStar(500001, p));
    EXPECT_NEAR(fixedToDouble(p.dec), firstDecOf(3) * std::numbers::pi / 180, 2e-7);
    EXPECT_TRUE(findTychoStar(500000 + kPerBlock + 42, p));
    EXPECT_NEAR(fixedToDouble(p.dec), (firstDecOf(4) + 41 / 60.0) * std::numbers::pi / 180, 2e-7);
    EXPECT_FALSE(findTychoStar(500000 + 2 * kPerBlock + 1, p));
    EXPECT_FALSE(findTychoStar(400001, p));
    messages.clear();
    EXPECT_FALSE(findTychoStar(900001, p));
    EXPECT_EQ(messages.lastTitle(), "Could not retrieve tycho record!");
}

class DefaultStarTest : public CatalogFolderTest {};

TEST_F(DefaultStarTest, ReadsWithinTheFixedRangeOnly) {
    std::vector<DefaultStarRecord> stars(5);
    for (int i = 0; i < 5; ++i) stars[i].hip = 1000 + i;
    test::writeRecords("nocturnel_default_stars.ppc", stars);
    ASSERT_TRUE(openDefaultStars());
    DefaultStarRecord star;
    ASSERT_TRUE(readDefaultStar(4, star));
    EXPECT_EQ(star.hip, 1004);
    MessageCapture messages;
    EXPECT_FALSE(readDefaultStar(-1, star));
    EXPECT_FALSE(readDefaultStar(1646, star));
    EXPECT_TRUE(messages.messages().empty());
    EXPECT_FALSE(readDefaultStar(5, star));  // within 0..1,645 but past this file's end
    ASSERT_EQ(messages.messages().size(), 1u);
    EXPECT_EQ(messages.messages()[0].text(), "Could not retrieve star record!\nrecId 5");
}

class BrightStarTest : public CatalogFolderTest {};

TEST_F(BrightStarTest, SecondHalfIsSearchedByKey) {
    MessageCapture messages;
    EXPECT_EQ(brightStarCount(), 0);
    EXPECT_EQ(messages.lastTitle(), "Could not find nocturnel_brightstar.ppc catalog.");
    forgetBrightStarCount();

    const uint16_t keys[] = {15, 424, 1713, 2491, 5340, 7001};
    std::vector<BrightStarRecord> records(12);
    for (int i = 0; i < 6; ++i) {
        records[i].key = keys[5 - i];   // first half in another order
        records[6 + i].key = keys[i];   // second half ordered by key
        std::snprintf(records[6 + i].name, sizeof records[6 + i].name, "star%d", keys[i]);
    }
    test::writeRecords("nocturnel_brightstar.ppc", records);
    EXPECT_EQ(brightStarCount(), 6);
    for (int i = 0; i < 6; ++i) {
        const int found = findBrightStar(keys[i]);
        ASSERT_EQ(found, 6 + i) << keys[i];
        BrightStarRecord star;
        ASSERT_TRUE(readBrightStar(found, star));
        EXPECT_EQ(std::string(star.name), "star" + std::to_string(keys[i]));
    }
    EXPECT_EQ(findBrightStar(16), -1);
    EXPECT_EQ(findBrightStar(9999), -1);
    // The count is remembered even when the file changes.
    test::writeRecords("nocturnel_brightstar.ppc", std::vector<BrightStarRecord>(2));
    EXPECT_EQ(brightStarCount(), 6);
}

}  // namespace
}  // namespace nocturnel
