#include "tools/constellation_lookup.h"

#include <algorithm>
#include <cmath>

namespace nocturnel {
namespace {
using Ring = std::vector<std::pair<double, double>>;

double wrap180(double deg) {
    while (deg > 180.0) deg -= 360.0;
    while (deg <= -180.0) deg += 360.0;
    return deg;
}

// A ring encloses a celestial pole when its RA steps add up to a full turn.
bool enclosesPole(const Ring& ring) {
    double turn = 0;
    for (size_t i = 0; i < ring.size(); ++i) turn += wrap180(ring[(i + 1) % ring.size()].first - ring[i].first);
    return std::abs(turn) > 180.0;
}

// Ray from the point northwards along its hour circle to the pole: an odd number of edge
// crossings means inside, unless the ring encloses the north pole itself (the ray then ends
// inside the ring and the parity flips). A ring around the south pole needs no flip.
bool ringContains(const Ring& ring, double raDeg, double decDeg) {
    bool inside = false;
    for (size_t i = 0; i < ring.size(); ++i) {
        const auto& [ra1, dec1] = ring[i];
        const auto& [ra2, dec2] = ring[(i + 1) % ring.size()];
        const double a = wrap180(ra1 - raDeg);
        const double step = wrap180(ra2 - ra1);
        const double b = a + step;
        if ((a <= 0) == (b <= 0)) continue;  // the edge does not span the point's hour circle
        const double t = (0 - a) / step;
        const double decAtPoint = dec1 + t * (dec2 - dec1);
        if (decAtPoint > decDeg) inside = !inside;
    }
    bool north = false;
    if (enclosesPole(ring)) {
        double meanDec = 0;
        for (const auto& p : ring) meanDec += p.second;
        north = meanDec > 0;
    }
    return inside != north;
}

bool contains(const ConstellationSource& c, double raDeg, double decDeg) {
    for (const Ring& ring : c.bounds)
        if (ringContains(ring, raDeg, decDeg)) return true;
    return false;
}

int cellOf(double raDeg, double decDeg) {
    const int x = std::clamp(static_cast<int>(std::floor(raDeg / 2.0)), 0, 179);
    const int y = std::clamp(static_cast<int>(std::floor((decDeg + 90.0) / 2.0)), 0, 89);
    return y * 180 + x;
}
}  // namespace

int constellationAt(const std::vector<ConstellationSource>& constellations, double raDeg, double decDeg) {
    for (size_t i = 0; i < constellations.size(); ++i)
        if (contains(constellations[i], raDeg, decDeg)) return static_cast<int>(i);
    return -1;
}

ConstellationFinder::ConstellationFinder(const std::vector<ConstellationSource>& constellations)
    : constellations_(constellations), cells_(180 * 90) {
    // A cell's candidates: the constellations holding its corners and its centre, and every
    // constellation with a boundary edge through the cell. The full test still decides.
    std::vector<int> corner(181 * 91);
    for (int y = 0; y <= 90; ++y)
        for (int x = 0; x <= 180; ++x)
            corner[y * 181 + x] = constellationAt(constellations, std::fmod(x * 2.0, 360.0), std::min(y * 2.0 - 90.0, 89.999));
    auto add = [](std::vector<int>& cell, int c) {
        if (c >= 0 && std::find(cell.begin(), cell.end(), c) == cell.end()) cell.push_back(c);
    };
    for (int y = 0; y < 90; ++y)
        for (int x = 0; x < 180; ++x) {
            std::vector<int>& cell = cells_[y * 180 + x];
            for (int dy : {0, 1})
                for (int dx : {0, 1}) add(cell, corner[(y + dy) * 181 + x + dx]);
            add(cell, constellationAt(constellations, x * 2.0 + 1.0, y * 2.0 - 89.0));
        }
    for (size_t i = 0; i < constellations.size(); ++i)
        for (const Ring& ring : constellations[i].bounds)
            for (size_t k = 0; k < ring.size(); ++k) {
                // every cell an edge passes through (sampled finely)
                const auto& [ra1, dec1] = ring[k];
                const auto& [ra2, dec2] = ring[(k + 1) % ring.size()];
                const double step = wrap180(ra2 - ra1);
                const int samples = 2 + static_cast<int>(std::max(std::abs(step), std::abs(dec2 - dec1)) * 2);
                for (int s = 0; s <= samples; ++s) {
                    const double t = static_cast<double>(s) / samples;
                    double ra = std::fmod(ra1 + t * step + 360.0, 360.0);
                    std::vector<int>& cell = cells_[cellOf(ra, dec1 + t * (dec2 - dec1))];
                    if (std::find(cell.begin(), cell.end(), static_cast<int>(i)) == cell.end())
                        cell.push_back(static_cast<int>(i));
                }
            }
    for (auto& cell : cells_) std::sort(cell.begin(), cell.end());
}

int ConstellationFinder::at(double raDeg, double decDeg) const {
    for (int c : cells_[cellOf(raDeg, decDeg)])
        if (contains(constellations_[c], raDeg, decDeg)) return c;
    return constellationAt(constellations_, raDeg, decDeg);
}

}  // namespace nocturnel
