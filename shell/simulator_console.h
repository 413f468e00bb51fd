#pragma once
// Pushing a simulated encoder-box telescope by hand: while `scope simulate` runs an encoder box,
// each line typed on its standard input moves the simulated telescope, as the observer pushes
// a real one: a name ("Vega", "M 42") points it at that object for the site and the clock of
// now, "AZ ALT" (two numbers, degrees) sets its two axes. Without this the simulated box
// stands still and a two-star alignment sees the same angles twice.
#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "scope/encoder_box_simulator.h"
#include "scope/mount_simulators.h"
#include "settings/preferences.h"

namespace nocturnel {

// The encoder-box responder of `scope simulate`, with its simulation handed out for the console.
PtyMount::Responder makeEncoderSimulatorWithState(int driveCode, const SimulatorOptions& options,
                                                  std::shared_ptr<EncoderBoxSimulation>& simulation);

// The axis angles of a level, meridian-zeroed mount pointing at a J2000 place at the moment:
// equatorial (mountType 0) the RA axis (RA of date - local sidereal time, degrees) and the
// declination; alt-azimuth the azimuth and the altitude.
bool simulatedAxisAngles(double raHours, double decDeg, const ObservingMoment& moment, double& firstDeg,
                         double& secondDeg);

// One typed line: true (and the counts moved) for a known name or two numbers; false with a
// message otherwise.
bool pushSimulatedTelescope(EncoderBoxSimulation& box, const std::string& line, const ObservingMoment& moment);

// Reads standard input line by line on a thread of its own while it lives (nothing for an
// encoder-less simulator).
class SimulatorConsole {
public:
    explicit SimulatorConsole(std::shared_ptr<EncoderBoxSimulation> box);
    ~SimulatorConsole();
    SimulatorConsole(const SimulatorConsole&) = delete;
    SimulatorConsole& operator=(const SimulatorConsole&) = delete;

private:
    std::shared_ptr<EncoderBoxSimulation> box_;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

}  // namespace nocturnel
