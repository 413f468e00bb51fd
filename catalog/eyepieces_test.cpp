// The eyepiece database: reading hand-made files (record sizes, damage, absence), the
// telescope's focal length from the preference lists, and the true field and its label.
#include "catalog/eyepieces.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include "catalog/catalog_test_support.h"
#include "settings/message.h"
#include "settings/preference_lists.h"

namespace nocturnel {
namespace {

using test::CatalogFolderTest;

EyepieceRecord eyepiece(const char* name, float focalMm, float apparentDeg) {
    EyepieceRecord e{};
    std::memcpy(e.name, name, std::min(std::strlen(name), sizeof e.name));
    e.focalLengthMm = focalMm;
    e.apparentFieldDeg = apparentDeg;
    return e;
}

// Records of `size` bytes: the eyepiece first, then bytes 0xEE up to the size.
void writeEyepieceFile(const std::vector<EyepieceRecord>& records, uint32_t size, int64_t declaredCount = -1) {
    std::vector<uint8_t> bytes = test::header(
        1, declaredCount >= 0 ? static_cast<uint32_t>(declaredCount) : static_cast<uint32_t>(records.size()), size);
    for (const EyepieceRecord& r : records) {
        const auto* raw = reinterpret_cast<const uint8_t*>(&r);
        const std::size_t kept = std::min<std::size_t>(size, sizeof r);
        bytes.insert(bytes.end(), raw, raw + kept);
        bytes.insert(bytes.end(), size - kept, 0xEE);
    }
    test::writeBytes(kEyepieceFile, bytes);
}

// Sets the telescope of the preferences by the texts its two lists show.
void setTelescope(const char* diameterMm, const char* focalRatio) {
    prefs().scopeDiameterIndex = indexOfLabel(*findPreferenceList("scopeDiameterIndex"), diameterMm);
    prefs().fRatioIndex = indexOfLabel(*findPreferenceList("fRatioIndex"), focalRatio);
    ASSERT_GE(prefs().scopeDiameterIndex, 0) << diameterMm;
    ASSERT_GE(prefs().fRatioIndex, 0) << focalRatio;
}

class EyepieceFile : public CatalogFolderTest {};

TEST_F(EyepieceFile, RecordsComeInFileOrderWhateverTheRecordSize) {
    const std::vector<EyepieceRecord> written = {
        eyepiece("Pl\xF6ssl 25mm", 25, 52),
        eyepiece("ABCDEFGHIJKLMNOPQRSTUVWX", 12.5f, 82),  // fills the name without a terminator
        eyepiece("Wide 68\xB0 16mm", 16, 68),
    };
    for (uint32_t size : {32u, 40u}) {
        writeEyepieceFile(written, size);
        MessageCapture capture;
        std::vector<EyepieceRecord> read = {eyepiece("stale", 1, 1)};
        ASSERT_TRUE(loadEyepieces(read)) << size;
        EXPECT_TRUE(capture.messages().empty()) << size;
        ASSERT_EQ(read.size(), 3u) << size;
        EXPECT_EQ(eyepieceName(read[0]), "Pl\xF6ssl 25mm") << size;
        EXPECT_EQ(eyepieceName(read[1]), "ABCDEFGHIJKLMNOPQRSTUVW") << size;
        EXPECT_EQ(eyepieceName(read[2]), "Wide 68\xB0 16mm") << size;
        EXPECT_FLOAT_EQ(read[1].focalLengthMm, 12.5f) << size;
        EXPECT_FLOAT_EQ(read[1].apparentFieldDeg, 82.0f) << size;
        EXPECT_FLOAT_EQ(read[2].focalLengthMm, 16.0f) << size;
    }
}

TEST_F(EyepieceFile, EachUseReadsTheFileAnew) {
    writeEyepieceFile({eyepiece("A", 25, 52)}, 32);
    std::vector<EyepieceRecord> read;
    ASSERT_TRUE(loadEyepieces(read));
    writeEyepieceFile({eyepiece("A", 25, 52), eyepiece("B", 10, 52)}, 32);
    ASSERT_TRUE(loadEyepieces(read));
    EXPECT_EQ(read.size(), 2u);
    std::filesystem::remove(dataPath(kEyepieceFile));
    MessageCapture capture;
    EXPECT_FALSE(loadEyepieces(read));
    EXPECT_TRUE(read.empty());
    EXPECT_EQ(capture.lastTitle(), "Could not find nocturnel_eyepiece.ppc");
}

TEST_F(EyepieceFile, DamagedOrMissingFilesAreReported) {
    struct Case {
        const char* what;
        void (*write)();
        bool loads;
        std::size_t records;
        const char* message;  // nullptr: none
    };
    const Case cases[] = {
        {"absent", [] {}, false, 0, "Could not find nocturnel_eyepiece.ppc"},
        {"shorter than its header", [] { test::writeBytes(kEyepieceFile, {1, 0, 0, 0, 0, 0}); }, false, 0,
         "Could not find nocturnel_eyepiece.ppc"},
        {"no records", [] { writeEyepieceFile({}, 32); }, true, 0, nullptr},
        {"records shorter than an eyepiece", [] { writeEyepieceFile({eyepiece("A", 25, 52)}, 28); }, false, 0,
         "Could not retrieve eyepiece record!"},
        {"count beyond the data",
         [] { writeEyepieceFile({eyepiece("A", 25, 52), eyepiece("B", 10, 52)}, 32, 3); }, false, 0,
         "Could not retrieve eyepiece record! 2"},
        {"last record cut short",
         [] {
             writeEyepieceFile({eyepiece("A", 25, 52), eyepiece("B", 10, 52)}, 32);
             std::filesystem::resize_file(dataPath(kEyepieceFile), 16 + 32 + 20);
         },
         false, 0, "Could not retrieve eyepiece record! 1"},
    };
    for (const Case& c : cases) {
        std::filesystem::remove(dataPath(kEyepieceFile));
        c.write();
        MessageCapture capture;
        std::vector<EyepieceRecord> read = {eyepiece("stale", 1, 1)};
        EXPECT_EQ(loadEyepieces(read), c.loads) << c.what;
        EXPECT_EQ(read.size(), c.records) << c.what;
        if (c.message == nullptr) {
            EXPECT_TRUE(capture.messages().empty()) << c.what;
        } else {
            EXPECT_EQ(capture.messages().size(), 1u) << c.what;
            EXPECT_EQ(capture.lastTitle(), c.message) << c.what;
        }
    }
}

TEST_F(EyepieceFile, TelescopeFocalLengthFromTheListsShown) {
    struct Case {
        const char* diameterMm;
        const char* focalRatio;
        double focalMm;
    };
    const Case cases[] = {{"150", "8", 1200}, {"203", "10", 2030}, {"50", "15", 750}, {"762", "4", 3048}, {"80", "5", 400}};
    for (const Case& c : cases) {
        setTelescope(c.diameterMm, c.focalRatio);
        EXPECT_DOUBLE_EQ(telescopeFocalLengthMm(), c.focalMm) << c.diameterMm << " f/" << c.focalRatio;
    }
    for (auto [diameter, ratio] : {std::pair{-1, 0}, std::pair{0, 12}, std::pair{18, 0}}) {
        prefs().scopeDiameterIndex = diameter;
        prefs().fRatioIndex = ratio;
        MessageCapture capture;
        EXPECT_EQ(telescopeFocalLengthMm(), 0.0) << diameter << " " << ratio;
        EXPECT_EQ(capture.lastTitle(), "Unknown telescope focal length");
    }
}

TEST(EyepieceOptics, MagnificationTrueFieldAndLabel) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    struct Case {
        float focalMm, apparentDeg;
        double telescopeMm;
        double magnification, trueFieldDeg;
        const char* label;
    };
    const Case cases[] = {
        {25, 52, 1200, 48, 52.0 / 48, "25mm 52\xB0  x48  1.1\xB0"},
        {40, 43, 400, 10, 4.3, "40mm 43\xB0  x10  4.3\xB0"},
        {12.5f, 82, 2030, 162.4, 82 / 162.4, "12.5mm 82\xB0  x162  30'"},
        {10, 52, 2030, 203, 52.0 / 203, "10mm 52\xB0  x203  15'"},
        {32, 52, 400, 12.5, 4.16, "32mm 52\xB0  x13  4.2\xB0"},
        // Values that give no field.
        {0, 52, 1200, 0, 0, ""},
        {-25, 52, 1200, 0, 0, ""},
        {kNan, 52, 1200, 0, 0, ""},
        {25, 0, 1200, 48, 0, ""},
        {25, 200, 1200, 48, 0, ""},
        {25, kNan, 1200, 48, 0, ""},
        {25, 52, 0, 0, 0, ""},
        {25, 52, -1200, 0, 0, ""},
    };
    for (const Case& c : cases) {
        const EyepieceRecord e = eyepiece("e", c.focalMm, c.apparentDeg);
        const std::string what = std::to_string(c.focalMm) + "mm " + std::to_string(c.apparentDeg) + " on " +
                                 std::to_string(c.telescopeMm);
        EXPECT_NEAR(eyepieceMagnification(e, c.telescopeMm), c.magnification, 1e-9) << what;
        EXPECT_NEAR(eyepieceTrueFieldDeg(e, c.telescopeMm), c.trueFieldDeg, 1e-9) << what;
        EXPECT_EQ(eyepieceFieldLabel(e, c.telescopeMm), c.label) << what;
    }
}

TEST_F(EyepieceFile, ChosenEyepieceOnThePreferencesTelescope) {
    writeEyepieceFile({eyepiece("Pl\xF6ssl 40mm", 40, 43), eyepiece("Pl\xF6ssl 25mm", 25, 52), eyepiece("Broken", 0, 52)},
                      32);
    setTelescope("150", "8");
    {
        prefs().eyepieceIndex = 1;
        MessageCapture capture;
        EyepieceField field;
        ASSERT_TRUE(chosenEyepieceField(field));
        EXPECT_TRUE(capture.messages().empty());
        EXPECT_EQ(eyepieceName(field.eyepiece), "Pl\xF6ssl 25mm");
        EXPECT_NEAR(field.trueFieldDeg, 52.0 / 48, 1e-9);
        EXPECT_EQ(field.label, "25mm 52\xB0  x48  1.1\xB0");
    }
    struct Failure {
        int index;
        const char* message;
    };
    for (const Failure& f : {Failure{3, "Eyepiece 3 is not in the database (3 eyepieces)."},
                             Failure{400, "Eyepiece 400 is not in the database (3 eyepieces)."},
                             Failure{-1, "Eyepiece -1 is not in the database (3 eyepieces)."},
                             Failure{2, "Eyepiece record is not usable"}}) {
        prefs().eyepieceIndex = f.index;
        MessageCapture capture;
        EyepieceField field;
        EXPECT_FALSE(chosenEyepieceField(field)) << f.index;
        EXPECT_EQ(field.trueFieldDeg, 0.0) << f.index;
        EXPECT_EQ(capture.lastTitle(), f.message) << f.index;
    }
}

}  // namespace
}  // namespace nocturnel
