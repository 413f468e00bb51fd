#include "shell/api_chart.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

#include "chart/chart_view.h"
#include "chart/sky_frame.h"
#include "core/time.h"
#include "shell/selection_marks.h"

namespace nocturnel {

ChartRequest chartRequestFor(const ChartQuery& q, const Preferences& p) {
    ChartRequest request;
    const int scale = q.scale.value_or(1);
    request.width = q.width.value_or(800) * scale;
    request.height = q.height.value_or(800) * scale;
    request.resolutionFactor = scale;
    request.zoomLevel = q.zoom.value_or(p.chartZoomLevel);
    request.projectionMode = q.mode.value_or(p.chartProjectionMode);
    request.rotationDeg = q.rotate;
    request.moment = q.time.value_or(p.moment);
    request.marked = currentSelectionMarks();
    if (q.az && q.alt) {
        request.centreAzDeg = q.az;
        request.centreAltDeg = q.alt;
    } else if (q.ra && q.dec) {
        // The page speaks J2000; the chart centres on the equator of date.
        const ObservingMoment& m = request.moment;
        const double jd = julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, p.utcOffsetMin);
        double raDate = 0, decDate = 0;
        j2000ToDate(skyFrameForDate(jd), *q.ra, *q.dec, raDate, decDate);
        request.centreRaHours = raDate;
        request.centreDecDeg = decDate;
    }
    return request;
}

int nightModeFor(const ChartQuery& q, const Preferences& p) { return q.night.value_or(p.nightMode); }

std::string chartQueryKey(const ChartRequest& r, int nightMode) {
    char key[320];
    const ObservingMoment& m = r.moment;
    std::snprintf(key, sizeof key, "%dx%d@%d z%d m%d r%d n%d az%.9g alt%.9g ra%.9g dec%.9g %04d-%02d-%02dT%02d:%02d:%02d",
                  r.width, r.height, r.resolutionFactor, r.zoomLevel, r.projectionMode, r.rotationDeg.value_or(9999),
                  nightMode, r.centreAzDeg.value_or(-1), r.centreAltDeg.value_or(-99), r.centreRaHours.value_or(-1),
                  r.centreDecDeg.value_or(-99), m.year, m.month, m.day, m.hour, m.minute, m.second);
    // The marked list changes the picture too.
    uint64_t marks = 1469598103934665603ull;
    for (const MarkedPlace& place : r.marked)
        for (const double v : {place.raHours, place.decDeg}) marks = (marks ^ static_cast<uint64_t>(std::llround(v * 1e6))) * 1099511628211ull;
    return std::string(key) + " k" + std::to_string(r.marked.size()) + ":" + std::to_string(marks);
}

std::optional<ScreenPoint> chartPointOfHorizontal(const ChartQuery& query, const Preferences& p, double azDeg,
                                                  double altDeg) {
    const ChartRequest request = chartRequestFor(query, p);
    double jdUt = 0;
    const ChartView view = chartViewForRequest(request, jdUt);
    int32_t u = 0, v = 0;
    if (!projectHorizontal(view, azDeg, altDeg, u, v)) return std::nullopt;
    ScreenPoint point = chartToScreen(view, u, v);
    point.x = wrapPanoramaX(view, point.x);
    if (!insideClip(view, point.x, point.y)) return std::nullopt;
    const int scale = request.resolutionFactor;
    return ScreenPoint{point.x / scale, point.y / scale};
}

}  // namespace nocturnel
