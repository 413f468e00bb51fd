#include "chart/solar_system_layer.h"

#include <cmath>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

#include "core/astro_constants.h"
#include "core/astrometry_vectors.h"
#include "core/planet_series_format.h"
#include "core/solar_system_sky.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {

Rgb3 bodyColour(SolarBody body) {
    switch (body) {
        case SolarBody::Sun: return {1.0, 0.85, 0.2};
        case SolarBody::Moon: return {0.85, 0.85, 0.8};
        case SolarBody::Mars: return {0.95, 0.45, 0.3};
        case SolarBody::Jupiter: return {0.95, 0.85, 0.7};
        case SolarBody::Saturn: return {0.9, 0.8, 0.55};
        case SolarBody::Uranus:
        case SolarBody::Neptune: return {0.6, 0.8, 0.95};
        default: return {0.95, 0.95, 0.9};
    }
}

// The symbol's radius in pixels: the true disc when larger, else by brightness.
double symbolRadius(const ChartView& view, const SkyFrame& frame, const SolarBodyReport& b, const ScreenPoint& centre) {
    // The smallest symbols in single-resolution pixels, doubled on a double-resolution screen;
    // the true disc is measured in device pixels already.
    double radius = b.body == SolarBody::Sun || b.body == SolarBody::Moon ? 5.0
                                                                           : std::clamp(3.5 - 0.4 * b.physical.magnitude, 1.5, 4.5);
    radius *= view.screenFactor;
    ScreenPoint edge;
    const double semiDiameterDeg = b.physical.diameterArcsec / 7200.0;
    if (skyToScreen(view, frame, b.raJ2000Hours, std::clamp(b.decJ2000Deg + semiDiameterDeg, -90.0, 90.0), edge))
        radius = std::max(radius, std::hypot(edge.x - centre.x, edge.y - centre.y));
    return radius;
}

// The Moon: a dark disc and its lit part, the bright limb turned towards the Sun.
void drawMoonPhase(const LayerContext& ctx, const SolarBodyReport& moon, const SolarBodyReport& sun, const ScreenPoint& p,
                   double r) {
    cairo_t* cr = ctx.cr;
    // The screen direction towards the Sun: a point a degree from the Moon along the great circle.
    const Vec3 m = raDecToVector(moon.raJ2000Hours, moon.decJ2000Deg), s = raDecToVector(sun.raJ2000Hours, sun.decJ2000Deg);
    Vec3 towards = s - dot(s, m) * m;
    const double len = length(towards);
    double angle = 0.0;
    if (len > 1e-9) {
        const Vec3 step = m + (std::tan(kDegToRad) / len) * towards;
        double ra, dec;
        vectorToRaDec(step, &ra, &dec);
        ScreenPoint q;
        if (skyToScreen(ctx.view, ctx.frame, ra, dec, q)) angle = std::atan2(q.y - p.y, q.x - p.x);
    }
    cairo_save(cr);
    cairo_translate(cr, p.x, p.y);
    cairo_rotate(cr, angle);
    cairo_set_source_rgb(cr, 0.25, 0.25, 0.25);
    cairo_arc(cr, 0, 0, r, 0, kTwoPi);
    cairo_fill(cr);
    // Lit part: the half towards the Sun, closed by the terminator (an ellipse of semi-axis
    // r cos i, on the far side when gibbous).
    const double xscale = -std::cos(moon.physical.phaseAngleDeg * kDegToRad);
    const Rgb3 c = bodyColour(SolarBody::Moon);
    cairo_set_source_rgb(cr, c.r, c.g, c.b);
    cairo_arc(cr, 0, 0, r, -kPi / 2, kPi / 2);
    for (int k = 0; k <= 32; ++k) {
        const double t = kPi / 2 - kPi * k / 32.0;
        cairo_line_to(cr, xscale * r * std::cos(t), r * std::sin(t));
    }
    cairo_close_path(cr);
    cairo_fill(cr);
    cairo_restore(cr);
}

// The bodies for the UT date at the site of the preferences; null when the planet file is
// missing. The last report is kept: charts redrawn at the same moment (panning, zooming, taps)
// reuse it instead of summing the planetary and lunar series again.
std::optional<SolarSystemReport> solarSystemForChart(double jdUt) {
    struct Kept {
        std::string file;
        SkyRequest request;
        SolarSystemReport report;
    };
    static std::mutex mutex;
    static std::optional<Kept> kept;
    const std::string file = dataPath(kPlanetSeriesFileName).string();
    std::error_code ec;
    if (!std::filesystem::exists(file, ec)) return std::nullopt;
    SkyRequest request = skyRequestFromPreferences(false);
    request.jdUt = jdUt;
    const auto same = [&](const SkyRequest& a) {
        return a.jdUt == request.jdUt && a.site.latitudeDeg == request.site.latitudeDeg &&
               a.site.longitudeEastDeg == request.site.longitudeEastDeg && a.site.heightM == request.site.heightM &&
               a.site.temperatureC == request.site.temperatureC && a.site.pressureMbar == request.site.pressureMbar &&
               a.correction == request.correction && a.horizonDeg == request.horizonDeg &&
               a.riseSetDayStartJdUt == request.riseSetDayStartJdUt;
    };
    const std::lock_guard lock(mutex);
    if (kept && kept->file == file && same(kept->request)) return kept->report;
    kept.reset();
    SolarSystemReport report;
    if (solarSystemAt(request, &report) != 0) return std::nullopt;
    kept = Kept{file, request, report};
    return report;
}

}  // namespace

std::vector<DrawnSpot> solarSystemSpots(const ChartView& view, double jdUt) {
    std::vector<DrawnSpot> spots;
    const std::optional<SolarSystemReport> found = solarSystemForChart(jdUt);
    if (!found) return spots;
    const SolarSystemReport& report = *found;
    const SkyFrame frame = skyFrameForDate(jdUt);
    for (const SolarBodyReport& b : report.bodies) {
        if (b.outsideTheory) continue;  // Pluto beyond its series' years has no place to tap
        ScreenPoint p;
        if (!skyToScreen(view, frame, b.raJ2000Hours, b.decJ2000Deg, p)) continue;
        DrawnSpot spot;
        IdentifiedObject& o = spot.object;
        o.found = true;
        o.kind = b.body == SolarBody::Sun ? "sun" : b.body == SolarBody::Moon ? "moon" : "planet";
        o.name = o.designation = solarBodyName(b.body);
        o.raHours = b.raJ2000Hours;
        o.decDeg = b.decJ2000Deg;
        o.mag = b.physical.magnitude;
        o.magKnown = true;
        o.x = static_cast<int>(std::lround(p.x));
        o.y = static_cast<int>(std::lround(p.y));
        spot.radiusPx = symbolRadius(view, frame, b, p);
        spots.push_back(std::move(spot));
    }
    return spots;
}

void drawSolarSystem(const LayerContext& ctx, double jdUt) {
    const std::optional<SolarSystemReport> found = solarSystemForChart(jdUt);
    if (!found) return;
    const SolarSystemReport& report = *found;
    cairo_t* cr = ctx.cr;
    // Far bodies first, so that the Moon covers a planet it occults.
    for (int i = kSolarBodyCount - 1; i >= 0; --i) {
        const SolarBodyReport& b = report.bodies[i];
        if (b.outsideTheory) continue;  // Pluto beyond its series' years is not drawn
        ScreenPoint p;
        if (!skyToScreen(ctx.view, ctx.frame, b.raJ2000Hours, b.decJ2000Deg, p)) continue;
        const double r = symbolRadius(ctx.view, ctx.frame, b, p);
        if (b.body == SolarBody::Moon) {
            drawMoonPhase(ctx, b, report.bodies[0], p, r);
        } else {
            const Rgb3 c = bodyColour(b.body);
            cairo_set_source_rgb(cr, c.r, c.g, c.b);
            cairo_arc(cr, p.x, p.y, r, 0, kTwoPi);
            cairo_fill(cr);
            if (b.body == SolarBody::Saturn && r >= ctx.px(3.0)) {  // the rings, as a flat ellipse
                cairo_save(cr);
                cairo_translate(cr, p.x, p.y);
                cairo_scale(cr, 2.2 * r, std::max(ctx.px(0.3), r * std::abs(std::sin(b.physical.saturnRingTiltDeg * kDegToRad))));
                cairo_arc(cr, 0, 0, 1.0, 0, kTwoPi);
                cairo_restore(cr);
                cairo_set_line_width(cr, ctx.px(1.0));
                cairo_stroke(cr);
            }
        }
        placeLabel(ctx, solarBodyName(b.body), p.x + r + ctx.px(2), p.y, bodyColour(b.body));
    }
}

}  // namespace nocturnel
