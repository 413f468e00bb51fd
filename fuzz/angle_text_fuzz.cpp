// Angle texts as typed on the command line and in forms ("48:06:00", "-1°30'00", "23h45.0").
#include <cmath>

#include "core/angle_text.h"
#include "fuzz/fuzz_support.h"
#include "settings/text_encoding.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::bytesOf(data, size);
    if (const auto angle = parseAngleText(text); angle && std::isfinite(*angle) && std::fabs(*angle) < 1e6) {
        (void)degreesText(*angle);
        (void)hoursText(std::fmod(std::fabs(*angle), 24.0));
    }
    // Typed text crosses the encoding edge once each way.
    if (const auto latin1 = utf8ToLatin1(text))
        if (latin1ToUtf8(*latin1) != text) __builtin_trap();
    return 0;
}
