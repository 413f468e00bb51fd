#include "settings/preferences_file.h"

#include <sys/stat.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <string>

#include "settings/atomic_file.h"
#include "settings/folder_lock.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace fs = std::filesystem;

static_assert(std::endian::native == std::endian::little, "the preferences file is written in host order");

namespace {

constexpr char kMagic[8] = {'N', 'O', 'C', 'T', 'P', 'R', 'E', 'F'};
constexpr char kSaveTitle[] = "Can't save the preferences";
constexpr std::chrono::seconds kLockPatience{10};
constexpr std::size_t kFileSize = sizeof(PreferencesFileHeader) + sizeof(Preferences);

void reportNotAFile() {
    showMessage("The preferences file is not a regular file",
                preferencesFilePath().string() + " is left alone; default settings are used.");
}

}  // namespace

uint32_t crc32(const void* data, std::size_t size) {
    static const std::array<uint32_t, 256> table = [] {
        std::array<uint32_t, 256> t{};
        for (uint32_t i = 0; i < 256; ++i) {
            uint32_t c = i;
            for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            t[i] = c;
        }
        return t;
    }();
    uint32_t crc = 0xFFFFFFFFu;
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < size; ++i) crc = table[(crc ^ bytes[i]) & 0xFF] ^ (crc >> 8);
    return crc ^ 0xFFFFFFFFu;
}

fs::path preferencesFilePath() { return programFolder() / kPreferencesFileName; }

const char* parsePreferencesBytes(std::string_view bytes, Preferences& p) {
    PreferencesFileHeader header{};
    if (bytes.size() < sizeof header) return "The preferences file is too short";
    std::memcpy(&header, bytes.data(), sizeof header);
    if (std::memcmp(header.magic, kMagic, sizeof kMagic) != 0) return "The preferences file is not a Nocturnel file";
    // A record written before the SkyRoamer criteria were added is the same record without its
    // last field: it is read as a prefix and the criteria keep their defaults.
    constexpr std::size_t kBeforeSelection = offsetof(Preferences, selection);
    const bool current = header.payloadSize == sizeof(Preferences);
    if (header.version != kPreferencesFileVersion || (!current && header.payloadSize != kBeforeSelection))
        return "The preferences file has another version";
    const std::size_t expected = sizeof header + header.payloadSize;
    if (bytes.size() < expected) return "The preferences file is too short";
    if (bytes.size() > expected) return "The preferences file is too long";
    const char* payload = bytes.data() + sizeof header;
    if (crc32(payload, header.payloadSize) != header.checksum) return "The preferences file is damaged";
    std::memcpy(static_cast<void*>(&p), payload, header.payloadSize);
    return nullptr;
}

std::string preferencesFileBytes(const Preferences& p) {
    PreferencesFileHeader header{};
    std::memcpy(header.magic, kMagic, sizeof kMagic);
    header.version = kPreferencesFileVersion;
    header.payloadSize = sizeof(Preferences);
    header.checksum = crc32(&p, sizeof p);
    std::string bytes(kFileSize, '\0');
    std::memcpy(bytes.data(), &header, sizeof header);
    std::memcpy(bytes.data() + sizeof header, &p, sizeof p);
    return bytes;
}

PreferencesLoad loadPreferences(Preferences& p, bool quiet) {
    std::string bytes, problem;
    switch (readRecordFile(preferencesFilePath(), kFileSize, bytes, &problem)) {
    case RecordRead::Missing:
        return PreferencesLoad::Missing;
    case RecordRead::NotRegular:
        if (!quiet) reportNotAFile();
        return PreferencesLoad::NotAFile;
    case RecordRead::Unreadable:
        if (!quiet)
            showMessage("Can't read the preferences file",
                        problem + "; default settings are used and the file is set aside at the next save.");
        return PreferencesLoad::Damaged;
    case RecordRead::Read:
        break;
    }
    Preferences read = p;
    if (const char* wrong = parsePreferencesBytes(bytes, read)) {
        if (!quiet) showMessage(wrong, "Default settings are used; the file is set aside at the next save.");
        return PreferencesLoad::Damaged;
    }
    p = read;
    return PreferencesLoad::Loaded;
}

PreferencesLoad reloadPreferencesForChange(Preferences& p) {
    const PreferencesLoad result = loadPreferences(p, true);
    if (result == PreferencesLoad::NotAFile)
        showMessage(kSaveTitle, preferencesFilePath().string() + " is not a regular file; nothing was saved.");
    if (result == PreferencesLoad::Damaged) {
        if (const auto aside = setDamagedFileAside(preferencesFilePath()))
            showMessage("The damaged preferences file was set aside", "It is kept as " + aside->string() + ".");
    }
    return result;
}

bool writePreferencesFile(const Preferences& p) {
    return replaceRecordFile(preferencesFilePath(), preferencesFileBytes(p), kSaveTitle);
}

bool savePreferences(const Preferences& p) {
    FolderLock lock(programFolder(), kLockPatience, true);
    if (!lock.locked()) {
        showMessage(kSaveTitle, lock.problem());
        return false;
    }
    Preferences current = p;
    const PreferencesLoad state = reloadPreferencesForChange(current);
    if (state == PreferencesLoad::NotAFile) return false;
    struct stat info {};
    if (state == PreferencesLoad::Damaged && ::lstat(preferencesFilePath().c_str(), &info) == 0)
        return false;  // it could not be set aside: never written over
    return writePreferencesFile(p);
}

}  // namespace nocturnel
