// The program's one serial port on POSIX termios. The time-outs of the original link are kept
// as numbers and enforced with poll(): a read waits at most 2 ms per requested byte plus
// 400 ms in total, and at most 400 ms between two bytes once the first has come.
#include "scope/serial_link.h"

#include "scope/serial_options.h"
#include "settings/message.h"
#include "settings/preferences.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

namespace nocturnel {
namespace {

using Clock = std::chrono::steady_clock;

// Time-outs in milliseconds, in the layout of the original link.
struct LinkTimeouts {
    int readIntervalMs = 0;
    int readTotalMultiplierMs = 0;
    int readTotalConstantMs = 0;
    int writeTotalMultiplierMs = 0;
    int writeTotalConstantMs = 0;
};

struct SerialLinkState {
    std::vector<std::string> portNames;
    int fd = -1;
    bool isOpen = false;
    int holdOpen = 0;
    int traceMode = 0;
    CommState comm;
    LinkTimeouts timeouts;
    int settleMs = 3500;
    bool lastReadTimedOut = false;  // the last read ended with fewer bytes than asked, at its time-out
    bool showingTrace = false;      // a trace message is being shown
};

SerialLinkState& link() {
    static SerialLinkState state;
    return state;
}

void closeHandle(SerialLinkState& s) {
    if (s.fd >= 0) ::close(s.fd);
    s.fd = -1;
}

// A serial device is listed when the kernel knows real hardware behind it: USB and ACM
// devices always, ttyS ports only when a UART was detected (type other than 0).
bool serialHardwarePresent(const std::string& name) {
    if (name.rfind("ttyS", 0) != 0) return true;
    std::ifstream type("/sys/class/tty/" + name + "/type");
    int value = 0;
    if (type >> value) return value != 0;
    std::error_code ec;
    return std::filesystem::exists("/sys/class/tty/" + name + "/device", ec);
}

// Devices named prefix + decimal number, in numeric order.
std::vector<std::string> devicesWithPrefix(const std::vector<std::string>& names, const std::string& prefix) {
    std::vector<std::pair<long, std::string>> found;
    for (const auto& name : names) {
        if (name.size() <= prefix.size() || name.compare(0, prefix.size(), prefix) != 0) continue;
        std::string digits = name.substr(prefix.size());
        if (!std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) continue;
        if (digits.size() > 6 || !serialHardwarePresent(name)) continue;
        found.emplace_back(std::stol(digits), "/dev/" + name);
    }
    std::sort(found.begin(), found.end());
    std::vector<std::string> paths;
    for (auto& entry : found) paths.push_back(std::move(entry.second));
    return paths;
}

bool isTerminalDevice(int fd) {
    struct stat info {};
    return ::fstat(fd, &info) == 0 && S_ISCHR(info.st_mode) && ::isatty(fd) == 1;
}

int millisecondsUntil(Clock::time_point deadline) {
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

std::string preferredDevice() {
    const auto& field = prefs().scopeDevice;
    return std::string(field, strnlen(field, sizeof field));
}

}  // namespace

const std::vector<std::string>& portNameList() {
    if (link().portNames.empty()) rebuildPortNameList();
    return link().portNames;
}

void rebuildPortNameList() {
    std::vector<std::string> names;
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator("/dev", ec))
        names.push_back(entry.path().filename().string());

    std::vector<std::string> list{"None"};
    for (const char* prefix : {"ttyUSB", "ttyACM", "ttyS"}) {
        auto paths = devicesWithPrefix(names, prefix);
        list.insert(list.end(), paths.begin(), paths.end());
    }
    std::string device = preferredDevice();
    if (!device.empty() && std::find(list.begin() + 1, list.end(), device) == list.end()) list.push_back(device);
    link().portNames = std::move(list);
}

int portIndexOf(const std::string& device) {
    rebuildPortNameList();
    const auto& list = link().portNames;
    for (std::size_t i = 1; i < list.size(); ++i)
        if (list[i] == device) return static_cast<int>(i);
    return -1;
}

int serialOpen(int portIndex, int baud) {
    SerialLinkState& s = link();
    if (s.isOpen) return 1;
    if (s.portNames.size() < 2) rebuildPortNameList();
    if (portIndex < 0 || static_cast<std::size_t>(portIndex) >= s.portNames.size()) return 0;
    if (portIndex == 0) {
        showMessage("No communication port is selected.\n", "Please select one using Preference 1/6.");
        return 0;
    }
    closeHandle(s);  // a handle left by an open that failed at its time-outs

    const std::string& name = s.portNames[static_cast<std::size_t>(portIndex)];
    // Non-blocking so that opening never waits for a carrier; the reads wait with poll().
    // Only a terminal is a serial port: a regular file, a directory, a FIFO or a character
    // device such as /dev/zero is refused before a single byte is written to it.
    s.fd = ::open(name.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (s.fd >= 0 && !isTerminalDevice(s.fd)) closeHandle(s);
    if (s.fd >= 0 && ::flock(s.fd, LOCK_EX | LOCK_NB) != 0) closeHandle(s);  // no sharing
    if (s.fd < 0) {
        showMessage("Can't open serial port", name);
        return 0;
    }

    termios tio{};
    if (::tcgetattr(s.fd, &tio) == 0) {
        CommState comm = openCommState(s.comm);
        auto speed = baudToSpeed(baud);
        bool applied = speed.has_value();
        if (applied) {
            commStateToTermios(comm, tio);
            applied = ::cfsetispeed(&tio, *speed) == 0 && ::cfsetospeed(&tio, *speed) == 0 &&
                      ::tcsetattr(s.fd, TCSANOW, &tio) == 0;
        }
        if (!applied) {
            showMessage("Can't set serial port parameters");
            closeHandle(s);
            return 0;
        }
        s.comm = comm;
        // Nothing left over from an earlier session in the input. The output is kept: the
        // last command of the previous operation (a sync, a stop) may still be on its way.
        ::tcflush(s.fd, TCIFLUSH);
    }

    int fileFlags = ::fcntl(s.fd, F_GETFL);
    if (fileFlags >= 0) {
        s.timeouts = LinkTimeouts{400, 2, 400, 2, 400};
        // The descriptor stays non-blocking: every read and write waits through poll() with
        // these time-outs, so a stalled line can never hold the program.
        if (::fcntl(s.fd, F_SETFL, fileFlags | O_NONBLOCK) != 0) {
            showMessage("Unable to set the time-out parameters");
            return 0;
        }
    }

    if (s.settleMs > 0) std::this_thread::sleep_for(std::chrono::milliseconds(s.settleMs));
    s.isOpen = true;
    return 1;
}

int serialSetLineOptions(uint32_t options) {
    SerialLinkState& s = link();
    if (!s.isOpen) return 0;
    termios tio{};
    CommState comm = applyLineOptions(s.comm, options);
    bool applied = s.fd >= 0 && ::tcgetattr(s.fd, &tio) == 0;
    if (applied) {
        commStateToTermios(comm, tio);
        applied = ::tcsetattr(s.fd, TCSANOW, &tio) == 0;
    }
    if (!applied) {
        showMessage("Can't set serial port parameters");
        closeHandle(s);  // the open flag stays set, as the link always did
        return 0;
    }
    s.comm = comm;
    return 1;
}

int serialWrite(const void* bytes, std::size_t count) {
    SerialLinkState& s = link();
    if (!s.isOpen || s.fd < 0) return 0;
    const auto* data = static_cast<const char*>(bytes);
    auto deadline = Clock::now() + std::chrono::milliseconds(s.timeouts.writeTotalMultiplierMs * static_cast<long>(count) +
                                                             s.timeouts.writeTotalConstantMs);
    std::size_t done = 0;
    while (done < count) {
        ssize_t n = ::write(s.fd, data + done, count - done);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && errno == EAGAIN) {
            pollfd p{s.fd, POLLOUT, 0};
            int wait = millisecondsUntil(deadline);
            if (wait == 0 || ::poll(&p, 1, wait) <= 0) return 1;  // time-out: the call itself succeeded
            if (p.revents & (POLLHUP | POLLERR | POLLNVAL)) return 0;
            continue;
        }
        return 0;  // hang-up or device error
    }
    return 1;
}

int serialRead(void* buffer, std::size_t max) {
    SerialLinkState& s = link();
    if (!s.isOpen || s.fd < 0 || buffer == nullptr || max == 0) return 0;
    auto* out = static_cast<char*>(buffer);
    auto deadline = Clock::now() + std::chrono::milliseconds(s.timeouts.readTotalMultiplierMs * static_cast<long>(max) +
                                                             s.timeouts.readTotalConstantMs);
    std::size_t got = 0;
    s.lastReadTimedOut = false;
    while (got < max) {
        int wait = millisecondsUntil(deadline);
        if (got > 0 && s.timeouts.readIntervalMs > 0) wait = std::min(wait, s.timeouts.readIntervalMs);
        if (wait == 0) {
            s.lastReadTimedOut = true;
            break;
        }
        pollfd p{s.fd, POLLIN, 0};
        int ready = ::poll(&p, 1, wait);
        if (ready < 0 && errno == EINTR) continue;
        if (ready == 0) s.lastReadTimedOut = true;
        if (ready <= 0) break;  // time-out or poll failure
        if ((p.revents & POLLIN) == 0) break;  // hang-up or error without data
        ssize_t n = ::read(s.fd, out + got, max - got);
        if (n > 0) {
            got += static_cast<std::size_t>(n);
        } else if (n < 0 && (errno == EINTR || errno == EAGAIN)) {
            continue;
        } else {
            break;  // end of file, EIO after a hang-up
        }
    }
    return static_cast<int>(got);
}

void serialClose() {
    SerialLinkState& s = link();
    if (!s.isOpen || s.holdOpen) return;
    closeHandle(s);
    s.isOpen = false;
}

void serialDiscardInput() {
    SerialLinkState& s = link();
    if (!s.isOpen || s.fd < 0) return;
    if (::tcflush(s.fd, TCIFLUSH) == 0) return;
    char scrap[256];  // not a terminal: read what is there without waiting (bounded)
    for (int i = 0; i < 16 && ::read(s.fd, scrap, sizeof scrap) > 0; ++i) {
    }
}

bool serialIsOpen() { return link().isOpen; }

void setHoldOpen(int flag) { link().holdOpen = link().traceMode ? 0 : flag; }

int holdOpen() { return link().holdOpen; }

int toggleTrace() {
    link().traceMode = link().traceMode ? 0 : 1;
    return link().traceMode;
}

int isTraceOn() { return link().traceMode; }

std::string traceText(std::string_view bytes) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string text;
    for (char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte == '\r') {
            text += "\\r";
        } else if (byte == '\n') {
            text += "\\n";
        } else if (byte == '\\') {
            text += "\\\\";
        } else if (byte < 0x20 || byte >= 0x7F) {
            text += "\\x";
            text += kHex[byte >> 4];
            text += kHex[byte & 0x0F];
        } else {
            text += c;
        }
    }
    return text;
}

void traceMessage(const std::string& label, const std::string& text) {
    SerialLinkState& s = link();
    if (!s.traceMode) return;
    s.showingTrace = true;
    showMessage(label, traceText(text));
    s.showingTrace = false;
}

bool isShowingTrace() { return link().showingTrace; }

bool serialLastReadTimedOut() { return link().lastReadTimedOut; }

void setSerialSettleMillisecondsForTests(int milliseconds) { link().settleMs = std::max(0, milliseconds); }

}  // namespace nocturnel
