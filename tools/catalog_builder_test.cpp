// The builder end to end on small sources in the real formats: files, values, invariants,
// determinism, the report, and loud failure on every malformed or missing source.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "catalog/card_star_motion.h"
#include "catalog/formats.h"
#include "catalog/object_index_key.h"
#include "catalog/object_tables.h"
#include "settings/message.h"
#include "tools/builder_test_sources.h"
#include "tools/catalog_builder.h"
#include "tools/object_files.h"
#include "tools/observing_lists.h"
#include "tools/star_packing.h"
#include "tools/test_support.h"

namespace nocturnel {
namespace {
using testing::readBlocks;
using testing::readRecords;
using testing::TempFolder;
namespace fs = std::filesystem;

class SmallBuild : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(testing::writeSmallSources(sources_.path()));
        MessageCapture capture;
        ASSERT_EQ(buildCatalogues({sources_.path(), out_.path() / "data", {}}, &report_), 0)
            << (capture.messages().empty() ? "" : capture.messages().front().text());
        EXPECT_TRUE(capture.messages().empty());
    }
    fs::path data(const char* name) const { return out_.path() / "data" / name; }
    const ObjectRecord* objectFor(int catalog, int32_t number, const char* objects, const char* index) const {
        static std::vector<ObjectRecord> records;
        records = readRecords<ObjectRecord>(data(objects));
        for (const ObjectIndexRecord& r : readRecords<ObjectIndexRecord>(data(index)))
            if (r.catalog == catalog && r.number == number && r.objectRecord >= 0) return &records[r.objectRecord];
        return nullptr;
    }

    TempFolder sources_, out_;
    BuildReport report_;
};

TEST_F(SmallBuild, WritesEveryFileWithItsRecordSize) {
    struct Expected {
        const char* file;
        uint32_t recordSize;
        uint32_t version;
    };
    const Expected files[] = {
        {"nocturnel_default_stars.ppc", 44, 1},  {"nocturnel_hr.ppc", 504, 1},          {"nocturnel_hr_idx.ppc", 84, 1},
        {"nocturnel_hip_16k.ppc", 504, 1},       {"nocturnel_hip_32k.ppc", 504, 1},     {"nocturnel_hip_64k.ppc", 504, 1},
        {"nocturnel_hip_110k.ppc", 504, 1},      {"nocturnel_hip_110k_idx.ppc", 84, 1}, {"nocturnel_brightstar.ppc", 20, 1},
        {"nocturnel_obj_18k.ppc", 60, 24},       {"nocturnel_obj_18k_idx.ppc", 20, 1},  {"nocturnel_obj_18k_desc.ppc", 128, 1},
        {"nocturnel_obj_1k.ppc", 60, 24},        {"nocturnel_obj_1k_idx.ppc", 20, 1},   {"nocturnel_constellation.ppc", 44, 1},
        {"nocturnel_constellation_lines.ppc", 16, 1}, {"nocturnel_constellation_bounds.ppc", 8, 1},
        {"nocturnel_list_members.ppc", 16, 1},   {"nocturnel_meteor_showers.ppc", 40, 1},
    };
    for (const Expected& e : files) {
        std::string bytes;
        ASSERT_TRUE(readWholeFile(data(e.file), bytes)) << e.file;
        ASSERT_GE(bytes.size(), sizeof(DatabaseHeader)) << e.file;
        DatabaseHeader h{};
        std::memcpy(&h, bytes.data(), sizeof h);
        EXPECT_EQ(h.recordSize, e.recordSize) << e.file;
        EXPECT_EQ(h.version, e.version) << e.file;
        EXPECT_EQ(h.reserved, 0u) << e.file;
        EXPECT_EQ(bytes.size(), sizeof h + size_t{h.recordCount} * h.recordSize) << e.file;
    }
    EXPECT_FALSE(fs::exists(data("nocturnel_tycho_390k.ppc")));
    std::string sources;
    ASSERT_TRUE(readWholeFile(data("SOURCES"), sources));
    for (const char* needle : {"d3-celestial 0.7.35", "BSD 3-Clause", "Bright Star Catalogue", "xplanet",
                               "Stellarium deep-sky catalogue 3.16", "stellarium-data", "GPL-2+", "Astronomical League",
                               "Saguaro Astronomy Club", "International Meteor Organization", "nocturnel_list_members.ppc"})
        EXPECT_NE(sources.find(needle), std::string::npos) << needle;
}

TEST_F(SmallBuild, HrFileHoldsTheBscStarsPaddedIntoTheIndexRange) {
    int perBlock = 0;
    const auto hr = readBlocks(data("nocturnel_hr.ppc"), perBlock);
    ASSERT_EQ(perBlock, 42);
    EXPECT_GE(hr.size(), 9101u);
    EXPECT_LE(hr.size(), 9199u);
    const auto index = readRecords<HipIndexRecord>(data("nocturnel_hr_idx.ppc"));
    ASSERT_EQ(index.size(), 8630u / 42 + 1);  // the largest HR number of the sample is 8630
    const int block = index[7001 / 42].block[7001 % 42];
    ASSERT_GE(block, 1);
    const StarEntry* vega = nullptr;
    for (int k = 0; k < 42; ++k)
        if (hr[block * 42 + k].number == 7001) vega = &hr[block * 42 + k];
    ASSERT_NE(vega, nullptr);
    // BSC: 18.6156 h, +38.7836 deg, V 0.03; colour from HIP 91262's B-V -0.001.
    EXPECT_EQ(vega->raH, 18);
    EXPECT_EQ(vega->raM, 36);
    EXPECT_EQ(vega->raS, 56);
    EXPECT_EQ(vega->decD, 38);
    EXPECT_EQ(vega->decM, 47);
    EXPECT_EQ(vega->decS, 1);
    EXPECT_EQ(vega->mag16, 0);  // 0.03 x 16 = 0.48 -> 0
    EXPECT_EQ(vega->colour, 0);
    // HR 8630 (bet Oct) has no Hipparcos counterpart in the sample: the documented default colour.
    const int octBlock = index[8630 / 42].block[8630 % 42];
    ASSERT_GE(octBlock, 1);
    for (int k = 0; k < 42; ++k)
        if (hr[octBlock * 42 + k].number == 8630) {
            EXPECT_EQ(hr[octBlock * 42 + k].colour, kColourWithoutBv);
        }
    EXPECT_EQ(index[1].block[0], -1);  // HR 42 is not in the sample
}

TEST_F(SmallBuild, HipparcosFilesHoldTheBrightestAndTheIndexFindsThem) {
    int perBlock = 0;
    const auto all = readBlocks(data("nocturnel_hip_110k.ppc"), perBlock);
    EXPECT_GE(all.size(), 118001u);
    EXPECT_LE(all.size(), 119999u);
    size_t stars = 0;
    for (const StarEntry& e : all) stars += e.number != 0;
    EXPECT_EQ(stars, 12u + 1700u);
    const auto index = readRecords<HipIndexRecord>(data("nocturnel_hip_110k_idx.ppc"));
    for (int32_t hip : {91262, 32349, 11767, 45, 111700}) {
        ASSERT_LT(static_cast<size_t>(hip / 42), index.size());
        const int block = index[hip / 42].block[hip % 42];
        ASSERT_GE(block, 1) << hip;
        int found = 0;
        for (int k = 0; k < 42; ++k) found += all[block * 42 + k].number == hip;
        EXPECT_EQ(found, 1) << hip;
    }
    // HIP 45 has no B-V in the source.
    for (const StarEntry& e : all)
        if (e.number == 45) {
            EXPECT_EQ(e.colour, kColourWithoutBv);
        }
}

TEST_F(SmallBuild, DefaultStarsBrightestFirstWithNamesAndConstellations) {
    const auto stars = readRecords<DefaultStarRecord>(data("nocturnel_default_stars.ppc"));
    const auto constellations = readRecords<ConstellationRecord>(data("nocturnel_constellation.ppc"));
    ASSERT_EQ(stars.size(), 1646u);
    struct Expected {
        size_t rank;
        int32_t hip, hr;
        const char* name;
        const char* constellation;
    };
    const Expected expected[] = {
        {0, 32349, 2491, "Sirius", "CMa"}, {1, 30438, 2326, "Canopus", "Car"}, {2, 69673, 5340, "Arcturus", "Boo"},
        {3, 71683, 5459, "Rigil Kentaurus", "Cen"}, {4, 91262, 7001, "Vega", "Lyr"},
    };
    for (const Expected& e : expected) {
        const DefaultStarRecord& s = stars[e.rank];
        EXPECT_EQ(s.hip, e.hip) << e.name;
        EXPECT_EQ(s.hr, e.hr) << e.name;
        EXPECT_STREQ(s.name, e.name);
        ASSERT_LT(static_cast<size_t>(s.constellation), constellations.size());
        EXPECT_STREQ(constellations[s.constellation].abbreviation, e.constellation) << e.name;
        EXPECT_EQ(s.flags & 1, 1) << e.name;
    }
    // Generated stars carry no names: "HIP n", no HR, no bright-star flag.
    EXPECT_EQ(std::string(stars.back().name).rfind("HIP 1", 0), 0u);
    EXPECT_EQ(stars.back().hr, 0);
    EXPECT_EQ(stars.back().flags, 0);
    // Alphabetical constellation order: "CMa" sorts before "Car" byte-wise.
    std::vector<std::string> abbreviations;
    for (const auto& c : constellations) abbreviations.push_back(c.abbreviation);
    EXPECT_EQ(abbreviations, (std::vector<std::string>{"And", "Boo", "CMa", "Car", "Cen", "Lyr", "Oct", "Ori", "Ser", "UMi"}));
    EXPECT_STREQ(constellations[8].name, "Serpens");
}

TEST_F(SmallBuild, BrightStarNamesHoldNamedHrStarsTwice) {
    const auto names = readRecords<BrightStarRecord>(data("nocturnel_brightstar.ppc"));
    // Named stars of the sample with an HR number: Sirius, Canopus, Arcturus, Rigil Kentaurus,
    // Vega, Rigel, Betelgeuse, Polaris, Alpheratz (Bellatrix and Polaris Australis lack one).
    ASSERT_EQ(names.size(), 18u);
    EXPECT_STREQ(names[0].name, "Alpheratz");
    EXPECT_STREQ(names[8].name, "Vega");
    EXPECT_EQ(names[9].key, 15);     // Alpheratz, HR 15
    EXPECT_EQ(names[17].key, 7001);  // Vega
    // Vega's constellation number points at Lyra in the constellation file.
    const auto constellations = readRecords<ConstellationRecord>(data("nocturnel_constellation.ppc"));
    ASSERT_GE(names[17].constellation, 0);
    ASSERT_LT(static_cast<std::size_t>(names[17].constellation), constellations.size());
    EXPECT_STREQ(constellations[names[17].constellation].abbreviation, "Lyr");
}

TEST_F(SmallBuild, ObjectsCarryTheirCrossIdentifications) {
    const ObjectRecord* m31 = objectFor(kCatalogNGC, 224, "nocturnel_obj_18k.ppc", "nocturnel_obj_18k_idx.ppc");
    ASSERT_NE(m31, nullptr);
    EXPECT_EQ(m31->catalog, kCatalogNGC);
    EXPECT_EQ(m31->messier, 31);
    EXPECT_EQ(m31->type, 16);
    EXPECT_NEAR(m31->raHours, 0.712314, 1e-5);
    EXPECT_NEAR(m31->decDeg, 41.26875, 1e-5);
    EXPECT_NEAR(m31->mag, 3.44, 1e-5);
    EXPECT_NEAR(m31->majorArcmin, 189.1, 1e-3);
    EXPECT_EQ(m31->positionAngle, 35);
    EXPECT_STREQ(m31->name, "Andromeda Ga");
    EXPECT_EQ(m31->name[12], '\0');
    const auto descriptions = readRecords<ObjectDescriptionRecord>(data("nocturnel_obj_18k_desc.ppc"));
    ASSERT_GE(m31->description, 0);
    EXPECT_STREQ(descriptions[m31->description].text,
                 "Andromeda Galaxy; Andromeda Nebula; Great Nebula in Andromeda; Great Spiral; Morphology SA(s)b");
    const auto constellations = readRecords<ConstellationRecord>(data("nocturnel_constellation.ppc"));
    EXPECT_STREQ(constellations[m31->constellation].abbreviation, "And");

    // The Pleiades: own designation Collinder 42, reached as Melotte 22 too, Messier 45.
    const ObjectRecord* viaMel = objectFor(39, 22, "nocturnel_obj_18k.ppc", "nocturnel_obj_18k_idx.ppc");
    ASSERT_NE(viaMel, nullptr);
    EXPECT_EQ(viaMel->catalog, 11);
    EXPECT_EQ(viaMel->number, 42);
    EXPECT_EQ(viaMel->messier, 45);
    EXPECT_EQ(viaMel->type, 9);
    // NGC 7000 carries Caldwell 20 and is found through the Caldwell stretch as well.
    const ObjectRecord* c20 = objectFor(kCatalogCaldwell, 20, "nocturnel_obj_18k.ppc", "nocturnel_obj_18k_idx.ppc");
    ASSERT_NE(c20, nullptr);
    EXPECT_EQ(c20->number, 7000);
    EXPECT_EQ(c20->caldwell, 20);
    // Only objects of our catalogues are kept: M31, M45, NGC 7000, B 33 and the 11 Melotte clusters kept.
    EXPECT_EQ(readRecords<ObjectRecord>(data("nocturnel_obj_18k.ppc")).size(), 4u + 11u);
    // The small file and its own index find the same objects.
    const ObjectRecord* smallM31 = objectFor(kCatalogNGC, 224, "nocturnel_obj_1k.ppc", "nocturnel_obj_1k_idx.ppc");
    ASSERT_NE(smallM31, nullptr);
    EXPECT_EQ(smallM31->messier, 31);
    EXPECT_EQ(smallM31->description, -1);
}

TEST_F(SmallBuild, IndexHonoursTheStretchesAndReportsWhatDidNotFit) {
    const auto index = readRecords<ObjectIndexRecord>(data("nocturnel_obj_18k_idx.ppc"));
    ASSERT_EQ(index.size(), 19402u);
    EXPECT_EQ(index[0].key, kKeyBeforeAll);
    EXPECT_EQ(index[1125].key, kKeyBeforeAll);
    EXPECT_EQ(index.back().key, kKeyAfterAll);
    for (size_t i = 1; i < index.size(); ++i) ASSERT_LE(index[i - 1].key, index[i].key) << i;
    // Melotte 10037..10049: the Pleiades and the 11 brightest other clusters, in number order.
    ASSERT_EQ(index[10037].catalog, 39);
    EXPECT_EQ(index[10037].number, 1);
    EXPECT_EQ(index[10037].key, objectIndexKey(39, 1));
    EXPECT_EQ(index[10048].number, 22);
    EXPECT_EQ(index[10049].catalog, 37);  // Markarian: no source, filler keys
    EXPECT_EQ(index[10049].key, objectIndexFillerKey(37));
    EXPECT_EQ(index[10049].objectRecord, -1);
    // Maffei's stretch ends where Caldwell's begins.
    EXPECT_EQ(index[1126].key, objectIndexFillerKey(36));
    EXPECT_EQ(index[1127].key, objectIndexKey(kCatalogCaldwell, 20));
    ASSERT_EQ(report_.notFitted.size(), 3u) << "the two lists' missing numbers, then Melotte";
    EXPECT_EQ(report_.notFitted[2], "Melotte: 15 objects, 12 slots, left out 3 (no magnitude or faintest): 12 13 14");
    EXPECT_NE(std::find(report_.noSource.begin(), report_.noSource.end(), "Markarian"), report_.noSource.end());
}

// The small catalogue holds one object of both lists, NGC 7000: each list gets that one member,
// at its place in the published list, and the rest is reported, not fatal.
TEST_F(SmallBuild, ListMembersPointAtTheListedObjectsAndReportTheRest) {
    const auto members = readRecords<ListMemberRecord>(data("nocturnel_list_members.ppc"));
    const auto objects = readRecords<ObjectRecord>(data("nocturnel_obj_18k.ppc"));
    ASSERT_EQ(members.size(), 2u);
    struct Expected {
        int catalog, rank;
    };
    const Expected expected[] = {{kCatalogHerschel, 374}, {kCatalogBestNGC, 46}};
    for (size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(members[i].catalog, expected[i].catalog);
        EXPECT_EQ(members[i].rank, expected[i].rank) << "NGC 7000's place in the list";
        EXPECT_EQ(members[i].ngc, 7000);
        ASSERT_LT(static_cast<size_t>(members[i].objectRecord), objects.size());
        EXPECT_EQ(objects[members[i].objectRecord].catalog, kCatalogNGC);
        EXPECT_EQ(objects[members[i].objectRecord].number, 7000);
    }
    EXPECT_TRUE(report_.notFitted[0].starts_with("Herschel 400: 399 of 400 NGC numbers not in the deep-sky catalogue: 40 129"));
    EXPECT_TRUE(report_.notFitted[1].starts_with("SAC best of the NGC: 110 of 111 NGC numbers not in the deep-sky catalogue: 891 7662"));
    const auto showers = readRecords<MeteorShowerRecord>(data("nocturnel_meteor_showers.ppc"));
    ASSERT_EQ(showers.size(), 15u);
    EXPECT_STREQ(showers[0].name, "Quadrantids");
}

TEST(CatalogBuilder, SameSourcesGiveByteIdenticalFiles) {
    TempFolder sources, first, second;
    ASSERT_TRUE(testing::writeSmallSources(sources.path()));
    MessageCapture capture;
    ASSERT_EQ(buildCatalogues({sources.path(), first.path(), sources.path() / "tyc2_sample.dat"}), 0);
    ASSERT_EQ(buildCatalogues({sources.path(), second.path(), sources.path() / "tyc2_sample.dat"}), 0);
    size_t compared = 0;
    for (const auto& entry : fs::directory_iterator(first.path())) {
        std::string a, b;
        ASSERT_TRUE(readWholeFile(entry.path(), a));
        ASSERT_TRUE(readWholeFile(second.path() / entry.path().filename(), b)) << entry.path().filename();
        EXPECT_TRUE(a == b) << entry.path().filename();
        ++compared;
    }
    // 21 record files, 3 Tycho files and their 2 motion files, the planet series and SOURCES.
    EXPECT_EQ(compared, 28u);
}

TEST(CatalogBuilder, Tycho2FilesFromTheCatalogueFormat) {
    TempFolder sources, out;
    ASSERT_TRUE(testing::writeSmallSources(sources.path()));
    MessageCapture capture;
    BuildReport report;
    ASSERT_EQ(buildCatalogues({sources.path(), out.path(), sources.path() / "tyc2_sample.dat"}, &report), 0)
        << capture.lastTitle();
    int perBlock = 0;
    const auto entries = readBlocks(out.path() / "nocturnel_tycho_2500k.ppc", perBlock);
    EXPECT_EQ(perBlock, 42);
    std::vector<int32_t> numbers;
    for (const StarEntry& e : entries)
        if (e.number) numbers.push_back(e.number);
    std::sort(numbers.begin(), numbers.end());
    // Second components (3105-2070-2) are left out: "component 1 implied".
    EXPECT_EQ(numbers, (std::vector<int32_t>{100008, 100013, 100016, 240001234, 310502070, 462800237, 953700012}));
    const auto regions = readRecords<TychoRegionRecord>(out.path() / "nocturnel_tycho_idx.ppc");
    ASSERT_EQ(regions.size(), 9538u);
    EXPECT_NEAR(regions[3105].minDecDeg, 38.7836, 1e-3);
    EXPECT_NEAR(regions[4628].maxDecDeg, -75.6642, 1e-3);  // no mean position: the observed one
    EXPECT_FLOAT_EQ(regions[2].minDecDeg, 0.0f);
    // The side file of motions runs parallel to the card: TYC 1-8-1's pmRA, pmDE; a star without
    // a mean position (4628-237-1) has none.
    std::string side;
    ASSERT_TRUE(readWholeFile(out.path() / "nocturnel_tycho_2500k_pm.ppc", side));
    ASSERT_EQ(side.size(), sizeof(DatabaseHeader) + entries.size() * sizeof(CardStarMotion));
    int withMotion = 0;
    for (size_t i = 0; i < entries.size(); ++i) {
        CardStarMotion m;
        std::memcpy(&m, side.data() + sizeof(DatabaseHeader) + i * sizeof m, sizeof m);
        if (m.number == 0) continue;
        ++withMotion;
        EXPECT_EQ(m.number, entries[i].number);
        EXPECT_NE(m.number, 462800237);
        if (m.number == 100008) {
            EXPECT_FLOAT_EQ(m.pmRaCosDecMasPerYear, -16.3f);
            EXPECT_FLOAT_EQ(m.pmDecMasPerYear, -9.0f);
        }
    }
    EXPECT_GE(withMotion, 4);
    for (const StarEntry& e : entries) {
        if (e.number == 310502070) {
            EXPECT_EQ(e.raH, 18);
            EXPECT_EQ(e.raM, 36);
            EXPECT_EQ(e.raS, 56);
            EXPECT_EQ(e.colour, 0);  // B-V = 0.85 x (0.030 - 0.060) = -0.03 -> 0
        }
        if (e.number == 240001234) {
            EXPECT_EQ(e.colour, kColourWithoutBv);  // no BT
        }
        if (e.number == 100013) {
            EXPECT_EQ(e.mag16, magnitudeByte(8.670 - 0.090 * (10.488 - 8.670)));
        }
    }
}

// Every malformed or missing source stops the build with a message naming it.
TEST(CatalogBuilder, MalformedOrMissingSourceFailsLoudly) {
    struct Case {
        const char* what;
        std::string file;          // relative to the sources folder
        std::string content;       // written over the file; "<delete>" removes it
        const char* title;
        const char* detailHas;
    };
    const std::string dso = "stellarium/usr/share/stellarium/nebulae/default/";
    const std::string fullDso = writeStellariumCatalogue(testing::smallDsoCatalogue());
    const Case cases[] = {
        {"stars not JSON", "d3-celestial/data/stars.14.json", "{\"type\":", "Malformed catalogue source", "stars.14.json: not valid JSON"},
        {"star without magnitude", "d3-celestial/data/stars.14.json",
         R"({"type":"FeatureCollection","features":[{"type":"Feature","id":7,"properties":{"bv":"0.1"},"geometry":{"type":"Point","coordinates":[1,2]}}]})",
         "Malformed catalogue source", "stars.14.json: star 1 lacks"},
        {"star names missing", "d3-celestial/data/starnames.json", "<delete>", "Could not open catalogue source", "starnames.json"},
        {"BSC line garbled", "xplanet/usr/share/xplanet/stars/BSC", " 38.7836 18.6156 0.03 Vega 7001\n",
         "Malformed catalogue source", "BSC: line 1"},
        {"constellation bounds of an unknown id", "d3-celestial/data/constellations.bounds.json",
         R"({"type":"FeatureCollection","features":[{"type":"Feature","id":"Xyz","geometry":{"type":"Polygon","coordinates":[[[1,2],[3,4],[5,6]]]}}]})",
         "Malformed catalogue source", "constellations.bounds.json: unknown constellation"},
        {"catalog.dat not gzip", dso + "catalog.dat", fullDso, "Malformed catalogue source", "catalog.dat: not a gzip file"},
        {"catalog.dat truncated record", dso + "catalog.dat", gzipBytes(fullDso.substr(0, fullDso.size() - 3)),
         "Malformed catalogue source", "catalog.dat: record"},
        {"catalog.dat truncated gzip", dso + "catalog.dat", gzipBytes(fullDso).substr(0, 40),
         "Malformed catalogue source", "catalog.dat: gzip data is truncated"},
        {"names.dat garbled", dso + "names.dat", "NGC  224             Andromeda\n", "Malformed catalogue source",
         "names.dat: line 1"},
    };
    for (const Case& c : cases) {
        TempFolder sources, out;
        ASSERT_TRUE(testing::writeSmallSources(sources.path(), 1650));
        if (c.content == "<delete>") fs::remove(sources.path() / c.file);
        else ASSERT_TRUE(writeWholeFile(sources.path() / c.file, c.content));
        MessageCapture capture;
        EXPECT_NE(buildCatalogues({sources.path(), out.path() / "data", {}}), 0) << c.what;
        ASSERT_EQ(capture.messages().size(), 1u) << c.what;
        EXPECT_EQ(capture.messages()[0].title, c.title) << c.what;
        EXPECT_NE(capture.messages()[0].detail.find(c.detailHas), std::string::npos) << c.what << ": " << capture.messages()[0].detail;
        EXPECT_FALSE(fs::exists(out.path() / "data" / "SOURCES")) << c.what;
    }
}

TEST(CatalogBuilder, FailedBuildLeavesTheFilesInUseAlone) {
    TempFolder sources, out;
    ASSERT_TRUE(testing::writeSmallSources(sources.path()));
    MessageCapture capture;
    ASSERT_EQ(buildCatalogues({sources.path(), out.path(), {}}), 0);
    std::string before, after;
    ASSERT_TRUE(readWholeFile(out.path() / "nocturnel_obj_18k.ppc", before));
    // A second build whose objects would differ (no names) and that fails late, on a bad
    // Tycho-2 file read after everything else.
    ASSERT_TRUE(writeWholeFile(sources.path() / "stellarium/usr/share/stellarium/nebulae/default/names.dat", "# no names\n"));
    ASSERT_TRUE(writeWholeFile(sources.path() / "bad_tyc2.dat", "0001 00008 1| |  2.31750494|  garbage\n"));
    EXPECT_NE(buildCatalogues({sources.path(), out.path(), sources.path() / "bad_tyc2.dat"}), 0);
    ASSERT_TRUE(readWholeFile(out.path() / "nocturnel_obj_18k.ppc", after));
    EXPECT_TRUE(before == after);
    EXPECT_FALSE(fs::exists(out.path() / "nocturnel_tycho_390k.ppc"));
    EXPECT_FALSE(fs::exists(out.path() / ".catalog-build"));
    EXPECT_TRUE(fs::exists(out.path() / "SOURCES"));
}

TEST(CatalogBuilder, TooFewStarsOrBadTychoLineFailLoudly) {
    {
        TempFolder sources, out;
        ASSERT_TRUE(testing::writeSmallSources(sources.path(), 100));  // 112 stars < 1,646
        MessageCapture capture;
        EXPECT_NE(buildCatalogues({sources.path(), out.path(), {}}), 0);
        EXPECT_EQ(capture.lastTitle(), "Malformed catalogue source");
        EXPECT_NE(capture.messages().back().detail.find("1,646 needed"), std::string::npos);
    }
    {
        TempFolder sources, out;
        ASSERT_TRUE(testing::writeSmallSources(sources.path()));
        ASSERT_TRUE(writeWholeFile(sources.path() / "bad_tyc2.dat", "0001 00008 1| |  2.31750494|  garbage\n"));
        MessageCapture capture;
        EXPECT_NE(buildCatalogues({sources.path(), out.path(), sources.path() / "bad_tyc2.dat"}), 0);
        EXPECT_EQ(capture.lastTitle(), "Malformed catalogue source");
        EXPECT_EQ(capture.messages().back().detail, "bad_tyc2.dat: line 1: fewer than 26 fields");
    }
    {
        TempFolder sources, out;
        ASSERT_TRUE(testing::writeSmallSources(sources.path()));
        MessageCapture capture;
        EXPECT_NE(buildCatalogues({sources.path(), out.path(), sources.path() / "no_such_tyc2.dat"}), 0);
        EXPECT_EQ(capture.lastTitle(), "Could not open catalogue source");
    }
}

}  // namespace
}  // namespace nocturnel
