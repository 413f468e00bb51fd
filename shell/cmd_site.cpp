// nocturnel site set|store|recall|show: the current observing site and the three memories.
#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "core/angle_text.h"
#include "settings/location_page.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/commands.h"

namespace nocturnel {
namespace {

struct SiteArguments {
    std::string latitude, longitude, name, utcOffset, height;
    int memory = 0;
};

std::string siteNameOf(const char* text, std::size_t size) {
    std::size_t n = 0;
    while (n < size && text[n] != '\0') ++n;
    return std::string(text, n);
}

void printSite(const Preferences& p) {
    if (globalOptions().json) {
        nlohmann::json memories = nlohmann::json::array();
        for (const SiteMemory& m : p.siteMemory)
            memories.push_back({{"name", toUtf8(siteNameOf(m.name, sizeof m.name))},
                                {"latitudeDeg", m.latitudeDeg},
                                {"longitudeDeg", m.longitudeDeg},
                                {"utcOffsetMin", m.utcOffsetMin},
                                {"dstFlag", m.dstFlag},
                                {"altitudeM", m.altitudeM},
                                {"skyQuality", m.skyQuality}});
        const nlohmann::json out = {{"name", toUtf8(siteNameOf(p.siteName, sizeof p.siteName))},
                                    {"latitudeDeg", p.latitudeDeg},
                                    {"longitudeDeg", p.longitudeDeg},
                                    {"utcOffsetMin", p.utcOffsetMin},
                                    {"dstFlag", p.dstFlag},
                                    {"altitudeM", p.altitudeM},
                                    {"memories", memories}};
        std::cout << out.dump(2) << "\n";
        return;
    }
    const LocationPageFields page = showLocationPage(p, [](double deg) { return degreesText(deg); });
    std::cout << "Location:  " << toUtf8(page.name) << "\n"
              << "Latitude:  " << toUtf8(page.latitude) << "\n"
              << "Longitude: " << toUtf8(page.longitude) << "\n"
              << "Height:    " << page.height << " m\n"
              << "GMT (mn):  " << page.utcOffset << (page.daylightSaving ? " + 60 daylight saving" : "") << "\n";
    for (int i = 0; i < kSiteMemoryCount; ++i) {
        const SiteMemory& m = p.siteMemory[i];
        char line[160];
        std::snprintf(line, sizeof line, "Site%d:     \"%s\" lat %.4f lon %.4f W, UT%+d min, %d m", i + 1,
                      siteNameOf(m.name, sizeof m.name).c_str(), m.latitudeDeg, m.longitudeDeg, m.utcOffsetMin,
                      m.altitudeM);
        std::cout << toUtf8(line) << "\n";
    }
}

std::optional<double> readAngle(const std::string& text, double limit, const char* what) {
    const auto v = parseAngleText(text);
    if (!v || std::fabs(*v) > limit) {
        char range[64];
        std::snprintf(range, sizeof range, "The %s must be between %g and %g degrees.", what, -limit, limit);
        showMessage("Invalid " + std::string(what) + " \"" + utf8ToLatin1ForMessage(text) + "\"", range);
        return std::nullopt;
    }
    return v;
}

void runSet(const SiteArguments& a) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    const auto lat = readAngle(a.latitude, 90.0, "latitude");
    const auto lon = lat ? readAngle(a.longitude, 180.0, "longitude") : std::nullopt;
    if (!lat || !lon) {
        setExitCode(1);
        return;
    }
    // The Location page's rules: offset -1439..1439 (6 characters), height 0..31999 (6 characters).
    long offset = 0, height = 0;
    if (!readIntegerField(a.utcOffset, kUtcOffsetChars, offset) || offset < -1439 || offset > 1439) {
        showMessage("Invalid UT offset \"" + utf8ToLatin1ForMessage(a.utcOffset) + "\"", "The offset must be between -1439 and 1439 minutes.");
        setExitCode(1);
        return;
    }
    if (!a.height.empty() && (!readIntegerField(a.height, kHeightChars, height) || height < 0 || height > 31999)) {
        showMessage("Invalid height \"" + utf8ToLatin1ForMessage(a.height) + "\"", "The height must be between 0 and 31999 metres.");
        setExitCode(1);
        return;
    }
    const auto name = utf8ToLatin1(a.name);
    if (!name || name->size() > kLocationNameChars - 1) {
        showMessage("Invalid site name \"" + utf8ToLatin1ForMessage(a.name) + "\"", "A site name has at most 11 Latin-1 characters.");
        setExitCode(1);
        return;
    }
    const bool saved = updatePrefsForCommand([&](Preferences& p) {
        setSitePosition(p, *lat, *lon, static_cast<int>(offset));
        if (!name->empty()) copyFixedText(p.siteName, name->c_str());
        if (!a.height.empty()) p.altitudeM = static_cast<int16_t>(height);
        return true;
    });
    if (!saved) return;
    printSite(prefs());
}

void runMemory(const SiteArguments& a, bool store) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    const bool saved = updatePrefsForCommand([&](Preferences& p) {
        return store ? storeSiteMemory(p, a.memory - 1) : recallSiteMemory(p, a.memory - 1);
    });
    if (!saved) return;
    printSite(prefs());
}

void runShow() {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    printSite(prefs());
}

}  // namespace

void registerSiteCommand(CLI::App& app) {
    CLI::App* site = app.add_subcommand("site", "The observing site and the memories Site1..Site3");
    site->require_subcommand(1);
    auto args = std::make_shared<SiteArguments>();

    CLI::App* set = site->add_subcommand("set", "Set the current site (longitude positive WEST, as stored)");
    set->add_option("--lat", args->latitude, "Latitude, degrees north (decimal or 48:06:00)")->required();
    set->add_option("--lon", args->longitude, "Longitude, degrees WEST positive (decimal or 1:48:00)")->required();
    set->add_option("--utc-offset", args->utcOffset, "Local = UT + offset, minutes, daylight saving included")
        ->required();
    set->add_option("--name", args->name, "Site name (at most 11 characters)");
    set->add_option("--height", args->height, "Height above sea level, metres (0..31999)");
    set->callback([args] { runSet(*args); });

    CLI::App* store = site->add_subcommand("store", "Store the current site into memory N (1..3)");
    store->add_option("N", args->memory, "Memory 1, 2 or 3")->required();
    store->callback([args] { runMemory(*args, true); });

    CLI::App* recall = site->add_subcommand("recall", "Make memory N (1..3) the current site");
    recall->add_option("N", args->memory, "Memory 1, 2 or 3")->required();
    recall->callback([args] { runMemory(*args, false); });

    site->add_subcommand("show", "The current site and the three memories")->callback(runShow);
}

}  // namespace nocturnel
