#pragma once
// The Sun, the Moon and the planets at one moment for the observer: geocentric and topocentric
// apparent places, the horizontal place (refracted when the "Correction" preference asks),
// the physical data and, on request, the day's rise, transit and set.
#include <optional>
#include <vector>

#include "core/body_physical.h"
#include "core/body_place.h"
#include "core/delta_t_model.h"
#include "core/rise_set.h"

namespace nocturnel {

struct SolarBodyReport {
    SolarBody body = SolarBody::Sun;
    BodyPlace geocentric, topocentric;  // true equator and equinox of date
    double raJ2000Hours = 0.0, decJ2000Deg = 0.0;  // topocentric apparent place turned back to J2000 (for lookups)
    double altDeg = 0.0, azDeg = 0.0;
    BodyPhysical physical;
    std::optional<RiseSetTimes> riseSet;
    // Pluto outside its series' span (1885-2099): the numbers above are an extrapolation that
    // must not be shown as Pluto's place.
    bool outsideTheory = false;
};

struct SolarSystemReport {
    double jdUt = 0.0, jdTt = 0.0, deltaTSec = 0.0;
    DeltaTSource deltaTSource = DeltaTSource::Formula;
    std::vector<SolarBodyReport> bodies;  // Sun, Moon, Mercury ... Pluto
};

struct SkyRequest {
    double jdUt = 0.0;
    SiteInfo site;
    int correction = 0;        // "Correction" index: 1 and 3 refract the horizontal place
    double horizonDeg = 0.0;   // "Horizon" altitude for rise and set
    std::optional<double> riseSetDayStartJdUt;  // local midnight of the day, when rise/set are wanted
};

// The "Horizon" preference in degrees (stored index 0 "0°" .. 6 "10°").
double horizonDegFromIndex(int horizonIndex);
// The request for the preferences' site, correction, horizon and moment (local day for rise/set).
SkyRequest skyRequestFromPreferences(bool withRiseSet);

inline constexpr int kSolarBodyOutsideTheory = 2;

// True when the body's theory covers the TT date (only Pluto's has limits).
bool solarBodyTheoryHolds(SolarBody body, double jdTt);
// The message for a body asked for by name outside its theory's span.
void showOutsideTheoryMessage(SolarBody body);

// One body asked for by name: 0 success; 1 when the planet series file is missing;
// kSolarBodyOutsideTheory (after the message) for Pluto outside 1885-2099.
int solarBodyAt(SolarBody body, const SkyRequest& request, double deltaTSec, SolarBodyReport* report);
// Every body, Sun to Pluto, always ten reports; Pluto outside its span is flagged
// outsideTheory (no message: the caller leaves it out or marks it).
int solarSystemAt(const SkyRequest& request, SolarSystemReport* report);

}  // namespace nocturnel
