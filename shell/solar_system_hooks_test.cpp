// The solar-system bodies in every name lookup, end to end on the real planet file (skipped
// without it): where, info, find --suggest, rise, scope goto --object and chart --at.
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "catalog/catalogues.h"
#include "catalog/name_index.h"
#include "scope/lx200_sim.h"
#include "scope/pty_mount.h"
#include "settings/preferences.h"
#include "shell/cli_test_runner.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class SolarSystemNames : public ::testing::Test {
protected:
    void SetUp() override {
        const char* data = std::getenv("NOCTURNEL_TEST_DATA");
        if (!data || !fs::exists(fs::path(data) / "nocturnel_planets.ppc")) GTEST_SKIP() << "no catalogues: run make-catalogs.sh";
        home_ = fs::temp_directory_path() / ("nocturnel_ss_hooks_" + std::to_string(::getpid()) + "_" +
                                             ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(home_);
        fs::create_directories(home_);
        fs::create_directory_symlink(fs::absolute(data), home_ / "data");
        ::setenv("NOCTURNEL_SERIAL_SETTLE_MS", "0", 1);  // the simulated mount answers at once
        closeCatalogues();
        resetNameIndex();
        for (const auto& [field, value] : {std::pair{"latitudeDeg", "48.1"}, {"longitudeDeg", "1.8"}, {"utcOffsetMin", "60"}}) {
            const CliRun set = run({"prefs", "set", field, value});
            ASSERT_EQ(set.exit, 0) << field << set.titles();
        }
    }
    void TearDown() override {
        ::unsetenv("NOCTURNEL_SERIAL_SETTLE_MS");
        closeCatalogues();
        resetNameIndex();
        if (!home_.empty()) fs::remove_all(home_);
    }
    CliRun run(std::vector<std::string> args) {
        prefs() = Preferences{};
        args.insert(args.begin(), {"--home", home_.string(), "--date", "2026-11-24", "--time", "04:00"});
        return runCommandLine(std::move(args));
    }
    nlohmann::json jupiter() {
        const CliRun r = run({"find", "Jupiter", "--json"});
        EXPECT_EQ(r.exit, 0) << r.titles();
        return r.exit == 0 ? r.json() : nlohmann::json{{"ra", -1.0}, {"dec", -100.0}};
    }
    fs::path home_;
};

TEST_F(SolarSystemNames, WhereAndGotoGoToThePlanetOfTheMoment) {
    const nlohmann::json body = jupiter();
    const CliRun where = run({"--json", "where", "Jupiter"});
    ASSERT_EQ(where.exit, 0) << where.titles();
    EXPECT_EQ(where.json()["name"], "Jupiter");
    EXPECT_NEAR(where.json()["ra"].get<double>(), body["raApparent"].get<double>(), 0.002);
    EXPECT_NEAR(where.json()["dec"].get<double>(), body["decApparent"].get<double>(), 0.02);

    auto model = std::make_shared<Lx200MountModel>();
    PtyMount mount(makeLx200Responder(model));
    const CliRun go = run({"--json", "scope", "--drive", "LX200", "--port", mount.devicePath(), "goto", "--object", "jupiter"});
    ASSERT_EQ(go.exit, 0) << go.titles();
    EXPECT_NEAR(go.json()["ra"].get<double>(), body["raApparent"].get<double>(), 0.01);
    EXPECT_NE(mount.received().find(":MS#"), std::string::npos);
}

TEST_F(SolarSystemNames, InfoRiseAndSuggestionsKnowTheBodies) {
    const CliRun info = run({"info", "Moon", "--json"});
    ASSERT_EQ(info.exit, 0) << info.titles();
    EXPECT_EQ(info.json()["name"], "Moon");
    EXPECT_LT(info.json()["mag"].get<double>(), -5.0);
    EXPECT_GT(info.json()["sizeArcmin"].get<double>(), 28.0);

    const CliRun rise = run({"rise", "Jupiter", "--json"});
    ASSERT_EQ(rise.exit, 0) << rise.titles();

    const CliRun suggest = run({"find", "--suggest", "Jup", "--json"});
    ASSERT_EQ(suggest.exit, 0);
    ASSERT_FALSE(suggest.json().empty());
    EXPECT_EQ(suggest.json()[0], "Jupiter");
    const CliRun unknown = run({"where", "Vulcan"});
    EXPECT_EQ(unknown.exit, 1);
}

TEST_F(SolarSystemNames, ATapOnTheDrawnPlanetNamesIt) {
    const CliRun r = run({"--json", "chart", "--center", "Jupiter", "--zoom", "6", "--size", "401x401", "--at", "203,198"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    const nlohmann::json object = r.json()["object"];
    EXPECT_EQ(object["name"], "Jupiter") << object.dump();
}

}  // namespace
}  // namespace nocturnel
