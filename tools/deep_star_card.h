#pragma once
// The "Tycho 390K" card (nocturnel_tycho_390k.ppc) made from Stellarium's star catalogue files
// when no Tycho-2 file is given: every star of stars_0 .. stars_3 (about 600,000, to magnitude
// 10.5: the card's name is the Tycho-2 card's it stands in for), packed in blocks like every
// optional star file.
//
// Star numbers: these files carry no Tycho numbers, so a Hipparcos star keeps its HIP number and
// every other star gets kDeepStarNumberBase + its rank by brightness (above any Tycho region x
// 100,000 + number), so that each number names one star.
#include <filesystem>
#include <string>
#include <vector>

#include "catalog/card_star_motion.h"
#include "catalog/formats.h"
#include "tools/star_motion_file.h"

namespace nocturnel {

inline constexpr int32_t kDeepStarNumberBase = 1000000000;
inline constexpr size_t kDeepStarCardStars = 1000000;  // more than the files hold: all of them

// stars_0_*.cat .. stars_3_*.cat of a Stellarium stars/default folder, in that order; empty
// when the folder lacks any of them.
std::vector<std::filesystem::path> stellariumStarFiles(const std::filesystem::path& folder);

struct DeepStarCard {
    std::vector<StarEntry> blocks;  // record 0 included
    int perBlock = 0;
    size_t stars = 0;
    double faintestMag = 0;
    // The side file's entries, parallel to `blocks`: each star's motion from its record, a
    // Hipparcos star's from hip_pm.dat beside the files when that lists it (the motion the HR
    // and Hipparcos cards use).
    std::vector<CardStarMotion> motions;
};

// Reads the files and packs the brightest `keep` stars; false with the fault in `error`. The
// Hipparcos stars' places are checked against `reference` (correctEpoch1991Places) when given.
bool buildDeepStarCard(const std::vector<std::filesystem::path>& files, size_t keep, DeepStarCard& card,
                       std::string& error, const std::map<int32_t, ReferencePlace>& reference = {});

}  // namespace nocturnel
