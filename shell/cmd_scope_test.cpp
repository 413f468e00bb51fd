// The `nocturnel scope` command end to end, run in-process against pty simulators.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <thread>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include "scope/drive_types.h"
#include "scope/encoder_box.h"
#include "scope/lx200.h"
#include "scope/lx200_sim.h"
#include "scope/nexstar_sim.h"
#include "scope/takahashi_simulator.h"
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
    // The port is named through a link that goes with the device: a freed pty number may be
    // handed at once to another test's simulator, and must not be opened in its place.
    PtyMount mount(makeMountSimulator(5));
    const std::filesystem::path port = home_ / "ttyVanishing";
    std::filesystem::create_symlink(mount.devicePath(), port);
    mount.closeNow();
    std::filesystem::remove(port);
    CliRun r = run({"scope", "--drive", "LX200", "--port", port.string(), "track", "--count", "3"});
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

// ---- stopping, syncing, questions, replies and trace, against the simulators ----

double jsonNumber(const CliRun& r, const char* key) { return nlohmann::json::parse(r.out).at(key).get<double>(); }

TEST_F(ScopeCommand, MoveNorthMovesTheLx200SimulatorAndStopLeavesItStill) {
    auto model = std::make_shared<Lx200MountModel>(lx200MountForDrive(kDriveLx200, true, 6.0, 10.0));
    PtyMount mount(makeLx200Responder(model));
    const std::string port = mount.devicePath();
    CliRun move = run({"scope", "--drive", "LX200", "--port", port, "move", "n", "--rate", "0", "--seconds", "0.3"});
    ASSERT_EQ(move.exit, 0) << move.titles();
    ASSERT_TRUE(mount.waitUntilReceived("#:Qn#"));
    EXPECT_EQ(model->state().moving, -1);
    CliRun first = run({"--json", "scope", "--drive", "LX200", "--port", port, "read"});
    ASSERT_EQ(first.exit, 0) << first.titles();
    EXPECT_GT(jsonNumber(first, "dec"), 10.3);  // 2 degrees a second at the slew rate, for 0.3 s
    EXPECT_LT(jsonNumber(first, "dec"), 11.5);
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    CliRun second = run({"--json", "scope", "--drive", "LX200", "--port", port, "read"});
    EXPECT_NEAR(jsonNumber(second, "dec"), jsonNumber(first, "dec"), 1e-9);  // stopped means still
}

// A mistyped direction is named back (typed UTF-8 shown as the messages' Latin-1) and nothing
// reaches the mount, for move and for stop.
TEST_F(ScopeCommand, AnUnknownDirectionIsNamedAndNothingIsSent) {
    auto model = std::make_shared<Lx200MountModel>(lx200MountForDrive(kDriveLx200, true, 6.0, 10.0));
    PtyMount mount(makeLx200Responder(model));
    const std::string port = mount.devicePath();
    for (const char* verb : {"move", "stop"}) {
        CliRun r = run({"scope", "--drive", "LX200", "--port", port, verb, "nord\xc3\xa9"});
        EXPECT_EQ(r.exit, 1) << verb;
        ASSERT_EQ(r.messages.size(), 1u) << verb << r.titles();
        EXPECT_EQ(r.messages[0].title, "Unknown direction \"nord\xe9\"") << verb;
        EXPECT_EQ(r.messages[0].detail, "Use n, s, e or w.") << verb;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(mount.received().find(":M"), std::string::npos) << mount.received();
    EXPECT_EQ(mount.received().find(":Q"), std::string::npos) << mount.received();
}

std::string packetBytes(const NexStarPacket& packet) { return {packet.begin(), packet.end()}; }

int takahashiMotion(TakahashiSimulation& sim) {
    std::lock_guard lock(sim.mutex);
    return sim.motionDirection;
}

// Each family's "stop" (stop all) ends a hand motion that "move" started.
TEST_F(ScopeCommand, StopAllStopsTheHandMotionOfEveryFamily) {
    {
        auto model = std::make_shared<Lx200MountModel>();
        PtyMount mount(makeLx200Responder(model));
        ASSERT_EQ(run({"scope", "--drive", "LX200", "--port", mount.devicePath(), "move", "e"}).exit, 0);
        ASSERT_TRUE(mount.waitUntilReceived("#:Me#"));
        EXPECT_EQ(model->state().moving, 2);
        CliRun stop = run({"scope", "--drive", "LX200", "--port", mount.devicePath(), "stop"});
        EXPECT_EQ(stop.exit, 0) << stop.titles();
        ASSERT_TRUE(mount.waitUntilReceived("#:Q#"));
        EXPECT_EQ(model->state().moving, -1);
    }
    for (const char* drive : {"NexStarGPS,GT,CGE", "NexStar old GT"}) {
        SCOPED_TRACE(drive);
        auto model = std::make_shared<NexStarMountModel>();
        PtyMount mount(makeNexStarResponder(model));
        ASSERT_EQ(run({"scope", "--drive", drive, "--port", mount.devicePath(), "move", "n"}).exit, 0);
        EXPECT_TRUE(model->moving());
        CliRun stop = run({"scope", "--drive", drive, "--port", mount.devicePath(), "stop"});
        EXPECT_EQ(stop.exit, 0) << stop.titles();
        EXPECT_FALSE(model->moving());
    }
    {
        takahashiResetState();
        auto sim = std::make_shared<TakahashiSimulation>();
        PtyMount mount(makeTakahashiResponder(sim));
        ASSERT_EQ(run({"scope", "--drive", "Takahashi", "--port", mount.devicePath(), "move", "w"}).exit, 0);
        ASSERT_TRUE(mount.waitUntilReceived("ME\r\n"));
        EXPECT_EQ(takahashiMotion(*sim), 3);
        CliRun stop = run({"scope", "--drive", "Takahashi", "--port", mount.devicePath(), "stop"});
        EXPECT_EQ(stop.exit, 0) << stop.titles();
        EXPECT_EQ(takahashiMotion(*sim), -1);
    }
}

// A mount that stops answering while it moves is still told to stop.
TEST_F(ScopeCommand, MoveSendsItsStopEvenWhenTheMountFallsSilent) {
    auto model = std::make_shared<Lx200MountModel>();
    PtyMount mount([model](std::string& pending) {
        std::string reply = model->respond(pending);
        if (model->state().moving >= 0) model->update([](Lx200MountState& s) { s.silent = true; });
        return reply;
    });
    CliRun move = run({"scope", "--drive", "LX200", "--port", mount.devicePath(), "move", "n", "--seconds", "0.2"});
    EXPECT_EQ(move.exit, 1);  // the mount never confirmed anything
    EXPECT_TRUE(move.shown("The stop was sent to a mount that did not answer")) << move.titles();
    ASSERT_TRUE(mount.waitUntilReceived("#:Qn#"));
    EXPECT_EQ(model->state().moving, -1);

    // The same for the other families that move.
    auto nexstar = std::make_shared<NexStarMountModel>();
    PtyMount nexstarMount([nexstar](std::string& pending) {
        std::string reply = nexstar->respond(pending);
        if (nexstar->moving()) nexstar->update([](NexStarMountState& st) { st.silent = true; });
        return reply;
    });
    CliRun nexstarMove = run({"scope", "--drive", "NexStarGPS,GT,CGE", "--port", nexstarMount.devicePath(), "move",
                              "n", "--seconds", "0.2"});
    EXPECT_EQ(nexstarMove.exit, 1);
    ASSERT_TRUE(nexstarMount.waitUntilReceived(packetBytes(nexstarStopPacket(0))));
    EXPECT_FALSE(nexstar->moving());

    takahashiResetState();
    auto temma = std::make_shared<TakahashiSimulation>();
    PtyMount temmaMount([temma, inner = makeTakahashiResponder(temma)](std::string& pending) mutable {
        std::string reply = inner(pending);
        std::lock_guard lock(temma->mutex);
        if (temma->motionDirection >= 0) temma->silent = true;
        return reply;
    });
    CliRun temmaMove = run({"scope", "--drive", "Takahashi", "--port", temmaMount.devicePath(), "move", "n",
                            "--seconds", "0.2"});
    EXPECT_EQ(temmaMove.exit, 1);
    ASSERT_TRUE(temmaMount.waitUntilReceived("M@\r\n"));
    EXPECT_EQ(takahashiMotion(*temma), -1);
}

// Sync then read gives the synced place, for every family that syncs; the NexStar offsets
// are kept for the next command.
TEST_F(ScopeCommand, SyncThenReadReturnsTheSyncedPlace) {
    struct Row {
        int code;
    } rows[] = {{kDriveLx200}, {kDriveNexstarGps}, {kDriveNexstarOldGt}, {kDriveUltima2000}, {kDriveTakahashi}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.code);
        takahashiResetState();
        PtyMount mount(makeMountSimulator(row.code, SimulatorOptions{true, 3.0, 20.0}));
        const std::string code = std::to_string(row.code);
        CliRun sync = run({"--json", "--date", "2024-03-15", "--time", "22:30", "scope", "--drive", code, "--port",
                           mount.devicePath(), "sync", "--ra", "10.5", "--dec", "-5.25"});
        ASSERT_EQ(sync.exit, 0) << sync.titles();
        takahashiResetState();  // the next command is a new run
        CliRun read = run({"--json", "scope", "--drive", code, "--port", mount.devicePath(), "read"});
        ASSERT_EQ(read.exit, 0) << read.titles();
        // The LX200 sync sends its RA seconds in the tenths-of-a-minute field (a quirk kept on
        // purpose): the mount reads up to a minute of time off.
        const double raTolerance = row.code == kDriveLx200 ? 0.02 : 0.01;
        EXPECT_NEAR(jsonNumber(read, "ra"), jsonNumber(sync, "ra"), raTolerance);
        EXPECT_NEAR(jsonNumber(read, "dec"), jsonNumber(sync, "dec"), 0.05);
        EXPECT_EQ(nlohmann::json::parse(read.out).at("frame"), "of date");
    }
}

// Without a terminal and without --answer, the Takahashi zenith question is not answered and
// the mount is never sent to the zenith: a goto then a read gives the target.
TEST_F(ScopeCommand, TakahashiZenithQuestionIsNeverAnsweredByDefault) {
    auto sim = std::make_shared<TakahashiSimulation>();
    PtyMount mount(makeTakahashiResponder(sim));
    const std::string port = mount.devicePath();
    CliRun go = run({"--json", "--date", "2024-03-15", "--time", "22:30", "scope", "--drive", "Takahashi", "--port",
                     port, "goto", "--force", "--ra", "5.5", "--dec", "22"});
    ASSERT_EQ(go.exit, 0) << go.titles();
    takahashiResetState();
    CliRun read = run({"--json", "scope", "--drive", "Takahashi", "--port", port, "read"});
    ASSERT_EQ(read.exit, 0) << read.titles();
    EXPECT_NEAR(jsonNumber(read, "ra"), jsonNumber(go, "ra"), 0.01);
    EXPECT_NEAR(jsonNumber(read, "dec"), jsonNumber(go, "dec"), 0.05);
    {
        std::lock_guard lock(sim->mutex);
        EXPECT_EQ(sim->zenithCount, 0);
    }

    // An explicit answer still runs the pier-side procedure, asked once for the run.
    takahashiResetState();
    QuestionAnswerer yes(true);
    CliRun answered = run({"--answer", "yes", "scope", "--drive", "Takahashi", "--port", port, "read"});
    EXPECT_EQ(answered.exit, 0) << answered.titles();
    EXPECT_EQ(yes.questions().size(), 1u);
    run({"--answer", "yes", "scope", "--drive", "Takahashi", "--port", port, "read"});
    EXPECT_EQ(yes.questions().size(), 1u);
    std::lock_guard lock(sim->mutex);
    EXPECT_GE(sim->zenithCount, 1);
}

TEST_F(ScopeCommand, AReplyThatIsNotAPositionIsAFailedRead) {
    // Each mount answers its own formats, with one value out of its range.
    auto lx200With = [](std::string command, std::string reply) -> PtyMount::Responder {
        auto model = std::make_shared<Lx200MountModel>();
        return [model, command, reply](std::string& pending) {
            const bool replace = pending.find(command) != std::string::npos;
            std::string answer = model->respond(pending);
            return replace ? reply : answer;
        };
    };
    auto fixed = [](std::string reply) -> PtyMount::Responder {
        return [reply](std::string& pending) {
            pending.clear();
            return reply;
        };
    };
    struct Row {
        const char* drive;
        PtyMount::Responder responder;
        const char* message;
    } rows[] = {
        {"LX200", lx200With(":GR#", "99:99:99#"), "Failed to get Meade RA and Dec."},
        {"LX200", lx200With("#:GR#", "24:30:00#"), "Failed to get Meade RA and Dec."},
        {"ServoCat", fixed("25.000 +10.000"), "Failed to get Servocat RA and Dec"},
        {"SkyCommander", fixed("030.000 +95.000 "), "Failed to get SkyCommander RA and Dec."},
    };
    for (Row& row : rows) {
        SCOPED_TRACE(row.drive);
        PtyMount mount(std::move(row.responder));
        CliRun r = run({"scope", "--drive", row.drive, "--port", mount.devicePath(), "read"});
        EXPECT_EQ(r.exit, 1);
        EXPECT_EQ(r.out, "");
        bool explained = false;
        for (const Message& m : r.messages) explained |= m.title == row.message && m.detail.rfind("Not a position", 0) == 0;
        EXPECT_TRUE(explained) << r.titles();
    }
    // A declination beyond the pole, from the mount's Dec query (the connect takes it too).
    auto model = std::make_shared<Lx200MountModel>();
    model->update([](Lx200MountState& st) { st.decDeg = 95; });
    PtyMount beyond(makeLx200Responder(model));
    CliRun r = run({"scope", "--drive", "LX200", "--port", beyond.devicePath(), "read"});
    EXPECT_EQ(r.exit, 1);
    EXPECT_TRUE(r.shown("Failed to get Meade RA and Dec.")) << r.titles();
}

TEST_F(ScopeCommand, AMountSlowerThanTheTimeOutDidNotAnswerInTime) {
    auto model = std::make_shared<Lx200MountModel>();
    PtyMount mount([model](std::string& pending) {
        std::this_thread::sleep_for(std::chrono::milliseconds(700));  // past the 420 ms a reply may take
        return model->respond(pending);
    });
    CliRun r = run({"scope", "--drive", "LX200", "--port", mount.devicePath(), "read"});
    EXPECT_EQ(r.exit, 1);
    bool inTime = false;
    for (const Message& m : r.messages) inTime |= m.detail == "The mount did not answer in time.";
    EXPECT_TRUE(inTime) << r.titles();
}

TEST_F(ScopeCommand, TraceChangesNothingButTheOutput) {
    for (bool trace : {false, true}) {
        SCOPED_TRACE(trace);
        takahashiResetState();
        auto sim = std::make_shared<TakahashiSimulation>();
        PtyMount mount(makeTakahashiResponder(sim));
        std::vector<std::string> args{"scope", "--drive", "Takahashi", "--port", mount.devicePath(), "move", "n",
                                      "--seconds", "0.2"};
        if (trace) args.insert(args.begin() + 1, "--trace");
        CliRun r = run(args);
        EXPECT_EQ(r.exit, 0) << r.titles();
        EXPECT_EQ(r.out, "Move n\n");
        ASSERT_TRUE(mount.waitUntilReceived("M@\r\n"));
        EXPECT_EQ(takahashiMotion(*sim), -1);
        if (trace) {
            bool escaped = false;
            for (const Message& m : r.messages) escaped |= m.detail == "v\\r\\n";
            EXPECT_TRUE(escaped) << "trace shows CR LF as escapes";
        }
    }
    // The LX200 degree byte in a traced reply is shown as \xDF.
    PtyMount lx200(makeMountSimulator(kDriveLx200));
    CliRun read = run({"scope", "--trace", "--drive", "LX200", "--port", lx200.devicePath(), "read"});
    ASSERT_EQ(read.exit, 0) << read.titles();
    bool degree = false;
    for (const Message& m : read.messages) {
        EXPECT_EQ(m.detail.find('\xDF'), std::string::npos);
        degree |= m.detail.find("\\xDF") != std::string::npos;
    }
    EXPECT_TRUE(degree);
}

TEST_F(ScopeCommand, GotoBelowTheHorizonIsRefusedUnlessForced) {
    auto model = std::make_shared<Lx200MountModel>();
    PtyMount mount(makeLx200Responder(model));
    // Dec -80 never rises at the default site's latitude (+48).
    const std::vector<std::string> go{"--date", "2024-03-15", "--time", "22:30", "scope", "--drive", "LX200",
                                      "--port", mount.devicePath(), "goto", "--ra", "5", "--dec", "-80"};
    CliRun refused = run(go);
    EXPECT_EQ(refused.exit, 1);
    EXPECT_TRUE(refused.shown("This object is below the horizon")) << refused.titles();
    EXPECT_EQ(mount.received().find(":MS#"), std::string::npos);

    std::vector<std::string> forced = go;
    forced.insert(forced.begin() + 10, "--force");
    CliRun sent = run(forced);
    EXPECT_EQ(sent.exit, 0) << sent.titles();
    EXPECT_NE(mount.received().find(":MS#"), std::string::npos);
    // The mount's answer in words, and the frame of the coordinates.
    EXPECT_NE(sent.out.find("the mount is slewing"), std::string::npos) << sent.out;
    EXPECT_NE(sent.out.find("(of date)"), std::string::npos) << sent.out;
    EXPECT_EQ(sent.out.find("answer:"), std::string::npos) << sent.out;

    CliRun read = run({"scope", "--drive", "LX200", "--port", mount.devicePath(), "read"});
    EXPECT_NE(read.out.find("(of date)"), std::string::npos) << read.out;
}

}  // namespace
}  // namespace nocturnel
