#pragma once
// Checks, on the files as written, the rules the program's readers rely on. Each returns true,
// or false with the first broken rule in `error`.
#include <filesystem>
#include <string>

namespace nocturnel {

struct StarFileRules {
    int starsPerBlock = 42;   // 0: as the record size says (still bound by the 25,000-record rule)
    long minTotalStars = 0;   // record count x stars per block must lie in [min, max] (0, 0: no range)
    long maxTotalStars = 0;
};

bool checkStarBlockFile(const std::filesystem::path& file, const StarFileRules& rules, std::string& error);
// The number index agrees with its block file, both ways.
bool checkNumberIndex(const std::filesystem::path& index, const std::filesystem::path& blocks, std::string& error);
bool checkDefaultStars(const std::filesystem::path& file, std::string& error);
bool checkBrightStarNames(const std::filesystem::path& file, std::string& error);
// Objects and their name index: version 24, keys sorted, stretches honoured (when `stretches`),
// object references valid. The small file must hold fewer than 2,000 records.
bool checkObjectFiles(const std::filesystem::path& objects, const std::filesystem::path& index, bool stretches,
                      std::string& error);
bool checkDescriptions(const std::filesystem::path& descriptions, const std::filesystem::path& objects, std::string& error);
bool checkConstellations(const std::filesystem::path& folder, std::string& error);
bool checkTychoIndex(const std::filesystem::path& index, const std::filesystem::path& blocks, std::string& error);

}  // namespace nocturnel
