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
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/commands.h"

namespace nocturnel {
namespace {
std::string constellationName(int number) {
    const auto& list = constellations().constellations;
    if (number < 0 || number >= static_cast<int>(list.size())) return {};
    char name[sizeof list[number].name + 1] = {};
    std::memcpy(name, list[number].name, sizeof list[number].name);
    return name;
}

// Declinations carry their sign both ways ("+38°47'01", "-16°42'58").
std::string declinationText(double decDeg) {
    const std::string text = toUtf8(degreesText(decDeg));
    return (text.empty() || text[0] == '-' || text[0] == '+') ? text : "+" + text;
}

// Magnitudes and sizes are stored as floats: three decimals keep all they hold without the
// noise of widening them to double.
double roundedValue(double value) { return std::round(value * 1000.0) / 1000.0; }

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
    const std::string constellation = constellationName(object.constellation);
    const std::string size = sizeText(object);
    std::cout << toUtf8(object.name) << "\n";
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

void printJson(const FoundObject& object) {
    const bool known = object.catalogCode >= 0 && object.catalogCode < kCatalogCount;
    nlohmann::json j;
    j["name"] = toUtf8(object.name);
    j["catalog"] = known ? kCatalogDefinitions[object.catalogCode].prefix : "";
    j["catalogName"] = known ? kCatalogDefinitions[object.catalogCode].name : "";
    j["number"] = object.number;
    j["type"] = objectTypeName(object.typeCode);
    j["ra"] = object.raHours;
    j["dec"] = object.decDeg;
    if (object.magKnown) j["mag"] = roundedValue(object.mag);
    else j["mag"] = nullptr;
    j["majorArcmin"] = roundedValue(object.majorArcmin);
    j["minorArcmin"] = roundedValue(object.minorArcmin);
    j["constellation"] = constellationName(object.constellation);
    std::cout << j.dump(2) << "\n";
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
        name = utf8ToLatin1ForMessage(name);  // typed UTF-8 to the catalogues' Latin-1, once
        FoundObject object;
        if (!findObjectByName(name, object)) {
            setExitCode(1);
            return;
        }
        if (globalOptions().json) printJson(object);
        else printObject(object);
    });
}

}  // namespace nocturnel
