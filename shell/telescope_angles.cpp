#include "shell/telescope_angles.h"

#include <cstdio>

#include "core/angle_text.h"
#include "scope/drive_types.h"
#include "scope/encoder_box.h"
#include "scope/scope_interface.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "shell/star_names.h"

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

bool readAlignmentStarFromScope(const std::string& starName, std::string (&fields)[6]) {
    std::string canonical;
    double ra = 0, dec = 0;
    if (!findBrightStarByName(starName, canonical, ra, dec)) {
        showMessage("Unknown star", starName.empty() ? "Type the star's name first." : starName);
        return false;
    }
    double hor = 0, elv = 0;
    if (!readTelescopeAngles(hor, elv)) return false;
    const ObservingMoment m = scopeNow();
    char time[16];
    std::snprintf(time, sizeof time, "%02d:%02d:%02d", m.hour, m.minute, m.second);
    char buf[4][kAngleTextSize];
    fields[0] = canonical;
    fields[1] = time;
    fields[2] = hoursToTextStyle(ra, 1, buf[0]);
    fields[3] = degreesToTextStyle(dec, 1, buf[1]);
    fields[4] = prefs().mountType == 0 ? hoursToTextStyle(hor / 15.0, 1, buf[2]) : degreesToTextStyle(hor, 0, buf[2]);
    fields[5] = degreesToTextStyle(elv, 0, buf[3]);
    return true;
}

}  // namespace nocturnel
