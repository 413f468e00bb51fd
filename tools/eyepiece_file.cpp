#include "tools/eyepiece_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <set>
#include <string_view>

#include "tools/record_io.h"

namespace nocturnel {
namespace {

struct EyepieceDesign {
    std::string_view design;  // family name, Latin-1
    float apparentFieldDeg;   // apparent field of the family at that focal length, degrees
    float focalLengthMm;
};

// Generic eyepiece designs at common focal lengths, no external source: four-element Plössls
// of 52 degrees (the 40 mm is held to 43 degrees by a 1.25-inch barrel), and the usual
// 68 and 82 degree wide fields.
constexpr std::array<EyepieceDesign, 21> kEyepieceDesigns = {{
    {"Pl\xF6ssl", 43, 40}, {"Pl\xF6ssl", 52, 32}, {"Pl\xF6ssl", 52, 25}, {"Pl\xF6ssl", 52, 20},
    {"Pl\xF6ssl", 52, 15}, {"Pl\xF6ssl", 52, 12}, {"Pl\xF6ssl", 52, 10}, {"Pl\xF6ssl", 52, 6},
    {"Wide 68\xB0", 68, 34}, {"Wide 68\xB0", 68, 24}, {"Wide 68\xB0", 68, 20}, {"Wide 68\xB0", 68, 16},
    {"Wide 68\xB0", 68, 12}, {"Wide 68\xB0", 68, 8},
    {"Ultra wide 82\xB0", 82, 30}, {"Ultra wide 82\xB0", 82, 24}, {"Ultra wide 82\xB0", 82, 18},
    {"Ultra wide 82\xB0", 82, 14}, {"Ultra wide 82\xB0", 82, 11}, {"Ultra wide 82\xB0", 82, 8},
    {"Ultra wide 82\xB0", 82, 6},
}};

constexpr float kMinFocalMm = 1, kMaxFocalMm = 100;
constexpr float kMinApparentDeg = 20, kMaxApparentDeg = 120;

}  // namespace

std::vector<EyepieceRecord> eyepieceRecords() {
    std::vector<EyepieceRecord> records;
    for (const EyepieceDesign& d : kEyepieceDesigns) {
        EyepieceRecord r{};
        std::snprintf(r.name, sizeof r.name, "%.*s %gmm", static_cast<int>(d.design.size()), d.design.data(),
                      static_cast<double>(d.focalLengthMm));
        r.focalLengthMm = d.focalLengthMm;
        r.apparentFieldDeg = d.apparentFieldDeg;
        records.push_back(r);
    }
    return records;
}

bool checkEyepieceFile(const std::filesystem::path& file, std::string& error) {
    const std::string name = file.filename().string();
    std::string bytes;
    DatabaseHeader header{};
    std::vector<EyepieceRecord> records;
    if (!readWholeFile(file, bytes)) {
        error = name + ": cannot be read";
        return false;
    }
    if (!parseRecordFile(bytes, header, records, error)) {
        error = name + ": " + error;
        return false;
    }
    if (records.empty()) {
        error = name + ": no eyepieces";
        return false;
    }
    std::set<std::string> names;
    for (std::size_t i = 0; i < records.size(); ++i) {
        const EyepieceRecord& r = records[i];
        const std::string where = name + " record " + std::to_string(i) + ": ";
        const char* end = std::find(r.name, r.name + sizeof r.name, '\0');
        if (end == r.name || end == r.name + sizeof r.name) {
            error = where + "name empty or not terminated";
            return false;
        }
        if (!names.insert(std::string(r.name, end)).second) {
            error = where + "name \"" + std::string(r.name, end) + "\" given twice";
            return false;
        }
        if (!(r.focalLengthMm >= kMinFocalMm && r.focalLengthMm <= kMaxFocalMm)) {
            error = where + "focal length " + std::to_string(r.focalLengthMm) + " mm out of range";
            return false;
        }
        if (!(r.apparentFieldDeg >= kMinApparentDeg && r.apparentFieldDeg <= kMaxApparentDeg)) {
            error = where + "apparent field " + std::to_string(r.apparentFieldDeg) + " degrees out of range";
            return false;
        }
    }
    return true;
}

}  // namespace nocturnel
