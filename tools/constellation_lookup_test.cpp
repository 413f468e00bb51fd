// Constellation membership from the real boundary polygons of the test excerpt.
#include "tools/constellation_lookup.h"

#include <gtest/gtest.h>

#include "tools/builder_test_sources.h"
#include "tools/record_io.h"

namespace nocturnel {
namespace {

std::vector<ConstellationSource> excerpt() {
    const auto folder = testing::testDataFolder() / "d3-celestial/data";
    std::string names, lines, bounds, error;
    std::vector<ConstellationSource> c;
    if (!readWholeFile(folder / "constellations.json", names) || !readWholeFile(folder / "constellations.lines.json", lines) ||
        !readWholeFile(folder / "constellations.bounds.json", bounds) || !parseConstellations(names, lines, bounds, c, error))
        ADD_FAILURE() << "cannot read the constellation excerpt: " << error;
    return c;
}

TEST(ConstellationLookup, RealStarsFallInTheirConstellations) {
    const auto constellations = excerpt();
    ASSERT_EQ(constellations.size(), 10u);
    const ConstellationFinder finder(constellations);
    const struct {
        const char* star;
        double raDeg, decDeg;
        const char* expected;  // nullptr: outside the excerpt's constellations
    } cases[] = {
        {"Vega", 279.2347, 38.7837, "Lyr"},
        {"Sirius", 101.2872, -16.7161, "CMa"},
        {"Polaris", 37.9545, 89.2641, "UMi"},
        {"north celestial pole", 200.0, 89.99, "UMi"},
        {"sigma Octantis", 317.1952, -88.9565, "Oct"},
        {"south celestial pole", 10.0, -89.99, "Oct"},
        {"Alpheratz", 2.0969, 29.0904, "And"},
        {"Andromeda Galaxy", 10.6847, 41.2688, "And"},
        {"Betelgeuse", 88.7929, 7.4071, "Ori"},
        {"Arcturus", 213.9153, 19.1824, "Boo"},
        {"Rigil Kentaurus", 219.9021, -60.8340, "Cen"},
        {"Unukalhai (Serpens Caput)", 236.0670, 6.4256, "Ser"},
        {"eta Serpentis (Serpens Cauda)", 275.3275, -2.8988, "Ser"},
        {"Deneb (Cygnus)", 310.3580, 45.2803, nullptr},
        {"Spica (Virgo)", 201.2982, -11.1613, nullptr},
    };
    for (const auto& c : cases) {
        for (int fast = 0; fast < 2; ++fast) {
            const int found = fast ? finder.at(c.raDeg, c.decDeg) : constellationAt(constellations, c.raDeg, c.decDeg);
            if (!c.expected) {
                EXPECT_EQ(found, -1) << c.star;
            } else {
                ASSERT_GE(found, 0) << c.star;
                EXPECT_EQ(constellations[found].abbreviation, c.expected) << c.star;
            }
        }
    }
}

TEST(ConstellationLookup, MergesTheTwoPartsOfSerpens) {
    const auto constellations = excerpt();
    const auto ser = std::find_if(constellations.begin(), constellations.end(),
                                  [](const ConstellationSource& c) { return c.abbreviation == "Ser"; });
    ASSERT_NE(ser, constellations.end());
    EXPECT_EQ(ser->name, "Serpens");
    EXPECT_EQ(ser->bounds.size(), 2u);
}

}  // namespace
}  // namespace nocturnel
