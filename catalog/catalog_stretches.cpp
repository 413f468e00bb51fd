#include <array>
#include <cstddef>
#include <cstring>

#include "catalog/catalogues.h"
#include "catalog/object_index_key.h"
#include "catalog/object_tables.h"
#include "catalog/objects.h"
#include "catalog/record_file.h"

// The stretches of the object name index in force: the catalogue table's for the 18k index,
// or, for the small object file, the stretches found in the small index's own keys.
namespace nocturnel {
namespace {
std::array<CatalogStretch, kCatalogCount> tableStretches() {
    std::array<CatalogStretch, kCatalogCount> stretches{};
    for (int code = 0; code < kCatalogCount; ++code)
        stretches[code] = {kCatalogDefinitions[code].first, kCatalogDefinitions[code].last};
    return stretches;
}
std::array<CatalogStretch, kCatalogCount>& stretchesInForce() {
    static std::array<CatalogStretch, kCatalogCount> stretches = tableStretches();
    return stretches;
}
}  // namespace

CatalogStretch catalogStretch(int catalogCode) {
    if (catalogCode < 0 || catalogCode >= kCatalogCount) return {};
    return stretchesInForce()[catalogCode];
}

void resetCatalogStretches() { stretchesInForce() = tableStretches(); }

bool adjustStretchesForSmallFile() {
    DatabaseSlot index;
    if (!openDatabase(index, kObjectIndexType, kCreator, 0, kDataFolder, kObjectIndexFiles[0]) ||
        recordSize(index) < sizeof(ObjectIndexRecord))
        return false;

    // Each indexed catalogue's keys lie in [(rank + 1) << 20, (rank + 2) << 20).
    std::array<CatalogStretch, kCatalogCount> found = tableStretches();
    std::array<bool, kCatalogCount> seen{};
    const int count = recordCount(index);
    for (int r = 0; r < count; ++r) {
        const uint8_t* record = fetchRecord(index, static_cast<uint32_t>(r));
        if (!record) return false;
        int32_t key;
        std::memcpy(&key, record + offsetof(ObjectIndexRecord, key), sizeof key);
        const int rank = (key >> 20) - 1;
        if (key <= kKeyBeforeAll || key == kKeyAfterAll || rank < 0) continue;
        for (int code = 0; code < kCatalogCount; ++code) {
            if (catalogIndexRank(code) != rank) continue;
            if (!seen[code]) found[code].first = static_cast<uint16_t>(r);
            found[code].last = static_cast<uint16_t>(r + 1);
            seen[code] = true;
            break;
        }
    }
    // Indexed catalogues that the small index does not hold get an empty stretch.
    for (int code = 0; code < kCatalogCount; ++code)
        if (catalogIndexRank(code) >= 0 && !seen[code]) found[code] = {0, 0};
    stretchesInForce() = found;
    return true;
}

}  // namespace nocturnel
