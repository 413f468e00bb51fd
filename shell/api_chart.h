#pragma once
// The chart of the web interface: the chart request the view parameters of /api/chart.png and
// /api/identify give (shell/chart_query.h reads them), and what lies under a point of that chart.
#include <nlohmann/json.hpp>
#include <optional>

#include "chart/chart_render.h"
#include "settings/preferences.h"
#include "shell/chart_query.h"

namespace nocturnel {

// The chart request of a query at the preferences' site and moment. Width and height are CSS
// pixels; the chart is drawn scale times larger with resolutionFactor = scale.
ChartRequest chartRequestFor(const ChartQuery& query, const Preferences& p);
// Night mode of a query (nightMode list index: 0 "Off", 1 "Dark", 2 "Medium", 3 "Bright").
int nightModeFor(const ChartQuery& query, const Preferences& p);
// The same query written out in full (the cache key of a drawn chart).
std::string chartQueryKey(const ChartRequest& request, int nightMode);

// CSS pixel of a horizontal position (azimuth from north through east, altitude, degrees) on
// the chart of the query, by the chart's own projection; nothing when it falls outside the chart.
std::optional<ScreenPoint> chartPointOfHorizontal(const ChartQuery& query, const Preferences& p, double azDeg,
                                                  double altDeg);

}  // namespace nocturnel
