#include "scope/skycommander_simulator.h"

#include <cstdlib>

#include "scope/skycommander_wire.h"

namespace nocturnel {
namespace {

// "L0 <first> <second>\n": the device moves its target to the two numbers.
void takeTarget(SkyCommanderSimulation& sim, const std::string& text) {
    sim.lastTarget = text;
    ++sim.targetCount;
    const char* p = text.c_str() + 1;  // after the 'L'
    char* end = nullptr;
    std::strtol(p, &end, 10);  // the "0" after the 'L'
    const double first = std::strtod(end, &end);
    const double second = std::strtod(end, &end);
    sim.first = first;
    sim.second = second;
}

}  // namespace

PtyMount::Responder makeSkyCommanderResponder(std::shared_ptr<SkyCommanderSimulation> simulation) {
    if (!simulation) simulation = std::make_shared<SkyCommanderSimulation>();
    return [simulation](std::string& pending) {
        std::lock_guard lock(simulation->mutex);
        SkyCommanderSimulation& sim = *simulation;
        std::string reply;
        while (!pending.empty()) {
            if (pending.front() == '\r') {
                pending.erase(0, 1);
                reply += sim.positionOverride ? *sim.positionOverride : skyCommanderPositionReply(sim.first, sim.second);
                continue;
            }
            if (pending.front() == 'L') {
                const auto end = pending.find('\n');
                if (end == std::string::npos) break;  // wait for the rest of the text
                takeTarget(sim, pending.substr(0, end + 1));
                pending.erase(0, end + 1);
                reply += sim.ack;
                continue;
            }
            pending.erase(0, 1);  // not a SkyCommander command: ignored
        }
        if (sim.silent) reply.clear();
        return reply;
    };
}

}  // namespace nocturnel
