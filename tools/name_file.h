#pragma once
// Builder step for nocturnel_names.ppc: the common names of the deep-sky objects (Stellarium's
// names.dat, as gathered into the object descriptions) and the proper names, Bayer and
// Flamsteed designations of the Hipparcos stars (d3-celestial's starnames.json).
#include <map>
#include <vector>

#include "catalog/name_index.h"
#include "tools/object_files.h"
#include "tools/sources.h"

namespace nocturnel {

// The records, ordered by folded name. A deep-sky name points to its object's own designation
// (the object record's catalogue and number); a star name to the star's HIP number.
std::vector<NameRecord> buildNameRecords(const ObjectFiles& objects, const std::map<int32_t, StarNames>& starNames);

}  // namespace nocturnel
