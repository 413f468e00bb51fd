// The web interface end to end: a server on an ephemeral loopback port inside the test process,
// asked through HTTP as the page asks it.
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "scope/lx200.h"
#include "scope/lx200_sim.h"
#include "scope/pty_mount.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "shell/cli_test_runner.h"
#include "shell/server_test_support.h"

namespace nocturnel {
namespace {

class Server : public ServerTestBase {};

TEST_F(Server, NowAndPrefsAnswerAsTheCommandLine) {
    nlohmann::json now, prefsAnswer;
    {
        TestServer server(home_);
        ASSERT_TRUE(server.ready());
        httplib::Client client("127.0.0.1", server.port());
        now = json(client.Get("/api/now"));
        prefsAnswer = json(client.Get("/api/prefs"));
    }
    EXPECT_EQ(now.at("year"), 2026);
    EXPECT_EQ(now.at("hour"), 22);
    EXPECT_NEAR(now.at("jd").get<double>(), 2461366.375, 1e-6);  // 21:00 UT
    EXPECT_EQ(prefsAnswer.at("siteName"), "None");
    EXPECT_EQ(prefsAnswer.at("labels").at("horizonIndex"), "0\xC2\xB0");  // Latin-1 degree sign sent as UTF-8
    const std::vector<std::string> moment = {"--home", home_.string(), "--json", "--date", "2026-11-21", "--time", "22:00"};
    auto cli = [&](std::vector<std::string> words) {
        std::vector<std::string> args = moment;
        args.insert(args.end(), words.begin(), words.end());
        return runCommandLine(args);
    };
    EXPECT_EQ(now, cli({"now"}).json());
    EXPECT_EQ(prefsAnswer, cli({"prefs", "show"}).json());
    closeCatalogues();
}

TEST_F(Server, PrefsChangedThroughTheApiSurviveARestart) {
    {
        TestServer server(home_);
        ASSERT_TRUE(server.ready());
        httplib::Client client("127.0.0.1", server.port());
        auto r = client.Put("/api/prefs", R"({"nightMode":"Dark","latitudeDeg":"45:30:00","siteName":"Les Vall\u00e9es"})",
                            "application/json");
        ASSERT_TRUE(r);
        EXPECT_EQ(r->status, 200) << r->body;
        EXPECT_EQ(json(r).at("nightMode"), 1);
    }
    TestServer again(home_);
    ASSERT_TRUE(again.ready());
    httplib::Client client("127.0.0.1", again.port());
    const auto p = json(client.Get("/api/prefs"));
    EXPECT_EQ(p.at("nightMode"), 1);
    EXPECT_NEAR(p.at("latitudeDeg").get<double>(), 45.5, 1e-5);
    EXPECT_EQ(p.at("siteName"), "Les Vall\xC3\xA9" "es");
}

TEST_F(Server, OneBadFieldRefusesTheWholeChange) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    const auto before = json(client.Get("/api/prefs"));
    struct {
        const char* body;
        int status;
    } rows[] = {
        {R"({"nightMode":2,"altitudeM":99999})", 422},
        {R"({"nightMode":2,"noSuchField":1})", 422},
        {R"({"nightMode":2,"deltaTSeconds":1e308})", 422},
        {R"({"nightMode":2,"latitudeDeg":[1]})", 422},
        {R"({"nightMode":2,)", 400},
        {R"([1,2])", 400},
        {R"({})", 422},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.body);
        auto r = client.Put("/api/prefs", row.body, "application/json");
        ASSERT_TRUE(r);
        EXPECT_EQ(r->status, row.status);
        const auto error = json(r).at("error");
        EXPECT_EQ(error.at("caption"), "Information");
        EXPECT_FALSE(error.at("title").get<std::string>().empty());
    }
    EXPECT_EQ(json(client.Get("/api/prefs")), before);
    EXPECT_FALSE(std::filesystem::exists(home_ / "nocturnel_prefs.dat"));
}

TEST_F(Server, BadRequestsGetJsonErrorsAndNeverCrash) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    struct {
        std::string path;
        int status;
    } rows[] = {
        {"/api/nothing", 404},
        {"/nothing.html", 404},
        {"/../CMakeLists.txt", 404},
        {"/%2e%2e/CMakeLists.txt", 404},
        {"/%2e%2e%2fCMakeLists.txt", 404},
        {"/css%2Fapp.css", 404},
        {"//etc/passwd", 404},
        {"/.hidden", 404},
        {"/api/chart.png?zoom=13", 400},
        {"/api/chart.png?zoom=nan", 400},
        {"/api/chart.png?ra=inf&dec=0", 400},
        {"/api/chart.png?ra=1e308&dec=0", 400},
        {"/api/chart.png?width=0x10", 400},
        {"/api/chart.png?width=99999", 400},
        {"/api/chart.png?ra=5", 400},
        {"/api/chart.png?time=2026-02-30T22:00", 400},
        {"/api/identify?x=10", 400},
        {"/api/find", 400},
        {"/api/find?name=" + std::string(200, 'x'), 400},
        {"/api/chart.png?zoom=" + std::string(20000, '1'), 414},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path.substr(0, 60));
        auto r = client.Get(row.path);
        ASSERT_TRUE(r);
        EXPECT_EQ(r->status, row.status);
        const auto body = json(r);
        ASSERT_TRUE(body.is_object()) << r->body.substr(0, 200);
        EXPECT_EQ(body.at("error").at("caption"), "Information");
    }
    auto big = client.Put("/api/prefs", std::string(100 * 1024, ' '), "application/json");
    ASSERT_TRUE(big);
    EXPECT_EQ(big->status, 413);
    auto notJson = client.Post("/api/answer", "yes", "application/json");
    ASSERT_TRUE(notJson);
    EXPECT_EQ(notJson->status, 400);
    // Still answering.
    EXPECT_EQ(json(client.Get("/api/now")).at("year"), 2026);
}

TEST_F(Server, ThePageIsServedFromTheProgram) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    auto index = client.Get("/");
    ASSERT_TRUE(index);
    EXPECT_EQ(index->status, 200);
    EXPECT_EQ(index->get_header_value("Content-Type"), "text/html; charset=utf-8");
    EXPECT_NE(index->body.find("<html"), std::string::npos);
    EXPECT_EQ(client.Get("/index.html")->body, index->body);
    // A browser on this machine gets every answer uncompressed, whatever it accepts: here
    // compressing costs time and saves none.
    client.set_decompress(false);
    for (const char* path : {"/js/screens/chart.js", "/style.css", "/api/prefs"}) {
        auto plain = client.Get(path);
        auto offered = client.Get(path, {{"Accept-Encoding", "gzip, deflate, br"}});
        ASSERT_TRUE(plain && offered) << path;
        EXPECT_FALSE(offered->has_header("Content-Encoding")) << path << " " << offered->get_header_value("Content-Encoding");
        EXPECT_EQ(offered->body, plain->body) << path;
    }
}

TEST_F(Server, AnotherAddressNeedsTheToken) {
    // Any 127/8 address is loopback on Linux, yet counts as "another address" here.
    TestServer server(home_, "127.0.0.2");
    ASSERT_TRUE(server.ready());
    const std::string token = server.server().token();
    ASSERT_EQ(token.size(), 32u);
    EXPECT_NE(server.server().openUrl().find("?token=" + token), std::string::npos);
    httplib::Client client("127.0.0.2", server.port());
    for (const char* path : {"/", "/index.html", "/api/now", "/api/nothing", "/api/chart.png"}) {
        auto r = client.Get(path);
        ASSERT_TRUE(r);
        EXPECT_EQ(r->status, 401) << path;
    }
    EXPECT_EQ(client.Get("/api/now?token=0123")->status, 401);
    auto withQuery = client.Get("/api/now?token=" + token);
    ASSERT_TRUE(withQuery);
    EXPECT_EQ(withQuery->status, 200);
    const std::string cookie = withQuery->get_header_value("Set-Cookie");
    ASSERT_EQ(cookie.rfind("nocturnel_token=" + token, 0), 0u);
    EXPECT_EQ(client.Get("/api/now", {{"Cookie", "nocturnel_token=" + token}})->status, 200);
    EXPECT_EQ(client.Get("/api/now", {{"Authorization", "Bearer " + token}})->status, 200);
    EXPECT_EQ(client.Get("/api/now", {{"Authorization", "Bearer x" + token.substr(1)}})->status, 401);
    EXPECT_FALSE(bindNeedsToken("127.0.0.1"));
    EXPECT_FALSE(bindNeedsToken("localhost"));
    EXPECT_TRUE(bindNeedsToken("0.0.0.0"));
}

TEST_F(Server, ATakenPortEndsTheCommandWithExitOne) {
    TestServer first(home_);
    ASSERT_TRUE(first.ready());
    CliRun run = runCommandLine({"--home", home_.string(), "serve", "--port", std::to_string(first.port())});
    EXPECT_EQ(run.exit, 1);
    EXPECT_TRUE(run.shown("Port " + std::to_string(first.port()) + " is already in use")) << run.titles();
}

TEST_F(Server, EngineMessagesReachTheJson) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    auto r = client.Post("/api/align/restore", "", "application/json");
    ASSERT_TRUE(r);
    EXPECT_EQ(r->status, 422);
    const auto body = json(r);
    EXPECT_EQ(body.at("error").at("title"), "Please do 2 stars alignment first.");
    ASSERT_EQ(body.at("messages").size(), 1u);
    EXPECT_EQ(body.at("messages")[0].at("caption"), "Information");
}

TEST_F(Server, AQuestionIsAnsweredThroughTheEndpoints) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    EXPECT_EQ(json(client.Get("/api/question")), nlohmann::json::object());
    for (const bool answer : {true, false}) {
        SCOPED_TRACE(answer);
        auto asked = std::async(std::launch::async, [&] {
            bool yes = false;
            server.engine().run([&] { yes = askYesNo("Would you want to restore your last alignment?"); });
            return yes;
        });
        nlohmann::json question;
        for (int i = 0; i < 300 && !question.contains("id"); ++i) {
            question = json(client.Get("/api/question"));
            if (!question.contains("id")) std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        ASSERT_TRUE(question.contains("id"));
        EXPECT_EQ(question.at("text"), "Would you want to restore your last alignment?");
        const int id = question.at("id");
        EXPECT_EQ(client.Post("/api/answer", nlohmann::json{{"id", id + 1}, {"yes", true}}.dump(), "application/json")->status, 409);
        auto r = client.Post("/api/answer", nlohmann::json{{"id", id}, {"yes", answer}}.dump(), "application/json");
        ASSERT_TRUE(r);
        EXPECT_EQ(r->status, 200);
        EXPECT_EQ(asked.get(), answer);
        EXPECT_EQ(json(client.Get("/api/question")), nlohmann::json::object());
    }
}

TEST_F(Server, AnUnansweredQuestionTimesOutAsNo) {
    TestServer server(home_, "127.0.0.1", std::chrono::milliseconds(100));
    ASSERT_TRUE(server.ready());
    bool yes = true;
    server.engine().run([&] { yes = askYesNo("Would you want to restore your last alignment?"); });
    EXPECT_FALSE(yes);
}

TEST_F(Server, StopAnswersAWaitingQuestionNo) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    auto asked = std::async(std::launch::async, [&] {
        bool yes = true;
        server.engine().run([&] { yes = askYesNo("Continue?"); });
        return yes;
    });
    while (!server.engine().pendingQuestion()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(client.Post("/api/stop", "", "application/json")->status, 200);
    EXPECT_FALSE(asked.get());
}

TEST_F(Server, TimeStepsByThePreferenceAndBackToTheClock) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    struct {
        int timeStep, steps;
        int day, hour, minute, second;
    } rows[] = {
        {0, 1, 21, 22, 1, 0},     // "1 mn"
        {7, -1, 20, 22, 1, 0},    // "1 Day" back
        {8, 1, 21, 21, 57, 4},    // "1 Sid. Day": 23 h 56 min 4 s later
        {5, -30, 20, 15, 57, 4},  // "1 Hour", thirty back
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.timeStep);
        ASSERT_EQ(client.Put("/api/prefs", nlohmann::json{{"timeStep", row.timeStep}}.dump(), "application/json")->status, 200);
        const auto now = json(client.Post("/api/time/step", nlohmann::json{{"steps", row.steps}}.dump(), "application/json"));
        EXPECT_EQ(now.at("day"), row.day);
        EXPECT_EQ(now.at("hour"), row.hour);
        EXPECT_EQ(now.at("minute"), row.minute);
        EXPECT_EQ(now.at("second"), row.second);
    }
    EXPECT_EQ(json(client.Get("/api/now")).at("hour"), 15);  // the stepped moment stays
    EXPECT_EQ(client.Post("/api/time/step", R"({"steps":1e9})", "application/json")->status, 400);
    const auto clock = json(client.Post("/api/time/now", "", "application/json"));
    EXPECT_GE(clock.at("year").get<int>(), 2024);
}

TEST_F(Server, TwoClientsAtOnce) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    std::atomic<int> good{0};
    auto client = [&](int n) {
        httplib::Client c("127.0.0.1", server.port());
        for (int i = 0; i < 20; ++i) {
            if (n == 0) {
                const auto j = json(c.Get("/api/now"));
                if (j.is_object() && j.contains("jd")) ++good;
            } else {
                auto r = c.Put("/api/prefs", nlohmann::json{{"timeStep", i % 17}}.dump(), "application/json");
                if (r && r->status == 200) ++good;
            }
        }
    };
    std::thread a(client, 0), b(client, 1);
    a.join();
    b.join();
    EXPECT_EQ(good.load(), 40);
}

TEST_F(Server, ChartAndIdentifyNameVega) {
    if (!hasData_) GTEST_SKIP() << "NOCTURNEL_TEST_DATA holds no built catalogues";
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    // Vega (18h36m56s, +38 47'), at the view centre, 30 degree field.
    const std::string view = "zoom=6&width=400&height=300&ra=18.6156&dec=38.7837";
    auto png = client.Get("/api/chart.png?" + view);
    ASSERT_TRUE(png);
    ASSERT_EQ(png->status, 200) << png->body;
    EXPECT_EQ(png->get_header_value("Content-Type"), "image/png");
    ASSERT_GT(png->body.size(), 8u);
    EXPECT_EQ(png->body.substr(1, 3), "PNG");
    // Where the time went: the engine's wait, the drawing, the encoding, in milliseconds.
    const std::string timing = png->get_header_value("Server-Timing");
    EXPECT_TRUE(timing.starts_with("queue;dur=") && timing.find(", draw;dur=") != std::string::npos &&
                timing.find(", png;dur=") != std::string::npos)
        << timing;
    const auto hit = json(client.Get("/api/identify?" + view + "&x=205&y=146"));
    EXPECT_EQ(hit.at("found"), true) << hit.dump();
    EXPECT_EQ(hit.at("name"), "Vega");
    EXPECT_NEAR(hit.at("mag").get<double>(), 0.03, 0.1);
    EXPECT_NEAR(hit.at("ra").get<double>(), 18.6156, 1e-3);
    EXPECT_TRUE(hit.contains("alt"));
    // Twice the resolution: the same place names the same star, the PNG is twice as wide.
    auto png2 = client.Get("/api/chart.png?" + view + "&scale=2");
    ASSERT_TRUE(png2);
    const auto width = [](const std::string& b) {
        return (static_cast<unsigned char>(b[16]) << 24) | (static_cast<unsigned char>(b[17]) << 16) |
               (static_cast<unsigned char>(b[18]) << 8) | static_cast<unsigned char>(b[19]);
    };
    EXPECT_EQ(width(png2->body), 800);
    EXPECT_EQ(json(client.Get("/api/identify?" + view + "&scale=2&x=195&y=155")).at("name"), "Vega");
    const auto empty = json(client.Get("/api/identify?" + view + "&x=5&y=5"));
    EXPECT_EQ(empty.at("found"), false);
    EXPECT_TRUE(empty.contains("ra"));
}

TEST_F(Server, FindAnswersAsTheCommandLine) {
    if (!hasData_) GTEST_SKIP() << "NOCTURNEL_TEST_DATA holds no built catalogues";
    nlohmann::json m31;
    {
        TestServer server(home_);
        ASSERT_TRUE(server.ready());
        httplib::Client client("127.0.0.1", server.port());
        m31 = json(client.Get("/api/find?name=M%2031"));
        auto missing = client.Get("/api/find?name=M%20999");
        ASSERT_TRUE(missing);
        EXPECT_EQ(missing->status, 422);
        EXPECT_FALSE(json(missing).at("error").at("title").get<std::string>().empty());
    }
    EXPECT_NEAR(m31.at("ra").get<double>(), 0.712, 0.01);
    const CliRun cli = runCommandLine({"--home", home_.string(), "--json", "find", "M", "31"});
    ASSERT_EQ(cli.exit, 0) << cli.titles();
    EXPECT_EQ(m31, cli.json());
    closeCatalogues();
}

TEST_F(Server, GotoVegaMovesTheSimulatedLx200) {
    if (!hasData_) GTEST_SKIP() << "NOCTURNEL_TEST_DATA holds no built catalogues";
    ::setenv("NOCTURNEL_SERIAL_SETTLE_MS", "0", 1);
    setSerialSettleMillisecondsForTests(0);
    lx200ResetState();
    auto model = std::make_shared<Lx200MountModel>();
    PtyMount mount(makeLx200Responder(model));
    ASSERT_TRUE(mount.isReady());
    {
        TestServer server(home_);
        ASSERT_TRUE(server.ready());
        httplib::Client client("127.0.0.1", server.port());
        EXPECT_EQ(json(client.Get("/api/scope/position")).at("connected"), false);
        auto connect = client.Post("/api/scope/connect",
                                   nlohmann::json{{"drive", "LX200"}, {"port", mount.devicePath()}}.dump(), "application/json");
        ASSERT_TRUE(connect);
        ASSERT_EQ(connect->status, 200) << connect->body;
        auto go = client.Post("/api/scope/goto", R"({"name":"Vega"})", "application/json");
        ASSERT_TRUE(go);
        ASSERT_EQ(go->status, 200) << go->body;
        EXPECT_EQ(json(go).at("answer"), 0);
        EXPECT_NE(mount.received().find(":MS#"), std::string::npos);
        // The simulated mount slews to the target; the marker reads it there.
        nlohmann::json position;
        for (int i = 0; i < 100; ++i) {
            position = json(client.Get("/api/scope/position"));
            if (position.value("connected", false) && std::abs(position.at("dec").get<double>() - 38.78) < 0.3) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        ASSERT_EQ(position.at("connected"), true) << position.dump();
        EXPECT_NEAR(position.at("dec").get<double>(), 38.8, 0.3);
        EXPECT_NEAR(position.at("ra").get<double>(), 18.6, 0.05);
        // The alignment star read from the drive: Vega's place, the mount's angles.
        const auto star = json(client.Post("/api/align", R"({"fromScope":true,"star":1,"name":"vega"})", "application/json"));
        EXPECT_EQ(star.at("name"), "Vega") << star.dump();
        EXPECT_EQ(star.at("dec").get<std::string>().substr(0, 2), "38");
        EXPECT_EQ(star.at("hor").get<std::string>().substr(0, 5), "18:37");  // hours on an equatorial mount
        EXPECT_EQ(client.Post("/api/align", R"({"fromScope":true,"star":"1","name":"Vega"})", "application/json")->status, 422);
        EXPECT_EQ(client.Post("/api/scope/move", R"({"dir":"x"})", "application/json")->status, 400);
        EXPECT_EQ(client.Post("/api/scope/rate", R"({"rate":7})", "application/json")->status, 400);
        // The mount unplugged: the server keeps answering, the marker says why it stopped.
        mount.closeNow();
        auto lost = client.Get("/api/scope/position");
        ASSERT_TRUE(lost);
        EXPECT_EQ(json(lost).at("connected"), false);
        EXPECT_EQ(json(client.Get("/api/now")).at("year"), 2026);
        EXPECT_EQ(client.Post("/api/scope/disconnect", "", "application/json")->status, 200);
    }
    ::unsetenv("NOCTURNEL_SERIAL_SETTLE_MS");
}

}  // namespace
}  // namespace nocturnel
