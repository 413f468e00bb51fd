// The eyepiece file the builder writes: its records, its check on damaged copies, that the
// program's reader reads it back unchanged, and its place in a full build.
#include "tools/eyepiece_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

#include "catalog/eyepieces.h"
#include "settings/message.h"
#include "settings/program_folder.h"
#include "tools/builder_test_sources.h"
#include "tools/catalog_builder.h"
#include "tools/record_io.h"
#include "tools/test_support.h"

namespace nocturnel {
namespace {

using testing::TempFolder;
namespace fs = std::filesystem;

std::string nameOf(const EyepieceRecord& r) { return std::string(r.name, strnlen(r.name, sizeof r.name)); }

const EyepieceRecord* findByName(const std::vector<EyepieceRecord>& records, const std::string& name) {
    for (const EyepieceRecord& r : records)
        if (nameOf(r) == name) return &r;
    return nullptr;
}

TEST(EyepieceRecords, CommonDesignsAtTheirApparentFields) {
    const std::vector<EyepieceRecord> records = eyepieceRecords();
    struct Expected {
        const char* name;
        float focalMm, apparentDeg;
    };
    const Expected expected[] = {
        {"Pl\xF6ssl 40mm", 40, 43}, {"Pl\xF6ssl 32mm", 32, 52}, {"Pl\xF6ssl 25mm", 25, 52},
        {"Pl\xF6ssl 20mm", 20, 52}, {"Pl\xF6ssl 15mm", 15, 52}, {"Pl\xF6ssl 12mm", 12, 52},
        {"Pl\xF6ssl 10mm", 10, 52}, {"Pl\xF6ssl 6mm", 6, 52},   {"Wide 68\xB0 24mm", 24, 68},
        {"Wide 68\xB0 16mm", 16, 68}, {"Ultra wide 82\xB0 30mm", 30, 82}, {"Ultra wide 82\xB0 14mm", 14, 82},
    };
    for (const Expected& e : expected) {
        const EyepieceRecord* r = findByName(records, e.name);
        ASSERT_NE(r, nullptr) << e.name;
        EXPECT_EQ(r->focalLengthMm, e.focalMm) << e.name;
        EXPECT_EQ(r->apparentFieldDeg, e.apparentDeg) << e.name;
    }
}

TEST(EyepieceRecords, WrittenFileReadsBackThroughTheProgramsReader) {
    TempFolder folder;
    const fs::path previousFolder = programFolder();
    struct Restore {
        fs::path folder;
        ~Restore() { setProgramFolder(folder); }
    } restore{previousFolder};
    setProgramFolder(folder.path());
    ASSERT_TRUE(ensureProgramFolders());
    const std::vector<EyepieceRecord> written = eyepieceRecords();
    ASSERT_TRUE(writeWholeFile(dataPath(kEyepieceFile), recordFileBytes<EyepieceRecord>(1, written)));
    std::string error;
    EXPECT_TRUE(checkEyepieceFile(dataPath(kEyepieceFile), error)) << error;

    MessageCapture capture;
    std::vector<EyepieceRecord> read;
    ASSERT_TRUE(loadEyepieces(read));
    EXPECT_TRUE(capture.messages().empty());
    ASSERT_EQ(read.size(), written.size());
    for (std::size_t i = 0; i < read.size(); ++i) {
        EXPECT_EQ(std::memcmp(&read[i], &written[i], sizeof read[i]), 0) << i;
        EXPECT_EQ(eyepieceName(read[i]), nameOf(written[i])) << i;
    }
}

TEST(EyepieceRecords, CheckFindsEachBrokenRule) {
    TempFolder folder;
    const fs::path file = folder.path() / "nocturnel_eyepiece.ppc";
    struct Case {
        const char* what;
        std::function<std::string()> bytes;
        const char* error;  // part of the reported reason
    };
    const auto with = [](const std::function<void(std::vector<EyepieceRecord>&)>& change) {
        std::vector<EyepieceRecord> records = eyepieceRecords();
        change(records);
        return recordFileBytes<EyepieceRecord>(1, records);
    };
    const Case cases[] = {
        {"no records", [&] { return with([](auto& r) { r.clear(); }); }, "no eyepieces"},
        {"empty name", [&] { return with([](auto& r) { std::memset(r[3].name, 0, sizeof r[3].name); }); },
         "record 3: name empty"},
        {"unterminated name", [&] { return with([](auto& r) { std::memset(r[0].name, 'A', sizeof r[0].name); }); },
         "record 0: name empty or not terminated"},
        {"name twice", [&] { return with([](auto& r) { std::memcpy(r[5].name, r[4].name, sizeof r[5].name); }); },
         "record 5: name"},
        {"zero focal length", [&] { return with([](auto& r) { r[2].focalLengthMm = 0; }); }, "record 2: focal length"},
        {"focal length not a number",
         [&] { return with([](auto& r) { r[1].focalLengthMm = std::numeric_limits<float>::quiet_NaN(); }); },
         "record 1: focal length"},
        {"apparent field too wide", [&] { return with([](auto& r) { r.back().apparentFieldDeg = 150; }); },
         "apparent field"},
        {"apparent field negative", [&] { return with([](auto& r) { r[6].apparentFieldDeg = -52; }); },
         "record 6: apparent field"},
        {"records of another size",
         [] {
             struct Short {
                 char name[24];
                 float focalLengthMm;
             };
             return recordFileBytes<Short>(1, std::vector<Short>(3, Short{"Pl", 25}));
         },
         "record size 28, expected 32"},
        {"cut short", [&] { return with([](auto&) {}).substr(0, 16 + 32 * 2 + 5); }, "length disagrees"},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(writeWholeFile(file, c.bytes())) << c.what;
        std::string error;
        EXPECT_FALSE(checkEyepieceFile(file, error)) << c.what;
        EXPECT_NE(error.find(c.error), std::string::npos) << c.what << ": " << error;
        EXPECT_EQ(error.rfind("nocturnel_eyepiece.ppc", 0), 0u) << c.what << ": " << error;
    }
    std::string error;
    EXPECT_FALSE(checkEyepieceFile(folder.path() / "absent.ppc", error));
    EXPECT_EQ(error, "absent.ppc: cannot be read");
}

TEST(EyepieceRecords, BuildWritesTheFileAndNamesItsSource) {
    TempFolder sources, out;
    ASSERT_TRUE(testing::writeSmallSources(sources.path()));
    MessageCapture capture;
    BuildReport report;
    ASSERT_EQ(buildCatalogues({sources.path(), out.path(), {}}, &report), 0)
        << (capture.messages().empty() ? "" : capture.messages().front().text());
    DatabaseHeader header{};
    const std::vector<EyepieceRecord> built = testing::readRecords<EyepieceRecord>(out.path() / kEyepieceFile, &header);
    EXPECT_EQ(header.version, 1u);
    EXPECT_EQ(header.recordSize, 32u);
    const std::vector<EyepieceRecord> expected = eyepieceRecords();
    ASSERT_EQ(built.size(), expected.size());
    EXPECT_EQ(std::memcmp(built.data(), expected.data(), built.size() * sizeof(EyepieceRecord)), 0);
    bool reported = false;
    for (const BuiltFile& f : report.files) reported |= f.name == kEyepieceFile && f.records == expected.size();
    EXPECT_TRUE(reported);
    std::string text;
    ASSERT_TRUE(readWholeFile(out.path() / "SOURCES", text));
    EXPECT_NE(text.find("generic eyepiece designs, no external source"), std::string::npos);
    EXPECT_NE(text.find("-> nocturnel_eyepiece.ppc"), std::string::npos);
}

}  // namespace
}  // namespace nocturnel
