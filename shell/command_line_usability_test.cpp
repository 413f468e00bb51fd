// The command line as a new observer meets it, in-process: names wherever a place is asked,
// longitudes with their hemisphere, no saved state damaged from an empty source, lists shown
// with their stored indexes, errors that say what to do, and every number checked.
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

#include "catalog/catalogues.h"
#include "catalog/formats.h"
#include "settings/preferences_file.h"
#include "settings/program_folder.h"
#include "shell/cli_test_runner.h"
#include "shell/target_names.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

struct Star {
    const char* name;
    double raHours, decDeg;  // J2000
};
constexpr Star kVega{"Vega", 18.615649, 38.783689};
constexpr Star kDeneb{"Deneb", 20.690532, 45.280339};

std::string fileBytes(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class CommandLineUsability : public ::testing::Test {
protected:
    void SetUp() override {
        home_ = fs::temp_directory_path() / ("nocturnel_cli_use_" + std::to_string(::getpid()) + "_" +
                                             ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(home_);
        fs::create_directories(home_ / "data");
        closeCatalogues();
    }
    void TearDown() override {
        closeCatalogues();
        clearTargetFinders();
        fs::remove_all(home_);
    }

    CliRun run(std::vector<std::string> args) {
        prefs() = Preferences{};
        args.insert(args.begin(), {"--home", home_.string(), "--date", "2026-01-15", "--time", "22:00"});
        return runCommandLine(std::move(args));
    }

    // Two bright stars in a default star file of the temporary program folder.
    void writeDefaultStars() {
        std::vector<DefaultStarRecord> stars;
        for (const Star& s : {kVega, kDeneb}) {
            DefaultStarRecord r{};
            r.raHours = static_cast<float>(s.raHours);
            r.decDeg = static_cast<float>(s.decDeg);
            std::snprintf(r.name, sizeof r.name, "%s", s.name);
            stars.push_back(r);
        }
        const DatabaseHeader header{1, 0, static_cast<uint32_t>(stars.size()), sizeof(DefaultStarRecord)};
        std::FILE* f = std::fopen((home_ / "data" / "nocturnel_default_stars.ppc").c_str(), "wb");
        ASSERT_NE(f, nullptr);
        std::fwrite(&header, sizeof header, 1, f);
        std::fwrite(stars.data(), sizeof(DefaultStarRecord), stars.size(), f);
        std::fclose(f);
    }

    // The built catalogues (NOCTURNEL_TEST_DATA) as the folder's data; false when absent.
    bool useBuiltCatalogues() {
        const char* data = std::getenv("NOCTURNEL_TEST_DATA");
        if (!data || !*data || !fs::exists(fs::path(data) / "nocturnel_obj_18k.ppc")) return false;
        fs::remove_all(home_ / "data");
        fs::create_directory_symlink(data, home_ / "data");
        return true;
    }

    fs::path home_;
};

// ---- 1. Names wherever a place is asked ----

TEST_F(CommandLineUsability, NamesGiveTheSamePlaceAsTheirCoordinates) {
    writeDefaultStars();
    const CliRun byName = run({"--json", "where", "Vega"});
    ASSERT_EQ(byName.exit, 0) << byName.titles();
    const CliRun byPlace = run({"--json", "where", "--ra", "18.615649", "--dec", "38.783689"});
    ASSERT_EQ(byPlace.exit, 0) << byPlace.titles();
    // The default star file keeps floats: the places agree within a tenth of an arcsecond.
    EXPECT_NEAR(byName.json()["alt"].get<double>(), byPlace.json()["alt"].get<double>(), 3e-5);
    EXPECT_NEAR(byName.json()["az"].get<double>(), byPlace.json()["az"].get<double>(), 3e-5);
    EXPECT_EQ(byName.json()["name"], "Vega");

    // The chart centred by name has Vega under its centre pixel.
    const CliRun chart =
        run({"--json", "chart", "--center", "vega", "--zoom", "6", "--size", "401x401", "--at", "200,200"});
    ASSERT_EQ(chart.exit, 0) << chart.titles();
    EXPECT_NEAR(chart.json()["ra"].get<double>(), kVega.raHours, 0.01);
    EXPECT_NEAR(chart.json()["dec"].get<double>(), kVega.decDeg, 0.1);

    const CliRun unknown = run({"where", "Vegaa"});
    EXPECT_EQ(unknown.exit, 1);
    EXPECT_FALSE(unknown.messages.empty());
}

TEST_F(CommandLineUsability, ChartRaTakesTheSexagesimalTextOfWhere) {
    const CliRun r = run({"--json", "chart", "--ra", "5:35:17", "--dec", "-5:23:28", "--zoom", "6", "--size", "401x401",
                          "--at", "200,200"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    EXPECT_NEAR(r.json()["ra"].get<double>(), 5 + 35 / 60.0 + 17 / 3600.0, 0.01);
    EXPECT_NEAR(r.json()["dec"].get<double>(), -(5 + 23 / 60.0 + 28 / 3600.0), 0.1);
}

TEST_F(CommandLineUsability, RegisteredFindersAnswerBeforeTheCatalogues) {
    addTargetFinder([](std::string_view name, const ObservingMoment&, ResolvedTarget& out) {
        if (name != "Jupiter") return false;
        out = {"Jupiter", 7.5, 22.0};
        return true;
    });
    const CliRun r = run({"--json", "where", "Jupiter"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    const CliRun place = run({"--json", "where", "--ra", "7.5", "--dec", "22"});
    EXPECT_DOUBLE_EQ(r.json()["alt"].get<double>(), place.json()["alt"].get<double>());
}

TEST_F(CommandLineUsability, CatalogueNamesFromTheBuiltCatalogues) {
    if (!useBuiltCatalogues()) GTEST_SKIP() << "NOCTURNEL_TEST_DATA has no object catalogue";
    const CliRun r = run({"--json", "where", "M 42"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    const CliRun place = run({"--json", "where", "--ra", "5:35:17", "--dec", "-5:23:28"});
    EXPECT_NEAR(r.json()["alt"].get<double>(), place.json()["alt"].get<double>(), 0.05);
    EXPECT_NEAR(r.json()["az"].get<double>(), place.json()["az"].get<double>(), 0.1);
    // Typed as two words, as observers do.
    const CliRun words = run({"--json", "where", "M", "42"});
    ASSERT_EQ(words.exit, 0) << words.titles();
    EXPECT_EQ(words.json()["alt"], r.json()["alt"]);
}

// ---- 2. The longitude trap ----

TEST_F(CommandLineUsability, LongitudesWithTheirHemisphere) {
    struct Case {
        const char* typed;
        double westDeg;  // NAN: refused
    };
    const Case cases[] = {
        {"111.6W", 111.6},      {"111.6 w", 111.6},   {"111.6E", -111.6},       {"111:36:00 W", 111.6},
        {"111:36:00E", -111.6}, {"111.6", 111.6},     {"-111.6", -111.6},       {"+2.35", 2.35},
        {"-111.6W", NAN},       {"181W", NAN},        {"111.6X", NAN},          {"nan", NAN},
        {"1e308", NAN},         {"W", NAN},
    };
    for (const Case& c : cases) {
        const CliRun r = run({"--json", "site", "set", "--lat", "31.96N", "--lon", c.typed, "--utc-offset", "-420"});
        if (std::isnan(c.westDeg)) {
            EXPECT_EQ(r.exit, 1) << c.typed;
            continue;
        }
        ASSERT_EQ(r.exit, 0) << c.typed << r.titles();
        EXPECT_NEAR(r.json()["longitudeDeg"].get<double>(), c.westDeg, 1e-4) << c.typed;
        EXPECT_EQ(r.json()["longitudeSense"], "positive west");
    }
    const CliRun south = run({"--json", "site", "set", "--lat", "33:52:08 S", "--lon", "151.2E", "--utc-offset", "600"});
    ASSERT_EQ(south.exit, 0) << south.titles();
    EXPECT_NEAR(south.json()["latitudeDeg"].get<double>(), -(33 + 52 / 60.0 + 8 / 3600.0), 1e-4);

    // prefs set reads the same texts.
    ASSERT_EQ(run({"prefs", "set", "longitudeDeg", "111.6E"}).exit, 0);
    EXPECT_NEAR(run({"--json", "site", "show"}).json()["longitudeDeg"].get<double>(), -111.6, 1e-4);
}

TEST_F(CommandLineUsability, SiteShowSaysWhichWayTheLongitudeCounts) {
    ASSERT_EQ(run({"site", "set", "--lat", "31.96N", "--lon", "111.6W", "--utc-offset", "-420"}).exit, 0);
    const CliRun r = run({"site", "show"});
    ASSERT_EQ(r.exit, 0);
    EXPECT_NE(r.out.find("111\xC2\xB0" "36'00 W"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("positive west"), std::string::npos) << r.out;
}

// ---- 3. No silent damage ----

TEST_F(CommandLineUsability, RecallOfAnEmptyMemoryChangesNothing) {
    ASSERT_EQ(run({"site", "set", "--lat", "31.96N", "--lon", "111.6W", "--utc-offset", "-420", "--name",
                   "Kitt Peak"}).exit, 0);
    const fs::path file = home_ / kPreferencesFileName;
    const std::string before = fileBytes(file);
    const CliRun r = run({"site", "recall", "2"});
    EXPECT_EQ(r.exit, 1);
    ASSERT_FALSE(r.messages.empty());
    EXPECT_EQ(r.messages[0].title, "Site2 is empty");
    EXPECT_EQ(fileBytes(file), before);
    EXPECT_EQ(run({"--json", "site", "show"}).json()["name"], "Kitt Peak");
}

TEST_F(CommandLineUsability, TheDefaultSiteNeverReplacesAStoredMemory) {
    ASSERT_EQ(run({"site", "store", "3"}).exit, 0);  // an empty memory may take the default site
    ASSERT_EQ(run({"site", "set", "--lat", "31.96N", "--lon", "111.6W", "--utc-offset", "-420", "--name",
                   "Kitt Peak"}).exit, 0);
    ASSERT_EQ(run({"site", "store", "1"}).exit, 0);
    // Back to the site of a fresh record, field by field: it may not replace Kitt Peak.
    ASSERT_EQ(run({"prefs", "set", "siteName", "None"}).exit, 0);
    ASSERT_EQ(run({"prefs", "set", "latitudeDeg", "48.1"}).exit, 0);
    ASSERT_EQ(run({"prefs", "set", "longitudeDeg", "1.8"}).exit, 0);
    const CliRun r = run({"site", "store", "1"});
    EXPECT_EQ(r.exit, 1);
    EXPECT_EQ(r.messages.at(0).title, "The current site is the default site");
    EXPECT_EQ(run({"--json", "site", "show"}).json()["memories"][0]["name"], "Kitt Peak");
}

TEST_F(CommandLineUsability, AlignReportWithoutAnAlignmentKeepsTheLastReport) {
    const fs::path report = home_ / "last_report.txt";
    std::ofstream(report) << "the report of last night\n";
    const CliRun r = run({"align", "report", "-o", report.string()});
    EXPECT_EQ(r.exit, 1);
    EXPECT_TRUE(r.shown("Please do 2 stars alignment first.")) << r.titles();
    EXPECT_EQ(fileBytes(report), "the report of last night\n");
}

// ---- 5. Lists the user can see ----

TEST_F(CommandLineUsability, ListsShowTheirStoredIndexes) {
    CliRun r = run({"--json", "prefs", "list", "scopeDrive"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    const auto drives = r.json();
    bool bbox = false;
    for (const auto& e : drives["entries"]) bbox = bbox || (e["index"] == 3 && e["label"] == "BBox");
    EXPECT_TRUE(bbox) << r.out;
    EXPECT_EQ(drives["current"], 5);

    r = run({"prefs", "show", "skyQuality"});
    ASSERT_EQ(r.exit, 0);
    EXPECT_NE(r.out.find("0  Bright town"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("4  Desert/Mountain"), std::string::npos) << r.out;

    r = run({"--json", "prefs", "show", "Const. Names"});
    ASSERT_EQ(r.exit, 0) << r.titles();
    EXPECT_EQ(r.json()["field"], "displayBox[0]");

    r = run({"prefs", "list", "displayBox"});
    ASSERT_EQ(r.exit, 0);
    EXPECT_NE(r.out.find("displayBox[14] = 0   \"Telrad\""), std::string::npos) << r.out;
}

TEST_F(CommandLineUsability, PortsAndIndexesOutsideTheirListAreRefusedWithTheList) {
    CliRun r = run({"prefs", "set", "scopePort", "9"});  // no machine here has nine serial ports
    EXPECT_EQ(r.exit, 1);
    EXPECT_NE(r.out.find("0  None"), std::string::npos) << r.out;
    r = run({"prefs", "set", "skyQuality", "7"});
    EXPECT_EQ(r.exit, 1);
    EXPECT_NE(r.out.find("Desert/Mountain"), std::string::npos) << r.out;
    r = run({"prefs", "set", "eyepieceIndex", "3"});  // this folder has no eyepiece database
    EXPECT_EQ(r.exit, 1);
    EXPECT_EQ(run({"prefs", "set", "scopePort", "None"}).exit, 0);
    // With --json the entries come inside the one JSON error.
    r = run({"--json", "prefs", "set", "scopeDrive", "99"});
    EXPECT_EQ(r.exit, 1);
    const auto j = r.json();
    EXPECT_EQ(j["error"]["title"], "Invalid value \"99\" for scopeDrive");
    EXPECT_NE(j["messages"][1]["detail"].get<std::string>().find("3 BBox"), std::string::npos) << r.out;
}

// ---- 6. Errors that help ----

TEST_F(CommandLineUsability, UnknownCommandNamesTheCommands) {
    const CliRun r = run({"whre", "Vega"});
    EXPECT_EQ(r.exit, 2);
    ASSERT_EQ(r.messages.size(), 1u);
    EXPECT_EQ(r.messages[0].title, "Unknown command \"whre\"");
    EXPECT_NE(r.messages[0].detail.find("where"), std::string::npos);
    EXPECT_NE(r.messages[0].detail.find("scope"), std::string::npos);
}

TEST_F(CommandLineUsability, JsonErrorsComeOnStandardOutput) {
    const CliRun r = run({"--json", "where", "--ra", "nan", "--dec", "0"});
    EXPECT_NE(r.exit, 0);
    const auto j = r.json();
    EXPECT_EQ(j["error"]["caption"], "Information");
    EXPECT_EQ(j["error"]["title"], "Invalid right ascension \"nan\"");
    EXPECT_FALSE(j["error"]["detail"].get<std::string>().empty());
    const CliRun parse = run({"--json", "frobnicate"});
    EXPECT_EQ(parse.exit, 2);
    EXPECT_EQ(parse.json()["error"]["title"], "Unknown command \"frobnicate\"");
}

TEST_F(CommandLineUsability, MissingCataloguesNameTheFolderLookedIn) {
    const CliRun r = run({"chart", "-o", (home_ / "chart.png").string()});
    EXPECT_EQ(r.exit, 1);
    bool named = false;
    for (const Message& m : r.messages) named = named || m.detail.find((home_ / "data").string()) != std::string::npos;
    EXPECT_TRUE(named) << r.titles();
}

TEST_F(CommandLineUsability, JsonNumbersCarryTheDigitsOfTheRecord) {
    ASSERT_EQ(run({"site", "set", "--lat", "31.96", "--lon", "111.6W", "--utc-offset", "-420"}).exit, 0);
    ASSERT_EQ(run({"prefs", "set", "deltaTSeconds", "69.3"}).exit, 0);
    const CliRun site = run({"--json", "site", "show"});
    EXPECT_NE(site.out.find("31.96,"), std::string::npos) << site.out;
    EXPECT_NE(site.out.find("111.6,"), std::string::npos) << site.out;
    const CliRun all = run({"--json", "prefs", "show"});
    EXPECT_NE(all.out.find("\"deltaTSeconds\": 69.3,"), std::string::npos) << all.out;
}

// ---- 7. Numbers in range or refused ----

TEST_F(CommandLineUsability, ImpossibleNumbersAreRefusedWithAMessage) {
    const std::vector<std::vector<std::string>> cases = {
        {"where", "--ra", "nan", "--dec", "0"},
        {"where", "--ra", "inf", "--dec", "0"},
        {"where", "--ra", "1e308", "--dec", "0"},
        {"where", "--ra", "25", "--dec", "0"},
        {"where", "--ra", "5", "--dec", "91"},
        {"where", "--ra", "5", "--dec", "0", "--level", "99"},
        {"mean", "--ra", "5", "--dec", "0", "--level", "nan"},
        {"chart", "--ra", "nan", "--dec", "0", "--at", "1,1"},
        {"chart", "--ra", "5", "--dec", "-inf", "--at", "1,1"},
        {"chart", "--az", "1e308", "--alt", "0", "--at", "1,1"},
        {"chart", "--zoom", "13", "--at", "1,1"},
        {"chart", "--zoom", "nan", "--at", "1,1"},
        {"chart", "--size", "99999999999x10", "--at", "1,1"},
        {"chart", "--at", "1e308,1"},
        {"align", "--star1", "Vega,20:00:00,25:00:00,38:47:00,1,2", "--star2", "Deneb,20:00:00,20:41:00,45:16:00,3,4"},
        {"align", "--star1", "Vega,20:00:00,18:36:00,91,1,2", "--star2", "Deneb,20:00:00,20:41:00,45:16:00,3,4"},
        {"align", "--star1", "Vega,20:00:00,18:36:00,38,nan,2", "--star2", "Deneb,20:00:00,20:41:00,45:16:00,3,4"},
        {"align", "map", "--ra", "25", "--dec", "91"},
        {"scope", "goto", "--ra", "25", "--dec", "0"},
        {"scope", "sync", "--ra", "5", "--dec", "nan"},
        {"site", "set", "--lat", "91", "--lon", "0", "--utc-offset", "0"},
        {"prefs", "set", "deltaTSeconds", "nan"},
        {"where", "HIP -1"},
        {"where", "NGC -5"},
        {"scope", "goto", "M +42"},
        {"scope", "move", "n", "--seconds", "1e308"},
        {"scope", "simulate", "--seconds", "nan"},
        {"scope", "simulate", "--ra", "25"},
    };
    for (const auto& args : cases) {
        std::string line;
        for (const std::string& a : args) line += a + " ";
        const CliRun r = run(args);
        EXPECT_NE(r.exit, 0) << line;
        EXPECT_FALSE(r.messages.empty()) << line;
    }
}

}  // namespace
}  // namespace nocturnel
