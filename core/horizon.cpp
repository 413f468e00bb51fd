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

HorizontalPlace horizontalFromEquatorial(double jdTt, double deltaTSec, double xArcsec, double yArcsec,
                                         const SiteInfo& site, double raHours, double decDeg,
                                         int refractionOption) {
    const double jdUt1 = jdTt - deltaTSec / kSecondsPerDay;
    const double gast = apparentSiderealTimeHours(jdUt1, jdTt);

    // Zenith, north and west of the site in the terrestrial frame, then in the celestial frame.
    const double lat = site.latitudeDeg * kDegToRad, lon = site.longitudeEastDeg * kDegToRad;
    const double sinlat = std::sin(lat), coslat = std::cos(lat);
    const double sinlon = std::sin(lon), coslon = std::cos(lon);
    Vec3 uz{coslat * coslon, coslat * sinlon, sinlat};
    Vec3 un{-sinlat * coslon, -sinlat * sinlon, coslat};
    Vec3 uw{sinlon, -coslon, 0.0};
    if (xArcsec != 0.0 || yArcsec != 0.0) {
        uz = wobble(xArcsec, yArcsec, uz);
        un = wobble(xArcsec, yArcsec, un);
        uw = wobble(xArcsec, yArcsec, uw);
    }
    uz = spin(gast, uz);
    un = spin(gast, un);
    uw = spin(gast, uw);

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
