#pragma once
// The state of a simulated mount, shared between the simulator's thread and the test or
// command that watches and changes it: every access takes the lock.
#include <mutex>
#include <utility>

namespace nocturnel {

template <class State>
class GuardedState {
public:
    explicit GuardedState(State initial = {}) : state_(std::move(initial)) {}
    State state() const {
        std::lock_guard lock(mutex_);
        return state_;
    }
    template <class Change>
    void update(Change change) {
        std::lock_guard lock(mutex_);
        change(state_);
    }

protected:
    mutable std::mutex mutex_;
    State state_;
};

}  // namespace nocturnel
