#pragma once
// Labels of stars and deep-sky objects, placed after every symbol is drawn: the better-known
// object wins where labels compete (Messier, then Caldwell, then by magnitude), each label sits
// beside its symbol (right, left, above or below, the first place free), large objects are
// labelled at their edge, and no label covers a compass point, the corner label, the info bar
// or the centre of a bright symbol (where a finger taps).
#include <string>
#include <vector>

#include "chart/chart_layers.h"

namespace nocturnel {

struct ChartLabel {
    std::string text;          // Latin-1, or UTF-8 when utf8 is set
    bool utf8 = false;
    double x = 0, y = 0;       // centre of the symbol, pixels
    double clearance = 4;      // from the centre to the label's near side (the symbol's radius)
    int rank = 2;              // 0 Messier, 1 Caldwell, 2 any other object or star
    double mag = 99;           // unknown magnitudes last
    Rgb3 colour;
};

// Priority order: rank, then magnitude, then text (a stable, repeatable order).
bool labelComesFirst(const ChartLabel& a, const ChartLabel& b);
// Keeps a small box around a symbol's centre free of labels.
void reserveSymbol(LabelGrid& grid, double x, double y, double halfSide);
// A label as drawn: its text (UTF-8) and box in pixels.
struct PlacedLabel {
    std::string text;
    double left = 0, top = 0, width = 0, height = 0;
};
// Sorts the labels by priority and draws each one that finds a free place; appends what was
// drawn to `placed` when given and returns how many.
int placeLabels(const LayerContext& ctx, std::vector<ChartLabel>& labels, std::vector<PlacedLabel>* placed = nullptr);

}  // namespace nocturnel
