// The solar-system commands end to end, in-process, on the real planet file (skipped without
// it): planets, rise, twilight, moon, events and find for a body.
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <vector>

#include "settings/preferences.h"
#include "shell/cli_test_runner.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class SolarSystemCommands : public ::testing::Test {
protected:
    void SetUp() override {
        const char* data = std::getenv("NOCTURNEL_TEST_DATA");
        if (!data || !fs::exists(fs::path(data) / "nocturnel_planets.ppc")) GTEST_SKIP() << "no catalogues: run make-catalogs.sh";
        home_ = fs::temp_directory_path() / ("nocturnel_cmd_planets_" + std::to_string(::getpid()) + "_" +
                                             ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(home_);
        fs::create_directories(home_);
        fs::create_directory_symlink(fs::absolute(data), home_ / "data");
    }
    void TearDown() override {
        if (!home_.empty()) fs::remove_all(home_);
    }
    // A run at 48.1 N, 1.8 W (longitudes are stored west positive), UT + 60 min.
    CliRun run(std::vector<std::string> args) {
        prefs() = Preferences{};
        for (const auto& [field, value] : {std::pair{"latitudeDeg", "48.1"}, {"longitudeDeg", "1.8"}, {"utcOffsetMin", "60"}}) {
            const CliRun set = runCommandLine({"--home", home_.string(), "prefs", "set", field, value});
            EXPECT_EQ(set.exit, 0) << field << set.titles();
        }
        args.insert(args.begin(), {"--home", home_.string()});
        return runCommandLine(std::move(args));
    }
    fs::path home_;
};

const std::regex kIsoTime(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d)");

bool isTimeOrNull(const nlohmann::json& v) { return v.is_null() || (v.is_string() && std::regex_match(v.get<std::string>(), kIsoTime)); }

TEST_F(SolarSystemCommands, PlanetsJsonListsTheTenBodiesWithTheirFields) {
    const CliRun r = run({"planets", "--date", "2026-11-23", "--time", "20:00", "--json"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    const auto j = r.json();
    EXPECT_NEAR(j["jd"].get<double>(), 2461368.291667, 1e-5);
    EXPECT_GT(j["deltaT"].get<double>(), 60.0);
    const char* names[] = {"Sun", "Moon", "Mercury", "Venus", "Mars", "Jupiter", "Saturn", "Uranus", "Neptune", "Pluto"};
    ASSERT_EQ(j["bodies"].size(), 10u);
    for (size_t i = 0; i < 10; ++i) {
        const auto& b = j["bodies"][i];
        EXPECT_EQ(b["name"], names[i]);
        for (const char* k : {"raGeo", "ra"}) EXPECT_TRUE(b[k].get<double>() >= 0.0 && b[k].get<double>() < 24.0) << names[i];
        for (const char* k : {"rise", "transit", "set"}) EXPECT_TRUE(isTimeOrNull(b[k])) << names[i] << " " << k;
        EXPECT_GT(b["diameterArcsec"].get<double>(), 0.0);
        EXPECT_GE(b["illuminated"].get<double>(), 0.0);
    }
    // On 23 November the Sun is in Scorpius and has set by 20:00; the Moon (full on the 24th)
    // is up, with its parallax moving the topocentric place by about a degree.
    EXPECT_EQ(j["bodies"][0]["constellation"], "Sco");
    EXPECT_LT(j["bodies"][0]["alt"].get<double>(), -10.0);
    EXPECT_GT(j["bodies"][1]["alt"].get<double>(), 10.0);
    EXPECT_GT(j["bodies"][1]["illuminated"].get<double>(), 0.95);
    const double parallax = std::abs(j["bodies"][1]["decGeo"].get<double>() - j["bodies"][1]["dec"].get<double>());
    EXPECT_GT(parallax, 0.2);
    EXPECT_LT(parallax, 1.1);
    // The Moon transits after midnight: no transit on that local day.
    EXPECT_TRUE(j["bodies"][1]["transit"].is_null());
}

TEST_F(SolarSystemCommands, RiseSaysCircumpolarAndNeverRises) {
    struct Case {
        const char* name;
        bool circumpolar, neverRises;
    } cases[] = {{"Capella", true, false}, {"Canopus", false, true}, {"Vega", false, false}, {"Jupiter", false, false}};
    for (const Case& c : cases) {
        const CliRun r = run({"rise", c.name, "--date", "2026-11-23", "--json"});
        ASSERT_EQ(r.exit, 0) << c.name << r.titles();
        const auto j = r.json();
        EXPECT_EQ(j["circumpolar"], c.circumpolar) << c.name;
        EXPECT_EQ(j["neverRises"], c.neverRises) << c.name;
        EXPECT_EQ(j["rise"].is_null(), c.circumpolar || c.neverRises) << c.name;
        EXPECT_EQ(j["riseAz"].is_null(), j["rise"].is_null()) << c.name;
        EXPECT_FALSE(j["transit"].is_null()) << c.name;
    }
    const CliRun unknown = run({"rise", "Vulcan", "--json"});
    EXPECT_EQ(unknown.exit, 1);
    EXPECT_FALSE(unknown.messages.empty());
}

TEST_F(SolarSystemCommands, TwilightComesInItsOrder) {
    const CliRun r = run({"twilight", "--date", "2026-11-23", "--json"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    const auto j = r.json();
    const char* order[] = {"astronomicalDawn", "nauticalDawn", "civilDawn", "sunrise", "sunset", "civilDusk", "nauticalDusk",
                           "astronomicalDusk"};
    for (size_t i = 0; i + 1 < 8; ++i) EXPECT_LT(j[order[i]].get<std::string>(), j[order[i + 1]].get<std::string>()) << order[i];
    EXPECT_EQ(j["sunrise"].get<std::string>().substr(0, 16), "2026-11-23T08:25");  // swetest: 07:25:29 UT
}

TEST_F(SolarSystemCommands, MoonGivesItsPhaseAndTheNextFour) {
    const CliRun r = run({"moon", "--date", "2026-11-23", "--time", "20:00", "--json"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    const auto j = r.json();
    EXPECT_EQ(j["phase"], "Full Moon");
    EXPECT_NEAR(j["age"].get<double>(), 14.5, 0.5);
    ASSERT_EQ(j["nextPhases"].size(), 4u);
    const char* phases[] = {"Full Moon", "Last Quarter", "New Moon", "First Quarter"};
    for (size_t i = 0; i < 4; ++i) EXPECT_EQ(j["nextPhases"][i]["phase"], phases[i]);
    EXPECT_EQ(j["nextPhases"][0]["time"].get<std::string>().substr(0, 13), "2026-11-24T15");
}

TEST_F(SolarSystemCommands, EventsListOppositionsAndRefuseBadInput) {
    const CliRun r = run({"events", "--from", "2027-01-01", "--to", "2027-03-01", "--kind", "opposition", "--json"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    const auto events = r.json()["events"];
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0]["bodies"][0], "Jupiter");
    EXPECT_EQ(events[1]["bodies"][0], "Mars");
    EXPECT_TRUE(events[1]["separationDeg"].is_null());
    EXPECT_EQ(events[1]["time"].get<std::string>().substr(0, 10), "2027-02-19");
    const CliRun badKind = run({"events", "--from", "2027-01-01", "--to", "2027-03-01", "--kind", "eclipse"});
    EXPECT_EQ(badKind.exit, 1);
    EXPECT_TRUE(badKind.shown("Unknown event kind")) << badKind.titles();
    const CliRun badDate = run({"events", "--from", "2027-02-30", "--to", "2027-03-01"});
    EXPECT_EQ(badDate.exit, 1);
    EXPECT_TRUE(badDate.shown("Invalid date")) << badDate.titles();
    const CliRun reversed = run({"events", "--from", "2027-03-01", "--to", "2027-01-01"});
    EXPECT_EQ(reversed.exit, 1);
}

TEST_F(SolarSystemCommands, FindNamesABody) {
    const CliRun r = run({"find", "Jupiter", "--date", "2026-11-23", "--time", "20:00", "--json"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    const auto j = r.json();
    EXPECT_EQ(j["name"], "Jupiter");
    EXPECT_EQ(j["type"], "Planet");
    EXPECT_EQ(j["constellation"], "Leo");
}

// Pluto before 1885: the planets table keeps its row with a null place and says so; asked for
// by name, every command answers with the one message and fails.
TEST_F(SolarSystemCommands, PlutoOutsideItsSeriesSpanIsNotShownAsAPlace) {
    const CliRun json = run({"planets", "--date", "1850-06-01", "--time", "22:00", "--json"});
    ASSERT_EQ(json.exit, 0) << json.titles();
    const auto j = json.json();
    ASSERT_EQ(j["bodies"].size(), 10u);
    const auto& pluto = j["bodies"][9];
    EXPECT_EQ(pluto["name"], "Pluto");
    EXPECT_TRUE(pluto["outsideTheory"].get<bool>());
    EXPECT_TRUE(pluto["ra"].is_null());
    EXPECT_TRUE(pluto["alt"].is_null());
    EXPECT_TRUE(pluto["rise"].is_null());
    EXPECT_FALSE(j["bodies"][8]["outsideTheory"].get<bool>());
    EXPECT_TRUE(j["bodies"][8]["ra"].is_number());
    const CliRun text = run({"planets", "--date", "1850-06-01", "--time", "22:00"});
    ASSERT_EQ(text.exit, 0) << text.titles();
    EXPECT_NE(text.out.find("Pluto    not computed for this date (known only from 1885 to 2099)"), std::string::npos) << text.out;
    for (const char* command : {"rise", "find", "info", "where"}) {
        const CliRun r = run({command, "Pluto", "--date", "1850-06-01", "--time", "22:00"});
        EXPECT_NE(r.exit, 0) << command;
        ASSERT_EQ(r.messages.size(), 1u) << command << " " << r.titles();
        EXPECT_EQ(r.messages[0].title, "Pluto is not computed for this date") << command;
        EXPECT_EQ(r.messages[0].detail, "Its place is known only from 1885 to 2099.") << command;
    }
    const CliRun inSpan = run({"rise", "Pluto", "--date", "1990-06-01", "--json"});
    EXPECT_EQ(inSpan.exit, 0) << inSpan.titles();
}

// "Current DeltaT": left at its default the DeltaT shown is the model's; set by the user it is
// the DeltaT shown and used for today.
TEST_F(SolarSystemCommands, PlanetsShowTheCurrentDeltaTForToday) {
    using namespace std::chrono;
    const auto local = floor<minutes>(system_clock::now()) + minutes(60);  // the runs' UT + 60 min
    const auto day = floor<days>(local);
    const year_month_day ymd{day};
    const hh_mm_ss<minutes> clock{local - day};
    char date[16], time[16];  // room for any int, as the optimiser checks
    std::snprintf(date, sizeof date, "%04d-%02u-%02u", static_cast<int>(ymd.year()), static_cast<unsigned>(ymd.month()),
                  static_cast<unsigned>(ymd.day()));
    std::snprintf(time, sizeof time, "%02d:%02d", static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()));
    const CliRun model = run({"planets", "--date", date, "--time", time, "--json"});
    ASSERT_EQ(model.exit, 0) << model.titles();
    EXPECT_EQ(model.json()["deltaTSource"], "formula");
    const double modelDeltaT = model.json()["deltaT"].get<double>();
    ASSERT_EQ(run({"prefs", "set", "deltaTSeconds", "74.5"}).exit, 0);
    const CliRun set = run({"planets", "--date", date, "--time", time, "--json"});
    ASSERT_EQ(set.exit, 0) << set.titles();
    EXPECT_EQ(set.json()["deltaTSource"], "current");
    EXPECT_NEAR(set.json()["deltaT"].get<double>(), 74.5, 0.01);
    EXPECT_GT(std::abs(modelDeltaT - 74.5), 1.0);  // the model's own value is elsewhere
    // The observed past does not move.
    const CliRun past = run({"planets", "--date", "1990-06-01", "--json"});
    ASSERT_EQ(past.exit, 0) << past.titles();
    EXPECT_EQ(past.json()["deltaTSource"], "observed");
    EXPECT_NEAR(past.json()["deltaT"].get<double>(), 56.9, 0.5);
    const CliRun text = run({"planets", "--date", date, "--time", time});
    EXPECT_NE(text.out.find("DeltaT 74.5 s"), std::string::npos) << text.out;
}

}  // namespace
}  // namespace nocturnel
