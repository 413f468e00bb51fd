// The web interface on loopback: tap-to-new-chart latency (request sent to the whole PNG
// received) at zooms 0, 6 and 12 on an 800x800 chart, and a load run of twenty clients.
// Needs the catalogues: the program folder is NOCTURNEL_HOME, else the benchmark's own folder.
// NOCTURNEL_LOAD_SECONDS sets the load run's length (default 10 s).
#include <benchmark/benchmark.h>
#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "catalog/catalogues.h"
#include "settings/message.h"
#include "shell/app.h"
#include "shell/engine.h"
#include "shell/http_server.h"
#include "shell/server_startup.h"

namespace {
using namespace nocturnel;
using Clock = std::chrono::steady_clock;

// Resident set size of this process, MB.
double residentMb() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmRSS:", 0) == 0) return std::atof(line.c_str() + 6) / 1024.0;
    return 0;
}

struct BenchServer {
    Engine engine;
    std::unique_ptr<WebServer> server;
    std::thread thread;
    bool ready = false;

    BenchServer() {
        globalOptions() = GlobalOptions{};
        if (const char* home = std::getenv("NOCTURNEL_HOME")) globalOptions().home = home;
        globalOptions().date = "2026-11-21";
        globalOptions().time = "22:00";
        setMessageSink([](const Message&) {});
        if (!startEngine(engine)) return;
        bool stars = false;
        engine.run([&] { stars = defaultStarSlot().isOpen(); });
        if (!stars) return;
        server = std::make_unique<WebServer>(engine, ServeOptions{"127.0.0.1", 0});
        if (!server->bind()) return;
        thread = std::thread([this] { server->listen(); });
        httplib::Client probe("127.0.0.1", server->port());
        for (int i = 0; i < 200 && !probe.Get("/api/question"); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        ready = true;
    }
    ~BenchServer() {
        if (server) server->stop();
        if (thread.joinable()) thread.join();
    }
};

BenchServer& benchServer() {
    static BenchServer server;
    return server;
}

double percentile(std::vector<double> samples, double p) {
    if (samples.empty()) return 0;
    std::sort(samples.begin(), samples.end());
    const auto index = static_cast<std::size_t>(p * static_cast<double>(samples.size() - 1) + 0.5);
    return samples[std::min(index, samples.size() - 1)];
}

// The milliseconds of one part of a Server-Timing header ("queue;dur=0.01, draw;dur=18.4"); 0 when absent.
double serverTimingMs(const std::string& header, const std::string& part) {
    const std::size_t at = header.find(part + ";dur=");
    return at == std::string::npos ? 0.0 : std::atof(header.c_str() + at + part.size() + 5);
}

// One tap: the view centre moves a little each time, as after a drag, and the whole PNG is read.
// Besides the whole time, the server's own parts (Server-Timing): the wait for the engine, the
// drawing, the PNG encoding, and what is left (HTTP, copies, the loopback, the client).
void BM_TapToNewChart(benchmark::State& state) {
    BenchServer& s = benchServer();
    if (!s.ready) {
        state.SkipWithError("no server (catalogues missing? set NOCTURNEL_HOME)");
        return;
    }
    const int zoom = static_cast<int>(state.range(0));
    httplib::Client client("127.0.0.1", s.server->port());
    client.set_keep_alive(true);
    std::vector<double> ms, queueMs, drawMs, pngMs, restMs;
    std::size_t bytes = 0;
    int step = 0;
    for (auto _ : state) {
        const double az = 120.0 + (step++ % 40) * 2.0;
        const std::string path = "/api/chart.png?zoom=" + std::to_string(zoom) +
                                 "&width=800&height=800&az=" + std::to_string(az) + "&alt=45";
        const auto start = Clock::now();
        auto r = client.Get(path);
        ms.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        if (!r || r->status != 200) {
            state.SkipWithError("chart request failed");
            return;
        }
        bytes += r->body.size();
        const std::string timing = r->get_header_value("Server-Timing");
        queueMs.push_back(serverTimingMs(timing, "queue"));
        drawMs.push_back(serverTimingMs(timing, "draw"));
        pngMs.push_back(serverTimingMs(timing, "png"));
        restMs.push_back(ms.back() - queueMs.back() - drawMs.back() - pngMs.back());
    }
    state.counters["p50_ms"] = percentile(ms, 0.50);
    state.counters["p95_ms"] = percentile(ms, 0.95);
    state.counters["queue_p95_ms"] = percentile(queueMs, 0.95);
    state.counters["draw_p95_ms"] = percentile(drawMs, 0.95);
    state.counters["png_p95_ms"] = percentile(pngMs, 0.95);
    state.counters["rest_p95_ms"] = percentile(restMs, 0.95);
    state.counters["rest_p50_ms"] = percentile(restMs, 0.50);
    state.counters["png_kB"] = ms.empty() ? 0 : static_cast<double>(bytes) / static_cast<double>(ms.size()) / 1024.0;
}
BENCHMARK(BM_TapToNewChart)->Arg(0)->Arg(6)->Arg(12)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);

// Twenty clients for a bounded time: charts of a phone's size at random zooms, with the
// marker and moment polls a page makes between them.
void BM_TwentyClients(benchmark::State& state) {
    BenchServer& s = benchServer();
    if (!s.ready) {
        state.SkipWithError("no server (catalogues missing? set NOCTURNEL_HOME)");
        return;
    }
    const char* env = std::getenv("NOCTURNEL_LOAD_SECONDS");
    const double seconds = env ? std::atof(env) : 10.0;
    for (auto _ : state) {
        std::atomic<long> requests{0}, errors{0};
        std::vector<std::vector<double>> latencies(20);
        const double rssBefore = residentMb();
        double rssMid = 0;
        const auto end = Clock::now() + std::chrono::duration<double>(seconds);
        const auto mid = Clock::now() + std::chrono::duration<double>(seconds / 2);
        std::vector<std::thread> clients;
        for (int c = 0; c < 20; ++c) {
            clients.emplace_back([&, c] {
                httplib::Client client("127.0.0.1", s.server->port());
                client.set_keep_alive(true);
                std::mt19937 random(c);
                for (int i = 0; Clock::now() < end; ++i) {
                    std::string path;
                    switch (i % 3) {
                        case 0:
                            path = "/api/chart.png?zoom=" + std::to_string(random() % 13) + "&width=390&height=700&scale=2";
                            break;
                        case 1: path = "/api/scope/position"; break;
                        default: path = "/api/now"; break;
                    }
                    const auto start = Clock::now();
                    auto r = client.Get(path);
                    latencies[c].push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
                    ++requests;
                    if (!r || r->status != 200) ++errors;
                    if (c == 0 && rssMid == 0 && Clock::now() > mid) rssMid = residentMb();
                }
            });
        }
        for (auto& t : clients) t.join();
        std::vector<double> all;
        for (const auto& l : latencies) all.insert(all.end(), l.begin(), l.end());
        state.counters["requests"] = static_cast<double>(requests);
        state.counters["errors"] = static_cast<double>(errors);
        state.counters["req_per_s"] = static_cast<double>(requests) / seconds;
        state.counters["p95_ms"] = percentile(all, 0.95);
        state.counters["rss_before_MB"] = rssBefore;
        state.counters["rss_mid_MB"] = rssMid;
        state.counters["rss_after_MB"] = residentMb();
    }
}
BENCHMARK(BM_TwentyClients)->Iterations(1)->Unit(benchmark::kSecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
