#pragma once
// The sky routes of the web interface: the planets, rise/transit/set, twilight, the Moon, the
// events over a range of dates, the object card and the finder's suggestions, each answering
// with the JSON of the matching command.
namespace httplib {
class Server;
}

namespace nocturnel {

class Engine;

// The longest range of /api/events, in years (a search of years keeps the engine busy).
constexpr double kWebEventsMaxYears = 3.0;
// Most suggestions one /api/find/suggest answer holds.
constexpr int kWebSuggestionsMax = 12;

void registerSkyRoutes(httplib::Server& server, Engine& engine);

}  // namespace nocturnel
