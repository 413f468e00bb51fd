#include "align/alignment.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <optional>

#include "core/angle_text.h"
#include "core/time.h"
#include "scope/encoder_box.h"
#include "scope/mount_mapping.h"
#include "settings/message.h"
#include "settings/preferences_file.h"
#include "settings/saved_preferences.h"

namespace nocturnel {
namespace {
constexpr double kTwoPi = 6.283185307179586;

AlignmentState& state() {
    static AlignmentState s;
    return s;
}

// The UT Julian date of the reference clock time on the local date of the alignment.
double referenceJulianDate(const char* toTime, double alignmentJdUt) {
    double t0 = 0;
    if (!referenceTimeRadians(toTime, t0) || alignmentJdUt <= 0) return alignmentJdUt;
    const int offset = prefs().utcOffsetMin;
    const CalendarDate local = calendarFromJulian(alignmentJdUt + offset / 1440.0);
    const double refJd = julianDayAtMidnight(local.year, local.month, local.day) + t0 / kTwoPi - offset / 1440.0;
    // The stars were centred before the alignment was computed: a reference time later in
    // the day than the computation belongs to the day before.
    return refJd > alignmentJdUt + 0.5 ? refJd - 1.0 : refJd;
}
}  // namespace

const AlignmentState& alignmentState() { return state(); }
void clearAlignmentState() { state() = AlignmentState{}; }

std::string toTimeFromStarTime(double timeDeg) {
    const int hours = static_cast<int>(timeDeg / 15.0);
    const int minutes = static_cast<int>(std::fmod(timeDeg * 60.0 / 15.0, 60.0));
    const int seconds = static_cast<int>(std::fmod(timeDeg * 3600.0 / 15.0, 60.0));
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", hours, minutes, seconds);
    return text;
}

int computeAlignmentMatrix(const char* toTime, const AlignmentStarRecord& star1, const AlignmentStarRecord& star2) {
    Mat3 matrix;
    if (!computeAlignmentMatrix(toTime, star1, star2, mountGeometryFromPreferences(), matrix)) return 0;
    AlignmentState& s = state();
    std::snprintf(s.toTime, sizeof s.toTime, "%.8s", toTime);
    s.matrix = matrix;
    s.valid = true;
    s.referenceJd = referenceJulianDate(toTime, prefs().alignmentJd);
    return 1;
}

int computeAlignmentFromForm(const AlignmentForm& form, double nowJdUt) {
    AlignmentStarRecord stars[2];
    bool readable = true;
    for (int i = 0; i < 2; ++i) {
        const AlignmentFormStar& f = form.star[i];
        const auto time = parseAngleText(f.time);
        const auto ra = parseAngleText(f.ra);
        const auto dec = parseAngleText(f.dec);
        const auto hor = parseAngleText(f.hor);
        const auto elv = parseAngleText(f.elv);
        if (!time || !ra || !dec || !hor || !elv) {
            readable = false;
            break;
        }
        copyFixedText(stars[i].name, f.name.c_str());
        stars[i].time = *time * 15.0;
        stars[i].ra = *ra * 15.0;
        stars[i].dec = *dec;
        stars[i].hor = prefs().mountType == 0 ? *hor * 15.0 : *hor;  // equatorial: RA axis typed in hours
        stars[i].elv = *elv;
    }
    std::string toTime = form.toTime.empty() && readable ? toTimeFromStarTime(stars[0].time) : form.toTime;
    const double previousJd = prefs().alignmentJd;
    prefs().alignmentJd = nowJdUt;
    if (!readable || !computeAlignmentMatrix(toTime.c_str(), stars[0], stars[1])) {
        prefs().alignmentJd = previousJd;
        showMessage("Fail to compute align matrix", "Please verify inputs.");
        return 0;
    }
    Preferences& p = prefs();
    for (int i = 0; i < 2; ++i) {
        p.alignStar[i] = stars[i];
        p.savedAlignStar[i] = stars[i];
    }
    p.savedEncoderAltOffset = p.encoderAltOffset;
    p.savedEncoderAzOffset = p.encoderAzOffset;
    p.hasSavedAlignment = 1;
    // Only the alignment's own fields go into the saved record: what other processes saved
    // meanwhile is kept.
    updateSavedPreferences([&p](Preferences& saved) {
        for (int i = 0; i < 2; ++i) {
            saved.alignStar[i] = p.alignStar[i];
            saved.savedAlignStar[i] = p.savedAlignStar[i];
        }
        saved.savedEncoderAltOffset = p.savedEncoderAltOffset;
        saved.savedEncoderAzOffset = p.savedEncoderAzOffset;
        saved.hasSavedAlignment = p.hasSavedAlignment;
        saved.alignmentJd = p.alignmentJd;
        // The matrix belongs to the drive it was made with (a run's --drive/--port included).
        saved.scopeDrive = p.scopeDrive;
        saved.scopePort = p.scopePort;
        std::memcpy(saved.scopeDevice, p.scopeDevice, sizeof saved.scopeDevice);
        return true;
    });
    return 1;
}

int restoreAlignment() {
    Preferences& p = prefs();
    p.alignStar[0] = p.savedAlignStar[0];
    p.alignStar[1] = p.savedAlignStar[1];
    p.encoderAltOffset = p.savedEncoderAltOffset;
    p.encoderAzOffset = p.savedEncoderAzOffset;
    const std::string toTime = toTimeFromStarTime(p.alignStar[0].time);
    if (!computeAlignmentMatrix(toTime.c_str(), p.alignStar[0], p.alignStar[1])) {
        showMessage("Fail to compute align matrix", "Please redo 2 star alignment.");
        encoderReset();
        return 0;
    }
    return 1;
}

bool offerAlignmentRestore() {
    if (!prefs().hasSavedAlignment) return false;
    if (!askYesNo("Would you want to restore your last alignment?")) return false;
    if (!restoreAlignment()) return false;
    installAlignmentMapping();
    return true;
}

double elapsedClockAngle(double jdUt) { return (jdUt - state().referenceJd) * kTwoPi; }

bool skyToTelescope(double raHours, double decDeg, double jdUt, double& horDeg, double& elvDeg) {
    if (!state().valid) return false;
    skyToTelescopeAngles(state().matrix, mountGeometryFromPreferences(), raHours, decDeg, elapsedClockAngle(jdUt),
                         horDeg, elvDeg);
    return true;
}

bool telescopeToSky(double horDeg, double elvDeg, double jdUt, double& raHours, double& decDeg) {
    if (!state().valid) return false;
    return telescopeAnglesToSky(state().matrix, mountGeometryFromPreferences(), horDeg, elvDeg,
                                elapsedClockAngle(jdUt), raHours, decDeg);
}

void installAlignmentMapping() {
    MountMapping mapping;
    mapping.skyToMount = [](double ra, double dec, double jd, double& hor, double& elv) {
        return skyToTelescope(ra, dec, jd, hor, elv);
    };
    mapping.mountToSky = [](double hor, double elv, double jd, double& ra, double& dec) {
        return telescopeToSky(hor, elv, jd, ra, dec);
    };
    setMountMapping(std::move(mapping));
}

}  // namespace nocturnel
