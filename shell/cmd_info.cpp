// nocturnel info NAME: the object information card at the saved site and the moment.
#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "catalog/object_finder.h"
#include "chart/object_info.h"
#include "core/angle_text.h"
#include "shell/app.h"
#include "shell/commands.h"
#include "settings/message.h"
#include "settings/preference_lists.h"
#include "shell/object_info_json.h"

namespace nocturnel {
namespace {
std::string signedDegrees(double deg) {
    const std::string text = toUtf8(degreesText(deg));
    return (text.empty() || text[0] == '-' || text[0] == '+') ? text : "+" + text;
}

std::string number(const char* format, double value) {
    char text[48];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

void printInfo(const ObjectInfo& info) {
    const FoundObject& o = info.object;
    const VisibilityEstimate& v = info.visibility;
    std::string names;
    for (const std::string& n : info.names) names += (names.empty() ? "" : ", ") + n;
    std::cout << o.name << "\n";
    std::cout << "Names:         " << names << "\n";
    std::cout << "Type:          " << info.typeName << "\n";
    if (!info.constellationName.empty()) std::cout << "Constellation: " << info.constellationName << "\n";
    std::cout << "Magnitude:     " << (o.magKnown ? number("%.2f", o.mag) : "unknown") << "\n";
    if (o.majorArcmin > 0) {
        const bool elongated = o.minorArcmin > 0 && o.minorArcmin != o.majorArcmin;
        std::cout << "Size:          " << number("%.1f'", o.majorArcmin) << (elongated ? number(" x %.1f'", o.minorArcmin) : "")
                  << "\n";
    }
    if (v.extended) std::cout << "Surface br.:   " << number("%.2f mag/arcsec2", v.surfaceBrightness) << "\n";
    std::cout << "RA (J2000):    " << toUtf8(hoursText(info.raJ2000Hours)) << "\n";
    std::cout << "Dec (J2000):   " << signedDegrees(info.decJ2000Deg) << "\n";
    std::cout << "RA (now):      " << toUtf8(hoursText(info.raHours)) << "\n";
    std::cout << "Dec (now):     " << signedDegrees(info.decDeg) << "\n";
    std::cout << "Altitude:      " << signedDegrees(info.altDeg) << "\n";
    std::cout << "Azimuth:       " << toUtf8(degreesText(info.azDeg)) << "\n";
    if (info.hasTransit)
        std::cout << "Transit:       " << isoLocalText(info.transitLocal) << "  (altitude "
                  << number("%.0f", info.transitAltDeg) << ")\n";
    if (v.known) {
        std::cout << "Visibility:    " << v.word << " (ratio " << number("%.2f", v.ratio) << ")\n";
        std::cout << "Best at:       x" << number("%.0f", v.bestMagnification);
        if (!info.eyepieceName.empty())
            std::cout << " - eyepiece " << toUtf8(info.eyepieceName) << " (x" << number("%.0f", v.eyepieceMagnification) << ")";
        std::cout << "\n";
    } else {
        std::cout << "Visibility:    unknown (no magnitude)\n";
    }
    std::cout << "Limits:        naked eye " << number("%.1f", info.limitingMagNakedEye) << ", telescope "
              << number("%.1f", info.limitingMagScope) << "\n";
    if (!info.description.empty()) std::cout << "Description:   " << info.description << "\n";
}

// The sky quality of this run: an entry of the sky-quality list or its index. The record's own
// value is set back to "Country" at every start, as the program has always done.
bool applySkyQuality(const std::string& text) {
    const PreferenceList* list = findPreferenceList("skyQuality");
    int index = list ? indexOfLabel(*list, text) : -1;
    if (index < 0 && text.size() == 1 && text[0] >= '0' && text[0] <= '4') index = text[0] - '0';
    if (index < 0) {
        showMessage("Unknown sky quality \"" + text + "\"",
                    "Give Bright town, Town, Bright country, Country or Desert/Mountain (or 0..4).");
        return false;
    }
    prefs().skyQuality = static_cast<int16_t>(index);
    return true;
}
}  // namespace

void registerInfoCommand(CLI::App& app) {
    auto words = std::make_shared<std::vector<std::string>>();
    auto sky = std::make_shared<std::string>();
    CLI::App* info = app.add_subcommand(
        "info", "Object information at the saved site and the moment: names, place, transit, visibility in the telescope");
    info->add_option("name", *words, "Catalogue prefix and number, or a name (one or more words)")->required();
    info->add_option("--sky", *sky, "Sky quality for this run: Bright town, Town, Bright country, Country, Desert/Mountain");
    info->callback([words, sky] {
        if (!startUp() || (!sky->empty() && !applySkyQuality(*sky))) {
            setExitCode(1);
            return;
        }
        std::string name;
        for (const std::string& word : *words) name += (name.empty() ? "" : " ") + word;
        FoundObject object;
        ObjectInfo card;
        if (!findObjectByName(name, object) || !computeObjectInfo(object, prefs().moment, card)) {
            setExitCode(1);
            return;
        }
        if (globalOptions().json) std::cout << objectInfoJson(card).dump(2) << "\n";
        else printInfo(card);
    });
}

}  // namespace nocturnel
