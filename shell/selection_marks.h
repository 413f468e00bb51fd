#pragma once
// The current selection list's objects as the chart's marked places.
#include <vector>

#include "chart/chart_render.h"

namespace nocturnel {

// The J2000 places of the list kept in the program folder; empty when there is none (or it
// cannot be read: the chart is drawn all the same, without marks).
std::vector<MarkedPlace> currentSelectionMarks();

}  // namespace nocturnel
