#include "align/alignment_matrix.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "core/angle_text.h"
#include "scope/drive_types.h"
#include "settings/message.h"

namespace nocturnel {
namespace {
constexpr double kTwoPi = 6.283185307179586;
constexpr double kRadToDeg = 57.29577951308232;

double normalized(double value, double period) {
    double r = std::fmod(value, period);
    return r < 0 ? r + period : r;
}
}  // namespace

MountGeometry mountGeometryFromPreferences() {
    MountGeometry g;
    g.altAzimuth = prefs().mountType == 1;
    g.timeTerm = g.altAzimuth || (driveFamily(prefs().scopeDrive) == DriveFamily::EncoderBox);
    return g;
}

bool referenceTimeRadians(const char* toTime, double& radians) {
    const std::optional<double> hours = parseAngleText(toTime ? toTime : "");
    if (!hours) return false;
    radians = *hours * 15.0 * kAlignDegToRad;
    return true;
}

int computeAlignmentMatrix(const char* toTime, const AlignmentStarRecord& star1, const AlignmentStarRecord& star2,
                           const MountGeometry& geometry, Mat3& result) {
    double t0 = 0;
    if (!referenceTimeRadians(toTime, t0)) return 0;

    Vec3 telescope[3];
    Vec3 celestial[3];
    const AlignmentStarRecord* stars[2] = {&star1, &star2};
    for (int i = 0; i < 2; ++i) {
        const AlignmentStarRecord& s = *stars[i];
        double tau = s.time * kAlignDegToRad - t0;
        if (tau < 0) tau += kTwoPi;
        const double phi = (geometry.altAzimuth ? 360.0 - s.hor : s.hor) * kAlignDegToRad;
        const double theta = s.elv * kAlignDegToRad;
        telescope[i] = unitVector(phi, theta);
        double lambda = s.ra * kAlignDegToRad;
        if (geometry.timeTerm) lambda -= kSiderealRate * tau;
        celestial[i] = unitVector(lambda, s.dec * kAlignDegToRad);
    }

    telescope[2] = cross(telescope[0], telescope[1]);
    const double tLength = length(telescope[2]);
    if (tLength < 1e-7) {
        showMessage("Please, fill all values");
        return 0;
    }
    for (double& c : telescope[2]) c /= tLength;

    celestial[2] = cross(celestial[0], celestial[1]);
    const double cLength = length(celestial[2]);
    if (cLength < 1e-7) return 0;
    for (double& c : celestial[2]) c /= cLength;

    const Mat3 c = fromColumns(celestial[0], celestial[1], celestial[2]);
    const Mat3 m = fromColumns(telescope[0], telescope[1], telescope[2]);
    Mat3 cInverse;
    if (!invert(c, cInverse)) {
        showMessage("Null derterminant, cannot compute inverse matrix");
        return 0;
    }
    result = multiply(m, cInverse);
    return 1;
}

void skyToTelescopeAngles(const Mat3& t, const MountGeometry& geometry, double raHours, double decDeg,
                          double tauRad, double& horDeg, double& elvDeg) {
    double lambda = raHours * 15.0 * kAlignDegToRad;
    if (geometry.timeTerm) lambda -= kSiderealRate * tauRad;
    const Vec3 v = multiply(t, unitVector(lambda, decDeg * kAlignDegToRad));
    const double len = length(v);
    const double phi = std::atan2(v[1], v[0]) * kRadToDeg;
    elvDeg = std::asin(std::clamp(v[2] / (len > 0 ? len : 1.0), -1.0, 1.0)) * kRadToDeg;
    horDeg = normalized(geometry.altAzimuth ? 360.0 - phi : phi, 360.0);
}

bool telescopeAnglesToSky(const Mat3& t, const MountGeometry& geometry, double horDeg, double elvDeg,
                          double tauRad, double& raHours, double& decDeg) {
    Mat3 inverse;
    if (!invert(t, inverse)) return false;
    const double phi = (geometry.altAzimuth ? 360.0 - horDeg : horDeg) * kAlignDegToRad;
    const Vec3 c = multiply(inverse, unitVector(phi, elvDeg * kAlignDegToRad));
    const double len = length(c);
    double lambda = std::atan2(c[1], c[0]);
    if (geometry.timeTerm) lambda += kSiderealRate * tauRad;
    decDeg = std::asin(std::clamp(c[2] / (len > 0 ? len : 1.0), -1.0, 1.0)) * kRadToDeg;
    raHours = normalized(lambda * kRadToDeg / 15.0, 24.0);
    return true;
}

}  // namespace nocturnel
