// The published lists and the meteor-shower table as compiled in, their parsers on faulty lines,
// the NGC look-up of the members, and the checks of the written files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "catalog/object_tables.h"
#include "tools/observing_lists.h"
#include "tools/record_io.h"
#include "tools/test_support.h"

namespace nocturnel {
namespace {
using testing::TempFolder;

bool contains(const std::vector<int32_t>& v, int32_t n) { return std::find(v.begin(), v.end(), n) != v.end(); }

TEST(PublishedLists, HerschelHoldsFourHundredNgcNumbersWithTheAntennaeAsNgc4038) {
    std::vector<int32_t> ngc;
    std::string error;
    ASSERT_TRUE(parseNgcList(herschel400Table(), ngc, error)) << error;
    ASSERT_EQ(ngc.size(), 400u);
    EXPECT_EQ(ngc.front(), 40);
    EXPECT_EQ(ngc.back(), 7814);
    EXPECT_TRUE(std::is_sorted(ngc.begin(), ngc.end()));
    EXPECT_TRUE(contains(ngc, 4038));
    EXPECT_FALSE(contains(ngc, 4039));
    // The 17 Messier objects of the list, by their NGC numbers.
    for (int32_t n : {6514, 598, 2422, 2548, 5195, 4303, 650, 3034, 4548, 5866, 4594, 3379, 4258, 6171, 3556, 3992, 205})
        EXPECT_TRUE(contains(ngc, n)) << "NGC " << n;
    EXPECT_NE(tableHeader(herschel400Table()).find("Astronomical League"), std::string::npos);
}

TEST(PublishedLists, SacBestOfTheNgcHoldsItsHundredElevenNumbersInListOrder) {
    std::vector<int32_t> ngc;
    std::string error;
    ASSERT_TRUE(parseNgcList(sacBestNgcTable(), ngc, error)) << error;
    ASSERT_EQ(ngc.size(), 111u);
    const std::vector<int32_t> firstNine = {891, 7662, 6781, 7009, 7293, 772, 1907, 1931, 1501};
    EXPECT_TRUE(std::equal(firstNine.begin(), firstNine.end(), ngc.begin()));
    EXPECT_TRUE(contains(ngc, 869) && contains(ngc, 884)) << "both halves of the Double Cluster";
    const std::string header = tableHeader(sacBestNgcTable());
    EXPECT_NE(header.find("Saguaro Astronomy Club"), std::string::npos);
    EXPECT_NE(header.find("Crayon"), std::string::npos);
}

TEST(PublishedLists, MeteorShowerTableStartsWithTheQuadrantids) {
    std::vector<MeteorShowerRecord> showers;
    std::string error;
    ASSERT_TRUE(parseMeteorShowerTable(meteorShowerTable(), showers, error)) << error;
    ASSERT_EQ(showers.size(), 15u);
    const MeteorShowerRecord& q = showers[0];
    EXPECT_STREQ(q.name, "Quadrantids");
    EXPECT_EQ(q.radiantRaDeg, 230.0f);
    EXPECT_EQ(q.radiantDecDeg, 49.0f);
    EXPECT_EQ((std::vector<int>{q.startMonth, q.startDay, q.endMonth, q.endDay, q.peakMonth, q.peakDay, q.zhr}),
              (std::vector<int>{12, 28, 1, 12, 1, 4, 80}));
    const auto perseids = std::find_if(showers.begin(), showers.end(), [](auto& s) { return std::strcmp(s.name, "Perseids") == 0; });
    ASSERT_NE(perseids, showers.end());
    EXPECT_EQ(perseids->radiantDecDeg, 58.0f);
    EXPECT_EQ(perseids->zhr, 100);
    EXPECT_NE(tableHeader(meteorShowerTable()).find("International Meteor Organization"), std::string::npos);
}

TEST(PublishedLists, FaultyLinesAreRefusedWithTheirLineNumber) {
    struct Case {
        const char* table;
        const char* error;
    };
    const Case ngcCases[] = {
        {"# h\n40\nforty\n", "line 3: not an NGC number: forty"},
        {"40\n0\n", "line 2: not an NGC number: 0"},
        {"7841\n", "line 1: not an NGC number: 7841"},
        {"40\n\n40\n", "line 3: NGC 40 listed twice"},
    };
    for (const Case& c : ngcCases) {
        std::vector<int32_t> ngc;
        std::string error;
        EXPECT_FALSE(parseNgcList(c.table, ngc, error)) << c.table;
        EXPECT_EQ(error, c.error);
    }
    const Case showerCases[] = {
        {"A | 1 | 2 | 01-01 | 01-02 | 01-01\n", "line 1: 7 fields expected, 6 found"},
        {"A | 360 | 2 | 01-01 | 01-02 | 01-01 | 5\n", "line 1: radiant RA out of 0..359: 360"},
        {"A | 10 | -91 | 01-01 | 01-02 | 01-01 | 5\n", "line 1: radiant Dec out of -90..90: -91"},
        {"A | 10 | 2 | 02-30 | 03-02 | 03-01 | 5\n", "line 1: a date is not MM-DD of a real day"},
        {"A | 10 | 2 | 1-1 | 03-02 | 03-01 | 5\n", "line 1: a date is not MM-DD of a real day"},
        {"A very long shower name indeed | 10 | 2 | 01-01 | 01-02 | 01-01 | 5\n", "line 1: name empty or longer than 23 bytes"},
        {"A | 10 | 2 | 01-01 | 01-02 | 01-01 | lots\n", "line 1: ZHR out of range: lots"},
    };
    for (const Case& c : showerCases) {
        std::vector<MeteorShowerRecord> showers;
        std::string error;
        EXPECT_FALSE(parseMeteorShowerTable(c.table, showers, error)) << c.table;
        EXPECT_EQ(error, c.error);
    }
}

TEST(ListMembers, LookUpEachNgcNumberThroughTheIndexAndReportTheMissing) {
    // Index: NGC 40 -> record 7, NGC 129 -> record 3, IC 40 -> record 9 (not an NGC), a filler.
    const std::vector<ObjectIndexRecord> index = {
        {7, kCatalogNGC, 40, 1, 0}, {3, kCatalogNGC, 129, 2, 0}, {9, kCatalogIC, 40, 3, 0}, {-1, kCatalogNGC, 0, 4, 0}};
    std::vector<int32_t> missing;
    const auto members = listMembers(kCatalogHerschel, {40, 136, 129, 7814, 3184}, index, {{3184, 40}, {7814, 7813}}, missing);
    ASSERT_EQ(members.size(), 3u);
    EXPECT_EQ(members[0].rank, 1);
    EXPECT_EQ(members[0].objectRecord, 7);
    EXPECT_EQ(members[1].rank, 3) << "ranks count every listed number, found or not";
    EXPECT_EQ(members[1].objectRecord, 3);
    EXPECT_EQ(members[1].catalog, kCatalogHerschel);
    EXPECT_EQ(members[2].rank, 5);
    EXPECT_EQ(members[2].objectRecord, 7) << "NGC 3184 found under the catalogue's number of the same object";
    EXPECT_EQ(members[2].ngc, 3184) << "the member keeps the listed number";
    EXPECT_EQ(missing, (std::vector<int32_t>{136, 7814}));
}

TEST(PublishedLists, SameObjectTablePairsListedNumbersWithTheCataloguesOnes) {
    std::map<int32_t, int32_t> same;
    std::string error;
    ASSERT_TRUE(parseNgcSameObjects(ngcSameObjectTable(), same, error)) << error;
    EXPECT_EQ(same.size(), 6u);
    EXPECT_EQ(same.at(3184), 3180);
    EXPECT_EQ(same.at(5907), 5906);
    for (const char* bad : {"3184\n", "3184 3184\n", "3184 x\n", "3184 3180\n3184 3181\n", "0 5\n"})
        EXPECT_FALSE(parseNgcSameObjects(bad, same, error)) << bad;
}

TEST(ListMembers, WrittenFilesAreCheckedRecordByRecord) {
    TempFolder folder;
    const auto path = folder.path() / kListMemberFile;
    const auto checkMembers = [&](const std::vector<ListMemberRecord>& members, uint32_t version = kListMemberFileVersion) {
        EXPECT_TRUE(writeWholeFile(path, recordFileBytes<ListMemberRecord>(version, members)));
        std::string error;
        return checkListMemberFile(path, 100, error);
    };
    EXPECT_TRUE(checkMembers({{25, 1, 5, 40}, {25, 3, 6, 136}, {49, 1, 5, 40}}));
    EXPECT_FALSE(checkMembers({{25, 1, 100, 40}})) << "record beyond the object file";
    EXPECT_FALSE(checkMembers({{25, 2, 5, 40}, {25, 2, 6, 136}})) << "rank not increasing";
    EXPECT_FALSE(checkMembers({{25, 1, 5, 40}, {49, 1, 5, 40}, {25, 2, 6, 136}})) << "a list split in two";
    EXPECT_FALSE(checkMembers({{42, 1, 5, 40}})) << "not a list code";
    EXPECT_FALSE(checkMembers({{25, 1, 5, 40}}, 2)) << "wrong version";

    const auto showerPath = folder.path() / kMeteorShowerFile;
    std::vector<MeteorShowerRecord> showers;
    std::string error;
    ASSERT_TRUE(parseMeteorShowerTable(meteorShowerTable(), showers, error));
    EXPECT_TRUE(writeWholeFile(showerPath, recordFileBytes<MeteorShowerRecord>(kMeteorShowerFileVersion, showers)));
    EXPECT_TRUE(checkMeteorShowerFile(showerPath, error)) << error;
    showers[3].peakMonth = 13;
    EXPECT_TRUE(writeWholeFile(showerPath, recordFileBytes<MeteorShowerRecord>(kMeteorShowerFileVersion, showers)));
    EXPECT_FALSE(checkMeteorShowerFile(showerPath, error));
    EXPECT_EQ(error, "nocturnel_meteor_showers.ppc: record 3 out of range");
}

}  // namespace
}  // namespace nocturnel
