#pragma once
// The /api/ routes of the web interface (documented in the README, "Web interface").
namespace httplib {
class Server;
}

namespace nocturnel {

class Engine;

// Registers every /api/ route; each hands its work to the engine and answers JSON (or PNG).
void registerApiRoutes(httplib::Server& server, Engine& engine);

}  // namespace nocturnel
