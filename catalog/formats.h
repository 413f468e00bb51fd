#pragma once
// The catalogue file formats, defined once: every reader and the catalogue builder use these
// structs. All integers and floats are little-endian; no padding; each size is fixed by a
// static_assert and must never change (user list files store ObjectReference records).
#include <cstdint>

namespace nocturnel {

// ---- Record database file: a 16-byte header, then recordCount records of recordSize bytes ----
struct DatabaseHeader {
    uint32_t version;      // format version; only the low 16 bits are read (24 for object and Moon files)
    uint32_t reserved;     // never read (the builder writes 0)
    uint32_t recordCount;  // only the low 16 bits are used
    uint32_t recordSize;   // bytes per record
};
static_assert(sizeof(DatabaseHeader) == 16);

inline constexpr uint32_t kObjectFileVersion = 24;

// ---- Optional star catalogues: blocks of 42 or 80 packed entries ----
struct StarEntry {
    int32_t number;   // HR or HIP number; Tycho: region * 100000 + number in region
    int8_t raH;       // right ascension hours
    int8_t raM;       // minutes of time
    int8_t raS;       // seconds of time
    int8_t decD;      // declination degrees (signed)
    int8_t decM;      // arcminutes (carries the declination's sign)
    int8_t decS;      // arcseconds (carries the sign)
    uint8_t mag16;    // visual magnitude x 16 (0..255)
    int8_t colour;    // colour class for the star painter (B-V x 10, rounded, clamped to -128..127)
};
static_assert(sizeof(StarEntry) == 12);

// nocturnel_tycho_idx.ppc: record number = Tycho region number.
struct TychoRegionRecord {
    float minDecDeg;  // smallest declination of the region's stars, degrees
    float maxDecDeg;  // largest declination, degrees
};
static_assert(sizeof(TychoRegionRecord) == 8);

// nocturnel_hip_110k_idx.ppc and nocturnel_hr_idx.ppc: record r covers star numbers r*42 .. r*42+41.
struct HipIndexRecord {
    int16_t block[42];  // block number of the star numbered record*42 + k; -1 when no such star
};
static_assert(sizeof(HipIndexRecord) == 84);

// nocturnel_default_stars.ppc: the 1,646 brightest stars, brightest first.
struct DefaultStarRecord {
    int32_t hip;              // Hipparcos number (0 when none)
    int32_t hr;               // HR number (0 when none)
    float raHours;            // J2000 right ascension, hours
    float decDeg;             // J2000 declination, degrees
    float mag;                // visual magnitude
    float bv;                 // B-V colour index
    int16_t constellation;    // constellation number, counted from 0 in nocturnel_constellation.ppc order
    int8_t colour;            // colour class (as StarEntry::colour)
    uint8_t flags;            // bit 0: has a proper name in nocturnel_brightstar.ppc
    char name[16];            // proper name or Bayer/Flamsteed designation ("Vega", "alf Lyr"), NUL-terminated
};
static_assert(sizeof(DefaultStarRecord) == 44);

// nocturnel_brightstar.ppc: 2 x N records. The first half is ordered by name (for the name
// list), the second half holds the same stars ordered by the 16-bit key (the HR number).
struct BrightStarRecord {
    char name[16];            // proper name, NUL-terminated
    int16_t constellation;    // constellation number (nocturnel_constellation.ppc order), -1 unknown
    uint16_t key;             // HR number: the binary-search key of the second half
};
static_assert(sizeof(BrightStarRecord) == 20);

// ---- Deep-sky objects: nocturnel_obj_18k.ppc / nocturnel_obj_1k.ppc (version 24) ----
struct ObjectRecord {
    int32_t catalog;          // catalogue code (row of the catalogue table)
    int32_t number;           // number of the object in that catalogue
    int32_t type;             // object-type code (row of the object-type table)
    int32_t constellation;    // constellation number, counted from 0
    float raHours;            // J2000 right ascension, hours
    float decDeg;             // J2000 declination, degrees
    float mag;                // visual magnitude; 0.0 means unknown
    char name[13];            // short common name, bytes 28..40; byte 40 is forced to 0 after each read
    uint8_t reserved;         // byte 41
    int16_t messier;          // Messier number, 0 when none
    int16_t caldwell;         // Caldwell number, 0 when none
    int16_t positionAngle;    // degrees, -1 when unknown
    float majorArcmin;        // apparent size, major axis, arcminutes (0 unknown)
    float minorArcmin;        // minor axis, arcminutes (0 unknown)
    int32_t description;      // record in nocturnel_obj_18k_desc.ppc, -1 when none
};
static_assert(sizeof(ObjectRecord) == 60);

// nocturnel_obj_*_idx.ppc: ordered by key; each catalogue's entries lie in its stretch of the
// catalogue table. key = objectIndexKey(catalog rank, number), see catalog/object_index_key.h.
struct ObjectIndexRecord {
    int32_t objectRecord;     // record number in the object file, -1 for a filler slot
    int32_t catalog;          // catalogue code
    int32_t number;           // number in that catalogue
    int32_t key;              // the 32-bit search key (offset 12)
    float mag;                // the object's magnitude (0 unknown), for listing without a second read
};
static_assert(sizeof(ObjectIndexRecord) == 20);

// nocturnel_obj_18k_desc.ppc: one record per described object.
struct ObjectDescriptionRecord {
    int32_t objectRecord;     // record number in the object file
    char text[124];           // common names and Dreyer description, NUL-terminated
};
static_assert(sizeof(ObjectDescriptionRecord) == 128);

// The object reference carried by the selection list and stored in user list files.
struct ObjectReference {
    int32_t catalog;          // catalogue code
    int32_t number;           // number in the catalogue, or the record index; -1 marks an empty entry
    int32_t type;             // object-type code
    int32_t constellation;    // constellation number
    double raHours;           // J2000 right ascension, hours
    double decDeg;            // J2000 declination, degrees
    float mag;                // visual magnitude (0 unknown)
    float sizeArcmin;         // major axis, arcminutes (0 unknown)
    char name[32];            // name text, NUL-terminated
};
static_assert(sizeof(ObjectReference) == 72);

// ---- Constellations ----
// nocturnel_constellation.ppc: 88 records, numbered 0..87 in alphabetical order of abbreviation.
struct ConstellationRecord {
    char abbreviation[4];     // "And", NUL-padded
    char name[24];            // "Andromeda"
    float labelRaHours;       // where the name is written, J2000
    float labelDecDeg;
    uint16_t firstSegment;    // first record in nocturnel_constellation_lines.ppc
    uint16_t segmentCount;    // number of line segments of the figure
    uint16_t firstBoundary;   // first record in nocturnel_constellation_bounds.ppc
    uint16_t boundaryCount;   // number of boundary vertices
};
static_assert(sizeof(ConstellationRecord) == 44);

// nocturnel_constellation_lines.ppc: one segment of a figure, J2000.
struct ConstellationSegment {
    float raHours1, decDeg1, raHours2, decDeg2;
};
static_assert(sizeof(ConstellationSegment) == 16);

// nocturnel_constellation_bounds.ppc: the boundary polygon vertices (J2000), in order.
struct ConstellationBoundaryPoint {
    float raHours, decDeg;
};
static_assert(sizeof(ConstellationBoundaryPoint) == 8);

// ---- Eyepieces: nocturnel_eyepiece.ppc, one record per eyepiece; the preferences' eyepiece
// index is the record number. Readers copy the first 32 bytes of each record, so a file may
// carry longer records; shorter ones are refused. ----
struct EyepieceRecord {
    char name[24];            // shown in the preferences' "Eyepiece" list (Latin-1, "Pl\xF6ssl 25mm"), NUL-terminated
    float focalLengthMm;      // focal length of the eyepiece, millimetres
    float apparentFieldDeg;   // apparent field of view (full angle across the field stop), degrees
};
static_assert(sizeof(EyepieceRecord) == 32);

}  // namespace nocturnel
