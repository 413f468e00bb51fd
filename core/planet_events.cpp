#include "core/planet_events.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/astro_constants.h"
#include "core/body_place.h"
#include "core/delta_t_model.h"
#include "core/ecliptic_place.h"
#include "core/pluto_theory.h"
#include "core/root_search.h"

namespace nocturnel {
namespace {

constexpr double kMaxRangeDays = 20.0 * 365.25;

struct Sample {
    double lon = 0.0, ra = 0.0, dec = 0.0, distance = 0.0, sunDistance = 0.0, elongation = 0.0;
};

bool sampleBody(SolarBody body, double jdUt, Sample* s) {
    const double jdTt = jdUt + modelDeltaTSeconds(jdUt) / kSecondsPerDay;
    BodyPlace p;
    if (geocentricPlace(body, jdTt, &p) != 0) return false;
    const EclipticPlace e = eclipticFromPlace(p, jdTt);
    s->lon = e.longitudeDeg;
    s->ra = e.raHours;
    s->dec = e.decDeg;
    s->distance = e.distanceAu;
    s->sunDistance = body == SolarBody::Sun ? e.distanceAu : length(p.bodyHeliocentricAu);
    return true;
}

Sample exactAt(SolarBody body, double jdUt) {
    Sample s;
    sampleBody(body, jdUt, &s);
    return s;
}

// Lagrange's four-point interpolation at u (0..3) of values at 0, 1, 2, 3.
double lagrange4(const double (&y)[4], double u) {
    double sum = 0.0;
    for (int i = 0; i < 4; ++i) {
        double w = 1.0;
        for (int j = 0; j < 4; ++j)
            if (j != i) w *= (u - j) / static_cast<double>(i - j);
        sum += w * y[i];
    }
    return sum;
}

bool wanted(std::string_view filter, std::string_view kind) { return filter.empty() || filter == kind; }

constexpr std::array<SolarBody, 8> kPlanets = {SolarBody::Mercury, SolarBody::Venus,  SolarBody::Mars,    SolarBody::Jupiter,
                                               SolarBody::Saturn,  SolarBody::Uranus, SolarBody::Neptune, SolarBody::Pluto};

}  // namespace

const std::vector<std::string>& planetEventKinds() {
    static const std::vector<std::string> kinds = {"conjunction", "opposition", "greatestElongation", "station", "perihelion",
                                                   "aphelion",    "perigee",    "apogee",             "equinox", "solstice"};
    return kinds;
}

std::vector<PlanetEvent> findPlanetEvents(double fromJdUt, double toJdUt, std::string_view kind) {
    std::vector<PlanetEvent> events;
    toJdUt = std::min(toJdUt, fromJdUt + kMaxRangeDays);
    if (!(toJdUt > fromJdUt)) return events;
    // Daily samples from one day before to one day after the range (extrema need neighbours).
    const int days = static_cast<int>(std::ceil(toJdUt - fromJdUt)) + 3;
    const double first = fromJdUt - 1.0;
    std::vector<std::array<Sample, kSolarBodyCount>> s(days);
    for (int d = 0; d < days; ++d)
        for (int b = 0; b < kSolarBodyCount; ++b)
            if (!sampleBody(static_cast<SolarBody>(b), first + d, &s[d][b])) return {};
    // The place between the daily samples, by four-point interpolation (under an arcsecond for
    // the Moon, far below the ten minutes the events are given to), for the crossings.
    auto at = [&](SolarBody body, double t) {
        const int b = static_cast<int>(body);
        const double x = t - first;
        const int i = std::clamp(static_cast<int>(std::floor(x)) - 1, 0, days - 4);
        const double u = x - i;
        auto interpolate = [&](double Sample::*field, double period) {
            double y[4];
            for (int k = 0; k < 4; ++k) {
                y[k] = s[i + k][b].*field;
                if (period > 0.0 && k > 0) y[k] = y[k - 1] + std::remainder(y[k] - y[k - 1], period);
            }
            return lagrange4(y, u);
        };
        Sample out;
        out.lon = std::fmod(interpolate(&Sample::lon, 360.0) + 720.0, 360.0);
        out.ra = std::fmod(interpolate(&Sample::ra, 24.0) + 48.0, 24.0);
        out.dec = interpolate(&Sample::dec, 0.0);
        out.distance = interpolate(&Sample::distance, 0.0);
        out.sunDistance = interpolate(&Sample::sunDistance, 0.0);
        return out;
    };
    // Extrema are flat: their times come from the full places, not the interpolated ones.
    auto elongationAt = [&](SolarBody body, double t) {
        const Sample b = exactAt(body, t), sun = exactAt(SolarBody::Sun, t);
        return separationDeg(b.ra, b.dec, sun.ra, sun.dec);
    };
    // Pluto's events only where its series holds: outside, its place is an extrapolation.
    auto add = [&](const char* k, double jd, std::vector<std::string> bodies, std::optional<double> sep = {}) {
        if (!(jd >= fromJdUt && jd < toJdUt)) return;
        const bool pluto = std::find(bodies.begin(), bodies.end(), solarBodyName(SolarBody::Pluto)) != bodies.end();
        if (pluto && !plutoTheoryHolds(ttFromUt(jd))) return;
        events.push_back({k, jd, std::move(bodies), sep});
    };
    const int sun = static_cast<int>(SolarBody::Sun), moon = static_cast<int>(SolarBody::Moon);
    for (int d = 0; d + 1 < days; ++d) {
        const double t0 = first + d, t1 = t0 + 1.0;
        // Equinoxes and solstices: the Sun's longitude passing a multiple of 90 degrees.
        for (int q = 0; q < 4 && (wanted(kind, "equinox") || wanted(kind, "solstice")); ++q) {
            const double a = wrap180(s[d][sun].lon - 90.0 * q), b = wrap180(s[d + 1][sun].lon - 90.0 * q);
            if (a < 0.0 && b >= 0.0 && b - a < 10.0) {
                const char* k = q % 2 == 0 ? "equinox" : "solstice";
                if (!wanted(kind, k)) continue;
                const double when = findRoot([&](double t) { return wrap180(at(SolarBody::Sun, t).lon - 90.0 * q); }, t0, t1);
                add(k, when, {"Sun"});
            }
        }
        // Oppositions: a planet 180 degrees from the Sun in longitude.
        if (wanted(kind, "opposition"))
            for (SolarBody p : kPlanets) {
                if (p == SolarBody::Mercury || p == SolarBody::Venus) continue;
                const int i = static_cast<int>(p);
                const double a = wrap180(s[d][i].lon - s[d][sun].lon - 180.0), b = wrap180(s[d + 1][i].lon - s[d + 1][sun].lon - 180.0);
                // The Sun overtakes the planet: the difference decreases through zero.
                if ((a < 0.0) != (b < 0.0) && std::abs(b - a) < 10.0) {
                    const double when = findRoot(
                        [&](double t) { return wrap180(at(p, t).lon - at(SolarBody::Sun, t).lon - 180.0); }, t0, t1);
                    add("opposition", when, {solarBodyName(p)});
                }
            }
        // Conjunctions in right ascension: planet pairs and the Moon with each planet.
        if (wanted(kind, "conjunction")) {
            auto conjunction = [&](SolarBody x, SolarBody y) {
                const int i = static_cast<int>(x), j = static_cast<int>(y);
                const double a = wrap180((s[d][i].ra - s[d][j].ra) * 15.0), b = wrap180((s[d + 1][i].ra - s[d + 1][j].ra) * 15.0);
                if ((a < 0.0) == (b < 0.0) || std::abs(b - a) > 90.0) return;
                const double when = findRoot(
                    [&](double t) {
                        const Sample u = at(x, t), v = at(y, t);
                        return wrap180((u.ra - v.ra) * 15.0);
                    },
                    t0, t1);
                const Sample u = at(x, when), v = at(y, when);
                add("conjunction", when, {solarBodyName(x), solarBodyName(y)}, separationDeg(u.ra, u.dec, v.ra, v.dec));
            };
            for (size_t m = 0; m < kPlanets.size(); ++m) {
                if (kPlanets[m] == SolarBody::Pluto) continue;
                conjunction(SolarBody::Moon, kPlanets[m]);
                for (size_t n = m + 1; n < kPlanets.size(); ++n)
                    if (kPlanets[n] != SolarBody::Pluto) conjunction(kPlanets[m], kPlanets[n]);
            }
        }
        if (d == 0) continue;
        const double tm = t0 - 1.0;  // the previous sample
        // Extrema at the middle sample d (between d - 1 and d + 1).
        auto isMax = [](double a, double b, double c) { return b > a && b >= c; };
        auto isMin = [](double a, double b, double c) { return b < a && b <= c; };
        if (wanted(kind, "greatestElongation"))
            for (SolarBody p : {SolarBody::Mercury, SolarBody::Venus}) {
                const int i = static_cast<int>(p);
                const double e0 = separationDeg(s[d - 1][i].ra, s[d - 1][i].dec, s[d - 1][sun].ra, s[d - 1][sun].dec);
                const double e1 = separationDeg(s[d][i].ra, s[d][i].dec, s[d][sun].ra, s[d][sun].dec);
                const double e2 = separationDeg(s[d + 1][i].ra, s[d + 1][i].dec, s[d + 1][sun].ra, s[d + 1][sun].dec);
                if (isMax(e0, e1, e2)) {
                    const double when = findMaximum([&](double t) { return elongationAt(p, t); }, tm, t1);
                    add("greatestElongation", when, {solarBodyName(p)}, elongationAt(p, when));
                }
            }
        if (wanted(kind, "station"))
            for (SolarBody p : kPlanets) {
                const int i = static_cast<int>(p);
                const double r0 = wrap180(s[d][i].lon - s[d - 1][i].lon), r1 = wrap180(s[d + 1][i].lon - s[d][i].lon);
                if ((r0 < 0.0) != (r1 < 0.0)) {
                    auto rate = [&](double t) { return wrap180(exactAt(p, t + 0.25).lon - exactAt(p, t - 0.25).lon); };
                    add("station", findRoot(rate, tm + 0.5, t0 + 0.5), {solarBodyName(p)});
                }
            }
        if (wanted(kind, "perihelion") || wanted(kind, "aphelion"))
            for (SolarBody p : {SolarBody::Earth, SolarBody::Mercury, SolarBody::Venus, SolarBody::Mars}) {
                // The Earth's distance from the Sun is the Sun's from the Earth.
                const int i = static_cast<int>(p == SolarBody::Earth ? SolarBody::Sun : p);
                const SolarBody sampled = static_cast<SolarBody>(i);
                const double a = s[d - 1][i].sunDistance, b = s[d][i].sunDistance, c = s[d + 1][i].sunDistance;
                const char* name = p == SolarBody::Earth ? "Earth" : solarBodyName(p);
                if (isMin(a, b, c) && wanted(kind, "perihelion"))
                    add("perihelion", findMaximum([&](double t) { return -exactAt(sampled, t).sunDistance; }, tm, t1), {name});
                if (isMax(a, b, c) && wanted(kind, "aphelion"))
                    add("aphelion", findMaximum([&](double t) { return exactAt(sampled, t).sunDistance; }, tm, t1), {name});
            }
        {
            const double a = s[d - 1][moon].distance, b = s[d][moon].distance, c = s[d + 1][moon].distance;
            if (isMin(a, b, c) && wanted(kind, "perigee"))
                add("perigee", findMaximum([&](double t) { return -exactAt(SolarBody::Moon, t).distance; }, tm, t1), {"Moon"});
            if (isMax(a, b, c) && wanted(kind, "apogee"))
                add("apogee", findMaximum([&](double t) { return exactAt(SolarBody::Moon, t).distance; }, tm, t1), {"Moon"});
        }
    }
    std::sort(events.begin(), events.end(), [](const PlanetEvent& a, const PlanetEvent& b) { return a.jdUt < b.jdUt; });
    return events;
}

}  // namespace nocturnel
