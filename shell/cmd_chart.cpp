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
#include "shell/app.h"
#include "shell/commands.h"

namespace nocturnel {
namespace {

struct ChartOptions {
    std::string output;
    int zoom = 0;
    std::string size = "800x800";
    int mode = 0;
    int scale = 1;
    std::optional<int> rotateDeg;
    std::optional<double> ra, dec, az, alt;
    bool night = false;
    std::string at;
};

bool parsePair(const std::string& text, char separator, int& a, int& b) {
    char extra = 0;
    const std::string format = std::string("%d") + separator + "%d%c";
    return std::sscanf(text.c_str(), format.c_str(), &a, &b, &extra) == 2;
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
        std::cerr << "--size wants WxH with each side 16..8192\n";
        setExitCode(1);
        return;
    }
    request.width = width;
    request.height = height;
    request.zoomLevel = o.zoom;
    request.projectionMode = o.mode;
    request.resolutionFactor = o.scale;
    request.rotationDeg = o.rotateDeg;
    request.moment = prefs().moment;
    if (o.az && o.alt) {
        request.centreAzDeg = o.az;
        request.centreAltDeg = o.alt;
    } else if (o.ra && o.dec) {
        request.centreRaHours = o.ra;
        request.centreDecDeg = o.dec;
    }
    if (o.night) prefs().nightMode = 1;
    const bool json = globalOptions().json;

    if (!o.at.empty()) {
        int x = 0, y = 0;
        if (!parsePair(o.at, ',', x, y)) {
            std::cerr << "--at wants X,Y in pixels\n";
            setExitCode(1);
            return;
        }
        double jd = 0;
        const ChartView view = chartViewForRequest(request, jd);
        double raDate = 0, decDate = 0, ra = 0, dec = 0;
        screenToSky(view, x, y, raDate, decDate);
        dateToJ2000(skyFrameForDate(jd), raDate, decDate, ra, dec);
        if (json)
            std::cout << nlohmann::json{{"ra", ra}, {"dec", dec}}.dump() << "\n";
        else
            std::cout << "RA " << toUtf8(hoursText(ra)) << "  Dec " << toUtf8(degreesText(dec)) << " (J2000)\n";
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
    auto* ra = cmd->add_option("--ra", options->ra, "View centre right ascension, hours (J2000)")->check(CLI::Range(0.0, 24.0));
    auto* dec = cmd->add_option("--dec", options->dec, "View centre declination, degrees (J2000)")->check(CLI::Range(-90.0, 90.0));
    auto* az = cmd->add_option("--az", options->az, "View centre azimuth, degrees from north through east")->check(CLI::Range(0.0, 360.0));
    auto* alt = cmd->add_option("--alt", options->alt, "View centre altitude, degrees")->check(CLI::Range(-90.0, 90.0));
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
