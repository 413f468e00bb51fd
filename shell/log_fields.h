#pragma once
// The fields of an observer log's form as typed (command-line options or the page's form), read
// into a record with the program's messages; shared by `nocturnel log` and the web interface.
#include <optional>
#include <string>

#include "plans/observer_log_record.h"

namespace nocturnel {

// The fields a log's form holds, as typed; only the fields given change the log.
struct LogFieldOptions {
    std::optional<std::string> on, at, ra, dec, type, mag, moon, sun, visMag, transparency, seeing, scope, location,
        filter, note, rating, eyepiece, result, object;
};

// Reads the given fields into the log; false after a message naming the first bad one.
bool applyLogFields(const LogFieldOptions& fields, ObserverLog& log);

// The Latin-1 object name of a log from UTF-8 text; nothing after a message when it is too long,
// cannot be stored or cannot be a file of userlogs/.
std::optional<std::string> logObjectName(const std::string& utf8);

// A message and false, for the refusals of the log commands.
bool refuseLog(const std::string& title, const std::string& detail);

}  // namespace nocturnel
