#pragma once
// The chart's copies of the small catalogues it draws on every redraw: the 1,646 default bright
// stars and a compact list of the deep-sky objects (position, magnitude, type, size, name).
// Both are read once from the open catalogue slots and kept; forgetChartCatalogues() drops
// them (after the catalogues are reopened).
#include <cstdint>
#include <string>
#include <vector>

#include "catalog/formats.h"

namespace nocturnel {

struct ChartObject {
    float raHours = 0, decDeg = 0;  // J2000
    float mag = 0;                  // 0 unknown
    float majorArcmin = 0, minorArcmin = 0;
    int16_t positionAngleDeg = -1;
    uint8_t type = 0;               // object-type code
    int16_t messier = 0, caldwell = 0;  // 0 when none
    std::string name;               // "M31, NGC224"
};

const std::vector<DefaultStarRecord>& chartBrightStars();
// J2000-equinox place of each bright star (same order) at the epoch (decimal Julian year), its
// proper motion applied where the star has one. The stars' motion entries are looked up once;
// the places of the last epoch asked for are kept.
struct StarPlace {
    double raHours = 0, decDeg = 0;
};
const std::vector<StarPlace>& chartBrightStarPlaces(double epochYear);
const std::vector<ChartObject>& chartObjects();
void forgetChartCatalogues();

}  // namespace nocturnel
