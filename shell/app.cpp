#include "shell/app.h"

#include <charconv>

#include "core/time.h"
#include "settings/atomic_file.h"
#include "settings/leftovers.h"
#include "settings/message.h"
#include "settings/preferences_file.h"
#include "settings/program_folder.h"
#include "settings/text_encoding.h"
#include "shell/solar_system_hooks.h"

namespace nocturnel {

GlobalOptions& globalOptions() {
    static GlobalOptions options;
    return options;
}

namespace {
int& exitCodeRef() {
    static int code = 0;
    return code;
}

// Reads fields of digits separated by one separator character; each field's width is checked.
bool readFields(std::string_view text, char separator, const int* minWidth, const int* maxWidth, int count,
                int* out) {
    std::size_t pos = 0;
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            if (pos >= text.size() || text[pos] != separator) return false;
            ++pos;
        }
        const std::size_t start = pos;
        while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') ++pos;
        const auto width = static_cast<int>(pos - start);
        if (width < minWidth[i] || width > maxWidth[i]) return false;
        std::from_chars(text.data() + start, text.data() + pos, out[i]);
    }
    return pos == text.size();
}
}  // namespace

bool readDateOption(std::string_view text, ObservingMoment& moment) {
    static constexpr int minW[] = {4, 1, 1}, maxW[] = {4, 2, 2};
    int f[3] = {};
    if (!readFields(text, '-', minW, maxW, 3, f)) return false;
    if (f[1] < 1 || f[1] > 12 || f[2] < 1 || f[2] > daysInMonth(f[0], f[1])) return false;
    moment.year = f[0];
    moment.month = f[1];
    moment.day = f[2];
    return true;
}

bool readTimeOption(std::string_view text, ObservingMoment& moment) {
    static constexpr int minW[] = {1, 2, 2}, maxW[] = {2, 2, 2};
    int f[3] = {};
    const bool withSeconds = text.size() > 5;
    if (!readFields(text, ':', minW, maxW, withSeconds ? 3 : 2, f)) return false;
    if (f[0] > 23 || f[1] > 59 || f[2] > 59) return false;
    moment.hour = f[0];
    moment.minute = f[1];
    moment.second = f[2];
    return true;
}

bool updatePrefsForCommand(const PreferencesChange& change) {
    Preferences saved;
    if (!updateSavedPreferences(change, &saved)) {
        setExitCode(1);
        return false;
    }
    // The command goes on with the record as saved (other processes' changes included); the
    // observing moment of --date/--time stays.
    const ObservingMoment moment = prefs().moment;
    prefs() = saved;
    prefs().moment = moment;
    return true;
}

void setExitCode(int code) { exitCodeRef() = code; }
int exitCode() { return exitCodeRef(); }

bool startUp() {
    programStartTime();
    registerSolarSystemHooks();
    const GlobalOptions& options = globalOptions();
    if (!options.home.empty()) setProgramFolder(options.home);
    if (!ensureProgramFolders()) {
        showMessage("Can't create the program folders", programFolder().string());
        return false;
    }
    removeProgramFolderLeftovers();
    // Defaults first; the saved record (site, memories, page choices) is read over them; then
    // everything is brought back into range and the fields fixed at every start are forced.
    Preferences record;
    applyStartDefaults(record);
    loadPreferences(record);
    validatePreferences(record);

    ObservingMoment moment = record.moment;  // the machine clock, local civil time at the site
    if (!options.date.empty() && !readDateOption(options.date, moment)) {
        showMessage("Invalid date \"" + utf8ToLatin1ForMessage(options.date) + "\"", "Use --date YYYY-MM-DD, for example 2024-03-21.");
        return false;
    }
    if (!options.time.empty() && !readTimeOption(options.time, moment)) {
        showMessage("Invalid time \"" + utf8ToLatin1ForMessage(options.time) + "\"", "Use --time HH:MM or HH:MM:SS, for example 21:30.");
        return false;
    }
    record.moment = moment;
    prefs() = record;
    return true;
}

}  // namespace nocturnel
