// Stellarium's star catalogue files: the zone grid, both record types, damage refused, and the
// real files (when the sources are fetched) against published Hipparcos places.
#include "tools/stellarium_stars.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>

#include "tools/catalog_builder.h"
#include "tools/deep_star_card.h"
#include "tools/milky_way_file.h"
#include "tools/record_io.h"

namespace nocturnel {
namespace {

void put32(std::string& bytes, int32_t value) {
    char raw[4];
    std::memcpy(raw, &value, 4);
    bytes.append(raw, 4);
}

// A file of `level` with one star per zone; `record(zone)` gives each record's bytes.
template <typename Record>
std::string catalogueFile(int type, int level, int magMin, int magRange, int magSteps, Record record) {
    std::string bytes;
    for (int32_t v : {static_cast<int32_t>(kStellariumStarMagic), type, 0, 8, level, magMin, magRange, magSteps}) put32(bytes, v);
    const int zones = 20 << (2 * level);
    for (int z = 0; z < zones; ++z) put32(bytes, 1);
    for (int z = 0; z < zones; ++z) bytes += record(z);
    return bytes;
}

double separationDeg(const StellariumStar& a, const StellariumStar& b) {
    constexpr double k = M_PI / 180;
    const double c = std::sin(a.decDeg * k) * std::sin(b.decDeg * k) +
                     std::cos(a.decDeg * k) * std::cos(b.decDeg * k) * std::cos((a.raDeg - b.raDeg) * k);
    return std::acos(std::clamp(c, -1.0, 1.0)) / k;
}

TEST(StellariumStars, ZoneCentresOfLevel0AreTheDodecahedronsCorners) {
    // 28-byte records at each zone's centre (x0 = x1 = 0): the 20 icosahedron faces' centres,
    // which are the corners of a dodecahedron, 41.81 degrees from their nearest neighbours.
    const std::string bytes = catalogueFile(0, 0, -2000, 12800, 256, [](int zone) {
        std::string r(28, '\0');
        const uint32_t hipAndComponent = static_cast<uint32_t>(zone + 1);
        std::memcpy(r.data(), &hipAndComponent, 4);
        r[12] = static_cast<char>(32);         // B-V code 32: 0.5
        r[13] = static_cast<char>(zone * 10);  // magnitude -2.0 + code x 0.05
        return r;
    });
    std::vector<StellariumStar> stars;
    std::string error;
    ASSERT_TRUE(parseStellariumStars(bytes, stars, error)) << error;
    ASSERT_EQ(stars.size(), 20u);
    for (std::size_t i = 0; i < stars.size(); ++i) {
        EXPECT_EQ(stars[i].hip, static_cast<int32_t>(i + 1));
        EXPECT_NEAR(stars[i].mag, -2.0 + i * 0.5, 1e-9);
        EXPECT_NEAR(stars[i].bv, 0.5, 1e-9);
        double nearest = 180;
        for (std::size_t j = 0; j < stars.size(); ++j)
            if (j != i) nearest = std::min(nearest, separationDeg(stars[i], stars[j]));
        EXPECT_NEAR(nearest, 41.810, 0.01) << i;
    }
}

TEST(StellariumStars, BitPackedRecordsOfLevel1) {
    // 10-byte records: x0 and x1 of 20 bits, motions of 14, B-V of 7 and magnitude of 5 bits.
    const std::string bytes = catalogueFile(1, 1, 9000, 1500, 30, [](int zone) {
        const uint64_t bv = 48, mag = static_cast<uint64_t>(zone % 31);
        const uint64_t low = 0;  // x0 = x1 = 0, no motion
        const uint64_t high = (bv << 4) | (mag << 11);
        std::string r(10, '\0');
        std::memcpy(r.data(), &low, 8);
        r[8] = static_cast<char>(high & 0xFF);
        r[9] = static_cast<char>(high >> 8);
        return r;
    });
    std::vector<StellariumStar> stars;
    std::string error;
    ASSERT_TRUE(parseStellariumStars(bytes, stars, error)) << error;
    ASSERT_EQ(stars.size(), 80u);
    for (std::size_t i = 0; i < stars.size(); ++i) {
        EXPECT_EQ(stars[i].hip, 0);
        EXPECT_NEAR(stars[i].mag, 9.0 + (i % 31) * 0.05, 1e-9);
        EXPECT_NEAR(stars[i].bv, 1.0, 1e-9);
        for (std::size_t j = 0; j < i; ++j) EXPECT_GT(separationDeg(stars[i], stars[j]), 10.0) << i << " " << j;
    }
}

TEST(StellariumStars, DamageIsRefusedWithAReason) {
    const std::string good = catalogueFile(0, 0, 0, 12800, 256, [](int) { return std::string(28, '\0'); });
    std::string badMagic = good, badType = good;
    badMagic[0] = 'x';
    badType[4] = 7;
    const std::pair<std::string, const char*> cases[] = {
        {good.substr(0, 20), "shorter than its header"},
        {badMagic, "magic number"},
        {badType, "record type 7"},
        {good.substr(0, good.size() - 1), "length disagrees"},
        {good + "x", "length disagrees"},
    };
    for (const auto& [bytes, reason] : cases) {
        std::vector<StellariumStar> stars;
        std::string error;
        EXPECT_FALSE(parseStellariumStars(bytes, stars, error));
        EXPECT_NE(error.find(reason), std::string::npos) << error;
    }
}

TEST(MilkyWayFile, ReadsLevelsRingsAndHoles) {
    const std::string json = R"({"type":"FeatureCollection","features":[
        {"type":"Feature","id":"ol1","properties":{},"geometry":{"type":"MultiPolygon","coordinates":[
          [[[-10,0],[-10,0.05],[10,0],[10,10],[-10,10],[-10,0]],[[0,2],[2,2],[2,4],[0,2]]]]}},
        {"type":"Feature","id":"ol5","properties":{},"geometry":{"type":"MultiPolygon","coordinates":[
          [[[100,-5],[101,-5],[101,-4],[100,-5]]]]}}]})";
    std::vector<MilkyWayPoint> points;
    std::string error;
    ASSERT_TRUE(buildMilkyWay(json, points, error)) << error;
    ASSERT_EQ(points.size(), 13u);  // the point 0.05 degree from the one before is dropped
    EXPECT_EQ(points[0].starts, 1);
    EXPECT_NEAR(points[0].raHours, 350.0 / 15, 1e-5);  // longitudes west of 0 unwrapped
    EXPECT_EQ(points[1].starts, 0);
    EXPECT_NEAR(points[1].raHours, 10.0 / 15, 1e-5);
    EXPECT_EQ(points[5].starts, 2);  // the hole
    EXPECT_EQ(points[5].level, 1);
    EXPECT_EQ(points[9].starts, 1);
    EXPECT_EQ(points[9].level, 5);
    for (const char* bad : {"{}", R"({"features":[{"id":"ol9","geometry":{}}]})",
                            R"({"features":[{"id":"ol1","geometry":{"type":"MultiPolygon","coordinates":[[[[0,95]]]]}}]})"})
        EXPECT_FALSE(buildMilkyWay(bad, points, error)) << bad;
}

TEST(StellariumStars, RealCatalogueMatchesHipparcos) {
    const std::filesystem::path sources = defaultSourcesFolder();
    const auto files = sources.empty() ? std::vector<std::filesystem::path>{}
                                       : stellariumStarFiles(sources / "stellarium/usr/share/stellarium/stars/default");
    if (files.empty()) GTEST_SKIP() << "Stellarium's star catalogue is not among the fetched sources";
    std::string bytes, error;
    ASSERT_TRUE(readWholeFile(files[0], bytes));
    std::vector<StellariumStar> stars;
    ASSERT_TRUE(parseStellariumStars(bytes, stars, error)) << error;
    EXPECT_GT(stars.size(), 4900u);  // the naked-eye stars
    // Hipparcos (ESA 1997) J2000 places, degrees.
    const struct {
        int32_t hip;
        double raDeg, decDeg, mag;
    } references[] = {
        {32349, 101.28715533, -16.71611586, -1.44},  // Sirius
        {91262, 279.23473479, 38.78368896, 0.03},    // Vega
        {24436, 78.63446707, -8.20163837, 0.18},     // Rigel
        {11767, 37.94614689, 89.26413805, 1.97},     // Polaris
    };
    for (const auto& r : references) {
        const auto it = std::find_if(stars.begin(), stars.end(), [&](const StellariumStar& s) { return s.hip == r.hip; });
        ASSERT_NE(it, stars.end()) << r.hip;
        StellariumStar expected;
        expected.raDeg = r.raDeg;
        expected.decDeg = r.decDeg;
        EXPECT_LT(separationDeg(*it, expected) * 3600, 1.0) << "HIP " << r.hip;
        EXPECT_NEAR(it->mag, r.mag, 0.1) << "HIP " << r.hip;
    }
}

}  // namespace
}  // namespace nocturnel
