// Rise, transit and set, twilight, the Moon's phases, events and magnitudes against Swiss
// Ephemeris (swetest), skipped when swetest is absent. Ledger: one line per checked value.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "core/astro_constants.h"
#include "core/body_physical.h"
#include "core/delta_t_model.h"
#include "core/ecliptic_place.h"
#include "core/moon_phases.h"
#include "core/planet_events.h"
#include "core/planet_series_format.h"
#include "core/rise_set.h"
#include "core/swetest_reference.h"
#include "core/time.h"
#include "core/twilight.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

bool loadTestSeries() {
    const char* dir = std::getenv("NOCTURNEL_TEST_DATA");
    if (!dir) return false;
    const std::filesystem::path file = std::filesystem::path(dir) / kPlanetSeriesFileName;
    return std::filesystem::exists(file) && loadPlanetSeriesFrom(file);
}

#define REQUIRE_REFERENCE()                                                                              \
    if (!test::swetestAvailable()) GTEST_SKIP() << test::kSwetestSkip;                                   \
    if (!loadTestSeries()) GTEST_SKIP() << "no nocturnel_planets.ppc in NOCTURNEL_TEST_DATA: run make-catalogs.sh"; \
    prefs().deltaTFormula = kDeltaTJplHorizon

constexpr double kMinute = 1.0 / 1440.0;

// "23.11.2026" "07:25:29.4" -> UT Julian date.
double swetestTime(const std::string& date, const std::string& time) {
    int d = 0, m = 0, y = 0, hh = 0, mm = 0;
    double ss = 0.0;
    std::sscanf(date.c_str(), "%d.%d.%d", &d, &m, &y);
    std::sscanf(time.c_str(), "%d:%d:%lf", &hh, &mm, &ss);
    return julianDayAtMidnight(y, m, d) + (hh + mm / 60.0 + ss / 3600.0) / 24.0;
}

// A swetest quantity of one body at a TT date ("l" longitude, "a" RA degrees, "h" altitude...).
double swetestValue(const std::string& args) {
    const auto lines = test::runSwetest(args + " -head");
    return lines.empty() || lines[0].size() < 2 ? NAN : std::stod(lines[0].back());
}

struct Site {
    const char* name;
    double lonEast, lat;
};
constexpr Site kSites[] = {{"Chartres", -1.8, 48.1}, {"Sydney", 151.2, -33.9}, {"Oslo", 10.75, 59.9}};
struct Day {
    int y, m, d;
};
constexpr Day kDays[] = {{1950, 2, 1}, {1987, 6, 21}, {2026, 11, 23}, {2061, 3, 9}};

// Tolerance 1 minute for rise, transit and set, with the reference's conventions: the upper
// limb (our centre at -34' less the semi-diameter), refraction at the horizon 34' (swetest's
// standard atmosphere gives about 35', a few seconds of time at these latitudes).
TEST(SolarEventsReference, RiseTransitSetWithinAMinute) {
    REQUIRE_REFERENCE();
    const int bodies[] = {0, 1, 2, 3, 4, 5};  // Sun, Moon, Mercury, Venus, Mars, Jupiter (swetest numbers)
    const SolarBody ours[] = {SolarBody::Sun, SolarBody::Moon, SolarBody::Mercury, SolarBody::Venus, SolarBody::Mars, SolarBody::Jupiter};
    int compared = 0;
    for (const Site& site : kSites)
        for (const Day& day : kDays)
            for (int i = 0; i < 6; ++i) {
                const double jd0 = julianDayAtMidnight(day.y, day.m, day.d);
                const SiteInfo info{site.lat, site.lonEast, 0.0, 15.0, 1013.25};
                BodyPlace place;
                ASSERT_EQ(geocentricPlace(ours[i], jd0 + 0.5, &place), 0);
                RiseSetTimes times;
                ASSERT_EQ(riseTransitSet(bodyTrack(ours[i]), jd0, riseSetAltitudeDeg(ours[i], 0.0, place.distanceAu), info, &times), 0);
                char args[200];
                std::snprintf(args, sizeof args, "-b%d.%d.%d -ut0 -p%d -rise -geopos%.4f,%.4f,0 -n2", day.d, day.m, day.y,
                              bodies[i], site.lonEast, site.lat);
                bool riseSeen = false, setSeen = false;  // only the day's first of each
                for (const auto& w : test::runSwetest(args)) {
                    if (w.size() < 4 || w[0] != "rise") continue;
                    // rise DATE TIME set DATE TIME, either pair may be "- -".
                    const size_t setAt = 3;
                    if (w[1] != "-") {
                        const double ref = swetestTime(w[1], w[2]);
                        if (ref >= jd0 && ref < jd0 + 1 && times.riseJdUt && !riseSeen) {
                            riseSeen = true;
                            EXPECT_NEAR(*times.riseJdUt, ref, kMinute) << site.name << " " << day.y << " rise " << solarBodyName(ours[i]);
                            ++compared;
                        }
                    }
                    if (w.size() >= setAt + 3 && w[setAt] == "set" && w[setAt + 1] != "-") {
                        const double ref = swetestTime(w[setAt + 1], w[setAt + 2]);
                        if (ref >= jd0 && ref < jd0 + 1 && times.setJdUt && !setSeen) {
                            setSeen = true;
                            EXPECT_NEAR(*times.setJdUt, ref, kMinute) << site.name << " " << day.y << " set " << solarBodyName(ours[i]);
                            ++compared;
                        }
                    }
                }
                std::snprintf(args, sizeof args, "-b%d.%d.%d -ut0 -p%d -metr -geopos%.4f,%.4f,0 -n1", day.d, day.m, day.y,
                              bodies[i], site.lonEast, site.lat);
                for (const auto& w : test::runSwetest(args))
                    if (w.size() >= 3 && w[0] == "mtransit" && w[1] != "-") {
                        const double ref = swetestTime(w[1], w[2]);
                        if (ref >= jd0 && ref < jd0 + 1 && times.transitJdUt) {
                            EXPECT_NEAR(*times.transitJdUt, ref, kMinute) << site.name << " " << day.y << " transit " << solarBodyName(ours[i]);
                            ++compared;
                        }
                    }
            }
    EXPECT_GT(compared, 150);
}

// Twilight within 1 minute: swetest's geometric altitude of the Sun's centre brackets the
// twilight altitude between our time - 1 min and + 1 min.
TEST(SolarEventsReference, TwilightWithinAMinute) {
    REQUIRE_REFERENCE();
    int compared = 0;
    for (const Site& site : kSites)
        for (const Day& day : kDays) {
            const double jd0 = julianDayAtMidnight(day.y, day.m, day.d);
            TwilightTimes t;
            ASSERT_EQ(twilightForDay(jd0, SiteInfo{site.lat, site.lonEast, 0.0, 15.0, 1013.25}, 0.0, &t), 0);
            const std::pair<const RiseSetTimes*, double> kinds[] = {
                {&t.civil, kCivilTwilightDeg}, {&t.nautical, kNauticalTwilightDeg}, {&t.astronomical, kAstronomicalTwilightDeg}};
            for (const auto& [times, altitude] : kinds)
                for (const auto& when : {times->riseJdUt, times->setJdUt}) {
                    if (!when) continue;
                    double h[2];
                    for (int k = 0; k < 2; ++k) {
                        char args[200];
                        std::snprintf(args, sizeof args, "-bj%.8f -ut -p0 -fPh -geopos%.4f,%.4f,0 -topo%.4f,%.4f,0",
                                      *when + (k ? kMinute : -kMinute), site.lonEast, site.lat, site.lonEast, site.lat);
                        h[k] = swetestValue(args);
                    }
                    EXPECT_LE((h[0] - altitude) * (h[1] - altitude), 0.0)
                        << site.name << " " << day.y << " " << altitude << ": " << h[0] << " " << h[1];
                    ++compared;
                }
        }
    EXPECT_GT(compared, 50);
}

// Phases within 1 minute: swetest's Moon - Sun longitude difference brackets the quarter
// between our time - 1 min and + 1 min (the difference moves 0.0085 degree a minute).
TEST(SolarEventsReference, MoonPhasesWithinAMinute) {
    REQUIRE_REFERENCE();
    int compared = 0;
    for (double start : {2415400.5, 2433000.5, 2451000.5, 2461368.5, 2488000.5}) {
        for (const MoonPhaseEvent& p : nextMoonPhases(start, 4)) {
            double diff[2];
            for (int k = 0; k < 2; ++k) {
                char args[120];
                const double jdTt = p.jdUt + (k ? kMinute : -kMinute) + modelDeltaTSeconds(p.jdUt) / kSecondsPerDay;
                std::snprintf(args, sizeof args, "-bj%.8f -p1 -fPl", jdTt);
                const double moon = swetestValue(args);
                std::snprintf(args, sizeof args, "-bj%.8f -p0 -fPl", jdTt);
                diff[k] = wrap180(moon - swetestValue(args) - 90.0 * p.quarter);
            }
            EXPECT_LE(diff[0] * diff[1], 0.0) << moonPhaseName(p.quarter) << " " << p.jdUt;
            ++compared;
        }
    }
    EXPECT_EQ(compared, 20);
}

// Events within 10 minutes: the reference quantity changes sign between our time - 10 min and
// + 10 min (equinoxes and solstices: the Sun's longitude; oppositions: planet - Sun longitude
// - 180; conjunctions: the difference in right ascension), or has its extremum there
// (perigee, apogee, perihelion, aphelion: the distance; greatest elongation: the elongation;
// stations: the longitude).
TEST(SolarEventsReference, EventsWithinTenMinutes) {
    REQUIRE_REFERENCE();
    // Short windows of 2027 around the equinoxes, solstices and four oppositions keep it fast.
    std::vector<PlanetEvent> events;
    const Day windows[] = {{2027, 1, 2},  {2027, 1, 6},  {2027, 1, 9},  {2027, 1, 20}, {2027, 2, 2},   {2027, 2, 8},
                           {2027, 2, 17}, {2027, 3, 18}, {2027, 6, 19}, {2027, 9, 21}, {2027, 10, 16}, {2027, 12, 20}};
    for (const Day& w : windows) {
        const double from = julianDayAtMidnight(w.y, w.m, w.d);
        for (const PlanetEvent& e : findPlanetEvents(from, from + 5.0)) events.push_back(e);
    }
    auto swissNumber = [](const std::string& name) {
        static const char* kNames[] = {"Sun", "Moon", "Mercury", "Venus", "Mars", "Jupiter", "Saturn", "Uranus", "Neptune", "Pluto"};
        for (int i = 0; i < 10; ++i)
            if (name == kNames[i]) return i;
        return -1;
    };
    int compared = 0, oppositions = 0, equinoxes = 0, conjunctions = 0, extrema = 0;
    for (const PlanetEvent& e : events) {
        if (e.kind == "conjunction" && ++conjunctions > 10) continue;  // enough for a ledger, fast enough for CI
        const double offsets[] = {-10 * kMinute, 0.0, 10 * kMinute};
        double f[3];
        for (int k = 0; k < 3; ++k) {
            const double jdTt = e.jdUt + offsets[k] + modelDeltaTSeconds(e.jdUt) / kSecondsPerDay;
            char args[160];
            auto value = [&](int body, const char* format, const char* extra = "") {
                std::snprintf(args, sizeof args, "-bj%.8f -p%d -fP%s -ep %s", jdTt, body, format, extra);
                return swetestValue(args);
            };
            const int body = e.bodies[0] == "Earth" ? 0 : swissNumber(e.bodies[0]);
            if (e.kind == "equinox" || e.kind == "solstice") {
                const double lon = value(0, "l");
                f[k] = wrap180(lon - 90.0 * std::round(lon / 90.0));
            } else if (e.kind == "opposition") {
                f[k] = wrap180(value(body, "l") - value(0, "l") - 180.0);
            } else if (e.kind == "conjunction") {
                f[k] = wrap180(value(body, "a") - value(swissNumber(e.bodies[1]), "a"));
            } else if (e.kind == "perigee" || e.kind == "apogee") {
                f[k] = value(1, "R");
            } else if (e.kind == "perihelion" || e.kind == "aphelion") {
                f[k] = body == 0 ? value(0, "R") : value(body, "R", "-hel");
            } else if (e.kind == "greatestElongation") {
                f[k] = separationDeg(value(body, "a") / 15.0, value(body, "d"), value(0, "a") / 15.0, value(0, "d"));
            } else if (e.kind == "station") {
                f[k] = value(body, "l");
            }
        }
        if (e.kind == "equinox" || e.kind == "solstice" || e.kind == "opposition" || e.kind == "conjunction") {
            // A sign change between -10 and +10 minutes.
            EXPECT_LE(f[0] * f[2], 0.0) << e.kind << " " << e.bodies[0] << " " << e.jdUt;
            oppositions += e.kind == "opposition";
            equinoxes += e.kind == "equinox" || e.kind == "solstice";
        } else {
            // The extremum lies between -10 and +10 minutes: the middle value is beyond both ends
            // (stations: the longitude turns).
            const bool isMax = e.kind == "apogee" || e.kind == "aphelion" || e.kind == "greatestElongation";
            if (e.kind == "station")
                EXPECT_LE((f[1] - f[0]) * (f[2] - f[1]), 0.0) << e.kind << " " << e.bodies[0] << " " << e.jdUt;
            else if (isMax)
                EXPECT_TRUE(f[1] >= f[0] && f[1] >= f[2]) << e.kind << " " << e.bodies[0] << " " << e.jdUt;
            else
                EXPECT_TRUE(f[1] <= f[0] && f[1] <= f[2]) << e.kind << " " << e.bodies[0] << " " << e.jdUt;
            ++extrema;
        }
        ++compared;
    }
    EXPECT_GE(extrema, 6);  // Earth's perihelion, apogee, Mars' station, perigee, Mercury's elongation and perihelion
    EXPECT_EQ(equinoxes, 4);
    EXPECT_EQ(oppositions, 3);  // Jupiter, Mars, Saturn
    EXPECT_GE(compared, 15);
}

// Magnitudes: the published formulas (Mallama & Hilton 2018) as swetest implements them.
struct MagnitudeTolerance {
    SolarBody body;
    double mag;
    const char* reason;
};
constexpr MagnitudeTolerance kMagnitudeTolerances[] = {
    {SolarBody::Moon, 0.05, "Allen's phase law, as swetest"},
    {SolarBody::Mercury, 0.05, "Mallama & Hilton 2018"},
    {SolarBody::Venus, 0.05, "Mallama & Hilton 2018"},
    {SolarBody::Mars, 0.05, "Mallama & Hilton 2018 without the small rotation terms"},
    {SolarBody::Jupiter, 0.05, "Mallama & Hilton 2018"},
    {SolarBody::Saturn, 0.05, "Mallama & Hilton 2018, rings by the sub-observer latitude"},
    {SolarBody::Uranus, 0.07, "swetest takes the sub-latitude term at a fixed value"},
    {SolarBody::Neptune, 0.05, "Mallama & Hilton 2018"},
    {SolarBody::Pluto, 0.07, "swetest leaves out the phase term 0.041 alpha"},
};

TEST(SolarEventsReference, MagnitudesMatchThePublishedFormulas) {
    REQUIRE_REFERENCE();
    for (double jd : {2433282.5, 2440000.5, 2451545.0, 2461368.0, 2470000.5}) {
        char args[120];
        std::snprintf(args, sizeof args, "-bj%.6f -p1234567890 -fP= -head", jd);
        const auto lines = test::runSwetest(args);
        ASSERT_EQ(lines.size(), 10u);
        for (const MagnitudeTolerance& t : kMagnitudeTolerances) {
            const auto& w = lines[static_cast<int>(t.body) - 1];
            ASSERT_EQ(w[0], solarBodyName(t.body));
            const double ref = std::stod(w[1]);
            BodyPlace place;
            ASSERT_EQ(geocentricPlace(t.body, jd, &place), 0);
            EXPECT_NEAR(bodyPhysical(t.body, place).magnitude, ref, t.mag) << w[0] << " " << jd << " (" << t.reason << ")";
        }
    }
}

}  // namespace
}  // namespace nocturnel
