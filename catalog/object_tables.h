#pragma once
// The object-type table (41 rows, indexed by the type code stored with each object) and the
// catalogue table (68 rows, indexed by the catalogue code). Both are constant data; the
// catalogue stretches (first..last, last excluded) tell which records of the 18k object name
// index hold each catalogue's entries. catalogStretches() returns the bounds in force, which
// differ from the table for the small object file (see adjustStretchesForSmallFile).
#include <array>
#include <cstdint>

namespace nocturnel {

inline constexpr int kObjectTypeCount = 41;
inline constexpr int kCatalogCount = 68;
inline constexpr uint16_t kNotInIndex = 50000;  // `first` of a catalogue not reached through the name index

struct ObjectType {
    uint8_t group;            // 1 clusters, 2 SN remnants, 3 galaxies, 4 nebulae, 5 stars, 6 multiple stars,
                              // 7 planets, 8 constellations, 9 comets/minor planets, 10 satellites, 0 other
    const char* abbreviation; // as used in the catalogue data ("GLOCL")
    const char* name;         // display name ("Globular Cluster")
    int32_t extra;            // nonzero for a few rows
};

struct CatalogDefinition {
    const char* prefix;       // written before the number ("NGC")
    const char* name;         // display name ("NGC")
    uint16_t first;           // first record of the stretch in the 18k name index
    uint16_t last;            // one past the last record
};

extern const std::array<ObjectType, kObjectTypeCount> kObjectTypes;
extern const std::array<CatalogDefinition, kCatalogCount> kCatalogDefinitions;

// Catalogue codes that other modules use by number.
enum CatalogCode : int {
    kCatalogNone = 0, kCatalogCaldwell = 9, kCatalogHerschel = 25, kCatalogHipparcos = 26, kCatalogHR = 28,
    kCatalogIC = 29, kCatalogMessier = 40, kCatalogNGC = 42, kCatalogPlanets = 45, kCatalogBestNGC = 49,
    kCatalogTycho = 60, kCatalogUser = 63,
};

}  // namespace nocturnel
