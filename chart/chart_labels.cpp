#include "chart/chart_labels.h"

#include <cmath>
#include <cstdio>

#include "chart/chart_view.h"
#include "chart/zoom_limits.h"
#include "core/angle_text.h"
#include "settings/preferences.h"

namespace nocturnel {

bool fieldLabelText(int zoomLevel, FieldLabel& label) {
    if (zoomLevel < 0 || zoomLevel >= kZoomLevelCount) return false;
    const int tenths = kFieldOfViewTenths[static_cast<std::size_t>(zoomLevel)];
    char text[32];
    if (tenths % 10 == 0)
        std::snprintf(text, sizeof text, "FOV %d\xB0", tenths / 10);
    else
        std::snprintf(text, sizeof text, "FOV %d.%d\xB0", tenths / 10, tenths % 10);
    label.fieldOfView = text;
    const int objectLimit = static_cast<int>(objectMagnitudeLimit(zoomLevel));
    const int starLimit = static_cast<int>(starMagnitudeLimit(zoomLevel));
    if (objectLimit == static_cast<int>(kNoObjectLimit))
        std::snprintf(text, sizeof text, "All, S<%d", starLimit);
    else
        std::snprintf(text, sizeof text, "O<%d, S<%d", objectLimit, starLimit);
    label.limits = text;
    return true;
}

double labelFontSize() {
    switch (prefs().fontSize) {
        case 2: return 16;
        case 1: return 13;
        default: return 11;
    }
}

void paintFieldLabel(cairo_t* cr, int x, int y, int zoomLevel) {
    FieldLabel label;
    if (!fieldLabelText(zoomLevel, label)) return;
    cairo_save(cr);  // the label font is selected here and the previous one restored after
    cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    const double size = labelFontSize();
    cairo_set_font_size(cr, size);
    cairo_move_to(cr, x + 1, y + size);
    cairo_show_text(cr, toUtf8(label.fieldOfView).c_str());
    cairo_move_to(cr, x + 1, y + 2.2 * size);
    cairo_show_text(cr, toUtf8(label.limits).c_str());
    cairo_restore(cr);
}

std::string statusLineText(const char* dateText, int hour, int minute, double lstHours) {
    const int lstMinutes = static_cast<int>(std::floor(lstHours * 60.0)) % 1440;
    char text[96];
    std::snprintf(text, sizeof text, "%s %02d:%02d LST:%02d:%02d", dateText, hour, minute, lstMinutes / 60,
                  lstMinutes % 60);
    return text;
}

double paintLoadingMessage(cairo_t* cr, int chartWidth, int y) {
    cairo_save(cr);
    cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, labelFontSize());
    cairo_text_extents_t extents;
    cairo_text_extents(cr, kLoadingMeasureText, &extents);
    const double x = (chartWidth - extents.x_advance) / 2;
    cairo_move_to(cr, x, y);
    cairo_show_text(cr, kLoadingSkyText);
    cairo_restore(cr);
    return x;
}

}  // namespace nocturnel
