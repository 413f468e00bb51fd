#pragma once
// The engine thread: the one thread that touches the program's state (prefs(), the catalogues,
// the serial link, the alignment). Other threads (the web server's) hand it jobs and wait for
// the answer. Every message the engine shows during a job is collected and returned with it;
// a question it asks is parked in a slot that the page polls and answers; a stop flag, set
// from any thread, ends the long loops of the running job. One periodic task (the hand box's
// held-move watchdog) runs on the same thread between jobs.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "settings/message.h"

namespace nocturnel {

// A question waiting for the page's answer. The text is the program's own (Latin-1).
struct PendingQuestion {
    int id = 0;
    std::string text;
};

class Engine {
public:
    // questionTimeout: how long a question waits for the page before it is answered No.
    explicit Engine(std::chrono::milliseconds questionTimeout = std::chrono::seconds(120));
    ~Engine();  // ends the thread after the queued jobs
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // Runs the job on the engine thread and waits for it; returns the messages it showed.
    // A job that throws shows "Internal error" with the exception's text instead of ending the
    // program. Called on the engine thread itself, the job runs at once.
    std::vector<Message> run(const std::function<void()>& job);

    // Runs before each job on the engine thread (the web layer refreshes the moment there).
    void setBeforeEachJob(std::function<void()> hook);

    // A task run on the engine thread every `period` (after the running job when one is under
    // way), so that a check on a clock needs no thread of its own. The messages it shows are
    // kept and returned with the next job's. One task; a later call replaces it, an empty
    // function removes it.
    void setPeriodicTask(std::chrono::milliseconds period, std::function<void()> task);

    // The stop flag: cleared when a job starts, set by the page's Stop button.
    void requestStop();
    bool stopRequested() const { return stop_.load(); }

    // The question slot (any thread).
    std::optional<PendingQuestion> pendingQuestion() const;
    // Answers the pending question with this id; false when none waits with that id.
    bool answer(int id, bool yes);

    bool onEngineThread() const { return std::this_thread::get_id() == thread_.get_id(); }

private:
    struct Job {
        std::function<void()> work;
        std::vector<Message>* messages = nullptr;
        bool done = false;
    };
    void loop();
    void runPeriodicTask();
    bool askThroughPage(std::string_view question);

    std::chrono::milliseconds questionTimeout_;
    std::function<void()> beforeEachJob_;
    // Engine thread only: the periodic task, when it runs next, and the messages it showed.
    std::function<void()> periodicTask_;
    std::chrono::milliseconds period_{0};
    std::chrono::steady_clock::time_point nextTick_{};
    std::vector<Message> laterMessages_;
    std::atomic<bool> stop_{false};

    std::mutex jobsMutex_;
    std::condition_variable jobsChanged_;
    std::deque<Job*> jobs_;
    bool quitting_ = false;

    mutable std::mutex questionMutex_;
    std::condition_variable questionAnswered_;
    std::optional<PendingQuestion> question_;
    std::optional<bool> answer_;
    int nextQuestionId_ = 1;

    std::thread thread_;  // last: started once everything above exists
};

}  // namespace nocturnel
