#pragma once
// Tap identification: the drawn object nearest a chart point within a finger's tolerance —
// default bright stars, field stars and deep-sky objects (and the Sun, Moon and planets once
// the solar-system code sets its hook) — the brighter one when two are as near. Positions come
// from the renderer's own view and projection (chartViewForRequest, skyToScreen, the visible
// field-star list) and its magnitude limits, so what is found is what the chart draws.
#include <string>
#include <vector>

#include "chart/chart_render.h"

namespace nocturnel {

inline constexpr int kFingerTolerancePx = 20;

struct IdentifiedObject {
    bool found = false;
    std::string kind;          // "star", "field star", "deep-sky", or the solar-system hook's kind
    std::string name;          // as the chart names it: "Vega", "M31, NGC224", "HIP 12345"
    std::string designation;   // for find/info: "HIP 91262", "NGC 224", "TYC 4662-1234-1"
    int catalogCode = -1;      // row of the catalogue table, -1 for solar-system bodies
    int32_t number = 0;
    double raHours = 0, decDeg = 0;  // J2000
    double mag = 0;            // 0 with magKnown false when unknown
    bool magKnown = false;
    int x = 0, y = 0;          // where it is drawn
    double distancePx = 0;     // from the tap
};

// A drawn spot offered by the solar-system code for a chart (its view and UT Julian date).
struct DrawnSpot {
    IdentifiedObject object;   // kind, name, designation, place, magnitude, x and y filled
    double radiusPx = 0;       // drawn radius: taps inside it count
};
using SolarSystemSpots = std::vector<DrawnSpot> (*)(const ChartView& view, double jdUt);
void setSolarSystemSpots(SolarSystemSpots spots);

// What the chart of the request shows at (x, y). The catalogues must be open (as for drawing);
// the field stars of the view are loaded (into the visible list) without painting.
IdentifiedObject identifyAt(const ChartRequest& request, int x, int y, int tolerancePx = kFingerTolerancePx);
// The same on a chart already drawn (its view, date and visible field-star list).
IdentifiedObject identifyInChart(const ChartResult& chart, int x, int y, int tolerancePx = kFingerTolerancePx);

}  // namespace nocturnel
