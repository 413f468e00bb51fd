#pragma once
// nocturnel_milkyway.ppc from d3-celestial's mw.json: a FeatureCollection of five MultiPolygon
// features ("ol1" .. "ol5", faint to bright) in (RA degrees -180..180, Dec degrees).
#include <string>
#include <string_view>
#include <vector>

#include "catalog/milky_way.h"

namespace nocturnel {

// Points closer than this to the previous kept point of their ring are dropped (the source
// draws the outline finer than a chart needs).
inline constexpr double kMilkyWayStepDeg = 0.2;

bool buildMilkyWay(std::string_view json, std::vector<MilkyWayPoint>& points, std::string& error);

}  // namespace nocturnel
