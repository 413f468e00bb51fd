#include "settings/atomic_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <ctime>
#include <string>
#include <system_error>

#include "settings/message.h"

namespace nocturnel {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kTemporaryMark = ".tmp-";

std::string reason(const fs::path& path, int error) { return path.string() + ": " + std::strerror(error); }

// Owns a file descriptor; close() reports whether the close itself succeeded.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }
    bool close() {
        const int fd = fd_;
        fd_ = -1;
        return ::close(fd) == 0;
    }

private:
    int fd_;
};

// Writes every byte, retrying short writes; errno is set on failure.
bool writeAll(int fd, std::string_view bytes) {
    const char* data = bytes.data();
    std::size_t left = bytes.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, data, left);
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        if (n == 0) {
            errno = EIO;
            return false;
        }
        data += n;
        left -= static_cast<std::size_t>(n);
    }
    return true;
}

// Flushes a folder so that a rename in it survives a power cut. Filesystems that cannot
// flush a folder (EINVAL) are not an error.
bool syncFolder(const fs::path& folder) {
    Descriptor dir(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.get() < 0) return false;
    if (::fsync(dir.get()) != 0 && errno != EINVAL) return false;
    return dir.close() || errno == EINTR;
}

bool replaceAtomically(const fs::path& path, std::string_view bytes, std::string_view failureTitle) {
    std::string problem;
    if (writeFileAtomically(path, bytes, problem)) return true;
    showMessage(failureTitle, problem);
    return false;
}

}  // namespace

bool writeFileAtomically(const fs::path& path, std::string_view bytes, std::string& problem) {
    const fs::path temp = temporaryNameFor(path);
    auto fail = [&](const fs::path& where, int error) {
        ::unlink(temp.c_str());
        problem = reason(where, error);
        return false;
    };
    {
        Descriptor fd(::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY, 0644));
        if (fd.get() < 0) return fail(path, errno);
        // The new file keeps the permissions of the one it replaces.
        struct stat old {};
        if (::stat(path.c_str(), &old) == 0 && S_ISREG(old.st_mode) && ::fchmod(fd.get(), old.st_mode & 07777) != 0)
            return fail(path, errno);
        if (!writeAll(fd.get(), bytes)) return fail(path, errno);
        if (::fsync(fd.get()) != 0) return fail(path, errno);
        if (!fd.close()) return fail(path, errno);
    }
    if (::rename(temp.c_str(), path.c_str()) != 0) return fail(path, errno);
    if (!syncFolder(path.parent_path())) {
        problem = reason(path.parent_path(), errno);
        return false;
    }
    return true;
}

RecordRead readRecordFile(const fs::path& path, std::size_t maxBytes, std::string& bytes, std::string* problem) {
    bytes.clear();
    auto unreadable = [&](int error) {
        if (problem) *problem = std::strerror(error);
        return RecordRead::Unreadable;
    };
    // O_NONBLOCK: opening a FIFO must not wait for a writer; O_NOFOLLOW: a link is refused.
    Descriptor fd(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY));
    if (fd.get() < 0) {
        if (errno == ENOENT) return RecordRead::Missing;
        if (errno == ELOOP) return RecordRead::NotRegular;
        return unreadable(errno);
    }
    struct stat info {};
    if (::fstat(fd.get(), &info) != 0) return unreadable(errno);
    if (!S_ISREG(info.st_mode)) return RecordRead::NotRegular;
    bytes.resize(maxBytes + 1);
    std::size_t got = 0;
    while (got < bytes.size()) {
        const ssize_t n = ::read(fd.get(), bytes.data() + got, bytes.size() - got);
        if (n < 0) {
            if (errno == EINTR) continue;
            const int error = errno;
            bytes.clear();
            return unreadable(error);
        }
        if (n == 0) break;
        got += static_cast<std::size_t>(n);
    }
    bytes.resize(got);
    return RecordRead::Read;
}

bool replaceRecordFile(const fs::path& path, std::string_view bytes, std::string_view failureTitle) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
        showMessage(failureTitle, path.string() + " is not a regular file.");
        return false;
    }
    return replaceAtomically(path, bytes, failureTitle);
}

bool writeOutputFile(const fs::path& named, std::string_view bytes, std::string_view failureTitle) {
    struct stat info {};
    const std::string text = named.string();
    // /dev/stdout and /proc/self/fd/N stand for an open file that must be written, not replaced.
    const bool standsForOpenFile = text.rfind("/dev/", 0) == 0 || text.rfind("/proc/", 0) == 0;
    if (::stat(named.c_str(), &info) == 0 && (!S_ISREG(info.st_mode) || standsForOpenFile)) {
        if (S_ISDIR(info.st_mode)) {
            showMessage(failureTitle, named.string() + " is a folder.");
            return false;
        }
        // A device, a FIFO or an open file (/dev/stdout, /dev/full): written in place. The open does not wait
        // for a reader (a FIFO nobody reads fails at once); once a reader is there, writes may.
        Descriptor fd(::open(named.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
        const bool opened = fd.get() >= 0 && ::fcntl(fd.get(), F_SETFL, 0) == 0;
        if (!opened || !writeAll(fd.get(), bytes) || !fd.close()) {
            showMessage(failureTitle, reason(named, errno));
            return false;
        }
        return true;
    }
    fs::path path = named;
    if (::lstat(named.c_str(), &info) == 0 && S_ISLNK(info.st_mode)) {
        // A link to a file: the file is replaced, the link stays.
        std::error_code ec;
        path = fs::weakly_canonical(named, ec);
        if (ec) {
            showMessage(failureTitle, reason(named, ec.value()));
            return false;
        }
    }
    return replaceAtomically(path, bytes, failureTitle);
}

fs::path damagedCopyName(const fs::path& path) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", &local);
    const std::string base = path.string() + ".damaged-" + stamp;
    std::string name = base;
    struct stat info {};
    for (int n = 2; ::lstat(name.c_str(), &info) == 0; ++n) name = base + "-" + std::to_string(n);
    return name;
}

std::optional<fs::path> setDamagedFileAside(const fs::path& path) {
    const fs::path aside = damagedCopyName(path);
    if (::rename(path.c_str(), aside.c_str()) != 0) {
        showMessage("Can't set the damaged file aside", reason(path, errno));
        return std::nullopt;
    }
    syncFolder(path.parent_path());
    return aside;
}

fs::path temporaryNameFor(const fs::path& path) {
    static std::atomic<unsigned> counter{0};
    return fs::path(path).concat(std::string(kTemporaryMark) + std::to_string(::getpid()) + "-" +
                                 std::to_string(counter.fetch_add(1) + 1));
}

bool isTemporaryName(std::string_view name, long* pid) {
    const std::size_t mark = name.rfind(kTemporaryMark);
    if (mark == std::string_view::npos || mark == 0) return false;
    const std::string_view tail = name.substr(mark + kTemporaryMark.size());
    const std::size_t dash = tail.find('-');
    if (dash == std::string_view::npos || dash == 0 || dash + 1 >= tail.size()) return false;
    long writer = 0;
    unsigned long counter = 0;
    const auto a = std::from_chars(tail.data(), tail.data() + dash, writer);
    const auto b = std::from_chars(tail.data() + dash + 1, tail.data() + tail.size(), counter);
    if (a.ec != std::errc{} || a.ptr != tail.data() + dash || b.ec != std::errc{} ||
        b.ptr != tail.data() + tail.size() || writer <= 0)
        return false;
    if (pid) *pid = writer;
    return true;
}

fs::file_time_type programStartTime() {
    static const fs::file_time_type start = fs::file_time_type::clock::now();
    return start;
}

int removeLeftoverTemporaryFiles(const fs::path& folder, fs::file_time_type olderThan) {
    std::error_code ec;
    int removed = 0;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
        long pid = 0;
        if (!isTemporaryName(it->path().filename().string(), &pid)) continue;
        std::error_code statError;
        if (!it->is_regular_file(statError) || it->is_symlink(statError)) continue;
        const auto written = fs::last_write_time(it->path(), statError);
        if (statError || written >= olderThan) continue;
        // A writer that is still running (another program on the folder) keeps its file.
        if (pid == ::getpid() || ::kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH) continue;
        if (::unlink(it->path().c_str()) == 0) ++removed;
    }
    return removed;
}

}  // namespace nocturnel
