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

}  // namespace

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
    const double lat = p.latitudeDeg, lon = p.longitudeDeg;
    f.latitude = cut(degreesText(std::fabs(lat)) + (lat >= 0 ? " N" : " S"), kLocationPositionChars);
    f.longitude = cut(degreesText(std::fabs(lon)) + (lon >= 0 ? " W" : " E"), kLocationPositionChars);
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
    copyFixedText(p.siteName, f.name.c_str(), kLocationNameChars - 1);
    if (f.skyQuality >= 0 && f.skyQuality <= 4) p.skyQuality = static_cast<int16_t>(f.skyQuality);
    if (!allValid) return false;
    return storeSiteMemory(p, f.memory);
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
