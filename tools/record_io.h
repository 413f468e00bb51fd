#pragma once
// Whole-file reading and writing of record database files for the builder (the program's own
// readers live in catalog/). A file is the 16-byte DatabaseHeader followed by the records.
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "catalog/formats.h"

namespace nocturnel {

// Reads a whole file into bytes; false when it cannot be opened or read.
bool readWholeFile(const std::filesystem::path& path, std::string& bytes);
// Writes bytes to path (replacing it atomically: temporary name, flush, rename); false on
// failure, leaving no partial file.
bool writeWholeFile(const std::filesystem::path& path, std::string_view bytes);

// Header + records as bytes (little-endian: the host order of every platform we build on).
template <typename Record>
std::string recordFileBytes(uint32_t version, std::span<const Record> records) {
    static_assert(std::is_trivially_copyable_v<Record>);
    DatabaseHeader header{version, 0, static_cast<uint32_t>(records.size()), sizeof(Record)};
    std::string bytes(sizeof header + records.size_bytes(), '\0');
    std::memcpy(bytes.data(), &header, sizeof header);
    if (!records.empty()) std::memcpy(bytes.data() + sizeof header, records.data(), records.size_bytes());
    return bytes;
}

// Parses a record file back; false (with a reason) when the header or size disagrees.
template <typename Record>
bool parseRecordFile(std::string_view bytes, DatabaseHeader& header, std::vector<Record>& records, std::string& error) {
    if (bytes.size() < sizeof header) {
        error = "shorter than its header";
        return false;
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    if (header.recordSize != sizeof(Record)) {
        error = "record size " + std::to_string(header.recordSize) + ", expected " + std::to_string(sizeof(Record));
        return false;
    }
    if (bytes.size() != sizeof header + static_cast<size_t>(header.recordCount) * sizeof(Record)) {
        error = "length disagrees with the record count";
        return false;
    }
    records.resize(header.recordCount);
    if (header.recordCount) std::memcpy(records.data(), bytes.data() + sizeof header, records.size() * sizeof(Record));
    return true;
}

}  // namespace nocturnel
