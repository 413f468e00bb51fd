#pragma once
// Packing stars into the block files the chart reads (StarEntry x 42 or x 80 per record).
//
// Layout decisions, fixed here and relied on by nothing but the readers' documented rules:
// - Record 0 is a southern sentinel: every slot is empty (number 0, magnitude byte 255) at
//   declination -90 00 00, so it sorts first and holds no star; the declination search never
//   probes it. Stars start in record 1.
// - Stars are ordered by their packed declination (degrees, arcminutes, arcseconds), then packed
//   right ascension, then number; consecutive runs of starsPerBlock fill the records, so blocks
//   are sorted south to north by their first entry and entries inside a block too.
// - The last block's unused slots are empty entries at declination +90 00 00 (they sort last).
// - Files whose slot count selects a number index are padded with empty northern records up
//   to the index's range (see padToMinimumSlots); the real catalogues need no padding.
// - Colour class = B-V x 10 rounded, clamped to -128..127; a star without B-V gets class 6
//   (a G-type colour, the middle of the painter's 6..7 row).
#include <cstdint>
#include <span>
#include <vector>

#include "catalog/formats.h"

namespace nocturnel {

struct StarToPack {
    int32_t number = 0;     // HR, HIP, or Tycho region * 100000 + number
    double raHours = 0;     // J2000
    double decDeg = 0;      // J2000
    double mag = 0;         // visual magnitude
    double bv = 0;
    bool hasBv = false;
};

inline constexpr int8_t kColourWithoutBv = 6;
inline constexpr uint8_t kEmptyMagnitude = 255;

int8_t colourClassFromBv(double bv, bool hasBv);
uint8_t magnitudeByte(double mag);  // mag x 16 rounded, clamped to 0..255
StarEntry packStarEntry(const StarToPack& star);
StarEntry emptyStarEntry(bool north);

// Decoded position of a packed entry (hours, degrees): the readers' floating-point decoding.
double packedRaHours(const StarEntry& e);
double packedDecDeg(const StarEntry& e);

// Stars per record for a file of n stars: 42 unless the records of 42 would exceed 25,000
// (then 80). Returns 0 when n fits neither rule (80 per record would still leave 25,000 records
// or fewer, so the reader would take it for 42).
int starsPerBlockFor(size_t starCount);

// The records of a block file, record 0 included, each perBlock entries.
std::vector<StarEntry> packStarBlocks(std::span<const StarToPack> stars, int perBlock);

// Appends empty northern records (declination +90, as the last block's unused slots) until the
// file holds at least minStars slots: the reader picks the HR and Hipparcos number indexes by
// the file's slot count, so a catalogue with fewer stars is padded into the range.
void padToMinimumSlots(std::vector<StarEntry>& entries, int perBlock, size_t minStars);

// HipIndexRecord array for the given block file: record r, slot k holds the block of the star
// numbered r * 42 + k, -1 when absent. Numbers must be below 42 * 32767.
std::vector<HipIndexRecord> buildNumberIndex(std::span<const StarEntry> entries, int perBlock);

// Tycho region index: record number = region; regions without stars get min = max = 0.
std::vector<TychoRegionRecord> buildTychoRegionIndex(std::span<const StarToPack> stars);

}  // namespace nocturnel
