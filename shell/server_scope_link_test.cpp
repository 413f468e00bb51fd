// The hand box's link through the web interface, against simulated LX200 mounts on
// pseudo-terminals: a held move that is no longer renewed is stopped by the engine, and a
// connected drive follows a change of its link preferences at once.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "scope/lx200.h"
#include "scope/lx200_sim.h"
#include "scope/pty_mount.h"
#include "scope/serial_link.h"
#include "shell/server_test_support.h"

namespace nocturnel {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

class ServerScopeLink : public ServerTestBase {
protected:
    void SetUp() override {
        ServerTestBase::SetUp();
        setSerialSettleMillisecondsForTests(0);
        lx200ResetState();
    }
    static nlohmann::json send(httplib::Client& c, const char* method, const std::string& path, const nlohmann::json& body,
                               int expectedStatus = 200) {
        const auto r = std::string(method) == "PUT" ? c.Put(path, body.dump(), "application/json")
                                                    : c.Post(path, body.dump(), "application/json");
        EXPECT_TRUE(r) << path;
        if (!r) return nlohmann::json();
        EXPECT_EQ(r->status, expectedStatus) << path << " " << body << " -> " << r->body;
        return nlohmann::json::parse(r->body, nullptr, false);
    }
    // Waits at most `limit` for the simulated mount's held key to become `moving`; the time it took.
    static std::optional<Clock::duration> waitForMoving(const Lx200MountModel& model, int moving, milliseconds limit) {
        const auto start = Clock::now();
        while (Clock::now() - start < limit) {
            if (model.state().moving == moving) return Clock::now() - start;
            std::this_thread::sleep_for(milliseconds(10));
        }
        return std::nullopt;
    }
    static std::size_t count(const std::string& text, const std::string& part) {
        std::size_t n = 0;
        for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
        return n;
    }
    static bool mentions(const nlohmann::json& answer, const std::string& title) {
        for (const auto& m : answer.value("messages", nlohmann::json::array()))
            if (m.value("title", "") == title) return true;
        return false;
    }
};

TEST_F(ServerScopeLink, AHeldMoveStopsWhenItsRenewalsStop) {
    auto model = std::make_shared<Lx200MountModel>();
    PtyMount mount(makeLx200Responder(model));
    ASSERT_TRUE(mount.isReady());
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    send(client, "POST", "/api/scope/connect", {{"drive", "LX200"}, {"port", mount.devicePath()}});

    // Renewed every 250 ms, the move goes on well past the watchdog's second.
    const auto moved = send(client, "POST", "/api/scope/move", {{"dir", "n"}});
    EXPECT_EQ(moved.at("watchdogMs"), 1000);
    ASSERT_TRUE(waitForMoving(*model, 0, milliseconds(2000))) << mount.received();
    for (int i = 0; i < 8; ++i) {
        std::this_thread::sleep_for(milliseconds(250));
        EXPECT_EQ(send(client, "POST", "/api/scope/move/renew", {{"dir", "n"}}).at("held"), true) << i;
    }
    EXPECT_EQ(model->state().moving, 0) << "renewed for 2 s, the mount still turns north";
    EXPECT_EQ(count(mount.received(), ":Qn#"), 0u);

    // No release and no renewal (the page is gone): the engine sends the release's own stop.
    const auto silentSince = Clock::now();
    const auto stoppedAfter = waitForMoving(*model, -1, milliseconds(5000));
    ASSERT_TRUE(stoppedAfter) << "the mount still turns 5 s after the last renewal";
    EXPECT_GE(Clock::now() - silentSince, milliseconds(800)) << "stopped before its renewal was late";
    EXPECT_EQ(count(mount.received(), ":Qn#"), 1u) << mount.received();
    EXPECT_EQ(send(client, "POST", "/api/scope/move/renew", {{"dir", "n"}}).at("held"), false);

    // A move the page released is not stopped a second time; nor is one Stop ended.
    send(client, "POST", "/api/scope/move", {{"dir", "e"}});
    send(client, "POST", "/api/scope/stop", {{"dir", "e"}});
    send(client, "POST", "/api/scope/move", {{"dir", "w"}});
    send(client, "POST", "/api/scope/stop", nlohmann::json::object());
    std::this_thread::sleep_for(milliseconds(1500));
    EXPECT_EQ(count(mount.received(), ":Qe#"), 1u) << mount.received();
    EXPECT_EQ(count(mount.received(), ":Qw#"), 0u) << mount.received();
    EXPECT_EQ(send(client, "POST", "/api/scope/move/renew", {{"dir", "w"}}).at("held"), false);
    EXPECT_EQ(send(client, "POST", "/api/scope/move/renew", {{"dir", "up"}}, 400).contains("error"), true);
    send(client, "POST", "/api/scope/disconnect", nlohmann::json::object());
}

TEST_F(ServerScopeLink, AConnectedDriveFollowsItsLinkPreferences) {
    auto first = std::make_shared<Lx200MountModel>(lx200MountForDrive(5, true, 5.5, 10.0));
    auto second = std::make_shared<Lx200MountModel>(lx200MountForDrive(5, true, 12.25, -20.0));
    PtyMount a(makeLx200Responder(first)), b(makeLx200Responder(second));
    ASSERT_TRUE(a.isReady() && b.isReady());
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    const auto readRa = [&] { return send(client, "POST", "/api/scope/read", nlohmann::json::object()).value("ra", -1.0); };
    const auto portOpen = [&] {
        bool open = false;
        server.engine().run([&] { open = serialIsOpen(); });
        return open;
    };

    // Not connected: a change of the link is only saved.
    EXPECT_FALSE(send(client, "PUT", "/api/prefs", {{"scopeDrive", 5}, {"scopeDevice", a.devicePath()}, {"connectionMode", 0}})
                     .contains("scopeConnected"));
    EXPECT_TRUE(b.received().empty());
    send(client, "POST", "/api/scope/connect", nlohmann::json::object());
    EXPECT_NEAR(readRa(), 5.5, 0.01);
    EXPECT_TRUE(portOpen()) << "\"Persistant\" keeps the port open";

    // Another device while connected: the old port closes, the new one opens at once.
    a.clearReceived();
    const auto moved = send(client, "PUT", "/api/prefs", {{"scopeDevice", b.devicePath()}});
    EXPECT_EQ(moved.at("scopeConnected"), true) << moved;
    EXPECT_EQ(moved.at("scopeDevice"), b.devicePath());
    EXPECT_NE(b.received().find(":GD#"), std::string::npos) << "connected on the new device before the answer";
    EXPECT_NEAR(readRa(), 12.25, 0.01);
    EXPECT_TRUE(a.received().empty()) << a.received();

    // A change elsewhere in the preferences leaves the link alone.
    b.clearReceived();
    EXPECT_FALSE(send(client, "PUT", "/api/prefs", {{"nightMode", 1}}).contains("scopeConnected"));
    EXPECT_TRUE(b.received().empty()) << b.received();

    // "Upon need" through the Preference 1/6 form: connected again, the port no longer held.
    const auto uponNeed = send(client, "POST", "/api/forms/prefs1", {{"action", "ok"}, {"values", {{"connectionMode", 1}}}});
    EXPECT_EQ(uponNeed.at("scopeConnected"), true) << uponNeed;
    EXPECT_FALSE(portOpen());
    EXPECT_NEAR(readRa(), 12.25, 0.01);

    // A device that is not there: the change is saved, the program's message says why the drive
    // is now disconnected, and the marker stops.
    const auto gone = send(client, "PUT", "/api/prefs", {{"scopeDevice", "/dev/nocturnel-no-such-port"}});
    EXPECT_EQ(gone.at("scopeConnected"), false) << gone;
    EXPECT_TRUE(mentions(gone, "Fail to open serial connection") || mentions(gone, "Can't open serial port")) << gone;
    EXPECT_EQ(gone.at("scopeDevice"), "/dev/nocturnel-no-such-port");
    const auto position = client.Get("/api/scope/position");
    ASSERT_TRUE(position);
    EXPECT_EQ(json(position).at("connected"), false);

    // Connected again, then the drive "None": the link closes, and nothing is complained of.
    send(client, "PUT", "/api/prefs", {{"scopeDevice", b.devicePath()}});
    send(client, "POST", "/api/scope/connect", nlohmann::json::object());
    const auto none = send(client, "PUT", "/api/prefs", {{"scopeDrive", 0}});
    EXPECT_EQ(none.at("scopeConnected"), false) << none;
    EXPECT_FALSE(none.contains("messages")) << none;
    EXPECT_EQ(json(client.Get("/api/scope/position")).at("connected"), false);
}

TEST_F(ServerScopeLink, ADriveChosenAtConnectOutlivesOtherPreferenceChanges) {
    auto model = std::make_shared<Lx200MountModel>(lx200MountForDrive(5, true, 7.75, 0.0));
    PtyMount mount(makeLx200Responder(model));
    ASSERT_TRUE(mount.isReady());
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    send(client, "PUT", "/api/prefs", {{"scopeDrive", 0}});
    send(client, "POST", "/api/scope/connect", {{"drive", "LX200"}, {"port", mount.devicePath()}});
    const auto changed = send(client, "PUT", "/api/prefs", {{"nightMode", 2}});
    EXPECT_FALSE(changed.contains("scopeConnected"));
    EXPECT_EQ(changed.at("scopeDrive"), 5) << "the session's drive, not the saved None";
    EXPECT_NEAR(send(client, "POST", "/api/scope/read", nlohmann::json::object()).value("ra", -1.0), 7.75, 0.01);
}

}  // namespace
}  // namespace nocturnel
