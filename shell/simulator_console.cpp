#include "shell/simulator_console.h"

#include <poll.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <iostream>
#include <sstream>

#include "core/apparent_place.h"
#include "core/time.h"
#include "scope/scope_interface.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "shell/option_checks.h"
#include "shell/target_names.h"

namespace nocturnel {

PtyMount::Responder makeEncoderSimulatorWithState(int driveCode, const SimulatorOptions& options,
                                                  std::shared_ptr<EncoderBoxSimulation>& simulation) {
    simulation = std::make_shared<EncoderBoxSimulation>();
    simulation->azCount = encoderCountForAngle(options.azDeg, prefs().encoderAzSteps, false);
    simulation->altCount = encoderCountForAngle(options.altDeg, prefs().encoderAltSteps, true);
    return makeEncoderResponder(driveCode, simulation);
}

bool simulatedAxisAngles(double raHours, double decDeg, const ObservingMoment& m, double& firstDeg,
                         double& secondDeg) {
    double alt = 0, az = 0, raDate = 0, decDate = 0;
    if (equatorialToHorizontal(raHours, decDeg, 0, m, &alt, &az, &raDate, &decDate) != 0) return false;
    if (prefs().mountType == 1) {
        firstDeg = az;
        secondDeg = alt;
        return true;
    }
    const Preferences& p = prefs();
    const double lst = localSiderealTime(m.year, m.month, m.day, m.hour, m.minute, m.second, p.longitudeDeg, p.utcOffsetMin);
    firstDeg = std::fmod((raDate - lst) * 15.0 + 720.0, 360.0);
    secondDeg = decDate;
    return true;
}

bool pushSimulatedTelescope(EncoderBoxSimulation& box, const std::string& line, const ObservingMoment& moment) {
    double first = 0, second = 0;
    std::istringstream numbers(line);
    std::string a, b, extra;
    numbers >> a >> b >> extra;
    const bool twoNumbers = !a.empty() && !b.empty() && extra.empty() &&
                            a.find_first_not_of("0123456789.-+") == std::string::npos &&
                            b.find_first_not_of("0123456789.-+") == std::string::npos;
    if (twoNumbers) {
        const auto x = checkedNumber(a, -360.0, 360.0, "first axis");
        const auto y = x ? checkedNumber(b, -360.0, 360.0, "second axis") : std::nullopt;
        if (!y) return false;
        first = *x;
        second = *y;
    } else {
        ResolvedTarget target;
        if (!resolveTarget(line, target)) return false;
        if (!simulatedAxisAngles(target.raHours, target.decDeg, moment, first, second)) return false;
    }
    std::lock_guard<std::mutex> lock(box.mutex);
    box.azCount = encoderCountForAngle(first, prefs().encoderAzSteps, false);
    box.altCount = encoderCountForAngle(second, prefs().encoderAltSteps, true);
    return true;
}

SimulatorConsole::SimulatorConsole(std::shared_ptr<EncoderBoxSimulation> box) : box_(std::move(box)) {
    if (!box_) return;
    std::cerr << "Type a name (Vega) or two axis angles in degrees, then Enter, to move the simulated telescope."
              << std::endl;
    thread_ = std::thread([this] {
        std::string pending;
        while (!stop_) {
            // A simulator started in the background of a shell never reads the terminal (that
            // would stop it); it reads once it is brought to the foreground.
            const bool background = ::isatty(STDIN_FILENO) && ::tcgetpgrp(STDIN_FILENO) != ::getpgrp();
            pollfd in{STDIN_FILENO, POLLIN, 0};
            if (background) {
                ::poll(nullptr, 0, 100);
                continue;
            }
            if (::poll(&in, 1, 100) <= 0) continue;
            char bytes[256];
            const ssize_t n = ::read(STDIN_FILENO, bytes, sizeof bytes);
            if (n <= 0) break;  // end of input: the telescope stays where it is
            pending.append(bytes, static_cast<std::size_t>(n));
            for (std::size_t end; (end = pending.find('\n')) != std::string::npos;) {
                const std::string line = pending.substr(0, end);
                pending.erase(0, end + 1);
                if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
                if (pushSimulatedTelescope(*box_, line, scopeNow())) std::cerr << "Moved to " << line << std::endl;
            }
        }
    });
}

SimulatorConsole::~SimulatorConsole() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
}

}  // namespace nocturnel
