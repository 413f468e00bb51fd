#include "catalog/name_query.h"

#include <cctype>
#include <cstring>

#include "catalog/object_tables.h"

namespace nocturnel {
namespace {
constexpr int64_t kLargestNumber = 999999999;
constexpr int64_t kTychoRegionLimit = 10000;   // regions 1..9537
constexpr int64_t kTychoNumberLimit = 100000;  // numbers within a region

std::string_view trim(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    return text;
}

bool startsWithNoCase(std::string_view text, std::string_view prefix) {
    if (prefix.size() > text.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(text[i])) != std::tolower(static_cast<unsigned char>(prefix[i])))
            return false;
    return true;
}

// Reads a run of 1..9 digits from the front of text.
bool readDigits(std::string_view& text, int64_t& value) {
    std::size_t n = 0;
    value = 0;
    while (n < text.size() && std::isdigit(static_cast<unsigned char>(text[n]))) {
        if (n == 9) return false;
        value = value * 10 + (text[n] - '0');
        ++n;
    }
    text.remove_prefix(n);
    return n > 0;
}

// Blanks, or one '-' written against the prefix ("Sh2-155"). A '-' after a blank is a minus
// sign ("HIP -1"): the rest is then left unreadable, as numbers are never negative.
std::string_view skipSeparator(std::string_view rest) {
    const bool blank = !rest.empty() && rest.front() == ' ';
    while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
    if (!rest.empty() && rest.front() == '-') {
        if (blank) return rest;
        rest.remove_prefix(1);
    }
    while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
    return rest;
}

bool parseNumber(std::string_view rest, int32_t& number) {
    int64_t value;
    if (!readDigits(rest, value) || !rest.empty() || value < 1 || value > kLargestNumber) return false;
    number = static_cast<int32_t>(value);
    return true;
}

bool parseTychoNumber(std::string_view rest, int32_t& number) {
    int64_t region, star, component;
    if (!readDigits(rest, region) || rest.empty() || rest.front() != '-') return false;
    rest.remove_prefix(1);
    if (!readDigits(rest, star)) return false;
    if (!rest.empty()) {
        if (rest.front() != '-') return false;
        rest.remove_prefix(1);
        if (!readDigits(rest, component) || !rest.empty() || component != 1) return false;
    }
    if (region < 1 || region >= kTychoRegionLimit || star < 1 || star >= kTychoNumberLimit) return false;
    number = static_cast<int32_t>(region * kTychoNumberLimit + star);
    return true;
}

bool isBlankPrefix(const char* prefix) {
    for (const char* p = prefix; *p; ++p)
        if (*p != ' ') return false;
    return true;
}
}  // namespace

bool parseObjectName(std::string_view text, ObjectNameQuery& out) {
    text = trim(text);
    int bestCode = -1;
    std::size_t bestLength = 0;
    int32_t bestNumber = 0;
    for (int code = 1; code < kCatalogCount; ++code) {
        const char* prefix = kCatalogDefinitions[code].prefix;
        const std::size_t length = std::strlen(prefix);
        if (length == 0 || isBlankPrefix(prefix) || length <= bestLength) continue;
        if (!startsWithNoCase(text, prefix)) continue;
        const std::string_view rest = skipSeparator(text.substr(length));
        int32_t number = 0;
        const bool ok = code == kCatalogTycho ? parseTychoNumber(rest, number) : parseNumber(rest, number);
        if (!ok) continue;
        bestCode = code;
        bestLength = length;
        bestNumber = number;
    }
    if (bestCode < 0) return false;
    out.catalogCode = bestCode;
    out.number = bestNumber;
    return true;
}

}  // namespace nocturnel
