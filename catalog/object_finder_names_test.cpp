// The finder against the built catalogues (NOCTURNEL_TEST_DATA): typed names and the object
// they must find, names that must fail, and prefix suggestions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "catalog/catalogues.h"
#include "catalog/constellations.h"
#include "catalog/name_index.h"
#include "catalog/object_finder.h"
#include "catalog/object_tables.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class FinderNamesTest : public ::testing::Test {
protected:
    void SetUp() override {
        const char* env = std::getenv("NOCTURNEL_TEST_DATA");
        if (!env || !*env) GTEST_SKIP() << "NOCTURNEL_TEST_DATA is not set";
        const fs::path data = env;
        if (!fs::exists(data / kNameFile)) GTEST_SKIP() << "no built name file in " << data;
        setProgramFolder(data.parent_path());
        closeCatalogues();
        forgetConstellations();
        resetNameIndex();
    }
    void TearDown() override {
        closeCatalogues();
        resetNameIndex();
    }
};

TEST_F(FinderNamesTest, TypedNamesFindTheirObject) {
    const struct { const char* typed; int catalog; int number; } cases[] = {
        {"M 42", kCatalogNGC, 1976},         {"m42", kCatalogNGC, 1976},          {"  M42  ", kCatalogNGC, 1976},
        {"NGC7000", kCatalogNGC, 7000},      {"ngc 7000", kCatalogNGC, 7000},     {"IC 434", kCatalogIC, 434},
        {"C 14", kCatalogNGC, 869},          {"Sh2-155", 52, 155},                {"Cr 399", 11, 399},
        {"UGC 5470", 61, 5470},              {"HIP 91262", kCatalogHipparcos, 91262},
        {"HR 7001", kCatalogHR, 7001},       {"Orion Nebula", kCatalogNGC, 1976}, {"orion nebula", kCatalogNGC, 1976},
        {"Andromeda Galaxy", kCatalogNGC, 224}, {"Ring Nebula", kCatalogNGC, 6720},
        {"Betelgeuse", kCatalogHipparcos, 27989}, {"Polaris", kCatalogHipparcos, 11767},
        {"alpha Lyr", kCatalogHipparcos, 91262}, {"α Lyr", kCatalogHipparcos, 91262},
        {"alf Lyr", kCatalogHipparcos, 91262}, {"ALPHA LYR", kCatalogHipparcos, 91262},
        {"61 Cyg", kCatalogHipparcos, 104214},  {"58 Ori", kCatalogHipparcos, 27989},
        // Other catalogue numbers of an object lead to its record (M45 is kept as Cr 42).
        {"Mel 22", 11, 42},                  {"M 45", 11, 42},                    {"Pleiades", 11, 42},
    };
    for (const auto& c : cases) {
        FoundObject found;
        ASSERT_TRUE(findObjectByName(c.typed, found)) << c.typed;
        EXPECT_EQ(found.catalogCode, c.catalog) << c.typed;
        EXPECT_EQ(found.number, c.number) << c.typed;
    }
}

TEST_F(FinderNamesTest, NamesThatMustFail) {
    const char* cases[] = {"HIP -1", "NGC -5", "M -42", "NGC 0", "Nowhere Nebula", "", "   ", "NGC", "alpha Xyz",
                           "HIP 999999999", "12345"};
    for (const char* typed : cases) {
        MessageCapture messages;
        FoundObject found;
        EXPECT_FALSE(findObjectByName(typed, found)) << typed;
        EXPECT_FALSE(messages.messages().empty()) << typed;
    }
}

TEST_F(FinderNamesTest, DesignationsListEveryName) {
    FoundObject found;
    ASSERT_TRUE(findObjectByName("M 42", found));
    const auto names = objectDesignations(found);
    for (const char* expected : {"M42", "NGC1976", "Orion Nebula"})
        EXPECT_NE(std::find(names.begin(), names.end(), expected), names.end()) << expected;
    ASSERT_TRUE(findObjectByName("Pleiades", found));
    const auto pleiades = objectDesignations(found);
    for (const char* expected : {"M45", "Cr42", "Mel22"})
        EXPECT_NE(std::find(pleiades.begin(), pleiades.end(), expected), pleiades.end()) << expected;
    ASSERT_TRUE(findObjectByName("Vega", found));
    const auto star = objectDesignations(found);
    for (const char* expected : {"Vega", "HIP91262", "HR7001", "alf Lyr", "3 Lyr"})
        EXPECT_NE(std::find(star.begin(), star.end(), expected), star.end()) << expected;
}

TEST_F(FinderNamesTest, Suggestions) {
    const auto orion = suggestObjectNames("orion n", 5);
    EXPECT_NE(std::find(orion.begin(), orion.end(), "Orion Nebula"), orion.end());
    for (const std::string& s : orion) EXPECT_EQ(foldedName(s).rfind("orionn", 0), 0u) << s;
    const auto greek = suggestObjectNames("alpha Ly", 10);
    EXPECT_NE(std::find(greek.begin(), greek.end(), "alf Lyr"), greek.end());
    EXPECT_LE(suggestObjectNames("a", 7).size(), 7u);
    EXPECT_TRUE(suggestObjectNames("zzzz", 7).empty());
}

}  // namespace
}  // namespace nocturnel
