#include "shell/telescope_angles.h"

#include "scope/drive_types.h"
#include "scope/encoder_box.h"
#include "scope/scope_interface.h"
#include "settings/preferences.h"

namespace nocturnel {

bool readTelescopeAngles(double& hor, double& elv) {
    const int code = prefs().scopeDrive;
    if (driveFamily(code) == DriveFamily::EncoderBox) {
        if (!encoderConnect(code)) return false;
        const int ok = encoderReadAzAlt(code, hor, elv);
        encoderDisconnect();
        return ok != 0;
    }
    double ra = 0, dec = 0;
    if (!scopeReadPosition(ra, dec)) return false;
    hor = ra * 15.0;
    elv = dec;
    return true;
}

}  // namespace nocturnel
