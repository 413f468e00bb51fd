#pragma once
// Deep-sky objects: typed readers of the object file, its index and descriptions (and of the
// other whole-run databases: Moon, Mars, comets, satellites, user objects, sites), object name
// texts, the catalogue stretches in force, and lookup by catalogue and number.
#include <array>
#include <cstdint>
#include <string>

#include "catalog/formats.h"

namespace nocturnel {

// Reads object record `index`; byte 40 is forced to 0. "Object database isn't open!" /
// "Could not retrieve object record!".
bool readObject(uint16_t index, ObjectRecord& out);
bool readObjectIndexRecord(uint16_t index, ObjectIndexRecord& out);
bool readObjectDescription(uint16_t index, ObjectDescriptionRecord& out);
// User object database (same layout as the object file), byte 40 forced to 0 likewise.
bool readUserObject(uint16_t index, ObjectRecord& out);

// Records whose layouts belong to other features: copied whole.
using MoonRecordBytes = std::array<uint8_t, 44>;
using MarsRecordBytes = std::array<uint8_t, 36>;
using CometRecordBytes = std::array<uint8_t, 128>;
using SatelliteRecordBytes = std::array<uint8_t, 213>;
using SiteRecordBytes = std::array<uint8_t, 64>;
bool readMoonRecord(uint16_t index, MoonRecordBytes& out);
bool readMarsRecord(uint16_t index, MarsRecordBytes& out);
bool readCometRecord(uint16_t index, CometRecordBytes& out);
bool readSatelliteRecord(uint16_t index, SatelliteRecordBytes& out);
// Sites are read per use: opens nocturnel_location.ppc around the read.
bool readSiteRecord(uint16_t index, SiteRecordBytes& out);
int siteCount();

// Rewriting comets and satellites needs the in-memory half, which this platform never has:
// these answer with the refusal messages and false.
bool requestSatelliteRewrite();
bool writeCometRecord(uint16_t index, const CometRecordBytes& record);
// Sorting the satellites: "SatelliteDBSort: Satellite database isn't open!" without the file.
bool sortSatellites();

// "NGC224", "M31, NGC224", "C14, NGC869".
std::string objectNameText(const ObjectRecord& object);
// "TYC4662-1234-1" for region * 100,000 + number.
std::string tychoNameText(int32_t number);
// Object-type display name; code 0 and unknown codes print three blanks.
const char* objectTypeName(int typeCode);

// Stretch of the name index holding a catalogue's entries (first .. last, last excluded).
struct CatalogStretch {
    uint16_t first = 50000;
    uint16_t last = 0;
};
CatalogStretch catalogStretch(int catalogCode);
// Back to the table's stretches (the 18k index).
void resetCatalogStretches();
// For a small object file: each indexed catalogue's stretch becomes its first..last records in
// nocturnel_obj_1k_idx.ppc (empty stretch when it has none there). False when that index is absent.
bool adjustStretchesForSmallFile();

// Finds an object by catalogue code and number: Messier and Caldwell by scanning the object
// records, the others through the name index (opened to fit the object file). False when not
// found (read failures are reported by the readers).
bool lookupObject(int catalogCode, int32_t number, ObjectRecord& out);

}  // namespace nocturnel
