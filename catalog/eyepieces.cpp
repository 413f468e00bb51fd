#include "catalog/eyepieces.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "catalog/catalogues.h"
#include "settings/program_folder.h"
#include "settings/message.h"
#include "settings/preference_lists.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {

bool positiveFinite(double value) { return std::isfinite(value) && value > 0; }

// The number a list entry shows ("203", "10"); 0 when the entry is missing or not a number.
double listNumber(std::string_view field, int index) {
    const PreferenceList* list = findPreferenceList(field);
    if (list == nullptr) return 0;
    const std::string_view text = labelAtIndex(*list, index);
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) return 0;
    return value;
}

// A length or angle with at most one decimal, the ".0" left out: "25", "12.5".
std::string shortNumber(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    std::string s = text;
    if (s.size() > 2 && s.compare(s.size() - 2, 2, ".0") == 0) s.resize(s.size() - 2);
    return s;
}

}  // namespace

bool loadEyepieces(std::vector<EyepieceRecord>& out) {
    out.clear();
    DatabaseSlot slot;
    if (!openDatabase(slot, kEyepieceType, kCreator, 0, kDataFolder, kEyepieceFile)) {
        showMessage(std::string("Could not find ") + kEyepieceFile,
                    "Looked in " + dataPath(kEyepieceFile).parent_path().string());
        return false;
    }
    const uint16_t count = recordCount(slot);
    if (count > 0 && recordSize(slot) < sizeof(EyepieceRecord)) {
        showMessagef(std::string(kEyepieceFile) + ": record size " + std::to_string(recordSize(slot)),
                     "Could not retrieve eyepiece record!");
        closeDatabase(slot);
        return false;
    }
    out.reserve(count);
    for (uint16_t i = 0; i < count; ++i) {
        const uint8_t* record = fetchRecord(slot, i);
        if (record == nullptr) {
            showMessagef(kEyepieceFile, "Could not retrieve eyepiece record! %d", static_cast<int>(i));
            closeDatabase(slot);
            out.clear();
            return false;
        }
        EyepieceRecord eyepiece{};
        std::memcpy(&eyepiece, record, sizeof eyepiece);
        eyepiece.name[sizeof eyepiece.name - 1] = '\0';
        out.push_back(eyepiece);
    }
    closeDatabase(slot);
    return true;
}

std::string eyepieceName(const EyepieceRecord& eyepiece) {
    return std::string(eyepiece.name, std::find(eyepiece.name, eyepiece.name + sizeof eyepiece.name, '\0'));
}

double telescopeFocalLengthMm() {
    const Preferences& p = prefs();
    const double apertureMm = listNumber("scopeDiameterIndex", p.scopeDiameterIndex);
    const double focalRatio = listNumber("fRatioIndex", p.fRatioIndex);
    if (apertureMm <= 0 || focalRatio <= 0) {
        showMessage("Unknown telescope focal length", "Please choose Diameter and F-Ratio in Preference 2/6.");
        return 0;
    }
    return apertureMm * focalRatio;
}

double eyepieceMagnification(const EyepieceRecord& eyepiece, double telescopeFocalMm) {
    const double eyepieceFocalMm = eyepiece.focalLengthMm;
    if (!positiveFinite(eyepieceFocalMm) || !positiveFinite(telescopeFocalMm)) return 0;
    return telescopeFocalMm / eyepieceFocalMm;
}

double eyepieceTrueFieldDeg(const EyepieceRecord& eyepiece, double telescopeFocalMm) {
    const double magnification = eyepieceMagnification(eyepiece, telescopeFocalMm);
    const double apparentDeg = eyepiece.apparentFieldDeg;
    if (magnification <= 0 || !positiveFinite(apparentDeg) || apparentDeg > 180) return 0;
    return apparentDeg / magnification;
}

std::string eyepieceFieldLabel(const EyepieceRecord& eyepiece, double telescopeFocalMm) {
    const double trueFieldDeg = eyepieceTrueFieldDeg(eyepiece, telescopeFocalMm);
    if (trueFieldDeg <= 0) return {};
    const long magnification = std::lround(eyepieceMagnification(eyepiece, telescopeFocalMm));
    char text[96];
    if (trueFieldDeg < 1.0)
        std::snprintf(text, sizeof text, "  x%ld  %.0f'", magnification, trueFieldDeg * 60);
    else
        std::snprintf(text, sizeof text, "  x%ld  %.1f\xB0", magnification, trueFieldDeg);
    return shortNumber(eyepiece.focalLengthMm) + "mm " + shortNumber(eyepiece.apparentFieldDeg) + "\xB0" + text;
}

bool chosenEyepieceField(EyepieceField& out) {
    out = EyepieceField{};
    std::vector<EyepieceRecord> eyepieces;
    if (!loadEyepieces(eyepieces)) return false;
    const int index = prefs().eyepieceIndex;
    if (index < 0 || static_cast<std::size_t>(index) >= eyepieces.size()) {
        showMessagef("Please choose one in Preference 3/6.", "Eyepiece %d is not in the database (%d eyepieces).", index,
                     static_cast<int>(eyepieces.size()));
        return false;
    }
    const double telescopeFocalMm = telescopeFocalLengthMm();
    if (telescopeFocalMm <= 0) return false;
    const EyepieceRecord& eyepiece = eyepieces[static_cast<std::size_t>(index)];
    const double trueFieldDeg = eyepieceTrueFieldDeg(eyepiece, telescopeFocalMm);
    if (trueFieldDeg <= 0) {
        showMessage("Eyepiece record is not usable", eyepieceName(eyepiece));
        return false;
    }
    out.eyepiece = eyepiece;
    out.trueFieldDeg = trueFieldDeg;
    out.label = eyepieceFieldLabel(eyepiece, telescopeFocalMm);
    return true;
}

}  // namespace nocturnel
