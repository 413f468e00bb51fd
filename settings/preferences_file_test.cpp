#include "settings/preferences_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class PreferencesFile : public ::testing::Test {
protected:
    void SetUp() override {
        home_ = fs::temp_directory_path() /
                ("nocturnel_prefs_file_" + std::to_string(::getpid()) + "_" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(home_);
        fs::create_directories(home_);
        setProgramFolder(home_);
    }
    void TearDown() override { fs::remove_all(home_); }

    std::vector<char> fileBytes() const {
        std::ifstream in(preferencesFilePath(), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    void writeBytes(const std::vector<char>& bytes) const {
        std::ofstream out(preferencesFilePath(), std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    // A saved record with a site that is recognisable after loading.
    static Preferences sample() {
        Preferences p = defaultPreferences();
        copyFixedText(p.siteName, "Pic du Midi");
        setSitePosition(p, 42.9364, -0.1411, 120);
        p.altitudeM = 2877;
        p.mountType = 1;
        p.scopeDrive = 14;
        p.siteMemory[1] = {"Backyard", 45.5f, -4.25f, 3, 210, 60, 0};
        return p;
    }

    fs::path home_;
};

TEST_F(PreferencesFile, MissingFileLeavesTheRecordAndSaysNothing) {
    MessageCapture capture;
    Preferences p = defaultPreferences();
    const Preferences before = p;
    EXPECT_EQ(loadPreferences(p), PreferencesLoad::Missing);
    EXPECT_EQ(std::memcmp(&p, &before, sizeof p), 0);
    EXPECT_TRUE(capture.messages().empty());
}

TEST_F(PreferencesFile, RoundTripKeepsEveryByte) {
    const Preferences saved = sample();
    ASSERT_TRUE(savePreferences(saved));
    Preferences loaded = defaultPreferences();
    ASSERT_EQ(loadPreferences(loaded), PreferencesLoad::Loaded);
    EXPECT_EQ(std::memcmp(&loaded, &saved, sizeof saved), 0);
    EXPECT_FALSE(fs::exists(fs::path(preferencesFilePath()).concat(".tmp")));
}

TEST_F(PreferencesFile, ARecordSavedBeforeTheSelectionCriteriaReadsAsAPrefix) {
    const Preferences saved = sample();
    const std::size_t oldSize = offsetof(Preferences, selection);
    PreferencesFileHeader h{};
    std::memcpy(h.magic, "NOCTPREF", 8);
    h.version = kPreferencesFileVersion;
    h.payloadSize = static_cast<uint32_t>(oldSize);
    h.checksum = crc32(&saved, oldSize);
    std::string bytes(reinterpret_cast<const char*>(&h), sizeof h);
    bytes.append(reinterpret_cast<const char*>(&saved), oldSize);
    std::ofstream(preferencesFilePath(), std::ios::binary) << bytes;
    Preferences loaded = defaultPreferences();
    loaded.selection.visibility = 3;
    ASSERT_EQ(loadPreferences(loaded), PreferencesLoad::Loaded);
    EXPECT_STREQ(loaded.siteName, "Pic du Midi");
    EXPECT_EQ(loaded.altitudeM, 2877);
    EXPECT_EQ(loaded.selection.visibility, 3) << "the criteria keep what they had";
}

TEST_F(PreferencesFile, HeaderLayout) {
    ASSERT_TRUE(savePreferences(sample()));
    const auto bytes = fileBytes();
    ASSERT_EQ(bytes.size(), sizeof(PreferencesFileHeader) + sizeof(Preferences));
    EXPECT_EQ(std::string(bytes.data(), 8), "NOCTPREF");
    PreferencesFileHeader h{};
    std::memcpy(&h, bytes.data(), sizeof h);
    EXPECT_EQ(h.version, kPreferencesFileVersion);
    EXPECT_EQ(h.payloadSize, sizeof(Preferences));
    EXPECT_EQ(h.checksum, crc32(bytes.data() + sizeof h, sizeof(Preferences)));
}

TEST_F(PreferencesFile, DamagedFilesGiveAMessageAndAreNotTouched) {
    ASSERT_TRUE(savePreferences(sample()));
    const auto good = fileBytes();
    struct Case { const char* what; std::vector<char> bytes; const char* title; };
    auto flipped = good;
    flipped[sizeof(PreferencesFileHeader) + 40] ^= 0x5A;
    auto otherVersion = good;
    otherVersion[8] = 7;
    auto otherSize = good;
    otherSize[12] ^= 1;
    auto foreign = good;
    foreign[0] = 'X';
    auto longer = good;
    longer.push_back('!');
    const Case cases[] = {
        {"empty", {}, "The preferences file is too short"},
        {"half a header", std::vector<char>(good.begin(), good.begin() + 10), "The preferences file is too short"},
        {"header only", std::vector<char>(good.begin(), good.begin() + 24), "The preferences file is too short"},
        {"cut record", std::vector<char>(good.begin(), good.end() - 1), "The preferences file is too short"},
        {"flipped byte", flipped, "The preferences file is damaged"},
        {"other version", otherVersion, "The preferences file has another version"},
        {"other record size", otherSize, "The preferences file has another version"},
        {"foreign file", foreign, "The preferences file is not a Nocturnel file"},
        {"trailing byte", longer, "The preferences file is too long"},
    };
    for (const auto& c : cases) {
        writeBytes(c.bytes);
        MessageCapture capture;
        Preferences p = defaultPreferences();
        const Preferences before = p;
        EXPECT_EQ(loadPreferences(p), PreferencesLoad::Damaged) << c.what;
        EXPECT_EQ(std::memcmp(&p, &before, sizeof p), 0) << c.what;
        ASSERT_EQ(capture.messages().size(), 1u) << c.what;
        EXPECT_EQ(capture.lastTitle(), c.title) << c.what;
        EXPECT_FALSE(capture.messages().back().detail.empty()) << c.what;
        EXPECT_EQ(fileBytes(), c.bytes) << c.what << ": the damaged file must stay until a save";
    }
}

TEST_F(PreferencesFile, SaveReplacesADamagedFile) {
    writeBytes({'j', 'u', 'n', 'k'});
    ASSERT_TRUE(savePreferences(sample()));
    Preferences p = defaultPreferences();
    EXPECT_EQ(loadPreferences(p), PreferencesLoad::Loaded);
    EXPECT_STREQ(p.siteName, "Pic du Midi");
}

TEST_F(PreferencesFile, SaveIntoAMissingFolderFailsWithAMessage) {
    setProgramFolder(home_ / "no" / "such" / "folder");
    MessageCapture capture;
    EXPECT_FALSE(savePreferences(sample()));
    EXPECT_EQ(capture.lastTitle(), "Can't save the preferences");
}

TEST(Crc32, KnownCheckValue) {
    EXPECT_EQ(crc32("123456789", 9), 0xCBF43926u);
    EXPECT_EQ(crc32("", 0), 0u);
}

}  // namespace
}  // namespace nocturnel
