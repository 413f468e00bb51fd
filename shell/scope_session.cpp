#include "shell/scope_session.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "align/alignment.h"
#include "scope/drive_types.h"
#include "scope/scope_interface.h"
#include "scope/serial_link.h"
#include "settings/message.h"

namespace nocturnel {
namespace {

constexpr int kConnectionPersistent = 0;  // "Persistant"; 1 is "Upon need"

// Runs an operation, passing its messages on; returns its result and how many it showed.
int runCountingMessages(const std::function<int()>& operation, std::size_t& shownCount) {
    std::vector<Message> shown;
    int result = 0;
    {
        MessageCapture capture;
        result = operation();
        shown = capture.messages();
    }
    for (const Message& m : shown) showMessage(m.title, m.detail);
    shownCount = shown.size();
    return result;
}

void closeLink() {
    setHoldOpen(0);
    scopeDisconnect();
    serialClose();
}

}  // namespace

LinkSettings linkSettingsOf(const Preferences& p) {
    return {p.scopeDrive, p.scopePort, std::string(p.scopeDevice, strnlen(p.scopeDevice, sizeof p.scopeDevice)),
            p.connectionMode, p.simulatedScope};
}

void applyLinkSettings(const LinkSettings& link, Preferences& p) {
    p.scopeDrive = link.drive;
    p.scopePort = link.port;
    std::memset(p.scopeDevice, 0, sizeof p.scopeDevice);
    std::memcpy(p.scopeDevice, link.device.data(), std::min(link.device.size(), sizeof p.scopeDevice - 1));
    p.connectionMode = link.connectionMode;
    p.simulatedScope = link.simulated;
}

void prepareScope(ScopeSession& session) {
    const std::string device(prefs().scopeDevice, strnlen(prefs().scopeDevice, sizeof prefs().scopeDevice));
    if (!device.empty()) {
        const int index = portIndexOf(device);
        if (index > 0) prefs().scopePort = index;
    }
    setScopeClock([] { return prefs().moment; });
    if (!session.restoreOffered) {
        session.restoreOffered = true;
        if (offerAlignmentRestore()) installAlignmentMapping();
    }
}

bool operationSucceeded(const std::function<int()>& operation) {
    std::size_t shown = 0;
    if (runCountingMessages(operation, shown)) return true;
    if (shown == 0) {
        const std::string_view name = driveListName(prefs().scopeDrive);
        showMessage("The scope drive did not accept the command",
                    name.empty() ? std::to_string(prefs().scopeDrive) : std::string(name));
    }
    return false;
}

bool connectScope(ScopeSession& session) {
    prepareScope(session);
    session.connected = false;
    session.heldMoves.releaseAll();
    setHoldOpen(0);
    serialClose();
    if (!operationSucceeded(scopeConnect)) return false;
    // "Persistant": the port stays open between operations, so that the marker's reads do not
    // wait for the port to settle each time. "Upon need": each one opens it.
    if (prefs().connectionMode == kConnectionPersistent) setHoldOpen(1);
    else scopeDisconnect();
    session.connected = true;
    session.link = linkSettingsOf(prefs());
    return true;
}

void disconnectScope(ScopeSession& session) {
    session.connected = false;
    session.heldMoves.releaseAll();
    closeLink();
}

bool stopMove(int direction) {
    // The Takahashi stop of one direction reports nothing useful: only its messages count.
    if (prefs().scopeDrive == kDriveTakahashi) {
        std::size_t shown = 0;
        runCountingMessages([&] { return scopeStopMove(direction); }, shown);
        return shown == 0;
    }
    return operationSucceeded([&] { return scopeStopMove(direction); });
}

bool followLinkSettings(ScopeSession& session) {
    const LinkSettings wanted = linkSettingsOf(prefs());
    // The port index follows the device path (prepareScope): only a real change counts.
    LinkSettings compared = wanted;
    if (!compared.device.empty() && compared.device == session.link.device) compared.port = session.link.port;
    if (!session.connected || compared == session.link) return false;
    // The old link is closed by its own drive's code, on its own port.
    applyLinkSettings(session.link, prefs());
    for (int direction = 0; direction < 4; ++direction)
        if (session.heldMoves.isHeld(direction)) stopMove(direction);
    disconnectScope(session);
    applyLinkSettings(wanted, prefs());
    if (wanted.drive != kDriveNone) connectScope(session);
    return true;
}

void stopAbandonedMoves(ScopeSession& session) {
    for (const int direction : session.heldMoves.takeExpired()) {
        prepareScope(session);
        stopMove(direction);
    }
}

}  // namespace nocturnel
