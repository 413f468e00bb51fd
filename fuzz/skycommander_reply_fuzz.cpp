// SkyCommander replies: the 16-byte position.
#include <cmath>

#include "fuzz/fuzz_support.h"
#include "scope/skycommander_wire.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (const auto position = parseSkyCommanderPosition(fuzz::bytesOf(data, size))) {
        if (std::isfinite(position->first) && std::isfinite(position->second) && std::fabs(position->first) < 1e6 &&
            std::fabs(position->second) < 1e6)
            (void)skyCommanderTargetCommand(position->first, position->second);
    }
    return 0;
}
