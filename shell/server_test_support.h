#pragma once
// Test support: a web server on an ephemeral loopback port inside the test process, with its
// engine started on a fresh program folder (the built catalogues linked in when present).
#include <httplib.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>

#include "catalog/catalogues.h"
#include "chart/chart_render.h"
#include "chart/sky_objects.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"
#include "shell/app.h"
#include "shell/engine.h"
#include "shell/http_server.h"
#include "shell/server_startup.h"

namespace nocturnel {

// One running server: engine, bound port, listening thread.
class TestServer {
public:
    explicit TestServer(const std::filesystem::path& home, std::string bind = "127.0.0.1",
                        std::chrono::milliseconds questionTimeout = std::chrono::seconds(5))
        : engine_(questionTimeout) {
        globalOptions() = GlobalOptions{};
        globalOptions().home = home.string();
        globalOptions().date = "2026-11-21";
        globalOptions().time = "22:00";
        started_ = startEngine(engine_);
        if (!started_) return;
        server_ = std::make_unique<WebServer>(engine_, ServeOptions{bind, 0});
        bound_ = server_->bind();
        if (bound_) thread_ = std::thread([this] { server_->listen(); });
        // Wait until the server answers.
        for (int i = 0; bound_ && i < 200; ++i) {
            httplib::Client probe(bind, server_->port());
            if (probe.Get("/api/question")) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    ~TestServer() {
        if (server_) server_->stop();
        if (thread_.joinable()) thread_.join();
        engine_.run([] {
            closeCatalogues();
            forgetChartCatalogues();
            releaseChartFonts();
        });
    }
    bool ready() const { return started_ && bound_; }
    int port() const { return server_->port(); }
    Engine& engine() { return engine_; }
    WebServer& server() { return *server_; }

private:
    Engine engine_;
    std::unique_ptr<WebServer> server_;
    std::thread thread_;
    bool started_ = false, bound_ = false;
};

// A fresh program folder per test, holding a link to the built catalogues when there are some.
class ServerTestBase : public ::testing::Test {
protected:
    void SetUp() override {
        home_ = std::filesystem::temp_directory_path() /
                ("nocturnel_server_" + std::to_string(::getpid()) + "_" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(home_);
        std::filesystem::create_directories(home_);
        const char* data = std::getenv("NOCTURNEL_TEST_DATA");
        hasData_ = data && std::filesystem::exists(std::filesystem::path(data) / "nocturnel_default_stars.ppc");
        if (hasData_) std::filesystem::create_directory_symlink(data, home_ / "data");
    }
    void TearDown() override {
        globalOptions() = GlobalOptions{};
        std::error_code ec;
        std::filesystem::remove_all(home_, ec);
    }
    static nlohmann::json json(const httplib::Result& r) {
        if (!r) return nlohmann::json();
        return nlohmann::json::parse(r->body, nullptr, false);
    }

    std::filesystem::path home_;
    bool hasData_ = false;
};

}  // namespace nocturnel
