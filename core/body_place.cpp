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

int placeFromObserver(SolarBody body, double jdTt, const StateVector& offset, BodyPlace* place) {
    const PlanetSeriesSet* series = planetSeries();
    if (!series) return 1;
    thread_local double earthJd = 0.0;
    thread_local StateVector earth{};
    if (earthJd != jdTt) {
        earth = heliocentricState(*series, SolarBody::Earth, jdTt);
        earthJd = jdTt;
    }
    const Vec3 observer = earth.positionAu + offset.positionAu;
    const Vec3 observerVelocity = earth.velocityAuPerDay + offset.velocityAuPerDay + sunBarycentricVelocity(jdTt);

    Vec3 relative{};
    double tau = 0.0;
    Vec3 bodyHelio{};
    if (body == SolarBody::Moon) {
        // Evaluated once at the mean light time: the Moon's distance changes the light time by
        // under 0.1 s, a shift of under 0.06 arcsecond.
        const Vec3 moon = moonGeocentricPosition(*series, jdTt - kMoonMeanLightTimeDays);
        // Seen from the observer's place at the moment; the Earth's own motion during the light
        // time is taken out linearly, so that aberration below applies to the Moon as to a planet.
        tau = length(moon - offset.positionAu) / kLightAuPerDay;
        relative = moon - offset.positionAu - tau * earth.velocityAuPerDay;
        bodyHelio = earth.positionAu + moon;
    } else {
        // Two rounds of light time: the first from the body's place at the moment.
        Vec3 helio = heliocentricPosition(*series, body, jdTt);
        tau = length(helio - observer) / kLightAuPerDay;
        helio = heliocentricPosition(*series, body, jdTt - tau);
        tau = length(helio - observer) / kLightAuPerDay;
        relative = helio - observer;
        bodyHelio = helio;
        if (body != SolarBody::Sun) relative = solarDeflection(relative, observer);
    }
    const double distance = length(relative);
    const Vec3 apparent = aberration(relative, observerVelocity, tau);
    const Vec3 ofDate = j2000ToDateMatrix(jdTt) * apparent;
    vectorToRaDec(ofDate, &place->raHours, &place->decDeg);
    place->distanceAu = distance;
    place->lightTimeDays = tau;
    place->jdTt = jdTt;
    place->bodyHeliocentricAu = bodyHelio;
    place->observerHeliocentricAu = observer;
    return 0;
}

int geocentricPlace(SolarBody body, double jdTt, BodyPlace* place) {
    return placeFromObserver(body, jdTt, StateVector{}, place);
}

int topocentricPlace(SolarBody body, double jdTt, double deltaTSec, const SiteInfo& site, BodyPlace* place) {
    return placeFromObserver(body, jdTt, siteOffsetJ2000(jdTt, deltaTSec, site), place);
}

}  // namespace nocturnel
