#include "core/twilight.h"

#include "core/astro_constants.h"
#include "core/body_place.h"
#include "core/delta_t_model.h"

namespace nocturnel {

int twilightForDay(double dayStartJdUt, const SiteInfo& site, double horizonDeg, TwilightTimes* out) {
    const GeocentricTrack sun = bodyTrack(SolarBody::Sun);
    BodyPlace noon;
    const double jdTt = dayStartJdUt + 0.5 + modelDeltaTSeconds(dayStartJdUt) / kSecondsPerDay;
    if (geocentricPlace(SolarBody::Sun, jdTt, &noon) != 0) return 1;
    const double h0 = riseSetAltitudeDeg(SolarBody::Sun, horizonDeg, noon.distanceAu);
    if (riseTransitSet(sun, dayStartJdUt, h0, site, &out->sun) != 0 ||
        riseTransitSet(sun, dayStartJdUt, kCivilTwilightDeg, site, &out->civil) != 0 ||
        riseTransitSet(sun, dayStartJdUt, kNauticalTwilightDeg, site, &out->nautical) != 0 ||
        riseTransitSet(sun, dayStartJdUt, kAstronomicalTwilightDeg, site, &out->astronomical) != 0)
        return 1;
    return 0;
}

}  // namespace nocturnel
