#include "scope/drive_types.h"

#include <string>

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

using F = DriveFamily;

struct DriveRow {
    int code;
    const char* name;
    F family;
};

// Every code of the drive table: list name and the module that serves it.
const DriveRow kDriveRows[] = {
    {0, "None", F::None},           {1, "AAM Skyvector", F::EncoderBox}, {2, "AutoStar", F::Lx200},
    {3, "BBox", F::EncoderBox},     {4, "Dave Ek", F::EncoderBox},        {5, "LX200", F::Lx200},
    {6, "Magelan-I", F::Magellan},  {7, "Magelan-II", F::Magellan},       {8, "Nexstar 5&8", F::NexStar},
    {9, "NexStar old GT", F::NexStar}, {10, "NexStarGPS,GT,CGE", F::NexStar}, {11, "NGC-Max", F::EncoderBox},
    {12, "Ouranos", F::EncoderBox}, {13, "ServoCat", F::ServoCat},        {14, "Takahashi", F::Takahashi},
    {15, "Ultima2000", F::NexStar}, {16, "Intelliscope", F::EncoderBox},  {17, "Losmandy", F::Lx200},
    {18, "SiderealTech", F::SiderealTech}, {19, "SkyCommander", F::SkyCommander}, {21, "", F::EncoderBox},
    {100, "", F::PowerFlex},        {101, "", F::Dynastar},
};

TEST(DriveTypes, EveryCodeHasItsNameAndFamily) {
    for (const DriveRow& row : kDriveRows) {
        SCOPED_TRACE(row.code);
        EXPECT_EQ(driveListName(row.code), row.name);
        EXPECT_EQ(driveFamily(row.code), row.family);
    }
    EXPECT_EQ(driveTable().size(), std::size(kDriveRows));
}

TEST(DriveTypes, CodesWithoutADriveAreUnknown) {
    for (int code : {-1, 20, 22, 99, 102, 1000}) {
        SCOPED_TRACE(code);
        EXPECT_EQ(driveFamily(code), F::Unknown);
        EXPECT_EQ(driveListName(code), "");
    }
}

TEST(DriveTypes, TheListShowsTheNamesInCodeOrder) {
    // Built by inserting each name at the top, the list shows code 0 first.
    auto names = driveListNames();
    ASSERT_EQ(names.size(), 20u);
    for (int code = 0; code < 20; ++code) EXPECT_EQ(names[static_cast<std::size_t>(code)], driveListName(code));
}

TEST(DriveTypes, NamesAndNumbersChooseADrive) {
    struct {
        const char* text;
        int code;
    } cases[] = {{"LX200", 5},          {"lx200", 5},  {"  LX200 ", 5},     {"Nexstar 5&8", 8}, {"NEXSTAR 5&8", 8},
                 {"NexStarGPS,GT,CGE", 10}, {"magelan-ii", 7}, {"servocat", 13}, {"5", 5}, {"21", 21},
                 {"100", 100},          {"0", 0},      {"none", 0},         {"20", -1},         {"102", -1},
                 {"LX2000", -1},        {"", -1},      {"5x", -1},          {"-1", -1},         {"Magellan", -1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(driveCodeFromName(c.text), c.code);
    }
}

TEST(DriveTypes, SlewingIsServedOnlyForTheDrivesThatMove) {
    for (int code = -2; code <= 105; ++code) {
        SCOPED_TRACE(code);
        const bool served = code == 2 || code == 5 || code == 17 || code == 9 || code == 10 || code == 15 ||
                            code == 14 || code == 18;
        const bool listed = driveFamily(code) != F::Unknown;
        const SlewingService expected = served   ? SlewingService::Served
                                        : listed ? SlewingService::Ignored
                                                 : SlewingService::Unknown;
        EXPECT_EQ(slewingService(code), expected);
    }
}

}  // namespace
}  // namespace nocturnel
