// The sky routes of the web interface answer with the command line's JSON, and refuse bad
// parameters with a message.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include "catalog/catalogues.h"
#include "scope/lx200.h"
#include "scope/lx200_sim.h"
#include "scope/pty_mount.h"
#include "scope/serial_link.h"
#include "shell/cli_test_runner.h"
#include "shell/server_test_support.h"

namespace nocturnel {
namespace {

class ServerSky : public ServerTestBase {
protected:
    nlohmann::json cli(std::vector<std::string> words) const {
        std::vector<std::string> args = {"--home", home_.string(), "--json", "--date", "2026-11-21", "--time", "22:00"};
        args.insert(args.end(), words.begin(), words.end());
        return runCommandLine(args).json();
    }
};

TEST_F(ServerSky, AnswersAreTheCommandLinesJson) {
    if (!hasData_) GTEST_SKIP() << "NOCTURNEL_TEST_DATA holds no built catalogues";
    struct Row {
        const char* path;
        std::vector<std::string> words;
    };
    const std::vector<Row> rows = {
        {"/api/planets", {"planets"}},
        {"/api/rise?name=Vega", {"rise", "Vega"}},
        {"/api/rise?name=Jupiter", {"rise", "Jupiter"}},
        {"/api/twilight", {"twilight"}},
        {"/api/moon", {"moon"}},
        {"/api/events?from=2026-01-01&to=2026-12-31&kind=opposition",
         {"events", "--from", "2026-01-01", "--to", "2026-12-31", "--kind", "opposition"}},
        {"/api/info?name=M%2042", {"info", "M", "42"}},
        {"/api/find/suggest?prefix=orio", {"find", "--suggest", "orio", "--limit", "12"}},
    };
    std::vector<nlohmann::json> answers;
    {
        TestServer server(home_);
        ASSERT_TRUE(server.ready());
        httplib::Client client("127.0.0.1", server.port());
        for (const Row& row : rows) {
            auto r = client.Get(row.path);
            ASSERT_TRUE(r) << row.path;
            EXPECT_EQ(r->status, 200) << row.path << " " << r->body;
            answers.push_back(json(r));
        }
    }
    // The API answers with an object: a list (the suggestions) comes as {"result": [...]}.
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const nlohmann::json expected = cli(rows[i].words);
        const nlohmann::json wrapped = expected.is_object() ? expected : nlohmann::json{{"result", expected}};
        EXPECT_EQ(answers[i], wrapped) << rows[i].path;
    }
    closeCatalogues();

    bool jupiter = false;
    for (const auto& b : answers[0].at("bodies")) jupiter = jupiter || b.at("name") == "Jupiter";
    EXPECT_TRUE(jupiter);
    EXPECT_TRUE(answers[1].at("rise").is_string());
    EXPECT_FALSE(answers[4].at("phase").get<std::string>().empty());
    EXPECT_EQ(answers[4].at("nextPhases").size(), 4u);
    EXPECT_FALSE(answers[5].at("events").empty());
    bool orionNebula = false;
    for (const auto& n : answers[7].at("result")) orionNebula = orionNebula || n == "Orion Nebula";
    EXPECT_TRUE(orionNebula) << answers[7];
}

// The Twilight screen's other dates: the command line's answer for that --date, the engine's
// moment left where it was.
TEST_F(ServerSky, TwilightOfAnotherDateIsTheCommandLinesForThatDate) {
    if (!hasData_) GTEST_SKIP() << "NOCTURNEL_TEST_DATA holds no built catalogues";
    nlohmann::json midsummer, now;
    {
        TestServer server(home_);
        ASSERT_TRUE(server.ready());
        httplib::Client client("127.0.0.1", server.port());
        auto r = client.Get("/api/twilight?date=2026-06-21");
        ASSERT_TRUE(r);
        ASSERT_EQ(r->status, 200) << r->body;
        midsummer = json(r);
        now = json(client.Get("/api/now"));
    }
    const nlohmann::json expected = runCommandLine({"--home", home_.string(), "--json", "--date", "2026-06-21", "--time",
                                                    "22:00", "twilight"}).json();
    closeCatalogues();
    EXPECT_EQ(midsummer, expected);
    EXPECT_EQ(midsummer.at("date"), "2026-06-21");
    EXPECT_EQ(now.at("month"), 11) << "the moment stays on its own date";
    // Evening in order: sunset, civil, nautical dusk (ISO local times compare as text).
    ASSERT_TRUE(midsummer.at("sunset").is_string() && midsummer.at("nauticalDusk").is_string()) << midsummer;
    EXPECT_LT(midsummer.at("sunset").get<std::string>(), midsummer.at("civilDusk").get<std::string>());
    EXPECT_LT(midsummer.at("civilDusk").get<std::string>(), midsummer.at("nauticalDusk").get<std::string>());
    
}

TEST_F(ServerSky, BadParametersAreRefusedWithAMessage) {
    if (!hasData_) GTEST_SKIP() << "NOCTURNEL_TEST_DATA holds no built catalogues";
    struct Row {
        const char* path;
        int status;
        const char* title;
    } rows[] = {
        {"/api/rise", 400, "Invalid name"},
        {"/api/rise?name=No%20such%20thing%20xyz", 422, nullptr},
        {"/api/info?name=", 400, "Invalid name"},
        {"/api/info?name=M%209999", 422, nullptr},
        {"/api/find/suggest", 400, "Invalid prefix"},
        {"/api/events?from=2026-01-01", 400, "Invalid date"},
        {"/api/events?from=2026-01-01&to=2030-01-02", 422, "Date range too long"},
        {"/api/events?from=2026-02-01&to=2026-01-01", 422, "Invalid date"},
        {"/api/events?from=2026-13-01&to=2026-12-01", 422, "Invalid date"},
        {"/api/events?from=2026-01-01&to=2026-02-01&kind=eclipse", 422, "Unknown event kind"},
        {"/api/twilight?date=2026-02-30", 422, "Invalid date"},
        {"/api/twilight?date=tomorrow", 422, "Invalid date"},
        {"/api/twilight?date=2026-06-21T00", 400, nullptr},
    };
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    client.set_read_timeout(60);  // a year of events takes a while in the sanitizer build
    for (const auto& row : rows) {
        auto r = client.Get(row.path);
        ASSERT_TRUE(r) << row.path;
        EXPECT_EQ(r->status, row.status) << row.path << " " << r->body;
        const auto body = json(r);
        ASSERT_TRUE(body.contains("error")) << row.path;
        EXPECT_EQ(body["error"].at("caption"), "Information");
        if (row.title) {
            EXPECT_EQ(body["error"].at("title"), row.title) << row.path;
        }
    }
    auto r = client.Get("/api/events?from=2026-01-01&to=2026-12-31&kind=equinox");
    ASSERT_TRUE(r);
    EXPECT_EQ(r->status, 200) << r->body;
    EXPECT_EQ(json(r).at("events").size(), 2u);
}

// The selectors and boxes that act as soon as they change name their action in the description,
// so that the page needs no table of its own.
TEST_F(ServerSky, FormDescriptionsNameTheActionsOfTheirSwitches) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    auto actionOf = [](const nlohmann::json& form, const std::string& name) -> std::string {
        for (const auto& g : form.at("groups"))
            for (const auto& c : g.at("controls"))
                if (c.at("name") == name) return c.value("action", "");
        return "(absent)";
    };
    const auto location = json(client.Get("/api/forms/location"));
    const auto datetime = json(client.Get("/api/forms/datetime"));
    EXPECT_EQ(actionOf(location, "memory"), "recall");
    EXPECT_EQ(actionOf(location, "daylightSaving"), "dst");
    EXPECT_EQ(actionOf(location, "name"), "");
    EXPECT_EQ(actionOf(datetime, "showsUt"), "ut");
    EXPECT_EQ(actionOf(datetime, "year"), "");
}

// Each night level gives its own chart: "Dark" is dimmer than "Medium", itself dimmer than "Bright".
TEST_F(ServerSky, NightLevelsGiveDifferentCharts) {
    if (!hasData_) GTEST_SKIP() << "NOCTURNEL_TEST_DATA holds no built catalogues";
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    std::vector<std::string> pngs;
    for (int night = 0; night <= 3; ++night) {
        auto r = client.Get("/api/chart.png?width=200&height=200&zoom=0&night=" + std::to_string(night));
        ASSERT_TRUE(r);
        ASSERT_EQ(r->status, 200);
        pngs.push_back(r->body);
    }
    for (int a = 0; a <= 3; ++a)
        for (int b = a + 1; b <= 3; ++b) EXPECT_NE(pngs[a], pngs[b]) << "night " << a << " and " << b;
}

// The telescope marker lands where the chart the page shows draws the place the mount points at.
TEST_F(ServerSky, ScopeMarkerIsPlacedOnTheShownChart) {
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
        EXPECT_EQ(client.Get("/api/scope/position?zoom=99")->status, 400);
        auto connect = client.Post("/api/scope/connect",
                                   nlohmann::json{{"drive", "LX200"}, {"port", mount.devicePath()}}.dump(), "application/json");
        ASSERT_TRUE(connect);
        ASSERT_EQ(connect->status, 200) << connect->body;
        ASSERT_EQ(client.Post("/api/scope/goto", R"({"name":"Vega"})", "application/json")->status, 200);
        // A chart centred on Vega (J2000), 30 degrees across 400 pixels.
        const std::string onVega = "/api/scope/position?width=400&height=300&zoom=6&ra=18.6156&dec=38.7836";
        nlohmann::json position;
        for (int i = 0; i < 100; ++i) {
            position = json(client.Get(onVega));
            if (position.value("connected", false) && std::abs(position.at("dec").get<double>() - 38.78) < 0.3) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        ASSERT_EQ(position.value("connected", false), true) << position.dump();
        ASSERT_TRUE(position.contains("x")) << position.dump();
        EXPECT_NEAR(position.at("x").get<int>(), 200, 12) << position.dump();
        EXPECT_NEAR(position.at("y").get<int>(), 150, 12) << position.dump();
        // Double resolution: the same CSS pixel.
        const auto sharp = json(client.Get(onVega + "&scale=2"));
        EXPECT_NEAR(sharp.value("x", -1), position.at("x").get<int>(), 1) << sharp.dump();
        // A chart of the other side of the sky: no place for the marker.
        const auto away = json(client.Get("/api/scope/position?width=400&height=300&zoom=8&ra=6.75&dec=-16.7"));
        EXPECT_EQ(away.value("connected", false), true);
        EXPECT_FALSE(away.contains("x")) << away.dump();
        EXPECT_EQ(client.Post("/api/scope/disconnect", "", "application/json")->status, 200);
    }
    ::unsetenv("NOCTURNEL_SERIAL_SETTLE_MS");
}

}  // namespace
}  // namespace nocturnel
