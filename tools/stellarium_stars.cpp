#include "tools/stellarium_stars.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace nocturnel {
namespace {

using Vec = std::array<double, 3>;

Vec normalised(const Vec& v) {
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    return {v[0] / length, v[1] / length, v[2] / length};
}
Vec sum(const Vec& a, const Vec& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
Vec cross(const Vec& a, const Vec& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
double dot(const Vec& a, const Vec& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

// The icosahedron of the grid: vertices (+-n, +-m, 0), (0, +-n, +-m), (+-m, 0, +-n) with
// m = sqrt(50 - 10 sqrt 5) / 10, n = sqrt(50 + 10 sqrt 5) / 10, and its faces in zone order.
const std::array<Vec, 12>& icosahedronVertices() {
    static const std::array<Vec, 12> vertices = [] {
        const double m = std::sqrt(50 - 10 * std::sqrt(5.0)) / 10, n = std::sqrt(50 + 10 * std::sqrt(5.0)) / 10;
        return std::array<Vec, 12>{{{n, -m, 0}, {n, m, 0}, {-n, m, 0}, {-n, -m, 0}, {0, n, -m}, {0, n, m},
                                    {0, -n, m}, {0, -n, -m}, {-m, 0, n}, {m, 0, n}, {m, 0, -n}, {-m, 0, -n}}};
    }();
    return vertices;
}
constexpr std::array<std::array<int, 3>, 20> kIcosahedronFaces = {{
    {1, 0, 10}, {0, 1, 9},  {0, 9, 6},   {9, 8, 6},  {0, 7, 10}, {6, 7, 0},  {7, 6, 3},
    {6, 8, 3},  {11, 10, 7}, {7, 3, 11}, {3, 2, 11}, {2, 3, 8},  {10, 11, 4}, {2, 4, 11},
    {5, 4, 2},  {2, 8, 5},  {4, 1, 10},  {4, 5, 1},  {5, 9, 1},  {8, 9, 5},
}};

struct Zone {
    Vec centre, axis0, axis1;
    double largestOffset = 0;  // largest tangent-plane offset of a corner along either axis
};

// Zone z of level L: face z >> 2L, then at each level the child (z >> 2(L-1-k)) & 3 of
// (c0, e2, e1), (e2, c1, e0), (e1, e0, c2), (e0, e1, e2), e_i the midpoint opposite c_i.
void collectZones(int level, int depth, std::size_t index, Vec c0, Vec c1, Vec c2, std::vector<Zone>& zones) {
    if (depth == level) {
        Zone& zone = zones[index];
        zone.centre = normalised(sum(sum(c0, c1), c2));
        zone.axis0 = normalised(cross({0, 0, 1}, zone.centre));
        zone.axis1 = cross(zone.centre, zone.axis0);
        for (const Vec& corner : {c0, c1, c2}) {
            const double along = dot(corner, zone.centre);
            zone.largestOffset = std::max({zone.largestOffset, std::fabs(dot(corner, zone.axis0) / along),
                                           std::fabs(dot(corner, zone.axis1) / along)});
        }
        return;
    }
    const Vec e0 = normalised(sum(c1, c2)), e1 = normalised(sum(c2, c0)), e2 = normalised(sum(c0, c1));
    index *= 4;
    collectZones(level, depth + 1, index + 0, c0, e2, e1, zones);
    collectZones(level, depth + 1, index + 1, e2, c1, e0, zones);
    collectZones(level, depth + 1, index + 2, e1, e0, c2, zones);
    collectZones(level, depth + 1, index + 3, e0, e1, e2, zones);
}

std::vector<Zone> gridZones(int level) {
    std::vector<Zone> zones(static_cast<std::size_t>(20) << (2 * level));
    const auto& v = icosahedronVertices();
    for (std::size_t face = 0; face < kIcosahedronFaces.size(); ++face) {
        const auto& f = kIcosahedronFaces[face];
        collectZones(level, 0, face, v[f[0]], v[f[1]], v[f[2]], zones);
    }
    return zones;
}

int32_t readInt32(const unsigned char* p) {
    uint32_t v = 0;
    std::memcpy(&v, p, 4);
    return static_cast<int32_t>(v);
}

int32_t signExtend(uint64_t value, int bits) {
    const uint64_t sign = uint64_t{1} << (bits - 1);
    return static_cast<int32_t>(static_cast<int64_t>((value ^ sign)) - static_cast<int64_t>(sign));
}

}  // namespace

bool parseStellariumStars(std::string_view bytes, std::vector<StellariumStar>& stars, std::string& error) {
    constexpr std::size_t kHeaderBytes = 32;
    if (bytes.size() < kHeaderBytes) {
        error = "shorter than its header";
        return false;
    }
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
    int32_t header[8];
    for (int i = 0; i < 8; ++i) header[i] = readInt32(data + 4 * i);
    if (static_cast<uint32_t>(header[0]) != kStellariumStarMagic) {
        error = "not a Stellarium star catalogue (magic number)";
        return false;
    }
    const int type = header[1], level = header[4];
    const double magMin = header[5], magRange = header[6], magSteps = header[7];
    if (type != 0 && type != 1) {
        error = "record type " + std::to_string(type) + " is not read";
        return false;
    }
    if (level < 0 || level > 9 || magSteps <= 0) {
        error = "grid level or magnitude steps out of range";
        return false;
    }
    const std::size_t recordBytes = type == 0 ? 28 : 10;
    const std::vector<Zone> zones = gridZones(level);
    std::size_t offset = kHeaderBytes + 4 * zones.size();
    if (bytes.size() < offset) {
        error = "zone counts cut short";
        return false;
    }
    std::size_t total = 0;
    for (std::size_t z = 0; z < zones.size(); ++z) {
        const int32_t count = readInt32(data + kHeaderBytes + 4 * z);
        if (count < 0) {
            error = "negative star count in zone " + std::to_string(z);
            return false;
        }
        total += static_cast<std::size_t>(count);
    }
    if (bytes.size() != offset + total * recordBytes) {
        error = "length disagrees with the zone counts";
        return false;
    }
    // The largest offset of the whole grid fills the offset field's range.
    double largest = 0;
    for (const Zone& zone : zones) largest = std::max(largest, zone.largestOffset);
    const double scale = largest / (type == 0 ? 2147483647.0 : 524287.0);

    stars.reserve(stars.size() + total);
    for (std::size_t z = 0; z < zones.size(); ++z) {
        const Zone& zone = zones[z];
        const int32_t count = readInt32(data + kHeaderBytes + 4 * z);
        for (int32_t k = 0; k < count; ++k, offset += recordBytes) {
            const unsigned char* r = data + offset;
            StellariumStar star;
            int32_t x0 = 0, x1 = 0, dx0 = 0, dx1 = 0;
            int bvCode = 0, magCode = 0;
            if (type == 0) {
                // hip:24 components:8 | x0:32 | x1:32 | b_v:8 | mag:8 | spectral:16 | dx0, dx1, parallax: 32 each
                star.hip = readInt32(r) & 0xFFFFFF;
                x0 = readInt32(r + 4);
                x1 = readInt32(r + 8);
                bvCode = r[12];
                magCode = r[13];
                dx0 = readInt32(r + 16);
                dx1 = readInt32(r + 20);
            } else {
                // 80 bits, lowest first: x0:20 x1:20 dx0:14 dx1:14 b_v:7 mag:5
                uint64_t low = 0;
                std::memcpy(&low, r, 8);
                const uint64_t high = static_cast<uint64_t>(r[8]) | static_cast<uint64_t>(r[9]) << 8;
                x0 = signExtend(low & 0xFFFFF, 20);
                x1 = signExtend((low >> 20) & 0xFFFFF, 20);
                dx0 = signExtend((low >> 40) & 0x3FFF, 14);                           // bits 40..53
                dx1 = signExtend(((low >> 54) | ((high & 0xF) << 10)) & 0x3FFF, 14);  // bits 54..67
                bvCode = static_cast<int>((high >> 4) & 0x7F);    // bits 68..74
                magCode = static_cast<int>((high >> 11) & 0x1F);  // bits 75..79
            }
            Vec p;
            for (int i = 0; i < 3; ++i) p[i] = zone.centre[i] + scale * (x0 * zone.axis0[i] + x1 * zone.axis1[i]);
            p = normalised(p);
            star.decDeg = std::asin(std::clamp(p[2], -1.0, 1.0)) * 180 / M_PI;
            star.raDeg = std::atan2(p[1], p[0]) * 180 / M_PI;
            if (star.raDeg < 0) star.raDeg += 360;
            star.mag = (magMin + magCode * magRange / magSteps) / 1000.0;
            star.bv = bvCode / 32.0 - 0.5;
            // The motion vector, 0.1 mas/yr along the zone's axes, on the star's east and north.
            Vec motion;
            for (int i = 0; i < 3; ++i) motion[i] = 0.1 * (dx0 * zone.axis0[i] + dx1 * zone.axis1[i]);
            const double ra = star.raDeg * M_PI / 180, dec = star.decDeg * M_PI / 180;
            const Vec east = {-std::sin(ra), std::cos(ra), 0.0};
            const Vec north = {-std::sin(dec) * std::cos(ra), -std::sin(dec) * std::sin(ra), std::cos(dec)};
            star.pmRaCosDecMasPerYear = dot(motion, east);
            star.pmDecMasPerYear = dot(motion, north);
            stars.push_back(star);
        }
    }
    return true;
}

}  // namespace nocturnel
