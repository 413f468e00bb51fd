// The Moon, the Sun and the naked-eye limit that a new log starts with.
#include <cmath>
#include <filesystem>
#include <vector>

#include "catalog/eyepieces.h"
#include "chart/sun_moon_sky.h"
#include "chart/visibility.h"
#include "plans/new_observer_log.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {

NewLogSky newLogSkyAt(const ObservingMoment& moment) {
    NewLogSky sky;
    SunMoonState sunMoon;
    if (sunMoonStateAt(jdUtOfMoment(moment), &sunMoon)) {
        constexpr double kDegToRad = 3.14159265358979323846 / 180.0;
        const double fraction = (1.0 + std::cos(sunMoon.moonPhaseAngleDeg * kDegToRad)) / 2.0;
        sky.moonIlluminatedPct = static_cast<int>(std::lround(100.0 * fraction));
        sky.sunAltitudeDeg = static_cast<int>(std::lround(sunMoon.sunAltitudeDeg));
    }
    std::vector<EyepieceRecord> eyepieces;
    std::error_code ec;
    if (std::filesystem::exists(dataPath(kEyepieceFile), ec)) {
        MessageCapture quiet;
        loadEyepieces(eyepieces);
    }
    const VisibilityConditions conditions = prepareVisibility(visibilitySetupFromPreferences(prefs(), eyepieces, sunMoon));
    sky.visualLimitMagX10 = static_cast<int>(std::lround(conditions.nakedEyeLimitMag * 10.0));
    return sky;
}

}  // namespace nocturnel
