// nocturnel site set|store|recall|show: the current observing site and the three memories.
#include <cmath>
#include <cstdio>
#include <cstring>
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
#include "shell/json_output.h"

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

// The record's angles are floats: format the decimal value the float holds (111.6, not
// 111.599998), so that the text does not fall a minute short.
std::string shownDegrees(double deg) { return degreesText(jsonNumber(static_cast<float>(deg))); }

void printSite(const Preferences& p) {
    if (globalOptions().json) {
        nlohmann::json memories = nlohmann::json::array();
        for (const SiteMemory& m : p.siteMemory)
            memories.push_back({{"name", toUtf8(siteNameOf(m.name, sizeof m.name))},
                                {"empty", siteMemoryIsEmpty(m)},
                                {"latitudeDeg", jsonNumber(m.latitudeDeg)},
                                {"longitudeDeg", jsonNumber(m.longitudeDeg)},
                                {"utcOffsetMin", m.utcOffsetMin},
                                {"dstFlag", m.dstFlag},
                                {"altitudeM", m.altitudeM},
                                {"skyQuality", m.skyQuality}});
        const nlohmann::json out = {{"name", toUtf8(siteNameOf(p.siteName, sizeof p.siteName))},
                                    {"latitudeDeg", jsonNumber(p.latitudeDeg)},
                                    {"longitudeDeg", jsonNumber(p.longitudeDeg)},
                                    {"longitudeSense", "positive west"},
                                    {"utcOffsetMin", p.utcOffsetMin},
                                    {"dstFlag", p.dstFlag},
                                    {"altitudeM", p.altitudeM},
                                    {"memories", memories}};
        std::cout << out.dump(2) << "\n";
        return;
    }
    const LocationPageFields page = showLocationPage(p, shownDegrees);
    std::cout << "Location:  " << toUtf8(page.name) << "\n"
              << "Latitude:  " << toUtf8(page.latitude) << "\n"
              << "Longitude: " << toUtf8(page.longitude) << "   (stored positive west: "
              << jsonNumber(p.longitudeDeg) << ")\n"
              << "Height:    " << page.height << " m\n"
              << "GMT (mn):  " << page.utcOffset << (page.daylightSaving ? " + 60 daylight saving" : "") << "\n";
    for (int i = 0; i < kSiteMemoryCount; ++i) {
        const SiteMemory& m = p.siteMemory[i];
        if (siteMemoryIsEmpty(m)) {
            std::cout << "Site" << i + 1 << ":     (empty)\n";
            continue;
        }
        char line[160];
        std::snprintf(line, sizeof line, "Site%d:     \"%s\" %s %s, UT%+d min, %d m", i + 1,
                      siteNameOf(m.name, sizeof m.name).c_str(), latitudeFieldText(m.latitudeDeg, shownDegrees).c_str(),
                      longitudeFieldText(m.longitudeDeg, shownDegrees).c_str(), m.utcOffsetMin, m.altitudeM);
        std::cout << toUtf8(line) << "\n";
    }
}

std::optional<double> readLatitude(const std::string& text) {
    const auto v = readLatitudeText(text);
    if (!v)
        showMessage("Invalid latitude \"" + utf8ToLatin1ForMessage(text) + "\"",
                    "Give degrees from 90 S to 90 N: 31.96N, 31:57:30 N, or a bare number positive north.");
    return v;
}

std::optional<double> readLongitude(const std::string& text) {
    const auto v = readLongitudeText(text);
    if (!v)
        showMessage("Invalid longitude \"" + utf8ToLatin1ForMessage(text) + "\"",
                    "Give degrees from 180 E to 180 W: 111.6W, 111:36:00 W, 2.35E, or a bare number positive WEST.");
    return v;
}

// The site of a fresh record, never set by the user.
bool isDefaultSite(const Preferences& p) {
    const Preferences fresh = defaultPreferences();
    return std::strncmp(p.siteName, fresh.siteName, sizeof p.siteName) == 0 && p.latitudeDeg == fresh.latitudeDeg &&
           p.longitudeDeg == fresh.longitudeDeg;
}

void runSet(const SiteArguments& a) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    const auto lat = readLatitude(a.latitude);
    const auto lon = lat ? readLongitude(a.longitude) : std::nullopt;
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
    // The untouched default site ("None", 48.1 N 1.8 W) never replaces a stored site.
    const int index = a.memory - 1;
    const bool saved = updatePrefsForCommand([&](Preferences& p) {
        if (store && index >= 0 && index < kSiteMemoryCount && isDefaultSite(p) && !siteMemoryIsEmpty(p.siteMemory[index])) {
            showMessagef("Set the site first (site set); Site" + std::to_string(a.memory) + " is unchanged.",
                         "The current site is the default site");
            return false;
        }
        return store ? storeSiteMemory(p, index) : recallSiteMemory(p, index);
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
    set->add_option("--lat", args->latitude, "Latitude: 31.96N, 31:57:30 S, or a bare number positive north")
        ->required();
    set->add_option("--lon", args->longitude,
                    "Longitude: 111.6W, 2.35E, 111:36:00 W; a bare number counts positive WEST (-2.35 is 2.35E)")
        ->required();
    set->add_option("--utc-offset", args->utcOffset, "Local = UT + offset, minutes, daylight saving included")
        ->required();
    set->add_option("--name", args->name, "Site name (at most 11 characters)");
    set->add_option("--height", args->height, "Height above sea level, metres (0..31999)");
    set->callback([args] { runSet(*args); });

    CLI::App* store = site->add_subcommand("store", "Store the current site into memory N (1..3)");
    store->add_option("N", args->memory, "Memory 1, 2 or 3")->required();
    store->callback([args] { runMemory(*args, true); });

    CLI::App* recall = site->add_subcommand("recall", "Make memory N (1..3) the current site (an empty memory is refused)");
    recall->add_option("N", args->memory, "Memory 1, 2 or 3")->required();
    recall->callback([args] { runMemory(*args, false); });

    site->add_subcommand("show", "The current site and the three memories")->callback(runShow);
}

}  // namespace nocturnel
