#include "align/alignment_report.h"

#include <cstdarg>
#include <cstdio>

#include "align/alignment.h"
#include "align/alignment_matrix.h"
#include "core/angle_text.h"
#include "scope/drive_types.h"
#include "settings/atomic_file.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {
void appendf(std::string& text, const char* format, ...) __attribute__((format(printf, 2, 3)));
void appendf(std::string& text, const char* format, ...) {
    char line[256];
    va_list args;
    va_start(args, format);
    std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
    text += line;
}

void appendStar(std::string& text, int number, const AlignmentStarRecord& star) {
    char buf[kAngleTextSize];
    appendf(text, "Star%d: %s\n", number, star.name);
    appendf(text, "Time: %s\n", hoursToText(star.time / 15.0, buf));
    appendf(text, "Ra: %s\n", hoursToText(star.ra / 15.0, buf));
    appendf(text, "Dec: %s\n", degreesToText(star.dec, buf));
    appendf(text, "Hor: %s\n", degreesToText(star.hor, buf));
    appendf(text, "Elv: %s\n", degreesToText(star.elv, buf));
}
}  // namespace

std::string configDataSection() {
    const Preferences& p = prefs();
    std::string text;
    char buf[kAngleTextSize];
    text += "\nConfig data:\n";
    appendf(text, "Longitude: %s\n", degreesToText(p.longitudeDeg, buf));
    appendf(text, "Latitude: %s\n", degreesToText(p.latitudeDeg, buf));
    appendf(text, "GMT: %d\n", p.utcOffsetMin);
    appendf(text, "ScopeDrive: %d\n", p.scopeDrive);
    if (driveFamily(p.scopeDrive) == DriveFamily::EncoderBox) {
        appendf(text, "Encoder Alt resolution: %d\n", p.encoderAltSteps);
        appendf(text, "Encoder Az resolution: %d\n", p.encoderAzSteps);
        appendf(text, "Encoder Alt offset: %d\n", p.encoderAltOffset);
        appendf(text, "Encoder Az offset: %d\n", p.encoderAzOffset);
    }
    appendf(text, "Scope Port: %d\n", p.scopePort);
    appendf(text, "Mount type: %d\n", p.mountType);
    appendf(text, "AlignMethod: %d\n", p.alignMethod);
    return text;
}

void writeAlignmentReport(std::string& text, const CalendarDate& now) {
    appendf(text, "%04d/%02d/%02d %02d:%02d:%02d Nocturnel alignment data\n", now.year, now.month, now.day, now.hour,
            now.minute, now.second);
    text += configDataSection();
    text += "\n2Star alignment data:\n";
    const AlignmentStarRecord& star1 = prefs().alignStar[0];
    appendf(text, "\nToTime: %s\n", alignmentState().valid ? alignmentState().toTime
                                                             : toTimeFromStarTime(star1.time).c_str());
    appendStar(text, 1, star1);
    appendStar(text, 2, prefs().alignStar[1]);
}

bool saveAlignmentReport(const std::filesystem::path& file, const CalendarDate& now) {
    std::string text;
    writeAlignmentReport(text, now);
    return writeOutputFile(file, text, "Can't write the alignment report");
}

}  // namespace nocturnel
