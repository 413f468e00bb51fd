#pragma once
// Small 3-vector and 3x3 matrix arithmetic for the alignment: unit vectors of directions,
// cross products, the inverse by cofactors.
#include <array>
#include <cmath>

namespace nocturnel {

using Vec3 = std::array<double, 3>;

struct Mat3 {
    double m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
};

// Unit vector of a direction: (cos lat cos lon, cos lat sin lon, sin lat), angles in radians.
inline Vec3 unitVector(double lonRad, double latRad) {
    return {std::cos(latRad) * std::cos(lonRad), std::cos(latRad) * std::sin(lonRad), std::sin(latRad)};
}

// Cross product in the order y1z2 - z1y2, z1x2 - x1z2, x1y2 - y1x2.
inline Vec3 cross(const Vec3& a, const Vec3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline double length(const Vec3& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }

inline Vec3 multiply(const Mat3& a, const Vec3& v) {
    Vec3 r{};
    for (int i = 0; i < 3; ++i) r[i] = a.m[i][0] * v[0] + a.m[i][1] * v[1] + a.m[i][2] * v[2];
    return r;
}

inline Mat3 multiply(const Mat3& a, const Mat3& b) {
    Mat3 r;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) r.m[i][j] = a.m[i][0] * b.m[0][j] + a.m[i][1] * b.m[1][j] + a.m[i][2] * b.m[2][j];
    return r;
}

// Matrix whose columns are the three vectors.
inline Mat3 fromColumns(const Vec3& c1, const Vec3& c2, const Vec3& c3) {
    Mat3 r;
    for (int i = 0; i < 3; ++i) {
        r.m[i][0] = c1[i];
        r.m[i][1] = c2[i];
        r.m[i][2] = c3[i];
    }
    return r;
}

inline double determinant(const Mat3& a) {
    return a.m[0][0] * (a.m[1][1] * a.m[2][2] - a.m[1][2] * a.m[2][1]) -
           a.m[0][1] * (a.m[1][0] * a.m[2][2] - a.m[1][2] * a.m[2][0]) +
           a.m[0][2] * (a.m[1][0] * a.m[2][1] - a.m[1][1] * a.m[2][0]);
}

// Inverse by cofactors; false when the determinant is zero.
inline bool invert(const Mat3& a, Mat3& inverse) {
    const double det = determinant(a);
    if (det == 0.0) return false;
    const auto& m = a.m;
    inverse.m[0][0] = (m[1][1] * m[2][2] - m[1][2] * m[2][1]) / det;
    inverse.m[0][1] = (m[0][2] * m[2][1] - m[0][1] * m[2][2]) / det;
    inverse.m[0][2] = (m[0][1] * m[1][2] - m[0][2] * m[1][1]) / det;
    inverse.m[1][0] = (m[1][2] * m[2][0] - m[1][0] * m[2][2]) / det;
    inverse.m[1][1] = (m[0][0] * m[2][2] - m[0][2] * m[2][0]) / det;
    inverse.m[1][2] = (m[0][2] * m[1][0] - m[0][0] * m[1][2]) / det;
    inverse.m[2][0] = (m[1][0] * m[2][1] - m[1][1] * m[2][0]) / det;
    inverse.m[2][1] = (m[0][1] * m[2][0] - m[0][0] * m[2][1]) / det;
    inverse.m[2][2] = (m[0][0] * m[1][1] - m[0][1] * m[1][0]) / det;
    return true;
}

}  // namespace nocturnel
