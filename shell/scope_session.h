#pragma once
// What the web interface's hand box holds between requests, and the steps of its link that
// more than one route takes: connect, disconnect, stop one direction, follow a change of the
// link preferences, stop the held moves whose renewals stopped coming. Engine thread only,
// except the watchdog (thread-safe, see move_watchdog.h).
#include <functional>
#include <string>

#include "settings/preferences.h"
#include "shell/move_watchdog.h"

namespace nocturnel {

// The preferences that define the telescope link: the drive, its port (the list index and a
// device path), "Connection" ("Persistant" keeps the port open, "Upon need" opens it for each
// operation) and the simulated mount switch.
struct LinkSettings {
    int drive = 0;
    int port = 0;
    std::string device;
    int connectionMode = 0;
    int simulated = 0;
    bool operator==(const LinkSettings&) const = default;
};
LinkSettings linkSettingsOf(const Preferences& p);
void applyLinkSettings(const LinkSettings& link, Preferences& p);

struct ScopeSession {
    bool connected = false;       // Connect succeeded and no read failed since
    bool restoreOffered = false;  // the saved alignment was offered once
    LinkSettings link;            // the settings the drive was connected with
    MoveWatchdog heldMoves;       // the moves the page holds (any thread)
};

// Before a telescope operation: the port of the preferences' device is found in the port list,
// the scope clock follows the program's moment, and, the first time, a saved two-star
// alignment is offered again (the question goes to the page).
void prepareScope(ScopeSession& session);

// Runs one operation; a failure the protocol did not explain gets a message of its own
// ("The scope drive did not accept the command").
bool operationSucceeded(const std::function<int()>& operation);

// Connects the drive of the preferences (the port kept open when "Persistant"); false with the
// program's message, the session then disconnected.
bool connectScope(ScopeSession& session);
// Closes the link (the held moves forgotten).
void disconnectScope(ScopeSession& session);
// Stops the move of one direction, as the release of its key does; false with a message.
bool stopMove(int direction);

// After a change of the preferences: when a drive is connected and its link settings changed,
// the old link is closed and the drive connected with the new settings (the drive "None" only
// closes it). Returns whether the link changed; session.connected then says whether the new
// one is open (when not, the program's message has said why).
bool followLinkSettings(ScopeSession& session);

// The watchdog's turn: every held move whose renewals stopped coming is stopped.
void stopAbandonedMoves(ScopeSession& session);

}  // namespace nocturnel
