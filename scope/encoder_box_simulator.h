#pragma once
// A simulated encoder box for a PtyMount, speaking the dialect of one drive code: it answers
// the count query with the counts it holds (settable at any time, e.g. to play a mount that
// stands 2 degrees off level), takes the set-up text of its kind, and answers the Dave Ek
// status query. Lock `mutex` while reading or changing the shared state.
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "scope/pty_mount.h"

namespace nocturnel {

struct EncoderBoxSimulation {
    std::mutex mutex;

    long azCount = 0;
    long altCount = 0;
    char statusAnswer = 'Y';                     // Dave Ek answer to "a"
    std::optional<std::string> countsOverride;   // sent instead of the real count reply
    bool silent = false;                         // answers nothing at all

    std::string setupReceived;  // the last set-up text (or 5-byte binary set-up) received
    int setupCount = 0;
    int ackCount = 0;           // Dave Ek "A" after its set-up
    int queryCount = 0;
};

// A fresh simulation (counts 0, 0) when none is given.
PtyMount::Responder makeEncoderResponder(int driveCode, std::shared_ptr<EncoderBoxSimulation> simulation = nullptr);

}  // namespace nocturnel
