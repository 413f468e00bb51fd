#include "core/solar_system_sky.h"

#include <array>
#include <string>

#include "core/apparent_place.h"
#include "core/astro_constants.h"
#include "core/astrometry_vectors.h"
#include "core/delta_t_model.h"
#include "core/horizon.h"
#include "core/pluto_theory.h"
#include "core/time.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {

double horizonDegFromIndex(int horizonIndex) {
    constexpr std::array<double, 7> kHorizonDeg = {0.0, 2.0, 4.0, 5.0, 6.0, 8.0, 10.0};
    return horizonIndex >= 0 && horizonIndex < 7 ? kHorizonDeg[horizonIndex] : 0.0;
}

SkyRequest skyRequestFromPreferences(bool withRiseSet) {
    const Preferences& p = prefs();
    const ObservingMoment& m = p.moment;
    SkyRequest r;
    r.jdUt = julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, p.utcOffsetMin);
    r.site = siteInfoFromPreferences();
    r.correction = p.correction;
    r.horizonDeg = horizonDegFromIndex(p.horizonIndex);
    if (withRiseSet) r.riseSetDayStartJdUt = julianDateFromLocal(m.year, m.month, m.day, 0, 0, 0, p.utcOffsetMin);
    return r;
}

namespace {

int computeBody(SolarBody body, const SkyRequest& request, double deltaTSec, SolarBodyReport* out) {
    const double jdTt = request.jdUt + deltaTSec / kSecondsPerDay;
    out->body = body;
    if (geocentricAndTopocentricPlace(body, jdTt, deltaTSec, request.site, &out->geocentric, &out->topocentric) != 0) return 1;
    const Vec3 j2000 = transposed(j2000ToDateMatrix(jdTt)) * raDecToVector(out->topocentric.raHours, out->topocentric.decDeg);
    vectorToRaDec(j2000, &out->raJ2000Hours, &out->decJ2000Deg);
    const int refraction = (request.correction == 1 || request.correction == 3) ? kRefractionSiteWeather : kRefractionNone;
    const HorizontalPlace h = horizontalFromEquatorial(jdTt, deltaTSec, 0.0, 0.0, request.site, out->topocentric.raHours,
                                                       out->topocentric.decDeg, refraction);
    out->altDeg = 90.0 - h.zenithDistanceDeg;
    out->azDeg = h.azimuthDeg;
    out->physical = bodyPhysical(body, out->geocentric);
    out->riseSet.reset();
    if (request.riseSetDayStartJdUt) {
        RiseSetTimes times;
        const double h0 = riseSetAltitudeDeg(body, request.horizonDeg, out->geocentric.distanceAu);
        if (riseTransitSet(bodyTrack(body), *request.riseSetDayStartJdUt, h0, request.site, &times) != 0) return 1;
        out->riseSet = times;
    }
    out->outsideTheory = !solarBodyTheoryHolds(body, jdTt);
    return 0;
}

}  // namespace

bool solarBodyTheoryHolds(SolarBody body, double jdTt) { return body != SolarBody::Pluto || plutoTheoryHolds(jdTt); }

void showOutsideTheoryMessage(SolarBody body) {
    showMessage(std::string(solarBodyName(body)) + " is not computed for this date",
                "Its place is known only from 1885 to 2099.");
}

int solarBodyAt(SolarBody body, const SkyRequest& request, double deltaTSec, SolarBodyReport* out) {
    if (!solarBodyTheoryHolds(body, request.jdUt + deltaTSec / kSecondsPerDay)) {
        showOutsideTheoryMessage(body);
        return kSolarBodyOutsideTheory;
    }
    return computeBody(body, request, deltaTSec, out);
}

int solarSystemAt(const SkyRequest& request, SolarSystemReport* report) {
    report->jdUt = request.jdUt;
    report->deltaTSec = modelDeltaTSeconds(request.jdUt);
    report->deltaTSource = modelDeltaTSource(request.jdUt);
    report->jdTt = request.jdUt + report->deltaTSec / kSecondsPerDay;
    report->bodies.assign(kSolarBodyCount, SolarBodyReport{});
    for (int b = 0; b < kSolarBodyCount; ++b)
        if (int err = computeBody(static_cast<SolarBody>(b), request, report->deltaTSec, &report->bodies[b])) return err;
    return 0;
}

}  // namespace nocturnel
