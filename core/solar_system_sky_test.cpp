// Pluto outside the span of its series (1885-2099): flagged in the sky of a moment, refused
// with a message when asked for by name, nulled in the JSON, left out of the events.
#include "core/solar_system_sky.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "core/astro_constants.h"
#include "core/planet_events.h"
#include "core/planet_series_format.h"
#include "core/pluto_theory.h"
#include "core/solar_system_finder.h"
#include "core/solar_system_json.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

bool loadTestSeries() {
    const char* dir = std::getenv("NOCTURNEL_TEST_DATA");
    if (!dir) return false;
    const std::filesystem::path file = std::filesystem::path(dir) / kPlanetSeriesFileName;
    return std::filesystem::exists(file) && loadPlanetSeriesFrom(file);
}

class PlutoSpan : public ::testing::Test {
protected:
    void SetUp() override {
        if (!loadTestSeries()) GTEST_SKIP() << "no nocturnel_planets.ppc in NOCTURNEL_TEST_DATA: run make-catalogs.sh";
        prefs() = Preferences{};
    }
    static SkyRequest requestAt(double jdUt) {
        SkyRequest r = skyRequestFromPreferences(false);
        r.jdUt = jdUt;
        return r;
    }
};

// The span's edges in TT: 1885 January 1 and 2100 January 1 (a minute of DeltaT either way
// does not matter a day from the edge).
TEST_F(PlutoSpan, OnlyPlutoIsFlaggedAndOnlyOutsideItsSpan) {
    struct Case {
        double jdUt;
        bool outside;
        const char* what;
    } cases[] = {{2396758.5, true, "1850 Jan 1"},       {kPlutoFirstJd - 1.0, true, "1884 Dec 31"},
                 {kPlutoFirstJd + 1.0, false, "1885 Jan 2"}, {2451545.0, false, "J2000"},
                 {kPlutoLastJd - 1.0, false, "2099 Dec 31"}, {kPlutoLastJd + 1.0, true, "2100 Jan 2"},
                 {2524593.5, true, "2200 Jan 1"}};
    for (const Case& c : cases) {
        SolarSystemReport report;
        ASSERT_EQ(solarSystemAt(requestAt(c.jdUt), &report), 0) << c.what;
        ASSERT_EQ(report.bodies.size(), static_cast<size_t>(kSolarBodyCount)) << c.what;
        for (const SolarBodyReport& b : report.bodies)
            EXPECT_EQ(b.outsideTheory, b.body == SolarBody::Pluto && c.outside) << solarBodyName(b.body) << " " << c.what;
    }
}

TEST_F(PlutoSpan, AskedForByNameOutsideItsSpanPlutoIsRefusedWithAMessage) {
    const double jd1850 = 2396758.5;
    MessageCapture capture;
    SolarBodyReport report;
    EXPECT_EQ(solarBodyAt(SolarBody::Pluto, requestAt(jd1850), 0.0, &report), kSolarBodyOutsideTheory);
    ASSERT_EQ(capture.messages().size(), 1u);
    EXPECT_EQ(capture.messages()[0].title, "Pluto is not computed for this date");
    EXPECT_EQ(capture.messages()[0].detail, "Its place is known only from 1885 to 2099.");
    capture.clear();
    SolarSystemFind found;
    EXPECT_FALSE(findSolarSystemBody("pluto", jd1850, &found));
    EXPECT_TRUE(capture.shown("Pluto is not computed for this date"));
    capture.clear();
    // Neptune that year, and Pluto in 1990, are answered without a message.
    EXPECT_TRUE(findSolarSystemBody("Neptune", jd1850, &found));
    EXPECT_TRUE(findSolarSystemBody("Pluto", 2447892.5, &found));
    EXPECT_TRUE(capture.messages().empty());
}

TEST_F(PlutoSpan, JsonKeepsEveryKeyAndNullsAnExtrapolatedPlace) {
    const char* keys[] = {"name", "raGeo", "decGeo", "ra",          "dec",        "alt",  "az",  "mag",
                          "diameterArcsec", "illuminated", "distanceAu", "constellation", "rise", "transit", "set"};
    for (double jdUt : {2396758.5, 2461368.5}) {
        SkyRequest request = requestAt(jdUt);
        request.riseSetDayStartJdUt = jdUt;
        SolarSystemReport report;
        ASSERT_EQ(solarSystemAt(request, &report), 0);
        const nlohmann::json j = planetsJson(report, 0, [](double, double) { return std::string("Sgr"); });
        const bool outside = jdUt < kPlutoFirstJd;
        for (const auto& b : j["bodies"]) {
            const bool pluto = b["name"] == "Pluto";
            for (const char* k : keys) ASSERT_TRUE(b.contains(k)) << k;
            EXPECT_EQ(b["outsideTheory"].get<bool>(), pluto && outside);
            EXPECT_EQ(b["ra"].is_null(), pluto && outside) << b["name"];
            EXPECT_EQ(b["mag"].is_null(), pluto && outside) << b["name"];
            if (!(pluto && outside)) continue;
            for (const char* k : keys) {
                EXPECT_TRUE(std::string(k) == "name" || b[k].is_null()) << k;
            }
        }
    }
}

// Pluto's oppositions come every year (mid-year now); the one of 2100 falls outside the span.
TEST_F(PlutoSpan, EventsLeavePlutoOutOutsideItsSpan) {
    auto plutoOppositions = [](double from, double to) {
        int n = 0;
        for (const PlanetEvent& e : findPlanetEvents(from, to, "opposition"))
            if (e.bodies.size() == 1 && e.bodies[0] == "Pluto") ++n;
        return n;
    };
    EXPECT_EQ(plutoOppositions(2487700.5, 2488069.0), 1);  // 2099 January to December
    EXPECT_EQ(plutoOppositions(2488070.5, 2488434.5), 0);  // 2100
}

}  // namespace
}  // namespace nocturnel
