#include "settings/preferences.h"

namespace nocturnel {

Preferences& prefs() {
    static Preferences record;
    return record;
}

}  // namespace nocturnel
