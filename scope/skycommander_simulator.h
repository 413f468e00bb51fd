#pragma once
// A simulated SkyCommander for a PtyMount: answers CR with its position (16 bytes) and takes
// "L0 ..." target texts, acknowledging each with 'A' (or another configured answer).
// Lock `mutex` while reading or changing the shared state.
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "scope/pty_mount.h"

namespace nocturnel {

struct SkyCommanderSimulation {
    std::mutex mutex;

    double first = 0;     // right ascension as the device reports it
    double second = 0;    // declination
    char ack = 'A';
    std::optional<std::string> positionOverride;  // sent instead of the real position reply
    bool silent = false;

    std::string lastTarget;  // the last "L0 ..." text received, with its line feed
    int targetCount = 0;
};

// A fresh simulation (position 0, 0) when none is given.
PtyMount::Responder makeSkyCommanderResponder(std::shared_ptr<SkyCommanderSimulation> simulation = nullptr);

}  // namespace nocturnel
