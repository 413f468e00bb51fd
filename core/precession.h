#pragma once
// IAU 1976 (Lieske) precession between two epochs given as Julian dates.
#include "core/vector3.h"

namespace nocturnel {

// Rotation taking mean equatorial vectors of epoch jdFrom to mean of epoch jdTo.
Mat3 precessionMatrix(double jdFrom, double jdTo);
// The vector precessed; the matrix of the last pair of epochs is kept.
Vec3 precess(double jdFrom, const Vec3& position, double jdTo);

}  // namespace nocturnel
