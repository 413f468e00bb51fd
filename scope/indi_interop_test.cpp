// INDI's own mount drivers (Debian's indi-bin) against our simulators on pseudo-terminals:
// each driver connects, reads the position, slews and syncs, driven through indiserver with
// indi_setprop / indi_getprop as any INDI client would. Skipped, with a line saying so, when
// INDI is not installed.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cctype>
#include <functional>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "scope/drive_types.h"
#include "scope/mount_simulators.h"
#include "scope/pty_mount.h"

namespace nocturnel {
namespace {

using namespace std::chrono_literals;

std::optional<std::string> findProgram(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::string dirs = path ? path : "/usr/bin:/bin";
    std::size_t start = 0;
    while (start <= dirs.size()) {
        const std::size_t end = dirs.find(':', start);
        const std::string dir = dirs.substr(start, end == std::string::npos ? std::string::npos : end - start);
        const std::string candidate = (dir.empty() ? "." : dir) + "/" + name;
        if (::access(candidate.c_str(), X_OK) == 0) return candidate;
        if (end == std::string::npos) break;
        start = end + 1;
    }
    return std::nullopt;
}

// A TCP port nobody listens on now.
int freePort() {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    int port = 0;
    if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0)
        port = ntohs(address.sin_port);
    ::close(fd);
    return port;
}

// Output of a command line (standard error dropped).
std::string commandOutput(const std::string& command) {
    std::string output;
    if (FILE* pipe = ::popen((command + " 2>/dev/null").c_str(), "r")) {
        char chunk[512];
        while (std::fgets(chunk, sizeof chunk, pipe)) output += chunk;
        ::pclose(pipe);
    }
    return output;
}

std::string quoted(const std::string& text) { return "'" + text + "'"; }

// indiserver running one driver, in a process group of its own so that the driver goes with it.
class IndiServer {
public:
    IndiServer(const std::string& driver, int port) : port_(port) {
        socketPath_ = "/tmp/nocturnel_indi_" + std::to_string(::getpid()) + "_" + std::to_string(port);
        const std::string portText = std::to_string(port);
        pid_ = ::fork();
        if (pid_ == 0) {
            ::setpgid(0, 0);
            const int devNull = ::open("/dev/null", O_RDWR);  // only async-signal-safe calls here
            ::dup2(devNull, STDIN_FILENO);
            ::dup2(devNull, STDOUT_FILENO);
            ::dup2(devNull, STDERR_FILENO);
            ::execlp("indiserver", "indiserver", "-u", socketPath_.c_str(), "-p", portText.c_str(), driver.c_str(),
                     static_cast<char*>(nullptr));
            ::_exit(127);
        }
        if (pid_ > 0) ::setpgid(pid_, pid_);
    }
    ~IndiServer() {
        if (pid_ <= 0) return;
        ::kill(-pid_, SIGTERM);
        for (int i = 0; i < 50 && ::waitpid(pid_, nullptr, WNOHANG) == 0; ++i) std::this_thread::sleep_for(20ms);
        ::kill(-pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
    IndiServer(const IndiServer&) = delete;
    IndiServer& operator=(const IndiServer&) = delete;

    // "device.property.element" -> its value; empty when the server does not know it (yet).
    std::string get(const std::string& property) const {
        std::string out = commandOutput("indi_getprop -p " + std::to_string(port_) + " -t 1 " + quoted(property));
        const std::size_t equals = out.find('=');
        if (equals == std::string::npos) return {};
        std::string value = out.substr(equals + 1);
        while (!value.empty() && (value.back() == '\n' || value.back() == '\r')) value.pop_back();
        return value;
    }
    void set(const std::string& property) const {
        commandOutput("indi_setprop -p " + std::to_string(port_) + " -t 2 " + quoted(property));
    }
    // Polls until the element has the value the predicate wants, at most `limit`.
    template <typename Wanted>
    bool waitFor(const std::string& property, Wanted wanted, std::chrono::milliseconds limit = 8000ms) const {
        const auto end = std::chrono::steady_clock::now() + limit;
        while (std::chrono::steady_clock::now() < end) {
            if (wanted(get(property))) return true;
            std::this_thread::sleep_for(200ms);
        }
        return false;
    }

private:
    int port_ = 0;
    pid_t pid_ = -1;
    std::string socketPath_;
};

std::function<bool(const std::string&)> near(double expected, double tolerance) {
    return [=](const std::string& text) {
        if (text.empty()) return false;
        return std::fabs(std::atof(text.c_str()) - expected) <= tolerance;
    };
}

struct IndiCase {
    int driveCode;
    const char* driver;
    const char* device;
    bool slews;  // INDI's SkyCommander driver reads only: it offers no GoTo and no Sync
};

class IndiInterop : public ::testing::TestWithParam<IndiCase> {};

TEST_P(IndiInterop, DriverConnectsReadsSlewsAndSyncs) {
    const IndiCase& c = GetParam();
    if (!findProgram("indiserver") || !findProgram("indi_getprop") || !findProgram("indi_setprop") ||
        !findProgram(c.driver))
        GTEST_SKIP() << "INDI is not installed (indiserver, indi_getprop, indi_setprop, " << c.driver
                     << "): install Debian's indi-bin to run this interoperability test";

    SimulatorOptions options;
    options.raHours = 5.5;
    options.decDeg = 22.0;
    PtyMount mount(makeMountSimulator(c.driveCode, options));
    ASSERT_TRUE(mount.isReady());
    const int port = freePort();
    ASSERT_GT(port, 0);
    IndiServer server(c.driver, port);
    const std::string device = c.device;

    ASSERT_TRUE(server.waitFor(device + ".DEVICE_PORT.PORT", [](const std::string& v) { return !v.empty(); }))
        << "indiserver did not offer " << device;
    server.set(device + ".DEVICE_PORT.PORT=" + mount.devicePath());
    server.set(device + ".CONNECTION.CONNECT=On");
    ASSERT_TRUE(server.waitFor(device + ".CONNECTION.CONNECT", [](const std::string& v) { return v == "On"; }))
        << device << " did not connect; the simulator received: " << mount.received().substr(0, 300);

    // The position the simulator starts at (a Temma reply's last RA field is read by INDI as
    // hundredths of a minute: a tolerance of a minute covers it).
    EXPECT_TRUE(server.waitFor(device + ".EQUATORIAL_EOD_COORD.RA", near(5.5, 0.02)));
    EXPECT_TRUE(server.waitFor(device + ".EQUATORIAL_EOD_COORD.DEC", near(22.0, 0.05)));
    if (!c.slews) return;

    if (c.driveCode == kDriveTakahashi) server.set(device + ".GEOGRAPHIC_COORD.LAT;LONG;ELEV=45;10;100");
    server.set(device + ".ON_COORD_SET.SLEW=On");
    server.set(device + ".EQUATORIAL_EOD_COORD.RA;DEC=7.25;-12.5");
    EXPECT_TRUE(server.waitFor(device + ".EQUATORIAL_EOD_COORD.RA", near(7.25, 0.02)))
        << "no slew; the simulator received: " << mount.received().substr(0, 600);
    EXPECT_TRUE(server.waitFor(device + ".EQUATORIAL_EOD_COORD.DEC", near(-12.5, 0.05)));

    server.set(device + ".ON_COORD_SET.SYNC=On");
    server.set(device + ".EQUATORIAL_EOD_COORD.RA;DEC=8.5;10.25");
    EXPECT_TRUE(server.waitFor(device + ".EQUATORIAL_EOD_COORD.RA", near(8.5, 0.02)))
        << "no sync; the simulator received: " << mount.received().substr(0, 600);
    EXPECT_TRUE(server.waitFor(device + ".EQUATORIAL_EOD_COORD.DEC", near(10.25, 0.05)));
}

INSTANTIATE_TEST_SUITE_P(
    Drivers, IndiInterop,
    ::testing::Values(IndiCase{kDriveLx200, "indi_lx200classic", "LX200 Classic", true},
                      IndiCase{kDriveAutoStar, "indi_lx200autostar", "LX200 Autostar", true},
                      IndiCase{kDriveLosmandy, "indi_lx200gemini", "Losmandy Gemini", true},
                      IndiCase{kDriveNexstarGps, "indi_celestron_gps", "Celestron GPS", true},
                      IndiCase{kDriveSkyCommander, "indi_skycommander_telescope", "SkyCommander", false},
                      IndiCase{kDriveTakahashi, "indi_temma_telescope", "Temma Takahashi", true}),
    [](const ::testing::TestParamInfo<IndiCase>& info) {
        std::string name = info.param.driver;
        for (char& ch : name)
            if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
        return name;
    });

}  // namespace
}  // namespace nocturnel
