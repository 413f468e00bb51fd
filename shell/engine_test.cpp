// The engine thread's periodic task: it runs on the engine thread between jobs, its messages
// come back with the next job's, and it can be removed.
#include "shell/engine.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace nocturnel {
namespace {

using std::chrono::milliseconds;

TEST(EnginePeriodicTask, RunsOnTheEngineThreadWhileNoJobWaits) {
    Engine engine;
    std::atomic<int> runs{0};
    std::atomic<bool> offThread{false};
    engine.setPeriodicTask(milliseconds(20), [&] {
        if (!engine.onEngineThread()) offThread = true;
        ++runs;
    });
    std::this_thread::sleep_for(milliseconds(300));
    EXPECT_GE(runs.load(), 5) << "idle, the task still runs";
    EXPECT_FALSE(offThread.load());
    // Removed: it runs no more.
    engine.setPeriodicTask(milliseconds(20), {});
    const int after = runs.load();
    std::this_thread::sleep_for(milliseconds(100));
    EXPECT_EQ(runs.load(), after);
}

TEST(EnginePeriodicTask, ItsMessagesComeWithTheNextJobOnce) {
    Engine engine;
    std::atomic<bool> shown{false};
    engine.setPeriodicTask(milliseconds(10), [&] {
        if (!shown.exchange(true)) showMessage("The scope drive did not accept the command", "LX200");
    });
    while (!shown) std::this_thread::sleep_for(milliseconds(5));
    std::this_thread::sleep_for(milliseconds(30));
    const auto first = engine.run([] { showMessage("Own message"); });
    ASSERT_EQ(first.size(), 2u);
    EXPECT_EQ(first[0].title, "The scope drive did not accept the command");
    EXPECT_EQ(first[1].title, "Own message");
    EXPECT_TRUE(engine.run([] {}).empty());
}

TEST(EnginePeriodicTask, AJobIsNotHeldBackByTheTask) {
    Engine engine;
    engine.setPeriodicTask(milliseconds(1000), [] {});
    const auto start = std::chrono::steady_clock::now();
    engine.run([] {});
    EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(500)) << "the job waited for the task's period";
}

}  // namespace
}  // namespace nocturnel
