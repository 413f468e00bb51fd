// The `nocturnel scope` command end to end, run in-process against pty simulators.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include "scope/drive_types.h"
#include "scope/encoder_box.h"
#include "scope/lx200.h"
#include "scope/lx200_sim.h"
#include "scope/mount_simulators.h"
#include "scope/pty_mount.h"
#include "scope/serial_link.h"
#include "scope/takahashi.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"
#include "shell/app.h"
#include "shell/cli_test_runner.h"

namespace nocturnel {
namespace {

class ScopeCommand : public ::testing::Test {
protected:
    void SetUp() override {
        home_ = std::filesystem::temp_directory_path() / ("nocturnel_cmd_scope_" + std::to_string(::getpid()));
        std::filesystem::create_directories(home_);
        ::setenv("NOCTURNEL_SERIAL_SETTLE_MS", "0", 1);
        // No terminal on standard input, whoever runs the tests: questions go unanswered
        // unless a test answers them.
        savedStdin_ = ::dup(STDIN_FILENO);
        const int devNull = ::open("/dev/null", O_RDONLY);
        ::dup2(devNull, STDIN_FILENO);
        ::close(devNull);
        setTakahashiPollPauseMillisecondsForTests(0);
        prefs() = Preferences{};
        encoderResetState();
        takahashiResetState();
        lx200ResetState();
    }
    void TearDown() override {
        if (isTraceOn()) toggleTrace();
        setHoldOpen(0);
        serialClose();
        ::unsetenv("NOCTURNEL_SERIAL_SETTLE_MS");
        ::dup2(savedStdin_, STDIN_FILENO);
        ::close(savedStdin_);
        std::error_code ec;
        std::filesystem::remove_all(home_, ec);
    }

    // Runs `nocturnel --home HOME <args...>`.
    CliRun run(std::vector<std::string> args) {
        args.insert(args.begin(), {"--home", home_.string()});
        return runCommandLine(std::move(args));
    }

    std::filesystem::path home_;
    int savedStdin_ = -1;
};

TEST_F(ScopeCommand, EveryDriveWithASimulatorConnectsReadsAndMoves) {
    const SimulatorOptions options{true, 4.25, 33.5, 120.0, 30.0};
    for (const DriveInfo& drive : driveTable()) {
        if (!hasMountSimulator(drive.code)) continue;
        SCOPED_TRACE(drive.code);
        encoderResetState();
        takahashiResetState();
        PtyMount mount(makeMountSimulator(drive.code, options));
        ASSERT_TRUE(mount.isReady());
        const std::string code = std::to_string(drive.code);
        const std::string port = mount.devicePath();

        CliRun connect = run({"scope", "--drive", code, "--port", port, "connect"});
        EXPECT_EQ(connect.exit, 0) << connect.titles();

        CliRun read = run({"--json", "scope", "--drive", code, "--port", port, "read"});
        ASSERT_EQ(read.exit, 0) << read.titles();
        auto j = nlohmann::json::parse(read.out);
        if (drive.family == DriveFamily::EncoderBox) {
            EXPECT_NEAR(j.at("ra").get<double>(), 120.0 / 15.0, 0.01);
            EXPECT_NEAR(j.at("dec").get<double>(), 30.0, 0.05);
        } else {
            EXPECT_NEAR(j.at("ra").get<double>(), 4.25, 0.01);
            EXPECT_NEAR(j.at("dec").get<double>(), 33.5, 0.05);
        }

        mount.clearReceived();
        CliRun move = run({"scope", "--drive", code, "--port", port, "move", "n", "--rate", "2"});
        if (drive.code == kDriveUltima2000) {
            // Served by the dispatch, but the Ultima takes no motion packets: nothing moves.
            EXPECT_EQ(move.exit, 0) << move.titles();
            EXPECT_EQ(mount.received().find('P'), std::string::npos);
        } else if (slewingService(drive.code) == SlewingService::Served) {
            EXPECT_EQ(move.exit, 0) << move.titles();
            EXPECT_NE(mount.received(), "");
        } else {
            EXPECT_EQ(move.exit, 1);
            EXPECT_TRUE(move.shown("This scope drive cannot be moved from the program")) << move.titles();
            EXPECT_EQ(mount.received(), "");
        }
    }
}

TEST_F(ScopeCommand, DrivesWithoutAProtocolSayWhy) {
    struct {
        std::vector<std::string> args;
        const char* message;
    } rows[] = {
        {{"scope", "--drive", "None", "read"}, "No drive is selected in Preference"},
        {{"scope", "--drive", "None", "connect"}, "Sorry, no scope drive is selected"},
        {{"scope", "--drive", "SiderealTech", "read"}, "SiderealTech is not supported yet"},
        {{"scope", "--drive", "100", "read"}, "Read not yet implemented for PowerFlex"},
        {{"scope", "--drive", "101", "connect"}, "Scope Connect not supported for the drive you selected"},
        {{"scope", "--drive", "101", "track", "--count", "1"}, "Get position not supported"},
        {{"scope", "--drive", "Foo", "read"}, "Unknown scope drive"},
        {{"scope", "--drive", "BBox", "stop"}, "This scope drive cannot be moved from the program"},
        {{"scope", "--drive", "LX200", "read"}, "No communication port is selected.\n"},
        {{"scope", "--drive", "LX200", "--port", "/dev/nonexistent-nocturnel", "read"}, "Can't open serial port"},
        {{"scope", "--drive", "None", "simulate"}, "No simulator for this scope drive"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        CliRun r = run(row.args);
        EXPECT_EQ(r.exit, 1);
        EXPECT_TRUE(r.shown(row.message)) << r.titles();
    }
}

TEST_F(ScopeCommand, FaultyMountsEndWithAMessageAndExitOne) {
    struct Fault {
        const char* what;
        PtyMount::Responder responder;
    };
    Fault faults[] = {
        {"silent", [](std::string& pending) { pending.clear(); return std::string(); }},
        {"garbage", [](std::string& pending) { pending.clear(); return std::string("?#"); }},
    };
    for (Fault& fault : faults) {
        for (const char* drive : {"LX200", "ServoCat", "NexStarGPS,GT,CGE", "SkyCommander", "Takahashi", "BBox"}) {
            SCOPED_TRACE(std::string(fault.what) + " " + drive);
            takahashiResetState();
            encoderResetState();
            PtyMount mount(fault.responder);
            const auto start = std::chrono::steady_clock::now();
            CliRun r = run({"scope", "--drive", drive, "--port", mount.devicePath(), "read"});
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));  // never a hang
            EXPECT_EQ(r.exit, 1);
            EXPECT_FALSE(r.messages.empty());
        }
    }
}

TEST_F(ScopeCommand, VanishedDeviceEndsTracking) {
    PtyMount mount(makeMountSimulator(5));
    const std::string port = mount.devicePath();
    mount.closeNow();
    CliRun r = run({"scope", "--drive", "LX200", "--port", port, "track", "--count", "3"});
    EXPECT_EQ(r.exit, 1);
    EXPECT_FALSE(r.messages.empty());
    EXPECT_EQ(r.out, "");
}

TEST_F(ScopeCommand, GotoReportsTheMountsAnswer) {
    auto model = std::make_shared<Lx200MountModel>();
    PtyMount mount(makeLx200Responder(model));
    const std::string port = mount.devicePath();
    CliRun ok = run({"--json", "--date", "2024-03-15", "--time", "22:30", "scope", "--drive", "LX200", "--port",
                        port, "goto", "--ra", "05:55:10", "--dec", "+07:24:25"});
    ASSERT_EQ(ok.exit, 0) << ok.titles();
    auto j = nlohmann::json::parse(ok.out);
    EXPECT_EQ(j.at("answer").get<int>(), 0);
    EXPECT_NEAR(j.at("ra").get<double>(), 5.92, 0.05);
    EXPECT_NE(mount.received().find(":MS#"), std::string::npos);

    model->update([](Lx200MountState& s) { s.gotoReply = "1"; });
    CliRun below = run({"scope", "--drive", "LX200", "--port", port, "goto", "--force", "--ra", "5.9", "--dec", "7.4"});
    EXPECT_EQ(below.exit, 1);
    EXPECT_TRUE(below.shown("Object is below horizon in Goto.")) << below.titles();
    EXPECT_TRUE(below.shown("Goto failed"));

    CliRun bad = run({"scope", "--drive", "LX200", "--port", port, "goto", "--ra", "five", "--dec", "7.4"});
    EXPECT_EQ(bad.exit, 1);
    EXPECT_FALSE(bad.messages.empty());
}

TEST_F(ScopeCommand, GotoOnADriveThatCannotSlewShowsTheTarget) {
    CliRun r = run({"scope", "--drive", "None", "goto", "--ra", "5.9", "--dec", "7.4"});
    EXPECT_EQ(r.exit, 0);
    ASSERT_EQ(r.messages.size(), 1u);
    EXPECT_EQ(r.messages[0].title.rfind("Sky position:\nRa:", 0), 0u);
    EXPECT_EQ(r.messages[0].detail.rfind("Scope Position:\nRa:", 0), 0u);
}

TEST_F(ScopeCommand, TrackPrintsOneLinePerRead) {
    PtyMount mount(makeMountSimulator(5, SimulatorOptions{true, 12.0, -30.0}));
    CliRun r = run({"--json", "scope", "--drive", "LX200", "--port", mount.devicePath(), "track", "--count", "2"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    std::istringstream lines(r.out);
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) {
        auto j = nlohmann::json::parse(line);
        EXPECT_NEAR(j.at("ra").get<double>(), 12.0, 0.01);
        EXPECT_NEAR(j.at("dec").get<double>(), -30.0, 0.01);
        ++count;
    }
    EXPECT_EQ(count, 2);
}

// Every regular file under a folder with its last write time.
std::map<std::string, std::filesystem::file_time_type> filesUnder(const std::filesystem::path& folder) {
    std::map<std::string, std::filesystem::file_time_type> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) files[entry.path().string()] = entry.last_write_time();
    return files;
}

TEST_F(ScopeCommand, OverridesAreNeverSaved) {
    PtyMount mount(makeMountSimulator(13));
    run({"scope", "read"});  // a first run creates whatever start-up creates
    const auto before = filesUnder(home_);
    CliRun r = run({"scope", "--drive", "ServoCat", "--port", mount.devicePath(), "read"});
    EXPECT_EQ(r.exit, 0) << r.titles();
    EXPECT_EQ(filesUnder(home_), before);
}

TEST_F(ScopeCommand, SimulatePrintsItsDevice) {
    CliRun r = run({"--json", "scope", "--drive", "LX200", "simulate", "--seconds", "0.2"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    auto j = nlohmann::json::parse(r.out);
    EXPECT_EQ(j.at("device").get<std::string>().rfind("/dev/pts/", 0), 0u);
    EXPECT_EQ(j.at("drive").get<int>(), 5);
}

}  // namespace
}  // namespace nocturnel
