#pragma once
// Which constellation a J2000 position lies in, from the boundary polygons of
// constellations.bounds.json (vertices joined by straight lines in RA/Dec, which is how the
// boundaries run: along hour circles and parallels).
#include <vector>

#include "tools/sources.h"

namespace nocturnel {

// Number (0-based, in the order of `constellations`) of the constellation containing the point,
// -1 when no polygon contains it.
int constellationAt(const std::vector<ConstellationSource>& constellations, double raDeg, double decDeg);

// The same, after a cheap lookup table is built once (for the ~100,000 stars and objects).
class ConstellationFinder {
public:
    explicit ConstellationFinder(const std::vector<ConstellationSource>& constellations);
    int at(double raDeg, double decDeg) const;

private:
    const std::vector<ConstellationSource>& constellations_;
    std::vector<std::vector<int>> cells_;  // candidate constellations per 2 x 2 degree cell
};

}  // namespace nocturnel
