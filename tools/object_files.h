#pragma once
// The deep-sky object files built from Stellarium's catalogue: the 18k object file with its name
// index and descriptions, and the small 1k file with its own index.
//
// Choices made here:
// - An object enters the 18k file when it got at least one slot in the name index or carries a
//   Messier or Caldwell number. Its own (catalogue, number) is the first of NGC, IC, then the
//   other indexed catalogues in the order of kDesignationOrder, then Messier, then Caldwell;
//   every other indexed designation points to the same record through the index.
// - A catalogue with more objects than usable slots keeps the brightest (known magnitude first,
//   then by number); the rest is reported. Usable slots of a stretch end where the next stretch
//   (in index order) begins.
// - The small file holds every Messier and Caldwell object, then the brightest NGC and IC
//   objects with a known magnitude, up to kSmallFileObjects records, without descriptions.
// - 18k index: records before the first stretch carry key 0, each stretch holds its entries
//   by number then filler records, records between stretches repeat the key before them
//   (catalogue 0, no object), and one closing record carries kKeyAfterAll.
// - 1k index: record 0 carries key 0 (the search never probes it), then every indexed
//   designation of the small file's objects, ordered by key.
#include <map>
#include <string>
#include <vector>

#include "catalog/formats.h"
#include "tools/constellation_lookup.h"
#include "tools/sources.h"

namespace nocturnel {

inline constexpr size_t kSmallFileObjects = 1500;

// How one indexed catalogue was filled.
struct CatalogueFill {
    int catalog = 0;
    int slots = 0;        // usable slots of its stretch
    int available = 0;    // objects the sources hold for it
    int placed = 0;       // objects in the index
    std::vector<int32_t> leftOut;  // numbers that did not fit (faintest)
};

struct ObjectFiles {
    std::vector<ObjectRecord> objects;                  // nocturnel_obj_18k.ppc
    std::vector<ObjectIndexRecord> index;               // nocturnel_obj_18k_idx.ppc
    std::vector<ObjectDescriptionRecord> descriptions;  // nocturnel_obj_18k_desc.ppc
    std::vector<ObjectRecord> smallObjects;             // nocturnel_obj_1k.ppc
    std::vector<ObjectIndexRecord> smallIndex;          // nocturnel_obj_1k_idx.ppc
    std::vector<CatalogueFill> fills;                   // per indexed catalogue, in index order
};

// Our object-type code for Stellarium's type number.
int stellariumTypeToObjectType(uint32_t stellariumType);

// Usable slots [first, end) of an indexed catalogue's stretch; end = first when not indexed.
std::pair<int, int> usableStretch(int catalogCode);

bool buildObjectFiles(const StellariumCatalogue& catalogue, const std::map<std::string, std::vector<std::string>>& names,
                      const ConstellationFinder& constellations, ObjectFiles& files, std::string& error);

}  // namespace nocturnel
