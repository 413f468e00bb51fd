#include "catalog/objects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "catalog/catalog_test_support.h"
#include "catalog/name_query.h"
#include "catalog/object_index_key.h"
#include "catalog/object_tables.h"
#include "settings/message.h"

namespace nocturnel {
namespace {
using test::CatalogFolderTest;
using test::objectRecord;

TEST(ObjectNames, NameTextsOfTheCatalogues) {
    struct Case {
        ObjectRecord object;
        const char* text;
    };
    const Case cases[] = {
        {objectRecord(kCatalogNGC, 224, 16, 0.7f, 41.3f, 31, 0), "M31, NGC224"},
        {objectRecord(kCatalogNGC, 869, 6, 2.3f, 57.1f, 0, 14), "C14, NGC869"},
        {objectRecord(kCatalogNGC, 7000, 20), "NGC7000"},
        {objectRecord(kCatalogIC, 434, 21), "IC434"},
        {objectRecord(39, 111, 6), "Mel111"},
        {objectRecord(65, 99, 6), "vdB-Ha99"},
        {objectRecord(kCatalogMessier, 40, 31, 12.4f, 58.1f, 40, 0), "M40"},
        {objectRecord(kCatalogCaldwell, 99, 21, 12.9f, -63.f, 0, 99), "C99"},
    };
    for (const Case& c : cases) EXPECT_EQ(objectNameText(c.object), c.text);
    EXPECT_EQ(tychoNameText(466201234), "TYC4662-1234-1");
    EXPECT_EQ(tychoNameText(100001), "TYC1-1-1");
}

TEST(ObjectNames, TypeCodeZeroAndUnknownCodesPrintThreeBlanks) {
    EXPECT_STREQ(objectTypeName(0), "   ");
    EXPECT_STREQ(objectTypeName(41), "   ");
    EXPECT_STREQ(objectTypeName(-1), "   ");
    EXPECT_STREQ(objectTypeName(16), "Galaxy");
    EXPECT_STREQ(objectTypeName(40), "Unverified Southern Object");
}

TEST(ObjectNameQueries, PrefixesAreMatchedLongestFirstIgnoringCase) {
    struct Case {
        const char* text;
        int code;
        int32_t number;
    };
    const Case cases[] = {
        {"NGC 224", kCatalogNGC, 224},      {"ngc224", kCatalogNGC, 224},        {"  M 31 ", kCatalogMessier, 31},
        {"m31", kCatalogMessier, 31},       {"C 14", kCatalogCaldwell, 14},      {"HIP 91262", kCatalogHipparcos, 91262},
        {"HR 2491", kCatalogHR, 2491},      {"H 400", kCatalogHerschel, 400},    {"Mel 111", 39, 111},
        {"Cr 399", 11, 399},                {"UGCA 86", 62, 86},                 {"UGC 12158", 61, 12158},
        {"Be 59", 5, 59},                   {"B 33", 2, 33},                     {"Sh2-155", 52, 155},
        {"vdB-Ha 99", 65, 99},              {"Sa 1", 50, 1},                     {"SAO 1", 51, 1},
        {"TYC 4662-1234-1", kCatalogTycho, 466201234},                           {"tyc1-1", kCatalogTycho, 100001},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        ObjectNameQuery q;
        ASSERT_TRUE(parseObjectName(c.text, q));
        EXPECT_EQ(q.catalogCode, c.code);
        EXPECT_EQ(q.number, c.number);
    }
}

TEST(ObjectNameQueries, UnreadableNamesAreRefused) {
    for (const char* text : {"", "   ", "Vega", "NGC", "NGC --5", "NGC - 5x", "NGC 0", "NGC 12x", "M 31 b", "XYZ 12",
                             "NGC 1234567890", "TYC 4662-1234-2", "TYC 4662", "TYC 0-5-1", "TYC 12000-1-1", "HIP -1", "NGC -5", "M  -42",
                             "None 5"}) {
        ObjectNameQuery q;
        EXPECT_FALSE(parseObjectName(text, q)) << text;
    }
}

class ObjectFileTest : public CatalogFolderTest {
protected:
    // A small object database and its index, as the builder writes them: index records ordered
    // by key, each pointing to its object record.
    void writeSmallDatabase(const std::vector<ObjectRecord>& objects) {
        test::writeRecords("nocturnel_obj_1k.ppc", objects);
        std::vector<ObjectIndexRecord> index;
        index.push_back({-1, 0, 0, kKeyBeforeAll, 0});
        for (std::size_t i = 0; i < objects.size(); ++i) {
            const int32_t key = objectIndexKey(objects[i].catalog, objects[i].number);
            if (key >= 0) index.push_back({static_cast<int32_t>(i), objects[i].catalog, objects[i].number, key, 0});
        }
        std::sort(index.begin(), index.end(), [](const auto& a, const auto& b) { return a.key < b.key; });
        index.push_back({-1, 0, 0, kKeyAfterAll, 0});
        test::writeRecords("nocturnel_obj_1k_idx.ppc", index);
    }
    std::vector<ObjectRecord> sample() {
        return {objectRecord(kCatalogNGC, 224, 16, 0.712f, 41.27f, 31, 0, "Andromeda Gal"),
                objectRecord(kCatalogNGC, 1976, 9, 5.588f, -5.39f, 42, 0, "Orion Nebula"),
                objectRecord(kCatalogNGC, 869, 6, 2.32f, 57.13f, 0, 14, "h Persei"),
                objectRecord(kCatalogIC, 434, 21, 5.68f, -2.46f),
                objectRecord(39, 111, 6, 12.4f, 26.0f),
                objectRecord(kCatalogNGC, 7000, 20, 20.98f, 44.3f)};
    }
};

TEST_F(ObjectFileTest, ReadsObjectsAndTerminatesTheNameField) {
    MessageCapture messages;
    ObjectRecord o;
    EXPECT_FALSE(readObject(0, o));
    EXPECT_EQ(messages.lastTitle(), "Object database isn't open!");

    std::vector<ObjectRecord> objects = sample();
    std::memset(objects[1].name, 'x', sizeof objects[1].name);  // a name filling the field to byte 40
    objects[1].reserved = 'y';
    test::writeRecords("nocturnel_obj_1k.ppc", objects);
    ASSERT_TRUE(openObjectFiles());
    ASSERT_TRUE(readObject(1, o));
    EXPECT_EQ(std::string(o.name), std::string(12, 'x'));
    EXPECT_EQ(reinterpret_cast<const uint8_t*>(&o)[40], 0);
    EXPECT_EQ(o.number, 1976);
    EXPECT_EQ(o.messier, 42);

    messages.clear();
    EXPECT_FALSE(readObject(6, o));
    EXPECT_EQ(messages.lastTitle(), "Could not retrieve object record!");
}

TEST_F(ObjectFileTest, LookupThroughTheIndexAndByMessierOrCaldwellNumber) {
    writeSmallDatabase(sample());
    ASSERT_TRUE(openObjectFiles());
    struct Case {
        int code;
        int32_t number;
        const char* text;
    };
    const Case cases[] = {
        {kCatalogNGC, 224, "M31, NGC224"}, {kCatalogMessier, 31, "M31, NGC224"}, {kCatalogMessier, 42, "M42, NGC1976"},
        {kCatalogCaldwell, 14, "C14, NGC869"}, {kCatalogIC, 434, "IC434"},      {39, 111, "Mel111"},
        {kCatalogNGC, 7000, "NGC7000"},
    };
    for (const Case& c : cases) {
        ObjectRecord o;
        ASSERT_TRUE(lookupObject(c.code, c.number, o)) << c.text;
        EXPECT_EQ(objectNameText(o), c.text);
    }
    MessageCapture messages;
    ObjectRecord o;
    for (const Case& c : {Case{kCatalogNGC, 225, ""}, Case{kCatalogMessier, 1, ""}, Case{kCatalogIC, 224, ""},
                          Case{kCatalogHerschel, 400, ""}, Case{kCatalogMessier, 0, ""}})
        EXPECT_FALSE(lookupObject(c.code, c.number, o)) << c.code << " " << c.number;
    EXPECT_TRUE(messages.messages().empty());
}

TEST_F(ObjectFileTest, SmallFileStretchesComeFromItsOwnIndex) {
    writeSmallDatabase(sample());
    test::writePatternFile("nocturnel_default_stars.ppc", 1, 44);
    ASSERT_EQ(openCatalogues(), 0);
    // Index: record 0 before all, then IC434 (rank of IC), Mel111, the four NGC objects, then the end mark.
    struct Case {
        int code;
        uint16_t first, last;
    };
    const bool icBeforeMel = catalogIndexRank(kCatalogIC) < catalogIndexRank(39);
    ASSERT_TRUE(icBeforeMel);
    ASSERT_LT(catalogIndexRank(39), catalogIndexRank(kCatalogNGC));
    for (const Case c : {Case{kCatalogIC, 1, 2}, Case{39, 2, 3}, Case{kCatalogNGC, 3, 7}, Case{1, 0, 0}, Case{64, 0, 0}}) {
        const CatalogStretch s = catalogStretch(c.code);
        EXPECT_EQ(s.first, c.first) << c.code;
        EXPECT_EQ(s.last, c.last) << c.code;
    }
    // Catalogues outside the index keep their marks.
    EXPECT_EQ(catalogStretch(kCatalogMessier).first, kNotInIndex);
    EXPECT_EQ(catalogStretch(kCatalogMessier).last, 0);

    resetCatalogStretches();
    EXPECT_EQ(catalogStretch(kCatalogNGC).first, 10054);
    EXPECT_EQ(catalogStretch(kCatalogNGC).last, 18520);
    EXPECT_EQ(catalogStretch(68).first, kNotInIndex);
}

TEST_F(ObjectFileTest, LargeFilesKeepTheTableStretchesAndUseThe18kIndex) {
    test::writePatternFile("nocturnel_default_stars.ppc", 1, 44);
    std::vector<ObjectRecord> objects(2000, objectRecord(kCatalogIC, 9000));
    objects[1500] = objectRecord(kCatalogNGC, 891, 16, 2.37f, 42.35f);
    test::writeRecords("nocturnel_obj_18k.ppc", objects);
    ASSERT_EQ(openCatalogues(), 0);
    EXPECT_EQ(catalogStretch(kCatalogNGC).first, 10054);
    std::vector<ObjectIndexRecord> index = {{-1, 0, 0, kKeyBeforeAll, 0},
                                            {1500, kCatalogNGC, 891, objectIndexKey(kCatalogNGC, 891), 0},
                                            {-1, 0, 0, kKeyAfterAll, 0}};
    test::writeRecords("nocturnel_obj_18k_idx.ppc", index);
    ObjectRecord o;
    ASSERT_TRUE(lookupObject(kCatalogNGC, 891, o));
    EXPECT_EQ(openObjectIndexSize(), 2);
    EXPECT_FLOAT_EQ(o.decDeg, 42.35f);
}

class FeatureReaderTest : public CatalogFolderTest {};

TEST_F(FeatureReaderTest, EachDatabaseReportsItsOwnTexts) {
    MessageCapture messages;
    MoonRecordBytes moon;
    MarsRecordBytes mars;
    CometRecordBytes comet;
    SatelliteRecordBytes satellite;
    ObjectRecord user;
    EXPECT_FALSE(readMoonRecord(0, moon));
    EXPECT_FALSE(readMarsRecord(0, mars));
    EXPECT_FALSE(readCometRecord(0, comet));
    EXPECT_FALSE(readSatelliteRecord(0, satellite));
    EXPECT_FALSE(readUserObject(0, user));
    EXPECT_FALSE(sortSatellites());
    const std::vector<std::string> notOpen = {"Moon Database isn't open!", "Mars Database isn't open!",
                                              "Comet  database isn't open!", "Satellite database isn't open!",
                                              "User Object database isn't open!",
                                              "SatelliteDBSort: Satellite database isn't open!"};
    ASSERT_EQ(messages.messages().size(), notOpen.size());
    for (std::size_t i = 0; i < notOpen.size(); ++i) EXPECT_EQ(messages.messages()[i].title, notOpen[i]);

    test::writePatternFile("nocturnel_default_stars.ppc", 1, 44);
    test::writePatternFile("nocturnel_obj_1k.ppc", 1, 60);
    test::writePatternFile("nocturnel_moon.ppc", 3, 44);
    test::writePatternFile("nocturnel_mars.ppc", 3, 36);
    test::writePatternFile("nocturnel_comet.ppc", 3, 128);
    test::writePatternFile("nocturnel_satellites.ppc", 3, 213);
    ASSERT_EQ(openCatalogues(), 0);
    ASSERT_TRUE(readMoonRecord(2, moon));
    EXPECT_EQ(moon[0], 2);
    ASSERT_TRUE(readCometRecord(1, comet));
    EXPECT_EQ(comet[127], 128);
    messages.clear();
    EXPECT_FALSE(readMoonRecord(3, moon));
    EXPECT_FALSE(readMarsRecord(7, mars));
    EXPECT_FALSE(readCometRecord(7, comet));
    EXPECT_FALSE(readSatelliteRecord(9, satellite));
    const std::vector<std::string> failed = {"Could not retrieve moon record!", "Could not retrieve mars record!",
                                             "Could not retrieve comet record! 7",
                                             "Could not retrieve satellite record!"};
    ASSERT_EQ(messages.messages().size(), failed.size());
    for (std::size_t i = 0; i < failed.size(); ++i) EXPECT_EQ(messages.messages()[i].title, failed[i]);
}

TEST_F(FeatureReaderTest, UserObjectsComeFromTheUserCatalogueFolder) {
    std::vector<ObjectRecord> objects = {objectRecord(kCatalogUser, 1), objectRecord(kCatalogUser, 2)};
    std::memset(objects[1].name, 'u', sizeof objects[1].name);
    const auto write = [&](const char* name) {
        std::ofstream out(userCatalogsFolder() / name, std::ios::binary);
        const auto header = test::header(24, 2, sizeof(ObjectRecord));
        out.write(reinterpret_cast<const char*>(header.data()), static_cast<std::streamsize>(header.size()));
        out.write(reinterpret_cast<const char*>(objects.data()), sizeof(ObjectRecord) * 2);
    };
    prefs().userCatalogFile[0] = '\0';  // an empty name falls back to the default file
    EXPECT_FALSE(openUserObjects());
    write("nocturnel_user_catalog.pdb");
    ASSERT_TRUE(openUserObjects());
    ObjectRecord o;
    ASSERT_TRUE(readUserObject(1, o));
    EXPECT_EQ(o.number, 2);
    EXPECT_EQ(std::strlen(o.name), 12u);
    MessageCapture messages;
    EXPECT_FALSE(readUserObject(2, o));
    EXPECT_EQ(messages.lastTitle(), "Could not retrieve user object record!");

    std::strcpy(prefs().userCatalogFile, "mine.pdb");
    EXPECT_FALSE(openUserObjects());
    write("mine.pdb");
    EXPECT_TRUE(openUserObjects());
}

TEST_F(FeatureReaderTest, SatelliteAndCometRewritesNeedTheInMemoryDatabase) {
    MessageCapture messages;
    EXPECT_FALSE(requestSatelliteRewrite());
    EXPECT_EQ(messages.messages().back().text(),
              "No Satellite database was found. Please install it in Palm memory.\nAfter you will be able to update it.");
    test::writePatternFile("nocturnel_satellites.ppc", 2, 213);
    test::writePatternFile("nocturnel_comet.ppc", 2, 128);
    test::writePatternFile("nocturnel_default_stars.ppc", 1, 44);
    test::writePatternFile("nocturnel_obj_1k.ppc", 1, 60);
    ASSERT_EQ(openCatalogues(), 0);
    messages.clear();
    EXPECT_FALSE(requestSatelliteRewrite());
    EXPECT_EQ(messages.messages().back().text(),
              "To modify the Satellite database you need to install it in memory.\n\nAs you installed it on your "
              "memory card, you can use SatelliteDB tools to create a new one and copy it after to your card.");
    CometRecordBytes comet{};
    messages.clear();
    EXPECT_FALSE(writeCometRecord(0, comet));  // only the file half: nothing is written
    EXPECT_TRUE(messages.messages().empty());
}

TEST_F(FeatureReaderTest, SitesAreReadPerUse) {
    MessageCapture messages;
    SiteRecordBytes site;
    EXPECT_FALSE(readSiteRecord(0, site));
    EXPECT_EQ(siteCount(), 0);
    EXPECT_EQ(messages.lastTitle(), "Could not retreive nocturnel_location.ppc database.");
    test::writePatternFile("nocturnel_location.ppc", 4, 64);
    EXPECT_EQ(siteCount(), 4);
    ASSERT_TRUE(readSiteRecord(3, site));
    EXPECT_EQ(site[1], 4);
    messages.clear();
    EXPECT_FALSE(readSiteRecord(4, site));
    EXPECT_EQ(messages.lastTitle(), "Could not retreive nocturnel_location.ppc database.");
}

}  // namespace
}  // namespace nocturnel
