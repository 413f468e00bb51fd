#include "chart/object_info.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "catalog/constellations.h"
#include "catalog/eyepieces.h"
#include "catalog/objects.h"
#include "chart/sun_moon_sky.h"
#include "core/apparent_place.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {
constexpr double kSiderealToSolar = 0.9972695663;
constexpr int kTopocentricLevel = 2;  // apparent place without refraction

std::string constellationNameOf(int number) {
    const auto& list = constellations().constellations;
    if (number < 0 || number >= static_cast<int>(list.size())) return {};
    char name[sizeof list[number].name + 1] = {};
    std::memcpy(name, list[number].name, sizeof list[number].name);
    return name;
}

std::vector<EyepieceRecord> eyepiecesIfPresent() {
    std::vector<EyepieceRecord> eyepieces;
    std::error_code ec;
    if (std::filesystem::exists(dataPath(kEyepieceFile), ec)) loadEyepieces(eyepieces);
    return eyepieces;
}
}  // namespace

std::string isoLocalText(const CalendarDate& d) {
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", d.year, d.month, d.day, d.hour, d.minute, d.second);
    return text;
}

bool computeObjectInfo(const FoundObject& object, const ObservingMoment& moment, ObjectInfo& out) {
    // The Sun's and the Moon's light depend on where the object stands: its place of date first.
    double alt = 0, az = 0, ra = 0, dec = 0;
    if (equatorialToHorizontal(object.raHours, object.decDeg, kTopocentricLevel, moment, &alt, &az, &ra, &dec) != 0)
        return false;
    SunMoonState sunMoon;
    sunMoonStateAt(jdUtOfMoment(moment), ra, dec, &sunMoon);
    return computeObjectInfo(object, moment, out, sunMoon);
}

bool computeObjectInfo(const FoundObject& object, const ObservingMoment& moment, ObjectInfo& out,
                       const SunMoonState& sunMoon) {
    out = ObjectInfo{};
    out.object = object;
    out.names = objectDesignations(object);
    out.description = objectDescription(object);
    out.typeName = objectTypeName(object.typeCode);
    out.constellationName = constellationNameOf(object.constellation);
    out.raJ2000Hours = object.raHours;
    out.decJ2000Deg = object.decDeg;

    const Preferences& p = prefs();
    double alt = 0, az = 0, ra = 0, dec = 0;
    if (equatorialToHorizontal(object.raHours, object.decDeg, kTopocentricLevel, moment, &alt, &az, &ra, &dec) != 0)
        return false;
    out.raHours = ra;
    out.decDeg = dec;
    double raUsed = 0, decUsed = 0;
    if (equatorialToHorizontal(object.raHours, object.decDeg, pointingLevelFromPreferences(), moment, &out.altDeg,
                               &out.azDeg, &raUsed, &decUsed) != 0)
        return false;

    // The transit nearest the moment: the hour angle now, brought into -12..+12 h, turned back
    // into solar time.
    const double lst = localSiderealTime(moment.year, moment.month, moment.day, moment.hour, moment.minute, moment.second,
                                         p.longitudeDeg, p.utcOffsetMin);
    double hourAngle = std::fmod(lst - ra, 24.0);
    if (hourAngle > 12.0) hourAngle -= 24.0;
    if (hourAngle <= -12.0) hourAngle += 24.0;
    const double jdUt = julianDateFromLocal(moment.year, moment.month, moment.day, moment.hour, moment.minute,
                                            moment.second, p.utcOffsetMin);
    const double transitJd = jdUt - hourAngle * kSiderealToSolar / 24.0;
    out.transitLocal = calendarFromJulian(transitJd + p.utcOffsetMin / 1440.0 + 0.5 / 86400.0);
    out.hasTransit = true;
    out.transitAltDeg = 90.0 - std::abs(p.latitudeDeg - dec);

    const std::vector<EyepieceRecord> eyepieces = eyepiecesIfPresent();
    const VisibilityConditions conditions = prepareVisibility(visibilitySetupFromPreferences(p, eyepieces, sunMoon));
    VisibilityTarget target;
    target.mag = object.mag;
    target.magKnown = object.magKnown;
    target.majorArcmin = object.majorArcmin;
    target.minorArcmin = object.minorArcmin;
    target.typeCode = object.typeCode;
    target.altitudeDeg = out.altDeg > 0 ? out.altDeg : out.transitAltDeg;
    out.visibility = estimateVisibility(target, conditions);
    if (target.altitudeDeg <= 0 && out.visibility.known) {  // never rises here
        out.visibility.ratio = 0;
        out.visibility.word = visibilityWord(0);
    }
    out.limitingMagNakedEye = conditions.nakedEyeLimitMag;
    out.limitingMagScope = conditions.scopeLimitMag;
    if (out.visibility.eyepieceIndex >= 0 && out.visibility.eyepieceIndex < static_cast<int>(eyepieces.size()))
        out.eyepieceName = eyepieceName(eyepieces[out.visibility.eyepieceIndex]);
    return true;
}

}  // namespace nocturnel
