#include "chart/star_names.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <utility>

namespace nocturnel {
namespace {

constexpr std::array<std::pair<const char*, const char*>, 24> kGreekLetters = {{
    {"alf", "α"}, {"bet", "β"}, {"gam", "γ"}, {"del", "δ"}, {"eps", "ε"}, {"zet", "ζ"}, {"eta", "η"}, {"the", "θ"},
    {"iot", "ι"}, {"kap", "κ"}, {"lam", "λ"}, {"mu", "μ"},  {"nu", "ν"},  {"xi", "ξ"},  {"omi", "ο"}, {"pi", "π"},
    {"rho", "ρ"}, {"sig", "σ"}, {"tau", "τ"}, {"ups", "υ"}, {"phi", "φ"}, {"chi", "χ"}, {"psi", "ψ"}, {"ome", "ω"},
}};

}  // namespace

double properNameLimit(int zoomLevel) {
    constexpr std::array<double, 13> limits = {1.0, 1.2, 1.5, 2.0, 2.5, 3.0, 3.5, 4.0, 5.0, 6.0, 6.0, 6.0, 6.0};
    return limits[static_cast<std::size_t>(std::clamp(zoomLevel, 0, 12))];
}

double designationLimit(int zoomLevel) {
    constexpr std::array<double, 13> limits = {-9, -9, -9, -9, -9, 4.0, 4.5, 5.5, 6.5, 6.5, 6.5, 6.5, 6.5};
    return limits[static_cast<std::size_t>(std::clamp(zoomLevel, 0, 12))];
}

std::string designationLabel(const std::string& designation) {
    const std::string word = designation.substr(0, designation.find(' '));
    if (word.empty()) return {};
    if (std::all_of(word.begin(), word.end(), [](unsigned char c) { return std::isdigit(c) != 0; })) return word;
    std::size_t letters = 0;
    while (letters < word.size() && std::isalpha(static_cast<unsigned char>(word[letters])) != 0) ++letters;
    const std::string abbreviation = word.substr(0, letters), suffix = word.substr(letters);
    if (!std::all_of(suffix.begin(), suffix.end(), [](unsigned char c) { return std::isdigit(c) != 0; })) return {};
    for (const auto& [name, letter] : kGreekLetters)
        if (abbreviation == name) return letter + suffix;
    return {};
}

bool starLabelText(const DefaultStarRecord& star, int zoomLevel, std::string& text) {
    const std::string name(star.name, std::find(star.name, star.name + sizeof star.name, '\0'));
    if (name.empty()) return false;
    if ((star.flags & 1) != 0) {
        if (star.mag > properNameLimit(zoomLevel)) return false;
        text = name;  // proper names are plain ASCII
        return true;
    }
    if (star.mag > designationLimit(zoomLevel)) return false;
    text = designationLabel(name);
    return !text.empty();
}

}  // namespace nocturnel
