#pragma once
// Helpers shared by the builder's tests: a fresh temporary folder and record-file reading.
#include <atomic>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#include "tools/record_io.h"

namespace nocturnel::testing {

class TempFolder {
public:
    TempFolder() {
        static std::atomic<int> counter{0};
        path_ = std::filesystem::temp_directory_path() /
                ("nocturnel_builder_" + std::to_string(::getpid()) + "_" + std::to_string(counter++));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TempFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

template <typename Record>
std::vector<Record> readRecords(const std::filesystem::path& file, DatabaseHeader* headerOut = nullptr) {
    std::string bytes, error;
    DatabaseHeader header{};
    std::vector<Record> records;
    if (!readWholeFile(file, bytes) || !parseRecordFile(bytes, header, records, error)) return {};
    if (headerOut) *headerOut = header;
    return records;
}

// Entries of a block file, with its stars per block.
inline std::vector<StarEntry> readBlocks(const std::filesystem::path& file, int& perBlock) {
    std::string bytes;
    perBlock = 0;
    if (!readWholeFile(file, bytes) || bytes.size() < sizeof(DatabaseHeader)) return {};
    DatabaseHeader header{};
    std::memcpy(&header, bytes.data(), sizeof header);
    perBlock = static_cast<int>(header.recordSize / sizeof(StarEntry));
    std::vector<StarEntry> entries((bytes.size() - sizeof header) / sizeof(StarEntry));
    std::memcpy(entries.data(), bytes.data() + sizeof header, entries.size() * sizeof(StarEntry));
    return entries;
}

}  // namespace nocturnel::testing
