// nocturnel scope: the telescope operations of the drive dispatch from the command line, and
// pty simulators of the mounts for trying them without hardware.
//
//   nocturnel scope [--drive NAME|CODE] [--port DEVICE] [--trace] [--simulated] COMMAND
//     connect | read | goto [--force] NAME|--ra H --dec D | sync NAME|--ra H --dec D | rate 0..3
//     move n|s|e|w [--rate R] [--seconds S] | stop [n|s|e|w] | track [--count N]
//   nocturnel scope simulate --drive NAME [--precision high|low] [--ra H --dec D]
//
// A GoTo below the horizon is refused unless --force. A question whose answer moves the mount
// (the Takahashi zenith question) is asked on a terminal or answered by the global --answer;
// otherwise it stays unanswered and the mount is left as it is.
//
// --drive and --port override the saved preferences for this run only (they are never
// saved). Test seam: the environment variable NOCTURNEL_SERIAL_SETTLE_MS shortens the settle
// time after a port opens (3500 ms otherwise); it exists for the tests only.
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>
#include <vector>
#include <unistd.h>

#include "align/alignment.h"
#include "core/angle_text.h"
#include "scope/drive_types.h"
#include "scope/mount_questions.h"
#include "scope/mount_simulators.h"
#include "scope/pty_mount.h"
#include "scope/scope_interface.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/preferences_file.h"
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/commands.h"
#include "shell/drive_options.h"
#include "shell/option_checks.h"
#include "shell/scope_clock.h"
#include "shell/simulator_console.h"
#include "shell/target_names.h"

namespace nocturnel {

namespace {

std::atomic<bool> interrupted{false};

extern "C" void onInterrupt(int) { interrupted = true; }

// Ctrl-C ends the long-running commands (track, simulate) cleanly.
struct InterruptGuard {
    using Handler = void (*)(int);
    Handler previousInt, previousTerm;
    InterruptGuard() {
        interrupted = false;
        previousInt = std::signal(SIGINT, onInterrupt);
        previousTerm = std::signal(SIGTERM, onInterrupt);
    }
    ~InterruptGuard() {
        std::signal(SIGINT, previousInt);
        std::signal(SIGTERM, previousTerm);
    }
};

// Sleeps in small steps so that an interruption is seen at once.
void sleepUnlessInterrupted(std::chrono::milliseconds total) {
    const auto end = std::chrono::steady_clock::now() + total;
    while (!interrupted && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

struct ScopeOptions {
    std::string drive;
    std::string port;
    bool trace = false;
    bool simulated = false;
    std::string ra, dec;
    std::string target;                    // goto / sync --object NAME
    std::vector<std::string> targetWords;  // goto / sync NAME (one or more words)
    int rate = -1;
    std::string direction;
    double seconds = 0;
    int count = 0;
    std::string precision = "high";
    bool force = false;
};

void fail() { setExitCode(1); }

// Counts the messages shown while it lives, passing each one on.
class MessageCounter {
public:
    MessageCounter() {
        previous_ = setMessageSink([this](const Message& m) {
            if (!isShowingTrace()) ++count_;  // trace output is not a failure
            if (previous_) previous_(m);
        });
    }
    ~MessageCounter() { setMessageSink(std::move(previous_)); }
    MessageCounter(const MessageCounter&) = delete;
    MessageCounter& operator=(const MessageCounter&) = delete;
    int count() const { return count_; }

private:
    MessageSink previous_;
    int count_ = 0;
};

// Runs one operation; a failure the protocol did not explain gets a message of its own.
bool succeeded(int (*operation)(int), int argument) {
    MessageCounter counter;
    if (operation(argument)) return true;
    if (counter.count() == 0) {
        const std::string_view name = driveListName(prefs().scopeDrive);
        showMessage("The scope drive did not accept the command",
                    name.empty() ? std::to_string(prefs().scopeDrive) : std::string(name));
    }
    return false;
}

std::string utf8(const std::string& latin1) { return toUtf8(latin1); }

std::optional<int> directionCode(const std::string& text) {
    if (text == "n" || text == "N" || text == "north") return 0;
    if (text == "s" || text == "S" || text == "south") return 1;
    if (text == "e" || text == "E" || text == "east") return 2;
    if (text == "w" || text == "W" || text == "west") return 3;
    return std::nullopt;
}

// The direction's code, or the program's message naming what was typed (Latin-1, as every
// message is) and the four accepted letters.
std::optional<int> directionOrMessage(const std::string& text) {
    auto direction = directionCode(text);
    if (!direction) showMessage("Unknown direction \"" + utf8ToLatin1ForMessage(text) + "\"", "Use n, s, e or w.");
    return direction;
}

// Set from the global --answer option when the command line gave one.
std::optional<bool>& scriptedAnswer() {
    static std::optional<bool> answer;
    return answer;
}

// A question whose answer moves the mount (the Takahashi zenith question) is asked on a
// terminal or answered by an explicit --answer; otherwise nobody answers it and the mount is
// left as it is, with a word on standard error.
void installMountQuestionSink() {
    setMountQuestionSink([](std::string_view question) -> std::optional<bool> {
        if (scriptedAnswer() || isatty(STDIN_FILENO)) return askYesNo(question);
        std::cerr << toUtf8(question) << "\n  Not answered (no terminal): the mount is left as it is. "
                  << "Run with --answer yes or --answer no to answer it." << std::endl;
        return std::nullopt;
    });
}

// Start-up, then this run's overrides of the link settings. False (message shown) on failure.
bool prepare(const ScopeOptions& o) {
    if (!startUp()) return false;
    if (const char* settle = std::getenv("NOCTURNEL_SERIAL_SETTLE_MS"))
        setSerialSettleMillisecondsForTests(std::atoi(settle));
    if (!applyDriveOptions(o.drive, o.port)) return false;
    // A saved two-star alignment is offered again, so that aligned drives read and point
    // through it in every run.
    offerAlignmentRestore();
    if (o.trace && !isTraceOn()) toggleTrace();
    if (o.simulated) prefs().simulatedScope = 1;
    // --date / --time fix "now"; otherwise the machine clock runs.
    useCommandLineClockForScope();
    return true;
}

// Writes the NexStar offsets of this run into the saved preferences, and nothing else: the
// --drive and --port of this run stay unsaved.
bool saveNexStarOffsets() {
    Preferences saved;
    applyStartDefaults(saved);
    loadPreferences(saved);
    validatePreferences(saved);
    saved.nexstarRaOffsetHours = prefs().nexstarRaOffsetHours;
    saved.nexstarDecOffsetDeg = prefs().nexstarDecOffsetDeg;
    if (savePreferences(saved)) return true;
    showMessage("Can't save the NexStar offsets", "They hold for this command only.");
    return false;
}

bool hasDisconnect(int code) {
    const DriveFamily family = driveFamily(code);
    return family != DriveFamily::None && family != DriveFamily::PowerFlex && family != DriveFamily::Dynastar &&
           family != DriveFamily::Unknown;
}

bool readsAltAz(int code) {
    return (driveFamily(code) == DriveFamily::EncoderBox || code == kDriveSiderealTech) && prefs().mountType == 1;
}

void printPosition(double first, double second, bool altAz) {
    if (globalOptions().json) {
        nlohmann::json j = altAz ? nlohmann::json{{"az", first}, {"alt", second}}
                                 : nlohmann::json{{"ra", first}, {"dec", second}, {"frame", kScopePositionFrame}};
        std::cout << j.dump() << std::endl;
    } else if (altAz) {
        std::cout << "Az: " << utf8(degreesText(first)) << "  Alt: " << utf8(degreesText(second)) << std::endl;
    } else {
        std::cout << "Ra: " << utf8(hoursText(first)) << "  Dec: " << utf8(degreesText(second)) << "  ("
                  << kScopePositionFrame << ")" << std::endl;
    }
}

void printDone(const std::string& what, nlohmann::json details = nlohmann::json::object()) {
    if (globalOptions().json) {
        details["ok"] = true;
        details["action"] = what;
        std::cout << details.dump() << std::endl;
    } else {
        std::cout << what << std::endl;
    }
}

// The slewing operations do nothing for the drives that cannot slew: say so here.
bool slewingAvailable() {
    const int code = prefs().scopeDrive;
    if (slewingService(code) != SlewingService::Ignored) return true;
    const std::string_view name = driveListName(code);
    showMessage("This scope drive cannot be moved from the program",
                name.empty() ? std::to_string(code) : std::string(name));
    return false;
}

// Stops one direction. The Takahashi stop of one direction ("M@") reports 0 whatever
// happened, as the mount's program always did: its result says nothing, so it is not a failure.
bool stopMove(int direction) {
    if (prefs().scopeDrive == kDriveTakahashi) {
        MessageCounter counter;
        scopeStopMove(direction);
        return counter.count() == 0;
    }
    return succeeded(scopeStopMove, direction);
}

void runConnect(const ScopeOptions& o) {
    if (!prepare(o)) return fail();
    if (!scopeConnect()) return fail();
    const int code = prefs().scopeDrive;
    scopeDisconnect();
    printDone("Connected to " + std::string(driveListName(code)), {{"drive", code}});
}

void runRead(const ScopeOptions& o) {
    if (!prepare(o)) return fail();
    double first = 0, second = 0;
    // Drives that read their own axes (encoder boxes) report the sky position once an
    // alignment links those axes to the sky; the others report what the mount says.
    if (alignmentState().valid && driveFamily(prefs().scopeDrive) == DriveFamily::EncoderBox) {
        const int ok = scopeTrackPosition(first, second);
        scopeDisconnect();
        if (!ok) return fail();
        return printPosition(first, second, false);
    }
    if (!scopeReadPosition(first, second)) return fail();
    printPosition(first, second, readsAltAz(prefs().scopeDrive));
}

void runGotoOrSync(const ScopeOptions& o, bool isGoto) {
    if (!prepare(o)) return fail();
    ResolvedTarget target;
    const std::string name = o.target.empty() ? joinedName(o.targetWords) : o.target;
    if (!resolveTargetOrPlace(name, o.ra, o.dec, target)) return fail();
    if (isGoto && !o.force && scopeDriveSlews()) {
        double altDeg = 0;
        if (!scopeTargetAltitude(target.raHours, target.decDeg, altDeg)) return fail();
        if (altDeg < 0) {
            showMessage("This object is below the horizon", "Alt " + degreesText(altDeg) + ": use --force to send the GoTo anyway.");
            return fail();
        }
    }
    const int ok = isGoto ? scopeGotoEquatorial(target.raHours, target.decDeg)
                          : scopeSyncEquatorial(target.raHours, target.decDeg);
    if (!ok) {
        if (isGoto) showMessage("Goto failed");
        return fail();
    }
    // The NexStar offsets are preferences: keep them for the next command.
    if (!isGoto && driveFamily(prefs().scopeDrive) == DriveFamily::NexStar && !saveNexStarOffsets()) return fail();
    const ScopeTarget& t = lastScopeTarget();
    const std::string meaning = scopeAnswerText(isGoto);
    if (globalOptions().json) {
        printDone(isGoto ? "goto" : "sync", {{"ra", t.raHours}, {"dec", t.decDeg}, {"frame", kScopePositionFrame},
                                             {"az", t.azDeg}, {"alt", t.altDeg}, {"answer", t.driveAnswer},
                                             {"result", meaning}});
    } else {
        std::cout << (isGoto ? "Goto" : "Sync") << " Ra: " << utf8(hoursText(t.raHours))
                  << "  Dec: " << utf8(degreesText(t.decDeg)) << " (" << kScopePositionFrame
                  << ")  (Az: " << utf8(degreesText(t.azDeg)) << "  Alt: " << utf8(degreesText(t.altDeg)) << "): "
                  << meaning << std::endl;
    }
}

void runRate(const ScopeOptions& o) {
    if (!prepare(o)) return fail();
    if (!slewingAvailable()) return fail();
    if (!succeeded(scopeSetSlewRate, o.rate)) return fail();
    printDone("Rate " + std::to_string(o.rate), {{"rate", o.rate}});
}

void runMove(const ScopeOptions& o) {
    if (!prepare(o)) return fail();
    auto direction = directionOrMessage(o.direction);
    if (!direction) return fail();
    if (!slewingAvailable()) return fail();
    // The rate lives in the protocol module for this run only: set it in the same run.
    if (o.rate >= 0 && !succeeded(scopeSetSlewRate, o.rate)) return fail();
    if (!succeeded(scopeStartMove, *direction)) return fail();
    if (o.seconds > 0) {
        InterruptGuard guard;
        sleepUnlessInterrupted(std::chrono::milliseconds(static_cast<long long>(o.seconds * 1000)));
        if (!stopMove(*direction)) return fail();
    }
    printDone("Move " + o.direction, {{"direction", *direction}});
}

void runStop(const ScopeOptions& o) {
    if (!prepare(o)) return fail();
    if (!slewingAvailable()) return fail();
    if (o.direction.empty()) {
        if (!succeeded([](int) { return scopeStopAll(); }, 0)) return fail();
        return printDone("Stop");
    }
    auto direction = directionOrMessage(o.direction);
    if (!direction) return fail();
    if (!stopMove(*direction)) return fail();
    printDone("Stop " + o.direction, {{"direction", *direction}});
}

void runTrack(const ScopeOptions& o) {
    if (!prepare(o)) return fail();
    InterruptGuard guard;
    const int code = prefs().scopeDrive;
    for (int reads = 0; !interrupted && (o.count <= 0 || reads < o.count); ++reads) {
        if (reads > 0) sleepUnlessInterrupted(std::chrono::seconds(1));
        if (interrupted) break;
        double ra = 0, dec = 0;
        if (!scopeTrackPosition(ra, dec)) {
            fail();
            break;
        }
        printPosition(ra, dec, false);
    }
    if (hasDisconnect(code)) scopeDisconnect();
}

void runSimulate(const ScopeOptions& o) {
    if (!prepare(o)) return fail();
    const int code = prefs().scopeDrive;
    SimulatorOptions options;
    options.highPrecision = o.precision != "low";
    if (!o.ra.empty() || !o.dec.empty()) {
        auto ra = checkedRightAscension(o.ra.empty() ? "0" : o.ra);
        auto dec = checkedDeclination(o.dec.empty() ? "0" : o.dec);
        if (!ra || !dec) return fail();
        options.raHours = *ra;
        options.decDeg = *dec;
    }
    std::shared_ptr<EncoderBoxSimulation> box;  // an encoder box is pushed from standard input
    PtyMount::Responder responder = driveFamily(code) == DriveFamily::EncoderBox
                                        ? makeEncoderSimulatorWithState(code, options, box)
                                        : makeMountSimulator(code, options);
    if (!responder) {
        showMessage("No simulator for this scope drive",
                    driveListName(code).empty() ? std::to_string(code) : std::string(driveListName(code)));
        return fail();
    }
    PtyMount mount(std::move(responder));
    if (!mount.isReady()) {
        showMessage("Can't open serial port", "pseudo-terminal");
        return fail();
    }
    if (globalOptions().json) {
        std::cout << nlohmann::json{{"device", mount.devicePath()}, {"drive", code}}.dump() << std::endl;
    } else {
        std::cout << "Simulated " << driveListName(code) << " on " << mount.devicePath() << std::endl;
        std::cout << "Try: nocturnel scope --drive " << code << " --port " << mount.devicePath()
                  << " read   (Ctrl-C stops the simulator)" << std::endl;
    }
    InterruptGuard guard;
    SimulatorConsole console(box);
    const bool forever = o.seconds <= 0;
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::milliseconds(forever ? 0 : static_cast<long long>(o.seconds * 1000));
    // With --trace, what the mount receives is shown as it comes (escaped, one chunk a line).
    std::size_t shown = 0;
    while (!interrupted && (forever || std::chrono::steady_clock::now() < end)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        if (!isTraceOn()) continue;
        const std::string received = mount.received();
        if (received.size() > shown) std::cerr << "received: " << traceText(received.substr(shown)) << std::endl;
        shown = received.size();
    }
}

// goto / sync: NAME, --object NAME, or --ra H --dec D.
void addTargetOptions(CLI::App* command, ScopeOptions& o) {
    auto* name = command->add_option("name", o.targetWords, "Object name: Vega, M 42, NGC 1976 (or --ra/--dec)");
    command->add_option("--object", o.target, "Object name, as NAME")->excludes(name);
    command->add_option("--ra", o.ra, "Right ascension, hours (J2000): 5.5 or 05:30:00");
    command->add_option("--dec", o.dec, "Declination, degrees (J2000): -5.4 or -05:24:00");
}

}  // namespace

void registerScopeCommand(CLI::App& app) {
    auto o = std::make_shared<ScopeOptions>();
    scriptedAnswer().reset();
    // For every command of this run (align --from-scope drives the mount too), not only scope.
    installMountQuestionSink();
    CLI::App* scope = app.add_subcommand("scope", "Drive the telescope: connect, read, goto, sync, move, track");
    scope->require_subcommand(1);
    scope->fallthrough();
    addDriveOptions(scope, o->drive, o->port);
    scope->add_flag("--trace", o->trace, "Show every command and reply");
    scope->add_flag("--simulated", o->simulated, "Let the built-in simulated telescope answer (LX200, encoders)");

    scope->add_subcommand("connect", "Connect to the drive and disconnect")->callback([o] { runConnect(*o); });
    scope->add_subcommand("read", "Read the position once")->callback([o] { runRead(*o); });

    if (CLI::Option* answer = app.get_option_no_throw("--answer")) {
        // Known once the whole line is parsed, before any subcommand's callback runs.
        answer->each([](const std::string& value) { scriptedAnswer() = value == "yes"; });
    }

    CLI::App* go = scope->add_subcommand("goto", "Send the telescope to a named object or a J2000 position");
    addTargetOptions(go, *o);
    go->add_flag("--force", o->force, "Send the GoTo even when the object is below the horizon");
    go->callback([o] { runGotoOrSync(*o, true); });

    CLI::App* sync = scope->add_subcommand("sync", "Tell the mount it points at a named object or a J2000 position");
    addTargetOptions(sync, *o);
    sync->callback([o] { runGotoOrSync(*o, false); });

    CLI::App* rate = scope->add_subcommand("rate", "Slew rate: 0 slew, 1 find, 2 centre, 3 guide");
    rate->add_option("rate", o->rate, "0..3")->required()->check(CLI::Range(0, 3));
    rate->callback([o] { runRate(*o); });

    CLI::App* move = scope->add_subcommand("move", "Start moving north, south, east or west");
    move->add_option("direction", o->direction, "n, s, e or w")->required();
    move->add_option("--rate", o->rate, "Set this rate first (0..3)")->check(CLI::Range(0, 3));
    move->add_option("--seconds", o->seconds, "Stop again after this many seconds")->check(finiteRange(0, 3600));
    move->callback([o] { runMove(*o); });

    CLI::App* stop = scope->add_subcommand("stop", "Stop one direction, or everything");
    stop->add_option("direction", o->direction, "n, s, e or w (none: stop all)");
    stop->callback([o] { runStop(*o); });

    CLI::App* track = scope->add_subcommand("track", "Print the position once a second until interrupted");
    track->add_option("--count", o->count, "Stop after this many reads")->check(finiteRange(0, 1e9));
    track->callback([o] { runTrack(*o); });

    CLI::App* simulate = scope->add_subcommand("simulate", "Run a simulated mount on a pseudo-terminal");
    simulate->add_option("--precision", o->precision, "LX200 precision: high or low")
        ->check(CLI::IsMember({"high", "low"}));
    simulate->add_option("--ra", o->ra, "Starting right ascension, hours");
    simulate->add_option("--dec", o->dec, "Starting declination, degrees");
    simulate->add_option("--seconds", o->seconds, "Stop after this many seconds (default: until interrupted)")
        ->check(finiteRange(0, 1e7));
    simulate->callback([o] { runSimulate(*o); });
}

}  // namespace nocturnel
