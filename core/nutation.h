#pragma once
// IAU 1980 nutation, the mean and true obliquity of the ecliptic and the equation of the
// equinoxes. Dates are Julian dates taken as dynamical time; the angles of the last date
// asked for are kept, so a redraw of many stars at one moment computes them once.
#include <array>
#include <cstdint>

#include "core/vector3.h"

namespace nocturnel {

// One row of the IAU 1980 series: integer multipliers of (l, l', F, D, Omega) and the
// coefficients in 0.0001 arcsecond (rates per Julian century).
struct NutationTerm {
    int8_t l, lPrime, f, d, omega;
    double longitudeSin, longitudeSinRate;  // nutation in longitude, sine coefficient
    double obliquityCos, obliquityCosRate;  // nutation in obliquity, cosine coefficient
};
extern const std::array<NutationTerm, 106> kIau1980NutationTable;

struct NutationAngles {
    double dpsiArcsec;  // nutation in longitude
    double depsArcsec;  // nutation in obliquity
};
// The series summed for tCenturies (Julian centuries from J2000); not cached.
NutationAngles nutationAngles(double tCenturies);

// Mean obliquity of the ecliptic, arcseconds (IAU 1976).
double meanObliquityArcsec(double tCenturies);

struct EarthTilt {
    double meanObliquityDeg;
    double trueObliquityDeg;
    double equationOfEquinoxesSec;  // seconds of time
    double dpsiArcsec;
    double depsArcsec;
};
// Orientation of the Earth's axis at jd; nutation kept in a cache keyed on jd.
EarthTilt earthTilt(double jd);

// Rotation from the mean to the true equator and equinox of date.
Mat3 nutationMatrix(const EarthTilt& tilt);

}  // namespace nocturnel
