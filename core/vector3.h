#pragma once
// Three-vectors and 3x3 rotation matrices of the apparent place pipeline (equatorial
// rectangular coordinates; AU and AU/day unless a name says otherwise).
#include <array>
#include <cmath>

namespace nocturnel {

using Vec3 = std::array<double, 3>;
using Mat3 = std::array<Vec3, 3>;  // row-major: m[row][column]

inline Vec3 operator+(const Vec3& a, const Vec3& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
inline Vec3 operator-(const Vec3& a, const Vec3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inline Vec3 operator*(double s, const Vec3& a) {
    return {s * a[0], s * a[1], s * a[2]};
}
inline double dot(const Vec3& a, const Vec3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline double length(const Vec3& a) {
    return std::sqrt(dot(a, a));
}

inline Vec3 operator*(const Mat3& m, const Vec3& v) {
    return {dot(m[0], v), dot(m[1], v), dot(m[2], v)};
}
inline Mat3 operator*(const Mat3& a, const Mat3& b) {
    Mat3 r{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) r[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
    return r;
}
inline Mat3 transposed(const Mat3& m) {
    return {Vec3{m[0][0], m[1][0], m[2][0]}, Vec3{m[0][1], m[1][1], m[2][1]},
            Vec3{m[0][2], m[1][2], m[2][2]}};
}

}  // namespace nocturnel
