#include "chart/chart_render.h"

#include <fontconfig/fontconfig.h>

#include <cmath>
#include <cstdio>

#include "catalog/catalogues.h"
#include "catalog/eyepieces.h"
#include "catalog/star_motion.h"
#include "chart/chart_labels.h"
#include "chart/chart_layers.h"
#include "chart/label_layout.h"
#include "chart/marked_objects_layer.h"
#include "chart/milky_way_layer.h"
#include "chart/star_names.h"
#include "chart/solar_system_layer.h"
#include "chart/png_writer.h"
#include "chart/sky_objects.h"
#include "chart/star_images.h"
#include "chart/zoom_limits.h"
#include "core/time.h"
#include "settings/atomic_file.h"
#include "settings/message.h"

namespace nocturnel {
namespace {

// Magnitude step of a star: whole magnitudes (negative ones count as 0 ... -1), plus 1 on a
// single-resolution screen.
int magnitudeStep(double mag, int screenFactor) {
    return static_cast<int>(std::floor(mag)) + (screenFactor == 1 ? 1 : 0);
}

bool box(int which) { return prefs().displayBox[which] != 0; }

}  // namespace

ChartView chartViewForRequest(const ChartRequest& request, double& jdUt) {
    const ObservingMoment& m = request.moment;
    const Preferences& p = prefs();
    jdUt = julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, p.utcOffsetMin);
    ChartView view = makeChartView(request.width, request.height, request.projectionMode, p.latitudeDeg);
    view.screenFactor = request.resolutionFactor == 2 ? 2 : 1;
    view.lstHours = localSiderealTime(m.year, m.month, m.day, m.hour, m.minute, m.second, p.longitudeDeg, p.utcOffsetMin);
    setViewRotation(view, request.rotationDeg.value_or(0));
    setZoomLevel(view, request.zoomLevel);
    if (request.centreAzDeg && request.centreAltDeg) {
        setViewCentreHorizontal(view, *request.centreAzDeg, *request.centreAltDeg);
    } else if (request.centreRaHours && request.centreDecDeg) {
        double ra = *request.centreRaHours, dec = *request.centreDecDeg;
        if (request.precess) j2000ToDate(skyFrameForDate(jdUt), *request.centreRaHours, *request.centreDecDeg, ra, dec);
        setViewCentreEquatorial(view, ra, dec);
    } else {
        setDefaultViewCentre(view);
        return view;
    }
    if (!request.rotationDeg) {
        // Facing the centre: its azimuth at the bottom of the chart.
        const double az = view.centreAzDeg, alt = view.centreAltDeg;
        setViewRotation(view, static_cast<int>(std::lround(az + 180)) % 360);
        setViewCentreHorizontal(view, az, alt);
    }
    return view;
}

ChartSurface renderChart(const ChartRequest& request, ChartResult& result) {
    ChartSurface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, request.width, request.height));
    if (request.width <= 0 || request.height <= 0 || cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
        showMessage("Can't allocate offscreen window", "");
        return nullptr;
    }
    const Preferences& p = prefs();
    const ChartPalette palette = chartPalette(p.background, p.lineColor);
    cairo_t* cr = cairo_create(surface.get());

    result = {};
    result.view = chartViewForRequest(request, result.jdUt);
    const ChartView& view = result.view;
    const SkyFrame frame = request.precess ? skyFrameForDate(result.jdUt) : SkyFrame{};
    const double fontSize = labelFontSize() * view.screenFactor;

    if (request.present) {
        cairo_set_source_rgb(cr, palette.sky.r, palette.sky.g, palette.sky.b);
        cairo_paint(cr);
        cairo_set_source_rgb(cr, palette.text.r, palette.text.g, palette.text.b);
        cairo_save(cr);
        cairo_scale(cr, view.screenFactor, view.screenFactor);  // the message's font at the screen's density
        paintLoadingMessage(cr, view.width / view.screenFactor, view.height / 2 / view.screenFactor);
        cairo_restore(cr);
        cairo_surface_flush(surface.get());
        request.present(surface.get());
    }
    if (request.switchCatalogForZoom && p.cardCatalog > 0) switchStarCatalogForZoom(view.zoomLevel);

    LabelGrid labels(view.width, view.height, 6 * view.screenFactor);
    cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, fontSize);
    const LayerContext ctx{cr, view, frame, palette, labels, fontSize};
    // The corner label, the status line and the compass points keep their places free of labels.
    labels.mark(0, 0, fontSize * 8, fontSize * 2.6);
    if (!box(kBoxHideInfoBar)) labels.mark(0, view.height - fontSize * 1.6, fontSize * 18, fontSize * 1.6);
    if (!box(kBoxHideCompass)) reserveCompassPoints(ctx);
    if (request.tap) reserveSymbol(labels, request.tap->x, request.tap->y, kTapClearancePixels * view.screenFactor);
    const bool names = box(kBoxObjNames);
    std::vector<ChartLabel> chartLabels;

    // Layers, bottom to top.
    drawBackground(ctx);
    drawMilkyWay(ctx, p.nightMode != 0);
    drawGround(ctx);
    if (box(kBoxAltAzGrid) && !box(kBoxHideGrid)) drawAltAzGrid(ctx);
    if (box(kBoxEcliptic)) drawEcliptic(ctx, result.jdUt);
    if (box(kBoxConstLines)) drawConstellationLines(ctx);
    drawDeepSkyObjects(ctx, objectMagnitudeLimit(view.zoomLevel), names ? &chartLabels : nullptr);

    // Stars are blended straight into the surface's pixels.
    cairo_surface_flush(surface.get());
    StarStyle starStyle = starStyleFromPreferences();
    starStyle.screenFactor = view.screenFactor;
    StarPainter painter(starStyle);
    const double epoch = julianEpochOfJd(result.jdUt);
    const std::vector<DefaultStarRecord>& brightStars = chartBrightStars();
    const std::vector<StarPlace>& brightPlaces = chartBrightStarPlaces(epoch);  // where their motion has taken them
    for (std::size_t i = 0; i < brightStars.size(); ++i) {
        const DefaultStarRecord& star = brightStars[i];
        ScreenPoint point;
        if (!skyToScreen(view, frame, brightPlaces[i].raHours, brightPlaces[i].decDeg, point)) continue;
        const int step = magnitudeStep(star.mag, view.screenFactor);
        painter.paintStar(surface.get(), view.zoomLevel, step, star.colour, point.x, point.y);
        result.bright.push_back({star.hip, point.x, point.y, star.mag});
        const double radius = starDiscDiameter(starSizeStep(starStyle, view.zoomLevel, step)) * view.screenFactor / 2;
        if (names) {
            ChartLabel label;
            if (starLabelText(star, view.zoomLevel, label.text)) {
                label.utf8 = true;
                label.x = point.x;
                label.y = point.y;
                label.clearance = radius + ctx.px(1);
                label.mag = star.mag;
                label.colour = palette.starName;
                chartLabels.push_back(std::move(label));
            }
        }
        // The centres of the bright stars stay visible (and tappable) through the labels.
        if (star.mag < kClearStarMagnitude) reserveSymbol(labels, point.x, point.y, ctx.px(0.5));
    }
    result.fieldStars = loadFieldStars(
        view, starMagnitudeLimit(view.zoomLevel), true, frame,
        [&](int step, int colour, int x, int y) { painter.paintStar(surface.get(), view.zoomLevel, step, colour, x, y); },
        request.stopRequested, epoch);
    cairo_surface_mark_dirty(surface.get());

    drawSolarSystem(ctx, result.jdUt);
    drawMarkedObjects(ctx, request.marked);
    std::vector<PlacedLabel> placed;
    placeLabels(ctx, chartLabels, &placed);
    for (const PlacedLabel& l : placed) result.labels.push_back({l.text, l.left, l.top, l.width, l.height});
    if (box(kBoxConstNames)) drawConstellationNames(ctx);
    for (const CompassText& c : drawHorizonAndCompass(ctx, !box(kBoxHideCompass)))
        result.compass.push_back({c.text, c.left, c.top, c.width, c.height});
    if (box(kBoxTelrad)) drawTelradRings(ctx, p.telradRingDeg);
    if (box(kBoxEyepiece)) {
        EyepieceField eyepiece;
        if (chosenEyepieceField(eyepiece)) drawEyepieceField(ctx, eyepiece.trueFieldDeg, eyepiece.label);
    }

    cairo_set_source_rgb(cr, palette.text.r, palette.text.g, palette.text.b);
    cairo_save(cr);
    cairo_scale(cr, view.screenFactor, view.screenFactor);
    paintFieldLabel(cr, 2, 2, view.zoomLevel);
    cairo_restore(cr);
    if (!box(kBoxHideInfoBar)) {
        const ObservingMoment& m = request.moment;
        char date[32];
        std::snprintf(date, sizeof date, "%04d-%02d-%02d", m.year, m.month, m.day);
        const std::string status = statusLineText(date, m.hour, m.minute, view.lstHours);
        cairo_move_to(cr, ctx.px(3), view.height - fontSize * 0.5);
        cairo_show_text(cr, status.c_str());
    }
    cairo_destroy(cr);
    if (p.nightMode != 0) applyNightMode(surface.get(), p.background == 2, nightModeBrightness(p.nightMode));
    cairo_surface_flush(surface.get());
    if (request.present) request.present(surface.get());
    return surface;
}

bool saveChartPng(cairo_surface_t* surface, const std::filesystem::path& path) {
    if (surface == nullptr) return false;
    std::vector<uint8_t> png;
    if (!encodePng(surface, png)) {
        showMessage("Can't create file", path.string());
        return false;
    }
    return writeOutputFile(path, std::string_view(reinterpret_cast<const char*>(png.data()), png.size()),
                           "Can't create file");
}

void releaseChartFonts() {
    cairo_debug_reset_static_data();
    FcFini();
}

}  // namespace nocturnel
