#pragma once
// What the command line prints with --json beside each command's own result: numbers with
// the precision their record holds, and the program's messages as JSON objects.
#include <nlohmann/json.hpp>
#include <vector>

#include "settings/message.h"

namespace nocturnel {

// A float of a record as the double that prints with the digits the float holds (31.96f is
// 31.96, not 31.959999084472656).
double jsonNumber(float value);
// A double that may have come from a float field: shortened the same way when it has.
double jsonNumberOfField(double value);

// A failed run with --json: {"error":{"caption":"Information","title":...,"detail":...}} for
// the first message shown (the cause; texts in UTF-8), and "messages" with all of them when
// there were more. Printed on standard output in place of the result, so that standard output
// always holds one JSON document.
nlohmann::json errorJson(const std::vector<Message>& shown);

// Prints errorJson on standard output when the run failed (exitCode != 0) with messages.
void printJsonError(int exitCode, const std::vector<Message>& shown);

}  // namespace nocturnel
