#include "core/body_place.h"

#include <array>
#include <cctype>

#include "core/apparent_place.h"
#include "core/astro_constants.h"
#include "core/astrometry_vectors.h"
#include "core/earth_ephemeris.h"
#include "core/sidereal_time.h"

namespace nocturnel {
namespace {

constexpr std::array<const char*, kSolarBodyCount> kNames = {"Sun",     "Moon",   "Mercury", "Venus",   "Mars",
                                                             "Jupiter", "Saturn", "Uranus",  "Neptune", "Pluto"};
constexpr double kMoonMeanLightTimeDays = 384400.0 / kKmPerAu / kLightAuPerDay;

// The Sun's velocity about the solar-system barycentre, for the observer's barycentric velocity.
Vec3 sunBarycentricVelocity(double jdTt) {
    Vec3 position{}, velocity{};
    if (solarSystemVectors(jdTt, 10, 0, &position, &velocity) != 0) return {};
    return velocity;
}

}  // namespace

const char* solarBodyName(SolarBody body) {
    const int i = static_cast<int>(body);
    return i >= 0 && i < kSolarBodyCount ? kNames[i] : "Earth";
}

std::optional<SolarBody> solarBodyByName(std::string_view name) {
    for (int i = 0; i < kSolarBodyCount; ++i) {
        const std::string_view candidate = kNames[i];
        if (candidate.size() != name.size()) continue;
        bool same = true;
        for (size_t k = 0; k < name.size() && same; ++k)
            same = std::tolower(static_cast<unsigned char>(name[k])) == std::tolower(static_cast<unsigned char>(candidate[k]));
        if (same) return static_cast<SolarBody>(i);
    }
    return std::nullopt;
}

StateVector siteOffsetJ2000(double jdTt, double deltaTSec, const SiteInfo& site) {
    const double gast = apparentSiderealTimeHours(jdTt - deltaTSec / kSecondsPerDay, jdTt);
    Vec3 position{}, velocity{};
    terra(site, gast, &position, &velocity);
    const Mat3 dateToJ2000 = transposed(j2000ToDateMatrix(jdTt));
    return {dateToJ2000 * position, dateToJ2000 * velocity};
}

namespace {

// The body's position (heliocentric, J2000) as its light left it for an observer at
// `observer` (heliocentric), and the light time. The Moon: see below.
struct Emission {
    Vec3 bodyHelio;
    double tau;
};

// Light time for the planets in one evaluation of the full series: the first guess of the
// light time comes from the series cut to their terms above 1e-6 (of a radian or an AU), a
// place within 1e-5 AU, so a light time within 0.01 s.
Emission planetEmission(const PlanetSeriesSet& series, SolarBody body, double jdTt, const Vec3& observer) {
    const Vec3 rough = heliocentricPosition(series, body, jdTt, 1e-6);
    double tau = length(rough - observer) / kLightAuPerDay;
    const Vec3 roughAtEmission = heliocentricPosition(series, body, jdTt - tau, 1e-6);
    tau = length(roughAtEmission - observer) / kLightAuPerDay;
    const Vec3 helio = heliocentricPosition(series, body, jdTt - tau);
    return {helio, length(helio - observer) / kLightAuPerDay};
}

void finishPlace(const Vec3& relative, double tau, const Vec3& observerVelocity, double jdTt, const Vec3& bodyHelio,
                 const Vec3& observer, BodyPlace* place) {
    const Vec3 apparent = aberration(relative, observerVelocity, tau);
    const Vec3 ofDate = j2000ToDateMatrix(jdTt) * apparent;
    vectorToRaDec(ofDate, &place->raHours, &place->decDeg);
    place->distanceAu = length(relative);
    place->lightTimeDays = tau;
    place->jdTt = jdTt;
    place->bodyHeliocentricAu = bodyHelio;
    place->observerHeliocentricAu = observer;
}

const StateVector& earthAt(const PlanetSeriesSet& series, double jdTt) {
    thread_local double earthJd = 0.0;
    thread_local StateVector earth{};
    if (earthJd != jdTt) {
        earth = heliocentricState(series, SolarBody::Earth, jdTt);
        earthJd = jdTt;
    }
    return earth;
}

// The places seen from each of the offsets (the Earth's centre: a zero offset).
int placesFromObservers(SolarBody body, double jdTt, const StateVector* offsets, BodyPlace* const* places, int count) {
    const PlanetSeriesSet* series = planetSeries();
    if (!series) return 1;
    const StateVector& earth = earthAt(*series, jdTt);
    const Vec3 sunVelocity = sunBarycentricVelocity(jdTt);
    if (body == SolarBody::Moon) {
        // Evaluated once at the mean light time: the Moon's distance changes the light time by
        // under 0.1 s, a shift of under 0.06 arcsecond.
        const Vec3 moon = moonGeocentricPosition(*series, jdTt - kMoonMeanLightTimeDays);
        for (int k = 0; k < count; ++k) {
            const Vec3 observer = earth.positionAu + offsets[k].positionAu;
            const Vec3 velocity = earth.velocityAuPerDay + offsets[k].velocityAuPerDay + sunVelocity;
            const double tau = length(moon - offsets[k].positionAu) / kLightAuPerDay;
            // Seen from the observer's place at the moment; the Earth's own motion during the
            // light time is taken out, so that aberration applies to the Moon as to a planet.
            const Vec3 relative = moon - offsets[k].positionAu - tau * earth.velocityAuPerDay;
            finishPlace(relative, tau, velocity, jdTt, earth.positionAu + moon, observer, places[k]);
        }
        return 0;
    }
    const Emission emission = planetEmission(*series, body, jdTt, earth.positionAu);
    for (int k = 0; k < count; ++k) {
        const Vec3 observer = earth.positionAu + offsets[k].positionAu;
        const Vec3 velocity = earth.velocityAuPerDay + offsets[k].velocityAuPerDay + sunVelocity;
        Vec3 relative = emission.bodyHelio - observer;
        const double tau = length(relative) / kLightAuPerDay;
        if (body != SolarBody::Sun) relative = solarDeflection(relative, observer);
        finishPlace(relative, tau, velocity, jdTt, emission.bodyHelio, observer, places[k]);
    }
    return 0;
}

}  // namespace

int placeFromObserver(SolarBody body, double jdTt, const StateVector& offset, BodyPlace* place) {
    BodyPlace* const places[] = {place};
    return placesFromObservers(body, jdTt, &offset, places, 1);
}

int geocentricAndTopocentricPlace(SolarBody body, double jdTt, double deltaTSec, const SiteInfo& site, BodyPlace* geocentric,
                                  BodyPlace* topocentric) {
    const StateVector offsets[] = {StateVector{}, siteOffsetJ2000(jdTt, deltaTSec, site)};
    BodyPlace* const places[] = {geocentric, topocentric};
    return placesFromObservers(body, jdTt, offsets, places, 2);
}

int geocentricPlace(SolarBody body, double jdTt, BodyPlace* place) {
    return placeFromObserver(body, jdTt, StateVector{}, place);
}

int topocentricPlace(SolarBody body, double jdTt, double deltaTSec, const SiteInfo& site, BodyPlace* place) {
    return placeFromObserver(body, jdTt, siteOffsetJ2000(jdTt, deltaTSec, site), place);
}

}  // namespace nocturnel
