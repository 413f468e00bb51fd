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

int placeLabels(const LayerContext& ctx, std::vector<ChartLabel>& labels, std::vector<PlacedLabel>* placed) {
    std::stable_sort(labels.begin(), labels.end(), labelComesFirst);
    int count = 0;
    for (const ChartLabel& label : labels) {
        if (label.text.empty()) continue;
        const std::string utf8 = label.utf8 ? label.text : toUtf8(label.text);
        cairo_text_extents_t extents;
        cairo_text_extents(ctx.cr, utf8.c_str(), &extents);
        const double width = extents.x_advance, height = ctx.fontSize * 1.2, gap = 2 * ctx.view.screenFactor;
        const double c = label.clearance, x = label.x, y = label.y;
        const double side = c * 0.7;  // the corners of a round symbol
        // Candidate boxes (left, top), nearest first: right, left, above, below, then the four
        // corners, then right and left one and two lines further out (crowded places).
        const double h = height;
        const std::array<std::pair<double, double>, 16> places = {{
            {x + c + gap, y - h / 2},
            {x - c - gap - width, y - h / 2},
            {x - width / 2, y - c - gap - h},
            {x - width / 2, y + c + gap},
            {x + side + gap, y - side - gap - h},
            {x + side + gap, y + side + gap},
            {x - side - gap - width, y - side - gap - h},
            {x - side - gap - width, y + side + gap},
            {x + c + gap, y - h * 1.5 - gap},
            {x + c + gap, y + h * 0.5 + gap},
            {x - c - gap - width, y - h * 1.5 - gap},
            {x - c - gap - width, y + h * 0.5 + gap},
            {x - width / 2, y - c - gap - 2 * h},
            {x - width / 2, y + c + gap + h},
            {x + c + gap, y - h * 2.5 - gap},
            {x + c + gap, y + h * 1.5 + gap},
        }};
        for (const auto& [left, top] : places) {
            if (!ctx.labels.claim(left, top, width, height)) continue;
            cairo_set_source_rgb(ctx.cr, label.colour.r, label.colour.g, label.colour.b);
            cairo_move_to(ctx.cr, left, top + ctx.fontSize * 0.95);
            cairo_show_text(ctx.cr, utf8.c_str());
            if (placed != nullptr) placed->push_back({utf8, left, top, width, height});
            ++count;
            break;
        }
    }
    return count;
}

}  // namespace nocturnel
