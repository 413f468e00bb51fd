#include "tools/star_files.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <set>

namespace nocturnel {
namespace {

// The Greek letters in UTF-8 and the abbreviations star designations use.
constexpr std::array<std::pair<const char*, const char*>, 24> kGreek = {{
    {"α", "alf"}, {"β", "bet"}, {"γ", "gam"}, {"δ", "del"}, {"ε", "eps"}, {"ζ", "zet"}, {"η", "eta"}, {"θ", "the"},
    {"ι", "iot"}, {"κ", "kap"}, {"λ", "lam"}, {"μ", "mu"},  {"ν", "nu"},  {"ξ", "xi"},  {"ο", "omi"}, {"π", "pi"},
    {"ρ", "rho"}, {"σ", "sig"}, {"τ", "tau"}, {"υ", "ups"}, {"φ", "phi"}, {"χ", "chi"}, {"ψ", "psi"}, {"ω", "ome"},
}};

template <size_t N>
void copyText(char (&field)[N], const std::string& text) {
    std::memset(field, 0, N);
    size_t n = std::min(text.size(), N - 1);
    while (n > 0 && n < text.size() && (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80) --n;
    std::memcpy(field, text.data(), n);
}

StarToPack toPack(const HipparcosStar& s) { return {s.hip, s.raDeg / 15.0, s.decDeg, s.mag, s.bv, s.hasBv}; }

// Brightest first, ties by HIP number (a stable, source-independent order).
std::vector<const HipparcosStar*> byBrightness(const std::vector<HipparcosStar>& stars) {
    std::vector<const HipparcosStar*> order;
    for (const HipparcosStar& s : stars) order.push_back(&s);
    std::sort(order.begin(), order.end(), [](const HipparcosStar* a, const HipparcosStar* b) {
        return a->mag != b->mag ? a->mag < b->mag : a->hip < b->hip;
    });
    return order;
}

std::vector<StarEntry> brightestBlocks(const std::vector<const HipparcosStar*>& order, size_t count) {
    std::vector<StarToPack> stars;
    for (size_t i = 0; i < std::min(count, order.size()); ++i) stars.push_back(toPack(*order[i]));
    return packStarBlocks(stars, 42);
}
}  // namespace

std::string bayerDesignation(const std::string& greek, const std::string& constellation) {
    for (const auto& [letter, abbreviation] : kGreek) {
        const size_t length = std::strlen(letter);
        if (greek.compare(0, length, letter) == 0) {
            const std::string suffix = greek.substr(length);
            if (!std::all_of(suffix.begin(), suffix.end(), [](char c) { return c >= '0' && c <= '9'; })) return {};
            return std::string(abbreviation) + suffix + " " + constellation;
        }
    }
    return {};
}

bool buildStarFiles(const StarSources& sources, const ConstellationFinder& finder, StarFiles& files, std::string& error) {
    files = StarFiles{};
    std::map<int32_t, const HipparcosStar*> byHip;
    for (const HipparcosStar& s : sources.hipparcos) {
        if (!byHip.emplace(s.hip, &s).second) {
            error = "HIP " + std::to_string(s.hip) + " appears twice";
            return false;
        }
    }
    // HR number of a Hipparcos star, matched through the HD number.
    std::map<int32_t, int32_t> hipByHd, hrByHip;
    for (const auto& [hip, n] : sources.names)
        if (n.hd > 0) hipByHd.emplace(n.hd, hip);
    std::map<int32_t, const HipparcosStar*> hipByHr;
    for (const BrightStarCatalogueStar& b : sources.brightStars) {
        auto it = b.hd > 0 ? hipByHd.find(b.hd) : hipByHd.end();
        if (it == hipByHd.end()) continue;
        hrByHip.emplace(it->second, b.hr);
        auto star = byHip.find(it->second);
        if (star != byHip.end()) hipByHr.emplace(b.hr, star->second);
    }
    auto constellationIndex = [&](const std::string& abbreviation) -> int {
        for (size_t i = 0; i < sources.constellations.size(); ++i)
            if (sources.constellations[i].abbreviation == abbreviation) return static_cast<int>(i);
        return -1;
    };

    const auto order = byBrightness(sources.hipparcos);

    // Proper names that go into the bright-star file (those with an HR number to search by).
    std::set<int32_t> namedInBrightStarFile;
    std::vector<BrightStarRecord> named;
    for (const auto& [hip, n] : sources.names) {
        auto hr = hrByHip.find(hip);
        if (n.name.empty() || hr == hrByHip.end() || hr->second > 65535) continue;
        BrightStarRecord r{};
        copyText(r.name, n.name);
        r.constellation = static_cast<int16_t>(constellationIndex(n.constellation));
        r.key = static_cast<uint16_t>(hr->second);
        named.push_back(r);
        namedInBrightStarFile.insert(hip);
    }
    std::vector<BrightStarRecord> byName = named, byKey = named;
    std::stable_sort(byName.begin(), byName.end(), [](const auto& a, const auto& b) { return std::strcmp(a.name, b.name) < 0; });
    std::stable_sort(byKey.begin(), byKey.end(), [](const auto& a, const auto& b) { return a.key < b.key; });
    files.brightStarNames = byName;
    files.brightStarNames.insert(files.brightStarNames.end(), byKey.begin(), byKey.end());

    // Default stars: the 1,646 brightest.
    if (order.size() < kDefaultStarCount) {
        error = "only " + std::to_string(order.size()) + " Hipparcos stars, 1,646 needed for the default stars";
        return false;
    }
    for (size_t i = 0; i < kDefaultStarCount; ++i) {
        const HipparcosStar& s = *order[i];
        DefaultStarRecord r{};
        r.hip = s.hip;
        auto hr = hrByHip.find(s.hip);
        r.hr = hr == hrByHip.end() ? 0 : hr->second;
        r.raHours = static_cast<float>(s.raDeg / 15.0);
        r.decDeg = static_cast<float>(s.decDeg);
        r.mag = static_cast<float>(s.mag);
        r.bv = static_cast<float>(s.bv);
        r.colour = colourClassFromBv(s.bv, s.hasBv);
        auto names = sources.names.find(s.hip);
        int constellation = -1;
        std::string label;
        if (names != sources.names.end()) {
            const StarNames& n = names->second;
            constellation = constellationIndex(n.constellation);
            label = !n.name.empty() ? n.name : bayerDesignation(n.bayer, n.constellation);
            if (label.empty() && !n.flamsteed.empty()) label = n.flamsteed + " " + n.constellation;
        }
        if (constellation < 0) constellation = std::max(0, finder.at(s.raDeg, s.decDeg));
        if (label.empty()) label = "HIP " + std::to_string(s.hip);
        r.constellation = static_cast<int16_t>(constellation);
        r.flags = namedInBrightStarFile.count(s.hip) ? 1 : 0;
        copyText(r.name, label);
        files.defaultStars.push_back(r);
    }

    // HR stars, coloured from their Hipparcos counterpart.
    std::vector<StarToPack> hrStars;
    for (const BrightStarCatalogueStar& b : sources.brightStars) {
        StarToPack p{b.hr, b.raHours, b.decDeg, b.mag, 0, false};
        auto hip = hipByHr.find(b.hr);
        if (hip != hipByHr.end()) {
            p.bv = hip->second->bv;
            p.hasBv = hip->second->hasBv;
        }
        hrStars.push_back(p);
    }
    files.hr = packStarBlocks(hrStars, 42);
    padToMinimumSlots(files.hr, 42, kHrSlotsMin);
    if (static_cast<long>(files.hr.size()) > kHrSlotsMax) {
        error = std::to_string(hrStars.size()) + " HR stars are more than the HR index serves (9,199 slots)";
        return false;
    }
    files.hrIndex = buildNumberIndex(files.hr, 42);

    files.hip16k = brightestBlocks(order, 16000);
    files.hip32k = brightestBlocks(order, 32000);
    files.hip64k = brightestBlocks(order, 64000);
    files.hip110k = brightestBlocks(order, order.size());
    padToMinimumSlots(files.hip110k, 42, kHipSlotsMin);
    if (static_cast<long>(files.hip110k.size()) > kHipSlotsMax) {
        error = std::to_string(order.size()) + " Hipparcos stars are more than the Hipparcos index serves (119,999 slots)";
        return false;
    }
    files.hip110kIndex = buildNumberIndex(files.hip110k, 42);
    return true;
}

}  // namespace nocturnel
