// The record-file reader: any file in data/ opens or counts as absent, and every record read
// from it stays inside the file and the record buffer.
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "catalog/record_file.h"
#include "fuzz/fuzz_support.h"
#include "settings/program_folder.h"

using namespace nocturnel;
namespace fs = std::filesystem;

namespace {
fs::path& fileUnderTest() {
    static fs::path path;
    return path;
}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    // A memory-backed folder when there is one: each input is written as a file.
    std::error_code ec;
    const fs::path scratch = fs::is_directory("/dev/shm", ec) ? fs::path("/dev/shm") : fs::temp_directory_path();
    const fs::path home = scratch / ("nocturnel_fuzz_record_" + std::to_string(::getpid()));
    fs::create_directories(home / "data");
    setProgramFolder(home);
    fileUnderTest() = home / "data" / "fuzz.ppc";
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    std::FILE* out = std::fopen(fileUnderTest().c_str(), "wb");
    if (!out) return 0;
    std::fwrite(data, 1, size, out);
    std::fclose(out);

    DatabaseSlot slot;
    if (!openDatabase(slot, fourCharCode("pl00"), fourCharCode("CYT1"), 0, kDataFolder, "fuzz.ppc")) return 0;
    const uint16_t count = recordCount(slot);
    (void)databaseVersion(slot);
    (void)databaseTotalSize(slot, 80);
    const uint32_t size32 = recordSize(slot);
    // The first records, the last, and indexes past the end and beyond 16 bits.
    uint8_t copy[128];
    for (uint32_t i = 0; i < 8; ++i) (void)readRecord(slot, i, copy, sizeof copy);
    for (uint32_t index : {uint32_t(count), uint32_t(count) - 1u, 65535u, 65536u, 0xFFFFFFFFu}) {
        if (const uint8_t* record = fetchRecord(slot, index)) {
            volatile uint8_t sum = 0;
            for (uint32_t b = 0; b < size32; ++b) sum = static_cast<uint8_t>(sum + record[b]);
        }
    }
    closeDatabase(slot);
    return 0;
}
