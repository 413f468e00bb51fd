#pragma once
// User lists and memos in userlists/: the selection list saved under a name as a binary list
// file (a 68-byte header, then 72-byte object references) and exchanged with other programs
// as memo text, one object per line.
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "plans/selection_list.h"
#include "settings/preferences.h"

namespace nocturnel {

inline constexpr std::size_t kListHeaderSize = 68;
inline constexpr std::size_t kListNameField = 40;
inline constexpr std::size_t kMemoBuffer = 16384;
inline constexpr std::size_t kMemoPreviewSize = 256;
inline constexpr char kNewListName[] = "<New list name>";

// The bytes of a list file: header (zero, the name, the five selection date fields widened to
// 32 bits, the count) and the entries in one piece.
std::string listFileBytes(std::string_view nameLatin1, const SelectionCriteria& criteria, const SelectionList& list);
// Reads list file bytes over `list` and the date fields of `criteria`: the count is capped to
// the capacity less one. False after "Can't read header." (nothing changed) or "Can't read data."
// (the list holds the entries read).
bool readListFileBytes(std::string_view bytes, SelectionList& list, SelectionCriteria& criteria);

// userlists/<name>.lst, written only when the list holds an entry ("Please select at least one
// object" otherwise); "Can't write header." when it cannot be written.
bool saveUserList(std::string_view nameLatin1, const SelectionList& list, const SelectionCriteria& criteria);
// Loads userlists/<name>.lst over the current list; messages as readListFileBytes, and
// "Can't open file." when there is no such list.
bool loadUserList(std::string_view nameLatin1, SelectionList& list, SelectionCriteria& criteria);

// The list picker: one line "%s, %d" (name, count) per userlists/*.lst whose header reads.
struct ListPickerLine {
    std::string file;   // UTF-8 file name
    std::string line;   // "Winter, 42" (Latin-1)
    std::string name;   // the name in the header (Latin-1)
    int count = 0;
};
std::vector<ListPickerLine> listPicker();
// Every userlists/*.txt memo, by name.
std::vector<std::string> memoPicker();

// "Beginning of memo data:" and the first 256 bytes of a memo; false after "Can't open file."
// or "Can't read header." (fewer than 256 bytes).
bool memoPreview(std::string_view fileUtf8, std::string& out);

// Turns memo text into a new selection list: the date fields take `now`, each line is read by
// the finder; a repeated object is reported "Already loaded:" and skipped; a line that cannot
// be read ends the import with "Failed to load data. Check line" (the list keeps what came
// before). Returns the number of objects loaded, -1 when the import ended on a bad line.
int importMemoText(std::string_view text, const ObservingMoment& now, SelectionList& list,
                   SelectionCriteria& criteria);
// The same from userlists/<file>: "Can't open file." / "Can't read file." on failure (-1).
int importMemo(std::string_view fileUtf8, const ObservingMoment& now, SelectionList& list, SelectionCriteria& criteria);

// "%04d%02d%02d_noctumemo_%02d%02d.txt" for a moment.
std::string memoFileName(const ObservingMoment& now);
// The memo text of a list: one designation per line.
std::string memoTextOf(const SelectionList& list);
// Writes a memo named from `now`; false after "Can't open memo:" or "Error while exporting memo.".
bool exportMemo(std::string_view text, const ObservingMoment& now, std::filesystem::path* written = nullptr);

}  // namespace nocturnel
