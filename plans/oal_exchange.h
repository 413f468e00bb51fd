#pragma once
// Exchange of the logs with other observing-log programs through the OpenAstronomyLog (OAL)
// 2.x XML format: observers, sites, sessions, targets, scopes, filters and observations, in
// the namespace "http://groups.google.com/group/openastronomylog".
#include <string>
#include <string_view>
#include <vector>

#include "plans/observer_log_record.h"

namespace nocturnel {

inline constexpr std::string_view kOalNamespace = "http://groups.google.com/group/openastronomylog";

// The OAL document of the logs (UTF-8). utcOffsetMin is the offset of the logs' local times.
std::string oalDocumentFromLogs(const std::vector<ObserverLog>& logs, int utcOffsetMin);

// The observations of an OAL document as log records (texts in Latin-1, local times at
// utcOffsetMin when a time is given in UT). False after a message when the document cannot be
// read or holds no OAL observations; observations whose target cannot be resolved are skipped
// and counted in `skipped`.
bool logsFromOalDocument(std::string_view document, int utcOffsetMin, std::vector<ObserverLog>& out, int& skipped);

// OAL files on disk: every log of userlogs/ written to `path`; the observations of `path`
// saved as logs. Both return the count, -1 after a message on failure.
int exportLogsToOal(const std::string& path, int utcOffsetMin);
int importLogsFromOal(const std::string& path, int utcOffsetMin);

}  // namespace nocturnel
