#pragma once
// nocturnel_milkyway.ppc: the outline of the Milky Way (from d3-celestial's mw.json) as rings
// of points, one point per record: five nested brightness levels, each a set of polygons whose
// first ring is the outline and whose further rings are holes.
#include <cstdint>
#include <vector>

namespace nocturnel {

struct MilkyWayPoint {
    float raHours;     // J2000 right ascension, hours
    float decDeg;      // J2000 declination, degrees
    uint8_t level;     // brightness level 1 (faint outer outline) .. 5 (brightest parts)
    uint8_t starts;    // 1: first point of a polygon's outline, 2: first point of a hole, 0: next point
    uint16_t reserved; // 0
};
static_assert(sizeof(MilkyWayPoint) == 12);

inline constexpr char kMilkyWayFile[] = "nocturnel_milkyway.ppc";

// Reads data/nocturnel_milkyway.ppc whole; false (and no points) when it is absent or damaged.
bool readMilkyWay(std::vector<MilkyWayPoint>& points);

}  // namespace nocturnel
