#include "core/apparent_place.h"

#include <cmath>

#include "core/astro_constants.h"
#include "core/astrometry_vectors.h"
#include "core/earth_ephemeris.h"
#include "core/nutation.h"
#include "core/precession.h"
#include "core/sidereal_time.h"
#include "core/time.h"
#include "settings/message.h"

namespace nocturnel {

namespace {

// Where the light is received: barycentric position and velocity, and the vector from the
// Sun, all J2000; plus the TDB date of the reduction.
struct Observer {
    double jdTdb = 0.0;
    Vec3 barycentricPositionAu{}, barycentricVelocityAuPerDay{}, heliocentricPositionAu{};
};

double tdbOfTt(double jdTt) {
    double unusedTt = 0.0, tdbMinusTt = 0.0;
    tdbToTt(jdTt, &unusedTt, &tdbMinusTt);
    return jdTt + tdbMinusTt / kSecondsPerDay;
}

int geocentricObserver(double jdTt, const BodyDescriptor& earth, Observer* observer) {
    observer->jdTdb = tdbOfTt(jdTt);
    if (earth.number != 2 && earth.number != 3) {
        Vec3 p, v;
        return solarSystemVectors(observer->jdTdb, earth.number, 0, &p, &v);
    }
    EarthVectors vectors;
    if (int err = earthVectors(observer->jdTdb, &vectors)) return err;
    observer->barycentricPositionAu = vectors.barycentricPositionAu;
    observer->barycentricVelocityAuPerDay = vectors.barycentricVelocityAuPerDay;
    observer->heliocentricPositionAu = vectors.heliocentricPositionAu;
    return 0;
}

struct TopocentricCache {
    bool valid = false;
    double jdTt = 0.0, deltaTSec = 0.0;
    int earthNumber = 0;
    SiteInfo site;
    Observer observer;
};

bool sameSite(const SiteInfo& a, const SiteInfo& b) {
    return a.latitudeDeg == b.latitudeDeg && a.longitudeEastDeg == b.longitudeEastDeg &&
           a.heightM == b.heightM;
}

// The geocentre's vectors plus the site's, the site taken from the true frame of date back to
// J2000; kept for the last moment and site so a redraw computes it once.
int topocentricObserver(double jdTt, const BodyDescriptor& earth, double deltaTSec, const SiteInfo& site,
                        Observer* observer) {
    thread_local TopocentricCache cache;
    if (cache.valid && cache.jdTt == jdTt && cache.deltaTSec == deltaTSec &&
        cache.earthNumber == earth.number && sameSite(cache.site, site)) {
        *observer = cache.observer;
        return 0;
    }
    Observer fresh;
    if (int err = geocentricObserver(jdTt, earth, &fresh)) return err;
    const double gast = apparentSiderealTimeHours(jdTt - deltaTSec / kSecondsPerDay, jdTt);
    Vec3 sitePosition, siteVelocity;
    terra(site, gast, &sitePosition, &siteVelocity);
    const Mat3 dateToJ2000 = transposed(j2000ToDateMatrix(jdTt));
    const Vec3 sitePositionJ2000 = dateToJ2000 * sitePosition;
    fresh.barycentricPositionAu = fresh.barycentricPositionAu + sitePositionJ2000;
    fresh.barycentricVelocityAuPerDay = fresh.barycentricVelocityAuPerDay + dateToJ2000 * siteVelocity;
    fresh.heliocentricPositionAu = fresh.heliocentricPositionAu + sitePositionJ2000;
    cache = {true, jdTt, deltaTSec, earth.number, site, fresh};
    *observer = fresh;
    return 0;
}

void placeSeenBy(const Observer& observer, double jdTt, const CatalogueEntry& star, double* raHours,
                 double* decDeg) {
    const StarVectors vectors =
        starVectors(star.raHours, star.decDeg, star.pmRaSecPerCentury, star.pmDecArcsecPerCentury,
                    star.parallaxArcsec, star.radialVelocityKmPerS);
    const Vec3 atDate = properMotion(kJ2000Jd, vectors, observer.jdTdb);
    double lightTime = 0.0;
    const Vec3 seen = barycentricToObserver(atDate, observer.barycentricPositionAu, &lightTime);
    const Vec3 deflected = solarDeflection(seen, observer.heliocentricPositionAu);
    const Vec3 aberrated = aberration(deflected, observer.barycentricVelocityAuPerDay, lightTime);
    vectorToRaDec(j2000ToDateMatrix(jdTt) * aberrated, raHours, decDeg);
}

void showEphemerisError(const char* title, int code) {
    showMessage(title, code == 1 ? "Julian date outside 2340000.5 .. 2560000.5" : "Unknown body");
}

}  // namespace

int set_body(int type, int number, const std::string& name, BodyDescriptor* body) {
    if (type < 0 || type > 1) return 1;
    if (number <= 0 || number > 30000) return 2;
    body->type = type;
    body->number = number;
    body->name = name;
    return 0;
}

int app_star(double jdTt, const BodyDescriptor& earth, const CatalogueEntry& star, double* raHours,
             double* decDeg) {
    Observer observer;
    if (int err = geocentricObserver(jdTt, earth, &observer)) return err;
    placeSeenBy(observer, jdTt, star, raHours, decDeg);
    return 0;
}

int topo_star(double jdTt, const BodyDescriptor& earth, double deltaTSec, const CatalogueEntry& star,
              const SiteInfo& site, double* raHours, double* decDeg) {
    Observer observer;
    if (int err = topocentricObserver(jdTt, earth, deltaTSec, site, &observer)) return err;
    placeSeenBy(observer, jdTt, star, raHours, decDeg);
    return 0;
}

const Mat3& j2000ToDateMatrix(double jd) {
    thread_local double lastJd = 0.0;
    thread_local bool valid = false;
    thread_local Mat3 matrix{};
    if (!valid || lastJd != jd) {
        matrix = nutationMatrix(earthTilt(jd)) * precessionMatrix(kJ2000Jd, jd);
        lastJd = jd;
        valid = true;
    }
    return matrix;
}

void precessNutateFromJ2000(double jd, double raJ2000Hours, double decJ2000Deg, double* raDateHours,
                            double* decDateDeg) {
    const Vec3 v = j2000ToDateMatrix(jd) * raDecToVector(raJ2000Hours, decJ2000Deg);
    *decDateDeg = std::asin(std::fmax(-1.0, std::fmin(1.0, v[2]))) * kRadToDeg;
    double ra = std::atan2(v[1], v[0]) * 12.0 / kPi;  // 0 at the pole, where x = y = 0
    if (ra < 0.0) ra += 24.0;
    *raDateHours = ra;
}

SiteInfo siteInfoFromPreferences() {
    const Preferences& p = prefs();
    SiteInfo site;
    site.latitudeDeg = p.latitudeDeg;
    site.longitudeEastDeg = -static_cast<double>(p.longitudeDeg);
    site.heightM = p.altitudeM;
    site.temperatureC = p.temperatureC;
    site.pressureMbar = p.pressureMbar;
    return site;
}

namespace {
// Step 2 of the levels: the place of date the horizon conversion starts from.
int placeOfDateForLevel(double raJ2000Hours, double decJ2000Deg, int level, double jd, double deltaTSec,
                        const SiteInfo& site, double* raHours, double* decDeg) {
    *raHours = raJ2000Hours;
    *decDeg = decJ2000Deg;
    if (level >= 2) {
        BodyDescriptor earth;
        if (set_body(0, 3, "Earth", &earth) != 0) {
            showMessage("Error from set_body", "The Earth could not be described");
            return 1;
        }
        CatalogueEntry entry;
        entry.raHours = raJ2000Hours;
        entry.decDeg = decJ2000Deg;
        if (int err = topo_star(jd, earth, deltaTSec, entry, site, raHours, decDeg)) {
            showEphemerisError("Error from topo_star", err);
            return err;
        }
    } else if (level >= 0) {
        precessNutateFromJ2000(jd, raJ2000Hours, decJ2000Deg, raHours, decDeg);
    }
    return 0;
}

int refractionOptionForLevel(int level) {
    return (level == 1 || level == 3) ? kRefractionSiteWeather : kRefractionNone;
}
}  // namespace

int placeUsedForLevel(double raJ2000Hours, double decJ2000Deg, int level, double jd, double deltaTSec,
                      const SiteInfo& site, double* raUsedHours, double* decUsedDeg) {
    double ra = 0.0, dec = 0.0;
    if (int err = placeOfDateForLevel(raJ2000Hours, decJ2000Deg, level, jd, deltaTSec, site, &ra, &dec))
        return err;
    if (refractionOptionForLevel(level) != kRefractionNone) {
        const HorizontalPlace h =
            horizontalFromEquatorial(jd, deltaTSec, 0.0, 0.0, site, ra, dec, refractionOptionForLevel(level));
        ra = h.raHours;
        dec = h.decDeg;
    }
    *raUsedHours = ra;
    *decUsedDeg = dec;
    return 0;
}

int equatorialToHorizontal(double raHours, double decDeg, int level, const ObservingMoment& moment,
                           double* altDeg, double* azDeg, double* raUsedHours, double* decUsedDeg) {
    const SiteInfo site = siteInfoFromPreferences();
    const double jd = julianDateFromLocal(moment.year, moment.month, moment.day, moment.hour, moment.minute,
                                          moment.second, prefs().utcOffsetMin);
    const double deltaT = deltaTForDate(moment.year, moment.month, moment.day);
    double ra = 0.0, dec = 0.0;
    if (int err = placeOfDateForLevel(raHours, decDeg, level, jd, deltaT, site, &ra, &dec)) return err;
    const HorizontalPlace h =
        horizontalFromEquatorial(jd, deltaT, 0.0, 0.0, site, ra, dec, refractionOptionForLevel(level));
    *altDeg = 90.0 - h.zenithDistanceDeg;
    *azDeg = h.azimuthDeg;
    *raUsedHours = h.raHours;
    *decUsedDeg = h.decDeg;
    return 0;
}

int pointingLevelFromPreferences() {
    return prefs().correction;
}

}  // namespace nocturnel
