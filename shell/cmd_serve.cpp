// nocturnel serve: the program's interface served to any browser.
#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include "chart/chart_render.h"
#include "settings/message.h"
#include "shell/app.h"
#include "shell/commands.h"
#include "shell/engine.h"
#include "shell/http_server.h"
#include "shell/server_startup.h"

namespace nocturnel {
namespace {

void runServe(const ServeOptions& options) {
    // Ctrl-C and SIGTERM are taken by a watcher thread (every thread started below inherits
    // the blocked mask), which stops the server cleanly.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    sigset_t previousMask;
    pthread_sigmask(SIG_BLOCK, &stopSignals, &previousMask);

    {
        Engine engine;
        if (!startEngine(engine)) {
            setExitCode(1);
        } else {
            WebServer server(engine, options);
            if (!server.bind()) {
                setExitCode(1);
            } else {
                for (const std::string& url : server.openUrls())
                    std::cout << "Nocturnel's interface: open " << url << std::endl;
                std::cout << "Press Ctrl-C to stop." << std::endl;
                std::atomic<bool> done{false};
                std::thread watcher([&] {
                    const timespec step{0, 200'000'000};
                    while (!done) {
                        if (sigtimedwait(&stopSignals, nullptr, &step) > 0) {
                            server.stop();
                            return;
                        }
                    }
                });
                server.listen();
                done = true;
                watcher.join();
                std::cout << "Stopped." << std::endl;
            }
        }
        engine.run([] { releaseChartFonts(); });
    }
    pthread_sigmask(SIG_SETMASK, &previousMask, nullptr);
}

}  // namespace

void registerServeCommand(CLI::App& app) {
    auto options = std::make_shared<ServeOptions>();
    CLI::App* serve = app.add_subcommand(
        "serve", "Serve the interface to a browser (loopback by default; another address needs the printed token)");
    serve->add_option("--bind", options->bind, "Address to listen on (default 127.0.0.1; 0.0.0.0 for the network)");
    serve->add_option("--port", options->port, "Port (default 8080)")->check(CLI::Range(1, 65535));
    serve->callback([options] { runServe(*options); });
}

}  // namespace nocturnel
