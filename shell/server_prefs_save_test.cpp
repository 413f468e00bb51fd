// The interface's preference saves and a command line's on the same folder: neither loses the
// other's change, and the engine's record follows what was saved.
#include <gtest/gtest.h>

#include "settings/preferences_file.h"
#include "settings/saved_preferences.h"
#include "shell/server_test_support.h"

namespace nocturnel {
namespace {

class ServerPrefsSave : public ServerTestBase {};

// What another process (a command line) saves while the server runs.
void saveFromAnotherProcess(int experience, int nightMode) {
    ASSERT_TRUE(updateSavedPreferences([&](Preferences& p) {
        p.experience = experience;
        p.nightMode = nightMode;
        return true;
    }));
}

TEST_F(ServerPrefsSave, EachSaveKeepsTheOthersChanges) {
    TestServer server(home_);
    ASSERT_TRUE(server.ready());
    httplib::Client client("127.0.0.1", server.port());

    saveFromAnotherProcess(2, 2);
    ASSERT_EQ(client.Put("/api/prefs", R"({"altitudeM":321})", "application/json")->status, 200);
    Preferences saved{};
    ASSERT_EQ(loadPreferences(saved), PreferencesLoad::Loaded);
    EXPECT_EQ(saved.altitudeM, 321);
    EXPECT_EQ(saved.experience, 2) << "the command line's change survives the interface's save";
    const auto shown = json(client.Get("/api/prefs"));
    EXPECT_EQ(shown.at("experience"), 2) << "the engine follows what was saved";
    EXPECT_EQ(shown.at("altitudeM"), 321);

    // A preference page and the location page likewise.
    saveFromAnotherProcess(1, 3);
    auto page = client.Post("/api/forms/prefs2", R"({"values":{"ageIndex":3}})", "application/json");
    ASSERT_EQ(page->status, 200) << page->body;
    saveFromAnotherProcess(0, 1);
    auto location = client.Post("/api/forms/location", R"({"action":"accept","values":{"height":"1500"}})", "application/json");
    ASSERT_EQ(location->status, 200) << location->body;
    ASSERT_EQ(loadPreferences(saved), PreferencesLoad::Loaded);
    EXPECT_EQ(saved.altitudeM, 1500);
    EXPECT_EQ(saved.ageIndex, 3);
    EXPECT_EQ(saved.experience, 0);
    EXPECT_EQ(saved.nightMode, 1);
    EXPECT_EQ(json(client.Get("/api/prefs")).at("nightMode"), 1);
}

}  // namespace
}  // namespace nocturnel
