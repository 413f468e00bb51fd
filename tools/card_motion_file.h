#pragma once
// The proper-motion side file of a deep star card ("nocturnel_tycho_390k_pm.ppc" beside
// "nocturnel_tycho_390k.ppc"): one record per block of the card, entry k of record r the motion
// of the card's entry k of block r (see catalog/card_star_motion.h). The card's records keep
// their format; the motions the sources give per star (Stellarium's star files, Tycho-2) travel here.
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "catalog/card_star_motion.h"
#include "catalog/formats.h"
#include "tools/star_motion_file.h"

namespace nocturnel {

// Entries parallel to the card's slots: each slot's motion looked up by its star number; a slot
// without a star or without a known motion gets number 0 (the reader then leaves the star still).
std::vector<CardStarMotion> cardMotionEntries(std::span<const StarEntry> slots,
                                              const std::unordered_map<int32_t, ProperMotion>& motions);

// The file: header (version kCardMotionFileVersion, one record per block of perBlock entries)
// and the entries.
std::string cardMotionFileBytes(std::span<const CardStarMotion> entries, int perBlock);

// The written side file against its card: as many records as the card's blocks, each entry
// numbered as the card's slot or 0, every motion finite and under 11"/yr.
bool checkCardMotionFile(const std::filesystem::path& card, const std::filesystem::path& side,
                         std::string& error);

}  // namespace nocturnel
