#include "shell/http_server.h"

#include <httplib.h>
#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cstdio>
#include <fstream>

#include "settings/message.h"
#include "shell/api_routes.h"
#include "shell/http_reply.h"
#include "shell/web_assets.h"

namespace nocturnel {
namespace {

constexpr std::size_t kMaxBodyBytes = 64 * 1024;
constexpr char kTokenCookie[] = "nocturnel_token";

std::string_view contentTypeFor(std::string_view path) {
    struct Type {
        std::string_view extension, type;
    };
    static constexpr std::array<Type, 11> kTypes = {{
        {".html", "text/html; charset=utf-8"},
        {".css", "text/css; charset=utf-8"},
        {".js", "text/javascript; charset=utf-8"},
        {".mjs", "text/javascript; charset=utf-8"},
        {".json", "application/json"},
        {".svg", "image/svg+xml"},
        {".png", "image/png"},
        {".webmanifest", "application/manifest+json"},
        {".ico", "image/x-icon"},
        {".txt", "text/plain; charset=utf-8"},
        {".map", "application/json"},
    }};
    for (const Type& t : kTypes)
        if (path.size() > t.extension.size() && path.ends_with(t.extension)) return t.type;
    return "application/octet-stream";
}

// A request path names a file of the page only when it is plain: letters, digits, '-', '_',
// '.', and single '/' between names, no name starting with a dot (so no "..").
bool isPlainAssetPath(std::string_view path) {
    if (path.empty() || path.size() > 200) return false;
    bool atNameStart = true;
    for (char c : path) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
                           c == '_' || c == '.' || c == '/';
        if (!plain) return false;
        if (atNameStart && (c == '.' || c == '/')) return false;
        atNameStart = c == '/';
    }
    return !atNameStart;
}

const WebAsset* findAsset(std::string_view path) {
    for (const WebAsset& asset : webAssets())
        if (asset.path == path) return &asset;
    return nullptr;
}

void notFound(httplib::Response& res, std::string_view what) {
    replyError(res, 404, Message{"Not found", std::string(what.substr(0, 120))});
}

void serveAsset(const httplib::Request& req, httplib::Response& res) {
    // The raw target is checked too: an encoded slash or dot ("%2F", "%2e") never names a file.
    const std::string_view target(req.target);
    const std::string_view rawPath = target.substr(0, target.find('?'));
    if (rawPath.find('%') != std::string_view::npos || rawPath.find("//") != std::string_view::npos)
        return notFound(res, req.path);
    std::string_view path(req.path);
    if (path.empty() || path[0] != '/') return notFound(res, req.path);
    path.remove_prefix(1);
    if (path.empty()) path = "index.html";
    if (!isPlainAssetPath(path)) return notFound(res, req.path);
    const WebAsset* asset = findAsset(path);
    if (!asset) return notFound(res, req.path);
    res.status = 200;
    res.set_header("Cache-Control", "no-cache");
    res.set_content(reinterpret_cast<const char*>(asset->data), asset->size, std::string(contentTypeFor(path)));
}

std::string cookieValue(const httplib::Request& req, std::string_view name) {
    const std::string cookies = req.get_header_value("Cookie");
    std::string_view rest(cookies);
    while (!rest.empty()) {
        const std::size_t end = rest.find(';');
        std::string_view item = rest.substr(0, end);
        while (!item.empty() && item.front() == ' ') item.remove_prefix(1);
        if (item.size() > name.size() && item.starts_with(name) && item[name.size()] == '=')
            return std::string(item.substr(name.size() + 1));
        if (end == std::string_view::npos) break;
        rest.remove_prefix(end + 1);
    }
    return {};
}

// What the answer may be compressed with. httplib compresses text and JSON answers on its own,
// preferring brotli at its slowest quality (about 50 ms for a 14 KB script, 2..14 ms for a tiny
// JSON answer), so: nothing for a browser on this machine, where compressing costs time and
// saves none, and gzip only for one on the network.
void limitCompression(const httplib::Request& req) {
    // The request is httplib's own non-const object, handed to the handlers as const.
    auto& headers = const_cast<httplib::Headers&>(req.headers);
    const auto it = headers.find("Accept-Encoding");
    if (it == headers.end()) return;
    const bool local = req.remote_addr.starts_with("127.") || req.remote_addr == "::1" ||
                       req.remote_addr.starts_with("::ffff:127.");
    if (local || it->second.find("gzip") == std::string::npos) headers.erase(it);
    else it->second = "gzip";
}

// Compares without an early exit, so the time taken says nothing about the token.
bool sameToken(std::string_view given, std::string_view token) {
    if (given.size() != token.size()) return false;
    unsigned char diff = 0;
    for (std::size_t i = 0; i < token.size(); ++i) diff |= static_cast<unsigned char>(given[i] ^ token[i]);
    return diff == 0;
}

}  // namespace

bool bindNeedsToken(std::string_view address) {
    return !(address == "127.0.0.1" || address == "localhost" || address == "::1");
}

std::string randomToken() {
    std::ifstream in("/dev/urandom", std::ios::binary);
    std::array<unsigned char, 16> bytes{};
    if (!in.read(reinterpret_cast<char*>(bytes.data()), bytes.size())) {
        showMessage("Can't read /dev/urandom", "No access token can be made.");
        return {};
    }
    std::string token;
    char hex[3];
    for (unsigned char b : bytes) {
        std::snprintf(hex, sizeof hex, "%02x", b);
        token += hex;
    }
    return token;
}

WebServer::WebServer(Engine& engine, ServeOptions options)
    : engine_(engine), options_(std::move(options)), server_(std::make_unique<httplib::Server>()) {
    httplib::Server& s = *server_;
    s.new_task_queue = [] { return new httplib::ThreadPool(32); };
    // SO_REUSEADDR only: httplib's default SO_REUSEPORT would let a second server share a
    // port already in use instead of being told so.
    s.set_socket_options([](int sock) {
        int yes = 1;
        setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    // Answers leave at once: with Nagle's algorithm the body of a reply written after its
    // headers waits for the browser's delayed acknowledgement (about 40 ms per chart).
    s.set_tcp_nodelay(true);
    s.set_payload_max_length(kMaxBodyBytes);
    s.set_keep_alive_timeout(2);
    s.set_read_timeout(10);
    s.set_write_timeout(10);

    s.set_pre_routing_handler([this](const httplib::Request& req, httplib::Response& res) {
        limitCompression(req);
        if (token_.empty()) return httplib::Server::HandlerResponse::Unhandled;
        std::string given = req.get_param_value("token");
        bool fromQuery = !given.empty();
        if (given.empty()) given = cookieValue(req, kTokenCookie);
        if (given.empty()) {
            const std::string auth = req.get_header_value("Authorization");
            if (auth.starts_with("Bearer ")) given = auth.substr(7);
        }
        if (!sameToken(given, token_)) {
            replyError(res, 401, Message{"Access refused", "Open the address printed by \"nocturnel serve\" (with its token)."});
            return httplib::Server::HandlerResponse::Handled;
        }
        if (fromQuery)
            res.set_header("Set-Cookie", std::string(kTokenCookie) + "=" + token_ + "; Path=/; HttpOnly; SameSite=Strict");
        return httplib::Server::HandlerResponse::Unhandled;
    });
    // Errors httplib itself raises (no route, too long a request line, too big a body, a
    // handler's exception) get the JSON error of every other refusal.
    s.set_error_handler(httplib::Server::HandlerWithResponse([](const httplib::Request& req, httplib::Response& res) {
        if (!res.body.empty()) return httplib::Server::HandlerResponse::Unhandled;
        Message m;
        switch (res.status) {
            case 404: m = {"Not found", req.path.substr(0, 120)}; break;
            case 405: m = {"Method not allowed", req.method}; break;
            case 413: m = {"Request too large", "The body may hold at most 64 KB."}; break;
            case 414: m = {"Request too large", "The address is too long."}; break;
            default: m = {"Bad request", "HTTP " + std::to_string(res.status)}; break;
        }
        replyError(res, res.status, m);
        return httplib::Server::HandlerResponse::Handled;
    }));
    s.set_exception_handler([](const httplib::Request&, httplib::Response& res, std::exception_ptr ep) {
        Message m{"Internal error", ""};
        try {
            if (ep) std::rethrow_exception(ep);
        } catch (const std::exception& e) {
            m.detail = e.what();
        } catch (...) {
        }
        replyError(res, 500, m);
    });

    registerApiRoutes(s, engine_);
    s.Get(R"(/api/.*)", [](const httplib::Request& req, httplib::Response& res) { notFound(res, req.path); });
    s.Get(R"(/.*)", serveAsset);
}

WebServer::~WebServer() { stop(); }

bool WebServer::bind() {
    if (bindNeedsToken(options_.bind)) {
        token_ = randomToken();
        if (token_.empty()) return false;
    }
    if (options_.port == 0) {
        port_ = server_->bind_to_any_port(options_.bind);
        if (port_ > 0) return true;
    } else if (server_->bind_to_port(options_.bind, options_.port)) {
        port_ = options_.port;
        return true;
    }
    showMessage("Port " + std::to_string(options_.port) + " is already in use",
                "Can't listen on " + options_.bind + ":" + std::to_string(options_.port) +
                    "; stop the other program or give --port N.");
    return false;
}

namespace {
std::string urlFor(const std::string& address, int port, const std::string& token) {
    const std::string host = address.find(':') != std::string::npos ? "[" + address + "]" : address;
    std::string url = "http://" + host + ":" + std::to_string(port) + "/";
    if (!token.empty()) url += "?token=" + token;
    return url;
}
}  // namespace

std::string WebServer::openUrl() const { return urlFor(options_.bind, port_, token_); }

std::vector<std::string> WebServer::openUrls() const {
    std::vector<std::string> urls;
    if (options_.bind == "0.0.0.0" || options_.bind == "::") {
        ifaddrs* list = nullptr;
        if (getifaddrs(&list) == 0) {
            for (ifaddrs* a = list; a; a = a->ifa_next) {
                if (!a->ifa_addr || a->ifa_addr->sa_family != AF_INET || (a->ifa_flags & IFF_LOOPBACK)) continue;
                char text[INET_ADDRSTRLEN] = {};
                const auto* in = reinterpret_cast<const sockaddr_in*>(a->ifa_addr);
                if (inet_ntop(AF_INET, &in->sin_addr, text, sizeof text)) urls.push_back(urlFor(text, port_, token_));
            }
            freeifaddrs(list);
        }
    }
    if (urls.empty()) urls.push_back(openUrl());
    return urls;
}

void WebServer::listen() { server_->listen_after_bind(); }

void WebServer::stop() {
    if (server_) server_->stop();
}

}  // namespace nocturnel
