#pragma once
// The web interface's HTTP edge (cpp-httplib): binding, the access token of a non-loopback
// bind, the page's files compiled into the program, JSON errors for every refused request, and
// the /api/ routes (api_routes.h). Handlers parse, hand the work to the engine thread and
// serialise; nothing else happens here.
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "shell/engine.h"

namespace httplib {
class Server;
}

namespace nocturnel {

struct ServeOptions {
    std::string bind = "127.0.0.1";
    int port = 8080;  // 0: any free port (tests)
};

// 127.0.0.1, localhost and ::1 need no token; every other address does.
bool bindNeedsToken(std::string_view address);
// 32 hex digits from /dev/urandom; empty (message shown) when it cannot be read.
std::string randomToken();

class WebServer {
public:
    WebServer(Engine& engine, ServeOptions options);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    // Binds the address and port; false with a message ("Port 8080 is already in use").
    bool bind();
    int port() const { return port_; }
    const std::string& token() const { return token_; }
    // The address to open in a browser (with ?token= when one is needed).
    std::string openUrl() const;
    // Bound to every address (0.0.0.0, ::): the same for each IPv4 address of this machine's
    // network interfaces, the ones a phone on the network can reach; else just openUrl().
    std::vector<std::string> openUrls() const;
    // Serves until stop() (blocking).
    void listen();
    void stop();

private:
    Engine& engine_;
    ServeOptions options_;
    std::string token_;
    int port_ = 0;
    std::unique_ptr<httplib::Server> server_;
};

}  // namespace nocturnel
