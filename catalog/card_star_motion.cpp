#include "catalog/card_star_motion.h"

#include <cmath>
#include <cstring>
#include <filesystem>

#include "catalog/catalogues.h"
#include "settings/program_folder.h"

namespace nocturnel {

std::string cardMotionFileName(std::string_view cardFile) {
    std::string name(cardFile);
    const size_t dot = name.rfind(".ppc");
    if (dot != std::string::npos && dot + 4 == name.size()) name.resize(dot);
    return name + "_pm.ppc";
}

namespace {
// Size and modification time of a file, empty when absent.
std::string fileStamp(const std::filesystem::path& path) {
    std::error_code ec;
    const auto size = std::filesystem::file_size(path, ec);
    if (ec) return {};
    const auto time = std::filesystem::last_write_time(path, ec);
    if (ec) return {};
    return std::to_string(size) + "/" + std::to_string(time.time_since_epoch().count());
}
}  // namespace

bool CardMotionReader::prepare() {
    DatabaseSlot& card = starCatalogSlot();
    const int level = starCatalogLevel();
    const bool known = level >= 0 && level < static_cast<int>(kStarCatalogFiles.size());
    const std::string path =
        known ? dataPath(kStarCatalogFiles[static_cast<size_t>(level)]).string() : std::string();
    const std::string name =
        known ? cardMotionFileName(kStarCatalogFiles[static_cast<size_t>(level)]) : std::string();
    const std::string stamp = known ? fileStamp(dataPath(name)) : std::string();
    if (card.file.get() == cardFile_ && path == cardPath_ && starsPerBlock() == perBlock_ &&
        recordCount(card) == cardRecords_ && stamp == sideStamp_)
        return slot_.isOpen();
    closeDatabase(slot_);
    loadedBlock_ = UINT32_MAX;
    loaded_ = nullptr;
    cardFile_ = card.file.get();
    cardPath_ = path;
    perBlock_ = starsPerBlock();
    cardRecords_ = recordCount(card);
    sideStamp_ = stamp;
    if (!cardFile_ || !known || perBlock_ <= 0) return false;
    if (!openDatabase(slot_, 0, kCreator, 0, kDataFolder, name.c_str())) return false;
    if (databaseVersion(slot_) != kCardMotionFileVersion || recordCount(slot_) != cardRecords_ ||
        recordSize(slot_) != static_cast<uint32_t>(perBlock_) * sizeof(CardStarMotion))
        closeDatabase(slot_);
    return slot_.isOpen();
}

bool CardMotionReader::motionOf(uint32_t block, int k, int32_t number, CardStarMotion& out) {
    if (!slot_.isOpen() || k < 0 || k >= perBlock_ || number == 0) return false;
    if (block != loadedBlock_) {
        loaded_ = fetchRecord(slot_, block);
        loadedBlock_ = loaded_ ? block : UINT32_MAX;
        if (!loaded_) return false;
    }
    std::memcpy(&out, loaded_ + static_cast<size_t>(k) * sizeof(CardStarMotion), sizeof out);
    return out.number == number && std::isfinite(out.pmRaCosDecMasPerYear) &&
           std::isfinite(out.pmDecMasPerYear);
}

CardMotionReader& cardMotionReader() {
    static CardMotionReader reader;
    return reader;
}

}  // namespace nocturnel
