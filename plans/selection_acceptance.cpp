#include "plans/selection_acceptance.h"

#include <cmath>

#include "catalog/object_tables.h"
#include "chart/fixed_trig.h"

namespace nocturnel {

namespace {
constexpr double kPi = 3.14159265358979323846;
// Difficulty bounds: choice n accepts T[n] <= ratio <= T[n - 1].
constexpr double kDifficultyBounds[] = {10.0, 2.0, 1.5, 1.0, 0.5};
// Minimum altitudes of the visibility choices 1..9, degrees.
constexpr double kMinimumAltitudeDeg[] = {0, 0, 15, 20, 25, 30, 35, 40, 45, 50};
constexpr int kNotVisible = 10;
constexpr double kMagnitudeLimits[] = {100, 0, 0, 4, 6, 8, 10, 12, 14};

fixed24 radiansFixed(double radians) { return doubleToFixed(radians); }
}  // namespace

bool catalogFilterAcceptsEverything(int code) {
    return code == kCatalogCaldwell || code == kCatalogHerschel || code == kCatalogMessier || code == kCatalogBestNGC ||
           code == kCatalogUser;
}

double magnitudeLimit(const SelectionCriteria& c) {
    if (c.magLimitChoice == 1) return c.scopeLimitMag;
    if (c.magLimitChoice == 2) return c.eyesLimitMag;
    if (c.magLimitChoice < 0 || c.magLimitChoice > 8) return 100;
    return kMagnitudeLimits[c.magLimitChoice];
}

double hourAngleHours(double lst, double ra) {
    double h = lst - ra;
    while (h > 12) h -= 24;
    while (h < -12) h += 24;
    return h;
}

bool passesVisibility(int choice, double raHours, double decDeg, double lst, double latitudeDeg) {
    if (choice <= 0 || choice > kNotVisible) return true;
    const double h = hourAngleHours(lst, raHours);
    const fixed24 lat = radiansFixed(latitudeDeg * kPi / 180), dec = radiansFixed(decDeg * kPi / 180),
                  ha = radiansFixed(h * kPi / 12);
    const fixed24 sinAlt = fixedMul(fixedSin(lat), fixedSin(dec)) +
                           fixedMul(fixedMul(fixedCos(lat), fixedCos(dec)), fixedCos(ha));
    const double minimum = choice == kNotVisible ? 0 : kMinimumAltitudeDeg[choice];
    const bool above = sinAlt >= fixedSin(radiansFixed(minimum * kPi / 180));
    return choice == kNotVisible ? !above : above;
}

SelectionReason acceptObject(const SelectionCriteria& c, const ObjectReference& object,
                             const SelectionConditions& conditions) {
    if (c.typeGroupFilter > 0) {
        const bool known = object.type >= 0 && object.type < kObjectTypeCount;
        if (!known || kObjectTypes[static_cast<std::size_t>(object.type)].group != c.typeGroupFilter) return kRejectedGroup;
    }
    if (c.constellationFilter > 0 && object.constellation != c.constellationFilter - 1) return kRejectedMismatch;
    if (c.catalogFilter > 0 && !catalogFilterAcceptsEverything(c.catalogFilter) && object.catalog != c.catalogFilter)
        return kRejectedMismatch;
    if (c.typeFilter > 0 && c.typeFilter != 19 && object.type != c.typeFilter) return kRejectedMismatch;
    const double mag = object.mag == 0.0f ? 99.0 : object.mag;
    if (mag > magnitudeLimit(c)) return kRejectedFaint;
    if (c.difficulty > 0 || c.sizeMatch != 0) {
        const auto estimate = conditions.estimate ? conditions.estimate(object) : std::nullopt;
        if (!estimate) return kRejectedDifficulty;
        if (c.sizeMatch != 0) {
            const double value = estimate->bestMagnification < 1 || conditions.eyepieceMagnification <= 0
                                     ? 10000
                                     : estimate->bestMagnification / conditions.eyepieceMagnification;
            if (std::abs(1.0 - c.sizeReference / value) > 0.6) return kRejectedDifficulty;
        }
        if (c.difficulty >= 1 && c.difficulty <= 4) {
            const double v = estimate->ratio;
            if (v < kDifficultyBounds[c.difficulty] || v > kDifficultyBounds[c.difficulty - 1]) return kRejectedDifficulty;
        }
    }
    if (!passesVisibility(c.visibility, object.raHours, object.decDeg, conditions.localSiderealHours,
                          conditions.latitudeDeg))
        return kRejectedVisibility;
    return kAccepted;
}

}  // namespace nocturnel
