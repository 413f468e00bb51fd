// Packing of star entries and blocks, the number index and the stars-per-record rule.
#include "tools/star_packing.h"

#include <gtest/gtest.h>

#include <cmath>

namespace nocturnel {
namespace {

struct PackCase {
    const char* what;
    StarToPack star;
    int raH, raM, raS, decD, decM, decS, mag16, colour;
};

TEST(StarPacking, EntriesCarryRoundedSexagesimalFieldsAndClampedBytes) {
    const PackCase cases[] = {
        // Vega, Hipparcos: 279.2347 deg = 18h36m56.34s, +38 47' 01.3"
        {"Vega", {91262, 279.234735 / 15.0, 38.783689, 0.03, -0.001, true}, 18, 36, 56, 38, 47, 1, 0, 0},
        // Sirius: -16 42' 58", V -1.46 clamps to 0; B-V 0.009 -> 0
        {"Sirius", {32349, 101.287155 / 15.0, -16.716116, -1.46, 0.009, true}, 6, 45, 9, -16, -42, -58, 0, 0},
        // Just south of the equator: the sign lives in the arcminutes and arcseconds.
        {"dec -0 30' 15\"", {1, 1.0, -(30.0 / 60 + 15.0 / 3600), 6.0, 1.5, true}, 1, 0, 0, 0, -30, -15, 96, 15},
        // 23h59m59.7s rounds up to 0h00m00s, not 24h.
        {"RA wraps", {2, 23.0 + 59.0 / 60 + 59.7 / 3600, 10.0, 15.99, -0.33, true}, 0, 0, 0, 10, 0, 0, 255, -3},
        {"faint clamps to 255", {3, 12.0, 0.0, 17.0, 0, false}, 12, 0, 0, 0, 0, 0, 255, kColourWithoutBv},
        {"very red clamps", {4, 6.0, -89.99999, 9.0, 20.0, true}, 6, 0, 0, -90, 0, 0, 144, 127},
        {"blue rounds", {5, 6.0, 45.5, 5.03125, -0.25, true}, 6, 0, 0, 45, 30, 0, 81, -3},
    };
    for (const PackCase& c : cases) {
        const StarEntry e = packStarEntry(c.star);
        EXPECT_EQ(e.number, c.star.number) << c.what;
        EXPECT_EQ(e.raH, c.raH) << c.what;
        EXPECT_EQ(e.raM, c.raM) << c.what;
        EXPECT_EQ(e.raS, c.raS) << c.what;
        EXPECT_EQ(e.decD, c.decD) << c.what;
        EXPECT_EQ(e.decM, c.decM) << c.what;
        EXPECT_EQ(e.decS, c.decS) << c.what;
        EXPECT_EQ(e.mag16, c.mag16) << c.what;
        EXPECT_EQ(e.colour, c.colour) << c.what;
    }
}

TEST(StarPacking, DecodedPositionIsWithinHalfASecond) {
    for (double dec : {-89.5, -45.123456, -0.5, -0.0001, 0.0, 0.0001, 23.99, 89.9999})
        for (double ra : {0.0, 0.0001, 6.5, 12.345678, 23.9998}) {
            const StarEntry e = packStarEntry({7, ra, dec, 5, 0, true});
            EXPECT_NEAR(packedDecDeg(e), dec, 0.5 / 3600 + 1e-12) << ra << " " << dec;
            const double dra = std::remainder(packedRaHours(e) - ra, 24.0);
            EXPECT_LE(std::abs(dra), 0.5 / 3600 + 1e-12) << ra << " " << dec;
        }
}

long decKey(const StarEntry& e) { return e.decD * 3600L + e.decM * 60L + e.decS; }

TEST(StarPacking, BlocksRunSouthToNorthAfterAnEmptySouthernRecord) {
    std::vector<StarToPack> stars;
    for (int i = 0; i < 100; ++i)  // declinations in a scrambled order
        stars.push_back({i + 1, (i * 7 % 24) + 0.5, -80.0 + ((i * 37) % 100) * 1.6, 6.0 + i * 0.01, 0.5, true});
    const auto entries = packStarBlocks(stars, 42);
    ASSERT_EQ(entries.size(), (1 + 3) * 42u);  // record 0 + ceil(100 / 42) blocks
    for (int k = 0; k < 42; ++k) {
        EXPECT_EQ(entries[k].number, 0);
        EXPECT_EQ(entries[k].mag16, kEmptyMagnitude);
        EXPECT_EQ(entries[k].decD, -90);
    }
    for (size_t i = 43; i < 42 + 100; ++i) EXPECT_LE(decKey(entries[i - 1]), decKey(entries[i])) << i;
    for (size_t i = 42 + 100; i < entries.size(); ++i) {  // padding of the last block
        EXPECT_EQ(entries[i].number, 0);
        EXPECT_EQ(entries[i].mag16, kEmptyMagnitude);
        EXPECT_EQ(entries[i].decD, 90);
    }
    // Every star once.
    std::vector<int32_t> numbers;
    for (const StarEntry& e : entries)
        if (e.number) numbers.push_back(e.number);
    std::sort(numbers.begin(), numbers.end());
    ASSERT_EQ(numbers.size(), 100u);
    EXPECT_EQ(numbers.front(), 1);
    EXPECT_EQ(numbers.back(), 100);

    auto padded = entries;
    padToMinimumSlots(padded, 42, 9101);
    EXPECT_EQ(padded.size(), 217u * 42);  // first multiple of 42 reaching 9,101
    EXPECT_EQ(padded.back().decD, 90);
}

TEST(StarPacking, NumberIndexPointsEveryStarToItsBlock) {
    std::vector<StarToPack> stars;
    for (int32_t n : {1, 41, 42, 84, 85, 500, 9110})
        stars.push_back({n, n % 24 + 0.1, -60.0 + n % 120, 5.0, 0, false});
    const auto entries = packStarBlocks(stars, 42);
    const auto index = buildNumberIndex(entries, 42);
    ASSERT_EQ(index.size(), 9110u / 42 + 1);
    // HIP 84 lies in index record 2, slot 0.
    EXPECT_EQ(index[2].block[0], 1);
    EXPECT_EQ(index[0].block[0], -1);  // no star 0
    EXPECT_EQ(index[0].block[2], -1);
    for (size_t i = 0; i < entries.size(); ++i)
        if (entries[i].number) {
            EXPECT_EQ(index[entries[i].number / 42].block[entries[i].number % 42], static_cast<int>(i / 42));
        }
}

TEST(StarPacking, StarsPerRecordFollowsTheReadersRule) {
    struct Case {
        size_t stars;
        int perBlock;
    };
    const Case cases[] = {
        {0, 42},          {9110, 42},      {118216, 42},  {390000, 42},
        {1049958, 42},    // 24,999 blocks + record 0 = 25,000 records: still 42
        {1049959, 0},     // 25,001 records of 42, but only 13,126 of 80: no valid layout
        {1999920, 0},     // 24,999 + 1 records of 80: the reader would take 42
        {1999921, 80},    {2539913, 80},  // all of Tycho-2
        {5242800, 0},     // more than 65,535 records even at 80
    };
    for (const Case& c : cases) EXPECT_EQ(starsPerBlockFor(c.stars), c.perBlock) << c.stars;
}

TEST(StarPacking, TychoRegionIndexSpansEachRegionsDeclinations) {
    const std::vector<StarToPack> stars = {
        {300100001, 1.0, 10.25, 9, 0, false}, {300100002, 1.1, 9.5, 9, 0, false}, {300100003, 1.2, 11.0, 9, 0, false},
        {500000007, 2.0, -45.0, 9, 0, false},
    };
    const auto index = buildTychoRegionIndex(stars);
    ASSERT_EQ(index.size(), 5001u);
    EXPECT_FLOAT_EQ(index[3001].minDecDeg, 9.5f);
    EXPECT_FLOAT_EQ(index[3001].maxDecDeg, 11.0f);
    EXPECT_FLOAT_EQ(index[5000].minDecDeg, -45.0f);
    EXPECT_FLOAT_EQ(index[5000].maxDecDeg, -45.0f);
    EXPECT_FLOAT_EQ(index[1].minDecDeg, 0.0f);
}

}  // namespace
}  // namespace nocturnel
