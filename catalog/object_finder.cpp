#include "catalog/object_finder.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>

#include "catalog/card_star_motion.h"
#include "catalog/catalogues.h"
#include "catalog/constellations.h"
#include "catalog/name_index.h"
#include "catalog/name_query.h"
#include "catalog/object_index_key.h"
#include "catalog/object_tables.h"
#include "catalog/objects.h"
#include "catalog/record_file.h"
#include "catalog/star_catalog.h"
#include "catalog/star_motion.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {
constexpr int kStarType = 30;  // "1STAR"
constexpr int kHipLevel = 4;   // nocturnel_hip_110k.ppc
constexpr int kHrLevel = 0;    // nocturnel_hr.ppc

SolarSystemFinder gSolarSystemFind = nullptr;
SolarSystemSuggester gSolarSystemSuggest = nullptr;

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\n' || text.back() == '\r'))
        text.remove_suffix(1);
    return text;
}

bool fileExists(const char* name) {
    std::error_code ec;
    return std::filesystem::exists(dataPath(name), ec);
}

bool ensureStarLevel(int level) {
    if (starCatalogLevel() == level && starCatalogSlot().isOpen()) return true;
    return openStarCatalogLevel(level);
}

// The default star with this HIP or HR number, if the default star file is there.
bool matchingDefaultStar(int catalogCode, int32_t number, DefaultStarRecord& out) {
    if (!defaultStarSlot().isOpen()) {
        if (!fileExists("nocturnel_default_stars.ppc") || !openDefaultStars()) return false;
    }
    DatabaseSlot& slot = defaultStarSlot();
    if (recordSize(slot) < sizeof out) return false;
    const int count = std::min<int>(recordCount(slot), kDefaultStarCount);
    for (int i = 0; i < count; ++i) {
        const uint8_t* record = fetchRecord(slot, static_cast<uint32_t>(i));
        if (!record) return false;
        DefaultStarRecord star;
        std::memcpy(&star, record, sizeof star);
        if ((catalogCode == kCatalogHipparcos && star.hip == number) || (catalogCode == kCatalogHR && star.hr == number)) {
            out = star;
            return true;
        }
    }
    return false;
}

void reportNotFound(const std::string& designation) {
    showMessage("Object not found", designation + " is not in the catalogue.");
}

std::string designation(int catalogCode, int32_t number) {
    if (catalogCode == kCatalogTycho) return tychoNameText(number);
    return std::string(kCatalogDefinitions[catalogCode].prefix) + std::to_string(number);
}

bool findStar(const ObjectNameQuery& query, FoundObject& out) {
    StarEntry star;
    bool found = false;
    uint32_t tychoBlock = 0;
    int tychoEntry = 0;
    if (query.catalogCode == kCatalogTycho) {
        const int level = fileExists(kStarCatalogFiles[6]) || !fileExists(kStarCatalogFiles[5]) ? 6 : 5;
        found = ensureStarLevel(level) && findTychoEntry(query.number, star, tychoBlock, tychoEntry);
    } else {
        found = ensureStarLevel(query.catalogCode == kCatalogHR ? kHrLevel : kHipLevel) &&
                findStarEntryByNumber(query.number, star);
    }
    if (!found) {
        if (starCatalogSlot().isOpen()) reportNotFound(designation(query.catalogCode, query.number));
        return false;
    }
    out.catalogCode = query.catalogCode;
    out.number = query.number;
    out.typeCode = kStarType;
    out.raHours = starEntryRaHours(star);
    out.decDeg = starEntryDecDeg(star);
    out.mag = star.mag16 / 16.0;
    out.magKnown = true;
    out.name = designation(query.catalogCode, query.number);
    DefaultStarRecord bright;
    if (query.catalogCode != kCatalogTycho && matchingDefaultStar(query.catalogCode, query.number, bright)) {
        char name[sizeof bright.name + 1] = {};
        std::memcpy(name, bright.name, sizeof bright.name);
        if (name[0]) out.name = std::string(name) + ", " + out.name;
        out.mag = bright.mag;  // the default star keeps the unpacked magnitude
    }
    // The packed place is rounded and fixed at 2000: the motion file gives the full-precision
    // place moved to the observing moment.
    StarMotionEntry motion;
    if ((query.catalogCode == kCatalogHipparcos && findStarMotion(query.number, motion)) ||
        (query.catalogCode == kCatalogHR && findStarMotionByHr(query.number, motion)))
        starPlaceAtEpoch(motion, observingEpoch(), out.raHours, out.decDeg);
    // A Tycho star moves by the motion of the card's side file, from its packed place.
    CardStarMotion cardMotion;
    if (query.catalogCode == kCatalogTycho && cardMotionReader().prepare() &&
        cardMotionReader().motionOf(tychoBlock, tychoEntry, query.number, cardMotion))
        movePlaceToEpoch(out.raHours, out.decDeg, cardMotion.pmRaCosDecMasPerYear, cardMotion.pmDecMasPerYear,
                         observingEpoch(), out.raHours, out.decDeg);
    out.constellation = constellationOf(out.raHours, out.decDeg);
    return true;
}

// Messier and Caldwell numbers are not in the name index: their records are found by one scan
// of the object file, remembered for the file that is open.
struct SecondaryNumbers {
    const void* file = nullptr;
    int records = -1;
    std::map<int, int> messier, caldwell;  // number -> record
};

bool lookupSecondary(int catalogCode, int32_t number, ObjectRecord& out) {
    static SecondaryNumbers cache;
    DatabaseSlot& slot = objectSlot();
    if (cache.file != slot.file.get() || cache.records != recordCount(slot)) {
        cache = SecondaryNumbers{slot.file.get(), recordCount(slot), {}, {}};
        for (int i = 0; i < cache.records; ++i) {
            const uint8_t* bytes = recordSize(slot) >= sizeof(ObjectRecord) ? fetchRecord(slot, static_cast<uint32_t>(i)) : nullptr;
            if (!bytes) break;
            ObjectRecord o;
            std::memcpy(&o, bytes, sizeof o);
            if (o.messier > 0) cache.messier.emplace(o.messier, i);
            if (o.caldwell > 0) cache.caldwell.emplace(o.caldwell, i);
        }
    }
    const auto& numbers = catalogCode == kCatalogMessier ? cache.messier : cache.caldwell;
    const auto it = numbers.find(number);
    return it != numbers.end() && readObject(static_cast<uint16_t>(it->second), out);
}

// Any designation the name index holds: an object's own and its other catalogue numbers
// (which point to the same record: "Mel 22" is the record of M45).
bool lookupAnyDesignation(int catalogCode, int32_t number, ObjectRecord& out) {
    if (lookupObject(catalogCode, number, out)) return true;  // the object's own designation
    const int32_t key = objectIndexKey(catalogCode, number);
    if (key < 0 || !objectIndexSlot().isOpen()) return false;
    const int found = findObjectIndex(key);
    ObjectIndexRecord entry;
    if (found < 0 || !readObjectIndexRecord(static_cast<uint16_t>(found), entry)) return false;
    if (entry.key != key || entry.catalog != catalogCode || entry.number != number || entry.objectRecord < 0) return false;
    return readObject(static_cast<uint16_t>(entry.objectRecord), out);
}

bool findDeepSky(const ObjectNameQuery& query, FoundObject& out) {
    if (!objectSlot().isOpen() && !openObjectFiles()) return false;
    ObjectRecord object;
    const bool secondary = query.catalogCode == kCatalogMessier || query.catalogCode == kCatalogCaldwell;
    if (!(secondary ? lookupSecondary(query.catalogCode, query.number, object)
                    : lookupAnyDesignation(query.catalogCode, query.number, object))) {
        reportNotFound(designation(query.catalogCode, query.number));
        return false;
    }
    out.name = objectNameText(object);
    out.catalogCode = object.catalog;
    out.number = object.number;
    out.typeCode = object.type;
    out.raHours = object.raHours;
    out.decDeg = object.decDeg;
    out.mag = object.mag;
    out.magKnown = object.mag != 0.0f;
    out.majorArcmin = object.majorArcmin;
    out.minorArcmin = object.minorArcmin;
    const int known = static_cast<int>(constellations().constellations.size());
    out.constellation = (object.constellation >= 0 && object.constellation < known)
                            ? object.constellation : constellationOf(object.raHours, object.decDeg);
    return true;
}

bool findByDesignation(const ObjectNameQuery& query, FoundObject& out) {
    const int code = query.catalogCode;
    if (code == kCatalogHipparcos || code == kCatalogHR || code == kCatalogTycho) return findStar(query, out);
    if (code == kCatalogMessier || code == kCatalogCaldwell || catalogIndexRank(code) >= 0) return findDeepSky(query, out);
    showMessage("Object not found",
                std::string("Objects of the ") + kCatalogDefinitions[code].name + " catalogue cannot be found by number.");
    return false;
}

// Record of the object file holding a deep-sky object: through the name index when its
// catalogue is indexed, else by scanning the records.
int objectRecordOf(int catalogCode, int32_t number) {
    if (!objectSlot().isOpen()) return -1;
    const int fitting = recordCount(objectSlot()) < 2000 ? 0 : 2;  // the index that fits the open object file
    if (openObjectIndexSize() != fitting || !objectIndexSlot().isOpen()) openObjectIndexForSize(fitting);
    const int32_t key = objectIndexKey(catalogCode, number);
    if (key >= 0) {
        const int found = findObjectIndex(key);
        ObjectIndexRecord entry;
        if (found >= 0 && readObjectIndexRecord(static_cast<uint16_t>(found), entry) && entry.key == key) return entry.objectRecord;
    }
    const int count = recordCount(objectSlot());
    for (int i = 0; i < count; ++i) {
        ObjectRecord o;
        if (!readObject(static_cast<uint16_t>(i), o)) return -1;
        if (o.catalog == catalogCode && o.number == number) return i;
    }
    return -1;
}

void addUnique(std::vector<std::string>& list, const std::string& text) {
    if (!text.empty() && std::find(list.begin(), list.end(), text) == list.end()) list.push_back(text);
}
}  // namespace

void setSolarSystemFinder(SolarSystemFinder find, SolarSystemSuggester suggest) {
    gSolarSystemFind = find;
    gSolarSystemSuggest = suggest;
}

bool findObjectByName(std::string_view text, FoundObject& out) {
    out = {};
    const std::string_view name = trimmed(text);
    ObjectNameQuery query;
    if (parseObjectName(name, query)) {
        if (!findByDesignation(query, out)) return false;
        if (query.catalogCode != kCatalogTycho) {
            const auto names = entriesFor(out.catalogCode == kCatalogHR ? -1 : out.catalogCode, out.number);
            if (!names.empty()) out.commonName = names.front()->name;
        }
        return true;
    }
    if (!name.empty() && gSolarSystemFind) {
        if (gSolarSystemFind(name, out)) return true;
        // A body's name the solar system could not place (no planet file, Pluto out of its
        // series' span) has had its message.
        if (gSolarSystemSuggest)
            for (const std::string& body : gSolarSystemSuggest(name, 16))
                if (body.size() == name.size() &&
                    std::equal(body.begin(), body.end(), name.begin(), [](char a, char b) {
                        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
                    }))
                    return false;
    }
    const auto entries = entriesNamed(name);
    if (!entries.empty()) {
        const NameEntry& entry = *entries.front();
        if (entry.catalog < 0 || entry.catalog >= kCatalogCount || entry.number <= 0) return false;
        if (!findByDesignation(ObjectNameQuery{entry.catalog, entry.number}, out)) return false;
        out.commonName = entry.name;
        return true;
    }
    showMessage("Unknown object name",
                "Write a catalogue prefix and a number or a name, for example NGC 224, M 31, HIP 91262, "
                "TYC 4662-1234-1, Orion Nebula or alpha Lyr.");
    return false;
}

std::vector<std::string> suggestObjectNames(std::string_view prefix, std::size_t limit) {
    std::vector<std::string> out;
    const std::string_view typed = trimmed(prefix);
    if (typed.empty() || limit == 0) return out;
    if (gSolarSystemSuggest)
        for (const std::string& s : gSolarSystemSuggest(typed, limit))
            if (out.size() < limit) addUnique(out, s);
    for (const NameEntry* e : entriesStartingWith(typed, limit * 2)) {
        if (out.size() >= limit) break;
        addUnique(out, e->name);
    }
    return out;
}

std::vector<std::string> objectDesignations(const FoundObject& object) {
    std::vector<std::string> list;
    std::size_t start = 0;
    while (start < object.name.size()) {
        std::size_t end = object.name.find(", ", start);
        if (end == std::string::npos) end = object.name.size();
        addUnique(list, object.name.substr(start, end - start));
        start = end + 2;
    }
    if (object.catalogCode == kCatalogHipparcos || object.catalogCode == kCatalogHR) {
        DefaultStarRecord star{};
        if (matchingDefaultStar(object.catalogCode, object.number, star)) {
            if (star.hip > 0) addUnique(list, "HIP" + std::to_string(star.hip));
            if (star.hr > 0) addUnique(list, "HR" + std::to_string(star.hr));
        }
        const int32_t hip = object.catalogCode == kCatalogHipparcos ? object.number : (star.hip > 0 ? star.hip : -1);
        for (const NameEntry* e : entriesFor(kCatalogHipparcos, hip)) addUnique(list, e->name);
        return list;
    }
    if (object.catalogCode == kCatalogTycho || object.catalogCode < 0) return list;
    const int record = object.objectRecord >= 0 ? object.objectRecord : objectRecordOf(object.catalogCode, object.number);
    if (record >= 0 && objectIndexSlot().isOpen()) {
        const int count = recordCount(objectIndexSlot());
        for (int i = 0; i < count; ++i) {
            ObjectIndexRecord entry;
            if (!readObjectIndexRecord(static_cast<uint16_t>(i), entry)) break;
            if (entry.objectRecord != record || entry.catalog <= 0 || entry.catalog >= kCatalogCount) continue;
            addUnique(list, designation(entry.catalog, entry.number));
        }
    }
    for (const NameEntry* e : entriesFor(object.catalogCode, object.number)) addUnique(list, e->name);
    return list;
}

std::string objectDescription(const FoundObject& object) {
    if (object.catalogCode == kCatalogHipparcos || object.catalogCode == kCatalogHR || object.catalogCode == kCatalogTycho)
        return {};
    const int record = object.objectRecord >= 0 ? object.objectRecord : objectRecordOf(object.catalogCode, object.number);
    ObjectRecord o;
    if (record < 0 || !readObject(static_cast<uint16_t>(record), o) || o.description < 0) return {};
    DatabaseSlot& descriptions = objectDescriptionSlot();
    if (!descriptions.isOpen())
        openDatabase(descriptions, kObjectDescriptionType, kCreator, 0, kDataFolder, "nocturnel_obj_18k_desc.ppc");
    ObjectDescriptionRecord d;
    if (!readObjectDescription(static_cast<uint16_t>(o.description), d)) return {};
    return d.text;
}

}  // namespace nocturnel
