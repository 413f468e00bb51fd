// The held-move deadlines: renewals keep a move, silence ends it, a stopped move is not renewed.
#include "shell/move_watchdog.h"

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

using std::chrono::milliseconds;
const MoveWatchdog::Clock::time_point t0{};

TEST(MoveWatchdog, RenewalsKeepAMoveAndSilenceEndsIt) {
    MoveWatchdog w(milliseconds(1000));
    w.hold(0, t0);
    struct Step {
        int atMs;
        bool renew;                 // the page renews at this time (else only the check runs)
        bool renewAccepted;
        std::vector<int> expired;   // what the check at this time stops
    };
    const Step steps[] = {
        {250, true, true, {}},
        {999, false, false, {}},      // 749 ms after the last renewal
        {1249, false, false, {}},     // 999 ms after it
        {1250, false, false, {0}},    // 1000 ms of silence: stopped
        {1300, true, false, {}},      // a late renewal cannot bring it back
        {5000, false, false, {}},     // stopped once only
    };
    for (const Step& s : steps) {
        const auto now = t0 + milliseconds(s.atMs);
        if (s.renew) {
            EXPECT_EQ(w.renew(0, now), s.renewAccepted) << s.atMs;
        }
        EXPECT_EQ(w.takeExpired(now), s.expired) << s.atMs;
    }
    EXPECT_FALSE(w.isHeld(0));
}

TEST(MoveWatchdog, DirectionsAreWatchedApart) {
    MoveWatchdog w(milliseconds(1000));
    w.hold(0, t0);                        // N held since 0
    w.hold(2, t0 + milliseconds(600));    // E held since 600
    EXPECT_EQ(w.takeExpired(t0 + milliseconds(1000)), std::vector<int>{0});
    EXPECT_TRUE(w.isHeld(2));
    EXPECT_EQ(w.takeExpired(t0 + milliseconds(1600)), std::vector<int>{2});
}

TEST(MoveWatchdog, ReleaseAndStopAllEndTheWatch) {
    MoveWatchdog w(milliseconds(1000));
    w.hold(1, t0);
    w.hold(3, t0);
    w.release(1);
    EXPECT_FALSE(w.renew(1, t0 + milliseconds(100)));
    EXPECT_TRUE(w.renew(3, t0 + milliseconds(100)));
    w.releaseAll();
    EXPECT_TRUE(w.takeExpired(t0 + milliseconds(60000)).empty());
    // A move started again is watched again.
    w.hold(3, t0 + milliseconds(70000));
    EXPECT_TRUE(w.isHeld(3));
}

TEST(MoveWatchdog, DirectionsOutsideTheFourAreIgnored) {
    MoveWatchdog w;
    for (const int d : {-1, 4, 99}) {
        w.hold(d, t0);
        EXPECT_FALSE(w.renew(d, t0));
        EXPECT_FALSE(w.isHeld(d));
    }
    EXPECT_TRUE(w.takeExpired(t0 + milliseconds(60000)).empty());
}

}  // namespace
}  // namespace nocturnel
