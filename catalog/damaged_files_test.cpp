// Damaged or foreign files in data/ must never crash the catalogue layer: every reader checks
// sizes and counts before it touches a record (run under the address sanitizer).
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "catalog/catalog_test_support.h"
#include "catalog/catalogues.h"
#include "catalog/constellations.h"
#include "catalog/object_finder.h"
#include "catalog/objects.h"
#include "catalog/star_catalog.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

const char* const kAllFiles[] = {
    "nocturnel_default_stars.ppc", "nocturnel_hr.ppc", "nocturnel_hip_16k.ppc", "nocturnel_hip_32k.ppc",
    "nocturnel_hip_64k.ppc", "nocturnel_hip_110k.ppc", "nocturnel_tycho_390k.ppc", "nocturnel_tycho_2500k.ppc",
    "nocturnel_obj_18k.ppc", "nocturnel_obj_1k.ppc", "nocturnel_obj_1k_idx.ppc", "nocturnel_obj_2k_idx.ppc",
    "nocturnel_obj_18k_idx.ppc", "nocturnel_obj_18k_desc.ppc", "nocturnel_moon.ppc", "nocturnel_mars.ppc",
    "nocturnel_comet.ppc", "nocturnel_satellites.ppc", "nocturnel_tycho_idx.ppc", "nocturnel_hip_110k_idx.ppc",
    "nocturnel_hr_idx.ppc", "nocturnel_location.ppc", "nocturnel_constellation.ppc",
    "nocturnel_constellation_lines.ppc", "nocturnel_constellation_bounds.ppc", "nocturnel_brightstar.ppc",
};

class DamagedFilesTest : public test::CatalogFolderTest, public ::testing::WithParamInterface<int> {};

// Headers with plausible and absurd counts and sizes over random record bytes.
void writeDamagedFiles(std::mt19937& random) {
    const uint32_t sizes[] = {0, 1, 7, 12, 20, 44, 60, 84, 504, 960, 4000};
    const uint32_t counts[] = {0, 1, 2, 3, 217, 2810, 31250, 70000};
    for (const char* name : kAllFiles) {
        const uint32_t size = sizes[random() % std::size(sizes)];
        const uint32_t count = counts[random() % std::size(counts)];
        std::vector<uint8_t> bytes = test::header(random() % 3 == 0 ? 24 : random(), count, size);
        const std::size_t body = random() % 3000;
        for (std::size_t i = 0; i < body; ++i) bytes.push_back(static_cast<uint8_t>(random()));
        test::writeBytes(name, bytes);
    }
}

TEST_P(DamagedFilesTest, EveryEntryPointSurvives) {
    std::mt19937 random(static_cast<uint32_t>(GetParam()));
    writeDamagedFiles(random);
    MessageCapture messages;
    for (int preference = 0; preference <= 6; ++preference) {
        prefs().cardCatalog = preference;
        openCatalogues();
        for (int zoom = -1; zoom <= 16; ++zoom) {
            switchStarCatalogForZoom(zoom);
            StarPosition p;
            findBlockByDeclination(static_cast<float>(zoom * 11 - 90));
            readStarBySequence(static_cast<uint32_t>(random()) % 5000, p);
            findStarByHip(static_cast<int32_t>(random() % 121000 + 1), p);
            findTychoStar(static_cast<int32_t>(random() % 950000000), p);
        }
        for (const char* name : {"HIP 91262", "HR 7001", "NGC 224", "M 31", "C 14", "IC 434", "TYC 3105-2070-1",
                                 "Abell 426"}) {
            FoundObject found;
            findObjectByName(name, found);
        }
        for (int i = 0; i < 20; ++i) {
            ObjectRecord o;
            readObject(static_cast<uint16_t>(random()), o);
            findObjectIndex(static_cast<int32_t>(random()));
            DefaultStarRecord star;
            readDefaultStar(static_cast<int>(random() % 1700), star);
            BrightStarRecord bright;
            readBrightStar(static_cast<int>(random() % 40), bright);
            findBrightStar(static_cast<uint16_t>(random()));
        }
        forgetConstellations();
        constellationOf(12.0, 45.0);
        constellationOf(0.0, -89.0);
        SiteRecordBytes site;
        readSiteRecord(static_cast<uint16_t>(random() % 4), site);
        closeCatalogues();
    }
    // Every failure was reported with one of the layer's own texts.
    const char* const known[] = {
        "Could not open star database", "Could not open object database", "You did not install the last version",
        "Please install nocturnel_", "Could not open optional stellar database", "Can't find Object record number ",
        "Can't find Hipparchos", "Could not open Hipparchos index file", "Database Hipparchos isn't open!",
        "Can't open Tycho index.", "Could not retrieve tycho record!", "Can't get stellar record",
        "Could not retrieve star record!", "Could not retrieve record!", "Could not retrieve object record!",
        "Object database isn't open!", "Object not found", "Could not find nocturnel_",
        "Could not retreive nocturnel_location.ppc database.",
    };
    for (const Message& m : messages.messages()) {
        bool recognised = false;
        for (const char* text : known) recognised = recognised || m.title.rfind(text, 0) == 0;
        EXPECT_TRUE(recognised) << m.text();
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, DamagedFilesTest, ::testing::Range(1, 9));

}  // namespace
}  // namespace nocturnel
