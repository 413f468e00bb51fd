// Takahashi replies: version, position and goto answers.
#include "fuzz/fuzz_support.h"
#include "scope/takahashi_wire.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view reply = fuzz::bytesOf(data, size);
    (void)isTakahashiVersionReply(reply);
    (void)parseTakahashiPosition(reply);
    (void)parseTakahashiGotoAnswer(reply);
    return 0;
}
