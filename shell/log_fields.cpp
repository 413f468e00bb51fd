#include "shell/log_fields.h"

#include <array>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>

#include "catalog/object_tables.h"
#include "core/angle_text.h"
#include "plans/observer_log_choices.h"
#include "plans/observer_logs.h"
#include "settings/message.h"
#include "settings/text_encoding.h"
#include "shell/app.h"

namespace nocturnel {

bool refuseLog(const std::string& title, const std::string& detail) {
    showMessage(title, detail);
    return false;
}

namespace {

bool refuse(const std::string& title, const std::string& detail) { return refuseLog(title, detail); }


std::optional<long> wholeNumber(const std::string& text, long low, long high) {
    char* end = nullptr;
    errno = 0;
    const long v = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno != 0 || v < low || v > high) return std::nullopt;
    return v;
}

template <std::size_t N>
bool readChoice(const std::string& text, const std::array<std::string_view, N>& list, const char* what, int32_t& out) {
    for (std::size_t i = 0; i < N; ++i) {
        std::string a(list[i]), b = text;
        for (char& c : a) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        for (char& c : b) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (a == b) return out = static_cast<int32_t>(i), true;
    }
    if (const auto v = wholeNumber(text, 0, static_cast<long>(N) - 1)) return out = static_cast<int32_t>(*v), true;
    std::string entries;
    for (std::size_t i = 0; i < N; ++i) entries += (i ? ", " : "") + std::to_string(i) + " " + std::string(list[i]);
    return refuse(std::string("Invalid ") + what + " \"" + text + "\"", entries);
}

bool readText(const std::string& utf8, std::size_t field, const char* what, std::string& out) {
    const auto latin1 = utf8ToLatin1(utf8);
    if (!latin1) return refuse(std::string("Invalid ") + what, "The text holds characters that cannot be stored.");
    if (latin1->size() >= field)
        return refuse(std::string("Invalid ") + what, "At most " + std::to_string(field - 1) + " characters.");
    out = *latin1;
    return true;
}

}  // namespace

bool applyLogFields(const LogFieldOptions& f, ObserverLog& log) {
    if (f.on) {
        ObservingMoment m;
        if (!readDateOption(*f.on, m)) return refuse("Invalid date \"" + *f.on + "\"", "Use YYYY-MM-DD.");
        log.year = m.year, log.month = m.month, log.day = m.day;
    }
    if (f.at) {
        ObservingMoment m;
        if (!readTimeOption(*f.at, m)) return refuse("Invalid time \"" + *f.at + "\"", "Use HH:MM.");
        log.hour = m.hour, log.minute = m.minute;
    }
    if (f.ra) {
        const auto v = parseAngleText(*f.ra);
        if (!v || !std::isfinite(*v) || *v < 0 || *v >= 24) return refuse("Invalid right ascension", "0 to 24 hours.");
        log.raHours = static_cast<float>(*v);
    }
    if (f.dec) {
        const auto v = parseAngleText(*f.dec);
        if (!v || !std::isfinite(*v) || *v < -90 || *v > 90) return refuse("Invalid declination", "-90 to +90 degrees.");
        log.decDeg = static_cast<float>(*v);
    }
    if (f.type) {
        int code = -1;
        for (int i = 0; i < kObjectTypeCount; ++i)
            if (*f.type == kObjectTypes[static_cast<std::size_t>(i)].name) code = i;
        if (code < 0)
            if (const auto v = wholeNumber(*f.type, 0, kObjectTypeCount - 1)) code = static_cast<int>(*v);
        if (code < 0) return refuse("Invalid type \"" + *f.type + "\"", "Give a type name or a code 0..40.");
        log.typeCode = code;
    }
    if (f.mag) {
        const auto v = wholeNumber(*f.mag, -30, 99);
        if (!v) return refuse("Invalid magnitude \"" + *f.mag + "\"", "A whole magnitude, -30 to 99.");
        log.objectMag = static_cast<int32_t>(*v);
    }
    if (f.moon) {
        const auto v = wholeNumber(*f.moon, 0, 100);
        if (!v) return refuse("Invalid Moon fraction \"" + *f.moon + "\"", "0 to 100 percent.");
        log.moonPct = static_cast<int32_t>(*v);
    }
    if (f.sun) {
        const auto v = wholeNumber(*f.sun, -90, 90);
        if (!v) return refuse("Invalid Sun altitude \"" + *f.sun + "\"", "-90 to 90 degrees.");
        log.sunAltDeg = static_cast<int32_t>(*v);
    }
    if (f.visMag) {
        char* end = nullptr;
        const double v = std::strtod(f.visMag->c_str(), &end);
        if (f.visMag->empty() || *end != '\0' || !std::isfinite(v) || v < -5 || v > 30)
            return refuse("Invalid visual magnitude \"" + *f.visMag + "\"", "A magnitude with one decimal, -5 to 30.");
        log.visualMagX10 = static_cast<int32_t>(std::lround(v * 10));
    }
    if (f.transparency && !readChoice(*f.transparency, kTransparencyChoices, "transparency", log.transparency))
        return false;
    if (f.seeing && !readChoice(*f.seeing, kSeeingChoices, "seeing", log.seeing)) return false;
    if (f.rating && !readChoice(*f.rating, kRatingChoices, "rating", log.choices[kChoiceRating])) return false;
    if (f.result && !readChoice(*f.result, kResultChoices, "result", log.choices[kChoiceResult])) return false;
    if (f.eyepiece) {
        const auto v = wholeNumber(*f.eyepiece, 0, 10000);
        if (!v) return refuse("Invalid eyepiece \"" + *f.eyepiece + "\"", "0 for none, else its number + 1.");
        log.choices[kChoiceEyepiece] = static_cast<int32_t>(*v);
    }
    if (f.scope && !readText(*f.scope, kLogScopeField, "scope", log.scope)) return false;
    if (f.location && !readText(*f.location, kLogLocationField, "location", log.location)) return false;
    if (f.filter && !readText(*f.filter, kLogFilterField, "filter", log.filter)) return false;
    if (f.note && !readText(*f.note, kLogTextField, "note", log.text)) return false;
    if (f.object && !readText(*f.object, kLogObjectField, "object name", log.object)) return false;
    return true;
}


std::optional<std::string> logObjectName(const std::string& utf8) {
    std::string latin1;
    if (!readText(utf8, kLogObjectField, "object name", latin1)) return std::nullopt;
    if (!logFileNameFor(latin1)) return std::nullopt;
    return latin1;
}


}  // namespace nocturnel
