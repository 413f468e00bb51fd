#pragma once
// Where a horizontal position falls on the chart the page shows: the view parameters of
// /api/chart.png read from a request, and the chart's own projection. Kept apart from the
// chart's headers so that the telescope routes (which use the alignment's matrices) can place
// the telescope marker.
#include <httplib.h>

#include <memory>
#include <optional>

#include "settings/message.h"

namespace nocturnel {

struct ChartQuery;

struct MarkerPoint {
    int x = 0, y = 0;  // CSS pixels of the chart
};

class ChartMarkerPlacer {
public:
    ChartMarkerPlacer();
    ~ChartMarkerPlacer();
    // Reads the view parameters; false with error() on a bad one.
    bool read(const httplib::Params& params);
    const Message& error() const { return error_; }
    // The CSS pixel of azimuth/altitude (degrees) on that chart at the preferences' site and
    // moment (engine thread); nothing when it falls outside the chart.
    std::optional<MarkerPoint> place(double azDeg, double altDeg) const;

private:
    std::unique_ptr<ChartQuery> query_;
    Message error_;
};

}  // namespace nocturnel
