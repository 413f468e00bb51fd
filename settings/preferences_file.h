#pragma once
// The saved preferences: "nocturnel_prefs.dat" in the program folder, a 24-byte header
// (magic "NOCTPREF", format version, payload size, CRC-32 of the payload, all little-endian)
// followed by the record. Writing is atomic: a temporary file is written, flushed to disk and
// renamed over the old one, so a crash never leaves half a record.
#include <cstdint>
#include <filesystem>

#include "settings/preferences.h"

namespace nocturnel {

inline constexpr char kPreferencesFileName[] = "nocturnel_prefs.dat";
inline constexpr uint32_t kPreferencesFileVersion = 1;

struct PreferencesFileHeader {
    char magic[8];         // "NOCTPREF"
    uint32_t version;      // kPreferencesFileVersion
    uint32_t payloadSize;  // sizeof(Preferences) of the writer
    uint32_t checksum;     // CRC-32 (IEEE) of the payload bytes
    uint32_t reserved;     // 0
};
static_assert(sizeof(PreferencesFileHeader) == 24);

enum class PreferencesLoad {
    Loaded,   // the saved record was read over the given one
    Missing,  // no saved file: nothing changed, nothing shown
    Damaged,  // short, damaged, foreign or other-version file: nothing changed, a message shown
};

std::filesystem::path preferencesFilePath();

// Reads the saved record over p. On Missing or Damaged p is left as it was; the damaged file
// itself is left alone until the next save.
PreferencesLoad loadPreferences(Preferences& p);
// Writes p atomically; false (message shown) on failure.
bool savePreferences(const Preferences& p);

// CRC-32 (IEEE 802.3, reflected, as used by zip and PNG).
uint32_t crc32(const void* data, std::size_t size);

}  // namespace nocturnel
