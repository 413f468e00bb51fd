// The two-star alignment against a synthetic mount: a mount whose axes are tilted and turned
// from the sky's by a known rotation reads two stars; the matrix must then predict the
// telescope angles of any third star, and map them back to its place.
#include "align/alignment_matrix.h"

#include <gtest/gtest.h>

#include <cmath>

#include "settings/message.h"

namespace nocturnel {
namespace {
constexpr double kDeg = 0.0174532925199433;

Mat3 rotationX(double deg) {
    Mat3 r;
    const double c = std::cos(deg * kDeg), s = std::sin(deg * kDeg);
    r.m[1][1] = c; r.m[1][2] = -s; r.m[2][1] = s; r.m[2][2] = c;
    return r;
}
Mat3 rotationY(double deg) {
    Mat3 r;
    const double c = std::cos(deg * kDeg), s = std::sin(deg * kDeg);
    r.m[0][0] = c; r.m[0][2] = s; r.m[2][0] = -s; r.m[2][2] = c;
    return r;
}
Mat3 rotationZ(double deg) {
    Mat3 r;
    const double c = std::cos(deg * kDeg), s = std::sin(deg * kDeg);
    r.m[0][0] = c; r.m[0][1] = -s; r.m[1][0] = s; r.m[1][1] = c;
    return r;
}

struct Star { double raHours, decDeg; };
constexpr Star kVega{18.6156, 38.7837}, kArcturus{14.2610, 19.1825}, kAltair{19.8464, 8.8683},
    kDeneb{20.6905, 45.2803}, kPolaris{2.5303, 89.2641};

// The synthetic mount: where it reads a star at the elapsed clock angle tau (radians).
struct SyntheticMount {
    MountGeometry geometry;
    Mat3 tilt;              // mount axes relative to the sky frame of the mount type
    double latitudeDeg = 48.1;
    double lst0Deg = 250.0; // sidereal angle at the reference time

    void read(const Star& s, double tau, double& hor, double& elv) const {
        const double ha = lst0Deg * kDeg + kSiderealRate * tau - s.raHours * 15 * kDeg;
        const double dec = s.decDeg * kDeg;
        Vec3 sky;
        if (geometry.altAzimuth) {
            // Horizon frame: x north, y west, z up; the encoder counts azimuth eastward.
            const double lat = latitudeDeg * kDeg;
            const double alt = std::asin(std::sin(lat) * std::sin(dec) + std::cos(lat) * std::cos(dec) * std::cos(ha));
            const double az = std::atan2(-std::cos(dec) * std::sin(ha),
                                         std::sin(dec) * std::cos(lat) - std::cos(dec) * std::cos(ha) * std::sin(lat));
            sky = {std::cos(alt) * std::cos(az), -std::cos(alt) * std::sin(az), std::sin(alt)};
        } else if (geometry.timeTerm) {
            sky = unitVector(-ha, dec);  // an equatorial mount with encoders: the RA axis reads hour angle
        } else {
            sky = unitVector(s.raHours * 15 * kDeg, dec);  // a tracking drive reports right ascension
        }
        const Vec3 v = multiply(tilt, sky);
        const double phi = std::atan2(v[1], v[0]) / kDeg;
        elv = std::asin(v[2]) / kDeg;
        hor = geometry.altAzimuth ? 360.0 - phi : phi;
        hor = std::fmod(hor + 720.0, 360.0);
    }

    AlignmentStarRecord record(const Star& s, double timeDeg, double toTimeDeg) const {
        AlignmentStarRecord r;
        r.time = timeDeg;
        r.ra = s.raHours * 15;
        r.dec = s.decDeg;
        double tau = (timeDeg - toTimeDeg) * kDeg;
        if (tau < 0) tau += 2 * M_PI;
        read(s, tau, r.hor, r.elv);
        return r;
    }
};

double angleDifference(double a, double b) { return std::remainder(a - b, 360.0); }

struct MountCase {
    const char* name;
    MountGeometry geometry;
};

class SyntheticMountTest : public ::testing::TestWithParam<MountCase> {};

TEST_P(SyntheticMountTest, ThirdStarLandsWhereTheMountReadsIt) {
    SyntheticMount mount;
    mount.geometry = GetParam().geometry;
    // A mount 2 degrees off level, its zero turned 30 degrees from north.
    mount.tilt = multiply(rotationX(2.0), multiply(rotationY(-1.2), rotationZ(30.0)));

    const double toTime = 315.0;  // 21:00:00
    const AlignmentStarRecord s1 = mount.record(kVega, 315.0, toTime);
    const AlignmentStarRecord s2 = mount.record(kArcturus, 317.5, toTime);  // ten minutes later
    Mat3 t;
    MessageCapture messages;
    ASSERT_EQ(computeAlignmentMatrix("21:00:00", s1, s2, mount.geometry, t), 1);
    EXPECT_TRUE(messages.messages().empty());

    for (const Star& third : {kAltair, kDeneb, kPolaris}) {
        for (double minutesLater : {20.0, 95.0, 600.0}) {
            const double tau = minutesLater * 0.25 * kDeg;
            double horExpected, elvExpected, hor, elv;
            mount.read(third, tau, horExpected, elvExpected);
            skyToTelescopeAngles(t, mount.geometry, third.raHours, third.decDeg, tau, hor, elv);
            EXPECT_NEAR(angleDifference(hor, horExpected), 0.0, 1e-9) << GetParam().name << " hor " << minutesLater;
            EXPECT_NEAR(elv, elvExpected, 1e-9) << GetParam().name << " elv " << minutesLater;

            double ra, dec;
            ASSERT_TRUE(telescopeAnglesToSky(t, mount.geometry, horExpected, elvExpected, tau, ra, dec));
            EXPECT_NEAR(std::remainder(ra - third.raHours, 24.0), 0.0, 1e-9) << GetParam().name;
            EXPECT_NEAR(dec, third.decDeg, 1e-9) << GetParam().name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Mounts, SyntheticMountTest,
                         ::testing::Values(MountCase{"alt-azimuth", {true, true}},
                                           MountCase{"equatorial encoders", {false, true}},
                                           MountCase{"tracking equatorial", {false, false}}),
                         [](const auto& info) {
                             std::string n = info.param.name;
                             for (char& c : n)
                                 if (c == ' ' || c == '-') c = '_';
                             return n;
                         });

TEST(AlignmentMatrix, TrackingEquatorialMatrixDoesNotDependOnTime) {
    SyntheticMount mount;
    mount.geometry = {false, false};
    mount.tilt = multiply(rotationX(1.0), rotationZ(5.0));
    Mat3 early, late;
    ASSERT_EQ(computeAlignmentMatrix("21:00:00", mount.record(kVega, 315, 315), mount.record(kDeneb, 320, 315),
                                     mount.geometry, early), 1);
    ASSERT_EQ(computeAlignmentMatrix("02:00:00", mount.record(kVega, 60, 30), mount.record(kDeneb, 90, 30),
                                     mount.geometry, late), 1);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_NEAR(early.m[i][j], late.m[i][j], 1e-12);
}

TEST(AlignmentMatrix, StarBeforeTheReferenceTimeWrapsByOneTurn) {
    // Star 1 at 23:20, reference 23:30: its elapsed angle is one turn less ten minutes. The
    // synthetic mount uses the same wrapped angle, so the third star still fits exactly; a
    // matrix built without the wrap would be off by the sidereal drift of a day (about 1 degree).
    SyntheticMount mount;
    mount.geometry = {true, true};
    mount.tilt = multiply(rotationX(2.0), rotationZ(12.0));
    const AlignmentStarRecord s1 = mount.record(kVega, 350.0, 352.5);
    const AlignmentStarRecord s2 = mount.record(kArcturus, 355.0, 352.5);
    Mat3 t;
    ASSERT_EQ(computeAlignmentMatrix("23:30:00", s1, s2, mount.geometry, t), 1);
    double horExpected, elvExpected, hor, elv;
    const double tau = 5.0 * kDeg;
    mount.read(kAltair, tau, horExpected, elvExpected);
    skyToTelescopeAngles(t, mount.geometry, kAltair.raHours, kAltair.decDeg, tau, hor, elv);
    EXPECT_NEAR(angleDifference(hor, horExpected), 0.0, 1e-9);
    EXPECT_NEAR(elv, elvExpected, 1e-9);
}

TEST(AlignmentMatrix, DegenerateInputsFailAndSayWhy) {
    MountGeometry altAz{true, true};
    AlignmentStarRecord a, b;
    a.time = b.time = 315;
    a.ra = 279.2; a.dec = 38.8; a.hor = 120; a.elv = 40;
    b.ra = 213.9; b.dec = 19.2; b.hor = 120; b.elv = 40;  // same telescope angles twice
    Mat3 t;
    {
        MessageCapture messages;
        EXPECT_EQ(computeAlignmentMatrix("21:00:00", a, b, altAz, t), 0);
        ASSERT_EQ(messages.messages().size(), 1u);
        EXPECT_EQ(messages.messages()[0].title, "Please, fill all values");
    }
    {
        // Same star twice with different telescope angles: the celestial pair is parallel,
        // which fails without a message.
        b = a;
        b.hor = 200;
        b.elv = 10;
        MessageCapture messages;
        EXPECT_EQ(computeAlignmentMatrix("21:00:00", a, b, MountGeometry{false, false}, t), 0);
        EXPECT_TRUE(messages.messages().empty());
    }
    {
        MessageCapture messages;
        EXPECT_EQ(computeAlignmentMatrix("not a time", a, b, altAz, t), 0);
    }
}

TEST(Matrix3, InverseByCofactorsUndoesTheMatrix) {
    const Mat3 a = multiply(rotationX(17), multiply(rotationY(-40), rotationZ(73)));
    Mat3 scaled = a;
    scaled.m[0][0] *= 2.5;
    Mat3 inverse;
    ASSERT_TRUE(invert(scaled, inverse));
    const Mat3 identity = multiply(scaled, inverse);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) EXPECT_NEAR(identity.m[i][j], i == j ? 1.0 : 0.0, 1e-12);
    Mat3 singular;
    singular.m[2][0] = singular.m[2][1] = singular.m[2][2] = 0;
    EXPECT_FALSE(invert(singular, inverse));
}

}  // namespace
}  // namespace nocturnel
