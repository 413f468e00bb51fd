// The star-motion file: packing and order, the HR match, the file check, and the motions read
// from Stellarium's real star files against the Hipparcos motions (when the sources are fetched).
#include "tools/star_motion_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>

#include "catalog/formats.h"
#include "tools/record_io.h"
#include "tools/star_files.h"

namespace nocturnel {
namespace {

TEST(StarMotionFile, RecordsAreSortedPaddedAndKeepTheFirstOfARepeatedStar) {
    std::vector<StellariumStar> stars;
    std::map<int32_t, ProperMotion> motions;
    for (int32_t hip = 200; hip >= 1; --hip) {
        stars.push_back({hip, hip * 1.0, -5.0, 6.0, 0.5});
        if (hip != 8) motions[hip] = {10.0 * hip, -1.0};
    }
    stars.push_back({0, 1, 1, 9, 0});   // no HIP number: left out
    stars.push_back({7, 99, 9, 3, 0});  // HIP 7 again: the first one stays
    const auto records = starMotionRecords(stars, motions, {{7, 5340}});
    ASSERT_EQ(records.size(), 4u);  // 200 stars in records of 64
    EXPECT_EQ(records[0].entries[0].hip, 1);
    EXPECT_EQ(records[0].entries[6].hip, 7);
    EXPECT_EQ(records[0].entries[6].hr, 5340);
    EXPECT_DOUBLE_EQ(records[0].entries[6].raDeg, 7.0);
    EXPECT_FLOAT_EQ(records[0].entries[6].pmRaCosDecMasPerYear, 70.0f);
    EXPECT_EQ(records[3].entries[200 - 193].hip, 200);
    EXPECT_EQ(records[3].entries[8].hip, 0);  // padding
    EXPECT_EQ(records[0].entries[1].hr, 0);
    EXPECT_FLOAT_EQ(records[0].entries[7].pmRaCosDecMasPerYear, 0.0f);  // HIP 8: no motion listed
    EXPECT_DOUBLE_EQ(records[0].entries[7].raDeg, 8.0);
}

TEST(StarMotionFile, PlacesOfTheHipparcosEpochAreMovedTo2000) {
    // 61 Cygni A (HIP 104214) as Stellarium's record has it, at its place of 1991.25, and its
    // J2000 place in the reference list; the motion of hip_pm.dat (+4155.1 +3258.9 mas/yr).
    const std::map<int32_t, ProperMotion> motions = {
        {104214, {4155.1, 3258.9}}, {2, {5.0, 5.0}}, {3, {500.0, 0.0}}};
    std::vector<StellariumStar> stars = {
        {104214, 316.71237, 38.741934, 5.2, 1.07},  // 44" short of 2000 along its motion
        {2, 10.0, 20.0, 6.0, 0.5},                  // 1" from its reference: left alone
        {3, 30.0, 0.0, 6.0, 0.5},                   // 5" off, not along its motion: left alone
        {4, 40.0, 0.0, 6.0, 0.5},                   // no reference
    };
    const std::map<int32_t, ReferencePlace> reference = {
        {104214, {316.7248, 38.7494}}, {2, {10.0, 20.0 + 1.0 / 3600}}, {3, {30.0, 5.0 / 3600}}};
    EXPECT_EQ(correctEpoch1991Places(stars, motions, reference), 1);
    const double k = M_PI / 180;
    const double east = (stars[0].raDeg - 316.7248) * std::cos(38.7494 * k) * 3600,
                 north = (stars[0].decDeg - 38.7494) * 3600;
    EXPECT_LT(std::hypot(east, north), 0.01);
    EXPECT_DOUBLE_EQ(stars[1].decDeg, 20.0);
    EXPECT_DOUBLE_EQ(stars[2].decDeg, 0.0);
    EXPECT_DOUBLE_EQ(stars[3].raDeg, 40.0);
}

TEST(StarMotionFile, ProperMotionLines) {
    std::map<int32_t, ProperMotion> motions;
    std::string error;
    ASSERT_TRUE(parseHipProperMotions("# Proper motion data\n# HIP\tpmRA\tpmDE\n1\t-4.58\t-1.61\r\n87937\t-798.80\t10277.30\n",
                                      motions, error)) << error;
    ASSERT_EQ(motions.size(), 2u);
    EXPECT_DOUBLE_EQ(motions[87937].raCosDecMasPerYear, -798.80);
    EXPECT_DOUBLE_EQ(motions[87937].decMasPerYear, 10277.30);
    for (const char* bad : {"", "# only comments\n", "1\t2\n", "x\t1\t2\n", "1\t2\t3\t4\n", "1\t20000\t0\n", "-5\t1\t1\n"})
        EXPECT_FALSE(parseHipProperMotions(bad, motions, error)) << bad;
}

TEST(StarMotionFile, CheckRefusesDisorderAndImpossibleMotions) {
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "nocturnel_star_motion_check.ppc";
    auto write = [&](const std::vector<StellariumStar>& stars, int patch) {
        auto records = starMotionRecords(stars, {{1, {100, 100}}, {2, {-798.8, 10277.3}}}, {});
        if (patch == 1) std::swap(records[0].entries[0], records[0].entries[1]);
        if (patch == 2) records[0].entries[1].pmDecMasPerYear = 20000;
        if (patch == 3) records[0].entries[1].decDeg = 91;
        DatabaseHeader header{1, 0, static_cast<uint32_t>(records.size()), sizeof(StarMotionRecord)};
        std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
        bytes.append(reinterpret_cast<const char*>(records.data()), records.size() * sizeof(StarMotionRecord));
        ASSERT_TRUE(writeWholeFile(file, bytes));
    };
    const std::vector<StellariumStar> stars = {{1, 10, 20, 5, 0}, {2, 11, 21, 5, 0}};
    std::string error;
    write(stars, 0);
    EXPECT_TRUE(checkStarMotionFile(file, error)) << error;
    for (int patch : {1, 2, 3}) {
        write(stars, patch);
        EXPECT_FALSE(checkStarMotionFile(file, error)) << patch;
    }
    std::filesystem::remove(file);
}

// The file the builder wrote from the real sources (NOCTURNEL_TEST_DATA): it passes its check,
// holds every Hipparcos star with its motion (van Leeuwen 2007, as SIMBAD lists them) and its
// HR number where the Yale catalogue has one.
TEST(StarMotionFile, BuiltFileGivesTheHipparcosMotions) {
    const char* env = std::getenv("NOCTURNEL_TEST_DATA");
    if (!env || !*env) GTEST_SKIP() << "NOCTURNEL_TEST_DATA is not set";
    const std::filesystem::path file = std::filesystem::path(env) / kStarMotionFile;
    if (!std::filesystem::exists(file)) GTEST_SKIP() << "no " << file;
    std::string error, bytes;
    EXPECT_TRUE(checkStarMotionFile(file, error)) << error;
    ASSERT_TRUE(readWholeFile(file, bytes));
    const size_t entries = (bytes.size() - sizeof(DatabaseHeader)) / sizeof(StarMotionEntry);
    EXPECT_GT(entries, 110000u);
    const struct {
        int32_t hip, hr;
        double pmRa, pmDec;
    } published[] = {
        {69673, 5340, -1093.39, -2000.06},  // Arcturus
        {32349, 2491, -546.01, -1223.07},   // Sirius
        {70890, 0, -3775.64, 768.16},       // Proxima Centauri
    };
    for (const auto& p : published) {
        bool found = false;
        for (size_t i = 0; i < entries && !found; ++i) {
            StarMotionEntry e;
            std::memcpy(&e, bytes.data() + sizeof(DatabaseHeader) + i * sizeof e, sizeof e);
            if (e.hip != p.hip) continue;
            found = true;
            EXPECT_EQ(e.hr, p.hr) << p.hip;
            EXPECT_NEAR(e.pmRaCosDecMasPerYear, p.pmRa, 0.01) << p.hip;
            EXPECT_NEAR(e.pmDecMasPerYear, p.pmDec, 0.01) << p.hip;
        }
        EXPECT_TRUE(found) << p.hip;
    }
}

}  // namespace
}  // namespace nocturnel
