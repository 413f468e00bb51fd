#include "core/horizon.h"

#include <cmath>

#include "core/astro_constants.h"
#include "core/sidereal_time.h"

namespace nocturnel {

double refractionDeg(const SiteInfo& site, int refractionOption, double zdDeg) {
    if (zdDeg < 0.1 || zdDeg > 91.0) return 0.0;
    double pressure = site.pressureMbar, temperature = site.temperatureC;
    if (refractionOption != kRefractionSiteWeather) {
        pressure = 1010.0 * std::exp(-site.heightM / 9100.0);
        temperature = 10.0;
    }
    const double h = 90.0 - zdDeg;
    const double r = 0.016667 / std::tan((h + 7.31 / (h + 4.4)) * kDegToRad);
    return r * (0.28 * pressure / (temperature + 273.0));
}

namespace {
// Unit vectors of the site's zenith, north and west in the true equator and equinox of date.
struct SiteAxes {
    Vec3 zenith, north, west;
};

// Built from the site's latitude and longitude, turned by polar motion and the apparent
// sidereal time; the axes of the last moment and site are kept.
SiteAxes siteAxesOfDate(double jdTt, double deltaTSec, double xArcsec, double yArcsec, const SiteInfo& site) {
    struct Cache {
        bool valid = false;
        double jdTt, deltaTSec, xArcsec, yArcsec, latitudeDeg, longitudeEastDeg;
        SiteAxes axes;
    };
    thread_local Cache cache;
    if (cache.valid && cache.jdTt == jdTt && cache.deltaTSec == deltaTSec && cache.xArcsec == xArcsec &&
        cache.yArcsec == yArcsec && cache.latitudeDeg == site.latitudeDeg &&
        cache.longitudeEastDeg == site.longitudeEastDeg)
        return cache.axes;

    const double gast = apparentSiderealTimeHours(jdTt - deltaTSec / kSecondsPerDay, jdTt);
    const double lat = site.latitudeDeg * kDegToRad, lon = site.longitudeEastDeg * kDegToRad;
    const double sinlat = std::sin(lat), coslat = std::cos(lat);
    const double sinlon = std::sin(lon), coslon = std::cos(lon);
    SiteAxes axes{{coslat * coslon, coslat * sinlon, sinlat},
                  {-sinlat * coslon, -sinlat * sinlon, coslat},
                  {sinlon, -coslon, 0.0}};
    if (xArcsec != 0.0 || yArcsec != 0.0) {
        axes = {wobble(xArcsec, yArcsec, axes.zenith), wobble(xArcsec, yArcsec, axes.north),
                wobble(xArcsec, yArcsec, axes.west)};
    }
    axes = {spin(gast, axes.zenith), spin(gast, axes.north), spin(gast, axes.west)};
    cache = {true, jdTt, deltaTSec, xArcsec, yArcsec, site.latitudeDeg, site.longitudeEastDeg, axes};
    return axes;
}
}  // namespace

HorizontalPlace horizontalFromEquatorial(double jdTt, double deltaTSec, double xArcsec, double yArcsec,
                                         const SiteInfo& site, double raHours, double decDeg,
                                         int refractionOption) {
    const SiteAxes axes = siteAxesOfDate(jdTt, deltaTSec, xArcsec, yArcsec, site);
    const Vec3& uz = axes.zenith;
    const Vec3& un = axes.north;
    const Vec3& uw = axes.west;

    const Vec3 p = [&] {
        const double ra = raHours * 15.0 * kDegToRad, dec = decDeg * kDegToRad;
        return Vec3{std::cos(dec) * std::cos(ra), std::cos(dec) * std::sin(ra), std::sin(dec)};
    }();
    const double pz = dot(p, uz), pn = dot(p, un), pw = dot(p, uw);
    const double proj = std::sqrt(pn * pn + pw * pw);
    double az = proj > 0.0 ? -std::atan2(pw, pn) * kRadToDeg : 0.0;
    if (az < 0.0) az += 360.0;
    if (az >= 360.0) az -= 360.0;
    double zd = std::atan2(proj, pz) * kRadToDeg;

    HorizontalPlace place{zd, az, raHours, decDeg};
    if (refractionOption == kRefractionNone) return place;

    // Observed zenith distance: zd = zd0 - R(zd), iterated to 5e-5 degree.
    const double zd0 = zd;
    double refraction = 0.0;
    double previous = 0.0;
    for (int i = 0; i < 100; ++i) {
        previous = zd;
        refraction = refractionDeg(site, refractionOption, zd);
        zd = zd0 - refraction;
        if (std::fabs(zd - previous) <= 5.0e-5) break;
    }
    place.zenithDistanceDeg = zd;
    if (refraction > 0.0 && zd > 3.0e-4) {
        // The direction moved towards the zenith in the plane of zenith and star.
        const double sinzd = std::sin(zd * kDegToRad), coszd = std::cos(zd * kDegToRad);
        const double sinzd0 = std::sin(zd0 * kDegToRad), coszd0 = std::cos(zd0 * kDegToRad);
        Vec3 pr;
        for (int j = 0; j < 3; ++j) pr[j] = (p[j] - coszd0 * uz[j]) / sinzd0 * sinzd + uz[j] * coszd;
        const double xy = std::sqrt(pr[0] * pr[0] + pr[1] * pr[1]);
        double ra = xy > 0.0 ? std::atan2(pr[1], pr[0]) * kRadToDeg / 15.0 : 0.0;
        if (ra < 0.0) ra += 24.0;
        if (ra >= 24.0) ra -= 24.0;
        place.raHours = ra;
        place.decDeg = std::atan2(pr[2], xy) * kRadToDeg;
    }
    return place;
}

}  // namespace nocturnel
