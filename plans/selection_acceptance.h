#pragma once
// SkyRoamer's acceptance test of one object against the selection criteria, in its fixed order
// (type group, constellation, catalogue, type, magnitude, difficulty and size, visibility). The
// first failing test rejects the object with its reason code.
#include <functional>
#include <optional>

#include "catalog/formats.h"
#include "settings/selection_criteria.h"

namespace nocturnel {

enum SelectionReason : int {
    kAccepted = 0,
    kRejectedVisibility = 1,  // below (or, for "Not Visible", above) the chosen altitude
    kRejectedDifficulty = 2,  // wrong difficulty or size
    kRejectedFaint = 3,       // fainter than the magnitude limit
    kRejectedMismatch = 4,    // constellation, type or catalogue mismatch
    kRejectedGroup = 5,       // another type group (the test records no reason)
};

// What the visibility estimate says of an object in the telescope of the preferences.
struct SelectionEstimate {
    double ratio = 0;               // visibility ratio (0 at or beyond the limiting magnitude)
    double bestMagnification = 0;   // magnification at which the object shows best
};

struct SelectionConditions {
    double localSiderealHours = 0;  // at the selection's moment
    double latitudeDeg = 0;         // of the site
    double eyepieceMagnification = 0;  // of the preferences' eyepiece on the telescope
    // The estimate of an object; needed only when the difficulty or the size is chosen.
    std::function<std::optional<SelectionEstimate>(const ObjectReference&)> estimate;
};

// Catalogue codes that let every object through the catalogue test.
bool catalogFilterAcceptsEverything(int catalogCode);
// The magnitude limit of a choice: 100, the telescope's, the eye's, 4, 6, 8, 10, 12, 14.
double magnitudeLimit(const SelectionCriteria& criteria);
// The altitude test on fixed-point sines: sin h >= sin(minimum altitude) ("Not Visible" inverts it).
bool passesVisibility(int visibilityChoice, double raHours, double decDeg, double localSiderealHours,
                      double latitudeDeg);
// Hour angle brought into -12 h .. +12 h by steps of 24 h.
double hourAngleHours(double localSiderealHours, double raHours);

SelectionReason acceptObject(const SelectionCriteria& criteria, const ObjectReference& object,
                             const SelectionConditions& conditions);

}  // namespace nocturnel
