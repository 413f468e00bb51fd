#pragma once
// Helpers of the catalogue tests: a fresh program folder per test and hand-made record files.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "catalog/catalogues.h"
#include "catalog/constellations.h"
#include "catalog/formats.h"
#include "catalog/objects.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"

namespace nocturnel::test {

// A temporary program folder with an empty data/; everything the catalogue layer keeps is
// closed and forgotten on both ends so tests do not see each other's files.
class CatalogFolderTest : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/nocturnel_catalog_XXXXXX";
        const char* made = mkdtemp(pattern);
        ASSERT_NE(made, nullptr);
        folder_ = made;
        setProgramFolder(folder_);
        ASSERT_TRUE(ensureProgramFolders());
        closeCatalogues();
        forgetConstellations();
        savedPreferences_ = prefs();
        prefs().cardCatalog = 0;
    }
    void TearDown() override {
        closeCatalogues();
        forgetConstellations();
        prefs() = savedPreferences_;
        std::error_code ec;
        std::filesystem::remove_all(folder_, ec);
    }
    std::filesystem::path folder_;
    Preferences savedPreferences_{};
};

inline void writeBytes(const std::string& name, const std::vector<uint8_t>& bytes) {
    std::ofstream out(dataPath(name), std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

inline void appendWord(std::vector<uint8_t>& bytes, uint32_t value) {
    for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

inline std::vector<uint8_t> header(uint32_t version, uint32_t count, uint32_t size) {
    std::vector<uint8_t> bytes;
    appendWord(bytes, version);
    appendWord(bytes, 0);
    appendWord(bytes, count);
    appendWord(bytes, size);
    return bytes;
}

// A record file of plain records; `declaredCount` overrides the header's count when >= 0.
template <typename Record>
void writeRecords(const std::string& name, const std::vector<Record>& records, uint32_t version = 24,
                  int64_t declaredCount = -1) {
    std::vector<uint8_t> bytes =
        header(version, declaredCount >= 0 ? static_cast<uint32_t>(declaredCount) : static_cast<uint32_t>(records.size()),
               sizeof(Record));
    const auto* raw = reinterpret_cast<const uint8_t*>(records.data());
    bytes.insert(bytes.end(), raw, raw + records.size() * sizeof(Record));
    writeBytes(name, bytes);
}

// A file of `count` records of `size` bytes; byte j of record i is (i + j) & 0xFF.
inline void writePatternFile(const std::string& name, uint32_t count, uint32_t size, uint32_t version = 24) {
    std::vector<uint8_t> bytes = header(version, count, size);
    for (uint32_t i = 0; i < count; ++i)
        for (uint32_t j = 0; j < size; ++j) bytes.push_back(static_cast<uint8_t>((i + j) & 0xFF));
    writeBytes(name, bytes);
}

inline StarEntry starEntry(int32_t number, int h, int m, int s, int d, int dm, int ds, double mag = 5.0,
                           int colour = 6) {
    StarEntry e{};
    e.number = number;
    e.raH = static_cast<int8_t>(h);
    e.raM = static_cast<int8_t>(m);
    e.raS = static_cast<int8_t>(s);
    e.decD = static_cast<int8_t>(d);
    e.decM = static_cast<int8_t>(dm);
    e.decS = static_cast<int8_t>(ds);
    e.mag16 = static_cast<uint8_t>(mag * 16.0 + 0.5);
    e.colour = static_cast<int8_t>(colour);
    return e;
}

// A block file: `blocks` records of `perBlock` entries each, as a vector of entries.
inline void writeStarBlocks(const std::string& name, const std::vector<StarEntry>& entries, int perBlock,
                            int64_t declaredCount = -1) {
    const uint32_t records = static_cast<uint32_t>(entries.size() / perBlock);
    std::vector<uint8_t> bytes = header(1, declaredCount >= 0 ? static_cast<uint32_t>(declaredCount) : records,
                                        static_cast<uint32_t>(perBlock * sizeof(StarEntry)));
    const auto* raw = reinterpret_cast<const uint8_t*>(entries.data());
    bytes.insert(bytes.end(), raw, raw + entries.size() * sizeof(StarEntry));
    writeBytes(name, bytes);
}

inline ObjectRecord objectRecord(int catalog, int32_t number, int type = 16, float ra = 1.0f, float dec = 2.0f,
                                 int16_t messier = 0, int16_t caldwell = 0, const char* name = "") {
    ObjectRecord o{};
    o.catalog = catalog;
    o.number = number;
    o.type = type;
    o.raHours = ra;
    o.decDeg = dec;
    o.messier = messier;
    o.caldwell = caldwell;
    o.description = -1;
    o.positionAngle = -1;
    // May fill all 13 bytes without a terminator: the reader must end the text at byte 40.
    std::memcpy(o.name, name, std::min(std::strlen(name), sizeof o.name));
    return o;
}

}  // namespace nocturnel::test
