#pragma once
// Names typed by the user that become file names inside one of the user folders (userlists/,
// userlogs/, usercatalogs/): they must stay a plain name in that folder.
#include <optional>
#include <string>
#include <string_view>

namespace nocturnel {

// The file name (UTF-8, without extension) of a Latin-1 name, or nothing after a message titled
// `refusal` when it cannot be one: empty, longer than maxChars, ".", "..", a leading dot, a slash
// or backslash, or a control character.
std::optional<std::string> userFileStem(std::string_view latin1, std::size_t maxChars, std::string_view refusal);

}  // namespace nocturnel
