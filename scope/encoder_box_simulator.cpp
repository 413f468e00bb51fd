#include "scope/encoder_box_simulator.h"

#include "scope/encoder_box_wire.h"

namespace nocturnel {
namespace {

// The byte an Intelliscope sends ahead of its counts (the reader drops it).
constexpr char kIntelliscopeLeadByte = '#';

// Answers the first complete command in `pending` and removes it; false when more bytes are
// needed before the next command is complete.
bool answerOne(int driveCode, EncoderBoxSimulation& sim, std::string& pending, std::string& reply) {
    const char c = pending.front();
    if (driveCode == 4 && c == 'z') {
        if (pending.size() < 5) return false;
        sim.setupReceived = pending.substr(0, 5);
        ++sim.setupCount;
        pending.erase(0, 5);
        reply += 'R';
        return true;
    }
    if ((driveCode == 3 || driveCode == 21) && c == 'Z') {
        const auto end = pending.find('\n');
        if (end == std::string::npos) return false;
        sim.setupReceived = pending.substr(0, end + 1);
        ++sim.setupCount;
        pending.erase(0, end + 1);
        reply += '*';
        return true;
    }
    if (driveCode == 12 && c == 'I') {
        const auto end = pending.find('\r');
        if (end == std::string::npos) return false;
        sim.setupReceived = pending.substr(0, end + 1);
        ++sim.setupCount;
        pending.erase(0, end + 1);
        return true;
    }
    pending.erase(0, 1);
    if (driveCode == 4) {
        if (c == 'a') reply += sim.statusAnswer;
        if (c == 'A') ++sim.ackCount;
        if (c == 'y') {
            ++sim.queryCount;
            reply += sim.countsOverride ? *sim.countsOverride : daveEkCountsReply(sim.azCount, sim.altCount);
        }
        return true;
    }
    if (c == 'Q') {
        ++sim.queryCount;
        if (driveCode == 16) reply += kIntelliscopeLeadByte;
        reply += sim.countsOverride ? *sim.countsOverride : encoderCountsReply(sim.azCount, sim.altCount);
    }
    return true;  // any other byte is ignored
}

}  // namespace

PtyMount::Responder makeEncoderResponder(int driveCode, std::shared_ptr<EncoderBoxSimulation> simulation) {
    if (!simulation) simulation = std::make_shared<EncoderBoxSimulation>();
    return [driveCode, simulation](std::string& pending) {
        std::lock_guard lock(simulation->mutex);
        std::string reply;
        while (!pending.empty() && answerOne(driveCode, *simulation, pending, reply)) {
        }
        if (simulation->silent) reply.clear();
        return reply;
    };
}

}  // namespace nocturnel
