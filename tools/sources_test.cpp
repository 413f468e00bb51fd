// The source parsers: each real format accepted, and each kind of damage refused with a reason.
#include "tools/sources.h"

#include <gtest/gtest.h>

#include <numbers>

#include "tools/builder_test_sources.h"

namespace nocturnel {
namespace {

TEST(HipparcosSource, ReadsFeaturesAndUnwrapsLongitude) {
    const std::string json =
        R"({"type":"FeatureCollection","features":[)"
        R"({"type":"Feature","id":91262,"properties":{"mag":0.03,"bv":"-0.001"},"geometry":{"type":"Point","coordinates":[-80.7653,38.7837]}},)"
        R"({"type":"Feature","id":45,"properties":{"mag":"9.59","bv":""},"geometry":{"type":"Point","coordinates":[0.1339,-72.2027]}}]})";
    std::vector<HipparcosStar> stars;
    std::string error;
    ASSERT_TRUE(parseHipparcosStars(json, stars, error)) << error;
    ASSERT_EQ(stars.size(), 2u);
    EXPECT_EQ(stars[0].hip, 91262);
    EXPECT_NEAR(stars[0].raDeg, 279.2347, 1e-9);
    EXPECT_NEAR(stars[0].decDeg, 38.7837, 1e-9);
    EXPECT_NEAR(stars[0].mag, 0.03, 1e-12);
    EXPECT_TRUE(stars[0].hasBv);
    EXPECT_NEAR(stars[0].bv, -0.001, 1e-12);
    EXPECT_NEAR(stars[1].mag, 9.59, 1e-12);  // magnitudes as strings are read too
    EXPECT_FALSE(stars[1].hasBv);
}

TEST(HipparcosSource, RefusesDamagedInput) {
    const std::string head = R"({"type":"FeatureCollection","features":[)";
    const struct {
        std::string json;
        const char* error;
    } cases[] = {
        {"", "not valid JSON"},
        {R"({"type":"FeatureCollection"})", "no \"features\" array"},
        {head + "]}", "no stars"},
        {head + R"({"id":1,"properties":{"mag":1},"geometry":{"coordinates":[1]}}]})", "star 1 lacks a number, position or magnitude"},
        {head + R"({"id":"1","properties":{"mag":1},"geometry":{"coordinates":[1,2]}}]})", "star 1 lacks a number, position or magnitude"},
        {head + R"({"id":1,"properties":{"mag":1},"geometry":{"coordinates":[1,95]}}]})", "star 1 lacks a number, position or magnitude"},
        {head + R"({"id":1,"properties":{"mag":"bright"},"geometry":{"coordinates":[1,2]}}]})", "star 1 lacks a number, position or magnitude"},
        {head + R"({"id":1,"properties":5,"geometry":{"coordinates":[1,2]}}]})", "star 1 lacks a number, position or magnitude"},
        {head + R"({"id":130000,"properties":{"mag":1},"geometry":{"coordinates":[1,2]}}]})", "HIP number out of range: 130000"},
    };
    for (const auto& c : cases) {
        std::vector<HipparcosStar> stars;
        std::string error;
        EXPECT_FALSE(parseHipparcosStars(c.json, stars, error)) << c.json;
        EXPECT_EQ(error, c.error) << c.json;
    }
}

TEST(StarNamesSource, ReadsNamesDesignationsAndHdNumbers) {
    const std::string json =
        "{\"91262\":{\"name\":\"Vega\",\"bayer\":\"\xCE\xB1\",\"flam\":\"3\",\"hd\":\"HD\xE2\x80\x89" "172167\",\"c\":\"Lyr\"},"
        "\"63\":{\"name\":\"\",\"bayer\":\"\",\"flam\":\"\",\"hd\":\"HD 224801\",\"c\":\"And\"},\"1547\":{\"c\":\"Ori\"}}";
    std::map<int32_t, StarNames> names;
    std::string error;
    ASSERT_TRUE(parseStarNames(json, names, error)) << error;
    ASSERT_EQ(names.size(), 3u);
    EXPECT_EQ(names[91262].name, "Vega");
    EXPECT_EQ(names[91262].bayer, "\xCE\xB1");
    EXPECT_EQ(names[91262].hd, 172167);
    EXPECT_EQ(names[63].hd, 224801);
    EXPECT_EQ(names[1547].hd, 0);
    EXPECT_EQ(names[1547].constellation, "Ori");
    EXPECT_FALSE(parseStarNames(R"({"abc":{}})", names, error));
    EXPECT_EQ(error, "bad entry \"abc\"");
    EXPECT_FALSE(parseStarNames("[1,2]", names, error));
}

TEST(BrightStarCatalogueSource, ReadsXplanetLines) {
    const std::string text =
        "# From the Bright Star Catalogue, 5th Revised Ed.,\n\n"
        "#    Dec      RA   Mag         Name  BSN     HD    SAO\n"
        "-16.7161  6.7525 -1.46 \"  9Alp CMa\" 2491  48915 151881\n"
        " 38.7836 18.6156  0.03 \"  3Alp Lyr\" 7001 172167  67174\r\n"
        "-60.8356 14.6600  1.33 \"   Alp2Cen\" 5460 128621      0\n";
    std::vector<BrightStarCatalogueStar> stars;
    std::string error;
    ASSERT_TRUE(parseBrightStarCatalogue(text, stars, error)) << error;
    ASSERT_EQ(stars.size(), 3u);
    EXPECT_EQ(stars[0].hr, 2491);
    EXPECT_NEAR(stars[0].decDeg, -16.7161, 1e-12);
    EXPECT_NEAR(stars[0].raHours, 6.7525, 1e-12);
    EXPECT_NEAR(stars[0].mag, -1.46, 1e-12);
    EXPECT_EQ(stars[0].name, "  9Alp CMa");
    EXPECT_EQ(stars[1].hd, 172167);
    EXPECT_EQ(stars[2].hd, 128621);
}

TEST(BrightStarCatalogueSource, RefusesDamagedLines) {
    const struct {
        const char* text;
        const char* error;
    } cases[] = {
        {"", "no stars"},
        {"# only a comment\n", "no stars"},
        {" 38.7836 18.6156  0.03 Vega 7001 172167 67174\n", "line 1 is not \"Dec RA Mag \\\"name\\\" HR HD SAO\""},
        {" 38.7836 18.6156  0.03 \"  3Alp Lyr\" 7001 172167\n", "line 1 is not \"Dec RA Mag \\\"name\\\" HR HD SAO\""},
        {" 98.7836 18.6156  0.03 \"  3Alp Lyr\" 7001 172167 67174\n", "line 1 is not \"Dec RA Mag \\\"name\\\" HR HD SAO\""},
        {" 38.7836 24.6156  0.03 \"  3Alp Lyr\" 7001 172167 67174\n", "line 1 is not \"Dec RA Mag \\\"name\\\" HR HD SAO\""},
        {" 38.7836 18.6156  0.03 \"  3Alp Lyr\" 7001 172167 67174 x\n", "line 1 is not \"Dec RA Mag \\\"name\\\" HR HD SAO\""},
        {"#\n 38.7836 18.6156  0.03 \"  3Alp Lyr\" 7001 172167 67174\n 38.7836 18.6156  0.03 \"  3Alp Lyr\" 7001 172167 67174\n",
         "line 3: HR 7001 appears twice"},
    };
    for (const auto& c : cases) {
        std::vector<BrightStarCatalogueStar> stars;
        std::string error;
        EXPECT_FALSE(parseBrightStarCatalogue(c.text, stars, error)) << c.text;
        EXPECT_EQ(error, c.error) << c.text;
    }
}

TEST(StellariumSource, WriterAndReaderAgreeFieldByField) {
    const StellariumCatalogue original = testing::smallDsoCatalogue();
    const std::string bytes = writeStellariumCatalogue(original);
    // The stream starts with the version string: length 8, UTF-16BE "3.16".
    EXPECT_EQ(bytes.substr(0, 12), std::string("\0\0\0\x08\0" "3\0.\0" "1\0" "6", 12));
    StellariumCatalogue read;
    std::string error;
    ASSERT_TRUE(parseStellariumCatalogue(bytes, read, error)) << error;
    EXPECT_EQ(read.version, "3.16");
    EXPECT_EQ(read.edition, "standard");
    ASSERT_EQ(read.objects.size(), original.objects.size());
    const StellariumObject& m31 = read.objects[0];
    EXPECT_EQ(m31.id, 255u);
    EXPECT_DOUBLE_EQ(m31.raRad, original.objects[0].raRad);
    EXPECT_EQ(m31.morphology, "SA(s)b");
    EXPECT_EQ(m31.ngc, 224u);
    EXPECT_EQ(m31.messier, 31u);
    EXPECT_EQ(m31.ugc, 454u);
    EXPECT_EQ(read.objects[1].collinder, 42u);
    EXPECT_EQ(read.objects[1].melotte, 22u);
    EXPECT_EQ(read.objects.back().abell, "S 0373");
    // Gzip round trip.
    std::string inflated;
    ASSERT_TRUE(gunzip(gzipBytes(bytes), inflated, error)) << error;
    EXPECT_EQ(inflated, bytes);
}

TEST(StellariumSource, RefusesDamagedStreams) {
    const std::string good = writeStellariumCatalogue(testing::smallDsoCatalogue());
    StellariumCatalogue badPosition = testing::smallDsoCatalogue();
    badPosition.objects[2].decRad = 2.0;
    StellariumCatalogue empty{"3.16", "standard", {}};
    const struct {
        const char* what;
        std::string bytes;
        const char* error;
    } cases[] = {
        {"empty", "", "no version header"},
        {"odd string length", std::string("\0\0\0\x03" "abc", 7), "no version header"},
        {"header only", writeStellariumCatalogue(empty), "no objects"},
        {"cut in the last record", good.substr(0, good.size() - 1), "is truncated"},
        {"impossible declination", writeStellariumCatalogue(badPosition), "record 7000 has an impossible position or magnitude"},
    };
    for (const auto& c : cases) {
        StellariumCatalogue read;
        std::string error;
        EXPECT_FALSE(parseStellariumCatalogue(c.bytes, read, error)) << c.what;
        EXPECT_NE(error.find(c.error), std::string::npos) << c.what << ": " << error;
    }
    std::string out, error;
    EXPECT_FALSE(gunzip("plain text, not gzip at all", out, error));
    EXPECT_EQ(error, "not a gzip file");
    const std::string zipped = gzipBytes(good);
    EXPECT_FALSE(gunzip(zipped.substr(0, zipped.size() / 2), out, error));
    EXPECT_EQ(error, "gzip data is truncated or corrupt");
}

TEST(StellariumSource, NamesByCatalogueAndNumber) {
    const std::string text =
        "# Stellarium DSO Catalog Names\n"
        "NGC  224             _(\"Andromeda Galaxy\") # NED\n"
        "NGC  224             _(\"Great Spiral\") # PAS\n"
        "Sh2  155             _(\"Cave Nebula\")\n";
    std::map<std::string, std::vector<std::string>> names;
    std::string error;
    ASSERT_TRUE(parseStellariumNames(text, names, error)) << error;
    EXPECT_EQ(names["NGC 224"], (std::vector<std::string>{"Andromeda Galaxy", "Great Spiral"}));
    EXPECT_EQ(names["SH2 155"], (std::vector<std::string>{"Cave Nebula"}));
    EXPECT_FALSE(parseStellariumNames("NGC  224             Andromeda Galaxy\n", names, error));
    EXPECT_EQ(error, "line 1 is not \"prefix id _(\\\"name\\\")\"");
}

TEST(Tycho2Source, ReadsTheCatalogueLayout) {
    const std::string first =
        "0001 00008 1| |  2.31750494|  2.23184345|  -16.3|   -9.0| 68| 73| 1.7| 1.8|1958.89|1951.94| 4|1.0|1.0|0.9|1.0|"
        "12.146|0.158|12.146|0.223|999| |         |  2.31754222|  2.23186444|1.67|1.54| 88.0|100.8| |-0.2";
    TychoStar star;
    bool primary = false;
    std::string error;
    ASSERT_TRUE(parseTycho2Line(first, star, primary, error)) << error;
    EXPECT_TRUE(primary);
    EXPECT_EQ(star.region, 1);
    EXPECT_EQ(star.number, 8);
    EXPECT_DOUBLE_EQ(star.raDeg, 2.31750494);
    EXPECT_DOUBLE_EQ(star.decDeg, 2.23184345);
    EXPECT_DOUBLE_EQ(star.vMag, 12.146);
    EXPECT_TRUE(star.hasBv);
    EXPECT_DOUBLE_EQ(star.bv, 0.0);

    const std::string noMean =
        "4628 00237 1|X|            |            |       |       |   |   |    |    |       |       | 4|   |   |   |   |"
        "      |     |11.774|0.223|999| |         | 14.63003167|-75.66420806|1.67|1.54| 88.0|100.8| |-0.2";
    ASSERT_TRUE(parseTycho2Line(noMean, star, primary, error)) << error;
    EXPECT_DOUBLE_EQ(star.raDeg, 14.63003167);
    EXPECT_DOUBLE_EQ(star.decDeg, -75.66420806);
    EXPECT_FALSE(star.hasBv);
    EXPECT_DOUBLE_EQ(star.vMag, 11.774);

    std::string second = first;
    second[11] = '2';
    ASSERT_TRUE(parseTycho2Line(second, star, primary, error));
    EXPECT_FALSE(primary);

    const struct {
        std::string line;
        const char* error;
    } bad[] = {
        {"0001 00008 1| |  2.3", "fewer than 26 fields"},
        {"0000 00008 1" + first.substr(12), "bad Tycho identifier \"0000 00008 1\""},
        {first.substr(0, 15) + "362.31750494" + first.substr(27), "bad position"},
        {first.substr(0, 110) + "      |     |      " + first.substr(129), "no magnitude"},
    };
    for (const auto& c : bad) {
        EXPECT_FALSE(parseTycho2Line(c.line, star, primary, error)) << c.line;
        EXPECT_EQ(error, c.error) << c.line;
    }
}

}  // namespace
}  // namespace nocturnel
