// Encoder box replies: the 13-byte count reply and the Dave Ek form, then the counts turned
// into angles with the resolutions a user can enter.
#include <cstring>

#include "fuzz/fuzz_support.h"
#include "scope/encoder_box_wire.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    // The first two bytes pick a resolution (the page allows -32127..32127); the rest is the reply.
    long resolution = 8192;
    if (size >= 2) {
        int16_t r = 0;
        std::memcpy(&r, data, 2);
        resolution = r % 32128;
        data += 2;
        size -= 2;
    }
    const std::string_view reply = fuzz::bytesOf(data, size);
    for (const auto counts : {parseEncoderCounts(reply), parseDaveEkCounts(reply)}) {
        if (!counts) continue;
        (void)countsToDegrees(counts->az, resolution, 0, false);
        (void)countsToDegrees(counts->alt, resolution, counts->az, true);
        (void)advanceSimulatedCount(counts->az, resolution, false);
    }
    return 0;
}
