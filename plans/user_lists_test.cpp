// List files and memos: the header layout, round trips byte for byte, the cap and end mark,
// and every failure with its message and what it leaves behind.
#include <gtest/gtest.h>

#include "plans/plans_test_support.h"
#include "plans/user_lists.h"
#include "settings/message.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

ObjectReference ref(int catalog, int number, const char* name) {
    ObjectReference r{};
    r.catalog = catalog, r.number = number, r.type = 16, r.raHours = number / 10.0, r.decDeg = -number / 7.0;
    r.mag = 8.5f, r.sizeArcmin = 3.5f;
    std::strncpy(r.name, name, sizeof r.name - 1);
    return r;
}

class UserListsTest : public PlansFolderTest {
protected:
    SelectionList threeObjects() const {
        SelectionList list;
        list.items = {ref(40, 31, "M31, NGC224"), ref(42, 7000, "NGC7000"), ref(29, 434, "IC434")};
        return list;
    }
    static SelectionCriteria dated() {
        SelectionCriteria c;
        c.selectionYear = 2026, c.selectionMonth = 11, c.selectionDay = 23, c.selectionHour = 21, c.selectionMinute = 5;
        return c;
    }
};

TEST_F(UserListsTest, HeaderLayoutAndRoundTripByteForByte) {
    const std::string bytes = listFileBytes("Winter", dated(), threeObjects());
    ASSERT_EQ(bytes.size(), 68u + 3 * 72u);
    EXPECT_EQ(bytes.substr(0, 4), std::string(4, '\0'));
    EXPECT_EQ(std::string(bytes.c_str() + 4), "Winter");
    const auto i32 = [&](std::size_t at) {
        return static_cast<int>(static_cast<unsigned char>(bytes[at]) | static_cast<unsigned char>(bytes[at + 1]) << 8);
    };
    EXPECT_EQ(i32(44), 2026);
    EXPECT_EQ(i32(48), 11);
    EXPECT_EQ(i32(52), 23);
    EXPECT_EQ(i32(56), 21);
    EXPECT_EQ(i32(60), 5);
    EXPECT_EQ(i32(64), 3);
    ASSERT_TRUE(saveUserList("Winter", threeObjects(), dated()));
    const std::string onDisk = readFile(home_ / "userlists" / "Winter.lst");
    EXPECT_EQ(onDisk, bytes);
    SelectionList back;
    SelectionCriteria criteria;
    ASSERT_TRUE(loadUserList("Winter", back, criteria));
    EXPECT_EQ(criteria.selectionYear, 2026);
    EXPECT_EQ(criteria.selectionMinute, 5);
    ASSERT_TRUE(saveUserList("Again", back, criteria));
    EXPECT_EQ(readFile(home_ / "userlists" / "Again.lst").substr(44), onDisk.substr(44)) << "saved again, the same bytes";
    const auto picker = listPicker();
    ASSERT_EQ(picker.size(), 2u);
    EXPECT_EQ(picker[1].line, "Winter, 3");
}

TEST_F(UserListsTest, AnEmptyListWritesNoFile) {
    MessageCapture capture;
    EXPECT_FALSE(saveUserList("Empty", SelectionList{}, dated()));
    EXPECT_TRUE(capture.shown("Please select at least one object"));
    EXPECT_FALSE(fs::exists(home_ / "userlists" / "Empty.lst"));
}

TEST_F(UserListsTest, ACountBeyondTheCapacityLoadsCapacityLessOne) {
    SelectionList big;
    for (int i = 1; i <= 30; ++i) big.items.push_back(ref(42, i, "NGC"));
    ASSERT_TRUE(saveUserList("Big", big, dated()));
    SelectionList small;
    small.capacity = 25;
    SelectionCriteria criteria;
    ASSERT_TRUE(loadUserList("Big", small, criteria));
    EXPECT_EQ(small.items.size(), 24u);
    EXPECT_EQ(small.items.back().number, 24);
}

TEST_F(UserListsTest, DamagedListFilesReportAndKeepWhatTheySay) {
    fs::create_directories(home_ / "userlists");
    const std::string bytes = listFileBytes("Cut", dated(), threeObjects());
    writeFile(home_ / "userlists" / "Header.lst", bytes.substr(0, 67));
    writeFile(home_ / "userlists" / "Cut.lst", bytes.substr(0, 68 + 72 + 40));
    SelectionList list = threeObjects();
    SelectionCriteria criteria;
    {
        MessageCapture capture;
        EXPECT_FALSE(loadUserList("Header", list, criteria));
        EXPECT_TRUE(capture.shown("Can't read header."));
        EXPECT_EQ(list.items.size(), 3u) << "the list is unchanged";
    }
    {
        MessageCapture capture;
        EXPECT_FALSE(loadUserList("Cut", list, criteria));
        EXPECT_TRUE(capture.shown("Can't read data."));
        EXPECT_EQ(list.items.size(), 1u) << "the list holds what was read";
    }
    MessageCapture capture;
    EXPECT_FALSE(loadUserList("Missing", list, criteria));
    EXPECT_TRUE(capture.shown("Can't open file."));
}

TEST_F(UserListsTest, ListNamesNeverLeaveTheFolder) {
    for (const char* name : {"../escape", "a/b", ".hidden", "", "\x01"}) {
        MessageCapture capture;
        EXPECT_FALSE(saveUserList(name, threeObjects(), dated())) << name;
        EXPECT_FALSE(capture.messages().empty()) << name;
    }
    EXPECT_FALSE(fs::exists(home_ / "escape.lst"));
}

TEST_F(UserListsTest, MemoPreviewNeeds256Bytes) {
    fs::create_directories(home_ / "userlists");
    writeFile(home_ / "userlists" / "full.txt", std::string(256, 'a'));
    writeFile(home_ / "userlists" / "short.txt", std::string(255, 'a'));
    std::string text;
    EXPECT_TRUE(memoPreview("full.txt", text));
    EXPECT_EQ(text, "Beginning of memo data:\n" + std::string(256, 'a'));
    MessageCapture capture;
    EXPECT_FALSE(memoPreview("short", text));
    EXPECT_TRUE(capture.shown("Can't read header."));
    EXPECT_FALSE(memoPreview("none.txt", text));
    EXPECT_TRUE(capture.shown("Can't open file."));
}

TEST_F(UserListsTest, MemoExportIsNamedFromTheMoment) {
    const ObservingMoment moment{2006, 2, 3, 9, 5, 0};
    EXPECT_EQ(memoFileName(moment), "20060203_noctumemo_0905.txt");
    fs::path written;
    ASSERT_TRUE(exportMemo("M 31\nNGC 7000\n", moment, &written));
    EXPECT_EQ(written, home_ / "userlists" / "20060203_noctumemo_0905.txt");
    EXPECT_EQ(readFile(written), "M 31\nNGC 7000\n");
    EXPECT_EQ(memoTextOf(threeObjects()), "M 31\nNGC 7000\nIC 434\n");
    // A folder in the memo's place: the file cannot be made.
    fs::create_directories(home_ / "userlists" / "20060203_noctumemo_0906.txt" / "x");
    MessageCapture capture;
    EXPECT_FALSE(exportMemo("M 1\n", ObservingMoment{2006, 2, 3, 9, 6, 0}));
    EXPECT_FALSE(capture.messages().empty());
}

TEST_F(UserListsTest, AnEmptyMemoGivesAnEmptyList) {
    SelectionList list = threeObjects();
    SelectionCriteria criteria;
    EXPECT_EQ(importMemoText("\n \n", ObservingMoment{}, list, criteria), 0);
    EXPECT_TRUE(list.items.empty());
}

}  // namespace
}  // namespace nocturnel
