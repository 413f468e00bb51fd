#include "shell/target_names.h"

#include <cctype>
#include <cmath>
#include <vector>

#include "catalog/object_finder.h"
#include "core/angle_text.h"
#include "settings/message.h"
#include "shell/option_checks.h"
#include "shell/star_names.h"

namespace nocturnel {
namespace {

std::vector<TargetFinder>& finders() {
    static std::vector<TargetFinder> list;
    return list;
}

std::string trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return std::string(text);
}

// "HIP -1", "NGC +5": a catalogue number is positive and written without a sign.
bool hasSignedCatalogueNumber(const std::string& name) {
    std::size_t i = 0;
    while (i < name.size() && (std::isalpha(static_cast<unsigned char>(name[i])) || name[i] == '.')) ++i;
    if (i == 0) return false;
    while (i < name.size() && name[i] == ' ') ++i;
    return i + 1 < name.size() && (name[i] == '-' || name[i] == '+') &&
           std::isdigit(static_cast<unsigned char>(name[i + 1]));
}

bool placeInRange(const ResolvedTarget& t) {
    return std::isfinite(t.raHours) && std::isfinite(t.decDeg) && t.raHours >= 0 && t.raHours <= 24 &&
           t.decDeg >= -90 && t.decDeg <= 90;
}

}  // namespace

std::string joinedName(const std::vector<std::string>& words) {
    std::string name;
    for (const std::string& w : words) name += (name.empty() ? "" : " ") + w;
    return name;
}

void addTargetFinder(TargetFinder finder) { finders().push_back(std::move(finder)); }
namespace {
int gTargetFinderGeneration = 0;
}
void clearTargetFinders() {
    finders().clear();
    ++gTargetFinderGeneration;
}
int targetFinderGeneration() { return gTargetFinderGeneration; }

bool resolveTarget(std::string_view typed, ResolvedTarget& out) {
    const std::string name = trimmed(typed);
    if (name.empty()) {
        showMessage("No object name given", "Give a name such as Vega, M 42 or NGC 1976, or --ra and --dec.");
        return false;
    }
    if (hasSignedCatalogueNumber(name)) {
        showMessage("Invalid catalogue number in \"" + name + "\"", "Catalogue numbers are positive: write NGC 5, HIP 1.");
        return false;
    }
    for (const TargetFinder& finder : finders()) {
        ResolvedTarget found;
        MessageCapture quiet;
        if (finder(name, prefs().moment, found) && placeInRange(found)) {
            out = found;
            return true;
        }
    }
    {
        // The default stars answer the proper names; a missing file is the object finder's to report.
        MessageCapture quiet;
        ResolvedTarget found;
        if (findBrightStarByName(name, found.name, found.raHours, found.decDeg) && placeInRange(found)) {
            out = found;
            return true;
        }
    }
    FoundObject object;
    if (!findObjectByName(name, object)) return false;  // the finder has said why
    out.name = object.name;
    out.raHours = object.raHours;
    out.decDeg = object.decDeg;
    if (!placeInRange(out)) {
        showMessage("Object not found", name + " has no usable position in the catalogue.");
        return false;
    }
    return true;
}

bool resolveTargetOrPlace(std::string_view name, std::string_view raText, std::string_view decText,
                          ResolvedTarget& out) {
    if (!name.empty()) {
        if (!raText.empty() || !decText.empty()) {
            showMessage("Give a name or a place, not both", "Either NAME, or --ra H --dec D.");
            return false;
        }
        return resolveTarget(name, out);
    }
    if (raText.empty() || decText.empty()) {
        showMessage("No place given", "Give a name such as Vega or M 42, or both --ra H and --dec D.");
        return false;
    }
    const auto ra = checkedRightAscension(raText);
    if (!ra) return false;
    const auto dec = checkedDeclination(decText);
    if (!dec) return false;
    out.raHours = *ra;
    out.decDeg = *dec;
    out.name = hoursText(*ra) + " " + degreesText(*dec);
    return true;
}

}  // namespace nocturnel
