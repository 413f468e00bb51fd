#pragma once
// Export of every log to semicolon-separated text for a spreadsheet: userlogs/logs_<n>.txt,
// split into parts of about 16 KB, each beginning with its header line and the column line.
#include <string>

#include "plans/observer_log_record.h"

namespace nocturnel {

inline constexpr std::size_t kLogExportBuffer = 16384;
inline constexpr std::size_t kLogExportSplit = 15884;  // a part is written once it holds more than this

// One line of the export (Latin-1, ending "\n"): date (month/day/year, or day/month/year when
// dayFirst), time, object, RA and Dec as angle text, type name, object magnitude, constellation
// of the J2000 position, Moon, Sun, limiting magnitude, transparency and seeing indexes, scope,
// location, filter, note. An empty text is written as a single blank.
std::string observerLogExportLine(const ObserverLog& log, bool dayFirst);

// Whether the locale in force writes dates day first (its date format puts %d before %m).
bool localeDateIsDayFirst();

// Asks "Do you want to export your Observer Logs to a text file ?" and exports every log of the
// listing ("Nothing to export." when there is none), telling "%d Observer log%s exported." at
// each part written. Short and damaged records are reported and skipped. Returns the number of
// logs exported, -1 when the user declined or a part could not be written.
int exportObserverLogs(bool dayFirst);

}  // namespace nocturnel
