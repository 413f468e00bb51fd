#include "shell/chart_marker.h"

#include "settings/preferences.h"
#include "shell/api_chart.h"
#include "shell/http_readers.h"

namespace nocturnel {

ChartMarkerPlacer::ChartMarkerPlacer() : query_(std::make_unique<ChartQuery>()) {}
ChartMarkerPlacer::~ChartMarkerPlacer() = default;

bool ChartMarkerPlacer::read(const httplib::Params& params) {
    QueryReader r(params);
    if (readChartQuery(r, *query_)) return true;
    error_ = r.error();
    return false;
}

std::optional<MarkerPoint> ChartMarkerPlacer::place(double azDeg, double altDeg) const {
    const auto point = chartPointOfHorizontal(*query_, prefs(), azDeg, altDeg);
    if (!point) return std::nullopt;
    return MarkerPoint{point->x, point->y};
}

}  // namespace nocturnel
