#pragma once
// The telescope and alignment routes of the web interface: the hand box (connect, read, goto,
// sync, rate, move and its renewal, stop), the scope marker's position, and the two-star
// alignment. Registering them starts the held-move watchdog on the engine.
#include <memory>

#include "shell/scope_session.h"

namespace httplib {
class Server;
}

namespace nocturnel {

class Engine;

void registerScopeRoutes(httplib::Server& server, Engine& engine, const std::shared_ptr<ScopeSession>& session);

}  // namespace nocturnel
