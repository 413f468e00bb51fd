// Horizon conversion and refraction: geometry against ERFA's eraHd2ae with ERFA's own
// apparent sidereal time; refraction against Bennett's published table and its cut-offs.
#include "core/horizon.h"

#include <erfa.h>
#include <gtest/gtest.h>

#include <cmath>

#include "core/astro_constants.h"

namespace nocturnel {
namespace {

const SiteInfo kSeaLevel{48.1, -1.8, 0.0, 10.0, 1010.0};

TEST(Refraction, FollowsBennettsTableAboveTheHorizon) {
    // Bennett (1982) for 1010 mbar and 10 C: 34.5' at the horizon, 5.3' at 10 degrees, 1.0'
    // at 45 degrees, 0' at the zenith. 2% covers the rounding of the published minutes.
    struct Case {
        double altitudeDeg, arcmin;
    } cases[] = {{0.0, 34.5}, {10.0, 5.3}, {45.0, 1.0}, {80.0, 0.18}};
    for (const Case& c : cases)
        EXPECT_NEAR(refractionDeg(kSeaLevel, kRefractionSiteWeather, 90.0 - c.altitudeDeg) * 60.0, c.arcmin,
                    0.02 * c.arcmin + 0.005)
            << "altitude " << c.altitudeDeg;
}

TEST(Refraction, CutOffsAndWeather) {
    struct Case {
        double zd;
        bool none;
    } cases[] = {{0.05, true},  {0.0999, true},  {0.1, false}, {90.0, false},
                 {91.0, false}, {91.0001, true}, {95.0, true}, {-3.0, true}};
    for (const Case& c : cases)
        EXPECT_EQ(refractionDeg(kSeaLevel, kRefractionSiteWeather, c.zd) == 0.0, c.none) << "zd " << c.zd;

    // Option 2 follows the site's weather; other options a standard atmosphere at the height.
    SiteInfo cold = kSeaLevel;
    cold.temperatureC = -20.0;
    cold.pressureMbar = 1030.0;
    cold.heightM = 9100.0;
    const double standard = refractionDeg(kSeaLevel, kRefractionSiteWeather, 80.0);
    EXPECT_NEAR(refractionDeg(cold, kRefractionSiteWeather, 80.0),
                standard * (1030.0 / 253.0) / (1010.0 / 283.0), 1e-12);
    EXPECT_NEAR(refractionDeg(cold, kRefractionStandard, 80.0), standard / std::exp(1.0), 1e-12);
    EXPECT_NEAR(refractionDeg(cold, 7, 80.0), standard / std::exp(1.0), 1e-12);
}

TEST(HorizontalFromEquatorial, GeometryMatchesEraHd2ae) {
    // Our apparent sidereal time leaves out the 1994 terms of the equation of the equinoxes
    // (2.7 mas); the rest is exact geometry, so 0.01" on the sky.
    const SiteInfo sites[] = {{48.1, -1.8, 0, 10, 1010},
                              {-33.9, 151.2, 0, 10, 1010},
                              {78.2, 15.6, 0, 10, 1010},
                              {0.0, -70.0, 0, 10, 1010}};
    const double dates[] = {2415020.3, 2451545.0, 2460676.81, 2488069.1};
    const double places[][2] = {{0.0, 0.0}, {5.5, 45.0}, {13.2, -60.0}, {20.9, 85.0}, {9.0, -10.0}};
    for (const SiteInfo& site : sites) {
        for (double jd : dates) {
            const double deltaT = 70.0;
            const double gast = eraGmst82(jd - deltaT / kSecondsPerDay, 0.0) + eraEqeq94(jd, 0.0);
            for (const auto& place : places) {
                const HorizontalPlace h =
                    horizontalFromEquatorial(jd, deltaT, 0.0, 0.0, site, place[0], place[1], kRefractionNone);
                double az, el;
                eraHd2ae(gast + site.longitudeEastDeg * kDegToRad - place[0] * 15.0 * kDegToRad,
                         place[1] * kDegToRad, site.latitudeDeg * kDegToRad, &az, &el);
                const double sep =
                    eraSeps(h.azimuthDeg * kDegToRad, (90.0 - h.zenithDistanceDeg) * kDegToRad, az, el);
                EXPECT_LT(sep * kArcsecPerRadian, 0.01) << "site lat " << site.latitudeDeg << " JD " << jd;
                EXPECT_GE(h.azimuthDeg, 0.0);
                EXPECT_LT(h.azimuthDeg, 360.0);
                EXPECT_EQ(h.raHours, place[0]);  // no refraction: the place is handed back unchanged
                EXPECT_EQ(h.decDeg, place[1]);
            }
        }
    }
}

TEST(HorizontalFromEquatorial, RefractionAtTheHorizonLiftsAboutHalfADegreeTowardsTheZenith) {
    // A true place on the horizon: find the hour angle where the zenith distance is 90.
    const double jd = 2460676.5, deltaT = 69.0;
    const double decDeg = 20.0;
    const double lat = kSeaLevel.latitudeDeg * kDegToRad, dec = decDeg * kDegToRad;
    const double haRad = std::acos(-std::tan(lat) * std::tan(dec));
    const double gast = eraGmst82(jd - deltaT / kSecondsPerDay, 0.0) + eraEqeq94(jd, 0.0);
    const double raHours = eraAnp(gast + kSeaLevel.longitudeEastDeg * kDegToRad - haRad) * kRadToDeg / 15.0;

    const HorizontalPlace plain =
        horizontalFromEquatorial(jd, deltaT, 0, 0, kSeaLevel, raHours, decDeg, kRefractionNone);
    ASSERT_NEAR(plain.zenithDistanceDeg, 90.0, 1e-5);
    const HorizontalPlace refracted =
        horizontalFromEquatorial(jd, deltaT, 0, 0, kSeaLevel, raHours, decDeg, kRefractionSiteWeather);
    const double lift = plain.zenithDistanceDeg - refracted.zenithDistanceDeg;
    EXPECT_NEAR(lift, 0.48, 0.01);
    // The converged zenith distance satisfies zd = zd0 - R(zd) to the iteration's 5e-5 degree.
    EXPECT_NEAR(lift, refractionDeg(kSeaLevel, kRefractionSiteWeather, refracted.zenithDistanceDeg), 5e-5);
    EXPECT_NEAR(refracted.azimuthDeg, plain.azimuthDeg, 1e-9);
    // The refracted RA/Dec are the lifted direction: as far from the true place as the lift,
    // and at the refracted zenith distance.
    const double sep = eraSeps(raHours * 15.0 * kDegToRad, dec, refracted.raHours * 15.0 * kDegToRad,
                               refracted.decDeg * kDegToRad) *
                       kRadToDeg;
    EXPECT_NEAR(sep, lift, 1e-6);
    const HorizontalPlace check = horizontalFromEquatorial(jd, deltaT, 0, 0, kSeaLevel, refracted.raHours,
                                                           refracted.decDeg, kRefractionNone);
    EXPECT_NEAR(check.zenithDistanceDeg, refracted.zenithDistanceDeg, 1e-6);
}

TEST(HorizontalFromEquatorial, PolarMotionTurnsTheSiteOnlyWhenGiven) {
    const double jd = 2451545.0;
    const HorizontalPlace none =
        horizontalFromEquatorial(jd, 64.0, 0.0, 0.0, kSeaLevel, 3.0, 40.0, kRefractionNone);
    const HorizontalPlace moved =
        horizontalFromEquatorial(jd, 64.0, 0.3, 0.4, kSeaLevel, 3.0, 40.0, kRefractionNone);
    const double sep = eraSeps(none.azimuthDeg * kDegToRad, (90 - none.zenithDistanceDeg) * kDegToRad,
                               moved.azimuthDeg * kDegToRad, (90 - moved.zenithDistanceDeg) * kDegToRad) *
                       kArcsecPerRadian;
    EXPECT_GT(sep, 0.05);  // the pole moved by 0.5"
    EXPECT_LT(sep, 0.51);
}

TEST(HorizontalFromEquatorial, BadInputGivesNumbersWithoutHanging) {
    const HorizontalPlace h = horizontalFromEquatorial(2451545.0, 64.0, 0, 0, kSeaLevel, std::nan(""), 10.0,
                                                       kRefractionSiteWeather);
    EXPECT_TRUE(std::isnan(h.zenithDistanceDeg));  // returns after at most 100 refraction rounds
}

}  // namespace
}  // namespace nocturnel
