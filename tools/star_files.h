#pragma once
// The star files built from Hipparcos (d3-celestial), the Bright Star Catalogue and the star
// names: the default stars, the HR and Hipparcos block files with their number indexes, and the
// bright-star name file.
#include <map>
#include <string>
#include <vector>

#include "catalog/formats.h"
#include "tools/constellation_lookup.h"
#include "tools/sources.h"
#include "tools/star_packing.h"

namespace nocturnel {

inline constexpr size_t kDefaultStarCount = 1646;
inline constexpr int32_t kMaxHipNumber = 120999;
// Slot counts for which the reader uses the HR and the Hipparcos number index.
inline constexpr long kHrSlotsMin = 9101, kHrSlotsMax = 9199;
inline constexpr long kHipSlotsMin = 118001, kHipSlotsMax = 119999;

struct StarSources {
    std::vector<HipparcosStar> hipparcos;
    std::map<int32_t, StarNames> names;                 // by HIP
    std::vector<BrightStarCatalogueStar> brightStars;   // BSC
    std::vector<ConstellationSource> constellations;    // alphabetical
};

struct StarFiles {
    std::vector<DefaultStarRecord> defaultStars;
    std::vector<StarEntry> hr;                 // blocks of 42
    std::vector<HipIndexRecord> hrIndex;
    std::vector<StarEntry> hip16k, hip32k, hip64k, hip110k;  // blocks of 42
    std::vector<HipIndexRecord> hip110kIndex;
    std::vector<BrightStarRecord> brightStarNames;  // 2 x N
};

// "alf Lyr" from ("α", "Lyr"); "pi1 Ori" from ("π1", "Ori"); empty when the letter is unknown.
std::string bayerDesignation(const std::string& greek, const std::string& constellation);

bool buildStarFiles(const StarSources& sources, const ConstellationFinder& finder, StarFiles& files, std::string& error);

}  // namespace nocturnel
