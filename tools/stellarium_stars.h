#pragma once
// Stellarium's star catalogue files (Debian stellarium-data, stars/default/stars_N_*.cat), read
// from their published layout:
// - a 32-byte little-endian header of eight 32-bit integers: magic 0x835F040A, record type
//   (0: 28-byte records with a Hipparcos number, 1: 10-byte bit-packed records), major and minor
//   version, the grid level L, the faintest-star offset mag_min and the magnitude range and
//   steps (millimagnitudes: mag = (mag_min + m x range / steps) / 1000);
// - the star count of each of the 20 x 4^L zones (32-bit integers);
// - the records, zone after zone.
// A zone is a triangle of the geodesic grid: the icosahedron's 20 faces, each cut into four
// (corner, corner-midpoints) L times. A star's place is an offset (x0, x1) from the zone's centre
// along two axes (axis0 = north x centre, axis1 = centre x axis0) in the tangent plane, scaled so
// that the grid's largest offset fills the field's integer range. The motion (dx0, dx1) is along
// the same axes, in units of 0.1 mas/yr (1e-4 arcsec/yr) in both record types.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nocturnel {

struct StellariumStar {
    int32_t hip = 0;        // Hipparcos number, 0 when none (the bit-packed records have none)
    double raDeg = 0;       // J2000 right ascension, degrees [0, 360)
    double decDeg = 0;      // J2000 declination, degrees
    double mag = 0;         // visual magnitude
    double bv = 0;          // B-V colour index
    // Proper motion, mas/yr (the RA part times cos(dec)): the records' dx0, dx1 in units of
    // 0.1 mas/yr along the zone's two axes, turned to the star's east and north.
    double pmRaCosDecMasPerYear = 0;
    double pmDecMasPerYear = 0;
};

inline constexpr uint32_t kStellariumStarMagic = 0x835F040A;

// Parses one whole file; false with the first fault in `error` (bad magic, unknown record type,
// level beyond 9, counts that do not match the file's length).
bool parseStellariumStars(std::string_view bytes, std::vector<StellariumStar>& stars, std::string& error);

}  // namespace nocturnel
