#pragma once
// Inverse reduction: an apparent place back to its mean J2000 place by iterating the forward
// reduction (at most 20 rounds, to 1e-10 hour in RA and 1e-9 degree in Dec).
#include <functional>

#include "core/apparent_place.h"

namespace nocturnel {

// A forward reduction: J2000 place in, place of date out; 0 success, else its error.
using ForwardPlace =
    std::function<int(double raJ2000Hours, double decJ2000Deg, double* raHours, double* decDeg)>;

// The J2000 place whose forward reduction is (raHours, decDeg). 0 success; 1 no convergence
// within 20 rounds (both outputs 0); a forward error plus 10. RA out in [0, 24).
int meanPlaceFromForward(const ForwardPlace& forward, double raHours, double decDeg, double* raJ2000Hours,
                         double* decJ2000Deg);

// The inverse of app_star (geocentric apparent place, true equator and equinox of jdTt).
int meanPlaceFromApparent(double jdTt, const BodyDescriptor& earth, double raHours, double decDeg,
                          double* raJ2000Hours, double* decJ2000Deg);

// The inverse of the RA/Dec equatorialToHorizontal uses at the level for the moment and the
// site of the preferences.
int meanPlaceFromPlaceUsed(double raUsedHours, double decUsedDeg, int level, const ObservingMoment& moment,
                           double* raJ2000Hours, double* decJ2000Deg);

}  // namespace nocturnel
