#include "shell/http_params.h"

#include <cctype>
#include <charconv>
#include <cmath>

#include "core/time.h"

namespace nocturnel {

std::string invalidValueTitle(std::string_view name) {
    std::string title = "Invalid value for ";
    title.append(name);
    return title;
}

std::optional<long> readWholeNumber(std::string_view text, long low, long high) {
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (i == 0 && (c == '-' || c == '+')) continue;
        if (c < '0' || c > '9') return std::nullopt;
        ++digits;
    }
    if (digits == 0 || digits > 10) return std::nullopt;
    if (text[0] == '+') text.remove_prefix(1);
    long long value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    if (value < low || value > high) return std::nullopt;
    return static_cast<long>(value);
}

std::optional<double> readRealNumber(std::string_view text, double low, double high) {
    if (text.empty() || text.size() > 40) return std::nullopt;
    for (char c : text)
        if (!(std::isdigit(static_cast<unsigned char>(c)) || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E'))
            return std::nullopt;  // no "nan", "inf", hex floats
    if (text[0] == '+') {
        text.remove_prefix(1);
        if (!text.empty() && (text[0] == '-' || text[0] == '+')) return std::nullopt;  // one sign at most
    }
    double value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
    if (value < low || value > high) return std::nullopt;
    return value;
}

std::optional<ObservingMoment> readMomentText(std::string_view text) {
    if (text.size() != 16 && text.size() != 19) return std::nullopt;
    if (text[10] != 'T' && text[10] != ' ') return std::nullopt;
    // Each field is its digits only: no sign, no blank.
    auto field = [&](std::size_t at, std::size_t width, long low, long high) -> std::optional<long> {
        const std::string_view digits = text.substr(at, width);
        for (char c : digits)
            if (c < '0' || c > '9') return std::nullopt;
        return readWholeNumber(digits, low, high);
    };
    if (text[4] != '-' || text[7] != '-' || text[13] != ':' || (text.size() == 19 && text[16] != ':'))
        return std::nullopt;
    const auto year = field(0, 4, 0, 9999), month = field(5, 2, 1, 12), day = field(8, 2, 1, 31);
    const auto hour = field(11, 2, 0, 23), minute = field(14, 2, 0, 59);
    const auto second = text.size() == 19 ? field(17, 2, 0, 59) : std::optional<long>(0);
    if (!year || !month || !day || !hour || !minute || !second) return std::nullopt;
    if (*day > daysInMonth(static_cast<int>(*year), static_cast<int>(*month))) return std::nullopt;
    ObservingMoment m;
    m.year = static_cast<int32_t>(*year);
    m.month = static_cast<int32_t>(*month);
    m.day = static_cast<int32_t>(*day);
    m.hour = static_cast<int32_t>(*hour);
    m.minute = static_cast<int32_t>(*minute);
    m.second = static_cast<int32_t>(*second);
    return m;
}

void ValueReader::refuse(std::string title, std::string detail) {
    if (!error_) error_ = Message{std::move(title), std::move(detail)};
}

namespace {
std::string shown(const std::string& text) { return "\"" + (text.size() > 40 ? text.substr(0, 40) + "..." : text) + "\""; }
}  // namespace

bool ValueReader::whole(const char* name, long low, long high, std::optional<int>& out) {
    bool isNumber = false, isBool = false;
    const auto text = raw(name, isNumber, isBool);
    if (!text) return true;
    const auto value = isBool ? std::nullopt : readWholeNumber(*text, low, high);
    if (!value) {
        refuse(invalidValueTitle(name),
               "Expected a whole number " + std::to_string(low) + ".." + std::to_string(high) + ", got " + shown(*text));
        return false;
    }
    out = static_cast<int>(*value);
    return true;
}

bool ValueReader::real(const char* name, double low, double high, std::optional<double>& out) {
    bool isNumber = false, isBool = false;
    const auto text = raw(name, isNumber, isBool);
    if (!text) return true;
    const auto value = isBool ? std::nullopt : readRealNumber(*text, low, high);
    if (!value) {
        char range[64];
        std::snprintf(range, sizeof range, "%g..%g", low, high);
        refuse(invalidValueTitle(name), std::string("Expected a number ") + range + ", got " + shown(*text));
        return false;
    }
    out = *value;
    return true;
}

bool ValueReader::text(const char* name, std::size_t maxChars, std::optional<std::string>& out) {
    bool isNumber = false, isBool = false;
    const auto text = raw(name, isNumber, isBool);
    if (!text) return true;
    if (text->size() > maxChars) {
        refuse(invalidValueTitle(name), "At most " + std::to_string(maxChars) + " characters.");
        return false;
    }
    out = *text;
    return true;
}

bool ValueReader::moment(const char* name, std::optional<ObservingMoment>& out) {
    bool isNumber = false, isBool = false;
    const auto text = raw(name, isNumber, isBool);
    if (!text) return true;
    const auto value = readMomentText(*text);
    if (!value) {
        refuse(invalidValueTitle(name), "Expected YYYY-MM-DDTHH:MM[:SS] local time, got " + shown(*text));
        return false;
    }
    out = value;
    return true;
}

bool ValueReader::flag(const char* name, std::optional<bool>& out) {
    bool isNumber = false, isBool = false;
    const auto text = raw(name, isNumber, isBool);
    if (!text) return true;
    if (*text == "true" || *text == "1") out = true;
    else if (*text == "false" || *text == "0") out = false;
    else {
        refuse(invalidValueTitle(name), "Expected true or false, got " + shown(*text));
        return false;
    }
    return true;
}

}  // namespace nocturnel
