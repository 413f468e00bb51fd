#include "catalog/record_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "catalog/catalog_test_support.h"
#include "settings/message.h"

namespace nocturnel {
namespace {
using test::CatalogFolderTest;

TEST(FourCharCode, SpellsTheCodeMostSignificantByteFirst) {
    EXPECT_EQ(fourCharCode("pl01"), 0x706C3031u);
    EXPECT_EQ(fourCharCode("CYT1"), 0x43595431u);
    // Stored on a little-endian machine the value reads backwards.
    const uint32_t code = fourCharCode("pl01");
    char bytes[4];
    std::memcpy(bytes, &code, 4);
    EXPECT_EQ(std::string(bytes, 4), "10lp");
}

class RecordFileTest : public CatalogFolderTest {};

TEST_F(RecordFileTest, FilesWithoutAWholeHeaderCountAsAbsentSilently) {
    MessageCapture messages;
    for (std::size_t length : {0u, 1u, 8u, 15u}) {
        SCOPED_TRACE(length);
        test::writeBytes("short.ppc", std::vector<uint8_t>(length, 0x11));
        DatabaseSlot slot;
        EXPECT_FALSE(openDatabase(slot, fourCharCode("pl01"), fourCharCode("CYT1"), 0, "data/", "short.ppc"));
        EXPECT_FALSE(slot.isOpen());
        EXPECT_EQ(recordCount(slot), 0);
    }
    DatabaseSlot missing;
    EXPECT_FALSE(openDatabase(missing, fourCharCode("pl01"), fourCharCode("CYT1"), 0, "data/", "missing.ppc"));
    EXPECT_TRUE(messages.messages().empty());
}

TEST_F(RecordFileTest, HeaderWordsKeepOnlyTheirLow16Bits) {
    test::writeBytes("big.ppc", test::header(0x10018, 70000, 12));
    DatabaseSlot slot;
    ASSERT_TRUE(openDatabase(slot, 0, 0, 0, "data/", "big.ppc"));
    EXPECT_EQ(recordCount(slot), 4464);     // 70,000 - 65,536
    EXPECT_EQ(databaseVersion(slot), 24);   // 0x10018
    EXPECT_EQ(recordSize(slot), 12u);
    EXPECT_EQ(databaseTotalSize(slot, 42), 4464u * 42u);
    closeDatabase(slot);
    EXPECT_FALSE(slot.isOpen());
    EXPECT_EQ(recordCount(slot), 0);
    EXPECT_EQ(databaseVersion(slot), 0);
    closeDatabase(slot);  // closing twice does nothing
}

TEST_F(RecordFileTest, ReadsRecordsByIndexModulo65536) {
    test::writePatternFile("pattern.ppc", 5, 7);
    DatabaseSlot slot;
    ASSERT_TRUE(openDatabase(slot, 0, 0, 0, "data/", "pattern.ppc"));
    struct Case {
        uint32_t index;
        uint8_t firstByte;
    };
    for (const Case c : {Case{0, 0}, Case{2, 2}, Case{4, 4}, Case{65536, 0}, Case{65539, 3}}) {
        SCOPED_TRACE(c.index);
        std::array<uint8_t, 7> record{};
        ASSERT_TRUE(readRecord(slot, c.index, record.data(), record.size()));
        for (std::size_t j = 0; j < record.size(); ++j) EXPECT_EQ(record[j], static_cast<uint8_t>(c.firstByte + j));
    }
}

TEST_F(RecordFileTest, ReadsPastTheEndFailWithTheGenericText) {
    test::writePatternFile("pattern.ppc", 3, 8);
    DatabaseSlot slot;
    ASSERT_TRUE(openDatabase(slot, 0, 0, 0, "data/", "pattern.ppc"));
    MessageCapture messages;
    std::array<uint8_t, 8> record{};
    EXPECT_FALSE(readRecord(slot, 3, record.data(), record.size()));
    EXPECT_EQ(fetchRecord(slot, 100), nullptr);
    ASSERT_EQ(messages.messages().size(), 1u);  // fetchRecord is silent
    EXPECT_EQ(messages.lastTitle(), "Could not retrieve record!");
    // The stream is still usable after the failed read.
    EXPECT_TRUE(readRecord(slot, 1, record.data(), record.size()));
    EXPECT_EQ(record[0], 1);
}

TEST_F(RecordFileTest, OneBufferPerFileReusedByEveryRead) {
    test::writePatternFile("pattern.ppc", 3, 4);
    DatabaseSlot slot;
    ASSERT_TRUE(openDatabase(slot, 0, 0, 0, "data/", "pattern.ppc"));
    const uint8_t* first = fetchRecord(slot, 1);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first[0], 1);
    const uint8_t* second = fetchRecord(slot, 2);
    EXPECT_EQ(first, second);
    EXPECT_EQ(first[0], 2);  // the earlier pointer now shows the later record
}

TEST_F(RecordFileTest, CopiesAtMostTheRecordAndZeroFillsTheRest) {
    test::writePatternFile("pattern.ppc", 2, 3);
    DatabaseSlot slot;
    ASSERT_TRUE(openDatabase(slot, 0, 0, 0, "data/", "pattern.ppc"));
    std::array<uint8_t, 6> record;
    record.fill(0xEE);
    ASSERT_TRUE(readRecord(slot, 1, record.data(), record.size()));
    EXPECT_THAT(record, ::testing::ElementsAre(1, 2, 3, 0, 0, 0));
    ASSERT_TRUE(readRecord(slot, 1, record.data(), 2));
    EXPECT_EQ(record[1], 2);
}

TEST_F(RecordFileTest, DamagedRecordSizeCountsAsAbsent) {
    test::writeBytes("damaged.ppc", test::header(24, 1, 0xFFFFFFF0u));
    DatabaseSlot slot;
    EXPECT_FALSE(openDatabase(slot, 0, 0, 0, "data/", "damaged.ppc"));
}

TEST_F(RecordFileTest, WritingNeedsTheInMemoryHalf) {
    MessageCapture messages;
    DatabaseSlot closed;
    const uint8_t byte = 7;
    EXPECT_FALSE(writeRecord(closed, 0, 0, &byte, 1));
    EXPECT_FALSE(createRecord(closed, 10));
    EXPECT_EQ(messages.messages().size(), 2u);
    EXPECT_EQ(messages.lastTitle(), "Database isn't open!");

    test::writePatternFile("pattern.ppc", 2, 4);
    DatabaseSlot fileOnly;
    ASSERT_TRUE(openDatabase(fileOnly, 0, 0, 1, "data/", "pattern.ppc"));
    messages.clear();
    EXPECT_FALSE(writeRecord(fileOnly, 0, 0, &byte, 1));
    EXPECT_TRUE(messages.messages().empty());
    std::array<uint8_t, 4> record{};
    ASSERT_TRUE(readRecord(fileOnly, 0, record.data(), record.size()));
    EXPECT_EQ(record[0], 0);  // the file is untouched
}

// Bytes in memory read as the same file does: header, records by index, the end of the bytes.
TEST(RecordStream, BytesInMemoryReadLikeAFile) {
    std::vector<uint8_t> bytes = {3, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 4, 0, 0, 0};
    for (uint8_t b = 0; b < 8; ++b) bytes.push_back(static_cast<uint8_t>(0x40 + b));
    DatabaseSlot slot;
    ASSERT_TRUE(openRecordStream(slot, std::unique_ptr<std::FILE, FileCloser>(::fmemopen(bytes.data(), bytes.size(), "rb"))));
    EXPECT_EQ(databaseVersion(slot), 3);
    EXPECT_EQ(recordCount(slot), 2);
    EXPECT_EQ(recordSize(slot), 4u);
    const uint8_t* second = fetchRecord(slot, 1);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second[0], 0x44);
    EXPECT_EQ(fetchRecord(slot, 2), nullptr);  // past the end of the bytes

    // A short header, an oversized record and no stream at all leave the slot closed.
    std::vector<uint8_t> huge = {0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 0};
    EXPECT_FALSE(openRecordStream(slot, std::unique_ptr<std::FILE, FileCloser>(::fmemopen(huge.data(), 15, "rb"))));
    EXPECT_FALSE(slot.isOpen());
    EXPECT_FALSE(openRecordStream(slot, std::unique_ptr<std::FILE, FileCloser>(::fmemopen(huge.data(), huge.size(), "rb"))));
    EXPECT_FALSE(slot.isOpen());
    EXPECT_FALSE(openRecordStream(slot, nullptr));
}

}  // namespace
}  // namespace nocturnel
