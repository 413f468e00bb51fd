#pragma once
// The program's texts are 8-bit Latin-1 (the degree sign is the byte 0xB0); terminals and web
// pages speak UTF-8. These convert at that boundary.
#include <optional>
#include <string>
#include <string_view>

namespace nocturnel {

std::string latin1ToUtf8(std::string_view latin1);
// UTF-8 to Latin-1; nothing when the text is not valid UTF-8 or holds a character beyond U+00FF.
std::optional<std::string> utf8ToLatin1(std::string_view utf8);
// Typed UTF-8 text in Latin-1 for quoting in a message (messages are Latin-1 and converted
// once on output): each character Latin-1 cannot hold, and each byte that is not UTF-8,
// becomes '?'.
std::string utf8ToLatin1ForMessage(std::string_view utf8);

}  // namespace nocturnel
