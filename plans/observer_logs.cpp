#include "plans/observer_logs.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "settings/message.h"
#include "settings/program_folder.h"
#include "settings/text_encoding.h"
#include "plans/user_file_names.h"
#include "plans/user_files.h"

namespace nocturnel {
namespace fs = std::filesystem;

namespace {
constexpr std::string_view kLogExtension = ".log";
}  // namespace

std::vector<LogEntry> listObserverLogs() {
    std::vector<LogEntry> entries;
    std::error_code ec;
    const fs::path folder = userLogsFolder();
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
        const fs::path& p = it->path();
        const std::string file = p.filename().string();
        if (file.size() <= kLogExtension.size() || !file.ends_with(kLogExtension) || file[0] == '.') continue;
        std::error_code typeError;
        if (!it->is_regular_file(typeError) || it->is_symlink(typeError)) continue;
        entries.push_back({file.substr(0, file.size() - kLogExtension.size()), p});
    }
    std::sort(entries.begin(), entries.end(), [](const LogEntry& a, const LogEntry& b) { return a.name < b.name; });
    return entries;
}

std::optional<std::string> logFileNameFor(std::string_view objectLatin1) {
    return userFileStem(objectLatin1, kLogObjectField - 1, "Invalid object name for a log");
}

LogReadStatus readObserverLogFile(const fs::path& path, ObserverLog& out) {
    const auto bytes = readRegularFile(path, kObserverLogSize);
    if (!bytes || bytes->size() < kObserverLogSize) return LogReadStatus::kShort;
    const auto log = decodeObserverLog(
        std::span(reinterpret_cast<const unsigned char*>(bytes->data()), bytes->size()));
    if (!log) return LogReadStatus::kShort;
    if (log->magic != kObserverLogMagic) return LogReadStatus::kCorrupted;
    out = *log;
    return LogReadStatus::kOk;
}

bool saveObserverLog(ObserverLog log, int selectedIndex) {
    const auto fileName = logFileNameFor(log.object);
    if (!fileName) return false;
    const fs::path folder = userLogsFolder();
    const fs::path path = folder / (*fileName + std::string(kLogExtension));
    std::error_code ec;
    fs::create_directories(folder, ec);
    // The entry selected before saving is looked up first: the new file may change the listing.
    const std::vector<LogEntry> before = listObserverLogs();
    log.magic = kObserverLogMagic;
    const auto bytes = encodeObserverLog(log);
    // A damaged log in the way is kept aside, never overwritten without a copy.
    const auto damaged = [](const fs::path& p) {
        ObserverLog old;
        return readObserverLogFile(p, old) != LogReadStatus::kOk;
    };
    if (!replaceFileContents(path, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()), damaged)) {
        showMessage("Fail to write log file.", path.string());
        return false;
    }
    if (selectedIndex >= 0 && selectedIndex < static_cast<int>(before.size())) {
        const fs::path& old = before[static_cast<std::size_t>(selectedIndex)].path;
        if (old != path) fs::remove(old, ec);
    }
    return true;
}

namespace {
bool openLogEntry(const std::vector<LogEntry>& entries, int index, ObserverLog& out) {
    if (index < 0 || index >= static_cast<int>(entries.size())) {
        showMessage("Please select an observation log.");
        return false;
    }
    const fs::path& path = entries[static_cast<std::size_t>(index)].path;
    switch (readObserverLogFile(path, out)) {
        case LogReadStatus::kOk: return true;
        case LogReadStatus::kShort: showMessage("Fail to read log file.", path.string()); return false;
        case LogReadStatus::kCorrupted: showMessage("It seems your log data are corrupted.", path.string()); return false;
    }
    return false;
}
}  // namespace

bool openObserverLog(int listingIndex, ObserverLog& out) { return openLogEntry(listObserverLogs(), listingIndex, out); }

int observerLogIndex(std::string_view objectLatin1) {
    const std::string name = latin1ToUtf8(objectLatin1);
    const std::vector<LogEntry> entries = listObserverLogs();
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (entries[i].name == name) return static_cast<int>(i);
    return -1;
}

bool openObserverLogNamed(std::string_view objectLatin1, ObserverLog& out) {
    return openObserverLog(observerLogIndex(objectLatin1), out);
}

bool deleteObserverLog(int listingIndex) {
    const std::vector<LogEntry> entries = listObserverLogs();
    if (listingIndex < 0 || listingIndex >= static_cast<int>(entries.size())) {
        showMessage("Please select an observation log.");
        return false;
    }
    std::error_code ec;
    const fs::path& path = entries[static_cast<std::size_t>(listingIndex)].path;
    if (!fs::remove(path, ec) || ec) {
        showMessage("Can't delete the log file.", path.string());
        return false;
    }
    return true;
}

}  // namespace nocturnel
