// The forms of the web interface: descriptions that agree with the record, and submissions that
// run the engine's own logic.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "settings/preference_lists.h"
#include "shell/server_test_support.h"

namespace nocturnel {
namespace {

class ServerForms : public ServerTestBase {
protected:
    nlohmann::json submit(httplib::Client& client, const std::string& id, const nlohmann::json& body, int& status) {
        auto r = client.Post("/api/forms/" + id, body.dump(), "application/json");
        status = r ? r->status : 0;
        return json(r);
    }
};

// Every list control shows, at its value's position, the entry "prefs show" names.
TEST_F(ServerForms, EveryListShowsTheStoredIndexEntry) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    const auto labels = json(client.Get("/api/prefs")).at("labels");
    const auto forms = json(client.Get("/api/forms")).at("forms");
    ASSERT_EQ(forms.size(), 9u);
    int lists = 0;
    std::set<int> ids;
    for (const auto& entry : forms) {
        const auto form = json(client.Get("/api/forms/" + entry.at("id").get<std::string>()));
        ASSERT_TRUE(form.contains("groups")) << form.dump();
        for (const auto& group : form.at("groups"))
            for (const auto& c : group.at("controls")) {
                EXPECT_TRUE(ids.insert(c.at("id").get<int>()).second) << "control id used twice: " << c.dump();
                const std::string name = c.at("name");
                if (c.at("type") != "list" || !labels.contains(name)) continue;
                ++lists;
                const int value = c.at("value");
                ASSERT_LT(value, static_cast<int>(c.at("entries").size())) << name;
                EXPECT_EQ(c.at("entries")[value], labels.at(name)) << name;
            }
    }
    EXPECT_GE(lists, 28);
    const auto page1 = json(client.Get("/api/forms/prefs1"));
    EXPECT_EQ(page1.at("title"), "Preference 1/6");
    const auto drive = page1.at("groups")[0].at("controls")[0];
    EXPECT_EQ(drive.at("label"), "Scope Drive");
    EXPECT_EQ(drive.at("entries")[0], "None");  // added last, shown first: index 0
    EXPECT_EQ(drive.at("help"), " Select your drive from the list or tap None if yours is not present.\n");
    std::vector<std::string> buttons;
    for (const auto& b : page1.at("buttons")) buttons.push_back(b.at("label"));
    EXPECT_EQ(buttons, (std::vector<std::string>{"Prev", "Next", "Ok"}));
    EXPECT_EQ(client.Get("/api/forms/nothing")->status, 404);
}

TEST_F(ServerForms, APreferencePageSetsItsFieldsTogether) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    int status = 0;
    auto answer = submit(client, "prefs2", {{"action", "next"}, {"values", {{"nightMode", 2}, {"experience", "Expert"}}}}, status);
    EXPECT_EQ(status, 200) << answer.dump();
    EXPECT_EQ(json(client.Get("/api/prefs")).at("labels").at("nightMode"), "Medium");
    // A field of another page, or a bad value, refuses the whole page.
    answer = submit(client, "prefs2", {{"values", {{"nightMode", 0}, {"raFormat", 1}}}}, status);
    EXPECT_EQ(status, 422);
    answer = submit(client, "prefs2", {{"values", {{"nightMode", 0}, {"ageIndex", 99}}}}, status);
    EXPECT_EQ(status, 422);
    EXPECT_EQ(answer.at("error").at("caption"), "Information");
    EXPECT_EQ(json(client.Get("/api/prefs")).at("nightMode"), 2);
}

TEST_F(ServerForms, TheLocationPageKeepsItsRules) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    int status = 0;
    const int offset = json(client.Get("/api/prefs")).at("utcOffsetMin");
    auto answer = submit(client, "location", {{"action", "dst"}, {"values", {{"daylightSaving", true}}}}, status);
    ASSERT_EQ(status, 200) << answer.dump();
    EXPECT_EQ(json(client.Get("/api/prefs")).at("utcOffsetMin"), offset + 60);
    // The page shows the offset without the daylight-saving hour.
    for (const auto& c : answer.at("form").at("groups")[0].at("controls")) {
        if (c.at("name") == "utcOffset") {
            EXPECT_EQ(c.at("value"), std::to_string(offset));
        }
    }

    answer = submit(client, "location",
                    {{"action", "accept"}, {"values", {{"name", "Chalet"}, {"height", "1200"}, {"memory", 1}}}}, status);
    ASSERT_EQ(status, 200) << answer.dump();
    auto p = json(client.Get("/api/prefs"));
    EXPECT_EQ(p.at("altitudeM"), 1200);
    EXPECT_EQ(p.at("siteName"), "Chalet");

    answer = submit(client, "location", {{"action", "accept"}, {"values", {{"height", "99999"}}}}, status);
    EXPECT_EQ(status, 422);
    EXPECT_EQ(json(client.Get("/api/prefs")).at("altitudeM"), 1200);

    // Site2 holds the accepted site: recall it after a change.
    ASSERT_EQ(client.Put("/api/prefs", R"({"altitudeM":5})", "application/json")->status, 200);
    answer = submit(client, "location", {{"action", "recall"}, {"values", {{"memory", 1}}}}, status);
    ASSERT_EQ(status, 200) << answer.dump();
    EXPECT_EQ(json(client.Get("/api/prefs")).at("altitudeM"), 1200);
}

TEST_F(ServerForms, TheDateDialogTakesAJulianDateOrSaysInvalidJdDate) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    int status = 0;
    auto answer = submit(client, "datetime", {{"action", "jd"}, {"values", {{"jd", "12 May"}}}}, status);
    EXPECT_EQ(status, 422);
    EXPECT_EQ(answer.at("error").at("title"), "Invalid JD date");
    answer = submit(client, "datetime", {{"action", "jd"}, {"values", {{"jd", "2524593.5"}}}}, status);
    EXPECT_EQ(answer.at("error").at("title"), "Invalid JD date");

    answer = submit(client, "datetime", {{"action", "jd"}, {"values", {{"jd", "2451545.0"}}}}, status);
    ASSERT_EQ(status, 200) << answer.dump();
    std::map<std::string, nlohmann::json> v;
    for (const auto& c : answer.at("form").at("groups")[0].at("controls")) v[c.at("name")] = c.at("value");
    EXPECT_EQ(v["year"], 2000);
    EXPECT_EQ(v["hour"], 13);  // 12:00 UT shown as local time at UT+60 min

    // Shown as UT, then accepted: the moment is the local time of that UT.
    answer = submit(client, "datetime",
                    {{"action", "accept"},
                     {"values", {{"year", 2025}, {"month", 2}, {"day", 31}, {"hour", 23}, {"minute", 30}, {"second", 0},
                                 {"showsUt", true}, {"timeUpdate", 1}}}},
                    status);
    ASSERT_EQ(status, 200) << answer.dump();
    const auto now = json(client.Get("/api/now"));
    EXPECT_EQ(now.at("month"), 3);  // the 31st clamped to February's 28th, 23:30 UT = 00:30 local on 1 March
    EXPECT_EQ(now.at("day"), 1);
    EXPECT_EQ(now.at("hour"), 0);
    EXPECT_EQ(json(client.Get("/api/prefs")).at("timeUpdate"), 1);
    answer = submit(client, "datetime", {{"action", "accept"}, {"values", {{"month", 13}}}}, status);
    EXPECT_EQ(status, 422);
}

TEST_F(ServerForms, TheAlignmentFormComputesRestoresAndReports) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    int status = 0;
    const nlohmann::json values = {
        {"star1.name", "Vega"},  {"star1.time", "21:00:00"}, {"star1.ra", "18:36:56"}, {"star1.dec", "38:47:01"},
        {"star1.hor", "18:40:00"}, {"star1.elv", "39:00:00"}, {"star2.name", "Deneb"}, {"star2.time", "21:10:00"},
        {"star2.ra", "20:41:26"}, {"star2.dec", "45:16:49"}, {"star2.hor", "20:44:00"}, {"star2.elv", "45:30:00"}};
    auto answer = submit(client, "align", {{"action", "compute"}, {"values", values}}, status);
    ASSERT_EQ(status, 200) << answer.dump();
    EXPECT_EQ(answer.at("form").at("toTime"), "21:00:00");
    const auto report = json(client.Get("/api/align/report"));
    EXPECT_NE(report.at("text").get<std::string>().find("Star1: Vega"), std::string::npos) << report.dump();
    const auto restored = json(client.Post("/api/align/restore", "", "application/json"));
    EXPECT_EQ(restored.at("matrix").size(), 3u);
    // The same star twice cannot give a matrix.
    nlohmann::json same = values;
    for (const char* k : {"name", "time", "ra", "dec", "hor", "elv"})
        same[std::string("star2.") + k] = values[std::string("star1.") + k];
    answer = submit(client, "align", {{"action", "compute"}, {"values", same}}, status);
    EXPECT_EQ(status, 422);
    EXPECT_EQ(answer.at("error").at("title"), "Please, fill all values");
    // Typed through the API as well.
    auto typed = client.Post("/api/align", R"({"stars":[{"name":"Vega"}]})", "application/json");
    EXPECT_EQ(typed->status, 422);
}

}  // namespace
}  // namespace nocturnel
