// SkyRoamer, the saved lists, the memos and the observer logs through the web API: the same
// plans/ functions as the commands, the same JSON, the program's messages for bad names.
#include <gtest/gtest.h>

#include <future>

#include "shell/server_test_support.h"

namespace nocturnel {
namespace {

class ServerPlans : public ServerTestBase {
protected:
    static nlohmann::json post(httplib::Client& client, const std::string& path, const nlohmann::json& body, int& status) {
        auto r = client.Post(path, body.dump(), "application/json");
        status = r ? r->status : 0;
        return json(r);
    }
    static std::vector<std::string> names(const nlohmann::json& selection) {
        std::vector<std::string> out;
        for (const auto& o : selection.at("objects")) out.push_back(o.at("name"));
        return out;
    }
};

TEST_F(ServerPlans, TheCriteriaFormListsChoicesInStoredIndexOrder) {
    if (!hasData_) GTEST_SKIP() << "NOCTURNEL_TEST_DATA has no catalogues (the constellation choices)";
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    const auto form = json(client.Get("/api/roam/criteria"));
    ASSERT_TRUE(form.contains("criteria")) << form.dump();
    EXPECT_EQ(form.at("title"), "Choose Selection Criteria");
    std::vector<std::string> keys;
    for (const auto& c : form.at("criteria")) keys.push_back(c.at("key"));
    EXPECT_EQ(keys, (std::vector<std::string>{"visibility", "mag", "constellation", "catalog", "type", "group",
                                              "difficulty", "size"}));
    const auto& visibility = form.at("criteria")[0];
    ASSERT_EQ(visibility.at("choices").size(), 11u);
    EXPECT_EQ(visibility.at("choices")[0], "No Criteria");
    EXPECT_EQ(visibility.at("choices")[2], ">15\u00b0");
    EXPECT_EQ(visibility.at("choices")[10], "Not Visible");
    const auto& group = form.at("criteria")[5];
    EXPECT_EQ(group.at("choices")[4], "Double Star");

    // A choice set by index reads back at that index; the group by its text too.
    int status = 0;
    post(client, "/api/roam", {{"criteria", {{"visibility", 3}, {"group", "Galaxy"}, {"size", "0"}}}, {"mode", "remove"}},
         status);
    EXPECT_EQ(status, 200);
    const auto after = json(client.Get("/api/roam/criteria")).at("criteria");
    EXPECT_EQ(after[0].at("value"), 3);
    EXPECT_EQ(after[5].at("choices")[after[5].at("value").get<int>()], "Galaxy");

    // Unknown criteria and choices are refused with the program's messages.
    auto bad = post(client, "/api/roam", {{"criteria", {{"colour", 1}}}}, status);
    EXPECT_EQ(status, 400);
    EXPECT_EQ(bad.at("error").at("title"), "Invalid criterion \"colour\"");
    bad = post(client, "/api/roam", {{"criteria", {{"visibility", 99}}}}, status);
    EXPECT_EQ(status, 422);
    EXPECT_EQ(bad.at("error").at("caption"), "Information");
    EXPECT_EQ(json(client.Get("/api/roam/criteria")).at("criteria")[0].at("value"), 3);  // unchanged
    bad = post(client, "/api/roam", {{"mode", "sideways"}}, status);
    EXPECT_EQ(status, 400);
    // Short selections need a site; an unknown one is named back.
    bad = post(client, "/api/roam", {{"short", "messier"}}, status);
    EXPECT_EQ(status, 422);
    EXPECT_EQ(bad.at("error").at("title"), "Please set your location first!");
    bad = post(client, "/api/roam", {{"short", "quasars"}}, status);
    EXPECT_EQ(status, 422);
    EXPECT_EQ(bad.at("error").at("title"), "Unknown short selection \"quasars\"");
}

TEST_F(ServerPlans, ARunFillsTheListThatIsSavedAndLoadedByName) {
    if (!hasData_) GTEST_SKIP() << "NOCTURNEL_TEST_DATA has no catalogues";
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    client.set_read_timeout(60, 0);
    int status = 0;
    // Messier objects of Andromeda: M 31, M 32 and M 110.
    const auto run = post(client, "/api/roam",
                          {{"criteria", {{"visibility", 0}, {"constellation", "And"}, {"catalog", "Messier"}}},
                           {"mode", "new"}},
                          status);
    ASSERT_EQ(status, 200) << run.dump();
    EXPECT_FALSE(run.at("stages").empty());
    EXPECT_EQ(run.at("stopped"), false);
    const auto found = names(run);
    ASSERT_FALSE(found.empty()) << run.dump();
    SCOPED_TRACE(run.dump());
    EXPECT_NE(std::find(found.begin(), found.end(), "M31, NGC224"), found.end()) << run.dump();
    EXPECT_EQ(names(json(client.Get("/api/list"))), found);

    // "-" with the same criteria empties it again.
    const auto removed = post(client, "/api/roam", {{"mode", "remove"}}, status);
    EXPECT_EQ(status, 200);
    EXPECT_TRUE(removed.at("objects").empty()) << removed.dump();
    // "+" brings them back, then the list is saved by name.
    EXPECT_EQ(names(post(client, "/api/roam", {{"mode", "add"}}, status)), found);
    const auto lists = post(client, "/api/lists/save", {{"name", "Andromeda"}}, status);
    ASSERT_EQ(status, 200) << lists.dump();
    ASSERT_EQ(lists.at("lists").size(), 1u);
    EXPECT_EQ(lists.at("lists")[0].at("line"), "Andromeda, " + std::to_string(found.size()));
    EXPECT_EQ(json(client.Get("/api/lists")), lists);

    post(client, "/api/roam", {{"mode", "remove"}}, status);
    EXPECT_TRUE(json(client.Get("/api/list")).at("objects").empty());
    EXPECT_EQ(names(post(client, "/api/lists/load", {{"name", "Andromeda"}}, status)), found);
    EXPECT_EQ(names(json(client.Get("/api/list"))), found);

    // Memo export and import of the same list.
    const auto memo = post(client, "/api/memos/export", nlohmann::json::object(), status);
    ASSERT_EQ(status, 200) << memo.dump();
    const std::string file = memo.at("file");
    const auto memos = json(client.Get("/api/memos")).at("memos");
    ASSERT_EQ(memos.size(), 1u);
    EXPECT_EQ(memos[0], file);
    post(client, "/api/roam", {{"mode", "remove"}}, status);
    const auto imported = post(client, "/api/memos/import", {{"file", file}}, status);
    EXPECT_EQ(status, 200) << imported.dump();
    EXPECT_EQ(names(imported), found);
}

TEST_F(ServerPlans, AStopEndsARunAndKeepsWhatWasFound) {
    if (!hasData_) GTEST_SKIP() << "NOCTURNEL_TEST_DATA has no catalogues";
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    client.set_read_timeout(60, 0);
    // The stop flag is cleared when a job starts: set it from inside the run's first stage.
    auto running = std::async(std::launch::async, [&] {
        int status = 0;
        return post(client, "/api/roam", {{"criteria", {{"visibility", 0}, {"mag", 0}, {"constellation", 0},
                                                        {"catalog", 0}, {"type", 0}, {"group", 0}, {"difficulty", 0}}},
                                          {"mode", "new"}},
                    status);
    });
    httplib::Client stopper("127.0.0.1", server.port());
    for (int i = 0; i < 200 && running.wait_for(std::chrono::milliseconds(5)) != std::future_status::ready; ++i)
        stopper.Post("/api/stop");
    const auto result = running.get();
    ASSERT_TRUE(result.contains("stopped")) << result.dump();
    EXPECT_EQ(result.at("stopped"), true);
}

TEST_F(ServerPlans, NamesWithPathTricksAreRefused) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    int status = 0;
    for (const char* name : {"../evil", "a/b", ".hidden", ".."}) {
        SCOPED_TRACE(name);
        auto r = post(client, "/api/logs", {{"mode", "new"}, {"name", name}}, status);
        EXPECT_EQ(status, 422);
        EXPECT_EQ(r.at("error").at("caption"), "Information");
        r = post(client, "/api/lists/load", {{"name", name}}, status);
        EXPECT_EQ(status, 422) << r.dump();
        r = json(client.Get("/api/memos/preview", httplib::Params{{"file", std::string(name) + ".txt"}}, httplib::Headers{}));
        EXPECT_TRUE(r.contains("error")) << r.dump();
    }
    EXPECT_FALSE(std::filesystem::exists(home_.parent_path() / "evil.log"));
    EXPECT_FALSE(std::filesystem::exists(home_ / "evil.log"));
    auto r = post(client, "/api/lists/save", nlohmann::json::object(), status);
    EXPECT_EQ(status, 400);
    EXPECT_EQ(r.at("error").at("title"), "Invalid name");
}

TEST_F(ServerPlans, ALogIsCreatedEditedListedAndDeleted) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());
    int status = 0;
    // A name the catalogues need not know, with the form's fields.
    auto made = post(client, "/api/logs",
                     {{"mode", "new"}, {"name", "Comet X"},
                      {"fields", {{"seeing", "Good"}, {"rating", 3}, {"note", "faint tail"}, {"mag", 9}, {"at", "21:15"}}}},
                     status);
    ASSERT_EQ(status, 200) << made.dump();
    EXPECT_EQ(made.at("object"), "Comet X");
    EXPECT_EQ(made.at("date"), "2026-11-21");  // the moment of the session
    EXPECT_EQ(made.at("time"), "21:15");
    EXPECT_EQ(made.at("seeingText"), "Good");
    EXPECT_EQ(made.at("ratingText"), "Direct vision");
    EXPECT_EQ(made.at("objectMag"), 9);
    EXPECT_EQ(made.at("note"), "faint tail");

    const auto listing = json(client.Get("/api/logs"));
    ASSERT_EQ(listing.at("logs").size(), 1u);
    EXPECT_EQ(listing.at("logs")[0].at("object"), "Comet X");
    EXPECT_EQ(listing.at("form").at("result")[1], "Sketched");
    EXPECT_EQ(json(client.Get("/api/logs/Comet%20X")), made);

    // Twice the same name is refused; an edit changes only the fields given, and renames.
    post(client, "/api/logs", {{"mode", "new"}, {"name", "Comet X"}}, status);
    EXPECT_EQ(status, 422);
    auto edited = post(client, "/api/logs",
                       {{"mode", "edit"}, {"name", "Comet X"}, {"fields", {{"object", "Comet Y"}, {"result", "Imaged"}}}},
                       status);
    ASSERT_EQ(status, 200) << edited.dump();
    EXPECT_EQ(edited.at("object"), "Comet Y");
    EXPECT_EQ(edited.at("resultText"), "Imaged");
    EXPECT_EQ(edited.at("note"), "faint tail");
    EXPECT_EQ(client.Get("/api/logs/Comet%20X")->status, 422);
    post(client, "/api/logs", {{"mode", "edit"}, {"name", "Comet Y"}, {"fields", {{"seeing", "Superb"}}}}, status);
    EXPECT_EQ(status, 422);

    // Export asks first: No leaves nothing written.
    auto exporting = std::async(std::launch::async, [&] {
        httplib::Client c("127.0.0.1", server.port());
        int s = 0;
        auto out = post(c, "/api/logs/export", nlohmann::json::object(), s);
        return std::make_pair(s, out);
    });
    nlohmann::json question;
    for (int i = 0; i < 300 && !question.contains("id"); ++i) {
        question = json(client.Get("/api/question"));
        if (!question.contains("id")) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_TRUE(question.contains("id"));
    EXPECT_EQ(question.at("text"), "Do you want to export your Observer Logs to a text file ?");
    post(client, "/api/answer", {{"id", question.at("id")}, {"yes", true}}, status);
    const auto [exportStatus, exported] = exporting.get();
    EXPECT_EQ(exportStatus, 200) << exported.dump();
    EXPECT_EQ(exported.at("exported"), 1);

    auto del = client.Delete("/api/logs/Comet%20Y");
    ASSERT_TRUE(del);
    EXPECT_EQ(del->status, 200) << del->body;
    EXPECT_TRUE(json(client.Get("/api/logs")).at("logs").empty());
    EXPECT_EQ(client.Delete("/api/logs/Comet%20Y")->status, 422);
}

}  // namespace
}  // namespace nocturnel
