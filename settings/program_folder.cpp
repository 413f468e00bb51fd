#include "settings/program_folder.h"

#include <cstdlib>
#include <system_error>

namespace nocturnel {
namespace fs = std::filesystem;
namespace {
fs::path resolveDefault() {
    if (const char* home = std::getenv("NOCTURNEL_HOME"); home && *home) return fs::absolute(home);
    std::error_code ec;
    fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (!ec) return exe.parent_path();
    return fs::current_path();
}
fs::path& folder() {
    static fs::path f = resolveDefault();
    return f;
}
}  // namespace

const fs::path& programFolder() { return folder(); }
void setProgramFolder(const fs::path& f) { folder() = fs::absolute(f); }
fs::path dataPath(const std::string& fileName) { return folder() / "data" / fileName; }
fs::path userListsFolder() { return folder() / "userlists"; }
fs::path userLogsFolder() { return folder() / "userlogs"; }
fs::path userCatalogsFolder() { return folder() / "usercatalogs"; }

bool ensureProgramFolders() {
    std::error_code ec;
    for (const char* sub : {"data", "userlists", "userlogs", "usercatalogs"}) {
        fs::create_directories(folder() / sub, ec);
        if (ec) return false;
    }
    return true;
}

}  // namespace nocturnel
