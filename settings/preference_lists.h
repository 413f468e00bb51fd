#pragma once
// The lists of the preference pages, kept once as data. Each list holds its entries in the
// order the page adds them; the page inserts every new entry at the top, so the list SHOWS
// them in reverse and the stored index counts from the top as shown (the entry added last is
// index 0). shownEntries/indexOfLabel/labelAtIndex apply that rule so the interface and the
// code agree on what each stored index means.
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nocturnel {

struct PreferenceList {
    std::string_view field;                  // the Preferences field holding the index
    std::string_view label;                  // the control's caption on its page
    std::span<const std::string_view> added; // entries in the order the page adds them
};

// Every list of the six pages and the Location page's sky quality, in page order.
std::span<const PreferenceList> preferenceLists();
// The list stored in a field ("raFormat", "scopeDrive", ...); nullptr when the field holds no list.
const PreferenceList* findPreferenceList(std::string_view field);

// The entries top to bottom as the page shows them.
std::vector<std::string_view> shownEntries(const PreferenceList& list);
// Stored index of an entry's text (exact, or case-insensitive; the degree sign may be given
// as UTF-8); -1 when the list has no such entry.
int indexOfLabel(const PreferenceList& list, std::string_view label);
// Text shown at a stored index; empty when out of range.
std::string_view labelAtIndex(const PreferenceList& list, int index);
int listSize(const PreferenceList& list);

}  // namespace nocturnel
