#include "tools/card_motion_file.h"

#include <cmath>
#include <cstring>

#include "tools/record_io.h"

namespace nocturnel {

std::vector<CardStarMotion> cardMotionEntries(std::span<const StarEntry> slots,
                                              const std::unordered_map<int32_t, ProperMotion>& motions) {
    std::vector<CardStarMotion> entries(slots.size(), CardStarMotion{0, 0.0f, 0.0f});
    for (size_t i = 0; i < slots.size(); ++i) {
        const int32_t number = slots[i].number;
        const auto it = number != 0 ? motions.find(number) : motions.end();
        if (it == motions.end() || (it->second.raCosDecMasPerYear == 0 && it->second.decMasPerYear == 0))
            continue;
        entries[i] = {number, static_cast<float>(it->second.raCosDecMasPerYear),
                      static_cast<float>(it->second.decMasPerYear)};
    }
    return entries;
}

std::string cardMotionFileBytes(std::span<const CardStarMotion> entries, int perBlock) {
    const size_t records = perBlock > 0 ? entries.size() / static_cast<size_t>(perBlock) : 0;
    const DatabaseHeader header{kCardMotionFileVersion, 0, static_cast<uint32_t>(records),
                                static_cast<uint32_t>(perBlock * sizeof(CardStarMotion))};
    std::string bytes(sizeof header + records * static_cast<size_t>(perBlock) * sizeof(CardStarMotion), '\0');
    std::memcpy(bytes.data(), &header, sizeof header);
    if (records > 0) std::memcpy(bytes.data() + sizeof header, entries.data(), bytes.size() - sizeof header);
    return bytes;
}

bool checkCardMotionFile(const std::filesystem::path& card, const std::filesystem::path& side,
                         std::string& error) {
    std::string cardBytes, sideBytes;
    const std::string name = side.filename().string();
    DatabaseHeader cardHeader{}, sideHeader{};
    if (!readWholeFile(card, cardBytes) || !readWholeFile(side, sideBytes) ||
        cardBytes.size() < sizeof cardHeader || sideBytes.size() < sizeof sideHeader) {
        error = name + ": it or its card is missing or shorter than a header";
        return false;
    }
    std::memcpy(&cardHeader, cardBytes.data(), sizeof cardHeader);
    std::memcpy(&sideHeader, sideBytes.data(), sizeof sideHeader);
    const size_t perBlock = cardHeader.recordSize / sizeof(StarEntry);
    if (sideHeader.version != kCardMotionFileVersion || sideHeader.recordCount != cardHeader.recordCount ||
        sideHeader.recordSize != perBlock * sizeof(CardStarMotion) ||
        sideBytes.size() != sizeof sideHeader + size_t{sideHeader.recordCount} * sideHeader.recordSize ||
        cardBytes.size() != sizeof cardHeader + size_t{cardHeader.recordCount} * cardHeader.recordSize) {
        error = name + ": version, record count or size disagrees with its card";
        return false;
    }
    const size_t slots = size_t{cardHeader.recordCount} * perBlock;
    for (size_t i = 0; i < slots; ++i) {
        StarEntry star;
        CardStarMotion motion;
        std::memcpy(&star, cardBytes.data() + sizeof cardHeader + i * sizeof star, sizeof star);
        std::memcpy(&motion, sideBytes.data() + sizeof sideHeader + i * sizeof motion, sizeof motion);
        if (motion.number == 0) continue;
        const double speed = std::hypot(motion.pmRaCosDecMasPerYear, motion.pmDecMasPerYear);
        if (motion.number != star.number || !(speed < 11000)) {
            error = name + ": slot " + std::to_string(i) + " (star " + std::to_string(motion.number) +
                    ") does not match its card or moves too fast";
            return false;
        }
    }
    return true;
}

}  // namespace nocturnel
