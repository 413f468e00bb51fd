#include "tools/object_files.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <set>
#include <tuple>

#include "catalog/object_index_key.h"
#include "catalog/object_tables.h"

namespace nocturnel {
namespace {

// A designation of an object in one of the program's catalogues, and where names.dat keys it.
struct Designation {
    int catalog;
    int32_t number;
    std::string namesKey;  // "NGC 224", "SH2 155"
};

// Indexed catalogues the source feeds, in the order that picks an object's own designation.
constexpr std::array<int, 17> kDesignationOrder = {kCatalogNGC, kCatalogIC, 11 /*Cr*/,  39 /*Mel*/, 59 /*Tr*/, 56 /*Stock*/,
                                          48 /*Ru*/,   65 /*vdB-Ha*/, 2 /*B*/, 52 /*Sh2*/, 64 /*vdB*/, 46 /*RCW*/,
                                          34 /*LDN*/,  10 /*Ced*/,  61 /*UGC*/, 1 /*Abell*/, kCatalogCaldwell};

int32_t numericId(const std::string& text) {
    if (text.empty() || text.size() > 7 || !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return 0;
    return std::stoi(text);
}

std::vector<Designation> designationsOf(const StellariumObject& o) {
    std::vector<Designation> d;
    auto add = [&](int catalog, int32_t number, const char* prefix, const std::string& id) {
        if (number > 0 && number < kIndexNumberLimit) d.push_back({catalog, number, std::string(prefix) + " " + id});
    };
    auto addNumber = [&](int catalog, uint32_t number, const char* prefix) {
        add(catalog, static_cast<int32_t>(std::min<uint32_t>(number, kIndexNumberLimit)), prefix, std::to_string(number));
    };
    addNumber(kCatalogNGC, o.ngc, "NGC");
    addNumber(kCatalogIC, o.ic, "IC");
    addNumber(11, o.collinder, "CR");
    addNumber(39, o.melotte, "MEL");
    addNumber(59, o.trumpler, "TR");
    addNumber(56, o.stock, "ST");
    addNumber(48, o.ruprecht, "RU");
    addNumber(65, o.vdbHagen, "VDBHA");
    addNumber(2, o.barnard, "B");
    addNumber(52, o.sharpless, "SH2");
    addNumber(64, o.vdb, "VDB");
    addNumber(46, o.rcw, "RCW");
    addNumber(34, o.ldn, "LDN");
    add(10, numericId(o.cederblad), "CED", o.cederblad);
    addNumber(61, o.ugc, "UGC");
    add(1, numericId(o.abell), "ACO", o.abell);
    addNumber(kCatalogCaldwell, o.caldwell, "C");
    return d;
}

float knownMagnitude(const StellariumObject& o) {
    // Dark nebulae and molecular clouds (types 12, 23), and any object known only by its Lynds
    // or Barnard dark-cloud number: the source's magnitude columns hold the opacity class
    // (1 .. 6), not a brightness; they are stored as unknown.
    const bool brightDesignation = o.ngc != 0 || o.ic != 0 || o.messier != 0 || o.caldwell != 0;
    if (o.type == 12 || o.type == 23 || ((o.ldn != 0 || o.barnard != 0) && !brightDesignation)) return 0.0f;
    if (o.vMag < 90.0) return static_cast<float>(o.vMag);
    if (o.bMag < 90.0) return static_cast<float>(o.bMag);
    return 0.0f;
}

// Brightest first; unknown magnitudes after all known ones; then by number.
bool brighter(float magA, int32_t numberA, float magB, int32_t numberB) {
    const bool knownA = magA != 0.0f, knownB = magB != 0.0f;
    if (knownA != knownB) return knownA;
    if (knownA && magA != magB) return magA < magB;
    return numberA < numberB;
}

// Copies UTF-8 text into a fixed field, never splitting a character, always NUL-terminated.
template <size_t N>
void copyText(char (&field)[N], const std::string& text) {
    std::memset(field, 0, N);
    size_t n = std::min(text.size(), N - 1);
    while (n > 0 && n < text.size() && (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80) --n;
    std::memcpy(field, text.data(), n);
}

ObjectIndexRecord indexRecord(int32_t objectRecord, int catalog, int32_t number, int32_t key, float mag) {
    return ObjectIndexRecord{objectRecord, catalog, number, key, mag};
}

// Indexed catalogues in index order (rank order).
std::vector<int> indexedCatalogues() {
    std::vector<int> codes;
    for (int code = 0; code < kCatalogCount; ++code)
        if (catalogIndexRank(code) >= 0) codes.push_back(code);
    std::sort(codes.begin(), codes.end(), [](int a, int b) { return catalogIndexRank(a) < catalogIndexRank(b); });
    return codes;
}
}  // namespace

int stellariumTypeToObjectType(uint32_t t) {
    switch (t) {
        case 0: case 1: case 2: case 3: case 4: case 21: case 22: case 25: return 16;  // galaxies, AGN, quasars
        case 33: return 17;                                                           // galaxy cluster
        case 5: case 6: case 8: case 9: return 6;                                     // clusters, associations, star clouds
        case 7: return 2;                                                             // globular cluster
        case 10: return 19;                                                           // nebula
        case 13: case 14: case 15: case 17: case 19: case 20: return 20;              // reflection, emission, HII ...
        case 11: case 26: case 27: return 25;                                         // planetary nebulae
        case 12: case 23: return 21;                                                  // dark nebula, molecular cloud
        case 16: return 9;                                                            // cluster with nebulosity
        case 18: case 31: case 32: return 39;                                         // supernova remnants
        case 28: case 29: case 30: return 30;                                         // stars
        default: return 0;
    }
}

std::pair<int, int> usableStretch(int catalogCode) {
    if (catalogIndexRank(catalogCode) < 0) return {0, 0};
    const int first = kCatalogDefinitions[catalogCode].first;
    int end = kCatalogDefinitions[catalogCode].last;
    for (int other = 0; other < kCatalogCount; ++other) {
        const int otherFirst = kCatalogDefinitions[other].first;
        if (other != catalogCode && catalogIndexRank(other) > catalogIndexRank(catalogCode) && otherFirst < end)
            end = std::max(first, otherFirst);
    }
    return {first, end};
}

bool buildObjectFiles(const StellariumCatalogue& catalogue, const std::map<std::string, std::vector<std::string>>& names,
                      const ConstellationFinder& constellations, ObjectFiles& files, std::string& error) {
    files = ObjectFiles{};
    const auto& objects = catalogue.objects;
    std::vector<std::vector<Designation>> designations(objects.size());
    std::map<int, std::vector<std::pair<int32_t, size_t>>> candidates;  // catalogue -> (number, source object)
    for (size_t i = 0; i < objects.size(); ++i) {
        designations[i] = designationsOf(objects[i]);
        for (const Designation& d : designations[i]) candidates[d.catalog].emplace_back(d.number, i);
    }

    // Choose each indexed catalogue's entries.
    std::map<int, std::vector<std::pair<int32_t, size_t>>> placed;
    for (int code : indexedCatalogues()) {
        auto [first, end] = usableStretch(code);
        CatalogueFill fill{code, end - first, 0, 0, {}};
        auto& list = candidates[code];
        // One entry per number: the brightest object carrying it.
        auto byNumber = [&](const std::pair<int32_t, size_t>& e) {
            const float m = knownMagnitude(objects[e.second]);
            return std::make_tuple(e.first, m == 0.0f, m, e.second);
        };
        std::sort(list.begin(), list.end(), [&](const auto& a, const auto& b) { return byNumber(a) < byNumber(b); });
        list.erase(std::unique(list.begin(), list.end(), [](const auto& a, const auto& b) { return a.first == b.first; }),
                   list.end());
        fill.available = static_cast<int>(list.size());
        std::stable_sort(list.begin(), list.end(), [&](const auto& a, const auto& b) {
            return brighter(knownMagnitude(objects[a.second]), a.first, knownMagnitude(objects[b.second]), b.first);
        });
        const size_t keep = std::min(list.size(), static_cast<size_t>(fill.slots));
        for (size_t k = keep; k < list.size(); ++k) fill.leftOut.push_back(list[k].first);
        std::sort(fill.leftOut.begin(), fill.leftOut.end());
        list.resize(keep);
        std::sort(list.begin(), list.end());
        fill.placed = static_cast<int>(keep);
        placed[code] = list;
        files.fills.push_back(std::move(fill));
    }

    // Objects of the file: those with an index slot, or a Messier / Caldwell number.
    std::vector<bool> inIndex(objects.size(), false);
    for (const auto& [code, list] : placed)
        for (const auto& [number, source] : list) inIndex[source] = true;
    std::vector<int32_t> recordOf(objects.size(), -1);
    for (size_t i = 0; i < objects.size(); ++i) {
        const StellariumObject& o = objects[i];
        if (!inIndex[i] && o.messier == 0 && o.caldwell == 0) continue;
        ObjectRecord r{};
        // Own designation: the first indexed designation that holds a slot, else Messier, else Caldwell.
        r.catalog = 0;
        for (int code : kDesignationOrder) {
            auto it = std::find_if(designations[i].begin(), designations[i].end(), [&](const Designation& d) {
                if (d.catalog != code) return false;
                const auto& list = placed[code];
                return std::binary_search(list.begin(), list.end(), std::make_pair(d.number, i));
            });
            if (it != designations[i].end()) {
                r.catalog = it->catalog;
                r.number = it->number;
                break;
            }
        }
        if (r.catalog == 0) {
            r.catalog = o.messier ? kCatalogMessier : kCatalogCaldwell;
            r.number = static_cast<int32_t>(o.messier ? o.messier : o.caldwell);
        }
        r.type = stellariumTypeToObjectType(o.type);
        double raDeg = o.raRad * 180.0 / std::numbers::pi;
        if (raDeg >= 360.0) raDeg -= 360.0;
        if (raDeg < 0.0) raDeg += 360.0;
        const double decDeg = o.decRad * 180.0 / std::numbers::pi;
        r.constellation = std::max(0, constellations.at(raDeg, decDeg));
        r.raHours = static_cast<float>(raDeg / 15.0);
        r.decDeg = static_cast<float>(decDeg);
        r.mag = knownMagnitude(o);
        r.messier = static_cast<int16_t>(std::min<uint32_t>(o.messier, 32767));
        r.caldwell = static_cast<int16_t>(std::min<uint32_t>(o.caldwell, 32767));
        r.majorArcmin = static_cast<float>(o.majorDeg * 60.0);
        r.minorArcmin = static_cast<float>(o.minorDeg * 60.0);
        r.positionAngle = o.majorDeg > 0 && o.orientationDeg < 360 ? static_cast<int16_t>(o.orientationDeg) : int16_t{-1};
        // Names: Messier, Caldwell and every designation's entries in names.dat, in that order.
        std::vector<std::string> keys;
        if (o.messier) keys.push_back("M " + std::to_string(o.messier));
        if (o.caldwell) keys.push_back("C " + std::to_string(o.caldwell));
        for (const Designation& d : designations[i]) keys.push_back(d.namesKey);
        std::vector<std::string> objectNames;
        for (const std::string& key : keys) {
            auto it = names.find(key);
            if (it == names.end()) continue;
            for (const std::string& n : it->second)
                if (std::find(objectNames.begin(), objectNames.end(), n) == objectNames.end()) objectNames.push_back(n);
        }
        copyText(r.name, objectNames.empty() ? std::string{} : objectNames.front());
        r.description = -1;
        std::string text;
        for (const std::string& n : objectNames) text += (text.empty() ? "" : "; ") + n;
        if (!o.morphology.empty()) text += (text.empty() ? "" : "; ") + std::string("Morphology ") + o.morphology;
        recordOf[i] = static_cast<int32_t>(files.objects.size());
        if (!text.empty()) {
            ObjectDescriptionRecord desc{};
            desc.objectRecord = recordOf[i];
            copyText(desc.text, text);
            r.description = static_cast<int32_t>(files.descriptions.size());
            files.descriptions.push_back(desc);
        }
        files.objects.push_back(r);
    }
    if (files.objects.empty()) {
        error = "no object of the catalogue belongs to an indexed catalogue, Messier or Caldwell";
        return false;
    }
    if (files.objects.size() > 65535) {
        error = "more than 65,535 objects";
        return false;
    }

    // The 18k name index.
    const std::vector<int> order = indexedCatalogues();
    files.index.assign(kCatalogDefinitions[order.front()].first, indexRecord(-1, 0, 0, kKeyBeforeAll, 0.0f));
    for (int code : order) {
        auto [first, end] = usableStretch(code);
        // Records between the previous stretch's end and this one's start keep the previous key.
        while (static_cast<int>(files.index.size()) < first)
            files.index.push_back(indexRecord(-1, 0, 0, files.index.back().key, 0.0f));
        for (const auto& [number, source] : placed[code])
            files.index.push_back(indexRecord(recordOf[source], code, number, objectIndexKey(code, number),
                                              knownMagnitude(objects[source])));
        while (static_cast<int>(files.index.size()) < end)
            files.index.push_back(indexRecord(-1, code, kIndexNumberLimit, objectIndexFillerKey(code), 0.0f));
    }
    files.index.push_back(indexRecord(-1, 0, 0, kKeyAfterAll, 0.0f));

    // The small file: Messier and Caldwell objects, then the brightest NGC / IC objects.
    std::vector<size_t> chosen;
    std::vector<size_t> ngcIc;
    for (size_t r = 0; r < files.objects.size(); ++r) {
        const ObjectRecord& o = files.objects[r];
        if (o.messier || o.caldwell) chosen.push_back(r);
        else if ((o.catalog == kCatalogNGC || o.catalog == kCatalogIC) && o.mag != 0.0f) ngcIc.push_back(r);
    }
    std::stable_sort(ngcIc.begin(), ngcIc.end(), [&](size_t a, size_t b) {
        return brighter(files.objects[a].mag, static_cast<int32_t>(a), files.objects[b].mag, static_cast<int32_t>(b));
    });
    for (size_t r : ngcIc) {
        if (chosen.size() >= kSmallFileObjects) break;
        chosen.push_back(r);
    }
    std::sort(chosen.begin(), chosen.end());
    std::vector<int32_t> smallRecordOf(files.objects.size(), -1);
    for (size_t r : chosen) {
        smallRecordOf[r] = static_cast<int32_t>(files.smallObjects.size());
        ObjectRecord copy = files.objects[r];
        copy.description = -1;  // the small file comes without descriptions
        files.smallObjects.push_back(copy);
    }
    files.smallIndex.push_back(indexRecord(-1, 0, 0, kKeyBeforeAll, 0.0f));
    for (const ObjectIndexRecord& e : files.index)
        if (e.objectRecord >= 0 && smallRecordOf[e.objectRecord] >= 0)
            files.smallIndex.push_back(indexRecord(smallRecordOf[e.objectRecord], e.catalog, e.number, e.key, e.mag));
    return true;
}

}  // namespace nocturnel
