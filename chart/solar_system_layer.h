#pragma once
// The chart layer of the Sun, the Moon (with its phase, at its true size when the zoom makes
// it larger than its symbol) and the planets, with their names.
#include <vector>

#include "chart/chart_layers.h"
#include "chart/identify.h"

namespace nocturnel {

// Draws the bodies for the UT date at the site of the preferences. Draws nothing, silently,
// when the planet file is missing (the planets command reports it).
void drawSolarSystem(const LayerContext& ctx, double jdUt);

// The bodies as tap identification sees them: where the layer draws them for the view (the
// frame of the date) and how large. Empty when the planet file is missing.
std::vector<DrawnSpot> solarSystemSpots(const ChartView& view, double jdUt);

}  // namespace nocturnel
