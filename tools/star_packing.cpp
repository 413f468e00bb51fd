#include "tools/star_packing.h"

#include <algorithm>
#include <cmath>

namespace nocturnel {
namespace {
int32_t packedDecArcsec(const StarEntry& e) { return e.decD * 3600 + e.decM * 60 + e.decS; }
int32_t packedRaSeconds(const StarEntry& e) { return e.raH * 3600 + e.raM * 60 + e.raS; }
}  // namespace

int8_t colourClassFromBv(double bv, bool hasBv) {
    if (!hasBv || !std::isfinite(bv)) return kColourWithoutBv;
    return static_cast<int8_t>(std::lround(std::clamp(bv * 10.0, -128.0, 127.0)));
}

uint8_t magnitudeByte(double mag) {
    if (!std::isfinite(mag)) return kEmptyMagnitude;
    return static_cast<uint8_t>(std::lround(std::clamp(mag * 16.0, 0.0, 255.0)));
}

StarEntry packStarEntry(const StarToPack& star) {
    StarEntry e{};
    e.number = star.number;
    long raSeconds = std::lround(std::fmod(star.raHours, 24.0) * 3600.0) % 86400;
    if (raSeconds < 0) raSeconds += 86400;
    e.raH = static_cast<int8_t>(raSeconds / 3600);
    e.raM = static_cast<int8_t>(raSeconds / 60 % 60);
    e.raS = static_cast<int8_t>(raSeconds % 60);
    const long arcsec = std::lround(std::min(std::abs(star.decDeg), 90.0) * 3600.0);
    const int sign = star.decDeg < 0 ? -1 : 1;
    e.decD = static_cast<int8_t>(sign * (arcsec / 3600));
    e.decM = static_cast<int8_t>(sign * (arcsec / 60 % 60));
    e.decS = static_cast<int8_t>(sign * (arcsec % 60));
    e.mag16 = magnitudeByte(star.mag);
    e.colour = colourClassFromBv(star.bv, star.hasBv);
    return e;
}

StarEntry emptyStarEntry(bool north) {
    StarEntry e{};
    e.decD = static_cast<int8_t>(north ? 90 : -90);
    e.mag16 = kEmptyMagnitude;
    return e;
}

double packedRaHours(const StarEntry& e) { return e.raH + (e.raM * 60 + e.raS) / 3600.0; }
double packedDecDeg(const StarEntry& e) { return e.decD + (e.decM * 60 + e.decS) / 3600.0; }

int starsPerBlockFor(size_t starCount) {
    const size_t recordsOf42 = (starCount + 41) / 42 + 1;
    if (recordsOf42 <= 25000) return 42;
    const size_t recordsOf80 = (starCount + 79) / 80 + 1;
    return recordsOf80 > 25000 && recordsOf80 <= 65535 ? 80 : 0;
}

std::vector<StarEntry> packStarBlocks(std::span<const StarToPack> stars, int perBlock) {
    std::vector<StarEntry> packed;
    packed.reserve(stars.size());
    for (const StarToPack& s : stars) packed.push_back(packStarEntry(s));
    std::stable_sort(packed.begin(), packed.end(), [](const StarEntry& a, const StarEntry& b) {
        const int32_t da = packedDecArcsec(a), db = packedDecArcsec(b);
        if (da != db) return da < db;
        const int32_t ra = packedRaSeconds(a), rb = packedRaSeconds(b);
        return ra != rb ? ra < rb : a.number < b.number;
    });
    const size_t blocks = (packed.size() + perBlock - 1) / perBlock;
    std::vector<StarEntry> entries((blocks + 1) * perBlock, emptyStarEntry(true));
    std::fill(entries.begin(), entries.begin() + perBlock, emptyStarEntry(false));
    std::copy(packed.begin(), packed.end(), entries.begin() + perBlock);
    return entries;
}

void padToMinimumSlots(std::vector<StarEntry>& entries, int perBlock, size_t minStars) {
    while (entries.size() < minStars) entries.resize(entries.size() + perBlock, emptyStarEntry(true));
}

std::vector<HipIndexRecord> buildNumberIndex(std::span<const StarEntry> entries, int perBlock) {
    int32_t maxNumber = 0;
    for (const StarEntry& e : entries) maxNumber = std::max(maxNumber, e.number);
    std::vector<HipIndexRecord> index(maxNumber / 42 + 1);
    for (HipIndexRecord& r : index) std::fill(std::begin(r.block), std::end(r.block), int16_t{-1});
    for (size_t i = 0; i < entries.size(); ++i) {
        const int32_t n = entries[i].number;
        if (n <= 0) continue;
        index[n / 42].block[n % 42] = static_cast<int16_t>(i / perBlock);
    }
    return index;
}

std::vector<TychoRegionRecord> buildTychoRegionIndex(std::span<const StarToPack> stars) {
    int32_t maxRegion = 0;
    for (const StarToPack& s : stars) maxRegion = std::max(maxRegion, s.number / 100000);
    std::vector<TychoRegionRecord> index(maxRegion + 1, TychoRegionRecord{0.0f, 0.0f});
    std::vector<bool> seen(maxRegion + 1, false);
    for (const StarToPack& s : stars) {
        const int32_t region = s.number / 100000;
        // The reader searches blocks by the packed declination: use the packed value.
        const float dec = static_cast<float>(packedDecDeg(packStarEntry(s)));
        TychoRegionRecord& r = index[region];
        if (!seen[region]) {
            r = {dec, dec};
            seen[region] = true;
        } else {
            r.minDecDeg = std::min(r.minDecDeg, dec);
            r.maxDecDeg = std::max(r.maxDecDeg, dec);
        }
    }
    return index;
}

}  // namespace nocturnel
