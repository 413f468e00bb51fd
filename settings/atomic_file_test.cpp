#include "settings/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "settings/message.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

class AtomicFile : public ::testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::temp_directory_path() / ("nocturnel_atomic_" + std::to_string(::getpid()) + "_" +
                                               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(folder_);
        fs::create_directories(folder_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    static std::string contents(const fs::path& p) {
        std::ifstream in(p, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    static void put(const fs::path& p, const std::string& text) { std::ofstream(p, std::ios::binary) << text; }
    int entries() const {
        return static_cast<int>(std::distance(fs::directory_iterator(folder_), fs::directory_iterator{}));
    }

    fs::path folder_;
};

TEST_F(AtomicFile, RecordIsReplacedWholeAndNothingIsLeftBeside) {
    const fs::path file = folder_ / "record.dat";
    MessageCapture capture;
    ASSERT_TRUE(replaceRecordFile(file, "first", "Can't save"));
    ASSERT_TRUE(replaceRecordFile(file, "second, longer", "Can't save"));
    EXPECT_EQ(contents(file), "second, longer");
    EXPECT_EQ(entries(), 1);
    std::string bytes;
    EXPECT_EQ(readRecordFile(file, 100, bytes), RecordRead::Read);
    EXPECT_EQ(bytes, "second, longer");
    EXPECT_EQ(readRecordFile(file, 3, bytes), RecordRead::Read);
    EXPECT_EQ(bytes, "seco") << "at most maxBytes + 1 bytes are read";
    EXPECT_EQ(readRecordFile(folder_ / "none", 100, bytes), RecordRead::Missing);
    EXPECT_TRUE(capture.messages().empty());
    // A private file stays private when replaced.
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_TRUE(replaceRecordFile(file, "third", "Can't save"));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

// A FIFO (no writer: a blocking open would hang), a folder, a link to a file outside the folder
// and a device in place of a record: read says NotRegular at once, write refuses and leaves it.
TEST_F(AtomicFile, OnlyRegularFilesAreRecords) {
    const fs::path outside = folder_ / "outside";
    fs::create_directories(outside);
    put(outside / "secret", "keep me");
    struct Case {
        const char* what;
        fs::path path;
    };
    const fs::path fifo = folder_ / "fifo.dat", dir = folder_ / "dir.dat", link = folder_ / "link.dat";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    fs::create_directories(dir);
    fs::create_symlink(outside / "secret", link);
    for (const Case& c : {Case{"fifo", fifo}, Case{"folder", dir}, Case{"link", link}, Case{"device", "/dev/zero"}}) {
        std::string bytes;
        EXPECT_EQ(readRecordFile(c.path, 100, bytes), RecordRead::NotRegular) << c.what;
        MessageCapture capture;
        if (c.path != "/dev/zero") {
            EXPECT_FALSE(replaceRecordFile(c.path, "new", "Can't save")) << c.what;
            EXPECT_EQ(capture.lastTitle(), "Can't save") << c.what;
        }
    }
    EXPECT_TRUE(fs::is_fifo(fifo));
    EXPECT_TRUE(fs::is_directory(dir));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(contents(outside / "secret"), "keep me");
}

TEST_F(AtomicFile, OutputToAFullDeviceFailsWithAMessage) {
    MessageCapture capture;
    EXPECT_FALSE(writeOutputFile("/dev/full", std::string(100000, 'x'), "Can't write the report"));
    ASSERT_EQ(capture.messages().size(), 1u);
    EXPECT_EQ(capture.lastTitle(), "Can't write the report");
    EXPECT_NE(capture.messages()[0].detail.find("/dev/full"), std::string::npos);
    // A device that takes the bytes is written in place.
    EXPECT_TRUE(writeOutputFile("/dev/null", "report", "Can't write the report"));
}

TEST_F(AtomicFile, FailedOutputLeavesNoFile) {
    MessageCapture capture;
    EXPECT_FALSE(writeOutputFile(folder_ / "missing" / "chart.png", "png", "Can't create file"));
    EXPECT_FALSE(writeOutputFile(folder_, "png", "Can't create file")) << "a folder is not an output";
    const fs::path fifo = folder_ / "pipe";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(writeOutputFile(fifo, "no reader", "Can't create file")) << "must not wait for a reader";
    EXPECT_EQ(capture.messages().size(), 3u);
    EXPECT_EQ(entries(), 1);  // the FIFO alone: no temporary, no empty file
}

TEST_F(AtomicFile, OutputThroughALinkReplacesItsFile) {
    put(folder_ / "real.txt", "old");
    fs::create_symlink("real.txt", folder_ / "link.txt");
    ASSERT_TRUE(writeOutputFile(folder_ / "link.txt", "new", "Can't write"));
    EXPECT_TRUE(fs::is_symlink(folder_ / "link.txt"));
    EXPECT_EQ(contents(folder_ / "real.txt"), "new");
}

TEST_F(AtomicFile, DamagedFileIsSetAsideUnderANewName) {
    const fs::path file = folder_ / "nocturnel_prefs.dat";
    put(file, "junk 1");
    const auto first = setDamagedFileAside(file);
    put(file, "junk 2");
    const auto second = setDamagedFileAside(file);
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    EXPECT_EQ(first->filename().string().rfind("nocturnel_prefs.dat.damaged-", 0), 0u) << *first;
    EXPECT_EQ(contents(*first), "junk 1");
    EXPECT_EQ(contents(*second), "junk 2");
    EXPECT_FALSE(fs::exists(file));
    MessageCapture capture;
    EXPECT_FALSE(setDamagedFileAside(file));
    EXPECT_EQ(capture.lastTitle(), "Can't set the damaged file aside");
}

TEST(TemporaryNames, FormAndRecognition) {
    const fs::path a = temporaryNameFor("/x/nocturnel_prefs.dat"), b = temporaryNameFor("/x/nocturnel_prefs.dat");
    EXPECT_NE(a, b) << "one name per write";
    long pid = 0;
    EXPECT_TRUE(isTemporaryName(a.filename().string(), &pid));
    EXPECT_EQ(pid, ::getpid());
    for (const char* name : {"nocturnel_prefs.dat", "x.tmp", "x.tmp-12", "x.tmp-12-", "x.tmp--3", "x.tmp-a-1",
                             "x.tmp-1-2x", ".tmp-1-2", "x.tmp-0-1"})
        EXPECT_FALSE(isTemporaryName(name)) << name;
}

TEST_F(AtomicFile, LeftoversOfGoneWritersAreRemoved) {
    // 999999999 is above any pid the kernel hands out: that writer is gone.
    const fs::path gone = folder_ / "nocturnel_prefs.dat.tmp-999999999-3";
    const fs::path mine = temporaryNameFor(folder_ / "nocturnel_prefs.dat");
    const fs::path fresh = folder_ / "list.lst.tmp-999999999-4";
    const fs::path other = folder_ / "notes.tmp";
    for (const auto& p : {gone, mine, fresh, other}) put(p, "x");
    const auto start = fs::file_time_type::clock::now();
    fs::last_write_time(gone, start - std::chrono::hours(1));
    fs::last_write_time(mine, start - std::chrono::hours(1));
    fs::last_write_time(other, start - std::chrono::hours(1));
    fs::last_write_time(fresh, start + std::chrono::seconds(1));
    EXPECT_EQ(removeLeftoverTemporaryFiles(folder_, start), 1);
    EXPECT_FALSE(fs::exists(gone));
    EXPECT_TRUE(fs::exists(mine)) << "a running writer keeps its file";
    EXPECT_TRUE(fs::exists(fresh)) << "written after the start";
    EXPECT_TRUE(fs::exists(other)) << "not a temporary of ours";
}

}  // namespace
}  // namespace nocturnel
