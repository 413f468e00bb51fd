#include "plans/observer_logs.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "settings/message.h"
#include "settings/program_folder.h"
#include "settings/text_encoding.h"

namespace nocturnel {
namespace fs = std::filesystem;

namespace {
constexpr std::string_view kLogExtension = ".log";

// Reads at most `limit` bytes of a regular file without ever blocking on a FIFO or a device.
std::optional<std::string> readRegularFile(const fs::path& path, std::size_t limit) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW);
    if (fd < 0) return std::nullopt;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return std::nullopt;
    }
    std::string bytes(limit, '\0');
    std::size_t got = 0;
    while (got < limit) {
        const ssize_t n = ::read(fd, bytes.data() + got, limit - got);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        got += static_cast<std::size_t>(n);
    }
    ::close(fd);
    bytes.resize(got);
    return bytes;
}
}  // namespace

bool replaceFileContents(const fs::path& path, std::string_view bytes) {
    static int counter = 0;
    const fs::path temp =
        path.parent_path() / ("." + path.filename().string() + ".tmp-" + std::to_string(::getpid()) + "-" +
                              std::to_string(++counter));
    const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) return false;
    bool ok = true;
    std::size_t done = 0;
    while (ok && done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) ok = false;
        else done += static_cast<std::size_t>(n);
    }
    ok = ok && ::fsync(fd) == 0;
    ok = (::close(fd) == 0) && ok;
    if (ok) ok = ::rename(temp.c_str(), path.c_str()) == 0;
    if (!ok) {
        ::unlink(temp.c_str());
        return false;
    }
    const int dir = ::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
    return true;
}

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
    const auto refuse = [&](std::string_view why) {
        showMessage("Invalid object name for a log", why);
        return std::nullopt;
    };
    if (objectLatin1.empty()) return refuse("The object name is empty.");
    if (objectLatin1.size() >= kLogObjectField) return refuse("An object name has at most 19 characters.");
    if (objectLatin1 == "." || objectLatin1 == ".." || objectLatin1.front() == '.')
        return refuse("An object name cannot begin with a dot.");
    for (const char c : objectLatin1) {
        const auto u = static_cast<unsigned char>(c);
        if (c == '/' || c == '\\') return refuse("An object name cannot hold a slash.");
        if (u < 0x20 || u == 0x7F || (u >= 0x80 && u < 0xA0)) return refuse("An object name cannot hold control characters.");
    }
    return latin1ToUtf8(objectLatin1);
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
    if (!replaceFileContents(path, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()))) {
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
