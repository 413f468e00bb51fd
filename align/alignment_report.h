#pragma once
// The alignment report: a dated header, the "Config data" snapshot of the preferences and the
// two stars of the alignment, as text; saved in the program folder for the user.
#include <filesystem>
#include <string>

#include "core/time.h"

namespace nocturnel {

inline constexpr const char* kAlignmentReportFile = "nocturnel_alignment.txt";

// Appends the report for the moment `now` (local civil date and time) to text.
void writeAlignmentReport(std::string& text, const CalendarDate& now);

// The "Config data" section alone (also used by other reports of the preferences).
std::string configDataSection();

// Writes the report to a file (default: the program folder's kAlignmentReportFile);
// false with a message when the file cannot be written.
bool saveAlignmentReport(const std::filesystem::path& file, const CalendarDate& now);

}  // namespace nocturnel
