// NexStar replies: the hex position forms (16-bit, 24-bit precise, raw bytes).
#include <cmath>

#include "fuzz/fuzz_support.h"
#include "scope/nexstar_format.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view reply = fuzz::bytesOf(data, size);
    for (const NexStarAngles a : {nexstarParseReply(reply), nexstarParsePreciseReply(reply), nexstarParseRawReply(reply)}) {
        if (!std::isfinite(a.raDeg) || !std::isfinite(a.decDeg)) __builtin_trap();
        (void)nexstarFoldDec(a.decDeg);
    }
    (void)nexstarReadHex(reply);
    return 0;
}
