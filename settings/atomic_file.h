#pragma once
// Files written and read whole, safely:
// - a record file (preferences, lists, logs) is only ever a regular file in its folder: a FIFO,
//   a device, a folder or a symbolic link in its place is refused with a message and never
//   blocks the program;
// - a write goes to a temporary name unique to the writer (the pid and a counter), is flushed
//   to disk, renamed over the target, and the folder is flushed too: a reader sees the old
//   file or the new one, never a part of one, and a failed write leaves nothing behind;
// - a damaged record is set aside under a dated name before anything replaces it;
// - temporaries left by a killed writer are removed at the next start.
// Every failure is reported with the program's message (title given by the caller, the path
// and the system's reason as detail) and a false result.
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nocturnel {

enum class RecordRead {
    Read,        // bytes hold the file (at most maxBytes + 1 bytes, so an over-long file shows)
    Missing,     // no such file
    NotRegular,  // a FIFO, device, folder or symbolic link stands in its place
    Unreadable,  // it exists but cannot be opened or read (errno text in `problem`)
};

// Reads a record file without blocking and without following a link.
RecordRead readRecordFile(const std::filesystem::path& path, std::size_t maxBytes, std::string& bytes,
                          std::string* problem = nullptr);

// Temporary file, write, fsync, close, rename, fsync of the folder; silent: on failure the
// temporary is gone, the target untouched and `problem` says why (path and system reason).
bool writeFileAtomically(const std::filesystem::path& path, std::string_view bytes, std::string& problem);

// Replaces the record file `path` by `bytes` atomically. The target must be missing or a
// regular file. False with the message `failureTitle` on any failure (nothing left behind).
bool replaceRecordFile(const std::filesystem::path& path, std::string_view bytes, std::string_view failureTitle);

// Writes an output the user named (report, chart image, catalogue). A regular or missing
// target is replaced atomically (a link is followed to its file); a device, a FIFO or a path
// under /dev or /proc (/dev/stdout, /dev/full) is written directly, every call checked; a
// folder is refused.
bool writeOutputFile(const std::filesystem::path& path, std::string_view bytes, std::string_view failureTitle);

// The name a damaged record is kept under: "<name>.damaged-YYYYMMDD-HHMMSS" (local time),
// with "-2", "-3" ... appended when that name is taken.
std::filesystem::path damagedCopyName(const std::filesystem::path& path);
// Renames a damaged record aside; the new path, or nothing (message shown) on failure.
// Callers hold the folder lock so that no writer replaces the file meanwhile.
std::optional<std::filesystem::path> setDamagedFileAside(const std::filesystem::path& path);

// The temporary name for one write of `path`: "<path>.tmp-<pid>-<counter>".
std::filesystem::path temporaryNameFor(const std::filesystem::path& path);
// Whether a file name has the form temporaryNameFor gives; pid is then the writer's.
bool isTemporaryName(std::string_view fileName, long* pid = nullptr);

// Marks the start of the running program (the first call fixes it).
std::filesystem::file_time_type programStartTime();
// Removes, from `folder` (not its subfolders), the temporary files written before `olderThan`
// (at start-up: programStartTime()) whose writer is no longer running. Returns how many.
int removeLeftoverTemporaryFiles(const std::filesystem::path& folder, std::filesystem::file_time_type olderThan);

}  // namespace nocturnel
