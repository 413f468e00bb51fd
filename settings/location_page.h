#pragma once
// The Location page as engine functions: the texts it shows, its daylight-saving box, the
// checks made when it is accepted, the three site memories ("Site1".."Site3") and the choice
// of a place from the location list. The page's fields are plain strings as typed.
#include <functional>
#include <optional>
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
    std::string latitude;     // "Latitude:", "%s N" / "%s S"
    std::string longitude;    // "Longitude:", "%s W" / "%s E" (a bare number counts positive west)
    std::string height;       // "Height:" metres
    std::string utcOffset;    // "GMT (mn):" the offset without the daylight-saving hour
    std::string temperature;  // "T° (C°):"
    std::string pressure;     // "P (mbar):"
    std::string humidity;     // "Humidity (%):"
    int skyQuality = 3;       // index in the sky-quality list as shown
    bool daylightSaving = false;
    int memory = 0;           // selector: 0 "Site1", 1 "Site2", 2 "Site3"
    std::string latitudeShown, longitudeShown;  // the position texts as shown (an unchanged text is not read back)
};

// Degrees (non-negative) to the page's angle text; the shell passes the decFormat formatter.
using DegreesTextFn = std::function<std::string(double)>;

// The page as shown for the record.
LocationPageFields showLocationPage(const Preferences& p, const DegreesTextFn& degreesText, int memory = 0);

// The latitude and longitude texts the page shows for a position.
std::string latitudeFieldText(double latitudeDeg, const DegreesTextFn& degreesText);
std::string longitudeFieldText(double longitudeWestDeg, const DegreesTextFn& degreesText);

// Ticking (true) or clearing the daylight-saving box: at once 60 minutes more or less in
// utcOffsetMin and the new dstFlag. Nothing changes when the box already shows that state.
void setDaylightSaving(Preferences& p, LocationPageFields& fields, bool on);

// Accepting the page: each number is checked; an invalid one is not stored and its field is
// reset to the stored value. Latitude and longitude are read as readLatitudeText /
// readLongitudeText read them when their text differs from what the page showed. When all are valid the site is also stored into the selected
// memory and true is returned. A message names the first invalid field.
bool acceptLocationPage(Preferences& p, LocationPageFields& fields);

// A memory never stored: no name and the zero position of a fresh record.
bool siteMemoryIsEmpty(const SiteMemory& m);

// Site memories: index 0..2. False (message shown) for another index, and recalling an empty
// memory is refused (the current site is kept).
bool storeSiteMemory(Preferences& p, int memory);
bool recallSiteMemory(Preferences& p, int memory);

// A place chosen from the location list: name (11 characters), position and the place's UT
// offset (plus 60 while daylight saving is on); the height becomes 0.
void chooseLocation(Preferences& p, std::string_view name, double latitudeDeg, double longitudeWestDeg,
                    int utcOffsetMin);

// The site position as typed. A bare number keeps the record's convention: latitude positive
// north, longitude positive WEST. A letter after (or before) the number says it outright:
// "31.96N" / "31.96 S", "111.6W" / "111.6 E" (case ignored). Sexagesimal text is read too:
// "111:36:00 W", "111°36'00 W" (the degree sign as Latin-1 or UTF-8), "111 36 00W"; the page's
// own texts ("%s W") read back. A sign and a letter together ("-111.6W") are refused as
// ambiguous. Nothing when unreadable or beyond 90 (latitude) / 180 (longitude) degrees.
std::optional<double> readLatitudeText(std::string_view text);
std::optional<double> readLongitudeText(std::string_view text);

// Reads an integer field as typed: optional sign, digits, at most maxChars characters.
bool readIntegerField(std::string_view text, std::size_t maxChars, long& value);

}  // namespace nocturnel
