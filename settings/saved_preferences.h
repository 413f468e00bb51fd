#pragma once
// Changing the saved preferences without losing anybody's change. Several processes may work
// on one program folder (command lines, the interface's engine); each change is
//   lock the folder, reload the saved record, apply this change, save, unlock,
// so two processes changing different fields both keep their values.
#include <functional>

#include "settings/preferences.h"

namespace nocturnel {

// The change edits the reloaded record (start defaults, the saved record, then validated as
// at a start) and returns false to give up (nothing saved; it shows its own message).
using PreferencesChange = std::function<bool(Preferences&)>;

// True when the change was applied and saved; `saved` (optional) then receives the record as
// saved. False with a message when the folder cannot be locked, the saved file is not a
// regular file, a damaged file cannot be set aside, the change refuses, or the write fails.
bool updateSavedPreferences(const PreferencesChange& change, Preferences* saved = nullptr);

}  // namespace nocturnel
