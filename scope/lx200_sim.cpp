#include "scope/lx200_sim.h"

#include "scope/drive_types.h"
#include "scope/lx200_format.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace nocturnel {
namespace {

constexpr std::size_t kMaxPendingBytes = 256;  // a line without any '#' is noise past this

std::string_view argumentOf(std::string_view command) {
    std::string_view argument = command.substr(2);
    while (!argument.empty() && argument.front() == ' ') argument.remove_prefix(1);
    return argument;
}

// Two-digit fields of a whole number of seconds (or arc seconds): first, minutes, seconds.
struct Fields {
    long first, minutes, seconds;
};
Fields sexagesimal(double value, double unitSeconds) {
    long total = std::lround(std::fabs(value) * unitSeconds);
    return {total / 3600, (total / 60) % 60, total % 60};
}

std::string printed(const char* format, auto... values) {
    char text[64];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

// The values a Gemini answers to its native queries, by identifier; 0 for the others.
std::string geminiNativeValue(int id) {
    switch (id) {
        case 27: return "6400#";    // PEC steps
        case 120: return "800#";    // manual slewing speed
        case 140: return "800#";    // goto slewing speed
        case 150: return "0.5#";    // guiding speed
        case 170: return "10#";     // centering speed
        case 502: return "0.5#";    // PEC guiding speed
        default: return "0#";
    }
}

// A held direction key turns the mount for the time since the last look, at the rate's speed.
void applyMotion(Lx200MountState& s) {
    const auto now = std::chrono::steady_clock::now();
    const double seconds = std::chrono::duration<double>(now - s.motionSince).count();
    s.motionSince = now;
    if (s.moving < 0 || seconds <= 0 || seconds > 3600) return;
    const double step = lx200SimulatedRateDegPerSec(s.rate) * seconds;
    switch (s.moving) {
        case 0: s.decDeg = std::min(90.0, s.decDeg + step); break;
        case 1: s.decDeg = std::max(-90.0, s.decDeg - step); break;
        case 2: s.raHours = std::fmod(s.raHours + step / 15 + 24, 24); break;
        default: s.raHours = std::fmod(s.raHours - step / 15 + 24, 24); break;
    }
}

// The simulated clock's local civil time.
std::tm localClock(const Lx200MountState& s) {
    const auto now = std::chrono::system_clock::now();
    const std::time_t local = std::chrono::system_clock::to_time_t(now) +
                              static_cast<std::time_t>(std::llround(s.clockShiftSeconds + s.utcOffsetHours * 3600));
    std::tm fields{};
    gmtime_r(&local, &fields);
    return fields;
}

// Moves the simulated clock so that its local time reads the given fields (from ":SC"/":SL").
void setLocalClock(Lx200MountState& s, const std::tm& wanted) {
    std::tm current = localClock(s);
    std::tm target = wanted;
    s.clockShiftSeconds += std::difftime(timegm(&target), timegm(&current));
}

std::string degreesMinutes(double deg, bool withSign, int width) {
    const Fields f = sexagesimal(deg, 3600);
    const long minutes = f.minutes + (f.seconds >= 30 ? 1 : 0);
    std::string text = withSign ? (deg < 0 ? "-" : "+") : "";
    return text + printed(width == 3 ? "%03ld" : "%02ld", f.first + minutes / 60) + "*" +
           printed("%02ld", minutes % 60) + "#";
}

}  // namespace

std::string Lx200MountModel::respond(std::string& pending) {
    std::lock_guard lock(mutex_);
    std::string replies;
    // The ACK byte stands alone, outside the ':'..'#' commands.
    for (std::size_t ack = pending.find('\x06'); ack != std::string::npos; ack = pending.find('\x06')) {
        const std::size_t colon = pending.find(':');
        if (colon != std::string::npos && colon < ack && pending.find('#', colon) > ack) break;  // inside a command
        pending.erase(ack, 1);
        state_.commands.push_back("ACK");
        if (!state_.silent) replies += state_.ackReply;
    }
    for (std::size_t end = pending.find('#'); end != std::string::npos; end = pending.find('#')) {
        std::string segment = pending.substr(0, end);
        pending.erase(0, end + 1);
        segment.erase(std::remove(segment.begin(), segment.end(), '\0'), segment.end());
        if (const std::size_t native = segment.find_first_of("<>"); native != std::string::npos) {
            // Gemini's native commands: "<ID:c#" asks a value, ">ID:value c#" sets one.
            state_.commands.push_back(segment.substr(native));
            if (!state_.silent && segment[native] == '<') replies += geminiNativeValue(std::atoi(segment.c_str() + native + 1));
            continue;
        }
        std::size_t colon = segment.find(':');
        if (colon == std::string::npos) continue;  // an empty command ("#") or noise
        std::string command = segment.substr(colon + 1);
        state_.commands.push_back(command);
        std::string reply = answer(command);  // a silent mount still obeys, it only never answers
        if (!state_.silent) replies += reply;
    }
    if (pending.size() > kMaxPendingBytes) pending.clear();
    return replies;
}

std::string Lx200MountModel::answer(const std::string& command) {
    Lx200MountState& s = state_;
    std::string_view c = command;
    auto is = [&c](std::string_view name) { return c == name; };
    applyMotion(s);
    if (is("GR")) return lx200RaReply(s.raHours, s.highPrecision);
    if (is("GD")) return lx200DecReply(s.decDeg, s.highPrecision);
    if (is("GA")) return lx200DecReply(s.altDeg, s.highPrecision);
    if (is("GZ")) return lx200AzimuthReply(s.azDeg, s.highPrecision);
    if (is("Gr")) return lx200RaReply(s.targetRaHours, s.highPrecision);
    if (is("Gd")) return lx200DecReply(s.targetDecDeg, s.highPrecision);
    if (is("GC")) {
        if (s.dateReply) return *s.dateReply;
        const std::tm t = localClock(s);
        return printed("%02d/%02d/%02d#", t.tm_mon + 1, t.tm_mday, t.tm_year % 100);
    }
    if (is("GL") || is("Ga")) {
        const std::tm t = localClock(s);
        const int hour = is("Ga") ? (t.tm_hour % 12 == 0 ? 12 : t.tm_hour % 12) : t.tm_hour;
        return printed("%02d:%02d:%02d#", hour, t.tm_min, t.tm_sec);
    }
    if (is("GG")) {  // hours to add to local time to get UT
        const double toUt = -s.utcOffsetHours;
        return printed("%+03ld#", std::lround(toUt));
    }
    if (is("Gc")) return "24#";
    if (is("Gt")) return degreesMinutes(s.latitudeDeg, true, 2);
    if (is("Gg")) return degreesMinutes(s.longitudeWestDeg, false, 3);
    if (is("GM") || is("GN") || is("GO") || is("GP")) return "Nocturnel sim#";
    if (is("GT")) return "60.1#";
    if (is("GS")) return lx200RaReply(0, s.highPrecision);
    if (is("GVP")) return s.product + "#";
    if (is("GVN")) return "4.2g#";
    if (is("GVD")) return "Nov 23 2026#";
    if (is("GVT")) return "18:00:00#";
    if (is("GVF")) return s.product + " simulator#";
    if (is("GW")) return "PT1#";  // polar, tracking, one star aligned
    if (is("D")) return "#";      // no distance bars: not slewing
    if (is("Gm")) return "E#";  // Gemini: side of pier
    if (is("Gv")) return "T";   // Gemini: tracking (not slewing)
    if (is("h?")) return "0";   // Gemini: not parked
    if (c.starts_with("SC")) {
        int month = 0, day = 0, year = 0;
        if (std::sscanf(std::string(argumentOf(c)).c_str(), "%d/%d/%d", &month, &day, &year) != 3) return "0";
        std::tm wanted = localClock(s);
        wanted.tm_mon = month - 1;
        wanted.tm_mday = day;
        wanted.tm_year = year + 100;
        setLocalClock(s, wanted);
        // Meade's answer: '1', then two lines about the planetary data.
        return "1Updating Planetary Data#                              #";
    }
    if (c.starts_with("SL")) {
        int hour = 0, minute = 0, second = 0;
        if (std::sscanf(std::string(argumentOf(c)).c_str(), "%d:%d:%d", &hour, &minute, &second) != 3) return "0";
        std::tm wanted = localClock(s);
        wanted.tm_hour = hour;
        wanted.tm_min = minute;
        wanted.tm_sec = second;
        setLocalClock(s, wanted);
        return "1";
    }
    if (c.starts_with("SG")) {  // hours to add to local time to get UT
        const std::string argument(argumentOf(c));
        char* end = nullptr;
        const double toUt = std::strtod(argument.c_str(), &end);
        if (end == argument.c_str()) return "0";
        s.utcOffsetHours = -toUt;
        return "1";
    }
    if (c.starts_with("St") || c.starts_with("Sg")) {
        double value = 0;
        if (!parseLx200Sexagesimal(argumentOf(c), value)) return "0";
        (c[1] == 't' ? s.latitudeDeg : s.longitudeWestDeg) = value;
        return "1";
    }
    if (c.starts_with("Sw") || c.starts_with("SM") || c.starts_with("SN") || c.starts_with("SO") ||
        c.starts_with("SP") || c.starts_with("ST"))
        return "1";
    if (c.starts_with("Sr")) {
        double value = 0;
        bool ok = parseLx200Sexagesimal(argumentOf(c), value) && value >= 0 && value <= 24;
        if (ok) s.targetRaHours = value;
        return ok ? s.setReply : std::string("0");
    }
    if (c.starts_with("Sd")) {
        double value = 0;
        bool ok = parseLx200Sexagesimal(argumentOf(c), value) && std::fabs(value) <= 90;
        if (ok) s.targetDecDeg = value;
        return ok ? s.setReply : std::string("0");
    }
    if (is("MS")) {
        if (s.gotoReply.starts_with('0')) {
            s.raHours = std::fmod(s.targetRaHours, 24.0);
            s.decDeg = s.targetDecDeg;
        }
        return s.gotoReply;
    }
    if (is("CM")) {
        s.raHours = std::fmod(s.targetRaHours, 24.0);
        s.decDeg = s.targetDecDeg;
        return s.syncReply;
    }
    static constexpr std::string_view kRates[4] = {"RS", "RM", "RC", "RG"};
    static constexpr std::string_view kMoves[4] = {"Mn", "Ms", "Me", "Mw"};
    for (int i = 0; i < 4; ++i) {
        if (c == kRates[i]) s.rate = i;
        if (c == kMoves[i]) s.moving = i;
    }
    if (c.starts_with('Q')) s.moving = -1;
    if (is("U")) s.highPrecision = !s.highPrecision;
    return {};
}

double lx200SimulatedRateDegPerSec(int rate) {
    static constexpr double kDegPerSec[4] = {2.0, 0.5, 0.1, 0.004};  // slew, find, centre, guide (1x sidereal)
    return kDegPerSec[std::clamp(rate, 0, 3)];
}

PtyMount::Responder makeLx200Responder(std::shared_ptr<Lx200MountModel> model) {
    return [model = std::move(model)](std::string& pending) { return model->respond(pending); };
}

PtyMount::Responder makeLx200Responder(bool highPrecision, double raHours, double decDeg) {
    return makeLx200Responder(std::make_shared<Lx200MountModel>(lx200MountForDrive(kDriveLx200, highPrecision, raHours, decDeg)));
}

Lx200MountState lx200MountForDrive(int driveCode, bool highPrecision, double raHours, double decDeg) {
    Lx200MountState mount;
    mount.highPrecision = highPrecision;
    mount.raHours = mount.targetRaHours = raHours;
    mount.decDeg = mount.targetDecDeg = decDeg;
    if (driveCode == kDriveAutoStar) mount.product = "Autostar";
    if (driveCode == kDriveLosmandy) {
        mount.product = "Losmandy Gemini";
        mount.ackReply = "G#";
    }
    return mount;
}

}  // namespace nocturnel
