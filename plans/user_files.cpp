#include "plans/user_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace nocturnel {
namespace fs = std::filesystem;

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

bool replaceFileContents(const fs::path& path, std::string_view bytes, WriteStep* failedStep) {
    WriteStep ignored;
    WriteStep& step = failedStep ? *failedStep : ignored;
    step = WriteStep::kNone;
    static int counter = 0;
    const fs::path temp =
        path.parent_path() / ("." + path.filename().string() + ".tmp-" + std::to_string(::getpid()) + "-" +
                              std::to_string(++counter));
    const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) {
        step = WriteStep::kOpen;
        return false;
    }
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
    if (!ok) step = WriteStep::kWrite;
    if (ok && ::rename(temp.c_str(), path.c_str()) != 0) {
        ok = false;
        step = WriteStep::kRename;
    }
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

}  // namespace nocturnel
