#include "core/rise_set.h"

#include <array>
#include <cmath>

#include "core/apparent_place.h"
#include "core/astro_constants.h"
#include "core/astrometry_vectors.h"
#include "core/body_physical.h"
#include "core/body_place.h"
#include "core/delta_t_model.h"
#include "core/horizon.h"
#include "core/sidereal_time.h"

namespace nocturnel {
namespace {

constexpr int kSamples = 5;  // every 6 hours over the day
constexpr double kStepDays = 10.0 / 1440.0;
constexpr double kPrecisionDays = 0.5 / 86400.0;

// The day's place as five samples, interpolated by Lagrange's formula.
struct DayTrack {
    std::array<double, kSamples> ra{}, dec{}, dist{};
    double start = 0.0;
    bool load(const GeocentricTrack& track, double jdUtStart, double deltaTSec) {
        start = jdUtStart;
        for (int k = 0; k < kSamples; ++k) {
            const double jdTt = jdUtStart + k * 0.25 + deltaTSec / kSecondsPerDay;
            if (!track(jdTt, &ra[k], &dec[k], &dist[k])) return false;
            if (k > 0) {  // RA made continuous
                while (ra[k] - ra[k - 1] > 12.0) ra[k] -= 24.0;
                while (ra[k] - ra[k - 1] < -12.0) ra[k] += 24.0;
            }
        }
        return true;
    }
    static double lagrange(const std::array<double, kSamples>& y, double x) {
        double sum = 0.0;
        for (int i = 0; i < kSamples; ++i) {
            double w = 1.0;
            for (int j = 0; j < kSamples; ++j)
                if (j != i) w *= (x - j) / static_cast<double>(i - j);
            sum += w * y[i];
        }
        return sum;
    }
    void at(double jdUt, double* raH, double* decD, double* distAu) const {
        const double x = (jdUt - start) * 4.0;
        *raH = lagrange(ra, x);
        *decD = lagrange(dec, x);
        *distAu = lagrange(dist, x);
    }
};

struct Sky {
    const DayTrack& track;
    const SiteInfo& site;
    double deltaTSec;
    // Topocentric altitude and azimuth and the local hour angle (degrees, (-180, 180]).
    void at(double jdUt, double* alt, double* az, double* hourAngle) const {
        double ra, dec, dist;
        track.at(jdUt, &ra, &dec, &dist);
        const double jdTt = jdUt + deltaTSec / kSecondsPerDay;
        const double gast = apparentSiderealTimeHours(jdUt, jdTt);
        Vec3 sitePos{}, siteVel{};
        terra(site, gast, &sitePos, &siteVel);
        const Vec3 topo = raDecToVector(ra, dec, dist) - sitePos;
        double raTopo, decTopo;
        vectorToRaDec(topo, &raTopo, &decTopo);
        double h = std::fmod((gast - raTopo) * 15.0 + site.longitudeEastDeg, 360.0);
        if (h > 180.0) h -= 360.0;
        if (h <= -180.0) h += 360.0;
        *hourAngle = h;
        const double phi = site.latitudeDeg * kDegToRad, d = decTopo * kDegToRad, hr = h * kDegToRad;
        *alt = std::asin(std::sin(phi) * std::sin(d) + std::cos(phi) * std::cos(d) * std::cos(hr)) * kRadToDeg;
        *az = std::atan2(-std::cos(d) * std::sin(hr), std::sin(d) * std::cos(phi) - std::cos(d) * std::sin(phi) * std::cos(hr)) * kRadToDeg;
        if (*az < 0.0) *az += 360.0;
    }
    double altitude(double jdUt) const {
        double alt, az, h;
        at(jdUt, &alt, &az, &h);
        return alt;
    }
    double hourAngle(double jdUt) const {
        double alt, az, h;
        at(jdUt, &alt, &az, &h);
        return h;
    }
};

template <typename F>
double bisect(F f, double a, double b) {
    double fa = f(a);
    while (b - a > kPrecisionDays) {
        const double m = 0.5 * (a + b);
        const double fm = f(m);
        if ((fm < 0.0) == (fa < 0.0)) {
            a = m;
            fa = fm;
        } else {
            b = m;
        }
    }
    return 0.5 * (a + b);
}

}  // namespace

double riseSetAltitudeDeg(SolarBody body, double horizonDeg, double distanceAu) {
    double h0 = horizonDeg - kHorizonRefractionDeg;
    if ((body == SolarBody::Sun || body == SolarBody::Moon) && distanceAu > 0.0)
        h0 -= std::asin(bodyRadiusKm(body) / (distanceAu * kKmPerAu)) * kRadToDeg;
    return h0;
}

GeocentricTrack bodyTrack(SolarBody body) {
    return [body](double jdTt, double* ra, double* dec, double* dist) {
        BodyPlace place;
        if (geocentricPlace(body, jdTt, &place) != 0) return false;
        *ra = place.raHours;
        *dec = place.decDeg;
        *dist = place.distanceAu;
        return true;
    };
}

GeocentricTrack catalogueTrack(double raJ2000Hours, double decJ2000Deg) {
    return [raJ2000Hours, decJ2000Deg](double jdTt, double* ra, double* dec, double* dist) {
        precessNutateFromJ2000(jdTt, raJ2000Hours, decJ2000Deg, ra, dec);
        *dist = 1.0e9;
        return true;
    };
}

void topocentricAltAz(double raHours, double decDeg, double distanceAu, double jdUt, double jdTt, const SiteInfo& site,
                      double* altDeg, double* azDeg) {
    DayTrack t;
    t.start = jdUt;
    t.ra.fill(raHours);
    t.dec.fill(decDeg);
    t.dist.fill(distanceAu);
    Sky sky{t, site, (jdTt - jdUt) * kSecondsPerDay};
    double h;
    sky.at(jdUt, altDeg, azDeg, &h);
}

int riseTransitSet(const GeocentricTrack& track, double jdUtStart, double h0, const SiteInfo& site, RiseSetTimes* out) {
    *out = RiseSetTimes{};
    const double deltaT = modelDeltaTSeconds(jdUtStart);
    DayTrack day;
    if (!day.load(track, jdUtStart, deltaT)) return 1;
    const Sky sky{day, site, deltaT};
    const int steps = static_cast<int>(std::lround(1.0 / kStepDays));
    double prevT = jdUtStart, prevAlt, prevAz, prevH;
    sky.at(prevT, &prevAlt, &prevAz, &prevH);
    bool above = prevAlt > h0, allAbove = above, allBelow = !above;
    for (int i = 1; i <= steps; ++i) {
        const double t = jdUtStart + i * kStepDays;
        double alt, az, h;
        sky.at(t, &alt, &az, &h);
        allAbove = allAbove && alt > h0;
        allBelow = allBelow && alt <= h0;
        if ((prevAlt <= h0) != (alt <= h0)) {
            const double when = bisect([&](double x) { return sky.altitude(x) - h0; }, prevT, t);
            double a, z, hh;
            sky.at(when, &a, &z, &hh);
            if (alt > h0 && !out->riseJdUt) {
                out->riseJdUt = when;
                out->riseAzDeg = z;
            } else if (alt <= h0 && !out->setJdUt) {
                out->setJdUt = when;
                out->setAzDeg = z;
            }
        }
        if (prevH < 0.0 && h >= 0.0 && h - prevH < 90.0 && !out->transitJdUt) {
            const double when = bisect([&](double x) { return sky.hourAngle(x); }, prevT, t);
            out->transitJdUt = when;
            const double alt0 = sky.altitude(when);
            out->transitAltDeg = alt0 + refractionDeg(site, kRefractionStandard, 90.0 - alt0);
        }
        prevT = t;
        prevAlt = alt;
        prevH = h;
    }
    if (!out->riseJdUt && !out->setJdUt) {
        out->circumpolar = allAbove;
        out->neverRises = allBelow;
    }
    return 0;
}

}  // namespace nocturnel
