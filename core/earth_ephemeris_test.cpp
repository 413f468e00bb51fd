// The analytical Sun-Earth ephemeris against ERFA's eraEpv00 (VSOP2000 fit to DE405, far
// more accurate than the series checked here) and eraDtdb.
#include "core/earth_ephemeris.h"

#include <erfa.h>
#include <gtest/gtest.h>

#include <cmath>

#include "core/astro_constants.h"

namespace nocturnel {
namespace {

const double kDates[] = {2378496.5, 2415020.0, 2433282.5, 2444000.25, 2451545.0,
                         2455197.5, 2460676.3, 2469807.5, 2488069.5,  2506331.9};

double angleBetweenArcsec(const Vec3& a, const double b[3]) {
    const Vec3 bb{b[0], b[1], b[2]};
    const double c = dot(a, bb) / (length(a) * length(bb));
    const Vec3 cross{a[1] * bb[2] - a[2] * bb[1], a[2] * bb[0] - a[0] * bb[2], a[0] * bb[1] - a[1] * bb[0]};
    return std::atan2(length(cross), c) * kArcsecPerRadian;
}

TEST(EarthEphemeris, HeliocentricEarthFollowsEpv00ToTheSeriesAccuracy) {
    // The 50-term series is quoted at about 2" in longitude and 1e-5 AU in distance over
    // these centuries; the velocity comes from a 0.2-day central difference of it. A wrong
    // row of the table moves the Earth by tens of arcseconds or more.
    for (double jd : kDates) {
        Vec3 p, v;
        ASSERT_EQ(solarSystemVectors(jd, 3, 1, &p, &v), 0);
        double pvh[2][3], pvb[2][3];
        eraEpv00(jd, 0.0, pvh, pvb);
        EXPECT_LT(angleBetweenArcsec(p, pvh[0]), 4.0) << "direction at JD " << jd;
        EXPECT_NEAR(length(p), std::sqrt(eraPdp(pvh[0], pvh[0])), 2.0e-5) << "distance at JD " << jd;
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(v[i], pvh[1][i], 1.0e-6) << "velocity " << i << " at JD " << jd;
    }
}

TEST(EarthEphemeris, BarycentreOffsetFromTheGiantPlanetsFollowsEpv00) {
    // The Sun's barycentric offset (up to 0.01 AU) from four mean circular orbits: their
    // neglected eccentricities and the inner planets leave about 8e-4 AU and 1e-6 AU/day.
    for (double jd : kDates) {
        Vec3 pb, vb, ph, vh;
        ASSERT_EQ(solarSystemVectors(jd, 3, 0, &pb, &vb), 0);
        ASSERT_EQ(solarSystemVectors(jd, 3, 1, &ph, &vh), 0);
        double pvh[2][3], pvb[2][3];
        eraEpv00(jd, 0.0, pvh, pvb);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(pb[i] - ph[i], pvb[0][i] - pvh[0][i], 8.0e-4) << "offset " << i << " at JD " << jd;
            EXPECT_NEAR(vb[i] - vh[i], pvb[1][i] - pvh[1][i], 1.0e-6)
                << "velocity offset " << i << " at JD " << jd;
        }
    }
}

TEST(EarthEphemeris, RangeAndBodyErrors) {
    struct Case {
        double jd;
        int body;
        int expected;
    } cases[] = {
        {2340000.5, 3, 0},    {2560000.5, 3, 0}, {2340000.4, 3, 1},  {2560000.6, 3, 1},
        {std::nan(""), 3, 1}, {2451545.0, 5, 2}, {2451545.0, 11, 2},
    };
    for (const Case& c : cases) {
        Vec3 p, v;
        EXPECT_EQ(solarSystemVectors(c.jd, c.body, 0, &p, &v), c.expected) << c.jd << " body " << c.body;
    }
    EarthVectors e;
    EXPECT_EQ(earthVectors(2600000.0, &e), 1);
}

TEST(EarthEphemeris, TdbMinusTtFollowsEraDtdbAtTheGeocentre) {
    // Two periodic terms of the full series; the neglected ones stay below 30 microseconds.
    for (double jd : kDates) {
        double tt = 0.0, diff = 0.0;
        tdbToTt(jd, &tt, &diff);
        EXPECT_NEAR(diff, eraDtdb(jd, 0.0, 0.0, 0.0, 0.0, 0.0), 3.0e-5) << "JD " << jd;
        EXPECT_NEAR((jd - tt) * kSecondsPerDay, diff, 1e-4);  // a Julian date resolves 40 microseconds
    }
}

}  // namespace
}  // namespace nocturnel
