#include "chart/label_layout.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "core/angle_text.h"

namespace nocturnel {

bool labelComesFirst(const ChartLabel& a, const ChartLabel& b) {
    return std::tie(a.rank, a.mag, a.text) < std::tie(b.rank, b.mag, b.text);
}

void reserveSymbol(LabelGrid& grid, double x, double y, double halfSide) {
    grid.mark(x - halfSide, y - halfSide, 2 * halfSide, 2 * halfSide);
}

int placeLabels(const LayerContext& ctx, std::vector<ChartLabel>& labels) {
    std::stable_sort(labels.begin(), labels.end(), labelComesFirst);
    int placed = 0;
    for (const ChartLabel& label : labels) {
        if (label.text.empty()) continue;
        const std::string utf8 = label.utf8 ? label.text : toUtf8(label.text);
        cairo_text_extents_t extents;
        cairo_text_extents(ctx.cr, utf8.c_str(), &extents);
        const double width = extents.x_advance, height = ctx.fontSize * 1.2, gap = 2;
        const double c = label.clearance;
        // Candidate boxes (left, top): right, left, above, below the symbol.
        const std::array<std::pair<double, double>, 4> places = {{
            {label.x + c + gap, label.y - height / 2},
            {label.x - c - gap - width, label.y - height / 2},
            {label.x - width / 2, label.y - c - gap - height},
            {label.x - width / 2, label.y + c + gap},
        }};
        for (const auto& [left, top] : places) {
            if (!ctx.labels.claim(left, top, width, height)) continue;
            cairo_set_source_rgb(ctx.cr, label.colour.r, label.colour.g, label.colour.b);
            cairo_move_to(ctx.cr, left, top + ctx.fontSize * 0.95);
            cairo_show_text(ctx.cr, utf8.c_str());
            ++placed;
            break;
        }
    }
    return placed;
}

}  // namespace nocturnel
