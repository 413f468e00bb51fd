#pragma once
// The telescope and alignment routes of the web interface: the hand box (connect, read, goto,
// sync, rate, move, stop), the scope marker's position, and the two-star alignment.
#include <memory>

namespace httplib {
class Server;
}

namespace nocturnel {

class Engine;

// What the hand box holds between requests (engine thread only).
struct ScopeSession {
    bool connected = false;       // Connect succeeded and no read failed since
    bool restoreOffered = false;  // the saved alignment was offered once
};

// Before a telescope operation (engine thread): the port of the preferences' device is found
// in the port list, the scope clock follows the program's moment, and, the first time, a saved
// two-star alignment is offered again (the question goes to the page).
void prepareScope(ScopeSession& session);

void registerScopeRoutes(httplib::Server& server, Engine& engine, const std::shared_ptr<ScopeSession>& session);

}  // namespace nocturnel
