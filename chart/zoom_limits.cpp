#include "chart/zoom_limits.h"

#include <algorithm>

#include "settings/preferences.h"

namespace nocturnel {
namespace {

template <std::size_t N>
float choose(const std::array<float, N>& list, int index) {
    return list[static_cast<std::size_t>(std::clamp(index, 0, static_cast<int>(N) - 1))];
}

}  // namespace

int zoomTableSlot(int zoomLevel) { return std::clamp(zoomLevel, 0, kZoomTableSlots - 1); }

float starMagnitudeLimit(int zoomLevel) {
    const int slot = zoomTableSlot(zoomLevel);
    return choose(kZoomStarLimitChoices[static_cast<std::size_t>(slot)], prefs().zoomStarLimit[slot]);
}

float objectMagnitudeLimit(int zoomLevel) {
    const int slot = zoomTableSlot(zoomLevel);
    return choose(kZoomObjectLimitChoices[static_cast<std::size_t>(slot)], prefs().zoomObjectLimit[slot]);
}

}  // namespace nocturnel
