#include "settings/leftovers.h"

#include "settings/atomic_file.h"
#include "settings/folder_lock.h"
#include "settings/program_folder.h"

namespace nocturnel {

int removeProgramFolderLeftovers() {
    FolderLock lock(programFolder(), std::chrono::milliseconds(0), true);
    if (!lock.locked()) return 0;
    const auto start = programStartTime();
    int removed = removeLeftoverTemporaryFiles(programFolder(), start);
    for (const auto& folder : {userListsFolder(), userLogsFolder(), userCatalogsFolder()})
        removed += removeLeftoverTemporaryFiles(folder, start);
    return removed;
}

}  // namespace nocturnel
