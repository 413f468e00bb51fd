// nocturnel chart: renders the sky chart of the site and moment of the global options into a
// PNG file, or tells the sky position under a chart point (--at X,Y).
#include <chrono>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "catalog/catalogues.h"
#include "chart/chart_labels.h"
#include "chart/chart_render.h"
#include "chart/sky_frame.h"
#include "core/angle_text.h"
#include "settings/preferences.h"
#include "settings/message.h"
#include "shell/selection_marks.h"
#include "shell/app.h"
#include "shell/identify_json.h"
#include "shell/commands.h"
#include "shell/option_checks.h"
#include "shell/target_names.h"

namespace nocturnel {
namespace {

struct ChartOptions {
    std::string output;
    int zoom = 0;
    std::string size = "800x800";
    int mode = 0;
    int scale = 1;
    std::optional<int> rotateDeg;
    std::string ra, dec, az, alt;  // angle texts, checked before use
    std::string center;            // --center NAME
    bool night = false;
    std::string at;
};

bool parsePair(const std::string& text, char separator, int& a, int& b) {
    const std::size_t split = text.find(separator);
    if (split == std::string::npos) return false;
    const auto digitsOnly = [](std::string_view t) {
        if (t.empty() || t.size() > 9) return false;
        for (std::size_t i = 0; i < t.size(); ++i)
            if (!(t[i] >= '0' && t[i] <= '9') && !(i == 0 && t[i] == '-' && t.size() > 1)) return false;
        return true;
    };
    const std::string first = text.substr(0, split), second = text.substr(split + 1);
    if (!digitsOnly(first) || !digitsOnly(second)) return false;
    a = std::stoi(first);
    b = std::stoi(second);
    return true;
}

// The view centre: --center NAME, --ra/--dec (J2000) or --az/--alt, each checked.
bool readCentre(const ChartOptions& o, ChartRequest& request) {
    if (!o.center.empty()) {
        if (!o.ra.empty() || !o.dec.empty() || !o.az.empty() || !o.alt.empty()) {
            showMessage("Give one view centre", "Either --center NAME, --ra/--dec or --az/--alt.");
            return false;
        }
        ResolvedTarget target;
        if (!resolveTarget(o.center, target)) return false;
        request.centreRaHours = target.raHours;
        request.centreDecDeg = target.decDeg;
        return true;
    }
    if (!o.az.empty()) {
        const auto az = checkedAngle(o.az, 0.0, 360.0, "azimuth");
        const auto alt = az ? checkedAngle(o.alt, -90.0, 90.0, "altitude") : std::nullopt;
        if (!alt) return false;
        request.centreAzDeg = *az;
        request.centreAltDeg = *alt;
    } else if (!o.ra.empty()) {
        ResolvedTarget place;
        if (!resolveTargetOrPlace("", o.ra, o.dec, place)) return false;
        request.centreRaHours = place.raHours;
        request.centreDecDeg = place.decDeg;
    }
    return true;
}

// Opens what the chart draws: the default stars are required, the rest is drawn when present.
bool openChartCatalogues() {
    if (openCatalogues() != 0) {
        if (!defaultStarSlot().isOpen()) return false;
        if (!objectSlot().isOpen()) openObjectFiles();
    }
    return true;
}

void runChart(const ChartOptions& o) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    ChartRequest request;
    int width = 0, height = 0;
    if (!parsePair(o.size, 'x', width, height) || width < 16 || height < 16 || width > 8192 || height > 8192) {
        showMessage("Invalid --size \"" + o.size + "\"", "Give WxH in pixels, each side from 16 to 8192, for example 800x600.");
        setExitCode(1);
        return;
    }
    request.width = width;
    request.height = height;
    request.marked = currentSelectionMarks();
    request.zoomLevel = o.zoom;
    request.projectionMode = o.mode;
    request.resolutionFactor = o.scale;
    request.rotationDeg = o.rotateDeg;
    request.moment = prefs().moment;
    if (!readCentre(o, request)) {
        setExitCode(1);
        return;
    }
    if (o.night) prefs().nightMode = 1;
    const bool json = globalOptions().json;

    if (!o.at.empty()) {
        int x = 0, y = 0;
        if (!parsePair(o.at, ',', x, y)) {
            showMessage("Invalid --at \"" + o.at + "\"", "Give X,Y in pixels of the chart, for example 400,300.");
            setExitCode(1);
            return;
        }
        double jd = 0;
        const ChartView view = chartViewForRequest(request, jd);
        double raDate = 0, decDate = 0, ra = 0, dec = 0;
        screenToSky(view, x, y, raDate, decDate);
        dateToJ2000(skyFrameForDate(jd), raDate, decDate, ra, dec);
        const IdentifiedObject there = openChartCatalogues() ? identifyAt(request, x, y) : IdentifiedObject{};
        if (json)
            std::cout << nlohmann::json{{"ra", ra}, {"dec", dec}, {"object", identifiedObjectJson(there)}}.dump() << "\n";
        else
            std::cout << "RA " << toUtf8(hoursText(ra)) << "  Dec " << toUtf8(degreesText(dec)) << " (J2000)\n"
                      << identifiedObjectText(there) << "\n";
        return;
    }
    if (o.output.empty()) {
        showMessage("The chart needs an output file", "Give -o FILE.png, or --at X,Y for a sky position.");
        setExitCode(1);
        return;
    }
    if (!openChartCatalogues()) {
        setExitCode(1);
        return;
    }
    const auto start = std::chrono::steady_clock::now();
    ChartResult result;
    ChartSurface surface = renderChart(request, result);
    if (!surface || !saveChartPng(surface.get(), o.output)) {
        setExitCode(1);
        return;
    }
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    FieldLabel label;
    fieldLabelText(result.view.zoomLevel, label);
    const double fovDeg = fieldOfViewDeg(result.view.zoomLevel);
    if (json) {
        nlohmann::json bright = nlohmann::json::array();
        for (const BrightStarSpot& s : result.bright) bright.push_back({{"hip", s.hip}, {"x", s.x}, {"y", s.y}});
        nlohmann::json out = {{"zoom", result.view.zoomLevel}, {"fovDeg", fovDeg},
                              {"width", result.view.width},    {"height", result.view.height},
                              {"centerX", result.view.centreX}, {"centerY", result.view.centreY},
                              {"fieldStars", result.fieldStars.drawn}, {"ms", ms},
                              {"bright", bright}};
        std::cout << out.dump() << "\n";
    } else {
        std::printf("%s: %s, %s, %dx%d, %zu bright stars, %d field stars, %.1f ms\n", o.output.c_str(),
                    toUtf8(label.fieldOfView).c_str(), toUtf8(label.limits).c_str(), result.view.width,
                    result.view.height, result.bright.size(), result.fieldStars.drawn, ms);
    }
}

}  // namespace

void registerChartCommand(CLI::App& app) {
    auto options = std::make_shared<ChartOptions>();
    CLI::App* cmd = app.add_subcommand("chart", "Draw the sky chart of the site and moment into a PNG file");
    cmd->add_option("-o,--output", options->output, "PNG file to write");
    cmd->add_option("--zoom", options->zoom, "Zoom level 0 (180\xC2\xB0) .. 12 (0.5\xC2\xB0)")->check(CLI::Range(0, 12));
    cmd->add_option("--size", options->size, "Chart size WxH in pixels (default 800x800)");
    cmd->add_option("--scale", options->scale, "Resolution factor: 2 for a high-density screen (size in device pixels)")
        ->check(CLI::IsMember({1, 2}));
    cmd->add_option("--mode", options->mode, "0 zenithal stereographic, 1 rectangular alt-azimuth")->check(CLI::Range(0, 1));
    cmd->add_option("--rotate", options->rotateDeg,
                    "Azimuth shown at the top of a mode 0 chart, degrees (default: facing the centre, or south)")
        ->check(CLI::Range(-360, 360));
    auto* center = cmd->add_option("--center", options->center, "View centre on a named object: Vega, M 42, NGC 1976");
    auto* ra = cmd->add_option("--ra", options->ra, "View centre right ascension, hours (J2000): 5.588 or 5:35:17");
    auto* dec = cmd->add_option("--dec", options->dec, "View centre declination, degrees (J2000): -5.39 or -5:23:28");
    auto* az = cmd->add_option("--az", options->az, "View centre azimuth, degrees from north through east (0..360)");
    auto* alt = cmd->add_option("--alt", options->alt, "View centre altitude, degrees (-90..90)");
    center->excludes(ra);
    center->excludes(az);
    ra->needs(dec);
    dec->needs(ra);
    az->needs(alt);
    alt->needs(az);
    ra->excludes(az);
    ra->excludes(alt);
    dec->excludes(az);
    dec->excludes(alt);
    cmd->add_flag("--night", options->night, "Night mode: red on black");
    cmd->add_option("--at", options->at, "Print the sky position under the chart point X,Y instead of drawing");
    cmd->callback([options] {
        runChart(*options);
        releaseChartFonts();
    });
}

}  // namespace nocturnel
