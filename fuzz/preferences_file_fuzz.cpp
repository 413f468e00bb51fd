// The preferences file reader: any bytes give a record or a reason, and a record read from
// them survives the start-up validation and every page's text.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "fuzz/fuzz_support.h"
#include "settings/preference_fields.h"
#include "settings/preferences.h"
#include "settings/preferences_file.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

// Inputs that pass the header checks are rare at random: every input is also tried with a
// valid header and checksum in front, so the validation sees arbitrary records.
namespace {
const Preferences& defaults() {
    static const Preferences d = defaultPreferences();
    return d;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    Preferences p = defaults();
    if (parsePreferencesBytes(fuzz::bytesOf(data, size), p) == nullptr) validatePreferences(p);

    Preferences raw{};
    std::memcpy(static_cast<void*>(&raw), data, std::min(size, sizeof raw));
    const std::string bytes = preferencesFileBytes(raw);
    Preferences loaded = defaults();
    if (parsePreferencesBytes(bytes, loaded) != nullptr) __builtin_trap();  // a written file must read back
    validatePreferences(loaded);
    if (!(std::fabs(loaded.latitudeDeg) <= 90) || !(std::fabs(loaded.longitudeDeg) <= 180)) __builtin_trap();
    // A few fields' page texts per input (all of them would make every run a hundred lookups).
    const auto fields = preferenceFields();
    for (std::size_t k = 0; k < 4 && !fields.empty(); ++k) {
        const PreferenceField& f = fields[(size > 0 ? data[size - 1 - k % size] : 0) % fields.size()];
        (void)preferenceText(loaded, f);
        (void)preferenceNumber(loaded, f);
    }
    return 0;
}
