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

std::string utf8ToLatin1ForMessage(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const auto c = static_cast<unsigned char>(utf8[i]);
        std::size_t length = c < 0x80 ? 1 : (c & 0xE0) == 0xC0 ? 2 : (c & 0xF0) == 0xE0 ? 3 : (c & 0xF8) == 0xF0 ? 4 : 0;
        bool whole = length > 0 && i + length <= utf8.size();
        for (std::size_t k = 1; whole && k < length; ++k)
            whole = (static_cast<unsigned char>(utf8[i + k]) & 0xC0) == 0x80;
        if (!whole) {
            out.push_back('?');
            ++i;
            continue;
        }
        const auto latin1 = utf8ToLatin1(utf8.substr(i, length));
        out += latin1 ? *latin1 : std::string("?");
        i += length;
    }
    return out;
}

}  // namespace nocturnel
