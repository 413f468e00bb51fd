#pragma once
// Helpers shared by the chart's tests: a temporary program folder and small hand-made
// catalogue files written with the record layouts of catalog/formats.h.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "catalog/catalogues.h"
#include "catalog/formats.h"
#include "catalog/star_motion.h"
#include "settings/program_folder.h"

namespace nocturnel::testing {

// Writes the star-motion file of one record into `folder`/data and has the program read it anew.
inline void writeStarMotionFile(const std::filesystem::path& folder, const StarMotionRecord& record) {
    const DatabaseHeader header{kStarMotionFileVersion, 0, 1, sizeof record};
    std::ofstream out(folder / "data" / kStarMotionFile, std::ios::binary);
    out.write(reinterpret_cast<const char*>(&header), sizeof header);
    out.write(reinterpret_cast<const char*>(&record), sizeof record);
    out.close();
    forgetStarMotion();
}

class TempProgramFolder {
public:
    TempProgramFolder() {
        static int serial = 0;
        path_ = std::filesystem::temp_directory_path() /
                ("nocturnel-chart-" + std::to_string(::getpid()) + "-" + std::to_string(++serial));
        std::filesystem::create_directories(path_ / "data");
        setProgramFolder(path_);
    }
    ~TempProgramFolder() {
        closeCatalogues();
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempProgramFolder(const TempProgramFolder&) = delete;
    TempProgramFolder& operator=(const TempProgramFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

template <typename Record>
void writeRecordFile(const std::filesystem::path& path, const std::vector<Record>& records, uint32_t version = 1) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    DatabaseHeader header{version, 0, static_cast<uint32_t>(records.size()), sizeof(Record)};
    std::fwrite(&header, sizeof header, 1, f);
    if (!records.empty()) std::fwrite(records.data(), sizeof(Record), records.size(), f);
    std::fclose(f);
}

// A packed star at RA hours / Dec degrees (components truncated toward zero, like the builder).
inline StarEntry makeStarEntry(int32_t number, double raHours, double decDeg, double mag, int colour) {
    StarEntry e{};
    e.number = number;
    const double raSeconds = raHours * 3600;
    e.raH = static_cast<int8_t>(static_cast<int>(raSeconds) / 3600);
    e.raM = static_cast<int8_t>(static_cast<int>(raSeconds) / 60 % 60);
    e.raS = static_cast<int8_t>(static_cast<int>(raSeconds) % 60);
    const double decSeconds = decDeg * 3600;
    const int whole = static_cast<int>(decSeconds);  // toward zero: every component carries the sign
    e.decD = static_cast<int8_t>(whole / 3600);
    e.decM = static_cast<int8_t>(whole / 60 % 60);
    e.decS = static_cast<int8_t>(whole % 60);
    e.mag16 = static_cast<uint8_t>(std::lround(mag * 16));
    e.colour = static_cast<int8_t>(colour);
    return e;
}

// A star catalogue file of blocks of `perBlock` entries sorted by declination (record 0 holds
// the southernmost block too, as the builder writes it). Unused slots are magnitude 255.
template <int PerBlock>
struct StarBlockRecord {
    StarEntry entries[PerBlock];
};

template <int PerBlock>
void writeStarCatalogue(const std::filesystem::path& path, std::vector<StarEntry> stars) {
    std::sort(stars.begin(), stars.end(), [](const StarEntry& a, const StarEntry& b) {
        const int da = a.decD * 3600 + a.decM * 60 + a.decS, db = b.decD * 3600 + b.decM * 60 + b.decS;
        return da < db;
    });
    std::vector<StarBlockRecord<PerBlock>> blocks;
    for (std::size_t i = 0; i < stars.size(); i += PerBlock) {
        StarBlockRecord<PerBlock> block{};
        for (int k = 0; k < PerBlock; ++k) {
            if (i + k < stars.size()) {
                block.entries[k] = stars[i + k];
            } else {
                block.entries[k] = stars.back();
                block.entries[k].mag16 = 255;
            }
        }
        blocks.push_back(block);
    }
    writeRecordFile(path, blocks);
}

inline DefaultStarRecord makeDefaultStar(int hip, double raHours, double decDeg, double mag, int colour,
                                         const char* name) {
    DefaultStarRecord r{};
    r.hip = hip;
    r.raHours = static_cast<float>(raHours);
    r.decDeg = static_cast<float>(decDeg);
    r.mag = static_cast<float>(mag);
    r.colour = static_cast<int8_t>(colour);
    r.flags = 1;
    std::snprintf(r.name, sizeof r.name, "%s", name);
    return r;
}

}  // namespace nocturnel::testing
