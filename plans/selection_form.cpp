#include "plans/selection_form.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "catalog/constellations.h"
#include "catalog/object_tables.h"
#include "settings/message.h"

namespace nocturnel {
namespace {

constexpr std::string_view kNoCriteria = "No Criteria";
constexpr std::array<std::string_view, 11> kVisibility = {
    "No Criteria", "Visible", ">15\xB0", ">20\xB0", ">25\xB0", ">30\xB0", ">35\xB0", ">40\xB0", ">45\xB0", ">50\xB0", "Not Visible"};
constexpr std::array<std::string_view, 9> kMagnitude = {"No Criteria", "Scope Limit", "Eyes Limit", "4", "6", "8",
                                                        "10", "12", "14"};
constexpr std::array<std::string_view, 5> kDifficulty = {"No Criteria", "Very Difficult", "Difficult", "Easy",
                                                         "Very Easy"};
struct GroupChoice {
    std::string_view label;
    int group;
};
constexpr std::array<GroupChoice, 7> kGroups = {{{"No Criteria", 0}, {"Planet", 7}, {"Nebula", 4}, {"Galaxy", 3},
                                                  {"Double Star", 6}, {"Cluster", 1}, {"Star", 5}}};

std::string lower(std::string_view s) {
    std::string out;
    out.reserve(s.size());
    for (std::size_t i = 0; i < s.size(); ++i) {
        // The degree sign may come as UTF-8 (C2 B0): it is kept as the record's single byte.
        if (s[i] == '\xC2' && i + 1 < s.size() && s[i + 1] == '\xB0') continue;
        out += static_cast<char>(std::tolower(static_cast<unsigned char>(s[i])));
    }
    return out;
}

int16_t& fieldOf(SelectionCriteria& c, Criterion which) {
    switch (which) {
        case Criterion::kVisibility: return c.visibility;
        case Criterion::kMagnitude: return c.magLimitChoice;
        case Criterion::kConstellation: return c.constellationFilter;
        case Criterion::kCatalog: return c.catalogFilter;
        case Criterion::kType: return c.typeFilter;
        case Criterion::kGroup: return c.typeGroupFilter;
        case Criterion::kDifficulty: return c.difficulty;
        case Criterion::kSize: return c.sizeMatch;
    }
    return c.visibility;
}

const char* criterionName(Criterion which) {
    switch (which) {
        case Criterion::kVisibility: return "visibility";
        case Criterion::kMagnitude: return "magnitude limit";
        case Criterion::kConstellation: return "constellation";
        case Criterion::kCatalog: return "catalogue";
        case Criterion::kType: return "type";
        case Criterion::kGroup: return "group";
        case Criterion::kDifficulty: return "difficulty";
        case Criterion::kSize: return "size";
    }
    return "";
}

}  // namespace

std::vector<std::string> criterionChoices(Criterion which) {
    std::vector<std::string> out;
    switch (which) {
        case Criterion::kVisibility: for (auto s : kVisibility) out.emplace_back(s); break;
        case Criterion::kMagnitude: for (auto s : kMagnitude) out.emplace_back(s); break;
        case Criterion::kDifficulty: for (auto s : kDifficulty) out.emplace_back(s); break;
        case Criterion::kGroup: for (auto g : kGroups) out.emplace_back(g.label); break;
        case Criterion::kConstellation:
            out.emplace_back(kNoCriteria);
            for (const auto& c : constellations().constellations) out.emplace_back(c.name, strnlen(c.name, sizeof c.name));
            break;
        case Criterion::kCatalog:
            out.emplace_back(kNoCriteria);
            for (int i = 1; i < kCatalogCount; ++i) out.emplace_back(kCatalogDefinitions[static_cast<std::size_t>(i)].name);
            break;
        case Criterion::kType:
            out.emplace_back(kNoCriteria);
            for (int i = 1; i < kObjectTypeCount; ++i) out.emplace_back(kObjectTypes[static_cast<std::size_t>(i)].name);
            break;
        case Criterion::kSize: break;
    }
    return out;
}

bool setCriterion(SelectionCriteria& c, Criterion which, std::string_view value) {
    const std::string text = lower(value);
    if (which == Criterion::kSize) {
        char* end = nullptr;
        const std::string v(value);
        const double m = std::strtod(v.c_str(), &end);
        if (v.empty() || *end != '\0' || !std::isfinite(m) || m < 0 || m > 10000) {
            showMessage("Invalid size criterion \"" + v + "\"", "Give the reference magnification (0 clears it).");
            return false;
        }
        c.sizeMatch = m > 0 ? 1 : 0;
        c.sizeReference = static_cast<int32_t>(std::lround(m));
        return true;
    }
    const std::vector<std::string> choices = criterionChoices(which);
    int index = -1;
    for (std::size_t i = 0; i < choices.size() && index < 0; ++i)
        if (lower(choices[i]) == text) index = static_cast<int>(i);
    if (index < 0 && which == Criterion::kConstellation)
        for (std::size_t i = 0; i < constellations().constellations.size() && index < 0; ++i) {
            const auto& rec = constellations().constellations[i];
            if (lower(std::string_view(rec.abbreviation, strnlen(rec.abbreviation, sizeof rec.abbreviation))) == text)
                index = static_cast<int>(i + 1);
        }
    if (index < 0 && which == Criterion::kCatalog)
        for (int i = 1; i < kCatalogCount && index < 0; ++i)
            if (lower(kCatalogDefinitions[static_cast<std::size_t>(i)].prefix) == text) index = i;
    if (index < 0 && !text.empty() && text.find_first_not_of("0123456789") == std::string::npos && text.size() < 6) {
        const int n = std::stoi(text);
        if (n < static_cast<int>(choices.size())) index = n;
    }
    if (index < 0) {
        std::string list;
        for (std::size_t i = 0; i < choices.size() && i < 60; ++i)
            list += (i ? ", " : "") + std::to_string(i) + " " + choices[i];
        showMessage(std::string("Invalid ") + criterionName(which) + " \"" + std::string(value) + "\"", list);
        return false;
    }
    fieldOf(c, which) = static_cast<int16_t>(which == Criterion::kGroup ? kGroups[static_cast<std::size_t>(index)].group : index);
    return true;
}

std::string criterionText(const SelectionCriteria& c, Criterion which) {
    if (which == Criterion::kSize) {
        if (!c.sizeMatch) return std::string(kNoCriteria);
        char text[24];
        std::snprintf(text, sizeof text, "x%d", static_cast<int>(c.sizeReference));
        return text;
    }
    int16_t v = fieldOf(const_cast<SelectionCriteria&>(c), which);
    if (which == Criterion::kGroup) {
        for (const auto& g : kGroups)
            if (g.group == v) return std::string(g.label);
        return std::to_string(v);
    }
    const std::vector<std::string> choices = criterionChoices(which);
    return v >= 0 && v < static_cast<int>(choices.size()) ? choices[static_cast<std::size_t>(v)] : std::to_string(v);
}

}  // namespace nocturnel
