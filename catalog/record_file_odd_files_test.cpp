// Only regular files open as catalogues: a FIFO, a folder or a device in place of one counts
// as absent at once, without waiting for a writer that never comes.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "catalog/record_file.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

TEST(RecordFileSpecialFiles, FifoFolderAndDeviceCountAsAbsent) {
    const fs::path home = fs::temp_directory_path() / ("nocturnel_record_special_" + std::to_string(::getpid()));
    fs::remove_all(home);
    fs::create_directories(home / "data" / "folder.ppc");
    ASSERT_EQ(::mkfifo((home / "data" / "fifo.ppc").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", home / "data" / "zero.ppc");
    const fs::path previous = programFolder();
    setProgramFolder(home);
    for (const char* name : {"fifo.ppc", "folder.ppc", "zero.ppc"}) {
        DatabaseSlot slot;
        EXPECT_FALSE(openDatabase(slot, fourCharCode("pl00"), fourCharCode("CYT1"), 0, kDataFolder, name)) << name;
        EXPECT_FALSE(slot.isOpen()) << name;
    }
    setProgramFolder(previous);
    fs::remove_all(home);
}

}  // namespace
}  // namespace nocturnel
