// Parser of one line of the Tycho-2 main catalogue (CDS I/259 tyc2.dat). Fields are separated by
// '|': 0 "TYC1 TYC2 TYC3", 1 pflag, 2 RAmdeg, 3 DEmdeg, ..., 17 BTmag, 18 e_BTmag, 19 VTmag,
// 20 e_VTmag, ..., 24 RAdeg (observed), 25 DEdeg (observed). Stars without a mean position
// (pflag 'X') use the observed one. V and B-V follow the catalogue's documented transformation
// V = VT - 0.090 (BT - VT), B-V = 0.850 (BT - VT).
#include <cmath>
#include <cstdlib>

#include "tools/sources.h"

namespace nocturnel {
namespace {
bool isBlank(std::string_view s) { return s.find_first_not_of(' ') == std::string_view::npos; }

bool parseNumber(std::string_view field, double& value) {
    std::string text(field);
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    if (end == text.c_str()) return false;
    while (*end == ' ') ++end;
    return *end == '\0' && std::isfinite(value);
}
}  // namespace

bool parseTycho2Line(std::string_view line, TychoStar& star, bool& isPrimary, std::string& error) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    std::vector<std::string_view> fields;
    for (size_t start = 0;;) {
        const size_t bar = line.find('|', start);
        fields.push_back(line.substr(start, bar == std::string_view::npos ? std::string_view::npos : bar - start));
        if (bar == std::string_view::npos) break;
        start = bar + 1;
    }
    if (fields.size() < 26) {
        error = "fewer than 26 fields";
        return false;
    }
    long tyc1 = 0, tyc2 = 0, tyc3 = 0;
    {
        std::string id(fields[0]);
        char* p = nullptr;
        tyc1 = std::strtol(id.c_str(), &p, 10);
        tyc2 = std::strtol(p, &p, 10);
        tyc3 = std::strtol(p, &p, 10);
        if (tyc1 < 1 || tyc1 > 9537 || tyc2 < 1 || tyc2 > 99999 || tyc3 < 1 || tyc3 > 9) {
            error = "bad Tycho identifier \"" + id + "\"";
            return false;
        }
    }
    isPrimary = tyc3 == 1;
    star = TychoStar{};
    star.region = static_cast<int32_t>(tyc1);
    star.number = static_cast<int32_t>(tyc2);
    const bool meanPosition = !isBlank(fields[2]) && !isBlank(fields[3]);
    if (!parseNumber(meanPosition ? fields[2] : fields[24], star.raDeg) ||
        !parseNumber(meanPosition ? fields[3] : fields[25], star.decDeg) || star.raDeg < 0 || star.raDeg >= 360 ||
        std::abs(star.decDeg) > 90) {
        error = "bad position";
        return false;
    }
    if (meanPosition && !isBlank(fields[4]) && !isBlank(fields[5]) &&
        !(parseNumber(fields[4], star.pmRaCosDecMasPerYear) &&
          parseNumber(fields[5], star.pmDecMasPerYear))) {
        error = "bad proper motion";
        return false;
    }
    double bt = 0, vt = 0;
    const bool hasBt = !isBlank(fields[17]) && parseNumber(fields[17], bt);
    const bool hasVt = !isBlank(fields[19]) && parseNumber(fields[19], vt);
    if (!hasBt && !hasVt) {
        error = "no magnitude";
        return false;
    }
    if (hasBt && hasVt) {
        star.vMag = vt - 0.090 * (bt - vt);
        star.bv = 0.850 * (bt - vt);
        star.hasBv = true;
    } else {
        star.vMag = hasVt ? vt : bt;
    }
    return true;
}

}  // namespace nocturnel
