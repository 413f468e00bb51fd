// Checks against the built catalogues (NOCTURNEL_TEST_DATA): real stars and deep-sky objects at
// their published J2000 places (Hipparcos, Yale Bright Star Catalogue, NGC/IC as in SIMBAD).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <numbers>
#include <string>

#include "catalog/catalogues.h"
#include "catalog/constellations.h"
#include "catalog/object_finder.h"
#include "catalog/object_tables.h"
#include "catalog/objects.h"
#include "catalog/star_catalog.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

double hms(double h, double m, double s) { return h + m / 60 + s / 3600; }
double dms(double d, double m, double s) { return (d < 0 ? -1 : 1) * (std::fabs(d) + m / 60 + s / 3600); }

class RealDataTest : public ::testing::Test {
protected:
    void SetUp() override {
        const char* env = std::getenv("NOCTURNEL_TEST_DATA");
        if (!env || !*env) GTEST_SKIP() << "NOCTURNEL_TEST_DATA is not set";
        data_ = env;
        if (!fs::exists(data_ / "nocturnel_default_stars.ppc"))
            GTEST_SKIP() << "no built catalogues in " << data_ << " (run scripts/make-catalogs.sh)";
        setProgramFolder(data_.parent_path());
        closeCatalogues();
        forgetConstellations();
    }
    void TearDown() override {
        closeCatalogues();
        forgetConstellations();
    }
    bool has(const char* name) const { return fs::exists(data_ / name); }
    fs::path data_;
};

// One line per object: designation, published J2000 RA and Dec, V magnitude, constellation.
struct Reference {
    const char* name;
    double raHours, decDeg, mag;
    const char* constellation;
    const char* needs;  // the file the lookup reads
    const char* nameContains;
};

void expectPlace(const FoundObject& found, const Reference& r, double toleranceArcsec, double magTolerance) {
    const double dRa = (found.raHours - r.raHours) * 15 * std::cos(r.decDeg * std::numbers::pi / 180) * 3600;
    const double dDec = (found.decDeg - r.decDeg) * 3600;
    EXPECT_LT(std::hypot(dRa, dDec), toleranceArcsec) << "RA " << found.raHours << " Dec " << found.decDeg;
    if (r.mag < 50) {
        EXPECT_NEAR(found.mag, r.mag, magTolerance);
    }
    if (r.nameContains) {
        EXPECT_NE(found.name.find(r.nameContains), std::string::npos) << found.name;
    }
    if (r.constellation && !constellations().constellations.empty()) {
        ASSERT_GE(found.constellation, 0);
        EXPECT_STREQ(constellations().constellations[found.constellation].abbreviation, r.constellation);
    }
}

TEST_F(RealDataTest, StarsAtTheirPublishedPlaces) {
    // Packed entries keep whole seconds of time and of arc: within 16" of the catalogue place.
    const Reference stars[] = {
        {"HIP 91262", hms(18, 36, 56.34), dms(38, 47, 1.3), 0.03, "Lyr", "nocturnel_hip_110k.ppc", "HIP91262"},
        {"HIP 32349", hms(6, 45, 8.92), dms(-16, 42, 58.0), -1.46, "CMa", "nocturnel_hip_110k.ppc", "HIP32349"},
        {"HIP 11767", hms(2, 31, 49.09), dms(89, 15, 50.8), 1.97, "UMi", "nocturnel_hip_110k.ppc", nullptr},
        {"HIP 27989", hms(5, 55, 10.31), dms(7, 24, 25.4), 0.45, "Ori", "nocturnel_hip_110k.ppc", nullptr},
        {"HIP 30438", hms(6, 23, 57.11), dms(-52, 41, 44.4), -0.62, "Car", "nocturnel_hip_110k.ppc", nullptr},
        {"HIP 104382", hms(21, 8, 46.86), dms(-88, 57, 23.4), 5.45, "Oct", "nocturnel_hip_110k.ppc", nullptr},
        {"HR 2491", hms(6, 45, 8.92), dms(-16, 42, 58.0), -1.46, "CMa", "nocturnel_hr.ppc", "HR2491"},
        {"HR 7001", hms(18, 36, 56.34), dms(38, 47, 1.3), 0.03, "Lyr", "nocturnel_hr.ppc", "HR7001"},
    };
    int checked = 0;
    for (const Reference& r : stars) {
        if (!has(r.needs)) continue;
        SCOPED_TRACE(r.name);
        FoundObject found;
        ASSERT_TRUE(findObjectByName(r.name, found));
        expectPlace(found, r, 16.0, 0.1);
        ++checked;
    }
    if (checked == 0) GTEST_SKIP() << "no HIP or HR star catalogue built";
}

TEST_F(RealDataTest, VegaCarriesItsDefaultStarName) {
    if (!has("nocturnel_hip_110k.ppc")) GTEST_SKIP() << "nocturnel_hip_110k.ppc not built";
    FoundObject vega;
    ASSERT_TRUE(findObjectByName("HIP 91262", vega));
    EXPECT_NE(vega.name.find("Vega"), std::string::npos) << vega.name;
}

TEST_F(RealDataTest, DeepSkyObjectsAtTheirPublishedPlaces) {
    if (!has("nocturnel_obj_18k.ppc") && !has("nocturnel_obj_1k.ppc")) GTEST_SKIP() << "no object file built";
    // Extended objects: their catalogued centres differ by source; within 2'.
    const Reference objects[] = {
        {"NGC 224", hms(0, 42, 44.3), dms(41, 16, 9), 3.4, "And", nullptr, "M31"},
        {"M 31", hms(0, 42, 44.3), dms(41, 16, 9), 3.4, "And", nullptr, "NGC224"},
        {"M 42", hms(5, 35, 17.3), dms(-5, 23, 28), 99, "Ori", nullptr, "NGC1976"},
        {"NGC 6205", hms(16, 41, 41.2), dms(36, 27, 35), 99, "Her", nullptr, "M13"},
        {"M 57", hms(18, 53, 35.1), dms(33, 1, 45), 99, "Lyr", nullptr, "NGC6720"},
        {"C 14", hms(2, 19, 0), dms(57, 9, 0), 99, "Per", nullptr, "NGC869"},
    };
    for (const Reference& r : objects) {
        SCOPED_TRACE(r.name);
        FoundObject found;
        ASSERT_TRUE(findObjectByName(r.name, found));
        expectPlace(found, r, 120.0, 0.6);
    }
}

TEST_F(RealDataTest, EveryCatalogueStarIsFoundAgainByItsNumber) {
    // Sample the HIP and Tycho files through sequence numbers and look each star up by number:
    // the number indexes and the Tycho region bounds must lead back to the same entry.
    struct File {
        int level;
        bool tycho;
    };
    int checked = 0;
    for (const File f : {File{4, false}, File{0, false}, File{5, true}, File{6, true}}) {
        if (!has(kStarCatalogFiles[f.level])) continue;
        // A Tycho card made from Stellarium's catalogue carries no Tycho numbers and no index.
        if (f.tycho && !has("nocturnel_tycho_idx.ppc")) continue;
        ASSERT_TRUE(openStarCatalogLevel(f.level));
        const uint32_t stars = starCatalogStarCount();
        MessageCapture messages;
        for (uint32_t sequence = static_cast<uint32_t>(starsPerBlock()); sequence < stars; sequence += stars / 97 + 1) {
            StarPosition fromSequence, fromNumber;
            const int32_t number = readStarBySequence(sequence, fromSequence);
            if (number <= 0) continue;  // an empty slot
            SCOPED_TRACE(testing::Message() << kStarCatalogFiles[f.level] << " star " << number);
            const bool found = f.tycho ? findTychoStar(number, fromNumber) : findStarByNumber(number, fromNumber);
            ASSERT_TRUE(found);
            EXPECT_EQ(fromNumber.ra, fromSequence.ra);
            EXPECT_EQ(fromNumber.dec, fromSequence.dec);
            ++checked;
        }
        EXPECT_TRUE(messages.messages().empty()) << messages.lastTitle();
    }
    if (checked == 0) GTEST_SKIP() << "no HIP, HR or Tycho star catalogue built";
}

TEST_F(RealDataTest, DeclinationSearchLandsBesideTheWantedBand) {
    // The search ends on the last block probed: the wanted declination lies between the first
    // entries of its neighbours (to the arcminute the key compares).
    int checked = 0;
    for (int level = 0; level < static_cast<int>(kStarCatalogFiles.size()); ++level) {
        if (!has(kStarCatalogFiles[level])) continue;
        ASSERT_TRUE(openStarCatalogLevel(level));
        const int blocks = recordCount(starCatalogSlot());
        auto firstDec = [&](int block) {
            StarPosition p;
            readStarBySequence(static_cast<uint32_t>(block * starsPerBlock()), p);
            return fixedToDouble(p.dec) * 180.0 / std::numbers::pi;
        };
        for (double dec = -89.75; dec < 90.0; dec += 0.5) {
            const int block = findBlockByDeclination(static_cast<float>(dec));
            ASSERT_GE(block, 1) << kStarCatalogFiles[level] << " " << dec;
            const double lower = block > 1 ? firstDec(block - 1) : -90.0;
            const double upper = block + 1 < blocks ? firstDec(block + 1) : 90.0;
            EXPECT_LE(lower, dec + 1.0 / 60) << kStarCatalogFiles[level] << " " << dec;
            EXPECT_GE(upper, dec - 1.0 / 60) << kStarCatalogFiles[level] << " " << dec;
            ++checked;
        }
    }
    if (checked == 0) GTEST_SKIP() << "no star catalogue built";
}

TEST_F(RealDataTest, BoundariesHoldTheDefaultStarsOfTheirConstellations) {
    if (!has("nocturnel_constellation.ppc") || !has("nocturnel_constellation_bounds.ppc"))
        GTEST_SKIP() << "constellation files not built";
    ASSERT_TRUE(openDefaultStars());
    const ConstellationData& sky = constellations();
    ASSERT_EQ(sky.constellations.size(), 88u);
    // A star's constellation field follows its Flamsteed/Bayer name; a handful of named stars
    // lie across today's boundaries (10 UMa in Lyn, rho Aql in Del), so allow 1 %.
    int agree = 0, total = 0;
    for (int i = 0; i < kDefaultStarCount; ++i) {
        DefaultStarRecord star;
        ASSERT_TRUE(readDefaultStar(i, star));
        ++total;
        if (constellationOf(star.raHours, star.decDeg) == star.constellation) ++agree;
    }
    EXPECT_GT(agree, total * 99 / 100) << agree << " of " << total;
    auto abbreviationAt = [&](double raHours, double decDeg) {
        const int c = constellationOf(raHours, decDeg);
        return c < 0 ? std::string("?") : std::string(sky.constellations[c].abbreviation);
    };
    EXPECT_EQ(abbreviationAt(hms(9, 0, 38.4), dms(41, 46, 58)), "Lyn");   // 10 UMa
    EXPECT_EQ(abbreviationAt(hms(20, 14, 16.6), dms(15, 11, 51)), "Del");  // rho Aql
    EXPECT_EQ(abbreviationAt(hms(5, 14, 32.3), dms(-8, 12, 6)), "Ori");    // Rigel
    EXPECT_EQ(abbreviationAt(hms(14, 39, 36.5), dms(-60, 50, 2)), "Cen");  // alpha Cen
    EXPECT_EQ(abbreviationAt(hms(17, 45, 40), dms(-29, 0, 28)), "Sgr");    // Galactic centre
    EXPECT_EQ(abbreviationAt(hms(15, 50, 0), dms(10, 0, 0)), "Ser");      // Serpens Caput
    EXPECT_EQ(abbreviationAt(hms(18, 20, 0), dms(-13, 0, 0)), "Ser");     // Serpens Cauda
}

TEST_F(RealDataTest, StartUpOpensTheBuiltCatalogues) {
    MessageCapture messages;
    EXPECT_EQ(openCatalogues(), 0);
    EXPECT_TRUE(messages.messages().empty()) << messages.lastTitle();
    EXPECT_EQ(recordCount(defaultStarSlot()), kDefaultStarCount);
    DefaultStarRecord star;
    EXPECT_TRUE(readDefaultStar(kDefaultStarCount - 1, star));
}

}  // namespace
}  // namespace nocturnel
