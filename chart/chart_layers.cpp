#include "chart/chart_layers.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "catalog/constellations.h"
#include "catalog/object_tables.h"
#include "chart/label_layout.h"
#include "chart/sky_objects.h"
#include "core/angle_text.h"
#include "core/nutation.h"

namespace nocturnel {
namespace {

constexpr double kDegToRad = M_PI / 180;
constexpr double kCairoLimit = 1.0e6;  // keeps coordinates inside cairo's fixed-point range

using MaybePoint = std::optional<ScreenPoint>;

void setColour(cairo_t* cr, const Rgb3& c) { cairo_set_source_rgb(cr, c.r, c.g, c.b); }

double clampCoordinate(int value) { return std::clamp(static_cast<double>(value), -kCairoLimit, kCairoLimit); }

MaybePoint horizontalPoint(const ChartView& view, double azDeg, double altDeg) {
    int32_t u = 0, v = 0;
    if (!projectHorizontal(view, azDeg, altDeg, u, v)) return std::nullopt;
    ScreenPoint p = chartToScreen(view, u, v);
    p.x = wrapPanoramaX(view, p.x);
    return p;
}

MaybePoint equatorialPoint(const ChartView& view, const SkyFrame& frame, double raHours, double decDeg) {
    double ra = 0, dec = 0;
    j2000ToDate(frame, raHours, decDeg, ra, dec);
    int32_t u = 0, v = 0;
    if (!projectStar(view, view.lstHours, ra, dec, u, v)) return std::nullopt;
    ScreenPoint p = chartToScreen(view, u, v);
    p.x = wrapPanoramaX(view, p.x);
    return p;
}

// Strokes a sampled curve, broken where a point is missing or the panorama wraps. (Each curve
// is stroked alone: one stroke of many long crossing curves is slower for cairo than several.)
void strokeCurve(const LayerContext& ctx, const std::vector<MaybePoint>& points) {
    const int period = chartPeriodPixels(ctx.view);
    bool open = false;
    MaybePoint previous;
    for (MaybePoint p : points) {
        if (!p) open = false;
        // In the panorama a point moved a whole period away continues the curve from the
        // previous one's turn of azimuth.
        if (p && previous && period > 0) {
            while (p->x - previous->x > period / 2) p->x -= period;
            while (previous->x - p->x > period / 2) p->x += period;
        }
        if (p) {
            if (open)
                cairo_line_to(ctx.cr, clampCoordinate(p->x), clampCoordinate(p->y));
            else
                cairo_move_to(ctx.cr, clampCoordinate(p->x), clampCoordinate(p->y));
            open = true;
        }
        previous = p;
    }
    cairo_stroke(ctx.cr);
}

// Azimuth and altitude spans worth sampling around the view centre.
void visibleSpans(const ChartView& view, double& azFrom, double& azTo, double& altFrom, double& altTo) {
    const double fov = fieldOfViewDeg(view.zoomLevel) * std::max(view.width, view.height) /
                       std::max(1, std::min(view.width, view.height));
    if (fov >= 90 || view.centreAltDeg + fov >= 89) {
        azFrom = 0, azTo = 360, altFrom = 0, altTo = 90;
        return;
    }
    const double azHalf = std::min(180.0, fov / std::max(0.05, std::cos(view.centreAltDeg * kDegToRad)));
    azFrom = view.centreAzDeg - azHalf, azTo = view.centreAzDeg + azHalf;
    altFrom = std::max(0.0, view.centreAltDeg - fov), altTo = std::min(90.0, view.centreAltDeg + fov);
}

double gridStepDeg(int zoomLevel) {
    constexpr std::array<double, kZoomLevelCount> steps = {15, 15, 15, 10, 10, 5, 5, 2, 1, 0.5, 0.25, 0.1, 0.05};
    return steps[static_cast<std::size_t>(std::clamp(zoomLevel, 0, kZoomLevelCount - 1))];
}

}  // namespace

ChartPalette chartPalette(int background, int lineColor) {
    ChartPalette p;
    const bool white = background == 2;
    p.sky = white ? Rgb3{1, 1, 1} : background == 1 ? Rgb3{0.03, 0.07, 0.22} : Rgb3{0, 0, 0};
    p.ground = white ? Rgb3{0.86, 0.84, 0.78} : Rgb3{0.10, 0.12, 0.08};
    switch (lineColor) {
        case 2: p.lines = white ? Rgb3{0, 0, 0} : Rgb3{0.40, 0.40, 0.40}; break;  // "Black"
        case 1: p.lines = Rgb3{0.50, 0.50, 0.50}; break;                             // "Gray"
        default: p.lines = white ? Rgb3{0.10, 0.25, 0.70} : Rgb3{0.25, 0.45, 0.90}; break;  // "Blue"
    }
    p.grid = white ? Rgb3{0.70, 0.75, 0.80} : Rgb3{0.18, 0.24, 0.32};
    p.text = white ? Rgb3{0, 0, 0} : Rgb3{0.80, 0.80, 0.80};
    p.horizon = white ? Rgb3{0.30, 0.25, 0.10} : Rgb3{0.45, 0.55, 0.30};
    p.ecliptic = white ? Rgb3{0.70, 0.50, 0.00} : Rgb3{0.80, 0.70, 0.20};
    p.telrad = Rgb3{0.90, 0.15, 0.15};
    p.galaxy = white ? Rgb3{0.70, 0.10, 0.10} : Rgb3{1.00, 0.45, 0.45};
    p.nebula = white ? Rgb3{0.05, 0.50, 0.10} : Rgb3{0.40, 0.90, 0.50};
    p.cluster = white ? Rgb3{0.60, 0.50, 0.00} : Rgb3{0.95, 0.85, 0.30};
    p.otherObject = white ? Rgb3{0.30, 0.30, 0.30} : Rgb3{0.70, 0.70, 0.70};
    p.starName = white ? Rgb3{0.15, 0.15, 0.35} : Rgb3{0.75, 0.80, 0.95};
    p.milkyWay = white ? Rgb3{0.45, 0.50, 0.65} : Rgb3{0.55, 0.62, 0.80};
    return p;
}

LabelGrid::LabelGrid(int width, int height, int cellPixels)
    : columns_(std::max(1, width / std::max(1, cellPixels) + 1)),
      rows_(std::max(1, height / std::max(1, cellPixels) + 1)),
      cell_(std::max(1, cellPixels)),
      used_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_), 0) {}

bool LabelGrid::claim(double left, double top, double width, double height) {
    const int c0 = static_cast<int>(std::floor(left / cell_)), c1 = static_cast<int>(std::floor((left + width) / cell_));
    const int r0 = static_cast<int>(std::floor(top / cell_)), r1 = static_cast<int>(std::floor((top + height) / cell_));
    if (c0 < 0 || r0 < 0 || c1 >= columns_ || r1 >= rows_) return false;  // labels stay wholly on the chart
    for (int r = r0; r <= r1; ++r)
        for (int c = c0; c <= c1; ++c)
            if (used_[static_cast<std::size_t>(r) * columns_ + c]) return false;
    for (int r = r0; r <= r1; ++r)
        for (int c = c0; c <= c1; ++c) used_[static_cast<std::size_t>(r) * columns_ + c] = 1;
    return true;
}

void LabelGrid::mark(double left, double top, double width, double height) {
    const int c0 = std::max(0, static_cast<int>(std::floor(left / cell_)));
    const int c1 = std::min(columns_ - 1, static_cast<int>(std::floor((left + width) / cell_)));
    const int r0 = std::max(0, static_cast<int>(std::floor(top / cell_)));
    const int r1 = std::min(rows_ - 1, static_cast<int>(std::floor((top + height) / cell_)));
    for (int r = r0; r <= r1; ++r)
        for (int c = c0; c <= c1; ++c) used_[static_cast<std::size_t>(r) * columns_ + c] = 1;
}

bool LabelGrid::taken(double left, double top, double width, double height) const {
    const int c0 = std::max(0, static_cast<int>(std::floor(left / cell_)));
    const int c1 = std::min(columns_ - 1, static_cast<int>(std::floor((left + width) / cell_)));
    const int r0 = std::max(0, static_cast<int>(std::floor(top / cell_)));
    const int r1 = std::min(rows_ - 1, static_cast<int>(std::floor((top + height) / cell_)));
    for (int r = r0; r <= r1; ++r)
        for (int c = c0; c <= c1; ++c)
            if (used_[static_cast<std::size_t>(r) * columns_ + c]) return true;
    return false;
}

bool placeLabel(const LayerContext& ctx, const std::string& text, double x, double y, const Rgb3& colour) {
    if (text.empty()) return false;
    const std::string utf8 = toUtf8(text);
    cairo_text_extents_t extents;
    cairo_text_extents(ctx.cr, utf8.c_str(), &extents);
    const double left = x + ctx.px(4), baseline = y + ctx.fontSize * 0.35;
    if (!ctx.labels.claim(left, baseline - ctx.fontSize, extents.x_advance, ctx.fontSize * 1.2)) return false;
    setColour(ctx.cr, colour);
    cairo_move_to(ctx.cr, left, baseline);
    cairo_show_text(ctx.cr, utf8.c_str());
    return true;
}

bool skyToScreen(const ChartView& view, const SkyFrame& frame, double raHours, double decDeg, ScreenPoint& point) {
    const MaybePoint p = equatorialPoint(view, frame, raHours, decDeg);
    if (!p || !insideClip(view, p->x, p->y)) return false;
    point = *p;
    return true;
}

namespace {

// The sky's outline as the current path: the horizon circle, or the band above the horizon.
void skyPath(const LayerContext& ctx) {
    cairo_t* cr = ctx.cr;
    cairo_new_path(cr);
    if (ctx.view.projectionMode == 0) {
        bool first = true;
        for (int az = 0; az <= 360; ++az) {
            const MaybePoint p = horizontalPoint(ctx.view, az, 0);
            if (!p) continue;
            if (first) cairo_move_to(cr, clampCoordinate(p->x), clampCoordinate(p->y));
            else cairo_line_to(cr, clampCoordinate(p->x), clampCoordinate(p->y));
            first = false;
        }
        cairo_close_path(cr);
    } else {
        const MaybePoint horizon = horizontalPoint(ctx.view, ctx.view.centreAzDeg, 0);
        const double y = horizon ? std::clamp(static_cast<double>(horizon->y), 0.0, static_cast<double>(ctx.view.height))
                                 : ctx.view.height;
        cairo_rectangle(cr, 0, 0, ctx.view.width, y);
    }
}

}  // namespace

void drawBackground(const LayerContext& ctx) {
    setColour(ctx.cr, ctx.palette.sky);
    cairo_paint(ctx.cr);
}

void drawGround(const LayerContext& ctx) {
    cairo_save(ctx.cr);
    cairo_set_fill_rule(ctx.cr, CAIRO_FILL_RULE_EVEN_ODD);
    skyPath(ctx);
    cairo_rectangle(ctx.cr, -2, -2, ctx.view.width + 4, ctx.view.height + 4);
    setColour(ctx.cr, ctx.palette.ground);
    cairo_fill(ctx.cr);
    cairo_restore(ctx.cr);
}

void drawAltAzGrid(const LayerContext& ctx) {
    double azFrom = 0, azTo = 360, altFrom = 0, altTo = 90;
    visibleSpans(ctx.view, azFrom, azTo, altFrom, altTo);
    const double step = gridStepDeg(ctx.view.zoomLevel);
    cairo_set_line_width(ctx.cr, ctx.px(0.6));
    setColour(ctx.cr, ctx.palette.grid);
    constexpr int kSamples = 180;
    for (double alt = std::ceil(altFrom / step) * step; alt < 90 && alt <= altTo; alt += step) {
        if (alt <= 0) continue;
        std::vector<MaybePoint> points;
        for (int i = 0; i <= kSamples; ++i) points.push_back(horizontalPoint(ctx.view, azFrom + (azTo - azFrom) * i / kSamples, alt));
        strokeCurve(ctx, points);
    }
    const double azStep = std::max(step, step * 2 * std::floor(1 / std::max(0.05, std::cos(std::min(ctx.view.centreAltDeg, 85.0) * kDegToRad))));
    for (double az = std::ceil(azFrom / azStep) * azStep; az <= azTo; az += azStep) {
        std::vector<MaybePoint> points;
        for (int i = 0; i <= kSamples; ++i) points.push_back(horizontalPoint(ctx.view, az, altFrom + (std::min(altTo, 90 - step) - altFrom) * i / kSamples));
        strokeCurve(ctx, points);
    }
}

void drawEcliptic(const LayerContext& ctx, double jdUt) {
    const double epsilon = earthTilt(jdUt).trueObliquityDeg * kDegToRad;
    cairo_set_line_width(ctx.cr, ctx.px(1.0));
    setColour(ctx.cr, ctx.palette.ecliptic);
    const double dashes[] = {ctx.px(6.0), ctx.px(4.0)};
    cairo_set_dash(ctx.cr, dashes, 2, 0);
    // Every half degree of longitude, and every twentieth of a degree within reach of the chart
    // at the close zoom levels (where half-degree chords would show).
    std::vector<double> longitudes;
    constexpr int kCoarse = 720, kFine = 10;
    const auto along = [&](double lambda, const double (&towards)[3]) {
        return std::cos(lambda) * towards[0] + std::sin(lambda) * (std::cos(epsilon) * towards[1] + std::sin(epsilon) * towards[2]);
    };
    double centre[3] = {0, 0, 0};
    double reachCos = 2;  // no fine samples
    if (ctx.view.zoomLevel >= 8) {
        double raHours = 0, decDeg = 0;
        screenToSky(ctx.view, ctx.view.width / 2, ctx.view.height / 2, raHours, decDeg);
        const double ra = raHours * M_PI / 12, dec = decDeg * kDegToRad;
        centre[0] = std::cos(dec) * std::cos(ra), centre[1] = std::cos(dec) * std::sin(ra), centre[2] = std::sin(dec);
        const double reachDeg = fieldOfViewDeg(ctx.view.zoomLevel) * std::max(ctx.view.width, ctx.view.height) /
                                    std::max(1, std::min(ctx.view.width, ctx.view.height)) + 1.0;
        reachCos = std::cos(std::min(180.0, reachDeg) * kDegToRad);
    }
    bool previousNear = along(0, centre) >= reachCos;
    for (int i = 0; i < kCoarse; ++i) {
        const double lambda = 2 * M_PI * i / kCoarse, next = 2 * M_PI * (i + 1) / kCoarse;
        const bool nextNear = along(next, centre) >= reachCos;
        if (previousNear || nextNear) {
            for (int k = 0; k < kFine; ++k) longitudes.push_back(lambda + (next - lambda) * k / kFine);
        } else {
            longitudes.push_back(lambda);
        }
        previousNear = nextNear;
    }
    longitudes.push_back(2 * M_PI);
    std::vector<MaybePoint> points;
    for (const double lambda : longitudes) {
        const double ra = std::atan2(std::sin(lambda) * std::cos(epsilon), std::cos(lambda));
        const double dec = std::asin(std::sin(epsilon) * std::sin(lambda));
        // Already of date: project without the J2000 rotation.
        int32_t u = 0, v = 0;
        double raHours = ra * 12 / M_PI;
        if (raHours < 0) raHours += 24;
        if (!projectStar(ctx.view, ctx.view.lstHours, raHours, dec / kDegToRad, u, v)) {
            points.emplace_back();
            continue;
        }
        ScreenPoint p = chartToScreen(ctx.view, u, v);
        p.x = wrapPanoramaX(ctx.view, p.x);
        points.emplace_back(p);
    }
    strokeCurve(ctx, points);
    cairo_set_dash(ctx.cr, nullptr, 0, 0);
}

void drawConstellationLines(const LayerContext& ctx) {
    const ConstellationData& data = constellations();
    cairo_set_line_width(ctx.cr, ctx.px(1.0));
    setColour(ctx.cr, ctx.palette.lines);
    for (const ConstellationSegment& s : data.segments) {
        const MaybePoint a = equatorialPoint(ctx.view, ctx.frame, s.raHours1, s.decDeg1);
        MaybePoint b = equatorialPoint(ctx.view, ctx.frame, s.raHours2, s.decDeg2);
        if (!a || !b) continue;
        // In the panorama the second end is taken on the same turn of azimuth as the first (an
        // end just off the chart's edge was moved a whole period away), so that a figure line
        // leaving the chart is still drawn up to the edge.
        const int period = chartPeriodPixels(ctx.view);
        if (period > 0) {
            while (b->x - a->x > period / 2) b->x -= period;
            while (a->x - b->x > period / 2) b->x += period;
        }
        cairo_move_to(ctx.cr, clampCoordinate(a->x), clampCoordinate(a->y));
        cairo_line_to(ctx.cr, clampCoordinate(b->x), clampCoordinate(b->y));
    }
    cairo_stroke(ctx.cr);
}

void drawConstellationNames(const LayerContext& ctx) {
    const ConstellationData& data = constellations();
    const bool wide = ctx.view.zoomLevel <= 2;
    for (const ConstellationRecord& c : data.constellations) {
        ScreenPoint p;
        if (!skyToScreen(ctx.view, ctx.frame, c.labelRaHours, c.labelDecDeg, p)) continue;
        const char* text = wide ? c.abbreviation : c.name;
        const std::size_t capacity = wide ? sizeof c.abbreviation : sizeof c.name;
        const std::string name(text, std::find(text, text + capacity, '\0'));
        placeLabel(ctx, name, p.x - ctx.px(4), p.y, ctx.palette.lines);
    }
}

void drawDeepSkyObjects(const LayerContext& ctx, float magnitudeLimit, std::vector<ChartLabel>* labels) {
    cairo_t* cr = ctx.cr;
    const double pixelsPerArcmin =
        std::min(ctx.view.width, ctx.view.height) / (fieldOfViewDeg(ctx.view.zoomLevel) * 60.0);
    cairo_set_line_width(cr, ctx.px(1.0));
    for (const ChartObject& object : chartObjects()) {
        // Objects of unknown magnitude show only when objects are not limited.
        if (object.mag == 0 ? magnitudeLimit < 100 : object.mag > magnitudeLimit) continue;
        ScreenPoint p;
        if (!skyToScreen(ctx.view, ctx.frame, object.raHours, object.decDeg, p)) continue;
        const int group = object.type < kObjectTypes.size() ? kObjectTypes[object.type].group : 0;
        const double major = std::clamp(object.majorArcmin * pixelsPerArcmin / 2, ctx.px(3.0), ctx.px(200.0));
        const double minor =
            object.minorArcmin > 0 ? std::clamp(object.minorArcmin * pixelsPerArcmin / 2, ctx.px(2.0), major) : major;
        const double x = p.x, y = p.y;
        cairo_new_path(cr);
        switch (group) {
            case 3: {  // galaxies: an ellipse along the position angle
                setColour(cr, ctx.palette.galaxy);
                cairo_save(cr);
                cairo_translate(cr, x, y);
                cairo_rotate(cr, (object.positionAngleDeg >= 0 ? object.positionAngleDeg : 0) * kDegToRad - M_PI / 2);
                cairo_scale(cr, major, std::max(ctx.px(1.5), minor * 0.999));
                cairo_arc(cr, 0, 0, 1, 0, 2 * M_PI);
                cairo_restore(cr);
                cairo_stroke(cr);
                break;
            }
            case 4:  // nebulae: a square
            case 2:  // supernova remnants
                setColour(cr, ctx.palette.nebula);
                cairo_rectangle(cr, x - major, y - major, 2 * major, 2 * major);
                cairo_stroke(cr);
                break;
            case 1: {  // clusters: a dashed circle (open), a circle with a cross (globular)
                setColour(cr, ctx.palette.cluster);
                const bool globular = kObjectTypes[object.type].abbreviation != nullptr &&
                                      std::string(kObjectTypes[object.type].abbreviation).find("GL") != std::string::npos;
                if (!globular) {
                    const double dashes[] = {ctx.px(2.0), ctx.px(2.0)};
                    cairo_set_dash(cr, dashes, 2, 0);
                }
                cairo_new_sub_path(cr);
                cairo_arc(cr, x, y, major, 0, 2 * M_PI);
                cairo_stroke(cr);
                cairo_set_dash(cr, nullptr, 0, 0);
                if (globular) {
                    cairo_move_to(cr, x - major, y);
                    cairo_line_to(cr, x + major, y);
                    cairo_move_to(cr, x, y - major);
                    cairo_line_to(cr, x, y + major);
                    cairo_stroke(cr);
                }
                break;
            }
            default:  // anything else: a small cross
                setColour(cr, ctx.palette.otherObject);
                cairo_move_to(cr, x - ctx.px(3), y - ctx.px(3));
                cairo_line_to(cr, x + ctx.px(3), y + ctx.px(3));
                cairo_move_to(cr, x - ctx.px(3), y + ctx.px(3));
                cairo_line_to(cr, x + ctx.px(3), y - ctx.px(3));
                cairo_stroke(cr);
                break;
        }
        if (labels != nullptr) {
            ChartLabel label;
            label.text = object.name;
            label.x = x;
            label.y = y;
            label.clearance = group == 1 || group == 2 || group == 3 || group == 4 ? major : ctx.px(3);  // at a large object's edge
            label.rank = object.messier > 0 ? 0 : object.caldwell > 0 ? 1 : 2;
            label.mag = object.mag != 0 ? object.mag : 99;
            label.colour = ctx.palette.text;
            labels->push_back(std::move(label));
        }
    }
}

namespace {

struct CompassPoint {
    const char* text;
    ScreenPoint at;
};

// The compass points shown: all eight on the widest stereographic chart and in the panorama,
// the four cardinal ones otherwise; each at its azimuth just above the horizon, once.
std::vector<CompassPoint> compassPoints(const ChartView& view) {
    static constexpr std::array<const char*, 8> kPoints = {"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
    std::vector<CompassPoint> points;
    const double lift = fieldOfViewDeg(view.zoomLevel) * 0.035;
    for (std::size_t i = 0; i < kPoints.size(); ++i) {
        if (i % 2 == 1 && view.zoomLevel > 0 && view.projectionMode == 0) continue;
        MaybePoint p = horizontalPoint(view, i * 45.0, lift);
        if (!p || !insideClip(view, p->x, p->y)) continue;
        // Kept wholly on the chart (a letter on the edge is moved in by its half width).
        const int margin = 8 * view.screenFactor;
        p->x = std::clamp(p->x, view.clip.left + margin, std::max(view.clip.left + margin, view.clip.right - margin));
        points.push_back({kPoints[i], *p});
    }
    return points;
}

void selectCompassFont(const LayerContext& ctx) {
    cairo_select_font_face(ctx.cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
    cairo_set_font_size(ctx.cr, ctx.fontSize + 2 * ctx.view.screenFactor);
}

}  // namespace

void reserveCompassPoints(const LayerContext& ctx) {
    cairo_save(ctx.cr);
    selectCompassFont(ctx);
    for (const CompassPoint& point : compassPoints(ctx.view)) {
        cairo_text_extents_t extents;
        cairo_text_extents(ctx.cr, point.text, &extents);
        ctx.labels.mark(point.at.x - extents.x_advance / 2 - ctx.px(2), point.at.y - extents.height / 2 - ctx.px(2),
                        extents.x_advance + ctx.px(4), extents.height + ctx.px(4));
    }
    cairo_restore(ctx.cr);
}

std::vector<CompassText> drawHorizonAndCompass(const LayerContext& ctx, bool compass) {
    cairo_set_line_width(ctx.cr, ctx.px(1.5));
    setColour(ctx.cr, ctx.palette.horizon);
    std::vector<MaybePoint> points;
    for (int i = 0; i <= 720; ++i) points.push_back(horizontalPoint(ctx.view, i * 0.5, 0));
    strokeCurve(ctx, points);
    std::vector<CompassText> drawn;
    if (!compass) return drawn;
    cairo_save(ctx.cr);
    selectCompassFont(ctx);
    for (const CompassPoint& point : compassPoints(ctx.view)) {
        cairo_text_extents_t extents;
        cairo_text_extents(ctx.cr, point.text, &extents);
        setColour(ctx.cr, ctx.palette.horizon);
        cairo_move_to(ctx.cr, point.at.x - extents.x_advance / 2, point.at.y + extents.height / 2);
        cairo_show_text(ctx.cr, point.text);
        drawn.push_back({point.text, point.at.x - extents.x_advance / 2, point.at.y - extents.height / 2, extents.x_advance,
                         extents.height});
    }
    cairo_restore(ctx.cr);
    return drawn;
}

// Points of the circle of angular radius `radiusRad` around the chart's centre, sampled as the
// Telrad rings are: from the centre's unit vector (north, east, up) and two unit vectors across
// it, each point projected as a horizontal position, so the circle keeps its angular size at
// every zoom level and stays well defined at the zenith.
std::vector<MaybePoint> centredSkyCircle(const ChartView& view, double radiusRad) {
    const double altC = view.centreAltDeg * kDegToRad, azC = view.centreAzDeg * kDegToRad;
    const double centre[3] = {std::cos(altC) * std::cos(azC), std::cos(altC) * std::sin(azC), std::sin(altC)};
    const double up[3] = {-std::sin(altC) * std::cos(azC), -std::sin(altC) * std::sin(azC), std::cos(altC)};
    const double across[3] = {-std::sin(azC), std::cos(azC), 0};
    std::vector<MaybePoint> points;
    for (int i = 0; i <= 144; ++i) {
        const double bearing = 2 * M_PI * i / 144;
        double p[3];
        for (int k = 0; k < 3; ++k)
            p[k] = centre[k] * std::cos(radiusRad) +
                   (up[k] * std::cos(bearing) + across[k] * std::sin(bearing)) * std::sin(radiusRad);
        const double alt = std::asin(std::clamp(p[2], -1.0, 1.0));
        const double az = std::atan2(p[1], p[0]);
        points.push_back(horizontalPoint(view, az / kDegToRad, alt / kDegToRad));
    }
    return points;
}

void drawTelradRings(const LayerContext& ctx, const float (&ringsDeg)[3]) {
    cairo_set_line_width(ctx.cr, ctx.px(1.2));
    setColour(ctx.cr, ctx.palette.telrad);
    for (float ringDeg : ringsDeg) {
        if (!(ringDeg > 0) || ringDeg > 90) continue;
        strokeCurve(ctx, centredSkyCircle(ctx.view, ringDeg / 2 * kDegToRad));  // the ring sizes are diameters
    }
}

namespace {


}  // namespace

void drawEyepieceField(const LayerContext& ctx, double trueFieldDeg, const std::string& label) {
    if (!(trueFieldDeg > 0) || trueFieldDeg > 180) return;
    const std::vector<MaybePoint> points = centredSkyCircle(ctx.view, trueFieldDeg / 2 * kDegToRad);
    cairo_set_line_width(ctx.cr, ctx.px(1.2));
    setColour(ctx.cr, ctx.palette.telrad);
    strokeCurve(ctx, points);
    if (label.empty()) return;

    // The label sits centred above the circle's top, kept on the chart clear of the corner
    // label and the status line when the circle is larger than the chart.
    const MaybePoint* top = nullptr;
    for (const MaybePoint& p : points)
        if (p && (top == nullptr || p->y < (*top)->y)) top = &p;
    const std::string utf8 = toUtf8(label);
    cairo_text_extents_t extents;
    cairo_text_extents(ctx.cr, utf8.c_str(), &extents);
    const double width = extents.x_advance;
    const double anchorX = top != nullptr ? (*top)->x : ctx.view.width / 2.0;
    const double anchorY = top != nullptr ? (*top)->y : 0.0;
    const double margin = ctx.px(2);
    const double left = std::clamp(anchorX - width / 2, margin, std::max(margin, ctx.view.width - width - margin));
    const double lowest = std::max(ctx.fontSize * 3.6, ctx.view.height - ctx.fontSize * 2.0);
    const double first = std::clamp(anchorY - ctx.px(4), ctx.fontSize * 3.6, lowest);
    // Labels placed before it keep their places: the first free line at or below the first
    // choice (the first choice when none is free).
    double baseline = first;
    for (double candidate = first; candidate <= lowest; candidate += ctx.fontSize * 1.3) {
        if (ctx.labels.claim(left, candidate - ctx.fontSize, width, ctx.fontSize * 1.2)) {
            baseline = candidate;
            break;
        }
    }
    setColour(ctx.cr, ctx.palette.telrad);
    cairo_move_to(ctx.cr, left, baseline);
    cairo_show_text(ctx.cr, utf8.c_str());
}

double nightModeBrightness(int nightMode) {
    constexpr double kBrightness[] = {1.0, 0.45, 0.7, 1.0};  // Off, Dark, Medium, Bright
    return nightMode >= 0 && nightMode <= 3 ? kBrightness[nightMode] : 1.0;
}

void applyNightMode(cairo_surface_t* surface, bool whiteScheme, double brightness) {
    cairo_surface_flush(surface);
    const uint32_t scale = static_cast<uint32_t>(std::lround(std::clamp(brightness, 0.0, 1.0) * 256.0));
    unsigned char* data = cairo_image_surface_get_data(surface);
    if (data == nullptr) return;
    const int width = cairo_image_surface_get_width(surface), height = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride);
        for (int x = 0; x < width; ++x) {
            const uint32_t p = line[x];
            const uint32_t r = (p >> 16) & 0xFF, g = (p >> 8) & 0xFF, b = p & 0xFF;
            uint32_t luminance = (77 * r + 151 * g + 28 * b) >> 8;
            if (whiteScheme) luminance = 255 - luminance;
            luminance = (luminance * scale) >> 8;
            line[x] = 0xFF000000u | (luminance << 16);
        }
    }
    cairo_surface_mark_dirty(surface);
}

}  // namespace nocturnel
