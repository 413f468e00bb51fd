#pragma once
// The optional star catalogues (blocks of packed StarEntry records sorted by declination),
// their lookups by Hipparcos, HR and Tycho number, the default bright stars and the
// bright-star name file.
#include <cstdint>

#include "catalog/formats.h"
#include "core/fixed24.h"

namespace nocturnel {

struct StarPosition {
    int16_t id = 0;        // low 16 bits of the entry's star number
    fixed24 ra = 0;        // right ascension, radians (J2000)
    fixed24 dec = 0;       // declination, radians (J2000)
    uint16_t mag = 0;      // magnitude in sixteenths
    int16_t colour = 0;    // colour class, unchanged
};

// Fixed-point decoding of a packed entry (each component x 2^17 times (pi/unit) x 2^31, >> 24).
void decodeStarEntry(const StarEntry& entry, StarPosition& out);
// Floating-point path of the chart: hours and degrees.
double starEntryRaHours(const StarEntry& e);
double starEntryDecDeg(const StarEntry& e);

// Block whose first entry is nearest the declination (binary search over blocks 1..count-1,
// the last block probed); 0 for a one-record file; -1 out of range, no file, or unreadable
// block (alert "Can't find Hipparchos record number %d").
int findBlockByDeclination(float decDeg);
// Reads star number `sequence` (block * starsPerBlock + entry); returns its star number, 0 on
// failure (alert "Database Hipparchos isn't open!" without a file).
int32_t readStarBySequence(uint32_t sequence, StarPosition& out);
// HIP or HR number 1..121,000 -> block number searched (whether or not the star was in it),
// -1 on failure. The index file follows the open catalogue's star count (HIP 110k or HR).
int findStarByHip(int32_t number, StarPosition& out);
// The same lookup, true only when the star itself was found.
bool findStarByNumber(int32_t number, StarPosition& out);
// Tycho star region * 100,000 + number -> true when found.
bool findTychoStar(int32_t number, StarPosition& out);
// The same lookups handing out the packed entry (for the floating-point decoding).
bool findStarEntryByNumber(int32_t number, StarEntry& out);
bool findTychoEntry(int32_t number, StarEntry& out);
// The same, also handing out where the entry stands in the card (block, entry in the block).
bool findTychoEntry(int32_t number, StarEntry& out, uint32_t& block, int& entryIndex);

// Number of stars in the open optional catalogue (records x stars per block).
uint32_t starCatalogStarCount();

// Default bright stars 0..1,645 (other indexes refused without a message).
inline constexpr int kDefaultStarCount = 1646;
bool readDefaultStar(int index, DefaultStarRecord& out);

// Bright-star names (nocturnel_brightstar.ppc, 2 x N records): N, remembered after the first
// call (0 when the file is absent: "Could not find nocturnel_brightstar.ppc catalog.").
int brightStarCount();
bool readBrightStar(int index, BrightStarRecord& out);
// Binary search of the second half on the 16-bit key: the record number in the file
// (N .. 2N-1, for readBrightStar), -1 when absent.
int findBrightStar(uint16_t key);
// Forgets the remembered count (start-up and tests).
void forgetBrightStarCount();

}  // namespace nocturnel
