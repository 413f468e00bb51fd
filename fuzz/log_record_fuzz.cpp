// Observer log records read from userlogs/: any 456 bytes decode, and encode back to themselves
// except where a text field holds bytes after its terminator.
#include <array>
#include <cstring>

#include "fuzz/fuzz_support.h"
#include "plans/observer_log_export.h"
#include "plans/observer_log_record.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const auto log = decodeObserverLog(std::span(data, size));
    if (!log) return 0;
    const auto bytes = encodeObserverLog(*log);
    const auto again = decodeObserverLog(bytes);
    if (!again || encodeObserverLog(*again) != bytes) __builtin_trap();
    (void)observerLogExportLine(*log, size % 2 == 0);
    return 0;
}
