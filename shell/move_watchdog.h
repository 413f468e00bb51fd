#pragma once
// The hand box's held moves and their deadlines. While a direction key is held the page renews
// its move every few hundred milliseconds; a move whose renewals stopped coming (the tab closed,
// the phone asleep, the network lost) is handed back to be stopped exactly as the release
// would have stopped it. Directions: 0 north, 1 south, 2 east, 3 west.
//
// Thread-safe: the move and stop routes hold and release on the engine thread, the renewal
// route renews from the request's thread (a renewal never waits behind a long engine job),
// and the engine's periodic task collects the moves that ran out.
#include <array>
#include <chrono>
#include <mutex>
#include <optional>
#include <vector>

namespace nocturnel {

class MoveWatchdog {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::milliseconds kDefaultGrace{1000};

    // grace: how long a held move lasts without a renewal.
    explicit MoveWatchdog(std::chrono::milliseconds grace = kDefaultGrace) : grace_(grace) {}

    // The move of this direction started (or started again): its deadline is now + grace.
    void hold(int direction, Clock::time_point now = Clock::now());
    // The move stopped (release, Stop, disconnect): no deadline any more.
    void release(int direction);
    void releaseAll();
    // The page still holds the key: the deadline moves on. False when the direction is not held
    // (never started, released, or already stopped for lack of renewals).
    bool renew(int direction, Clock::time_point now = Clock::now());
    // The held directions whose deadline has passed; they are released.
    std::vector<int> takeExpired(Clock::time_point now = Clock::now());
    bool isHeld(int direction) const;

private:
    static bool valid(int direction) { return direction >= 0 && direction < 4; }

    const std::chrono::milliseconds grace_;
    mutable std::mutex mutex_;
    std::array<std::optional<Clock::time_point>, 4> deadline_{};
};

}  // namespace nocturnel
