#pragma once
// Record database files: a 16-byte little-endian header (version, reserved, record count,
// record size) followed by fixed-size records. This layer opens such a file from data/,
// tells its count, size and version, and hands out record i. Nothing is loaded whole: each
// open file owns one record buffer and each read is one seek plus one read into it.
//
// Every database is held in a DatabaseSlot: an in-memory half (the handheld's record
// database, never present on this platform: the lookup always answers "none") and a file
// half. Record writing goes through the in-memory half only.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

namespace nocturnel {

// Closes the stream when the record file goes away.
struct FileCloser {
    void operator()(std::FILE* file) const;
};

struct RecordFile {
    uint32_t version = 0;      // header word 0
    uint32_t recordSize = 0;   // header word 3, bytes per record
    uint32_t recordCount = 0;  // header word 2 (only its low 16 bits count)
    std::vector<uint8_t> buffer;  // one record; every read of this file lands here
    std::unique_ptr<std::FILE, FileCloser> stream;  // opened for binary reading
};

struct DatabaseSlot {
    void* memoryHandle = nullptr;       // in-memory half: always absent here
    std::unique_ptr<RecordFile> file;   // file half
    bool isOpen() const { return memoryHandle != nullptr || file != nullptr; }
};

// Creator code of every database of the program.
inline constexpr char kCreatorCode[5] = "CYT1";
// Folder of the catalogue files inside the program folder.
inline constexpr char kDataFolder[] = "data/";

// "pl01" -> 0x706C3031 (first character in the most significant byte).
constexpr uint32_t fourCharCode(const char (&code)[5]) {
    return (static_cast<uint32_t>(static_cast<uint8_t>(code[0])) << 24) |
           (static_cast<uint32_t>(static_cast<uint8_t>(code[1])) << 16) |
           (static_cast<uint32_t>(static_cast<uint8_t>(code[2])) << 8) |
           static_cast<uint32_t>(static_cast<uint8_t>(code[3]));
}

// Clears the slot, asks for an in-memory database (none here), then opens
// programFolder()/folder/name and reads its header. A file whose header cannot be read whole
// counts as absent (no message). True when either half is now open. `mode` 1 marks the
// databases other screens may rewrite (comets, satellites); files are always read-only.
bool openDatabase(DatabaseSlot& slot, uint32_t type, uint32_t creator, int mode, const char* folder,
                  const char* name);
// The file half from an open binary stream (a file, or bytes in memory through fmemopen):
// clears the slot and reads the header; false (slot closed, stream released) when the header
// cannot be read whole or names a record larger than 64 KiB.
bool openRecordStream(DatabaseSlot& slot, std::unique_ptr<std::FILE, FileCloser> stream);
// Closes both halves; closing an absent half does nothing.
void closeDatabase(DatabaseSlot& slot);

// Low 16 bits of the header's record count; 0 when closed.
uint16_t recordCount(const DatabaseSlot& slot);
// Low 16 bits of the header's version; 0 when closed.
uint16_t databaseVersion(const DatabaseSlot& slot);
// Bytes per record; 0 when closed.
uint32_t recordSize(const DatabaseSlot& slot);
// Record count multiplied by a caller's unit (stars per block, 1/2 for the bright-star file ...).
uint32_t databaseTotalSize(const DatabaseSlot& slot, uint32_t unit);

// The record buffer holding record (index modulo 65,536); nullptr when the slot is closed or
// the record cannot be read whole. Silent: callers report their own database's text. The
// pointer stays valid until the next read of the same file.
const uint8_t* fetchRecord(DatabaseSlot& slot, uint32_t index);
// Fetches record (index modulo 65,536) and copies its first `length` bytes (at most the
// record size; the rest of the destination is zero-filled). On failure shows
// "Could not retrieve record!" and returns false.
bool readRecord(DatabaseSlot& slot, uint32_t index, void* destination, std::size_t length);

// Record writing and creation go through the in-memory half only. Writing to a slot with
// nothing open shows "Database isn't open!" and fails; with only the file half open it does
// nothing and fails.
bool writeRecord(DatabaseSlot& slot, uint32_t index, std::size_t offset, const void* source, std::size_t length);
bool createRecord(DatabaseSlot& slot, std::size_t size);

// The in-memory half: lookup by type and creator. No such database exists on this platform.
void* findMemoryDatabase(uint32_t type, uint32_t creator);

}  // namespace nocturnel
