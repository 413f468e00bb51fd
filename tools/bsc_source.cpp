// Parser of the Yale Bright Star Catalogue as xplanet ships it: comment lines start with '#',
// each star line reads  Dec(deg) RA(hours) Vmag "name(10)" HR HD SAO.
#include <cmath>
#include <cstdio>
#include <set>

#include "tools/sources.h"

namespace nocturnel {

bool parseBrightStarCatalogue(std::string_view text, std::vector<BrightStarCatalogueStar>& stars, std::string& error) {
    stars.clear();
    std::set<int32_t> seen;
    size_t lineNumber = 0;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        std::string line(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
        ++lineNumber;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.find_first_not_of(" \t") == std::string::npos || line[line.find_first_not_of(" \t")] == '#') continue;
        BrightStarCatalogueStar star;
        const size_t open = line.find('"');
        const size_t close = open == std::string::npos ? open : line.find('"', open + 1);
        long hr = 0, hd = 0, sao = 0;
        int used = 0;
        char tail;
        const bool ok = open != std::string::npos && close != std::string::npos &&
                        std::sscanf(line.c_str(), "%lf %lf %lf %n", &star.decDeg, &star.raHours, &star.mag, &used) == 3 &&
                        static_cast<size_t>(used) == open &&
                        std::sscanf(line.c_str() + close + 1, "%ld %ld %ld %c", &hr, &hd, &sao, &tail) == 3;
        if (!ok || hr < 1 || hr > 65535 || hd < 0 || !std::isfinite(star.decDeg) || std::abs(star.decDeg) > 90.0 ||
            !(star.raHours >= 0.0 && star.raHours < 24.0) || !(star.mag > -2.0 && star.mag < 16.0)) {
            error = "line " + std::to_string(lineNumber) + " is not \"Dec RA Mag \\\"name\\\" HR HD SAO\"";
            return false;
        }
        if (!seen.insert(static_cast<int32_t>(hr)).second) {
            error = "line " + std::to_string(lineNumber) + ": HR " + std::to_string(hr) + " appears twice";
            return false;
        }
        star.hr = static_cast<int32_t>(hr);
        star.hd = static_cast<int32_t>(hd);
        star.name = line.substr(open + 1, close - open - 1);
        stars.push_back(std::move(star));
    }
    if (stars.empty()) {
        error = "no stars";
        return false;
    }
    return true;
}

}  // namespace nocturnel
