// Builds every file from the real public catalogues (when fetched) and checks real stars and
// objects against their published positions.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "catalog/formats.h"
#include "catalog/object_index_key.h"
#include "catalog/object_tables.h"
#include "settings/message.h"
#include "tools/catalog_builder.h"
#include "tools/star_packing.h"
#include "tools/test_support.h"

namespace nocturnel {
namespace {
using testing::readBlocks;
using testing::readRecords;

class RealCatalogues : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        sources_ = new std::filesystem::path(defaultSourcesFolder());
        if (sources_->empty()) return;
        folder_ = new testing::TempFolder();
        report_ = new BuildReport();
        MessageCapture capture;
        status_ = buildCatalogues({*sources_, folder_->path() / "data", {}}, report_);
        if (!capture.messages().empty()) firstMessage_ = capture.messages().front().text();
    }
    static void TearDownTestSuite() {
        delete folder_;
        delete report_;
        delete sources_;
        folder_ = nullptr;
        report_ = nullptr;
        sources_ = nullptr;
    }
    void SetUp() override {
        if (sources_->empty())
            GTEST_SKIP() << "public sources not fetched (run scripts/fetch-sources.sh ~/.cache/nocturnel/sources)";
        ASSERT_EQ(status_, 0) << firstMessage_;
    }
    std::filesystem::path data(const char* name) const { return folder_->path() / "data" / name; }

    static inline std::filesystem::path* sources_ = nullptr;
    static inline testing::TempFolder* folder_ = nullptr;
    static inline BuildReport* report_ = nullptr;
    static inline int status_ = -1;
    static inline std::string firstMessage_;
};

// Published J2000 positions (SIMBAD / Hipparcos), checked in every star file that holds the star.
struct PublishedStar {
    const char* name;
    int32_t hip, hr;
    double raHours, decDeg, vMag;
};
constexpr PublishedStar kStars[] = {
    {"Vega", 91262, 7001, 18 + 36 / 60.0 + 56.34 / 3600.0, 38 + 47 / 60.0 + 1.3 / 3600.0, 0.03},
    {"Sirius", 32349, 2491, 6 + 45 / 60.0 + 8.92 / 3600.0, -(16 + 42 / 60.0 + 58.0 / 3600.0), -1.46},
    {"Polaris", 11767, 424, 2 + 31 / 60.0 + 49.09 / 3600.0, 89 + 15 / 60.0 + 50.8 / 3600.0, 1.97},
    {"Canopus", 30438, 2326, 6 + 23 / 60.0 + 57.11 / 3600.0, -(52 + 41 / 60.0 + 44.4 / 3600.0), -0.74},
    {"Betelgeuse", 27989, 2061, 5 + 55 / 60.0 + 10.31 / 3600.0, 7 + 24 / 60.0 + 25.4 / 3600.0, 0.45},
};

const StarEntry* findEntry(const std::vector<StarEntry>& entries, int32_t number, int perBlock, int* block = nullptr) {
    for (size_t i = 0; i < entries.size(); ++i)
        if (entries[i].number == number) {
            if (block) *block = static_cast<int>(i / perBlock);
            return &entries[i];
        }
    return nullptr;
}

TEST_F(RealCatalogues, PublishedStarsInEveryStarFile) {
    for (const char* file : {"nocturnel_hip_16k.ppc", "nocturnel_hip_110k.ppc"}) {
        int perBlock = 0;
        const auto entries = readBlocks(data(file), perBlock);
        for (const PublishedStar& s : kStars) {
            const StarEntry* e = findEntry(entries, s.hip, perBlock);
            ASSERT_NE(e, nullptr) << s.name << " in " << file;
            EXPECT_NEAR(packedRaHours(*e), s.raHours, 1.5 / 3600.0) << s.name << " RA in " << file;
            EXPECT_NEAR(packedDecDeg(*e), s.decDeg, 2.0 / 3600.0) << s.name << " Dec in " << file;
            EXPECT_NEAR(e->mag16 / 16.0, std::max(0.0, s.vMag), 1.0 / 32.0) << s.name << " V in " << file;
        }
    }
    int perBlock = 0;
    const auto hr = readBlocks(data("nocturnel_hr.ppc"), perBlock);
    for (const PublishedStar& s : kStars) {
        const StarEntry* e = findEntry(hr, s.hr, perBlock);
        ASSERT_NE(e, nullptr) << s.name << " HR " << s.hr;
        EXPECT_NEAR(packedRaHours(*e), s.raHours, 3.0 / 3600.0) << s.name;
        EXPECT_NEAR(packedDecDeg(*e), s.decDeg, 60.0 / 3600.0) << s.name;  // the BSC file rounds to 0.0001 deg
    }
}

TEST_F(RealCatalogues, VegaInTheDefaultStarsWithItsNamesAndColour) {
    const auto stars = readRecords<DefaultStarRecord>(data("nocturnel_default_stars.ppc"));
    ASSERT_EQ(stars.size(), 1646u);
    EXPECT_EQ(stars[0].hip, 32349);  // Sirius, the brightest
    const auto vega = std::find_if(stars.begin(), stars.end(), [](const DefaultStarRecord& s) { return s.hip == 91262; });
    ASSERT_NE(vega, stars.end());
    EXPECT_EQ(vega->hr, 7001);
    EXPECT_STREQ(vega->name, "Vega");
    EXPECT_NEAR(vega->raHours, 18.615649, 0.0001);
    EXPECT_NEAR(vega->decDeg, 38.783689, 0.0001);
    EXPECT_NEAR(vega->mag, 0.03, 0.005);
    EXPECT_EQ(vega->colour, 0);
    EXPECT_EQ(vega->flags & 1, 1);
    const auto lyr = readRecords<ConstellationRecord>(data("nocturnel_constellation.ppc"));
    ASSERT_EQ(lyr.size(), 88u);
    EXPECT_STREQ(lyr[vega->constellation].abbreviation, "Lyr");
    EXPECT_STREQ(lyr[0].abbreviation, "And");
    // Betelgeuse is red: B-V 1.5 -> class 15.
    const auto betelgeuse = std::find_if(stars.begin(), stars.end(), [](const DefaultStarRecord& s) { return s.hip == 27989; });
    ASSERT_NE(betelgeuse, stars.end());
    EXPECT_GE(betelgeuse->colour, 14);
}

TEST_F(RealCatalogues, CountsFallInTheReadersRanges) {
    int perBlock = 0;
    const auto hr = readBlocks(data("nocturnel_hr.ppc"), perBlock);
    EXPECT_EQ(perBlock, 42);
    EXPECT_GE(hr.size(), 9101u);
    EXPECT_LE(hr.size(), 9199u);
    const auto hip = readBlocks(data("nocturnel_hip_110k.ppc"), perBlock);
    EXPECT_GE(hip.size(), 118001u);
    EXPECT_LE(hip.size(), 119999u);
    size_t stars = 0;
    for (const StarEntry& e : hip) stars += e.number != 0;
    EXPECT_EQ(stars, 118216u);
    const auto small = readRecords<ObjectRecord>(data("nocturnel_obj_1k.ppc"));
    EXPECT_GT(small.size(), 200u);
    EXPECT_LT(small.size(), 2000u);
    const auto names = readRecords<BrightStarRecord>(data("nocturnel_brightstar.ppc"));
    EXPECT_EQ(names.size() % 2, 0u);
    EXPECT_GT(names.size() / 2, 100u);
}

TEST_F(RealCatalogues, HipIndexFindsVegaBlock) {
    int perBlock = 0;
    const auto entries = readBlocks(data("nocturnel_hip_110k.ppc"), perBlock);
    const auto index = readRecords<HipIndexRecord>(data("nocturnel_hip_110k_idx.ppc"));
    ASSERT_GT(index.size(), 91262u / 42);
    const int block = index[91262 / 42].block[91262 % 42];
    ASSERT_GT(block, 0);
    bool found = false;
    for (int k = 0; k < perBlock; ++k) found |= entries[block * perBlock + k].number == 91262;
    EXPECT_TRUE(found);
}

TEST_F(RealCatalogues, AndromedaGalaxyCarriesMessier31) {
    const auto objects = readRecords<ObjectRecord>(data("nocturnel_obj_18k.ppc"));
    const auto index = readRecords<ObjectIndexRecord>(data("nocturnel_obj_18k_idx.ppc"));
    const int32_t key = objectIndexKey(kCatalogNGC, 224);
    const auto it = std::lower_bound(index.begin(), index.end(), key,
                                     [](const ObjectIndexRecord& r, int32_t k) { return r.key < k; });
    ASSERT_NE(it, index.end());
    ASSERT_EQ(it->key, key);
    ASSERT_GE(it->objectRecord, 0);
    const ObjectRecord& m31 = objects[it->objectRecord];
    EXPECT_EQ(m31.catalog, kCatalogNGC);
    EXPECT_EQ(m31.number, 224);
    EXPECT_EQ(m31.messier, 31);
    EXPECT_EQ(m31.type, 16);  // Galaxy
    EXPECT_NEAR(m31.raHours, 0.712306, 0.001);   // 00h42m44.3s
    EXPECT_NEAR(m31.decDeg, 41.26875, 0.01);    // +41 16 09
    EXPECT_NEAR(m31.mag, 3.4, 0.2);
    EXPECT_GT(m31.majorArcmin, 150.0f);
    const auto constellations = readRecords<ConstellationRecord>(data("nocturnel_constellation.ppc"));
    EXPECT_STREQ(constellations[m31.constellation].abbreviation, "And");
    // Every Messier object is in the file, and the small file too.
    for (const auto* file : {"nocturnel_obj_18k.ppc", "nocturnel_obj_1k.ppc"}) {
        std::vector<bool> messier(111, false);
        for (const ObjectRecord& o : readRecords<ObjectRecord>(data(file)))
            if (o.messier > 0 && o.messier <= 110) messier[o.messier] = true;
        EXPECT_EQ(std::count(messier.begin() + 1, messier.end(), true), 110) << file;
    }
}

TEST_F(RealCatalogues, TheCommandReportsWhatDidNotFit) {
    EXPECT_FALSE(report_->notFitted.empty());
    const bool barnard = std::any_of(report_->notFitted.begin(), report_->notFitted.end(),
                                     [](const std::string& line) { return line.rfind("Barnard:", 0) == 0; });
    EXPECT_TRUE(barnard);
}

}  // namespace
}  // namespace nocturnel
