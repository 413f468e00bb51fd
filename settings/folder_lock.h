#pragma once
// One writer at a time on a program folder. Every change of a saved record (read, modify,
// write) happens while an exclusive advisory lock (flock) is held on the lock file
// "nocturnel.lock" in the folder. The command line and the interface's engine take the same
// lock, so two processes on one folder never lose each other's changes. The lock goes with
// the process: a writer killed with kill -9 releases it at once.
#include <chrono>
#include <filesystem>
#include <string>

namespace nocturnel {

inline constexpr char kFolderLockFileName[] = "nocturnel.lock";

class FolderLock {
public:
    // Waits at most `patience` for the lock (polling, never blocking for good). On failure
    // locked() is false and, unless quiet, the message has been shown.
    explicit FolderLock(const std::filesystem::path& folder,
                        std::chrono::milliseconds patience = std::chrono::seconds(10), bool quiet = false);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    bool locked() const { return fd_ >= 0; }
    // Why the lock was not taken (empty when locked).
    const std::string& problem() const { return problem_; }

private:
    // Opens and locks; the problem, or an empty text when locked.
    std::string acquire(const std::filesystem::path& path, const std::filesystem::path& folder,
                        std::chrono::milliseconds patience);

    int fd_ = -1;
    std::string problem_;
};

}  // namespace nocturnel
