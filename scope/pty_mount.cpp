#include "scope/pty_mount.h"

#include "scope/serial_link.h"
#include "settings/preferences.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <utility>

namespace nocturnel {
namespace {

void closeFd(int& fd) {
    if (fd >= 0) ::close(fd);
    fd = -1;
}

// Writes every byte to the master, waiting while the line is full; gives up on a hang-up.
void writeAll(int fd, const std::string& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
        } else if (n < 0 && errno == EINTR) {
            continue;
        } else if (n < 0 && errno == EAGAIN) {
            pollfd p{fd, POLLOUT, 0};
            if (::poll(&p, 1, 1000) <= 0) return;
        } else {
            return;
        }
    }
}

}  // namespace

PtyMount::PtyMount(Responder responder) : responder_(std::move(responder)) {
    std::array<char, 128> name{};
    if (::openpty(&master_, &slave_, name.data(), nullptr, nullptr) != 0) {
        master_ = slave_ = -1;
        return;
    }
    // The line starts raw so nothing is echoed or translated before the program configures it.
    termios raw{};
    if (::tcgetattr(slave_, &raw) == 0) {
        ::cfmakeraw(&raw);
        ::tcsetattr(slave_, TCSANOW, &raw);
    }
    ::fcntl(master_, F_SETFD, FD_CLOEXEC);
    ::fcntl(slave_, F_SETFD, FD_CLOEXEC);
    std::array<int, 2> wake{};
    if (::pipe2(wake.data(), O_CLOEXEC) != 0) {
        closeFd(master_);
        closeFd(slave_);
        return;
    }
    wakeRead_ = wake[0];
    wakeWrite_ = wake[1];
    path_ = name.data();
    thread_ = std::thread([this] { run(); });
}

PtyMount::~PtyMount() { closeNow(); }

const std::string& PtyMount::devicePath() const { return path_; }

std::string PtyMount::received() const {
    std::lock_guard lock(mutex_);
    return received_;
}

void PtyMount::clearReceived() {
    std::lock_guard lock(mutex_);
    received_.clear();
}

bool PtyMount::send(const std::string& bytes) {
    std::lock_guard lock(mutex_);
    if (master_ < 0) return false;
    writeAll(master_, bytes);
    return true;
}

bool PtyMount::waitUntilReceived(const std::string& tail, int timeoutMs) const {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                             [&] { return !answering_ && received_.ends_with(tail); });
}

void PtyMount::setResponder(Responder responder) {
    std::lock_guard lock(mutex_);
    responder_ = std::move(responder);
    pending_.clear();
}

void PtyMount::stopThread() {
    if (!thread_.joinable()) return;
    char stop = 's';
    while (::write(wakeWrite_, &stop, 1) < 0 && errno == EINTR) {
    }
    thread_.join();
}

void PtyMount::closeNow() {
    stopThread();
    std::lock_guard lock(mutex_);
    closeFd(master_);
    closeFd(slave_);
    closeFd(wakeRead_);
    closeFd(wakeWrite_);
}

void PtyMount::run() {
    std::array<char, 512> chunk{};
    for (;;) {
        std::array<pollfd, 2> fds{pollfd{wakeRead_, POLLIN, 0}, pollfd{master_, POLLIN, 0}};
        int ready = ::poll(fds.data(), fds.size(), -1);
        if (ready < 0) {
            if (errno == EINTR) continue;
            return;
        }
        if (fds[0].revents != 0) return;
        if ((fds[1].revents & POLLIN) == 0) {
            if (fds[1].revents & (POLLHUP | POLLERR | POLLNVAL)) return;
            continue;
        }
        ssize_t n = ::read(master_, chunk.data(), chunk.size());
        if (n < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (n <= 0) return;

        std::string reply;
        {
            std::lock_guard lock(mutex_);
            answering_ = true;
            received_.append(chunk.data(), static_cast<std::size_t>(n));
            pending_.append(chunk.data(), static_cast<std::size_t>(n));
            if (responder_) {
                try {
                    reply = responder_(pending_);
                } catch (...) {
                    // A faulty responder behaves like a mount that stays silent.
                    reply.clear();
                }
            } else {
                pending_.clear();
            }
        }
        if (!reply.empty()) writeAll(master_, reply);
        {
            std::lock_guard lock(mutex_);
            answering_ = false;
        }
        changed_.notify_all();
    }
}

int selectAsScopePort(const PtyMount& mount) {
    const std::string& path = mount.devicePath();
    auto& field = prefs().scopeDevice;
    if (path.empty() || path.size() >= sizeof field) return -1;
    std::memset(field, 0, sizeof field);
    std::memcpy(field, path.data(), path.size());
    int index = portIndexOf(path);
    if (index > 0) prefs().scopePort = index;
    return index;
}

}  // namespace nocturnel
