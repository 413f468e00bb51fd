#pragma once
// The program folder: data/, userlists/, userlogs/, usercatalogs/ and the preferences file
// live here. It is the folder of the running executable unless --home DIR or the
// environment variable NOCTURNEL_HOME names another.
#include <filesystem>
#include <string>

namespace nocturnel {

// The folder in use (absolute). Before any call to setProgramFolder it is resolved from
// NOCTURNEL_HOME, else from the executable's own folder (/proc/self/exe).
const std::filesystem::path& programFolder();
void setProgramFolder(const std::filesystem::path& folder);

// programFolder() / "data" / name, and the same for the user folders.
std::filesystem::path dataPath(const std::string& fileName);
std::filesystem::path userListsFolder();
std::filesystem::path userLogsFolder();
std::filesystem::path userCatalogsFolder();

// Creates data/, userlists/, userlogs/ and usercatalogs/ when missing; false on failure.
bool ensureProgramFolders();

}  // namespace nocturnel
