#include "shell/option_checks.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "core/angle_text.h"
#include "settings/message.h"

namespace nocturnel {
namespace {

std::string rangeText(double low, double high) {
    char text[96];
    std::snprintf(text, sizeof text, "Give a number from %.10g to %.10g.", low, high);
    return text;
}

void refuse(std::string_view what, std::string_view text, std::string_view hint) {
    showMessage("Invalid " + std::string(what) + " \"" + std::string(text) + "\"", hint);
}

// The whole text as one finite decimal number (no hex, no "nan", no "inf").
std::optional<double> readNumber(std::string_view text) {
    if (text.empty() || text.size() > 64) return std::nullopt;
    for (char c : text)
        if (!((c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E')) return std::nullopt;
    const std::string copy(text);
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(copy.c_str(), &end);
    if (end != copy.c_str() + copy.size() || errno == ERANGE || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<double> checkedAngleText(std::string_view text, double low, double high, std::string_view what,
                                       std::string_view hint) {
    const std::optional<double> value = parseAngleText(text);
    if (!value || !std::isfinite(*value) || *value < low || *value > high) {
        refuse(what, text, hint);
        return std::nullopt;
    }
    return value;
}

}  // namespace

std::optional<double> checkedNumber(std::string_view text, double low, double high, std::string_view what,
                                    std::string_view hint) {
    const std::optional<double> value = readNumber(text);
    if (!value || *value < low || *value > high) {
        refuse(what, text, hint.empty() ? std::string_view(rangeText(low, high)) : hint);
        return std::nullopt;
    }
    return value;
}

std::optional<long> checkedInteger(std::string_view text, long low, long high, std::string_view what) {
    const std::optional<double> value = readNumber(text);
    if (!value || *value != std::floor(*value) || *value < static_cast<double>(low) ||
        *value > static_cast<double>(high)) {
        char hint[96];
        std::snprintf(hint, sizeof hint, "Give a whole number from %ld to %ld.", low, high);
        refuse(what, text, hint);
        return std::nullopt;
    }
    return static_cast<long>(*value);
}

std::optional<double> checkedRightAscension(std::string_view text, std::string_view what) {
    return checkedAngleText(text, 0.0, 24.0, what, "Give hours from 0 to 24, for example 5.588 or 5:35:17.");
}

std::optional<double> checkedDeclination(std::string_view text, std::string_view what) {
    return checkedAngleText(text, -90.0, 90.0, what, "Give degrees from -90 to 90, for example -5.391 or -5:23:28.");
}

std::optional<double> checkedAngle(std::string_view text, double low, double high, std::string_view what) {
    char hint[96];
    std::snprintf(hint, sizeof hint, "Give degrees from %.10g to %.10g, decimal or as 12:34:56.", low, high);
    return checkedAngleText(text, low, high, what, hint);
}

CLI::Validator finiteRange(double low, double high) {
    char description[64];
    std::snprintf(description, sizeof description, "%.10g..%.10g", low, high);
    return CLI::Validator(
        [low, high](std::string& input) -> std::string {
            const std::optional<double> value = readNumber(input);
            if (value && *value >= low && *value <= high) return {};
            return "Invalid value \"" + input + "\": " + rangeText(low, high);
        },
        description);
}

bool checkRange(double value, double low, double high, std::string_view what) {
    if (std::isfinite(value) && value >= low && value <= high) return true;
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    refuse(what, text, rangeText(low, high));
    return false;
}

}  // namespace nocturnel
