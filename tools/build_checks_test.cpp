// The after-write checks catch each kind of broken file the readers would trip over.
#include "tools/build_checks.h"

#include <gtest/gtest.h>

#include "catalog/object_index_key.h"
#include "catalog/object_tables.h"
#include "tools/object_files.h"
#include "tools/star_files.h"
#include "tools/star_packing.h"
#include "tools/test_support.h"

namespace nocturnel {
namespace {
using testing::TempFolder;

bool writeBlocks(const std::filesystem::path& file, const std::vector<StarEntry>& entries, int perBlock) {
    DatabaseHeader header{1, 0, static_cast<uint32_t>(entries.size() / perBlock), static_cast<uint32_t>(perBlock * 12)};
    std::string bytes(sizeof header, '\0');
    std::memcpy(bytes.data(), &header, sizeof header);
    bytes.append(reinterpret_cast<const char*>(entries.data()), entries.size() * sizeof(StarEntry));
    return writeWholeFile(file, bytes);
}

std::vector<StarEntry> sampleBlocks() {
    std::vector<StarToPack> stars;
    for (int i = 1; i <= 200; ++i) stars.push_back({i, (i % 24) + 0.25, -85.0 + i * 0.8, 7.0, 0.4, true});
    return packStarBlocks(stars, 42);
}

TEST(BuildChecks, StarBlockFileRules) {
    TempFolder folder;
    const auto file = folder.path() / "blocks.ppc";
    std::string error;
    const auto good = sampleBlocks();
    ASSERT_TRUE(writeBlocks(file, good, 42));
    EXPECT_TRUE(checkStarBlockFile(file, {42, 0, 0}, error)) << error;

    const struct {
        const char* what;
        std::function<void(std::vector<StarEntry>&)> damage;
        StarFileRules rules;
        const char* error;
    } cases[] = {
        {"blocks out of order", [](auto& e) { std::swap_ranges(e.begin() + 42, e.begin() + 84, e.begin() + 84); }, {42, 0, 0},
         "starts south of the record before it"},
        {"entries out of order", [](auto& e) { std::swap(e[43], e[50]); }, {42, 0, 0}, "are not ordered south to north"},
        {"empty slot with a magnitude", [](auto& e) { e.back().mag16 = 100; }, {42, 0, 0}, "breaks the empty-slot rule"},
        {"a star in record 0", [](auto& e) { e[5].number = 9; e[5].mag16 = 50; }, {42, 0, 0}, "breaks the empty-slot rule"},
        {"minutes beyond 59", [](auto& e) { e[60].raM = 61; }, {42, 0, 0}, "impossible position"},
        {"too few slots for the index", [](auto&) {}, {42, 9101, 9199}, "outside 9101..9199"},
        {"80 stars expected", [](auto&) {}, {80, 0, 0}, "disagree with the reader's rule"},
    };
    for (const auto& c : cases) {
        auto entries = good;
        c.damage(entries);
        ASSERT_TRUE(writeBlocks(file, entries, 42));
        EXPECT_FALSE(checkStarBlockFile(file, c.rules, error)) << c.what;
        EXPECT_NE(error.find(c.error), std::string::npos) << c.what << ": " << error;
    }
}

TEST(BuildChecks, NumberIndexMustAgreeWithItsBlocks) {
    TempFolder folder;
    const auto blocks = folder.path() / "blocks.ppc", index = folder.path() / "index.ppc";
    const auto entries = sampleBlocks();
    ASSERT_TRUE(writeBlocks(blocks, entries, 42));
    auto records = buildNumberIndex(entries, 42);
    std::string error;
    ASSERT_TRUE(writeWholeFile(index, recordFileBytes<HipIndexRecord>(1, records)));
    EXPECT_TRUE(checkNumberIndex(index, blocks, error)) << error;
    records[100 / 42].block[100 % 42] = static_cast<int16_t>(records[100 / 42].block[100 % 42] + 1);
    ASSERT_TRUE(writeWholeFile(index, recordFileBytes<HipIndexRecord>(1, records)));
    EXPECT_FALSE(checkNumberIndex(index, blocks, error));
    EXPECT_EQ(error, "index.ppc: star 100 is not indexed to its block " + std::to_string((42 + 99) / 42));
    records = buildNumberIndex(entries, 42);
    records[0].block[0] = 2;  // a slot for a star that does not exist
    ASSERT_TRUE(writeWholeFile(index, recordFileBytes<HipIndexRecord>(1, records)));
    EXPECT_FALSE(checkNumberIndex(index, blocks, error));
    EXPECT_EQ(error, "index.ppc: 201 index slots for 200 stars");
}

TEST(BuildChecks, ObjectIndexKeysAndStretches) {
    TempFolder folder;
    const auto objects = folder.path() / "obj.ppc", index = folder.path() / "idx.ppc";
    std::vector<ObjectRecord> records(2, ObjectRecord{});
    records[0].catalog = kCatalogNGC;
    records[0].number = 224;
    records[1].catalog = kCatalogIC;
    records[1].number = 434;
    ASSERT_TRUE(writeWholeFile(objects, recordFileBytes<ObjectRecord>(kObjectFileVersion, records)));
    auto makeIndex = [](int icSlot, int ngcSlot) {
        std::vector<ObjectIndexRecord> idx(19402);
        for (size_t i = 0; i < idx.size(); ++i) idx[i] = {-1, 0, 0, i < 1126 ? kKeyBeforeAll : static_cast<int32_t>(i), 0};
        for (int code = 0; code < kCatalogCount; ++code) {
            auto [first, end] = usableStretch(code);
            for (int i = first; i < end; ++i) idx[i] = {-1, code, kIndexNumberLimit, objectIndexFillerKey(code), 0};
        }
        for (size_t i = 1127; i < idx.size(); ++i)
            if (idx[i].catalog == 0) idx[i] = {-1, 0, 0, idx[i - 1].key, 0};
        idx[icSlot] = {1, kCatalogIC, 434, objectIndexKey(kCatalogIC, 434), 0};
        idx[ngcSlot] = {0, kCatalogNGC, 224, objectIndexKey(kCatalogNGC, 224), 3.4f};
        idx.back() = {-1, 0, 0, kKeyAfterAll, 0};
        return idx;
    };
    std::string error;
    ASSERT_TRUE(writeWholeFile(index, recordFileBytes<ObjectIndexRecord>(1, makeIndex(4345, 10054))));
    EXPECT_TRUE(checkObjectFiles(objects, index, true, error)) << error;

    const struct {
        const char* what;
        std::vector<ObjectIndexRecord> idx;
        const char* error;
    } cases[] = {
        {"NGC entry in the IC stretch", makeIndex(4345, 9000), "record 9000 of catalogue NGC lies outside its stretch"},
        {"IC entry after NGC's", makeIndex(10055, 10054), "keys are not in order at record 10055"},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(writeWholeFile(index, recordFileBytes<ObjectIndexRecord>(1, c.idx)));
        EXPECT_FALSE(checkObjectFiles(objects, index, true, error)) << c.what;
        EXPECT_NE(error.find(c.error), std::string::npos) << c.what << ": " << error;
    }
    auto wrongKey = makeIndex(4345, 10054);
    wrongKey[10054].number = 225;
    ASSERT_TRUE(writeWholeFile(index, recordFileBytes<ObjectIndexRecord>(1, wrongKey)));
    EXPECT_FALSE(checkObjectFiles(objects, index, true, error));
    EXPECT_NE(error.find("carries a key that is not its catalogue and number's"), std::string::npos) << error;
    auto open = makeIndex(4345, 10054);
    open.back().key = open[open.size() - 2].key;
    ASSERT_TRUE(writeWholeFile(index, recordFileBytes<ObjectIndexRecord>(1, open)));
    EXPECT_FALSE(checkObjectFiles(objects, index, true, error));
    EXPECT_NE(error.find("the last record does not close the index"), std::string::npos) << error;
    // The small file: no stretches, but fewer than 2,000 objects.
    ASSERT_TRUE(writeWholeFile(objects, recordFileBytes<ObjectRecord>(kObjectFileVersion, std::vector<ObjectRecord>(2000))));
    ASSERT_TRUE(writeWholeFile(index, recordFileBytes<ObjectIndexRecord>(1, std::vector<ObjectIndexRecord>(1))));
    EXPECT_FALSE(checkObjectFiles(objects, index, false, error));
    EXPECT_NE(error.find("fewer than 2,000"), std::string::npos) << error;
}

TEST(StarNames, BayerLettersBecomeTheirAbbreviations) {
    const struct {
        const char* greek;
        const char* constellation;
        const char* expected;
    } cases[] = {
        {"\xCE\xB1", "Lyr", "alf Lyr"}, {"\xCF\x80" "1", "Ori", "pi1 Ori"}, {"\xCF\x89", "Cen", "ome Cen"},
        {"\xCE\xBC" "2", "Sco", "mu2 Sco"}, {"A", "Car", ""}, {"\xCE\xB1x", "Lyr", ""}, {"", "Lyr", ""},
    };
    for (const auto& c : cases) EXPECT_EQ(bayerDesignation(c.greek, c.constellation), c.expected) << c.expected;
}

}  // namespace
}  // namespace nocturnel
