#pragma once
// What a SkyRoamer run takes from the sky of the moment: the Sun, the Moon and the planets as
// list entries, and the visibility estimate of each object in the telescope of the preferences.
#include <functional>
#include <optional>
#include <vector>

#include "catalog/formats.h"
#include "chart/visibility.h"
#include "plans/selection_acceptance.h"
#include "settings/selection_criteria.h"

namespace nocturnel {

inline constexpr int kPlanetTypeCode = 27;  // "Planet" in the object-type table

// The ten bodies, Sun to Pluto, at a UT Julian date for the site of the preferences, as entries
// of type 27 and catalogue 45 with their J2000 places; empty when the planet file is missing.
std::vector<ObjectReference> solarSystemReferences(double jdUt);

// The estimate of an object standing where the local sidereal time and latitude put it (at its
// transit while it is below the horizon; ratio 0 when it never rises).
std::optional<SelectionEstimate> estimateForSelection(const ObjectReference& object, const VisibilityConditions& conditions,
                                                      double localSiderealHours, double latitudeDeg);

// The run's "Scope Limit" and "Eyes Limit" from the estimate's conditions.
void refreshLimitMagnitudes(SelectionCriteria& criteria, const VisibilityConditions& conditions);

}  // namespace nocturnel
