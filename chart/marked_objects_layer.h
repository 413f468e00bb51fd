#pragma once
// The chart layer of the current selection list: a small ring around each listed object, so
// that tonight's targets stand out among the catalogue's symbols.
#include <vector>

#include "chart/chart_layers.h"
#include "chart/chart_render.h"

namespace nocturnel {

inline constexpr double kMarkRingRadiusPx = 8.0;  // at resolution factor 1

void drawMarkedObjects(const LayerContext& ctx, const std::vector<MarkedPlace>& places);

}  // namespace nocturnel
