#pragma once
// nocturnel_star_motion.ppc: full-precision J2000 places of the Hipparcos stars of Stellarium's
// star catalogue (stars_0 .. stars_2, the records with a HIP number), their proper motions from
// Stellarium's hip_pm.dat (HIP, pmRA x cos(dec), pmDE in mas/yr, tab-separated, # comments),
// with the HR number matched through the HD number of d3-celestial's names and the Yale
// catalogue. The packed star records keep their format; this file carries what they cannot.
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/star_motion.h"
#include "tools/stellarium_stars.h"

namespace nocturnel {

struct StarSources;

struct ProperMotion {
    double raCosDecMasPerYear = 0;
    double decMasPerYear = 0;
};
// hip_pm.dat; false with the first malformed line in `error`.
bool parseHipProperMotions(std::string_view text, std::map<int32_t, ProperMotion>& motions, std::string& error);

// Entries of the stars with a HIP number, sorted by it, packed into records (the last padded
// with HIP 0); a star without a listed motion gets none. A HIP number met twice keeps its
// first (brightest file's) record.
std::vector<StarMotionRecord> starMotionRecords(const std::vector<StellariumStar>& stars,
                                                const std::map<int32_t, ProperMotion>& motions,
                                                const std::map<int32_t, int32_t>& hrByHip);

// J2000 places (degrees) by HIP number, from an independent Hipparcos list (d3-celestial's).
struct ReferencePlace {
    double raDeg = 0, decDeg = 0;
};
std::map<int32_t, ReferencePlace> referencePlacesOf(const StarSources& sources);

// Stellarium's records hold, for a few hundred Hipparcos stars, the place of the catalogue's
// epoch J1991.25 instead of J2000 (61 Cygni A 44", Proxima Centauri 33", Groombridge 1830 58").
// A star more than 2" from its reference place whose place moved by its motion from 1991.25 to
// 2000 comes within 1.5" of it, or within a tenth of the way moved (the source of the place may
// have used a motion a few percent off, 61 Cygni A's by 2"), takes the reference place (the
// fault is then known, and the reference is the J2000 place, to 0.36"); the others are left as
// they are. Returns the count.
int correctEpoch1991Places(std::vector<StellariumStar>& stars, const std::map<int32_t, ProperMotion>& motions,
                           const std::map<int32_t, ReferencePlace>& reference);

// HR number of each Hipparcos star, matched through the HD number.
std::map<int32_t, int32_t> hrByHipOf(const StarSources& sources);

// Reads the 28-byte record files among `files` (stars_0 .. stars_2) and hip_pm.dat beside
// them, and builds the records; false with the fault in `error`.
// The places are checked against `reference` (correctEpoch1991Places) when it is not empty.
bool buildStarMotionRecords(const std::vector<std::filesystem::path>& files,
                            const std::map<int32_t, int32_t>& hrByHip, std::vector<StarMotionRecord>& records,
                            std::string& error, const std::map<int32_t, ReferencePlace>& reference = {});

// The written file: header, record size, entries in ascending HIP order, places and motions
// in range (no star faster than 11"/yr: Barnard's star, the fastest, moves 10.4"/yr).
bool checkStarMotionFile(const std::filesystem::path& file, std::string& error);

}  // namespace nocturnel
