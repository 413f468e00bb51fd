#pragma once
// The saved preferences: "nocturnel_prefs.dat" in the program folder, a 24-byte header
// (magic "NOCTPREF", format version, payload size, CRC-32 of the payload, all little-endian)
// followed by the record. Writing is atomic (settings/atomic_file.h): a reader sees the old
// record or the new one, never half of one. Changing the saved record goes through
// updateSavedPreferences (settings/saved_preferences.h), which holds the folder lock.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

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
    Damaged,  // unreadable, short, damaged, foreign or other-version file: nothing changed, a message shown
    NotAFile, // a FIFO, device, folder or link stands in its place: nothing changed, a message shown
};

// What is wrong with the bytes of a preferences file (the message title), or nullptr when they
// hold a valid record, which is then copied over p. Pure: no file, no message.
const char* parsePreferencesBytes(std::string_view bytes, Preferences& p);

std::filesystem::path preferencesFilePath();

// Reads the saved record over p. On any other result than Loaded p is left as it was; a
// damaged file stays where it is until the next save sets it aside. `quiet` shows nothing.
PreferencesLoad loadPreferences(Preferences& p, bool quiet = false);
// Replaces the saved record by p as a whole, under the folder lock; a damaged file is set
// aside first. False (message shown) on failure. Commands that change some fields use
// updateSavedPreferences instead, which keeps what other processes saved meanwhile.
bool savePreferences(const Preferences& p);
// The record as the bytes of a preferences file.
std::string preferencesFileBytes(const Preferences& p);

// For writers that hold the folder lock (FolderLock on programFolder()):
// reads the saved record over p, silently; a damaged or unreadable file is set aside under
// "nocturnel_prefs.dat.damaged-<YYYYMMDD-HHMMSS>" with a message saying where it went (its
// result stays Damaged: p is left as it was). NotAFile shows its message.
PreferencesLoad reloadPreferencesForChange(Preferences& p);
// Writes p over the saved record atomically; false (message shown) on failure.
bool writePreferencesFile(const Preferences& p);

// CRC-32 (IEEE 802.3, reflected, as used by zip and PNG).
uint32_t crc32(const void* data, std::size_t size);

}  // namespace nocturnel
