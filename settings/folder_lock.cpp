#include "settings/folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <thread>

#include "settings/message.h"

namespace nocturnel {
namespace {
constexpr char kBusyTitle[] = "Can't lock the program folder";
}

FolderLock::FolderLock(const std::filesystem::path& folder, std::chrono::milliseconds patience, bool quiet) {
    const std::filesystem::path path = folder / kFolderLockFileName;
    problem_ = acquire(path, folder, patience);
    if (problem_.empty()) return;
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
    if (!quiet) showMessage(kBusyTitle, problem_);
}

std::string FolderLock::acquire(const std::filesystem::path& path, const std::filesystem::path& folder,
                                std::chrono::milliseconds patience) {
    // O_NONBLOCK and O_NOFOLLOW: a FIFO or a link in place of the lock file must not hang us
    // or lead us elsewhere; fstat then tells whether it is the plain file it should be.
    fd_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY, 0644);
    if (fd_ < 0) return path.string() + ": " + std::strerror(errno);
    struct stat info {};
    if (::fstat(fd_, &info) != 0 || !S_ISREG(info.st_mode)) return path.string() + " is not a regular file.";
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        if (::flock(fd_, LOCK_EX | LOCK_NB) == 0) return {};
        if (errno != EWOULDBLOCK && errno != EINTR) return path.string() + ": " + std::strerror(errno);
        if (std::chrono::steady_clock::now() >= deadline)
            return "Another Nocturnel is saving into " + folder.string() + "; try again.";
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

FolderLock::~FolderLock() {
    if (fd_ >= 0) ::close(fd_);  // closing the descriptor releases the lock
}

}  // namespace nocturnel
