#pragma once
// The form routes of the web interface: the list of forms, each form's description with its
// current values (form_descriptions.h), and submitting a form, which runs the same engine
// logic as the command line and answers with the form as it now stands.
#include <memory>

namespace httplib {
class Server;
}

namespace nocturnel {

class Engine;
struct ScopeSession;

void registerFormRoutes(httplib::Server& server, Engine& engine, const std::shared_ptr<ScopeSession>& session);

}  // namespace nocturnel
