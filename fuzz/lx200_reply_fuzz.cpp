// LX200 replies: sexagesimal positions, values and goto answers from the mount.
#include <cmath>
#include <string>

#include "fuzz/fuzz_support.h"
#include "scope/lx200_format.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view reply = fuzz::bytesOf(data, size);
    double value = 0;
    if (parseLx200Sexagesimal(reply, value)) {
        // A parsed position is a number that formats back without fault.
        if (std::isfinite(value)) {
            (void)lx200RaReply(std::fmod(std::fabs(value), 24.0), true);
            (void)lx200DecReply(std::fmax(-90.0, std::fmin(90.0, value)), false);
        }
    }
    (void)parseLx200Value(reply);
    if (size > 0) (void)lx200GotoAnswerCode(reply[0]);
    return 0;
}
