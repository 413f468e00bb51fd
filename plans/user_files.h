#pragma once
// The user's own files (lists, memos, logs, user catalogues) read and written with the
// program's saved-state rules (settings/atomic_file.h): only regular files are read, never
// blocking on a FIFO or a device; a file is replaced through a temporary file and a rename
// under the program folder's lock, so that a failed write leaves the previous file as it was;
// a damaged record is set aside under a dated name before a new one replaces it.
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace nocturnel {

// At most `limit` bytes of a regular file (symbolic links are not followed); nothing when the
// path is missing or not a regular file.
std::optional<std::string> readRegularFile(const std::filesystem::path& path, std::size_t limit);

// Replaces a user file atomically under the folder lock. When `isDamaged` is given and says the
// file in place is damaged, that file is first set aside (its new name in the message). False
// (no message) on failure; the previous file is then unchanged.
bool replaceFileContents(const std::filesystem::path& path, std::string_view bytes,
                         const std::function<bool(const std::filesystem::path&)>& isDamaged = {});

}  // namespace nocturnel
