#include "shell/engine.h"

#include <exception>

namespace nocturnel {

Engine::Engine(std::chrono::milliseconds questionTimeout)
    : questionTimeout_(questionTimeout), thread_([this] { loop(); }) {}

Engine::~Engine() {
    {
        std::lock_guard lock(jobsMutex_);
        quitting_ = true;
    }
    jobsChanged_.notify_all();
    {
        // A question still waiting is answered No so that its job can end.
        std::lock_guard lock(questionMutex_);
        if (question_) answer_ = false;
    }
    questionAnswered_.notify_all();
    if (thread_.joinable()) thread_.join();
}

void Engine::setBeforeEachJob(std::function<void()> hook) {
    run([this, &hook] { beforeEachJob_ = std::move(hook); });
}

void Engine::setPeriodicTask(std::chrono::milliseconds period, std::function<void()> task) {
    run([&] {
        periodicTask_ = std::move(task);
        period_ = period;
        nextTick_ = std::chrono::steady_clock::now() + period;
    });
}

void Engine::runPeriodicTask() {
    nextTick_ = std::chrono::steady_clock::now() + period_;
    MessageCapture capture;
    try {
        periodicTask_();
    } catch (const std::exception& e) {
        showMessage("Internal error", e.what());
    } catch (...) {
        showMessage("Internal error", "unknown exception");
    }
    for (const Message& m : capture.messages()) laterMessages_.push_back(m);
}

std::vector<Message> Engine::run(const std::function<void()>& job) {
    std::vector<Message> messages;
    if (onEngineThread()) {
        job();
        return messages;
    }
    Job entry{job, &messages};
    {
        std::unique_lock lock(jobsMutex_);
        if (quitting_) return messages;
        jobs_.push_back(&entry);
        jobsChanged_.notify_all();
        jobsChanged_.wait(lock, [&] { return entry.done; });
    }
    return messages;
}

void Engine::loop() {
    for (;;) {
        Job* job = nullptr;
        {
            std::unique_lock lock(jobsMutex_);
            const auto ready = [&] { return quitting_ || !jobs_.empty(); };
            if (periodicTask_) jobsChanged_.wait_until(lock, nextTick_, ready);
            else jobsChanged_.wait(lock, ready);
            if (quitting_ && jobs_.empty()) return;  // quitting with nothing left
            if (!jobs_.empty()) {
                job = jobs_.front();
                jobs_.pop_front();
            }
        }
        if (periodicTask_ && std::chrono::steady_clock::now() >= nextTick_) runPeriodicTask();
        if (!job) continue;
        stop_ = false;
        {
            MessageCapture capture;
            QuestionSink previous = setQuestionSink([this](std::string_view q) { return askThroughPage(q); });
            try {
                if (beforeEachJob_) beforeEachJob_();
                job->work();
            } catch (const std::exception& e) {
                showMessage("Internal error", e.what());
            } catch (...) {
                showMessage("Internal error", "unknown exception");
            }
            setQuestionSink(std::move(previous));
            *job->messages = std::move(laterMessages_);
            laterMessages_.clear();
            for (const Message& m : capture.messages()) job->messages->push_back(m);
        }
        {
            std::lock_guard lock(jobsMutex_);
            job->done = true;
        }
        jobsChanged_.notify_all();
    }
}

void Engine::requestStop() {
    stop_ = true;
    // A question waiting for its answer is a long wait too: Stop answers it No.
    std::lock_guard lock(questionMutex_);
    if (question_ && !answer_) {
        answer_ = false;
        questionAnswered_.notify_all();
    }
}

std::optional<PendingQuestion> Engine::pendingQuestion() const {
    std::lock_guard lock(questionMutex_);
    if (answer_) return std::nullopt;
    return question_;
}

bool Engine::answer(int id, bool yes) {
    std::lock_guard lock(questionMutex_);
    if (!question_ || question_->id != id || answer_) return false;
    answer_ = yes;
    questionAnswered_.notify_all();
    return true;
}

bool Engine::askThroughPage(std::string_view question) {
    std::unique_lock lock(questionMutex_);
    question_ = PendingQuestion{nextQuestionId_++, std::string(question)};
    answer_.reset();
    const bool answered = questionAnswered_.wait_for(lock, questionTimeout_, [&] { return answer_.has_value(); });
    const bool yes = answered && *answer_;
    question_.reset();
    answer_.reset();
    return yes;
}

}  // namespace nocturnel
