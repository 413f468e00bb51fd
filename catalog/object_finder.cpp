#include "catalog/object_finder.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>

#include "catalog/catalogues.h"
#include "catalog/constellations.h"
#include "catalog/name_query.h"
#include "catalog/object_index_key.h"
#include "catalog/object_tables.h"
#include "catalog/objects.h"
#include "catalog/record_file.h"
#include "catalog/star_catalog.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {
constexpr int kStarType = 30;  // "1STAR"
constexpr int kHipLevel = 4;   // nocturnel_hip_110k.ppc
constexpr int kHrLevel = 0;    // nocturnel_hr.ppc

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
    if (query.catalogCode == kCatalogTycho) {
        const int level = fileExists(kStarCatalogFiles[6]) || !fileExists(kStarCatalogFiles[5]) ? 6 : 5;
        found = ensureStarLevel(level) && findTychoEntry(query.number, star);
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
    out.constellation = constellationOf(out.raHours, out.decDeg);
    return true;
}

bool findDeepSky(const ObjectNameQuery& query, FoundObject& out) {
    if (!objectSlot().isOpen() && !openObjectFiles()) return false;
    ObjectRecord object;
    if (!lookupObject(query.catalogCode, query.number, object)) {
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
}  // namespace

bool findObjectByName(std::string_view text, FoundObject& out) {
    out = {};
    ObjectNameQuery query;
    if (!parseObjectName(text, query)) {
        showMessage("Unknown object name",
                    "Write a catalogue prefix and a number, for example NGC 224, M 31, HIP 91262 or TYC 4662-1234-1.");
        return false;
    }
    const int code = query.catalogCode;
    if (code == kCatalogHipparcos || code == kCatalogHR || code == kCatalogTycho) return findStar(query, out);
    if (code == kCatalogMessier || code == kCatalogCaldwell || catalogIndexRank(code) >= 0) return findDeepSky(query, out);
    showMessage("Object not found",
                std::string("Objects of the ") + kCatalogDefinitions[code].name + " catalogue cannot be found by number.");
    return false;
}

}  // namespace nocturnel
