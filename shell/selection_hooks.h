#pragma once
// What a SkyRoamer run needs from the rest of the program at the selection's moment: the
// sidereal time and latitude of the site, the telescope's eyepiece, the limiting magnitudes and
// the visibility estimate, the Sun, Moon and planets, and the user's stop key.
#include <functional>

#include "plans/selection_run.h"
#include "settings/preferences.h"

namespace nocturnel {

// Copies the current moment into the criteria's selection fields and refreshes the limiting
// magnitudes, then builds the hooks for a run at that moment.
SelectionRunHooks selectionHooksFor(SelectionCriteria& criteria, std::function<bool()> stopRequested);

}  // namespace nocturnel
