#pragma once
// The JSON of the sky commands (planets, rise, twilight, moon, events, info, find suggestions)
// for the saved site and the moment, shared by the command line's --json and the web API. Each
// returns false after a message when the answer cannot be computed.
#include <nlohmann/json.hpp>
#include <string>

namespace nocturnel {

// Abbreviation of the constellation holding a J2000 place ("Tau"); empty when unknown.
std::string constellationAbbreviation(double raJ2000Hours, double decJ2000Deg);

bool planetsReportJson(nlohmann::json& out);
// Rise, transit and set of a body, a bright star or a catalogue object on the local day.
bool riseReportJson(const std::string& name, nlohmann::json& out);
bool twilightReportJson(nlohmann::json& out);
// The same for another local date (YYYY-MM-DD) at the site; the moment itself is kept.
bool twilightReportJsonForDate(const std::string& dateText, nlohmann::json& out);
bool moonReportJson(nlohmann::json& out);
// Events from the local date fromText to toText (both YYYY-MM-DD, toText included), of one kind
// when kind is not empty; refused when the range is longer than maxYears.
bool eventsReportJson(const std::string& fromText, const std::string& toText, const std::string& kind, double maxYears,
                      nlohmann::json& out);
// The object information card.
bool infoReportJson(const std::string& name, nlohmann::json& out);
// The names that start with the prefix (UTF-8), as a JSON array.
nlohmann::json suggestionsJson(const std::string& prefix, std::size_t limit);

}  // namespace nocturnel
