#include "plans/user_file_names.h"

#include "settings/message.h"
#include "settings/text_encoding.h"

namespace nocturnel {

std::optional<std::string> userFileStem(std::string_view latin1, std::size_t maxChars, std::string_view refusal) {
    const auto refuse = [&](std::string_view why) {
        showMessage(refusal, why);
        return std::nullopt;
    };
    if (latin1.empty()) return refuse("The name is empty.");
    if (latin1.size() > maxChars) return refuse("A name has at most " + std::to_string(maxChars) + " characters.");
    if (latin1.front() == '.') return refuse("A name cannot begin with a dot.");
    for (const char c : latin1) {
        const auto u = static_cast<unsigned char>(c);
        if (c == '/' || c == '\\') return refuse("A name cannot hold a slash.");
        if (u < 0x20 || u == 0x7F || (u >= 0x80 && u < 0xA0)) return refuse("A name cannot hold control characters.");
    }
    return latin1ToUtf8(latin1);
}

}  // namespace nocturnel
