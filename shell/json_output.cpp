#include "shell/json_output.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <string>

#include "core/angle_text.h"

namespace nocturnel {

double jsonNumber(float value) {
    if (!std::isfinite(value)) return static_cast<double>(value);
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text - 1, value);  // shortest round-trip form
    *result.ptr = '\0';
    return std::strtod(text, nullptr);
}

double jsonNumberOfField(double value) {
    const float narrow = static_cast<float>(value);
    return static_cast<double>(narrow) == value ? jsonNumber(narrow) : value;
}

namespace {
nlohmann::json messageFields(const Message& message) {
    return {{"caption", std::string(kMessageCaption)}, {"title", toUtf8(message.title)}, {"detail", toUtf8(message.detail)}};
}
}  // namespace

nlohmann::json errorJson(const std::vector<Message>& shown) {
    nlohmann::json out = {{"error", shown.empty() ? nlohmann::json::object() : messageFields(shown.front())}};
    if (shown.size() > 1) {
        nlohmann::json all = nlohmann::json::array();
        for (const Message& m : shown) all.push_back(messageFields(m));
        out["messages"] = all;
    }
    return out;
}

void printJsonError(int exitCode, const std::vector<Message>& shown) {
    if (exitCode != 0 && !shown.empty()) std::cout << errorJson(shown).dump() << std::endl;
}

}  // namespace nocturnel
