// nocturnel find NAME: any catalogued object by catalogue prefix and number.
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
#include "shell/app.h"
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
    std::cout << object.name << "\n";
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
    CLI::App* find = app.add_subcommand(
        "find", "Find an object by catalogue and number: \"NGC 224\", \"M 31\", \"HIP 91262\", \"HR 2491\", \"TYC 4662-1234-1\"");
    find->add_option("name", *words, "Catalogue prefix and number (one or more words)")->required();
    find->callback([words] {
        if (!startUp()) {
            setExitCode(1);
            return;
        }
        std::string name;
        for (const std::string& word : *words) name += (name.empty() ? "" : " ") + word;
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
