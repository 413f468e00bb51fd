// nocturnel find NAME: any catalogued object by catalogue and number, common name, Bayer or
// Flamsteed designation; nocturnel find --suggest PREFIX: the names starting with a prefix.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "catalog/constellations.h"
#include "catalog/object_finder.h"
#include "catalog/object_tables.h"
#include "catalog/objects.h"
#include "core/angle_text.h"
#include "shell/api_json.h"
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/cmd_planets.h"
#include "shell/sky_reports.h"
#include "shell/commands.h"

namespace nocturnel {
namespace {
// Declinations carry their sign both ways ("+38°47'01", "-16°42'58").
std::string declinationText(double decDeg) {
    const std::string text = toUtf8(degreesText(decDeg));
    return (text.empty() || text[0] == '-' || text[0] == '+') ? text : "+" + text;
}

std::string sizeText(const FoundObject& object) {
    if (object.majorArcmin <= 0) return {};
    char text[48];
    if (object.minorArcmin > 0 && object.minorArcmin != object.majorArcmin)
        std::snprintf(text, sizeof text, "%.1f' x %.1f'", object.majorArcmin, object.minorArcmin);
    else
        std::snprintf(text, sizeof text, "%.1f'", object.majorArcmin);
    return text;
}

void printObject(const FoundObject& object) {
    const std::string constellation = constellationNameOf(object.constellation);
    const std::string size = sizeText(object);
    std::cout << toUtf8(object.name) << "\n";
    if (!object.commonName.empty() && object.name.find(object.commonName) == std::string::npos)
        std::cout << "Name:          " << toUtf8(object.commonName) << "\n";
    std::cout << "Type:          " << objectTypeName(object.typeCode) << "\n";
    std::cout << "RA (J2000):    " << toUtf8(hoursText(object.raHours)) << "\n";
    std::cout << "Dec (J2000):   " << declinationText(object.decDeg) << "\n";
    if (object.magKnown) {
        char mag[16];
        std::snprintf(mag, sizeof mag, "%.2f", object.mag);
        std::cout << "Magnitude:     " << mag << "\n";
    } else {
        std::cout << "Magnitude:     unknown\n";
    }
    if (!size.empty()) std::cout << "Size:          " << size << "\n";
    if (!constellation.empty()) std::cout << "Constellation: " << constellation << "\n";
}

}  // namespace

void registerFindCommand(CLI::App& app) {
    auto words = std::make_shared<std::vector<std::string>>();
    auto suggest = std::make_shared<std::string>();
    auto limit = std::make_shared<int>(10);
    CLI::App* find = app.add_subcommand(
        "find", "Find an object by catalogue and number, name or Bayer/Flamsteed designation: \"NGC 224\", \"m42\", "
                "\"HIP 91262\", \"Orion Nebula\", \"alpha Lyr\", \"61 Cyg\"");
    find->add_option("name", *words, "Catalogue prefix and number, or a name (one or more words)");
    find->add_option("--suggest", *suggest, "List the names starting with this prefix instead");
    find->add_option("--limit", *limit, "Most names --suggest lists")->check(CLI::Range(1, 1000));
    find->callback([words, suggest, limit] {
        if (!startUp()) {
            setExitCode(1);
            return;
        }
        if (!suggest->empty()) {
            const std::vector<std::string> names = suggestObjectNames(*suggest, static_cast<std::size_t>(*limit));
            if (globalOptions().json) std::cout << suggestionsJson(*suggest, static_cast<std::size_t>(*limit)).dump(2) << "\n";
            else for (const std::string& n : names) std::cout << n << "\n";
            return;
        }
        std::string name;
        for (const std::string& word : *words) name += (name.empty() ? "" : " ") + word;
        name = utf8ToLatin1ForMessage(name);  // typed UTF-8 to the catalogues' Latin-1, once
        if (findAndPrintSolarSystemBody(name)) return;
        FoundObject object;
        if (!findObjectByName(name, object)) {
            setExitCode(1);
            return;
        }
        if (globalOptions().json) std::cout << foundObjectJson(object).dump(2) << "\n";
        else printObject(object);
    });
}

}  // namespace nocturnel
