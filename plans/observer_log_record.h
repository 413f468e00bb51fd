#pragma once
// The observer log record: one 456-byte little-endian record per file userlogs/<object>.log.
// Texts are Latin-1, NUL-terminated inside their fields. The record is read and written only
// through encodeObserverLog / decodeObserverLog, so the layout is defined in one place.
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace nocturnel {

inline constexpr int32_t kObserverLogMagic = 123456789;
inline constexpr std::size_t kObserverLogSize = 456;

struct ObserverLog {
    int32_t magic = kObserverLogMagic;  // any other value: the file is damaged
    int32_t logNumber = 0;              // position in the folder listing, set during export
    std::string object;                 // at most 19 characters; also the file's name
    int32_t year = 0, day = 0, month = 0;  // date of the observation (local)
    int32_t hour = 0, minute = 0;          // local time of the observation
    float raHours = 0;                  // J2000
    float decDeg = 0;                   // J2000
    int32_t moonPct = 0;                // illuminated fraction of the Moon, percent
    int32_t sunAltDeg = 0;              // altitude of the Sun, degrees
    int32_t visualMagX10 = 0;           // estimated limiting magnitude x 10
    int32_t typeCode = 0;               // object-type table row
    int32_t objectMag = 0;              // whole magnitudes
    int32_t unused76 = 0;               // kept as read, never exported
    int32_t transparency = 0;           // index into kTransparencyChoices
    int32_t seeing = 0;                 // index into kSeeingChoices
    std::string scope;                  // at most 19 characters
    std::string location;               // at most 29 characters
    std::string filter;                 // at most 14 characters
    std::string text;                   // the free note, at most 287 characters
    std::array<int32_t, 3> choices{};   // rating, eyepiece, result (see observer_log_choices.h)
};

// Field capacities in bytes, terminator included.
inline constexpr std::size_t kLogObjectField = 20, kLogScopeField = 20, kLogLocationField = 30,
                             kLogFilterField = 15, kLogTextField = 288;

// The 456 bytes of a record. Texts longer than their field are cut to fit.
std::array<unsigned char, kObserverLogSize> encodeObserverLog(const ObserverLog& log);
// Reads a record from bytes; nothing when fewer than 456 bytes are given. The magic is
// returned as read: the caller decides what a wrong one means.
std::optional<ObserverLog> decodeObserverLog(std::span<const unsigned char> bytes);

}  // namespace nocturnel
