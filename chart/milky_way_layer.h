#pragma once
// The Milky Way as a soft band under every other layer: its five brightness levels filled one
// over the other with a faint, translucent colour (drawn before the ground, which covers what
// lies below the horizon), dimmer in night mode. The outline is read once from data/nocturnel_milkyway.ppc and kept.
#include "chart/chart_layers.h"

namespace nocturnel {

void drawMilkyWay(const LayerContext& ctx, bool nightMode);
// Drops the kept outline (after the catalogues are reopened).
void forgetMilkyWay();

}  // namespace nocturnel
