#include "catalog/constellations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "catalog/catalog_test_support.h"
#include "settings/message.h"

namespace nocturnel {
namespace {
using test::CatalogFolderTest;

ConstellationRecord record(const char* abbreviation, uint16_t firstBoundary, uint16_t boundaryCount) {
    ConstellationRecord r{};
    std::strncpy(r.abbreviation, abbreviation, sizeof r.abbreviation);
    std::strncpy(r.name, abbreviation, sizeof r.name);
    r.firstBoundary = firstBoundary;
    r.boundaryCount = boundaryCount;
    return r;
}

// Four regions: a box, a box across 0h, a cap round the north pole and a cap round the south pole.
ConstellationData sampleSky() {
    ConstellationData sky;
    sky.boundaries = {
        {1, 10}, {3, 10}, {3, 20}, {1, 20},                              // 0: box RA 1..3 h, Dec 10..20
        {23, -5}, {1, -5}, {1, 5}, {23, 5},                              // 1: box across 0 h
        {0, 80}, {6, 80}, {12, 80}, {18, 80},                            // 2: north cap above +80
        {0, -75}, {18, -75}, {12, -75}, {6, -75},                        // 3: south cap below -75 (other way round)
    };
    sky.constellations = {record("Box", 0, 4), record("Wrp", 4, 4), record("Nth", 8, 4), record("Sth", 12, 4)};
    return sky;
}

TEST(ConstellationOf, PointsInBoxesWrapsAndPolarCaps) {
    const ConstellationData sky = sampleSky();
    struct Case {
        double raHours, decDeg;
        int expected;
    };
    const Case cases[] = {
        {2, 15, 0},     {1.01, 10.5, 0}, {2.99, 19.9, 0}, {0.99, 15, -1},  {3.01, 15, -1},  {2, 20.1, -1},
        {2, 9.9, -1},   {23.5, 0, 1},    {0.5, 0, 1},     {0, 4.9, 1},     {24.0, 0, 1},    {-0.5, 0, 1},
        {22.9, 0, -1},  {1.1, 0, -1},    {12, 85, 2},     {3, 89.99, 2},   {17, 80.5, 2},   {12, 79, -1},
        {9, -80, 3},    {0, -89.9, 3},   {21, -75.5, 3},  {9, -74, -1},    {2, 90, 2},      {2, -90, 3},
    };
    for (const Case& c : cases)
        EXPECT_EQ(constellationOfIn(sky, c.raHours, c.decDeg), c.expected) << c.raHours << " " << c.decDeg;
}

TEST(ConstellationOf, UnusablePlacesAndRecords) {
    ConstellationData sky = sampleSky();
    for (double bad : {91.0, -90.5, std::nan("")}) EXPECT_EQ(constellationOfIn(sky, 2, bad), -1);
    EXPECT_EQ(constellationOfIn(sky, std::nan(""), 15), -1);
    sky.constellations[0].boundaryCount = 40;  // runs past the vertex list: skipped
    EXPECT_EQ(constellationOfIn(sky, 2, 15), -1);
    EXPECT_EQ(constellationOfIn(ConstellationData{}, 2, 15), -1);
}

class ConstellationFileTest : public CatalogFolderTest {};

TEST_F(ConstellationFileTest, ReadsTheThreeFilesOnce) {
    MessageCapture messages;
    ConstellationData data;
    EXPECT_FALSE(readConstellations(data));
    EXPECT_EQ(messages.lastTitle(), "Could not find nocturnel_constellation.ppc");
    EXPECT_EQ(constellationOf(2, 15), -1);
    forgetConstellations();

    const ConstellationData sky = sampleSky();
    test::writeRecords("nocturnel_constellation.ppc", sky.constellations);
    test::writeRecords("nocturnel_constellation_bounds.ppc", sky.boundaries);
    test::writeRecords("nocturnel_constellation_lines.ppc", std::vector<ConstellationSegment>{{1, 2, 3, 4}});
    messages.clear();
    ASSERT_TRUE(readConstellations(data));
    EXPECT_TRUE(messages.messages().empty());
    EXPECT_EQ(data.constellations.size(), 4u);
    EXPECT_EQ(data.boundaries.size(), 16u);
    ASSERT_EQ(data.segments.size(), 1u);
    EXPECT_FLOAT_EQ(data.segments[0].decDeg2, 4);
    EXPECT_EQ(constellationOf(23.5, 0), 1);
    EXPECT_STREQ(constellations().constellations[1].abbreviation, "Wrp");
}

}  // namespace
}  // namespace nocturnel
