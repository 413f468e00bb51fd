#include "settings/text_encoding.h"

namespace nocturnel {

std::string latin1ToUtf8(std::string_view latin1) {
    std::string out;
    out.reserve(latin1.size() + 4);
    for (const char ch : latin1) {
        const auto c = static_cast<unsigned char>(ch);
        if (c < 0x80) {
            out.push_back(ch);
        } else {
            out.push_back(static_cast<char>(0xC0 | (c >> 6)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        }
    }
    return out;
}

std::optional<std::string> utf8ToLatin1(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto c = static_cast<unsigned char>(utf8[i]);
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
            continue;
        }
        // Only the two-byte forms of U+0080..U+00FF map to Latin-1.
        if ((c == 0xC2 || c == 0xC3) && i + 1 < utf8.size()) {
            const auto next = static_cast<unsigned char>(utf8[i + 1]);
            if ((next & 0xC0) == 0x80) {
                out.push_back(static_cast<char>(((c & 0x1F) << 6) | (next & 0x3F)));
                ++i;
                continue;
            }
        }
        return std::nullopt;
    }
    return out;
}

}  // namespace nocturnel
