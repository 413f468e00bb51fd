#pragma once
// The log folder userlogs/: one record per file "<object>.log", listed in name order. The
// listing index is how the log screen and the export address a log.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "plans/observer_log_record.h"
#include "plans/user_files.h"

namespace nocturnel {

struct LogEntry {
    std::string name;             // file name without ".log" (UTF-8, as on disk)
    std::filesystem::path path;
};

// Every userlogs/*.log regular file, in byte order of the names. Empty when the folder is missing.
std::vector<LogEntry> listObserverLogs();

// The file name a log's object gives (UTF-8, without ".log"), or nothing after a message when the
// name cannot be a file of userlogs/: empty, longer than 19 characters, ".", "..", a leading dot,
// a slash or backslash, or a control character. `objectLatin1` is the record's Latin-1 text.
std::optional<std::string> logFileNameFor(std::string_view objectLatin1);

// Saves the log as userlogs/<object>.log: the folder is made when missing, the magic set, the
// record written to a temporary file and renamed over the old one; then the file of the entry
// that was selected in the listing (selectedIndex, -1 for none) is removed when it is another
// file, so that a log saved under a new name leaves no old file. False after "Fail to write log
// file." (with the path) when the record cannot be written; the old file is then unchanged.
bool saveObserverLog(ObserverLog log, int selectedIndex);

// Opens the log at a listing index. False after "Please select an observation log." (no
// selection), "Fail to read log file." (missing, not a regular file, or under 456 bytes) or
// "It seems your log data are corrupted." (wrong magic).
bool openObserverLog(int listingIndex, ObserverLog& out);
// The same for the log of an object name (Latin-1); false after the same messages.
bool openObserverLogNamed(std::string_view objectLatin1, ObserverLog& out);
// Listing index of the log of an object name, -1 when there is none.
int observerLogIndex(std::string_view objectLatin1);

// Removes the log at a listing index; false after a message when nothing is selected or the
// file cannot be removed.
bool deleteObserverLog(int listingIndex);

// Reads a log file's record: the bytes and the magic check, without any message.
enum class LogReadStatus { kOk, kShort, kCorrupted };
LogReadStatus readObserverLogFile(const std::filesystem::path& path, ObserverLog& out);

}  // namespace nocturnel
