#pragma once
// The view parameters of /api/chart.png and /api/identify as read from a request: any of them
// may be left out (the preferences and the moment decide). Reading them is pure text checking,
// apart from the chart itself.
#include <optional>

#include "settings/preferences.h"
#include "shell/http_params.h"

namespace nocturnel {

inline constexpr int kChartMinSide = 16;
inline constexpr int kChartMaxSide = 4096;

struct ChartQuery {
    std::optional<int> zoom, width, height, mode, rotate, night, scale;
    std::optional<double> ra, dec, az, alt;   // J2000 hours/degrees, or az/alt degrees
    std::optional<ObservingMoment> time;      // local civil time at the site
};

// Reads the view parameters; false with the reader's error on a bad one.
bool readChartQuery(ValueReader& reader, ChartQuery& query);

}  // namespace nocturnel
