#pragma once
// The program's long-lived catalogue databases (global slots) and the start-up step that
// opens them, the switching of the optional star catalogue with the chart's zoom level, and
// the object name index (search and switching).
#include <array>
#include <cstdint>

#include "catalog/record_file.h"

namespace nocturnel {

// Type codes of the databases.
inline constexpr uint32_t kDefaultStarType = fourCharCode("pl01");
inline constexpr uint32_t kStarCatalogType = fourCharCode("pl02");
inline constexpr uint32_t kObjectType = fourCharCode("pl00");
inline constexpr uint32_t kObjectIndexType = fourCharCode("pl90");
inline constexpr uint32_t kObjectDescriptionType = fourCharCode("pl10");
inline constexpr uint32_t kMoonType = fourCharCode("pl08");
inline constexpr uint32_t kMarsType = fourCharCode("pl09");
inline constexpr uint32_t kCometType = fourCharCode("pl11");
inline constexpr uint32_t kSatelliteType = fourCharCode("pl12");
inline constexpr uint32_t kTychoIndexType = fourCharCode("pl60");
inline constexpr uint32_t kHipIndexType = fourCharCode("pl61");
inline constexpr uint32_t kEyepieceType = fourCharCode("pl62");
inline constexpr uint32_t kLocationType = fourCharCode("pl63");
inline constexpr uint32_t kConstellationType = fourCharCode("pl64");
inline constexpr uint32_t kBrightStarType = fourCharCode("pl65");
inline constexpr uint32_t kHrIndexType = fourCharCode("pl66");
inline constexpr uint32_t kCreator = fourCharCode(kCreatorCode);

// The optional star catalogues by level (place in this list); level 0, the HR file, is
// opened only by zoom switching (and directly by the finder).
inline constexpr std::array<const char*, 7> kStarCatalogFiles = {
    "nocturnel_hr.ppc",       "nocturnel_hip_16k.ppc",    "nocturnel_hip_32k.ppc",     "nocturnel_hip_64k.ppc",
    "nocturnel_hip_110k.ppc", "nocturnel_tycho_390k.ppc", "nocturnel_tycho_2500k.ppc",
};
// The object name index files by database size: 0 1k, 1 2k, 2 18k.
inline constexpr std::array<const char*, 3> kObjectIndexFiles = {
    "nocturnel_obj_1k_idx.ppc", "nocturnel_obj_2k_idx.ppc", "nocturnel_obj_18k_idx.ppc"};
// Wanted star catalogue level for zoom levels 0..15 (the chart uses 0..12).
inline constexpr std::array<int, 16> zoomCatalogueTable = {0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 6, 6, 6, 6, 6};

// Stars per block: more than 25,000 records -> 80, otherwise 42.
int starsPerBlockForRecordCount(uint32_t records);

// The catalogue start-up step: clears every slot, opens the default stars (alert and -1 when
// absent), the optional star catalogue of prefs().cardCatalog (-1 without alert when absent),
// the object file (18k, else 1k; alert and -1 when neither; version alert when not 24), adjusts
// the catalogue stretches for a small object file, the Moon file (version alert), then Mars,
// descriptions, comets, satellites and the 1k object index without messages. 0 on success.
int openCatalogues();
void closeCatalogues();

// Pieces of the start-up step, for commands that need only part of the catalogues.
bool openDefaultStars();   // alert "Could not open star database" when absent
bool openObjectFiles();    // steps of the object file: 18k else 1k, version alert, stretches

// The user object database (object-file layout) from usercatalogs/: prefs().userCatalogFile, or
// "nocturnel_user_catalog.pdb" when that is empty. Silent when absent: the reader reports it.
inline constexpr char kUserCatalogFolder[] = "usercatalogs/";
inline constexpr char kDefaultUserCatalogFile[] = "nocturnel_user_catalog.pdb";
bool openUserObjects();

DatabaseSlot& defaultStarSlot();
DatabaseSlot& starCatalogSlot();
DatabaseSlot& objectSlot();
DatabaseSlot& objectIndexSlot();
DatabaseSlot& objectDescriptionSlot();
DatabaseSlot& userObjectSlot();
DatabaseSlot& moonSlot();
DatabaseSlot& marsSlot();
DatabaseSlot& cometSlot();
DatabaseSlot& satelliteSlot();

int starsPerBlock();       // 80, 42, or 0 with no optional file
int starCatalogLevel();    // level of the open optional file, -1 when none

// Switches the optional star catalogue to the one wanted at a zoom level (capped by the
// preference). False when the preference is 0 or the file cannot be opened (alerts shown).
bool switchStarCatalogForZoom(int zoomLevel);
// Opens the optional file of a level 0..6 directly; alert "Please install %s ..." on failure.
bool openStarCatalogLevel(int level);

// Binary search of the open object index on the key at offset 12 (records 1..count-1):
// the last record probed (not necessarily an exact match), 0 for a one-record index, -1 with
// no index open or an unreadable record (alert "Can't find Object record number %d").
int findObjectIndex(int32_t key);
// Closes the open object index and opens the one for a database size (0 1k, 1 2k, 2 18k).
bool openObjectIndexForSize(int sizeIndex);
// Size index of the open object index, -1 when none.
int openObjectIndexSize();

}  // namespace nocturnel
