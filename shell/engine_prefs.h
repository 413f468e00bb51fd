#pragma once
// Saving a change the interface made: the locked read-modify-write of the saved record, so that
// a command line run on the same folder meanwhile keeps its changes, and the engine's record
// brought in step with what was saved.
#include "settings/saved_preferences.h"

namespace nocturnel {

// Applies `change` to the saved record under the folder lock and saves it; prefs() then
// becomes the record as saved, with the engine's observing moment kept, and its telescope link
// settings (drive, port, device, "Connection"; a Connect may have chosen them for the
// session) kept unless this change set them. False (with the
// message) when the change refuses or the save fails; prefs() is then left as it was.
bool updateEnginePrefs(const PreferencesChange& change);

// The Location page's block (site name, place, height, UTC offset, daylight saving, weather, sky
// quality and the site memories) copied from one record to another; always true.
bool copyLocationBlock(const Preferences& from, Preferences& to);

}  // namespace nocturnel
