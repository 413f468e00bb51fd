#include "settings/location_page.h"

#include <cmath>
#include <cstdlib>
#include <string>

#include "settings/message.h"

namespace nocturnel {
namespace {

std::string cut(std::string text, std::size_t chars) {
    if (text.size() > chars) text.resize(chars);
    return text;
}

std::string fixedText(const char* field, std::size_t size) {
    std::size_t n = 0;
    while (n < size && field[n] != '\0') ++n;
    return std::string(field, n);
}

// One number of the page: its field, width, accepted range and where an accepted value goes.
struct NumberRule {
    const char* label;
    std::string LocationPageFields::*field;
    std::size_t width;
    long low, high;
};

// Unsigned degrees as typed: "111.6", "111:36:00", "111°36'00", "111 36 00", "111d36m00s".
std::optional<double> readUnsignedDegrees(std::string_view text) {
    double fields[3] = {0, 0, 0};
    int count = 0;
    std::size_t i = 0;
    const auto skipBlanks = [&] {
        while (i < text.size() && text[i] == ' ') ++i;
    };
    skipBlanks();
    while (i < text.size()) {
        if (count == 3) return std::nullopt;
        const std::size_t start = i;
        std::size_t digits = 0;
        bool fraction = false;
        while (i < text.size() && ((text[i] >= '0' && text[i] <= '9') || (text[i] == '.' && !fraction))) {
            if (text[i] == '.') fraction = true;
            else ++digits;
            ++i;
        }
        if (digits == 0 || digits > 12) return std::nullopt;
        fields[count++] = std::strtod(std::string(text.substr(start, i - start)).c_str(), nullptr);
        skipBlanks();
        if (i >= text.size()) break;
        if (fraction) return std::nullopt;  // only the last field carries decimals
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) == 0xB0) {
            i += 2;
        } else if (c == ':' || c == 0xB0 || c == '\'' || c == '"' || c == 'd' || c == 'm' || c == 's') {
            ++i;
        } else if (!(c >= '0' && c <= '9')) {
            return std::nullopt;
        }
        skipBlanks();
    }
    if (count == 0 || (count >= 2 && fields[1] >= 60) || (count == 3 && fields[2] >= 60)) return std::nullopt;
    return fields[0] + fields[1] / 60.0 + fields[2] / 3600.0;
}

// A signed position text with its hemisphere letters: `positive` counts +, `negative` counts -.
std::optional<double> readPositionText(std::string_view text, char positive, char negative, double limit) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    const auto letterSign = [&](char c) -> int {
        const char upper = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
        return upper == positive ? 1 : upper == negative ? -1 : 0;
    };
    int letter = 0;
    if (!text.empty() && (letter = letterSign(text.back())) != 0) text.remove_suffix(1);
    else if (!text.empty() && (letter = letterSign(text.front())) != 0) text.remove_prefix(1);
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    int sign = 0;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        sign = text.front() == '-' ? -1 : 1;
        text.remove_prefix(1);
    }
    if (sign != 0 && letter != 0) return std::nullopt;  // "-111.6W": which way was meant?
    const std::optional<double> magnitude = readUnsignedDegrees(text);
    if (!magnitude || *magnitude > limit) return std::nullopt;
    return (letter != 0 ? letter : sign < 0 ? -1 : 1) * *magnitude;
}

}  // namespace

std::optional<double> readLatitudeText(std::string_view text) { return readPositionText(text, 'N', 'S', 90.0); }
std::optional<double> readLongitudeText(std::string_view text) { return readPositionText(text, 'W', 'E', 180.0); }

std::string latitudeFieldText(double lat, const DegreesTextFn& degreesText) {
    return cut(degreesText(std::fabs(lat)) + (lat >= 0 ? " N" : " S"), kLocationPositionChars);
}

std::string longitudeFieldText(double lon, const DegreesTextFn& degreesText) {
    return cut(degreesText(std::fabs(lon)) + (lon >= 0 ? " W" : " E"), kLocationPositionChars);
}

bool readIntegerField(std::string_view text, std::size_t maxChars, long& value) {
    if (text.empty() || text.size() > maxChars) return false;
    std::size_t i = 0;
    bool negative = false;
    if (text[0] == '-' || text[0] == '+') {
        negative = text[0] == '-';
        i = 1;
    }
    if (i == text.size()) return false;
    long v = 0;
    for (; i < text.size(); ++i) {
        if (text[i] < '0' || text[i] > '9') return false;
        v = v * 10 + (text[i] - '0');  // at most 6 characters: no overflow
    }
    value = negative ? -v : v;
    return true;
}

LocationPageFields showLocationPage(const Preferences& p, const DegreesTextFn& degreesText, int memory) {
    LocationPageFields f;
    f.name = fixedText(p.siteName, sizeof p.siteName);
    f.latitude = f.latitudeShown = latitudeFieldText(p.latitudeDeg, degreesText);
    f.longitude = f.longitudeShown = longitudeFieldText(p.longitudeDeg, degreesText);
    f.height = std::to_string(p.altitudeM);
    f.utcOffset = std::to_string(p.utcOffsetMin - (p.dstFlag ? 60 : 0));
    f.temperature = std::to_string(p.temperatureC);
    f.pressure = std::to_string(p.pressureMbar);
    f.humidity = std::to_string(p.humidityPct);
    f.skyQuality = p.skyQuality;
    f.daylightSaving = p.dstFlag != 0;
    f.memory = memory;
    return f;
}

void setDaylightSaving(Preferences& p, LocationPageFields& fields, bool on) {
    if ((p.dstFlag != 0) == on) return;
    p.utcOffsetMin = static_cast<int16_t>(p.utcOffsetMin + (on ? 60 : -60));
    p.dstFlag = on ? 1 : 0;
    fields.daylightSaving = on;
}

bool acceptLocationPage(Preferences& p, LocationPageFields& f) {
    const int dstMinutes = p.dstFlag ? 60 : 0;
    const NumberRule rules[] = {
        {"Height", &LocationPageFields::height, kHeightChars, 0, 31999},
        {"GMT (mn)", &LocationPageFields::utcOffset, kUtcOffsetChars, -1439, 1439},
        {"Temperature", &LocationPageFields::temperature, kTemperatureChars, -70, 59},
        {"Pressure", &LocationPageFields::pressure, kPressureChars, 900, 1100},
        {"Humidity", &LocationPageFields::humidity, kHumidityChars, 0, 99},
    };
    int16_t* targets[] = {&p.altitudeM, &p.utcOffsetMin, &p.temperatureC, &p.pressureMbar, &p.humidityPct};
    bool allValid = true;
    for (std::size_t i = 0; i < std::size(rules); ++i) {
        const NumberRule& rule = rules[i];
        std::string& text = f.*rule.field;
        long value = 0;
        bool ok = readIntegerField(text, rule.width, value);
        if (ok && rule.field == &LocationPageFields::utcOffset) value += dstMinutes;  // stored with the DST hour
        ok = ok && value >= rule.low && value <= rule.high;
        if (ok) {
            *targets[i] = static_cast<int16_t>(value);
            continue;
        }
        if (allValid)
            showMessagef("The value was not stored.", "%s must be between %ld and %ld", rule.label, rule.low,
                         rule.high);
        allValid = false;
        const long stored = *targets[i] - (rule.field == &LocationPageFields::utcOffset ? dstMinutes : 0);
        text = std::to_string(stored);
    }
    // The position: read back only what the user changed (the shown text is rounded).
    double latitude = p.latitudeDeg, longitude = p.longitudeDeg;
    if (f.latitude != f.latitudeShown) {
        if (const auto lat = readLatitudeText(f.latitude)) {
            latitude = *lat;
        } else {
            if (allValid) showMessage("Latitude must be between 90 S and 90 N", "The value was not stored.");
            allValid = false;
            f.latitude = f.latitudeShown;
        }
    }
    if (f.longitude != f.longitudeShown) {
        if (const auto lon = readLongitudeText(f.longitude)) {
            longitude = *lon;
        } else {
            if (allValid)
                showMessage("Longitude must be between 180 E and 180 W (a bare number counts positive west)",
                            "The value was not stored.");
            allValid = false;
            f.longitude = f.longitudeShown;
        }
    }
    if (latitude != p.latitudeDeg || longitude != p.longitudeDeg)
        setSitePosition(p, latitude, longitude, p.utcOffsetMin);
    copyFixedText(p.siteName, f.name.c_str(), kLocationNameChars - 1);
    if (f.skyQuality >= 0 && f.skyQuality <= 4) p.skyQuality = static_cast<int16_t>(f.skyQuality);
    if (!allValid) return false;
    return storeSiteMemory(p, f.memory);
}

bool siteMemoryIsEmpty(const SiteMemory& m) {
    return m.name[0] == '\0' && m.latitudeDeg == 0.0f && m.longitudeDeg == 0.0f && m.altitudeM == 0;
}

bool storeSiteMemory(Preferences& p, int memory) {
    if (memory < 0 || memory >= kSiteMemoryCount) {
        showMessagef("Choose Site1, Site2 or Site3.", "There is no site memory %d", memory + 1);
        return false;
    }
    SiteMemory& m = p.siteMemory[memory];
    copyFixedText(m.name, p.siteName, 10);
    m.latitudeDeg = p.latitudeDeg;
    m.longitudeDeg = p.longitudeDeg;
    m.utcOffsetMin = p.utcOffsetMin;
    m.dstFlag = p.dstFlag;
    m.altitudeM = p.altitudeM;
    m.skyQuality = p.skyQuality;
    return true;
}

bool recallSiteMemory(Preferences& p, int memory) {
    if (memory < 0 || memory >= kSiteMemoryCount) {
        showMessagef("Choose Site1, Site2 or Site3.", "There is no site memory %d", memory + 1);
        return false;
    }
    const SiteMemory& m = p.siteMemory[memory];
    if (siteMemoryIsEmpty(m)) {
        showMessagef("Store a site into it first; the current site is unchanged.", "Site%d is empty", memory + 1);
        return false;
    }
    copyFixedText(p.siteName, m.name, 10);
    setSitePosition(p, m.latitudeDeg, m.longitudeDeg, m.utcOffsetMin);
    p.dstFlag = m.dstFlag;
    p.altitudeM = m.altitudeM;
    p.skyQuality = m.skyQuality;
    return true;
}

void chooseLocation(Preferences& p, std::string_view name, double latitudeDeg, double longitudeWestDeg,
                    int utcOffsetMin) {
    const std::string text(name);
    copyFixedText(p.siteName, text.c_str(), 11);
    setSitePosition(p, latitudeDeg, longitudeWestDeg, utcOffsetMin + (p.dstFlag ? 60 : 0));
    p.altitudeM = 0;
}

}  // namespace nocturnel
