#pragma once
// What lies under a point of a drawn chart. Until the chart names every drawn object, this
// names the default bright stars the chart drew (ChartResult::bright): the nearest one within
// the tolerance. Swap this function for the chart's own identification when it exists.
#include <nlohmann/json.hpp>

#include "chart/chart_render.h"

namespace nocturnel {

// x, y and tolerance in chart pixels. The answer: {"found":true,"kind":"star","name","names",
// "hip","hr","mag","ra","dec" (J2000 hours/degrees),"raText","decText","alt","az","x","y"}, or
// {"found":false} with the sky place under the point ("ra","dec" J2000).
nlohmann::json identifyAtChartPoint(const ChartResult& chart, int x, int y, int tolerancePx);

}  // namespace nocturnel
