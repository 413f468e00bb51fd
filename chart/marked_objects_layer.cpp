#include "chart/marked_objects_layer.h"

#include "core/astro_constants.h"

namespace nocturnel {

void drawMarkedObjects(const LayerContext& ctx, const std::vector<MarkedPlace>& places) {
    if (places.empty()) return;
    cairo_t* cr = ctx.cr;
    const Rgb3& c = ctx.palette.telrad;
    cairo_save(cr);
    cairo_set_source_rgb(cr, c.r, c.g, c.b);
    cairo_set_line_width(cr, 1.5 * ctx.view.screenFactor);
    const double radius = kMarkRingRadiusPx * ctx.view.screenFactor;
    for (const MarkedPlace& place : places) {
        ScreenPoint p;
        if (!skyToScreen(ctx.view, ctx.frame, place.raHours, place.decDeg, p)) continue;
        cairo_new_sub_path(cr);
        cairo_arc(cr, p.x, p.y, radius, 0, kTwoPi);
    }
    cairo_stroke(cr);
    cairo_restore(cr);
}

}  // namespace nocturnel
