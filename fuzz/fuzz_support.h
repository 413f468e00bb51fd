#pragma once
// Shared by the fuzz targets: messages go nowhere (a damaged input must only give a message
// and a failure value, which is what the targets check by not crashing).
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "settings/message.h"

namespace nocturnel::fuzz {

inline void silenceMessages() {
    setMessageSink([](const Message&) {});
}

inline std::string_view bytesOf(const uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

}  // namespace nocturnel::fuzz
