#pragma once
// The SkyRoamer, list, memo and observer-log routes of the web interface: each hands the
// same plans/ functions the roam, list, memo and log commands use to the engine thread and
// answers with the same JSON.
namespace httplib {
class Server;
}

namespace nocturnel {

class Engine;

void registerPlansRoutes(httplib::Server& server, Engine& engine);

}  // namespace nocturnel
