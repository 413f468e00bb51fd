#include "scope/scope_interface.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "core/angle_text.h"
#include "core/apparent_place.h"
#include "core/time.h"
#include "scope/drive_types.h"
#include "scope/encoder_box.h"
#include "scope/lx200.h"
#include "scope/mount_mapping.h"
#include "scope/serial_link.h"
#include "scope/nexstar.h"
#include "scope/servocat.h"
#include "scope/siderealtech.h"
#include "scope/skycommander.h"
#include "scope/takahashi.h"
#include "settings/message.h"

namespace nocturnel {

namespace {

constexpr double kDegToRad = 0.0174532925199433;
using F = DriveFamily;

int failWith(std::string_view title) {
    showMessage(title);
    return 0;
}

std::function<ObservingMoment()>& clockRef() {
    static std::function<ObservingMoment()> clock;
    return clock;
}

ScopeTarget& lastTargetRef() {
    static ScopeTarget target;
    return target;
}

double jdNow(const ObservingMoment& m) {
    return julianDateFromLocal(m.year, m.month, m.day, m.hour, m.minute, m.second, prefs().utcOffsetMin);
}

double lstNow(const ObservingMoment& m) {
    return localSiderealTime(m.year, m.month, m.day, m.hour, m.minute, m.second, prefs().longitudeDeg,
                             prefs().utcOffsetMin);
}

bool altAzimuthMount() { return prefs().mountType == 1; }

// ---- the drive families, each connecting and disconnecting around one action ----

int familyConnect(int code) {
    switch (driveFamily(code)) {
        case F::EncoderBox: return encoderConnect(code);
        case F::Lx200:
        case F::Magellan: return lx200Connect(code);
        case F::NexStar: return nexstarConnect(code);
        case F::ServoCat: return servoCatConnect();
        case F::Takahashi: return takahashiConnect();
        case F::SiderealTech: return siderealTechConnect();
        case F::SkyCommander: return skyCommanderConnect();
        case F::None:
        case F::PowerFlex:
        case F::Dynastar:
        case F::Unknown: break;
    }
    return 0;
}

void familyDisconnect(int code) {
    switch (driveFamily(code)) {
        case F::EncoderBox: encoderDisconnect(); break;
        case F::Lx200:
        case F::Magellan: lx200Disconnect(); break;
        case F::NexStar: nexstarDisconnect(); break;
        case F::ServoCat: servoCatDisconnect(); break;
        case F::Takahashi: takahashiDisconnect(); break;
        case F::SiderealTech: siderealTechDisconnect(); break;
        case F::SkyCommander: skyCommanderDisconnect(); break;
        case F::None:
        case F::PowerFlex:
        case F::Dynastar:
        case F::Unknown: break;
    }
}

// The read-failure message of each family.
std::string_view readFailureMessage(int code) {
    switch (driveFamily(code)) {
        case F::EncoderBox:
        case F::None:
            return altAzimuthMount() ? "Failed to get Encoder Az and Alt" : "Failed to get Encoder RA and Dec";
        case F::Lx200:
        case F::Magellan: return "Failed to get Meade RA and Dec.";
        case F::NexStar: return "Failed to get Celestron RA and Dec";
        case F::ServoCat: return "Failed to get Servocat RA and Dec";
        case F::Takahashi: return "Failed to get Takahashi RA and Dec";
        case F::SiderealTech: return "Failed to get SiderealTech RA and Dec";
        case F::SkyCommander: return "Failed to get SkyCommander RA and Dec.";
        case F::PowerFlex:
        case F::Dynastar:
        case F::Unknown: break;
    }
    return "Unknown scope drive";
}

// The mount's own reading, on a connected drive. `altAz` tells whether the values are Az/Alt.
int familyRead(int code, double& first, double& second, bool& altAz) {
    altAz = false;
    switch (driveFamily(code)) {
        case F::None:
        case F::EncoderBox:
            if (altAzimuthMount()) {
                altAz = true;
                return encoderReadAzAlt(code, first, second);
            }
            return encoderReadRaDec(code, first, second);
        case F::Lx200:
        case F::Magellan: return lx200ReadRaDec(first, second);
        case F::NexStar: return nexstarReadRaDec(code, first, second);
        case F::ServoCat: return servoCatReadRaDec(first, second);
        case F::Takahashi:
            takahashiSetSiderealTime(lstNow(scopeNow()));
            return takahashiReadRaDec(first, second);
        case F::SiderealTech:
            if (prefs().mountType == 0) return siderealTechReadRaDec(first, second);
            altAz = true;
            return siderealTechReadEncoders(first, second);
        case F::SkyCommander: return skyCommanderReadPosition(first, second);
        case F::PowerFlex:
        case F::Dynastar:
        case F::Unknown: break;
    }
    return 0;
}

// A reading is a position only inside the ranges of its coordinates: RA [0, 24] h, Dec and
// Alt [-90, 90] degrees, Az [0, 360] degrees. Anything else (a garbled or out-of-range reply)
// is a failed read.
bool isPosition(double first, double second, bool altAz) {
    if (!std::isfinite(first) || !std::isfinite(second)) return false;
    const double firstLimit = altAz ? 360.0 : 24.0;
    return first >= 0 && first <= firstLimit && second >= -90 && second <= 90;
}

// Reads and checks the position; on failure shows the family's message, with the reason as
// its detail (a mount that did not answer in time, a reply that is not a position).
int checkedRead(int code, double& first, double& second, bool& altAz) {
    if (!familyRead(code, first, second, altAz)) {
        showMessage(readFailureMessage(code), serialLastReadTimedOut() ? kMountDidNotAnswerInTime : "");
        return 0;
    }
    if (!isPosition(first, second, altAz)) {
        char detail[96];
        std::snprintf(detail, sizeof detail, altAz ? "Not a position: Az %g, Alt %g" : "Not a position: RA %g h, Dec %g",
                      first, second);
        showMessage(readFailureMessage(code), detail);
        return 0;
    }
    if (!altAz && first >= 24.0) first -= 24.0;
    if (altAz && first >= 360.0) first -= 360.0;
    return 1;
}

// Telescope angles of a target: through the alignment mapping when one is set, else the sky
// values (RA x 15 and Dec on an equatorial mount, Az and Alt on an alt-azimuth one).
void telescopeAngles(ScopeTarget& target, double jdUt) {
    const MountMapping& mapping = mountMapping();
    double hor = 0, elv = 0;
    if (mapping.skyToMount && mapping.skyToMount(target.raHours, target.decDeg, jdUt, hor, elv)) {
        target.horDeg = hor;
        target.elvDeg = elv;
    } else if (altAzimuthMount()) {
        target.horDeg = target.azDeg;
        target.elvDeg = target.altDeg;
    } else {
        target.horDeg = target.raHours * 15.0;
        target.elvDeg = target.decDeg;
    }
}

// The drives that cannot slew show the target: where it is in the sky and at which
// telescope angles.
void showTargetPosition(const ScopeTarget& target) {
    const std::string sky = "Sky position:\nRa:" + hoursText(target.raHours) + "\nDec:" + degreesText(target.decDeg) +
                            "\nAzt:" + degreesText(target.azDeg) + "\nAlt:" + degreesText(target.altDeg) + "\n";
    const std::string scope = altAzimuthMount()
                                  ? "Scope Position:\nAzt:" + degreesText(target.horDeg) + "\nAlt:" +
                                        degreesText(target.elvDeg)
                                  : "Scope Position:\nRa:" + hoursText(target.horDeg / 15.0) + "\nDec:" +
                                        degreesText(target.elvDeg);
    showMessage(sky, scope);
}

// The target in the pointing frame of the preferences; false when the pipeline failed (its
// message shown).
bool pointingTarget(double raJ2000Hours, double decJ2000Deg, ScopeTarget& target) {
    const ObservingMoment moment = scopeNow();
    double alt = 0, az = 0, ra = 0, dec = 0;
    if (equatorialToHorizontal(raJ2000Hours, decJ2000Deg, pointingLevelFromPreferences(), moment, &alt, &az, &ra, &dec) !=
        0)
        return false;
    target = ScopeTarget{};
    target.raHours = ra;
    target.decDeg = dec;
    target.azDeg = az;
    target.altDeg = alt;
    telescopeAngles(target, jdNow(moment));
    return true;
}

// Records the titles of the messages shown while it lives, passing each one on.
class MessageWatch {
public:
    MessageWatch() {
        previous_ = setMessageSink([this](const Message& m) {
            titles_.push_back(m.title);
            if (previous_) previous_(m);
        });
    }
    ~MessageWatch() { setMessageSink(std::move(previous_)); }
    MessageWatch(const MessageWatch&) = delete;
    MessageWatch& operator=(const MessageWatch&) = delete;
    bool saw(std::string_view title) const {
        for (const std::string& t : titles_)
            if (t == title) return true;
        return false;
    }

private:
    MessageSink previous_;
    std::vector<std::string> titles_;
};

// An LX200 goto answers 0 while slewing, and also when a command could not be sent (after
// "Fail to send string"); 1 (below the horizon), 2 (above the limit) and -1 are refusals.
int lx200GotoWithResult(int code, double raHours, double decDeg, int& answer) {
    MessageWatch watch;
    answer = lx200Goto(code, raHours, decDeg);
    return answer == 0 && !watch.saw("Fail to send string") ? 1 : 0;
}

enum class PositionAction { Goto, Sync };

int moveToTarget(double raJ2000Hours, double decJ2000Deg, PositionAction action) {
    const int code = prefs().scopeDrive;
    const F family = driveFamily(code);
    if (family == F::Unknown) return failWith("Unknown scope drive");
    if (family == F::PowerFlex || family == F::Dynastar)
        return failWith("Scope Connect not supported for the drive you selected");

    ScopeTarget target;
    if (!pointingTarget(raJ2000Hours, decJ2000Deg, target)) return 0;
    lastTargetRef() = target;

    const bool isGoto = action == PositionAction::Goto;
    if (family == F::None || family == F::Magellan || (family == F::EncoderBox && isGoto)) {
        showTargetPosition(target);
        return 1;
    }
    if (!isGoto && (family == F::ServoCat || family == F::SkyCommander))
        return failWith("Sync not supported for the drive you selected");

    if (!familyConnect(code)) return 0;
    int answer = 0;
    int result = 0;
    switch (family) {
        case F::EncoderBox:  // sync: the box's offsets make its reading the target's angles
            answer = encoderSetOffsets(code, target.horDeg, target.elvDeg);
            result = answer;
            break;
        case F::Lx200:
            if (isGoto) {
                result = lx200GotoWithResult(code, target.raHours, target.decDeg, answer);
            } else {
                answer = lx200Sync(target.raHours, target.decDeg);
                result = answer;
            }
            break;
        case F::NexStar:
            answer = isGoto ? nexstarGoto(code, target.raHours, target.decDeg)
                            : nexstarSync(code, target.raHours, target.decDeg);
            result = answer;
            break;
        case F::ServoCat:
            answer = servoCatGoto(target.raHours, target.decDeg);
            result = answer;
            break;
        case F::Takahashi:
            answer = isGoto ? takahashiGoto(target.raHours, target.decDeg) : takahashiSync(target.raHours, target.decDeg);
            result = answer;
            break;
        case F::SiderealTech:
            answer = isGoto ? siderealTechGoto(target.raHours, target.decDeg)
                            : siderealTechSync(target.raHours, target.decDeg);
            result = answer;
            break;
        case F::SkyCommander:
            answer = skyCommanderSetTarget(target.raHours, target.decDeg);
            result = answer;
            break;
        case F::None:
        case F::Magellan:
        case F::PowerFlex:
        case F::Dynastar:
        case F::Unknown: break;
    }
    familyDisconnect(code);
    lastTargetRef().driveAnswer = answer;
    return result ? 1 : 0;
}

template <typename Action>
int slewing(std::string_view unknownMessage, Action action) {
    const int code = prefs().scopeDrive;
    switch (slewingService(code)) {
        case SlewingService::Ignored: return 0;  // drives that cannot slew: no message
        case SlewingService::Unknown: return failWith(unknownMessage);
        case SlewingService::Served: break;
    }
    if (!familyConnect(code)) return 0;
    const int result = action(code, driveFamily(code));
    familyDisconnect(code);
    return result;
}

// The baud rate of a family's port.
int familyBaud(int code) {
    switch (driveFamily(code)) {
        case F::Takahashi: return kTakahashiBaud;
        case F::SiderealTech: return kSiderealTechBaud;
        default: return 9600;
    }
}

// A stop must reach the mount even when it no longer answers: when the family's handshake
// fails, the stop is still written to the port (opened without a handshake), and the result
// is 0 so that the caller knows the mount did not confirm anything.
template <typename Action>
int stopping(Action action) {
    const int code = prefs().scopeDrive;
    switch (slewingService(code)) {
        case SlewingService::Ignored: return 0;
        case SlewingService::Unknown: return failWith("Unknown scope drive.");
        case SlewingService::Served: break;
    }
    if (familyConnect(code)) {
        const int result = action(code, driveFamily(code));
        familyDisconnect(code);
        return result;
    }
    if (!serialOpen(prefs().scopePort, familyBaud(code))) return 0;
    action(code, driveFamily(code));
    showMessage("The stop was sent to a mount that did not answer", "Check that the telescope has stopped.");
    familyDisconnect(code);
    return 0;
}

}  // namespace

ObservingMoment scopeNow() {
    if (clockRef()) return clockRef()();
    // The machine clock is UT; the site's civil time is UT + offset.
    const auto now = std::chrono::system_clock::now();
    const std::time_t local = std::chrono::system_clock::to_time_t(now) + prefs().utcOffsetMin * 60;
    std::tm fields{};
    gmtime_r(&local, &fields);
    ObservingMoment moment;
    moment.year = fields.tm_year + 1900;
    moment.month = fields.tm_mon + 1;
    moment.day = fields.tm_mday;
    moment.hour = fields.tm_hour;
    moment.minute = fields.tm_min;
    moment.second = fields.tm_sec;
    return moment;
}

void setScopeClock(std::function<ObservingMoment()> clock) { clockRef() = std::move(clock); }

const ScopeTarget& lastScopeTarget() { return lastTargetRef(); }

void horizontalToEquatorial(double azDeg, double altDeg, double lstHours, double latitudeDeg, double& raHours,
                            double& decDeg) {
    const double az = azDeg * kDegToRad;
    const double alt = altDeg * kDegToRad;
    const double lat = latitudeDeg * kDegToRad;
    const double sinDec = std::sin(lat) * std::sin(alt) + std::cos(lat) * std::cos(alt) * std::cos(az);
    decDeg = std::asin(std::fmax(-1.0, std::fmin(1.0, sinDec))) / kDegToRad;
    // Hour angle, west positive.
    const double hourAngle = std::atan2(-std::sin(az) * std::cos(alt),
                                        std::cos(lat) * std::sin(alt) - std::sin(lat) * std::cos(alt) * std::cos(az));
    double ra = lstHours - hourAngle / kDegToRad / 15.0;
    ra = std::fmod(ra, 24.0);
    if (ra < 0) ra += 24.0;
    if (ra >= 24.0) ra -= 24.0;
    raHours = ra;
}

int scopeConnect() {
    const int code = prefs().scopeDrive;
    switch (driveFamily(code)) {
        case F::None: return failWith("Sorry, no scope drive is selected");
        case F::PowerFlex:
        case F::Dynastar: return failWith("Scope Connect not supported for the drive you selected");
        case F::Unknown: return failWith("Unknown scope drive");
        default: return familyConnect(code);
    }
}

int scopeDisconnect() {
    const int code = prefs().scopeDrive;
    switch (driveFamily(code)) {
        case F::None:
        case F::PowerFlex:
        case F::Dynastar: return failWith("Disconnect scope not supported");
        case F::Unknown: return failWith("Unknown scope drive.");
        default: familyDisconnect(code); return 1;
    }
}

int scopeReadPosition(double& raHours, double& decDeg) {
    raHours = 0;
    decDeg = 0;
    const int code = prefs().scopeDrive;
    switch (driveFamily(code)) {
        case F::None: return failWith("No drive is selected in Preference");
        case F::PowerFlex: return failWith("Read not yet implemented for PowerFlex");
        case F::Dynastar: return failWith("Read not yet implemented for Dynastar");
        case F::Unknown: return failWith("Unknown scope drive");
        default: break;
    }
    if (!familyConnect(code)) return 0;
    bool altAz = false;
    double first = 0, second = 0;
    const int ok = checkedRead(code, first, second, altAz);
    if (ok) {
        raHours = first;
        decDeg = second;
    }
    familyDisconnect(code);
    return ok ? 1 : 0;
}

int scopeTrackPosition(double& raHours, double& decDeg) {
    raHours = 0;
    decDeg = 0;
    const int code = prefs().scopeDrive;
    const F family = driveFamily(code);
    if (family == F::PowerFlex || family == F::Dynastar) return failWith("Get position not supported");
    if (family == F::Unknown) return failWith("Unkown scope drive");

    scopeConnect();  // as the marker refresh does: the read tells whether the drive answers
    const ObservingMoment moment = scopeNow();
    const MountMapping& mapping = mountMapping();
    const bool mountAngles = family == F::None || family == F::EncoderBox;
    double first = 0, second = 0;
    bool altAz = false;
    int ok = 0;
    if (mountAngles && mapping.mountToSky) {
        // Aligned encoders: the raw axis angles go through the alignment.
        ok = encoderReadAzAlt(code, first, second);
        if (ok) ok = mapping.mountToSky(first, second, jdNow(moment), first, second) ? 1 : 0;
        if (!ok) showMessage(readFailureMessage(code), serialLastReadTimedOut() ? kMountDidNotAnswerInTime : "");
    } else {
        ok = checkedRead(code, first, second, altAz);
        if (ok && altAz) horizontalToEquatorial(first, second, lstNow(moment), prefs().latitudeDeg, first, second);
    }
    if (!ok) return 0;
    raHours = first;
    decDeg = second;
    return 1;
}

bool scopeTargetAltitude(double raJ2000Hours, double decJ2000Deg, double& altDeg) {
    ScopeTarget target;
    if (!pointingTarget(raJ2000Hours, decJ2000Deg, target)) return false;
    altDeg = target.altDeg;
    return true;
}

bool scopeDriveSlews() {
    switch (driveFamily(prefs().scopeDrive)) {
        case F::Lx200:
        case F::NexStar:
        case F::ServoCat:
        case F::Takahashi:
        case F::SiderealTech:
        case F::SkyCommander: return true;
        default: return false;
    }
}

std::string scopeAnswerText(bool isGoto) {
    const int code = prefs().scopeDrive;
    const F family = driveFamily(code);
    if (isGoto) {
        switch (family) {
            case F::None:
            case F::Magellan:
            case F::EncoderBox: return "target shown: move the telescope there by hand";
            case F::Lx200: return "the mount is slewing";
            case F::NexStar:
                return code == kDriveNexstar58 ? "sent (this hand control does not confirm a GoTo)"
                                               : "accepted: the mount is slewing";
            case F::ServoCat: return "sent (ServoCat does not confirm a GoTo)";
            default: return "accepted: the mount is slewing";
        }
    }
    switch (family) {
        case F::NexStar: {
            char text[128];
            std::snprintf(text, sizeof text, "offsets set: RA %+.4f h, Dec %+.4f deg",
                          prefs().nexstarRaOffsetHours, prefs().nexstarDecOffsetDeg);
            return text;
        }
        case F::EncoderBox: return "encoder offsets set";
        default: return "the mount now reads the synced position";
    }
}

int scopeGotoEquatorial(double raJ2000Hours, double decJ2000Deg) {
    return moveToTarget(raJ2000Hours, decJ2000Deg, PositionAction::Goto);
}

int scopeSyncEquatorial(double raJ2000Hours, double decJ2000Deg) {
    return moveToTarget(raJ2000Hours, decJ2000Deg, PositionAction::Sync);
}

int scopeSetSlewRate(int rate) {
    return slewing("Unknown scope drive.", [rate](int code, F family) {
        switch (family) {
            case F::Lx200: return lx200SetRate(rate);
            case F::NexStar: return nexstarSetRate(code, rate);
            case F::Takahashi: return takahashiSetRate(rate);
            case F::SiderealTech: return siderealTechSetRate(rate);
            default: return 0;
        }
    });
}

int scopeStartMove(int direction) {
    return slewing("Unknown scope drive", [direction](int code, F family) {
        switch (family) {
            case F::Lx200: return lx200StartMove(direction);
            case F::NexStar: return nexstarStartMove(code, direction);
            case F::Takahashi: return takahashiStartMove(direction);
            case F::SiderealTech: return siderealTechStartMove(direction);
            default: return 0;
        }
    });
}

int scopeStopMove(int direction) {
    return stopping([direction](int code, F family) {
        switch (family) {
            case F::Lx200: return lx200StopMove(direction);
            case F::NexStar: return nexstarStopMove(code, direction);
            case F::Takahashi: return takahashiStopMove(direction);
            case F::SiderealTech: return siderealTechStopMove(direction);
            default: return 0;
        }
    });
}

int scopeStopAll() {
    return stopping([](int code, F family) {
        switch (family) {
            case F::Lx200: return lx200StopAll();
            case F::NexStar: return nexstarStopAll(code);
            case F::Takahashi: return takahashiStopAll();
            case F::SiderealTech: return siderealTechStopAll();
            default: return 0;
        }
    });
}

}  // namespace nocturnel
