#include "plans/observer_log_record.h"

#include <algorithm>
#include <cstring>

namespace nocturnel {
namespace {

// Field offsets of the record.
enum Offset : std::size_t {
    kMagic = 0, kLogNumber = 4, kObject = 8, kYear = 28, kDay = 32, kMonth = 36, kHour = 40, kMinute = 44,
    kRa = 48, kDec = 52, kMoon = 56, kSun = 60, kVisMag = 64, kType = 68, kObjMag = 72, kUnused = 76,
    kTransparency = 80, kSeeing = 84, kScope = 88, kLocation = 108, kFilter = 138, kText = 153, kPadding = 441,
    kChoices = 444,
};
static_assert(kText + kLogTextField == kPadding && kPadding + 3 == kChoices && kChoices + 12 == kObserverLogSize);
static_assert(kScope + kLogScopeField == kLocation && kLocation + kLogLocationField == kFilter &&
              kFilter + kLogFilterField == kText && kObject + kLogObjectField == kYear);

void putU32(unsigned char* at, uint32_t v) {
    for (int i = 0; i < 4; ++i) at[i] = static_cast<unsigned char>(v >> (8 * i));
}
uint32_t getU32(const unsigned char* at) {
    uint32_t v = 0;
    for (int i = 0; i < 4; ++i) v |= static_cast<uint32_t>(at[i]) << (8 * i);
    return v;
}
void putI32(unsigned char* at, int32_t v) { putU32(at, static_cast<uint32_t>(v)); }
int32_t getI32(const unsigned char* at) { return static_cast<int32_t>(getU32(at)); }
void putF32(unsigned char* at, float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, 4);
    putU32(at, bits);
}
float getF32(const unsigned char* at) {
    const uint32_t bits = getU32(at);
    float v;
    std::memcpy(&v, &bits, 4);
    return v;
}
void putText(unsigned char* at, std::size_t field, const std::string& text) {
    const std::size_t n = std::min(text.size(), field - 1);
    std::memcpy(at, text.data(), n);  // the rest of the field stays zero
}
std::string getText(const unsigned char* at, std::size_t field) {
    const auto* end = std::find(at, at + field, '\0');
    return std::string(reinterpret_cast<const char*>(at), static_cast<std::size_t>(end - at));
}

}  // namespace

std::array<unsigned char, kObserverLogSize> encodeObserverLog(const ObserverLog& log) {
    std::array<unsigned char, kObserverLogSize> b{};
    unsigned char* p = b.data();
    putI32(p + kMagic, log.magic);
    putI32(p + kLogNumber, log.logNumber);
    putText(p + kObject, kLogObjectField, log.object);
    putI32(p + kYear, log.year);
    putI32(p + kDay, log.day);
    putI32(p + kMonth, log.month);
    putI32(p + kHour, log.hour);
    putI32(p + kMinute, log.minute);
    putF32(p + kRa, log.raHours);
    putF32(p + kDec, log.decDeg);
    putI32(p + kMoon, log.moonPct);
    putI32(p + kSun, log.sunAltDeg);
    putI32(p + kVisMag, log.visualMagX10);
    putI32(p + kType, log.typeCode);
    putI32(p + kObjMag, log.objectMag);
    putI32(p + kUnused, log.unused76);
    putI32(p + kTransparency, log.transparency);
    putI32(p + kSeeing, log.seeing);
    putText(p + kScope, kLogScopeField, log.scope);
    putText(p + kLocation, kLogLocationField, log.location);
    putText(p + kFilter, kLogFilterField, log.filter);
    putText(p + kText, kLogTextField, log.text);
    for (int i = 0; i < 3; ++i) putI32(p + kChoices + 4 * i, log.choices[i]);
    return b;
}

std::optional<ObserverLog> decodeObserverLog(std::span<const unsigned char> bytes) {
    if (bytes.size() < kObserverLogSize) return std::nullopt;
    const unsigned char* p = bytes.data();
    ObserverLog log;
    log.magic = getI32(p + kMagic);
    log.logNumber = getI32(p + kLogNumber);
    log.object = getText(p + kObject, kLogObjectField);
    log.year = getI32(p + kYear);
    log.day = getI32(p + kDay);
    log.month = getI32(p + kMonth);
    log.hour = getI32(p + kHour);
    log.minute = getI32(p + kMinute);
    log.raHours = getF32(p + kRa);
    log.decDeg = getF32(p + kDec);
    log.moonPct = getI32(p + kMoon);
    log.sunAltDeg = getI32(p + kSun);
    log.visualMagX10 = getI32(p + kVisMag);
    log.typeCode = getI32(p + kType);
    log.objectMag = getI32(p + kObjMag);
    log.unused76 = getI32(p + kUnused);
    log.transparency = getI32(p + kTransparency);
    log.seeing = getI32(p + kSeeing);
    log.scope = getText(p + kScope, kLogScopeField);
    log.location = getText(p + kLocation, kLogLocationField);
    log.filter = getText(p + kFilter, kLogFilterField);
    log.text = getText(p + kText, kLogTextField);
    for (int i = 0; i < 3; ++i) log.choices[i] = getI32(p + kChoices + 4 * i);
    return log;
}

}  // namespace nocturnel
