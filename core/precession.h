#pragma once
// IAU 1976 (Lieske) precession between two epochs given as Julian dates.
#include "core/vector3.h"

namespace nocturnel {

// Rotation taking mean equatorial vectors of epoch jdFrom to mean of epoch jdTo.
Mat3 precessionMatrix(double jdFrom, double jdTo);

}  // namespace nocturnel
