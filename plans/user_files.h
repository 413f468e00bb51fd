#pragma once
// Reading and writing the user's own files (lists, memos, logs, user catalogues) safely: only
// regular files are read, never blocking on a FIFO or a device, and a file is replaced through
// a temporary file and a rename so that a failed write leaves the previous file as it was.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nocturnel {

// At most `limit` bytes of a regular file (symbolic links are not followed); nothing when the
// path is missing or not a regular file.
std::optional<std::string> readRegularFile(const std::filesystem::path& path, std::size_t limit);

// Writes bytes through a temporary file in the same folder, fsync, rename and fsync of the
// folder. False (no message) on any failure; the temporary file is then removed.
// `failedStep`, when given, tells which step failed.
enum class WriteStep { kNone, kOpen, kWrite, kRename };
bool replaceFileContents(const std::filesystem::path& path, std::string_view bytes, WriteStep* failedStep = nullptr);

}  // namespace nocturnel
