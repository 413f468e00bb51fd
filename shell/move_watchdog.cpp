#include "shell/move_watchdog.h"

namespace nocturnel {

void MoveWatchdog::hold(int direction, Clock::time_point now) {
    if (!valid(direction)) return;
    std::lock_guard lock(mutex_);
    deadline_[direction] = now + grace_;
}

void MoveWatchdog::release(int direction) {
    if (!valid(direction)) return;
    std::lock_guard lock(mutex_);
    deadline_[direction].reset();
}

void MoveWatchdog::releaseAll() {
    std::lock_guard lock(mutex_);
    for (auto& d : deadline_) d.reset();
}

bool MoveWatchdog::renew(int direction, Clock::time_point now) {
    if (!valid(direction)) return false;
    std::lock_guard lock(mutex_);
    if (!deadline_[direction]) return false;
    deadline_[direction] = now + grace_;
    return true;
}

std::vector<int> MoveWatchdog::takeExpired(Clock::time_point now) {
    std::vector<int> expired;
    std::lock_guard lock(mutex_);
    for (int d = 0; d < 4; ++d) {
        if (deadline_[d] && *deadline_[d] <= now) {
            expired.push_back(d);
            deadline_[d].reset();
        }
    }
    return expired;
}

bool MoveWatchdog::isHeld(int direction) const {
    if (!valid(direction)) return false;
    std::lock_guard lock(mutex_);
    return deadline_[direction].has_value();
}

}  // namespace nocturnel
