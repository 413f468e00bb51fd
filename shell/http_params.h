#pragma once
// Strict reading of request values (query parameters and JSON bodies): whole numbers and
// finite reals within stated bounds, nothing else. A refused value gives the message the page
// shows ("Invalid value for zoom" / "Expected a whole number 0..12, got \"x\"").
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {

// "Invalid value for NAME", the first line of every refused value.
std::string invalidValueTitle(std::string_view name);

// Whole decimal number (optional sign, at most 10 digits) within [low, high].
std::optional<long> readWholeNumber(std::string_view text, long low, long high);
// Finite decimal real (one sign at most; no "nan", "inf", hex) within [low, high].
std::optional<double> readRealNumber(std::string_view text, double low, double high);
// "YYYY-MM-DDTHH:MM[:SS]" (a space may stand for the T; digits only in each field), local civil time.
std::optional<ObservingMoment> readMomentText(std::string_view text);

// Reads named values from a source, remembering the first refusal.
class ValueReader {
public:
    virtual ~ValueReader() = default;
    // Each leaves out unchanged when the value is absent; false (error() set) when it is bad.
    bool whole(const char* name, long low, long high, std::optional<int>& out);
    bool real(const char* name, double low, double high, std::optional<double>& out);
    bool text(const char* name, std::size_t maxChars, std::optional<std::string>& out);
    bool moment(const char* name, std::optional<ObservingMoment>& out);
    bool flag(const char* name, std::optional<bool>& out);
    bool ok() const { return !error_; }
    const Message& error() const { return *error_; }
    void refuse(std::string title, std::string detail);

protected:
    // The value as text (numbers of a JSON body written back as text); nothing when absent.
    virtual std::optional<std::string> raw(const char* name, bool& isNumber, bool& isBool) const = 0;

private:
    std::optional<Message> error_;
};

}  // namespace nocturnel
