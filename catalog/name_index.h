#pragma once
// The name file nocturnel_names.ppc: every common name of the deep-sky objects ("Orion
// Nebula", "Andromeda Galaxy") and every proper name, Bayer and Flamsteed designation of the
// Hipparcos stars ("Betelgeuse", "alf Ori", "58 Ori"), each with the catalogue designation it
// stands for. Records are ordered by their folded name (foldedName), so a name and the names
// starting with a typed prefix are found by binary search.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nocturnel {

inline constexpr char kNameFile[] = "nocturnel_names.ppc";
inline constexpr uint32_t kNameFileVersion = 1;
inline constexpr uint32_t kNameFileType = 0x706C3637;  // "pl67"

struct NameRecord {
    char name[40];    // the name as written, UTF-8, NUL-terminated
    int32_t catalog;  // catalogue code: 26 (HIP) for stars, else the object's own catalogue
    int32_t number;   // number in that catalogue
};
static_assert(sizeof(NameRecord) == 48);

// The comparison form of a name: ASCII letters lower-cased, digits kept, other ASCII dropped
// (blanks, '-', '.', '\''), other bytes kept. A Bayer designation of two words, a Greek letter
// (written "alpha", "alf" or "α", with an optional digit) and a three-letter constellation, is
// first written the catalogue's way: "alpha Lyr", "α Lyr" and "alf Lyr" all fold to "alflyr".
std::string foldedName(std::string_view text);

struct NameEntry {
    std::string name;    // as written
    std::string folded;  // foldedName(name)
    int catalog = 0;
    int32_t number = 0;
};

// The name file's entries in file order (by folded name), read once and kept; empty when the
// file is absent or unreadable (the finder then knows catalogue designations only).
const std::vector<NameEntry>& nameIndex();
// For tests: forget the kept entries so the next call reads the file again.
void resetNameIndex();

// Entries whose folded name equals the text's, in file order.
std::vector<const NameEntry*> entriesNamed(std::string_view text);
// Up to `limit` distinct names whose folded form starts with the text's folded form.
std::vector<const NameEntry*> entriesStartingWith(std::string_view prefix, std::size_t limit);
// Every entry standing for a catalogue designation.
std::vector<const NameEntry*> entriesFor(int catalog, int32_t number);

// Sorts records by folded name (stable), as the file keeps them.
void sortNameRecords(std::vector<NameRecord>& records);

}  // namespace nocturnel
