#include "chart/milky_way_layer.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "catalog/milky_way.h"

namespace nocturnel {
namespace {

struct OutlinePoint {
    double x, y, z;  // J2000 unit vector
    uint8_t level, starts;
};

std::optional<std::vector<OutlinePoint>>& outlineCache() {
    static std::optional<std::vector<OutlinePoint>> cache;
    return cache;
}

const std::vector<OutlinePoint>& outline() {
    auto& cache = outlineCache();
    if (!cache) {
        cache.emplace();
        std::vector<MilkyWayPoint> points;
        if (readMilkyWay(points)) {
            cache->reserve(points.size());
            for (const MilkyWayPoint& p : points) {
                const double ra = p.raHours * M_PI / 12, dec = p.decDeg * M_PI / 180;
                cache->push_back({std::cos(dec) * std::cos(ra), std::cos(dec) * std::sin(ra), std::sin(dec), p.level, p.starts});
            }
        }
    }
    return *cache;
}

// Screen point of a J2000 unit vector, without the horizon cut (the sky clip hides the ground).
std::optional<std::pair<double, double>> outlineScreenPoint(const LayerContext& ctx, const OutlinePoint& p,
                                                            double cosLst, double sinLst) {
    const ChartView& view = ctx.view;
    double x = p.x, y = p.y, z = p.z;
    if (ctx.frame.active) {
        const Mat3& m = ctx.frame.toDate;
        const double dx = m[0][0] * x + m[0][1] * y + m[0][2] * z;
        const double dy = m[1][0] * x + m[1][1] * y + m[1][2] * z;
        const double dz = m[2][0] * x + m[2][1] * y + m[2][2] * z;
        x = dx, y = dy, z = dz;
    }
    // cos d cos H and cos d sin H for H = LST - RA, then (north, east, up).
    const double c = x * cosLst + y * sinLst, s = x * sinLst - y * cosLst;
    const double sphi = view.sinLatitude, cphi = view.cosLatitude;
    const double east = -s, north = cphi * z - sphi * c, up = cphi * c + sphi * z;
    int32_t u = 0, v = 0;
    if (view.projectionMode == 0) {
        if (up < -0.98) return std::nullopt;  // near the nadir: no image
        // tan((90 - alt) / 2) (cos A, sin A) = (north, east) / (1 + sin alt).
        const double pp = north / (1 + up), q = east / (1 + up);
        u = static_cast<int32_t>((view.sinRotation * q + view.cosRotation * pp) * view.scale);
        v = static_cast<int32_t>((view.cosRotation * q - view.sinRotation * pp) * view.scale);
    } else {
        const double altDeg = std::atan2(up, std::hypot(north, east)) * 180 / M_PI;
        const double azDeg = std::atan2(east, north) * 180 / M_PI;
        projectHorizontal(view, azDeg, altDeg, u, v);
    }
    const double dxPixels = static_cast<double>(v) * static_cast<double>(view.xMultiplier) / 17179869184.0;
    const double dyPixels = static_cast<double>(u) * static_cast<double>(view.yMultiplier) / 17179869184.0;
    return std::make_pair(view.centreX - dxPixels, view.centreY - dyPixels);
}

}  // namespace

void drawMilkyWay(const LayerContext& ctx, bool nightMode) {
    const std::vector<OutlinePoint>& points = outline();
    if (points.empty()) return;
    const ChartView& view = ctx.view;
    const double lst = view.lstHours * M_PI / 12, cosLst = std::cos(lst), sinLst = std::sin(lst);
    const double period = view.projectionMode != 0 ? chartPeriodPixels(view) : 0;
    cairo_t* cr = ctx.cr;
    cairo_save(cr);
    // A soft band: on the wide charts, where the outline's points lie a pixel or two apart, its
    // faint edges need no anti-aliasing (the cheapest fill); closer in, where straight edges
    // span many pixels, the fast anti-aliasing keeps them from showing steps. The ground drawn
    // next covers what lies below the horizon.
    cairo_set_antialias(cr, view.zoomLevel <= 3 ? CAIRO_ANTIALIAS_NONE : CAIRO_ANTIALIAS_FAST);
    cairo_set_fill_rule(cr, CAIRO_FILL_RULE_EVEN_ODD);
    const Rgb3& colour = ctx.palette.milkyWay;
    const double alpha = nightMode ? 0.05 : 0.09;  // per level; the levels add up towards the core

    // A point surely outside the Milky Way: the north galactic pole (J2000 12h51.4m +27.13
    // degrees), or the south one when the north pole lies near the nadir. The plane's even-odd
    // rule gives the right side of a ring on the sphere only up to the side the projection's
    // point at infinity falls on; a polygon whose fill holds this point is flipped.
    auto poleFor = [&](double raHours, double decDeg) {
        const double ra = raHours * M_PI / 12, dec = decDeg * M_PI / 180;
        return OutlinePoint{std::cos(dec) * std::cos(ra), std::cos(dec) * std::sin(ra), std::sin(dec), 0, 0};
    };
    auto pole = outlineScreenPoint(ctx, poleFor(12.8567, 27.13), cosLst, sinLst);
    if (!pole) pole = outlineScreenPoint(ctx, poleFor(0.8567, -27.13), cosLst, sinLst);

    std::vector<std::vector<std::pair<double, double>>> rings;
    uint8_t level = 0;
    auto addRing = [&](const std::vector<std::pair<double, double>>& ring, double shift) {
        cairo_move_to(cr, ring[0].first + shift, ring[0].second);
        for (std::size_t i = 1; i < ring.size(); ++i) cairo_line_to(cr, ring[i].first + shift, ring[i].second);
    };
    auto fillPolygon = [&]() {
        cairo_new_path(cr);
        for (const auto& ring : rings) {
            if (ring.size() < 3) continue;
            if (period <= 0) {
                addRing(ring, 0);
                cairo_close_path(cr);
                continue;
            }
            // The panorama: a ring that goes once around in azimuth (round the zenith or the
            // nadir) is laid out over three periods and closed over the top of the chart; any
            // other ring is drawn where it is and one period either side.
            const double net = ring.back().first - ring.front().first;
            if (std::fabs(net) > period / 2) {
                addRing(ring, -period * (net > 0 ? 1 : -1));
                for (double shift : {0.0, period * (net > 0 ? 1 : -1)})
                    for (const auto& [x, y] : ring) cairo_line_to(cr, x + shift, y);
                double x = 0, y = 0;
                cairo_get_current_point(cr, &x, &y);
                cairo_line_to(cr, x, -1.0e5);
                cairo_line_to(cr, ring[0].first - period * (net > 0 ? 1 : -1), -1.0e5);
                cairo_close_path(cr);
            } else {
                for (double shift : {-period, 0.0, period}) {
                    addRing(ring, shift);
                    cairo_close_path(cr);
                }
            }
        }
        if (pole && cairo_in_fill(cr, pole->first, pole->second)) {
            cairo_rectangle(cr, -2.0e5, -2.0e5, 4.0e5, 4.0e5);
        }
        cairo_set_source_rgba(cr, colour.r, colour.g, colour.b, alpha * (level >= 4 ? 1.3 : 1.0));
        cairo_fill(cr);
        rings.clear();
    };
    for (const OutlinePoint& p : points) {
        if (p.starts == 1 && !rings.empty()) fillPolygon();
        if (p.starts != 0 || rings.empty()) {
            rings.emplace_back();
            level = p.level;
        }
        const auto screen = outlineScreenPoint(ctx, p, cosLst, sinLst);
        if (!screen) continue;
        auto& ring = rings.back();
        double x = screen->first;
        // Keep the panorama's ring continuous across the seam.
        if (period > 0 && !ring.empty()) {
            while (x - ring.back().first > period / 2) x -= period;
            while (ring.back().first - x > period / 2) x += period;
        }
        const double y = screen->second;
        // Outline points closer than a pixel to the last one kept add nothing at this zoom but
        // edges for cairo to rasterise (the wide charts hold thousands of them).
        if (!ring.empty() && std::fabs(x - ring.back().first) + std::fabs(y - ring.back().second) < 1.0) continue;
        ring.emplace_back(std::clamp(x, -1.0e5, 1.0e5), std::clamp(y, -1.0e5, 1.0e5));
    }
    if (!rings.empty()) fillPolygon();
    cairo_restore(cr);
}

void forgetMilkyWay() { outlineCache().reset(); }

}  // namespace nocturnel
