#pragma once
// Proper motions of the stars of a deep optional star card (the "Tycho 390K" and Tycho 2.5
// million files), whose packed records have no room for them. The side file of a card is named
// after it ("nocturnel_tycho_390k.ppc" -> "nocturnel_tycho_390k_pm.ppc") and runs parallel to it:
// record r holds the motions of the card's block r, entry k of one the motion of entry k of the
// other, so a star's motion is one record read away, whatever the size of the card. Each entry
// repeats the star's number: an entry whose number differs from the card's (a card rebuilt
// without its side file) is not used.
#include <cstdint>
#include <string>
#include <string_view>

#include "catalog/record_file.h"

namespace nocturnel {

struct CardStarMotion {
    int32_t number;              // the star number of the card's entry (0: empty slot)
    float pmRaCosDecMasPerYear;  // proper motion along RA, times cos(dec), mas/yr
    float pmDecMasPerYear;       // proper motion in Dec, mas/yr
};
static_assert(sizeof(CardStarMotion) == 12);

inline constexpr uint32_t kCardMotionFileVersion = 1;

// "nocturnel_tycho_390k.ppc" -> "nocturnel_tycho_390k_pm.ppc".
std::string cardMotionFileName(std::string_view cardFile);

// The side file of the optional card that is open (starCatalogSlot()), opened on first use and
// again whenever another card is opened. Silent when absent or not matching the card (record
// count and size): the stars then stay at their catalogue places.
class CardMotionReader {
public:
    // Follows the open card (reopens the side file when another card or folder is open); true
    // when a matching side file is open. Called once before a run of lookups.
    bool prepare();
    // The motion of entry k of block `block`, whose star number is `number`; false when none.
    bool motionOf(uint32_t block, int k, int32_t number, CardStarMotion& out);

private:
    std::string cardPath_;
    std::string sideStamp_;  // size and time of the side file when opened (a rebuilt file is reopened)
    const void* cardFile_ = nullptr;
    int perBlock_ = 0;
    uint16_t cardRecords_ = 0;
    DatabaseSlot slot_;
    uint32_t loadedBlock_ = UINT32_MAX;
    const uint8_t* loaded_ = nullptr;
};

// The reader shared by the chart's field stars and the finder.
CardMotionReader& cardMotionReader();

}  // namespace nocturnel
