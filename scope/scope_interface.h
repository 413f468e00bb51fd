#pragma once
// The telescope operations every screen uses, whatever the drive: each switches on the
// preference `scopeDrive` and calls the protocol module of the drive's family, connecting
// and disconnecting around itself (a port held open by setHoldOpen stays open).
//
// Free functions named scope<Operation>. Results: 1 success, 0 failure (the message already
// shown). Angles: RA in hours, Dec/Az/Alt in degrees. Directions: 0 north, 1 south, 2 east,
// 3 west. Rates: 0 slew (fastest), 1 find, 2 centre, 3 guide (slowest).
//
// Where the drive table leaves room, this dispatch:
// - shows the target for a GoTo on an encoder box (it cannot slew; the user pushes the tube),
//   and sets the box's offsets for a Sync so that its reading becomes the target's angles;
// - answers Sync on ServoCat and SkyCommander (no sync command) with "Sync not supported for
//   the drive you selected", and GoTo/Sync on PowerFlex and Dynastar with "Scope Connect not
//   supported for the drive you selected";
// - counts an LX200 GoTo as done when the mount answers 0 (slewing) and no command failed;
// - uses the alignment mapping (mount_mapping.h) for the encoder boxes and code 0 only: their
//   tracked position goes through mountToSky, and the scope lines of a shown target through
//   skyToMount. readPosition always returns the mount's raw reading (the alignment needs it).
#include <functional>
#include <string>

#include "settings/preferences.h"

namespace nocturnel {

int scopeConnect();
int scopeDisconnect();
// The mount's own reading: RA/Dec, or Az/Alt for an encoder box on an alt-azimuth mount.
int scopeReadPosition(double& raHours, double& decDeg);
// The sky position the telescope points at, for the scope marker: alt-azimuth readings are
// turned into RA/Dec (through the alignment mapping when one is set). The port is left to
// the caller's scopeDisconnect so that repeated reads reuse it.
int scopeTrackPosition(double& raHours, double& decDeg);
// Target given as J2000 RA/Dec; sent in the pointing frame of the preferences. Drives that
// cannot slew (none, Magellan, encoder boxes) show where the target is instead.
int scopeGotoEquatorial(double raJ2000Hours, double decJ2000Deg);
int scopeSyncEquatorial(double raJ2000Hours, double decJ2000Deg);
int scopeSetSlewRate(int rate);
int scopeStartMove(int direction);
int scopeStopMove(int direction);
int scopeStopAll();

// The altitude (degrees) of a J2000 target now, in the pointing frame of the preferences;
// false when the place could not be computed (message shown). A GoTo is checked with it first.
bool scopeTargetAltitude(double raJ2000Hours, double decJ2000Deg, double& altDeg);
// Whether the selected drive slews to a GoTo (rather than showing where the target is).
bool scopeDriveSlews();

// What the drive's answer to the last GoTo or Sync means, in words ("slewing", "synced",
// "the offsets now read ...").
std::string scopeAnswerText(bool isGoto);

// The frame of the RA/Dec the mounts read: the place of date (apparent), in which every GoTo
// and Sync is sent; never J2000.
inline constexpr const char* kScopePositionFrame = "of date";

// The target of the last scopeGotoEquatorial / scopeSyncEquatorial, as it was sent or shown.
struct ScopeTarget {
    double raHours = 0, decDeg = 0;  // in the pointing frame
    double azDeg = 0, altDeg = 0;
    double horDeg = 0, elvDeg = 0;   // telescope angles (mapping, else the sky values)
    int driveAnswer = 0;             // the protocol's own result
};
const ScopeTarget& lastScopeTarget();

// The moment the operations take as "now" (local civil time at the site). By default the
// machine clock with the preferences' UT offset; the command line fixes it for --date/--time
// and tests install a fixed moment. An empty function restores the machine clock.
void setScopeClock(std::function<ObservingMoment()> clock);
ObservingMoment scopeNow();

// Alt-azimuth to equatorial (azimuth from north through east), with the local sidereal time
// in hours and the latitude in degrees; RA in [0, 24).
void horizontalToEquatorial(double azDeg, double altDeg, double lstHours, double latitudeDeg, double& raHours,
                            double& decDeg);

}  // namespace nocturnel
