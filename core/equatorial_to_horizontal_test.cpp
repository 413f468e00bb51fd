// The wrapper every caller uses: its levels, the site and moment taken from the preferences,
// its messages, and its altitude and azimuth against ERFA's IAU 2006/2000A observed place
// (eraApco + eraAtciq + eraAtioq) given the times the pipeline effectively uses.
#include <erfa.h>
#include <gtest/gtest.h>

#include <cmath>

#include "core/apparent_place.h"
#include "core/astro_constants.h"
#include "core/mean_place.h"
#include "core/pipeline_test_support.h"
#include "core/reference_stars_test_data.h"
#include "core/sidereal_time.h"
#include "core/time.h"
#include "settings/message.h"

namespace nocturnel {
namespace {

using test::kReferenceStars;
using test::ReferenceStar;

class EquatorialToHorizontal : public test::PipelineWithSite {};

const ObservingMoment kMoments[] = {
    {1900, 1, 1, 22, 0, 0},  {1950, 6, 15, 23, 30, 0}, {2000, 1, 1, 12, 0, 0},
    {2025, 3, 20, 21, 0, 0}, {2050, 9, 1, 3, 0, 0},    {2100, 12, 31, 20, 0, 0},
};

double jdOf(const ObservingMoment& m) {
    return julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, prefs().utcOffsetMin);
}
double deltaTOf(const ObservingMoment& m) {
    return deltaTForDate(m.year, m.month, m.day);
}

// ERFA's observed azimuth and altitude (no refraction), degrees, of a J2000 place at rest.
void erfaObserved(double raHours, double decDeg, double tt, double ut1, const SiteInfo& site, double* azDeg,
                  double* altDeg) {
    double rnpb[3][3], x, y;
    eraPnm06a(tt, 0.0, rnpb);
    eraBpn2xy(rnpb, &x, &y);
    const double s = eraS06(tt, 0.0, x, y);
    double pvh[2][3], pvb[2][3];
    eraEpv00(tt, 0.0, pvh, pvb);
    eraASTROM astrom;
    eraApco(tt, 0.0, pvb, pvh[0], x, y, s, eraEra00(ut1, 0.0), site.longitudeEastDeg * kDegToRad,
            site.latitudeDeg * kDegToRad, site.heightM, 0.0, 0.0, 0.0, 0.0, 0.0, &astrom);
    double ri, di, aob, zob, hob, dob, rob;
    eraAtciq(raHours * 15.0 * kDegToRad, decDeg * kDegToRad, 0.0, 0.0, 0.0, 0.0, &astrom, &ri, &di);
    eraAtioq(ri, di, &astrom, &aob, &zob, &hob, &dob, &rob);
    *azDeg = aob * kRadToDeg;
    *altDeg = 90.0 - zob * kRadToDeg;
}

double skySeparationArcsec(double az1, double alt1, double az2, double alt2) {
    return eraSeps(az1 * kDegToRad, alt1 * kDegToRad, az2 * kDegToRad, alt2 * kDegToRad) * kArcsecPerRadian;
}

TEST_F(EquatorialToHorizontal, SiteComesFromThePreferencesWithLongitudeTurnedEast) {
    const SiteInfo site = siteInfoFromPreferences();
    EXPECT_NEAR(site.longitudeEastDeg, -1.8, 1e-6);  // 1.8 W handed on as -1.8 E
    EXPECT_NEAR(site.latitudeDeg, 48.1, 1e-5);       // stored as float
    EXPECT_EQ(site.heightM, 60.0);
    EXPECT_EQ(site.temperatureC, 10.0);
    EXPECT_EQ(site.pressureMbar, 1010.0);

    // The conversion uses that site: 1.8 W, not 1.8 E, and the preferences are read anew.
    const ObservingMoment m = kMoments[3];
    double alt, az, ra, dec;
    ASSERT_EQ(equatorialToHorizontal(5.0, 20.0, 0, m, &alt, &az, &ra, &dec), 0);
    SiteInfo west = site;
    const HorizontalPlace h =
        horizontalFromEquatorial(jdOf(m), deltaTOf(m), 0, 0, west, ra, dec, kRefractionNone);
    EXPECT_NEAR(alt, 90.0 - h.zenithDistanceDeg, 1e-12);
    EXPECT_NEAR(az, h.azimuthDeg, 1e-12);
    prefs().longitudeDeg = -1.8f;
    double alt2, az2, ra2, dec2;
    ASSERT_EQ(equatorialToHorizontal(5.0, 20.0, 0, m, &alt2, &az2, &ra2, &dec2), 0);
    EXPECT_GT(std::fabs(az2 - az) + std::fabs(alt2 - alt), 0.5);
}

TEST_F(EquatorialToHorizontal, EachLevelChainsItsSteps) {
    const ObservingMoment m = kMoments[3];
    const double jd = jdOf(m), deltaT = deltaTOf(m);
    const SiteInfo site = siteInfoFromPreferences();
    const double ra0 = 7.5, dec0 = 35.0;
    double raDate, decDate, raTopo, decTopo;
    precessNutateFromJ2000(jd, ra0, dec0, &raDate, &decDate);
    BodyDescriptor earth;
    ASSERT_EQ(set_body(0, 3, "Earth", &earth), 0);
    CatalogueEntry entry;
    entry.raHours = ra0;
    entry.decDeg = dec0;
    ASSERT_EQ(topo_star(jd, earth, deltaT, entry, site, &raTopo, &decTopo), 0);
    struct Case {
        int level;
        double ra, dec;
        int refraction;
    } cases[] = {
        {-5, ra0, dec0, kRefractionNone},      {-1, ra0, dec0, kRefractionNone},
        {0, raDate, decDate, kRefractionNone}, {1, raDate, decDate, kRefractionSiteWeather},
        {2, raTopo, decTopo, kRefractionNone}, {3, raTopo, decTopo, kRefractionSiteWeather},
        {4, raTopo, decTopo, kRefractionNone},
    };
    for (const Case& c : cases) {
        double alt, az, ra, dec;
        ASSERT_EQ(equatorialToHorizontal(ra0, dec0, c.level, m, &alt, &az, &ra, &dec), 0) << c.level;
        const HorizontalPlace h = horizontalFromEquatorial(jd, deltaT, 0, 0, site, c.ra, c.dec, c.refraction);
        EXPECT_DOUBLE_EQ(alt, 90.0 - h.zenithDistanceDeg) << "level " << c.level;
        EXPECT_DOUBLE_EQ(az, h.azimuthDeg) << "level " << c.level;
        EXPECT_DOUBLE_EQ(ra, h.raHours) << "level " << c.level;
        EXPECT_DOUBLE_EQ(dec, h.decDeg) << "level " << c.level;
    }
}

TEST_F(EquatorialToHorizontal, TopocentricLevelFollowsErfaObservedPlace) {
    // TT = the JD handed on, UT1 = JD - DeltaT, as the pipeline uses them. Tolerance as for
    // the geocentric ledger: 0.15" plus 0.5" a century from J2000 (precession and nutation
    // models, frame bias); the site's ellipsoid and diurnal aberration agree far better.
    for (const ObservingMoment& m : kMoments) {
        const double jd = jdOf(m), deltaT = deltaTOf(m);
        const double tolerance = 0.15 + 0.5 * std::fabs(jd - kJ2000Jd) / kDaysPerCentury;
        for (const ReferenceStar& s : kReferenceStars) {
            double alt, az, ra, dec, azRef, altRef;
            ASSERT_EQ(
                equatorialToHorizontal(test::raHoursOf(s), test::decDegOf(s), 2, m, &alt, &az, &ra, &dec), 0);
            erfaObserved(test::raHoursOf(s), test::decDegOf(s), jd, jd - deltaT / kSecondsPerDay,
                         siteInfoFromPreferences(), &azRef, &altRef);
            EXPECT_LT(skySeparationArcsec(az, alt, azRef, altRef), tolerance) << s.name << " in " << m.year;
        }
    }
}

TEST_F(EquatorialToHorizontal, UtHandedOnAsTtMovesThePlaceByDeltaTOfRotation) {
    // Against the true place (TT = UT + DeltaT, UT1 = UT) the sidereal time lags by
    // DeltaT x 1.0027 seconds: the star sits that much hour angle early, a great-circle
    // shift of 15.04" x DeltaT x cos(Dec) (1000" for DeltaT = 69 s on the equator).
    for (const ObservingMoment& m : {kMoments[2], kMoments[3], kMoments[4]}) {
        const double jd = jdOf(m), deltaT = deltaTOf(m);
        for (const ReferenceStar& s : kReferenceStars) {
            double alt, az, ra, dec, azTrue, altTrue;
            ASSERT_EQ(
                equatorialToHorizontal(test::raHoursOf(s), test::decDegOf(s), 2, m, &alt, &az, &ra, &dec), 0);
            erfaObserved(test::raHoursOf(s), test::decDegOf(s), jd + deltaT / kSecondsPerDay, jd,
                         siteInfoFromPreferences(), &azTrue, &altTrue);
            const double expected = 15.0 * 1.00273790935 * deltaT * std::cos(dec * kDegToRad);
            EXPECT_NEAR(skySeparationArcsec(az, alt, azTrue, altTrue), expected, 1.0)
                << s.name << " in " << m.year;
        }
    }
}

TEST_F(EquatorialToHorizontal, GeocentricRefractedLevelLiftsAHorizonPlaceByAboutHalfADegree) {
    prefs().altitudeM = 0;
    const ObservingMoment m = kMoments[3];
    const double jd = jdOf(m), deltaT = deltaTOf(m);
    // A place of date on the horizon in the west, then its J2000 place by the inverse reduction.
    const double lat = 48.1 * kDegToRad, decDate = 10.0;
    const double ha = std::acos(-std::tan(lat) * std::tan(decDate * kDegToRad)) * kRadToDeg / 15.0;
    double raDate = apparentSiderealTimeHours(jd - deltaT / kSecondsPerDay, jd) - 1.8 / 15.0 - ha;
    if (raDate < 0) raDate += 24.0;
    double ra2000, dec2000;
    ASSERT_EQ(meanPlaceFromPlaceUsed(raDate, decDate, 0, m, &ra2000, &dec2000), 0);
    double alt0, az0, alt1, az1, ra, dec;
    ASSERT_EQ(equatorialToHorizontal(ra2000, dec2000, 0, m, &alt0, &az0, &ra, &dec), 0);
    ASSERT_EQ(equatorialToHorizontal(ra2000, dec2000, 1, m, &alt1, &az1, &ra, &dec), 0);
    EXPECT_NEAR(alt0, 0.0, 1e-6);
    EXPECT_NEAR(alt1 - alt0, 0.48, 0.01);  // 1010 mbar, 10 C
    EXPECT_NEAR(az1, az0, 1e-9);
}

TEST_F(EquatorialToHorizontal, DateOutsideTheEphemerisFailsWithItsMessage) {
    MessageCapture capture;
    const ObservingMoment old{1600, 5, 1, 22, 0, 0};  // JD 2305600, before 2340000.5
    double alt = -99, az = -99, ra = -99, dec = -99;
    EXPECT_NE(equatorialToHorizontal(3.0, 20.0, 2, old, &alt, &az, &ra, &dec), 0);
    EXPECT_TRUE(capture.shown("Error from topo_star"));
    EXPECT_EQ(alt, -99);
    EXPECT_EQ(ra, -99);
    capture.clear();
    EXPECT_NE(
        equatorialToHorizontal(3.0, 20.0, 3, ObservingMoment{2300, 1, 1, 0, 0, 0}, &alt, &az, &ra, &dec), 0);
    EXPECT_TRUE(capture.shown("Error from topo_star"));
    capture.clear();
    // The lower levels need no ephemeris.
    EXPECT_EQ(equatorialToHorizontal(3.0, 20.0, 1, old, &alt, &az, &ra, &dec), 0);
    EXPECT_TRUE(capture.messages().empty());
}

TEST_F(EquatorialToHorizontal, CachesFollowTheMomentAndTheSite) {
    // Interleaving moments, stars and sites must give the same answers as a cold start.
    const ObservingMoment a = kMoments[3], b = kMoments[4];
    double first[4], other[4], again[4];
    ASSERT_EQ(equatorialToHorizontal(10.0, 15.0, 3, a, &first[0], &first[1], &first[2], &first[3]), 0);
    ASSERT_EQ(equatorialToHorizontal(11.0, -5.0, 3, b, &other[0], &other[1], &other[2], &other[3]), 0);
    ASSERT_EQ(equatorialToHorizontal(10.0, 15.0, 3, a, &again[0], &again[1], &again[2], &again[3]), 0);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(first[i], again[i]);
    prefs().latitudeDeg = -30.0f;
    ASSERT_EQ(equatorialToHorizontal(10.0, 15.0, 3, a, &again[0], &again[1], &again[2], &again[3]), 0);
    EXPECT_GT(std::fabs(again[0] - first[0]), 1.0);
}

}  // namespace
}  // namespace nocturnel
