#pragma once
// The machine clock as the observing moment: local civil time at the site is the UT clock
// plus the site's UT offset (daylight saving included).
#include "settings/preferences.h"

namespace nocturnel {

ObservingMoment localMomentFromClock(int utcOffsetMin);

}  // namespace nocturnel
