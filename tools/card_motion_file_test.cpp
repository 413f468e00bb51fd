// The proper motions of the deep cards: Stellarium's records' motions (both record types, and
// the real files against hip_pm.dat), the side file parallel to its card, and its check.
#include "tools/card_motion_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>
#include <unordered_map>

#include "tools/catalog_builder.h"
#include "tools/deep_star_card.h"
#include "tools/record_io.h"
#include "tools/star_packing.h"
#include "tools/stellarium_stars.h"

namespace nocturnel {
namespace {

void put32(std::string& bytes, int32_t value) {
    char raw[4];
    std::memcpy(raw, &value, 4);
    bytes.append(raw, 4);
}

// A level-0 file (20 zones, one star at each zone's centre) of the record type, every record
// carrying the motion (dx0, dx1) along the zone's axes.
std::string filePerZone(int type, int32_t dx0, int32_t dx1) {
    std::string bytes;
    for (int32_t v : {static_cast<int32_t>(kStellariumStarMagic), type, 0, 8, 0, 0, 12800, 256})
        put32(bytes, v);
    for (int z = 0; z < 20; ++z) put32(bytes, 1);
    for (int z = 0; z < 20; ++z) {
        if (type == 0) {
            std::string r(28, '\0');
            const int32_t hip = z + 1;
            std::memcpy(r.data(), &hip, 4);
            std::memcpy(r.data() + 16, &dx0, 4);
            std::memcpy(r.data() + 20, &dx1, 4);
            bytes += r;
        } else {
            // x0:20 x1:20 dx0:14 dx1:14 b_v:7 mag:5, lowest bit first.
            const uint64_t m0 = static_cast<uint64_t>(dx0) & 0x3FFF, m1 = static_cast<uint64_t>(dx1) & 0x3FFF;
            const uint64_t low = (m0 << 40) | (m1 << 54);
            const uint64_t high = m1 >> 10;
            std::string r(10, '\0');
            std::memcpy(r.data(), &low, 8);
            r[8] = static_cast<char>(high & 0xFF);
            r[9] = static_cast<char>(high >> 8);
            bytes += r;
        }
    }
    return bytes;
}

TEST(StellariumMotions, BothRecordTypesGiveEastAndNorthInMasPerYear) {
    // At a zone's centre the zone's axes are the star's east and north: the motion is the
    // records' dx0, dx1 in units of 0.1 mas/yr.
    struct Case {
        int type;
        int32_t dx0, dx1;
        double east, north;
    };
    const Case cases[] = {{0, 103624, -7988, 10362.4, -798.8},
                          {0, -65051, 57308, -6505.1, 5730.8},
                          {1, 8191, -8192, 819.1, -819.2},
                          {1, -1, 2500, -0.1, 250.0},
                          {1, 0, 0, 0, 0}};
    for (const Case& c : cases) {
        std::vector<StellariumStar> stars;
        std::string error;
        ASSERT_TRUE(parseStellariumStars(filePerZone(c.type, c.dx0, c.dx1), stars, error)) << error;
        ASSERT_EQ(stars.size(), 20u);
        for (const StellariumStar& s : stars) {
            EXPECT_NEAR(s.pmRaCosDecMasPerYear, c.east, 1e-6) << c.type << " " << c.dx0;
            EXPECT_NEAR(s.pmDecMasPerYear, c.north, 1e-6) << c.type << " " << c.dx1;
        }
    }
}

TEST(CardMotionFile, ParallelToItsCardAndChecked) {
    std::vector<StarToPack> stars;
    std::unordered_map<int32_t, ProperMotion> motions;
    for (int i = 1; i <= 100; ++i) {
        stars.push_back({1000 + i, (i * 7 % 24) + 0.5, -80.0 + 1.6 * i, 8.0, 0.5, true});
        if (i % 3 != 0) motions[1000 + i] = {i * 10.0, -i * 5.0};
    }
    const std::vector<StarEntry> blocks = packStarBlocks(stars, 42);
    const std::vector<CardStarMotion> entries = cardMotionEntries(blocks, motions);
    ASSERT_EQ(entries.size(), blocks.size());
    int moving = 0;
    for (size_t i = 0; i < blocks.size(); ++i) {
        const auto it = motions.find(blocks[i].number);
        if (it == motions.end()) {
            EXPECT_EQ(entries[i].number, 0) << i;  // no star or no motion
            continue;
        }
        ++moving;
        EXPECT_EQ(entries[i].number, blocks[i].number);
        EXPECT_FLOAT_EQ(entries[i].pmRaCosDecMasPerYear, static_cast<float>(it->second.raCosDecMasPerYear));
        EXPECT_FLOAT_EQ(entries[i].pmDecMasPerYear, static_cast<float>(it->second.decMasPerYear));
    }
    EXPECT_EQ(moving, 67);

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("nocturnel-card-pm-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const auto card = folder / "card.ppc", side = folder / "card_pm.ppc";
    DatabaseHeader header{1, 0, static_cast<uint32_t>(blocks.size() / 42), 42 * sizeof(StarEntry)};
    std::string cardBytes(sizeof header, '\0');
    std::memcpy(cardBytes.data(), &header, sizeof header);
    cardBytes.append(reinterpret_cast<const char*>(blocks.data()), blocks.size() * sizeof(StarEntry));
    ASSERT_TRUE(writeWholeFile(card, cardBytes));
    std::string error;
    ASSERT_TRUE(writeWholeFile(side, cardMotionFileBytes(entries, 42)));
    EXPECT_TRUE(checkCardMotionFile(card, side, error)) << error;
    // A renumbered entry, a record short, an impossible speed: each refused.
    for (int fault : {0, 1, 2}) {
        std::vector<CardStarMotion> bad = entries;
        const auto moving1 =
            std::find_if(bad.begin(), bad.end(), [](const CardStarMotion& m) { return m.number != 0; });
        if (fault == 0) moving1->number += 1;
        if (fault == 1) bad.resize(bad.size() - 42);
        if (fault == 2) moving1->pmDecMasPerYear = 20000;
        ASSERT_TRUE(writeWholeFile(side, cardMotionFileBytes(bad, 42)));
        EXPECT_FALSE(checkCardMotionFile(card, side, error)) << fault;
    }
    std::filesystem::remove_all(folder);
    EXPECT_EQ(cardMotionFileName("nocturnel_tycho_390k.ppc"), "nocturnel_tycho_390k_pm.ppc");
}

// The real files: the 28-byte records' own motions agree with hip_pm.dat (the Hipparcos new
// reduction) within 5 mas/yr for 74% of the Hipparcos stars of stars_1, within 10 for 86% (the
// rest come from older solutions), which confirms the unit and the axes: a unit off by ten or a
// swapped axis would leave only the slowest stars within those bounds.
TEST(StellariumMotions, RealFilesAgreeWithHipPm) {
    const std::filesystem::path sources = defaultSourcesFolder();
    const std::filesystem::path folder = sources / "stellarium/usr/share/stellarium/stars/default";
    const auto files = sources.empty() ? std::vector<std::filesystem::path>{} : stellariumStarFiles(folder);
    std::string text, error, bytes;
    if (files.empty() || !readWholeFile(folder / "hip_pm.dat", text))
        GTEST_SKIP() << "Stellarium's star files are not fetched";
    std::map<int32_t, ProperMotion> listed;
    ASSERT_TRUE(parseHipProperMotions(text, listed, error)) << error;
    ASSERT_TRUE(readWholeFile(files[1], bytes));
    std::vector<StellariumStar> stars;
    ASSERT_TRUE(parseStellariumStars(bytes, stars, error)) << error;
    int compared = 0, close = 0, near = 0;
    for (const StellariumStar& s : stars) {
        const auto it = listed.find(s.hip);
        if (s.hip <= 0 || it == listed.end()) continue;
        ++compared;
        const double difference = std::hypot(s.pmRaCosDecMasPerYear - it->second.raCosDecMasPerYear,
                                             s.pmDecMasPerYear - it->second.decMasPerYear);
        close += difference < 5.0;
        near += difference < 10.0;
    }
    ASSERT_GT(compared, 1000);
    EXPECT_GT(close, compared * 7 / 10) << close << " of " << compared;
    EXPECT_GT(near, compared * 8 / 10) << near << " of " << compared;
    // The faint bit-packed stars move too, mostly slowly.
    ASSERT_TRUE(readWholeFile(files[3], bytes));
    stars.clear();
    ASSERT_TRUE(parseStellariumStars(bytes, stars, error)) << error;
    size_t moving = 0, slow = 0;
    for (const StellariumStar& s : stars) {
        const double speed = std::hypot(s.pmRaCosDecMasPerYear, s.pmDecMasPerYear);
        moving += speed > 0;
        slow += speed < 100;
    }
    EXPECT_GT(moving, stars.size() / 2);
    EXPECT_GT(slow, stars.size() * 9 / 10);
}

}  // namespace
}  // namespace nocturnel
