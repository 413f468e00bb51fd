#include "tools/deep_star_card.h"

#include <algorithm>
#include <cmath>

#include "tools/card_motion_file.h"
#include "tools/record_io.h"
#include "tools/star_packing.h"
#include "tools/stellarium_stars.h"

namespace nocturnel {

std::vector<std::filesystem::path> stellariumStarFiles(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code ec;
    for (int n = 0; n <= 3; ++n) {
        const std::string prefix = "stars_" + std::to_string(n) + "_";
        std::filesystem::path found;
        for (const auto& entry : std::filesystem::directory_iterator(folder, ec)) {
            const std::string name = entry.path().filename().string();
            if (name.rfind(prefix, 0) == 0 && name.size() > 4 && name.substr(name.size() - 4) == ".cat" &&
                (found.empty() || name < found.filename().string()))
                found = entry.path();
        }
        if (found.empty()) return {};
        files.push_back(found);
    }
    return files;
}

bool buildDeepStarCard(const std::vector<std::filesystem::path>& files, size_t keep, DeepStarCard& card,
                       std::string& error, const std::map<int32_t, ReferencePlace>& reference) {
    std::vector<StellariumStar> stars;
    for (const auto& file : files) {
        std::string bytes;
        if (!readWholeFile(file, bytes)) {
            error = file.string() + ": cannot be read";
            return false;
        }
        if (!parseStellariumStars(bytes, stars, error)) {
            error = file.filename().string() + ": " + error;
            return false;
        }
    }
    if (stars.empty()) {
        error = "no stars";
        return false;
    }
    // A magnitude that is not a number sorts last, so the order stays a strict weak ordering.
    const auto key = [](const StellariumStar& s) { return std::isnan(s.mag) ? HUGE_VALF : static_cast<float>(s.mag); };
    std::stable_sort(stars.begin(), stars.end(),
                     [&key](const StellariumStar& a, const StellariumStar& b) { return key(a) < key(b); });
    stars.resize(std::min(stars.size(), keep));
    std::map<int32_t, ProperMotion> hipMotions;
    std::string hipText, hipError;
    if (readWholeFile(files.front().parent_path() / "hip_pm.dat", hipText) &&
        !parseHipProperMotions(hipText, hipMotions, hipError)) {
        error = "hip_pm.dat: " + hipError;
        return false;
    }
    if (!reference.empty()) correctEpoch1991Places(stars, hipMotions, reference);
    std::vector<StarToPack> packed;
    std::unordered_map<int32_t, ProperMotion> motions;
    packed.reserve(stars.size());
    motions.reserve(stars.size());
    for (size_t i = 0; i < stars.size(); ++i) {
        const StellariumStar& s = stars[i];
        const int32_t number = s.hip > 0 ? s.hip : kDeepStarNumberBase + static_cast<int32_t>(i);
        packed.push_back({number, s.raDeg / 15.0, s.decDeg, s.mag, s.bv, true});
        const auto listed = s.hip > 0 ? hipMotions.find(s.hip) : hipMotions.end();
        motions.emplace(number, listed != hipMotions.end()
                                    ? listed->second
                                    : ProperMotion{s.pmRaCosDecMasPerYear, s.pmDecMasPerYear});
    }
    card.perBlock = starsPerBlockFor(packed.size());
    if (card.perBlock == 0) {
        error = std::to_string(packed.size()) + " stars fit neither 42 nor 80 stars per record";
        return false;
    }
    card.blocks = packStarBlocks(packed, card.perBlock);
    card.motions = cardMotionEntries(card.blocks, motions);
    card.stars = packed.size();
    card.faintestMag = stars.back().mag;
    return true;
}

}  // namespace nocturnel
