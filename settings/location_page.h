#pragma once
// The Location page as engine functions: the texts it shows, its daylight-saving box, the
// checks made when it is accepted, the three site memories ("Site1".."Site3") and the choice
// of a place from the location list. The page's fields are plain strings as typed.
#include <functional>
#include <string>
#include <string_view>

#include "settings/preferences.h"

namespace nocturnel {

// Field widths in characters.
inline constexpr std::size_t kLocationNameChars = 12;
inline constexpr std::size_t kLocationPositionChars = 12;
inline constexpr std::size_t kHeightChars = 6;
inline constexpr std::size_t kUtcOffsetChars = 6;
inline constexpr std::size_t kTemperatureChars = 4;
inline constexpr std::size_t kPressureChars = 5;
inline constexpr std::size_t kHumidityChars = 3;
inline constexpr int kSiteMemoryCount = 3;

struct LocationPageFields {
    std::string name;         // "Location:"
    std::string latitude;     // "Latitude:", "%s N" / "%s S" (shown only)
    std::string longitude;    // "Longitude:", "%s W" / "%s E" (shown only)
    std::string height;       // "Height:" metres
    std::string utcOffset;    // "GMT (mn):" the offset without the daylight-saving hour
    std::string temperature;  // "T° (C°):"
    std::string pressure;     // "P (mbar):"
    std::string humidity;     // "Humidity (%):"
    int skyQuality = 3;       // index in the sky-quality list as shown
    bool daylightSaving = false;
    int memory = 0;           // selector: 0 "Site1", 1 "Site2", 2 "Site3"
};

// Degrees (non-negative) to the page's angle text; the shell passes the decFormat formatter.
using DegreesTextFn = std::function<std::string(double)>;

// The page as shown for the record.
LocationPageFields showLocationPage(const Preferences& p, const DegreesTextFn& degreesText, int memory = 0);

// Ticking (true) or clearing the daylight-saving box: at once 60 minutes more or less in
// utcOffsetMin and the new dstFlag. Nothing changes when the box already shows that state.
void setDaylightSaving(Preferences& p, LocationPageFields& fields, bool on);

// Accepting the page: each number is checked; an invalid one is not stored and its field is
// reset to the stored value. When all are valid the site is also stored into the selected
// memory and true is returned. A message names the first invalid field.
bool acceptLocationPage(Preferences& p, LocationPageFields& fields);

// Site memories: index 0..2. False (message shown) for another index.
bool storeSiteMemory(Preferences& p, int memory);
bool recallSiteMemory(Preferences& p, int memory);

// A place chosen from the location list: name (11 characters), position and the place's UT
// offset (plus 60 while daylight saving is on); the height becomes 0.
void chooseLocation(Preferences& p, std::string_view name, double latitudeDeg, double longitudeWestDeg,
                    int utcOffsetMin);

// Reads an integer field as typed: optional sign, digits, at most maxChars characters.
bool readIntegerField(std::string_view text, std::size_t maxChars, long& value);

}  // namespace nocturnel
