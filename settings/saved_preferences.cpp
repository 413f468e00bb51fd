#include "settings/saved_preferences.h"

#include <sys/stat.h>

#include "settings/folder_lock.h"
#include "settings/message.h"
#include "settings/preferences_file.h"
#include "settings/program_folder.h"

namespace nocturnel {

bool updateSavedPreferences(const PreferencesChange& change, Preferences* saved) {
    FolderLock lock(programFolder(), std::chrono::seconds(10), true);
    if (!lock.locked()) {
        showMessage("Can't save the preferences", lock.problem());
        return false;
    }
    Preferences record;
    applyStartDefaults(record);
    const PreferencesLoad state = reloadPreferencesForChange(record);
    if (state == PreferencesLoad::NotAFile) return false;
    struct stat info {};
    if (state == PreferencesLoad::Damaged && ::lstat(preferencesFilePath().c_str(), &info) == 0)
        return false;  // it could not be set aside: never written over
    validatePreferences(record);
    if (!change(record)) return false;
    if (!writePreferencesFile(record)) return false;
    if (saved) *saved = record;
    return true;
}

}  // namespace nocturnel
