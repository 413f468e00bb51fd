#include "tools/build_checks.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "catalog/object_index_key.h"
#include "catalog/object_tables.h"
#include "tools/object_files.h"
#include "tools/record_io.h"
#include "tools/star_packing.h"

namespace nocturnel {
namespace {

template <typename Record>
bool load(const std::filesystem::path& file, DatabaseHeader& header, std::vector<Record>& records, std::string& error) {
    std::string bytes;
    if (!readWholeFile(file, bytes)) {
        error = file.filename().string() + " cannot be read";
        return false;
    }
    if (!parseRecordFile(bytes, header, records, error)) {
        error = file.filename().string() + ": " + error;
        return false;
    }
    if (header.recordCount > 65535) {
        error = file.filename().string() + ": more than 65,535 records";
        return false;
    }
    return true;
}

// A block file read as plain entries: record size tells the stars per block.
bool loadBlocks(const std::filesystem::path& file, int& perBlock, size_t& records, std::vector<StarEntry>& entries,
                std::string& error) {
    std::string bytes;
    DatabaseHeader header{};
    if (!readWholeFile(file, bytes) || bytes.size() < sizeof header) {
        error = file.filename().string() + " cannot be read";
        return false;
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    if (header.recordSize != 42 * sizeof(StarEntry) && header.recordSize != 80 * sizeof(StarEntry)) {
        error = file.filename().string() + ": record size " + std::to_string(header.recordSize) + " is neither 42 nor 80 stars";
        return false;
    }
    perBlock = static_cast<int>(header.recordSize / sizeof(StarEntry));
    records = header.recordCount;
    if (bytes.size() != sizeof header + records * header.recordSize || records > 65535) {
        error = file.filename().string() + ": length disagrees with the record count";
        return false;
    }
    entries.resize(records * perBlock);
    std::memcpy(entries.data(), bytes.data() + sizeof header, entries.size() * sizeof(StarEntry));
    return true;
}

long decKey(const StarEntry& e) { return e.decD * 3600L + e.decM * 60L + e.decS; }
long raKey(const StarEntry& e) { return e.raH * 3600L + e.raM * 60L + e.raS; }
}  // namespace

bool checkStarBlockFile(const std::filesystem::path& file, const StarFileRules& rules, std::string& error) {
    int perBlock = 0;
    size_t records = 0;
    std::vector<StarEntry> entries;
    if (!loadBlocks(file, perBlock, records, entries, error)) return false;
    const std::string name = file.filename().string();
    if ((rules.starsPerBlock != 0 && perBlock != rules.starsPerBlock) || (records > 25000) != (perBlock == 80)) {
        error = name + ": " + std::to_string(records) + " records of " + std::to_string(perBlock) +
                " stars disagree with the reader's rule (80 stars above 25,000 records)";
        return false;
    }
    const long total = static_cast<long>(records) * perBlock;
    if (rules.maxTotalStars && (total < rules.minTotalStars || total > rules.maxTotalStars)) {
        error = name + ": " + std::to_string(total) + " star slots, outside " + std::to_string(rules.minTotalStars) +
                ".." + std::to_string(rules.maxTotalStars);
        return false;
    }
    for (size_t i = 0; i < entries.size(); ++i) {
        const StarEntry& e = entries[i];
        const bool empty = e.number == 0;
        if (empty != (e.mag16 == kEmptyMagnitude) || (i < static_cast<size_t>(perBlock) && !empty)) {
            error = name + ": slot " + std::to_string(i) + " breaks the empty-slot rule (number 0, magnitude 255, none in record 0)";
            return false;
        }
        if (e.raH < 0 || e.raH > 23 || e.raM < 0 || e.raM > 59 || e.raS < 0 || e.raS > 59 || std::abs(decKey(e)) > 90 * 3600 ||
            std::abs(e.decM) > 59 || std::abs(e.decS) > 59 || (e.decD != 0 && ((e.decD < 0) != (e.decM < 0) && e.decM != 0))) {
            error = name + ": slot " + std::to_string(i) + " holds an impossible position";
            return false;
        }
        if (i % perBlock != 0) {
            const StarEntry& p = entries[i - 1];
            if (decKey(p) > decKey(e) || (decKey(p) == decKey(e) && raKey(p) > raKey(e) && e.number != 0)) {
                error = name + ": entries of record " + std::to_string(i / perBlock) + " are not ordered south to north";
                return false;
            }
        } else if (i > 0 && decKey(entries[i - perBlock]) > decKey(e)) {
            error = name + ": record " + std::to_string(i / perBlock) + " starts south of the record before it";
            return false;
        }
    }
    return true;
}

bool checkNumberIndex(const std::filesystem::path& indexFile, const std::filesystem::path& blocksFile, std::string& error) {
    int perBlock = 0;
    size_t records = 0;
    std::vector<StarEntry> entries;
    if (!loadBlocks(blocksFile, perBlock, records, entries, error)) return false;
    DatabaseHeader header{};
    std::vector<HipIndexRecord> index;
    if (!load(indexFile, header, index, error)) return false;
    const std::string name = indexFile.filename().string();
    size_t stars = 0;
    for (size_t i = 0; i < entries.size(); ++i) {
        const int32_t n = entries[i].number;
        if (n == 0) continue;
        ++stars;
        if (n < 0 || static_cast<size_t>(n / 42) >= index.size() || index[n / 42].block[n % 42] != static_cast<int>(i / perBlock)) {
            error = name + ": star " + std::to_string(n) + " is not indexed to its block " + std::to_string(i / perBlock);
            return false;
        }
    }
    size_t slots = 0;
    for (const HipIndexRecord& r : index)
        for (int16_t b : r.block) {
            if (b == -1) continue;
            ++slots;
            if (b < 1 || static_cast<size_t>(b) >= records) {
                error = name + ": a slot points outside the block file";
                return false;
            }
        }
    if (slots != stars) {
        error = name + ": " + std::to_string(slots) + " index slots for " + std::to_string(stars) + " stars";
        return false;
    }
    return true;
}

bool checkDefaultStars(const std::filesystem::path& file, std::string& error) {
    DatabaseHeader header{};
    std::vector<DefaultStarRecord> stars;
    if (!load(file, header, stars, error)) return false;
    if (stars.size() != 1646) {
        error = "nocturnel_default_stars.ppc holds " + std::to_string(stars.size()) + " stars, not 1,646";
        return false;
    }
    for (size_t i = 0; i < stars.size(); ++i) {
        const DefaultStarRecord& s = stars[i];
        if ((i > 0 && stars[i - 1].mag > s.mag) || !(s.raHours >= 0 && s.raHours < 24) || std::abs(s.decDeg) > 90 ||
            s.name[15] != '\0' || s.constellation < 0 || s.constellation > 87) {
            error = "nocturnel_default_stars.ppc: record " + std::to_string(i) + " is out of order or out of range";
            return false;
        }
    }
    return true;
}

bool checkBrightStarNames(const std::filesystem::path& file, std::string& error) {
    DatabaseHeader header{};
    std::vector<BrightStarRecord> records;
    if (!load(file, header, records, error)) return false;
    const size_t n = records.size() / 2;
    if (records.size() % 2 != 0 || n == 0) {
        error = "nocturnel_brightstar.ppc: record count is not 2 x N";
        return false;
    }
    for (size_t i = 0; i < records.size(); ++i) {
        if (records[i].name[15] != '\0') {
            error = "nocturnel_brightstar.ppc: unterminated name";
            return false;
        }
        if (i > 0 && i < n && std::strcmp(records[i - 1].name, records[i].name) > 0) {
            error = "nocturnel_brightstar.ppc: first half is not ordered by name";
            return false;
        }
        if (i > n && records[i - 1].key > records[i].key) {
            error = "nocturnel_brightstar.ppc: second half is not ordered by HR number";
            return false;
        }
    }
    std::vector<uint16_t> a, b;
    for (size_t i = 0; i < n; ++i) a.push_back(records[i].key), b.push_back(records[n + i].key);
    std::sort(a.begin(), a.end());
    if (a != b) {
        error = "nocturnel_brightstar.ppc: the two halves hold different stars";
        return false;
    }
    return true;
}

bool checkObjectFiles(const std::filesystem::path& objectsFile, const std::filesystem::path& indexFile, bool stretches,
                      std::string& error) {
    DatabaseHeader header{}, indexHeader{};
    std::vector<ObjectRecord> objects;
    std::vector<ObjectIndexRecord> index;
    if (!load(objectsFile, header, objects, error) || !load(indexFile, indexHeader, index, error)) return false;
    const std::string name = objectsFile.filename().string(), indexName = indexFile.filename().string();
    if ((header.version & 0xFFFF) != kObjectFileVersion) {
        error = name + ": version is not 24";
        return false;
    }
    if (!stretches && objects.size() >= 2000) {
        error = name + ": the small file must hold fewer than 2,000 objects";
        return false;
    }
    for (size_t i = 0; i < objects.size(); ++i) {
        const ObjectRecord& o = objects[i];
        if (o.catalog < 0 || o.catalog >= kCatalogCount || o.type < 0 || o.type >= kObjectTypeCount || !(o.raHours >= 0 && o.raHours < 24) ||
            std::abs(o.decDeg) > 90 || o.constellation < 0 || o.constellation > 87) {
            error = name + ": record " + std::to_string(i) + " is out of range";
            return false;
        }
    }
    for (size_t i = 0; i < index.size(); ++i) {
        const ObjectIndexRecord& e = index[i];
        if (i > 0 && index[i - 1].key > e.key) {
            error = indexName + ": keys are not in order at record " + std::to_string(i);
            return false;
        }
        if (e.objectRecord >= static_cast<int32_t>(objects.size()) || e.objectRecord < -1) {
            error = indexName + ": record " + std::to_string(i) + " points outside the object file";
            return false;
        }
        if (e.objectRecord >= 0 && objectIndexKey(e.catalog, e.number) != e.key) {
            error = indexName + ": record " + std::to_string(i) + " carries a key that is not its catalogue and number's";
            return false;
        }
        if (!stretches || e.catalog == 0) continue;
        auto [first, end] = usableStretch(e.catalog);
        if (static_cast<int>(i) < first || static_cast<int>(i) >= end) {
            error = indexName + ": record " + std::to_string(i) + " of catalogue " + kCatalogDefinitions[e.catalog].name +
                    " lies outside its stretch";
            return false;
        }
    }
    if (stretches) {
        int firstStretch = 65535;
        for (int c = 0; c < kCatalogCount; ++c)
            if (catalogIndexRank(c) >= 0) firstStretch = std::min(firstStretch, static_cast<int>(kCatalogDefinitions[c].first));
        for (int i = 0; i < firstStretch && i < static_cast<int>(index.size()); ++i)
            if (index[i].key != kKeyBeforeAll) {
                error = indexName + ": a record before the first stretch has a key";
                return false;
            }
        if (index.empty() || index.back().key != kKeyAfterAll) {
            error = indexName + ": the last record does not close the index";
            return false;
        }
    }
    return true;
}

bool checkDescriptions(const std::filesystem::path& descriptionsFile, const std::filesystem::path& objectsFile, std::string& error) {
    DatabaseHeader header{};
    std::vector<ObjectRecord> objects;
    std::vector<ObjectDescriptionRecord> descriptions;
    if (!load(objectsFile, header, objects, error) || !load(descriptionsFile, header, descriptions, error)) return false;
    for (size_t i = 0; i < descriptions.size(); ++i) {
        const int32_t r = descriptions[i].objectRecord;
        if (r < 0 || r >= static_cast<int32_t>(objects.size()) || objects[r].description != static_cast<int32_t>(i) ||
            descriptions[i].text[123] != '\0') {
            error = "nocturnel_obj_18k_desc.ppc: record " + std::to_string(i) + " does not match its object";
            return false;
        }
    }
    return true;
}

bool checkConstellations(const std::filesystem::path& folder, std::string& error) {
    DatabaseHeader header{};
    std::vector<ConstellationRecord> records;
    std::vector<ConstellationSegment> segments;
    std::vector<ConstellationBoundaryPoint> bounds;
    if (!load(folder / "nocturnel_constellation.ppc", header, records, error) ||
        !load(folder / "nocturnel_constellation_lines.ppc", header, segments, error) ||
        !load(folder / "nocturnel_constellation_bounds.ppc", header, bounds, error))
        return false;
    for (size_t i = 0; i < records.size(); ++i) {
        const ConstellationRecord& c = records[i];
        if ((i > 0 && std::strncmp(records[i - 1].abbreviation, c.abbreviation, 4) >= 0) ||
            static_cast<size_t>(c.firstSegment) + c.segmentCount > segments.size() ||
            static_cast<size_t>(c.firstBoundary) + c.boundaryCount > bounds.size() || c.boundaryCount == 0) {
            error = "nocturnel_constellation.ppc: record " + std::to_string(i) + " is out of order or out of range";
            return false;
        }
    }
    return true;
}

bool checkTychoIndex(const std::filesystem::path& indexFile, const std::filesystem::path& blocksFile, std::string& error) {
    int perBlock = 0;
    size_t records = 0;
    std::vector<StarEntry> entries;
    if (!loadBlocks(blocksFile, perBlock, records, entries, error)) return false;
    DatabaseHeader header{};
    std::vector<TychoRegionRecord> index;
    if (!load(indexFile, header, index, error)) return false;
    for (const StarEntry& e : entries) {
        if (e.number == 0) continue;
        const size_t region = static_cast<size_t>(e.number / 100000);
        const float dec = static_cast<float>(packedDecDeg(e));
        if (region >= index.size() || dec < index[region].minDecDeg || dec > index[region].maxDecDeg) {
            error = "nocturnel_tycho_idx.ppc: star " + std::to_string(e.number) + " lies outside its region's declinations";
            return false;
        }
    }
    return true;
}

}  // namespace nocturnel
