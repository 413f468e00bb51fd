#pragma once
// The selection criteria of SkyRoamer, kept with the preferences. Each field is the index chosen
// on the "Choose Selection Criteria" form, 0 meaning "No Criteria".
#include <cstdint>

namespace nocturnel {

struct SelectionCriteria {
    int16_t timeWindowStart = 0;     // the observing window, minutes after midnight ("%02d:%02d")
    int16_t timeWindowEnd = 0;
    int16_t selectionYear = 0;       // the moment the selection is computed for (local civil time);
    int16_t selectionMonth = 0;      // copied from the current moment when a list is built and saved
    int16_t selectionDay = 0;        // in the list file's header
    int16_t selectionHour = 0;
    int16_t selectionMinute = 0;
    int16_t magLimitChoice = 0;      // 0 none, 1 "Scope Limit", 2 "Eyes Limit", 3..8 the limits 4, 6, 8, 10, 12, 14
    int16_t constellationFilter = 0; // 0 any, else the constellation's number + 1
    int16_t catalogFilter = 0;       // 0 any, else a catalogue code
    int16_t typeFilter = 0;          // 0 or 19 any, else an object-type code
    int16_t typeGroupFilter = 0;     // 0 any, else a type group
    int16_t difficulty = 0;          // 0 none, 1 "Very Difficult", 2 "Difficult", 3 "Easy", 4 "Very Easy"
    int16_t sizeMatch = 0;           // nonzero: the best magnification must be close to sizeReference
    int32_t sizeReference = 0;       // reference magnification of the size test
    int16_t visibility = 0;          // 0 "No Criteria", 1 "Visible", 2..9 ">15°" .. ">50°", 10 "Not Visible"
    int16_t reserved = 0;
    float scopeLimitMag = 0;         // refreshed before each run from the visibility estimate
    float eyesLimitMag = 0;
    int32_t reserved2 = 0;           // keeps the record a multiple of 8 bytes
};
static_assert(sizeof(SelectionCriteria) == 48);

}  // namespace nocturnel
