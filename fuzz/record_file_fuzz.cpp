// The record-file reader: any bytes open or count as absent, and every record read from them
// stays inside the file and the record buffer. The bytes are read in place through fmemopen,
// the same stream reads openDatabase makes on a file of data/.
#include <cstdio>

#include "catalog/record_file.h"
#include "fuzz/fuzz_support.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size == 0) return 0;  // fmemopen wants at least one byte; an empty file has no header anyway
    // Opened for reading only: the bytes are never written.
    std::unique_ptr<std::FILE, FileCloser> stream(::fmemopen(const_cast<uint8_t*>(data), size, "rb"));
    DatabaseSlot slot;
    if (!openRecordStream(slot, std::move(stream))) return 0;
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
