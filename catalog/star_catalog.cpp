#include "catalog/star_catalog.h"

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "catalog/catalogues.h"
#include "catalog/record_file.h"
#include "settings/program_folder.h"
#include "settings/message.h"

namespace nocturnel {
namespace {
// (pi / unit) x 2^31 for each component of a packed angle.
constexpr int32_t kPiPerHour = 562209904;
constexpr int32_t kPiPerMinuteOfTime = 9370165;
constexpr int32_t kPiPerSecondOfTime = 156169;
constexpr int32_t kPiPerDegree = 37480660;
constexpr int32_t kPiPerArcminute = 624677;
constexpr int32_t kPiPerArcsecond = 10411;
constexpr int32_t kComponentScale = 1 << 17;
constexpr double kSixtiethOfMinute = 0.000277777777;

fixed24 component(int8_t value, int32_t constant) { return fixedMul(value * kComponentScale, constant); }

constexpr int32_t kLargestStarNumber = 121000;
constexpr int kHipIndexSlots = 42;
// Star counts that identify the numbered catalogues (half-open ranges).
constexpr uint32_t kHipCatalogueStars[2] = {118001, 120000};
constexpr uint32_t kHrCatalogueStars[2] = {9101, 9200};

StarEntry entryAt(const uint8_t* block, int k) {
    StarEntry entry;
    std::memcpy(&entry, block + static_cast<std::size_t>(k) * sizeof(StarEntry), sizeof entry);
    return entry;
}

// A block record of the open catalogue, or nullptr when it cannot be read whole.
const uint8_t* fetchBlock(int block) {
    DatabaseSlot& slot = starCatalogSlot();
    const int perBlock = starsPerBlock();
    if (block < 0 || perBlock <= 0 || recordSize(slot) < perBlock * sizeof(StarEntry)) return nullptr;
    return fetchRecord(slot, static_cast<uint32_t>(block));
}

struct HipLookup {
    int block = -1;
    bool found = false;
    StarEntry entry{};
};

HipLookup lookupByNumber(int32_t number) {
    HipLookup result;
    if (number < 1 || number > kLargestStarNumber) return result;
    const uint32_t stars = starCatalogStarCount();
    const char* indexName = nullptr;
    uint32_t indexType = 0;
    if (stars >= kHipCatalogueStars[0] && stars < kHipCatalogueStars[1]) {
        indexName = "nocturnel_hip_110k_idx.ppc";
        indexType = kHipIndexType;
    } else if (stars >= kHrCatalogueStars[0] && stars < kHrCatalogueStars[1]) {
        indexName = "nocturnel_hr_idx.ppc";
        indexType = kHrIndexType;
    } else {
        return result;
    }

    DatabaseSlot index;
    if (!openDatabase(index, indexType, kCreator, 0, kDataFolder, indexName)) {
        showMessage("Could not open Hipparchos index file", "");
        return result;
    }
    const int r = number / kHipIndexSlots;
    const int slot = number - r * kHipIndexSlots;
    const uint8_t* indexRecord = recordSize(index) >= sizeof(HipIndexRecord) ? fetchRecord(index, r) : nullptr;
    if (!indexRecord) {
        showMessagef("", "Can't find Hipparchos index record number %d", r);
        result.block = r;
        return result;
    }
    int16_t block;
    std::memcpy(&block, indexRecord + slot * sizeof(int16_t), sizeof block);
    closeDatabase(index);
    if (block < 0) return result;  // the index holds no star of this number

    const uint8_t* record = fetchBlock(block);
    if (!record) {
        showMessagef("", "Can't find Hipparchos record number %d", r);
        result.block = r;
        return result;
    }
    result.block = block;
    for (int k = 0; k < starsPerBlock(); ++k) {
        const StarEntry entry = entryAt(record, k);
        if (entry.number == number) {
            result.entry = entry;
            result.found = true;
            break;
        }
    }
    return result;
}

struct BrightStarState {
    int count = -1;  // N, -1 while unknown
};
BrightStarState& brightStars() {
    static BrightStarState s;
    return s;
}

bool openBrightStarFile(DatabaseSlot& slot) {
    if (openDatabase(slot, kBrightStarType, kCreator, 0, kDataFolder, "nocturnel_brightstar.ppc")) return true;
    showMessage("Could not find nocturnel_brightstar.ppc catalog.",
                "Looked in " + dataPath("nocturnel_brightstar.ppc").parent_path().string());
    return false;
}
}  // namespace

void decodeStarEntry(const StarEntry& entry, StarPosition& out) {
    out.id = static_cast<int16_t>(entry.number & 0xFFFF);
    out.ra = component(entry.raH, kPiPerHour) + component(entry.raM, kPiPerMinuteOfTime) +
             component(entry.raS, kPiPerSecondOfTime);
    out.dec = component(entry.decD, kPiPerDegree) + component(entry.decM, kPiPerArcminute) +
              component(entry.decS, kPiPerArcsecond);
    out.mag = entry.mag16;
    out.colour = entry.colour;
}

double starEntryRaHours(const StarEntry& e) { return e.raH + (e.raM * 60 + e.raS) * kSixtiethOfMinute; }
double starEntryDecDeg(const StarEntry& e) { return e.decD + (e.decM * 60 + e.decS) * kSixtiethOfMinute; }

uint32_t starCatalogStarCount() {
    return databaseTotalSize(starCatalogSlot(), static_cast<uint32_t>(starsPerBlock()));
}

int findBlockByDeclination(float decDeg) {
    if (!(decDeg >= -90.0f && decDeg <= 90.0f)) return -1;  // also refuses NaN
    DatabaseSlot& slot = starCatalogSlot();
    if (!slot.isOpen()) return -1;
    const int count = recordCount(slot);
    if (count == 1) return 0;
    if (count < 1) return -1;

    const int degrees = static_cast<int>(decDeg);                 // truncated toward zero
    const int totalMinutes = static_cast<int>(decDeg * 60.0f);
    const int minutes = totalMinutes - 60 * (totalMinutes / 60);  // sign of the declination

    int lo = 1, hi = count - 1, mid = -1;
    while (lo <= hi) {
        mid = (lo + hi) / 2;
        const uint8_t* block = fetchBlock(mid);
        if (!block) {
            showMessagef("", "Can't find Hipparchos record number %d", mid);
            return -1;
        }
        const StarEntry first = entryAt(block, 0);
        int difference = degrees - first.decD;
        if (difference == 0) difference = minutes - first.decM;
        if (difference == 0) break;
        if (difference < 0) hi = mid - 1;
        else lo = mid + 1;
    }
    return mid;
}

int32_t readStarBySequence(uint32_t sequence, StarPosition& out) {
    const int perBlock = starsPerBlock();
    if (!starCatalogSlot().isOpen() || perBlock <= 0) {
        showMessage("Database Hipparchos isn't open!", "");
        return 0;
    }
    const uint32_t block = sequence / static_cast<uint32_t>(perBlock);
    const int entryIndex = static_cast<int>(sequence % static_cast<uint32_t>(perBlock));
    const uint8_t* record = block <= 0xFFFFu ? fetchBlock(static_cast<int>(block)) : nullptr;
    if (!record) {
        char detail[32];
        std::snprintf(detail, sizeof detail, "recId %u", block);
        showMessage("Could not retrieve star record!", detail);
        return 0;
    }
    const StarEntry entry = entryAt(record, entryIndex);
    decodeStarEntry(entry, out);
    return entry.number;
}

int findStarByHip(int32_t number, StarPosition& out) {
    const HipLookup lookup = lookupByNumber(number);
    if (lookup.found) decodeStarEntry(lookup.entry, out);
    return lookup.block;
}

bool findStarByNumber(int32_t number, StarPosition& out) {
    StarEntry entry;
    if (!findStarEntryByNumber(number, entry)) return false;
    decodeStarEntry(entry, out);
    return true;
}

bool findStarEntryByNumber(int32_t number, StarEntry& out) {
    const HipLookup lookup = lookupByNumber(number);
    if (lookup.found) out = lookup.entry;
    return lookup.found;
}

bool findTychoStar(int32_t number, StarPosition& out) {
    StarEntry entry;
    if (!findTychoEntry(number, entry)) return false;
    decodeStarEntry(entry, out);
    return true;
}

bool findTychoEntry(int32_t number, StarEntry& out) {
    uint32_t block = 0;
    int entryIndex = 0;
    return findTychoEntry(number, out, block, entryIndex);
}

bool findTychoEntry(int32_t number, StarEntry& out, uint32_t& foundBlock, int& entryIndex) {
    if (number < 0) return false;
    const int32_t region = number / 100000;

    DatabaseSlot index;
    if (!openDatabase(index, kTychoIndexType, kCreator, 0, kDataFolder, "nocturnel_tycho_idx.ppc")) {
        showMessage("Can't open Tycho index.", "");
        return false;
    }
    TychoRegionRecord bounds;
    const uint8_t* record =
        (region <= 0xFFFF && recordSize(index) >= sizeof bounds) ? fetchRecord(index, static_cast<uint32_t>(region))
                                                                 : nullptr;
    if (!record) {
        showMessage("Could not retrieve tycho record!", "");
        return false;
    }
    std::memcpy(&bounds, record, sizeof bounds);
    closeDatabase(index);

    const int low = findBlockByDeclination(bounds.minDecDeg);
    const int high = findBlockByDeclination(bounds.maxDecDeg);
    if (low < 0 || high < 0 || low > high) return false;

    for (int block = low; block <= high; ++block) {
        const uint8_t* entries = fetchBlock(block);
        if (!entries) {
            showMessage("Can't get stellar record", "");
            continue;
        }
        for (int k = 0; k < starsPerBlock(); ++k) {
            const StarEntry entry = entryAt(entries, k);
            if (entry.number == number) {
                out = entry;
                foundBlock = static_cast<uint32_t>(block);
                entryIndex = k;
                return true;
            }
        }
    }
    return false;
}

bool readDefaultStar(int index, DefaultStarRecord& out) {
    if (index < 0 || index >= kDefaultStarCount) return false;
    DatabaseSlot& slot = defaultStarSlot();
    const uint8_t* record = recordSize(slot) >= sizeof out ? fetchRecord(slot, static_cast<uint32_t>(index)) : nullptr;
    if (!record) {
        char detail[32];
        std::snprintf(detail, sizeof detail, "recId %d", index);
        showMessage("Could not retrieve star record!", detail);
        return false;
    }
    std::memcpy(&out, record, sizeof out);
    return true;
}

int brightStarCount() {
    BrightStarState& s = brightStars();
    if (s.count >= 0) return s.count;
    DatabaseSlot slot;
    s.count = openBrightStarFile(slot) ? static_cast<int>(databaseTotalSize(slot, 1) / 2) : 0;
    return s.count;
}

void forgetBrightStarCount() { brightStars().count = -1; }

bool readBrightStar(int index, BrightStarRecord& out) {
    DatabaseSlot slot;
    if (!openBrightStarFile(slot)) return false;
    const uint8_t* record = (index >= 0 && recordSize(slot) >= sizeof out && index < recordCount(slot))
                                ? fetchRecord(slot, static_cast<uint32_t>(index))
                                : nullptr;
    if (!record) {
        showMessage("Could not retrieve record!", "");
        return false;
    }
    std::memcpy(&out, record, sizeof out);
    return true;
}

int findBrightStar(uint16_t key) {
    const int n = brightStarCount();
    if (n <= 0) return -1;
    DatabaseSlot slot;
    if (!openBrightStarFile(slot) || recordSize(slot) < sizeof(BrightStarRecord)) return -1;
    int lo = n, hi = 2 * n - 1;
    while (lo <= hi) {
        const int mid = lo + (hi - lo) / 2;
        const uint8_t* record = fetchRecord(slot, static_cast<uint32_t>(mid));
        if (!record) {
            showMessage("Could not retrieve record!", "");
            return -1;
        }
        uint16_t recordKey;
        std::memcpy(&recordKey, record + offsetof(BrightStarRecord, key), sizeof recordKey);
        if (recordKey == key) return mid;
        if (key < recordKey) hi = mid - 1;
        else lo = mid + 1;
    }
    return -1;
}

}  // namespace nocturnel
