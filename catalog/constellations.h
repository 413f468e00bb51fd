#pragma once
// Constellation figures and boundaries: nocturnel_constellation.ppc (88 records),
// nocturnel_constellation_lines.ppc and nocturnel_constellation_bounds.ppc, read per use into
// vectors, and the constellation of a J2000 place (point in boundary polygon).
#include <vector>

#include "catalog/formats.h"

namespace nocturnel {

struct ConstellationData {
    std::vector<ConstellationRecord> constellations;
    std::vector<ConstellationSegment> segments;
    std::vector<ConstellationBoundaryPoint> boundaries;
};

// Reads the three files; false with "Could not find nocturnel_constellation.ppc" when the
// main file is absent (a missing lines or bounds file is reported likewise and left empty).
bool readConstellations(ConstellationData& out);
// The data read once and kept (empty after a failure); forgetConstellations() drops it.
const ConstellationData& constellations();
void forgetConstellations();

// Number (record, from 0) of the constellation holding the place, -1 when unknown.
int constellationOf(double raHoursJ2000, double decDegJ2000);
int constellationOfIn(const ConstellationData& data, double raHoursJ2000, double decDegJ2000);

}  // namespace nocturnel
