// Angle and time text: the four display styles for hours and degrees, for doubles and for
// the 292818-units-per-hour fixed-point values, each with its own rounding and carry rules,
// and a reader that accepts every text they write as well as typed sexagesimal/decimal text.
#include "core/angle_text.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/text_encoding.h"

namespace nocturnel {
namespace {

// Every text goes through here: at most kAngleTextSize bytes, always terminated. Absurd
// inputs (a fixed value of millions of hours) are cut rather than overflowing the buffer.
__attribute__((format(printf, 2, 3))) void writeText(char* buf, const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vsnprintf(buf, kAngleTextSize, format, args);
    va_end(args);
}

// Non-finite input has no angle to show; it gets a recognisable placeholder.
constexpr const char* kNoValueText = "--";

char* writeNoValue(char* buf) {
    writeText(buf, "%s", kNoValueText);
    return buf;
}

// The shared number-to-text helper of style 0 for doubles: four decimals.
char* writeDecimal(double value, char* buf) {
    writeText(buf, "%.4f", value);
    return buf;
}

// [0, 24]: negative values gain 24 until not negative, values above 24 lose 24 until not
// above (an exact 24 stays). fmod first so huge inputs cannot spin the loops.
double wrapHoursForText(double x) {
    if (!(std::fabs(x) <= 48.0)) x = std::fmod(x, 24.0);
    while (x < 0) x += 24.0;
    while (x > 24.0) x -= 24.0;
    return x;
}

}  // namespace

char* hoursToTextStyle(double hours, int style, char* buf) {
    if (!std::isfinite(hours)) return writeNoValue(buf);
    const double x = wrapHoursForText(hours);
    if (style == 0) return writeDecimal(x, buf);
    int h = static_cast<int>(std::floor(x));
    const double minutesWithFraction = (x - h) * 60.0;
    int s = static_cast<int>(std::trunc((minutesWithFraction - std::floor(minutesWithFraction)) * 60.0 + 0.5));
    int m = static_cast<int>(std::floor(minutesWithFraction));
    if (style == 3) s += 5;  // rounds to the tenth of a minute
    if (s >= 60) {
        s -= 60;
        m += 1;
    }
    if (m >= 60) {
        m -= 60;
        h += 1;
    }
    if (h >= 24) h -= 24;
    switch (style) {
        case 1: writeText(buf, "%02d:%02d:%02d", h, m, s); break;
        case 2: writeText(buf, "%02dh%02dm%02d", h, m, s); break;
        case 3: writeText(buf, "%02dh%02d.%d", h, m, (10 * s) / 60); break;
        default:
            writeText(buf, "%02dh%02dm%02d", h, m, s);
            showMessage("HMSToStr Unkown hour format");
            break;
    }
    return buf;
}

// The degree formatters' carries: seconds into minutes, minutes into degrees, then the
// degrees wrap at 360.
static void carryDegrees(int64_t& d, int64_t& m, int64_t& s) {
    if (s >= 60) {
        m += s / 60;
        s %= 60;
    }
    if (m >= 60) {
        d += m / 60;
        m %= 60;
    }
    if (d >= 360) d %= 360;
}

char* degreesToTextStyle(double degrees, int style, char* buf) {
    if (!std::isfinite(degrees)) return writeNoValue(buf);
    const bool negative = degrees < 0;
    double x = std::fabs(degrees);
    if (style == 0) return writeDecimal(degrees, buf);
    // The integer degrees wrap at 360 below; fold absurdly large values first so the
    // integer fields cannot overflow (their fraction is long lost at that size anyway).
    if (x >= 1.0e9) x = std::fmod(x, 360.0);
    int64_t d = static_cast<int64_t>(std::floor(x));
    int64_t m = static_cast<int64_t>(std::trunc(std::fmod(60.0 * x, 60.0)));
    int64_t s = static_cast<int64_t>(std::trunc(std::fmod(3600.0 * x + 0.5, 60.0)));
    if (style == 3) s += 5;
    carryDegrees(d, m, s);
    const char* sign = negative ? "-" : "";
    const int di = static_cast<int>(d), mi = static_cast<int>(m), si = static_cast<int>(s);
    switch (style) {
        case 2: writeText(buf, "%s%02d%c%02d'%02d", sign, di, kDegreeSign, mi, si); break;
        case 3: writeText(buf, "%s%02d%c%02d.%d", sign, di, kDegreeSign, mi, (10 * si) / 60); break;
        default: writeText(buf, "%s%02d:%02d:%02d", sign, di, mi, si); break;  // 1 and unknown
    }
    return buf;
}

char* fixedHoursToTextStyle(FixedAngle value, int style, char* buf) {
    const int64_t unit = kFixedAngleUnit;
    const int64_t v = static_cast<int64_t>(value) + 50;  // rounds by about 0.6 second
    const int64_t h = v / unit;
    const int64_t r = v - unit * h;
    const int64_t m = (60 * r) / unit;
    const int64_t s = ((60 * r - unit * m) * 60) / unit;
    // No carry here: s and m stay below 60 by construction.
    const int hi = static_cast<int>(h), mi = static_cast<int>(m), si = static_cast<int>(s);
    switch (style) {
        case 0: writeText(buf, "%02d.%d", hi, static_cast<int>((1000 * r) / unit)); break;
        case 1: writeText(buf, "%02d:%02d:%02d", hi, mi, si); break;
        case 2: writeText(buf, "%02dh%02dm%02d", hi, mi, si); break;
        case 3: writeText(buf, "%02dh%02d.%02d", hi, mi, (100 * si) / 60); break;
        default:
            writeText(buf, "%02dh%02dm%02d", hi, mi, si);
            showMessage("HmsFixToStr Unknown hour format.");
            break;
    }
    return buf;
}

char* fixedDegreesToTextStyle(FixedAngle value, int style, char* buf) {
    const int64_t unit = kFixedAngleUnit;
    const bool negative = value < 0;
    const int64_t v = std::llabs(static_cast<int64_t>(value)) + 50;
    int64_t d = v / unit;
    const int64_t r = v - unit * d;
    int64_t m = (60 * r) / unit;
    int64_t s = ((60 * r - unit * m) * 60) / unit;
    if (style == 3) s += 5;
    carryDegrees(d, m, s);
    const char* sign = negative ? "-" : "";
    const int di = static_cast<int>(d), mi = static_cast<int>(m), si = static_cast<int>(s);
    switch (style) {
        case 0: writeText(buf, "%s%02d.%d", sign, di, static_cast<int>((1000 * r) / unit)); break;
        case 2: writeText(buf, "%s%02d%c%02d'%02d", sign, di, kDegreeSign, mi, si); break;
        // The tenth of a minute after the +5 second rounding, like the other style-3 texts.
        case 3: writeText(buf, "%s%02d%c%02d.%d", sign, di, kDegreeSign, mi, (10 * si) / 60); break;
        default: writeText(buf, "%s%02d:%02d:%02d", sign, di, mi, si); break;  // 1 and unknown
    }
    return buf;
}

char* hoursToText(double hours, char* buf) { return hoursToTextStyle(hours, prefs().raFormat, buf); }
char* degreesToText(double degrees, char* buf) { return degreesToTextStyle(degrees, prefs().decFormat, buf); }
char* fixedHoursToText(FixedAngle value, char* buf) { return fixedHoursToTextStyle(value, prefs().raFormat, buf); }
char* fixedDegreesToText(FixedAngle value, char* buf) {
    return fixedDegreesToTextStyle(value, prefs().decFormat, buf);
}

std::string hoursText(double hours) {
    char buf[kAngleTextSize];
    return hoursToText(hours, buf);
}

std::string degreesText(double degrees) {
    char buf[kAngleTextSize];
    return degreesToText(degrees, buf);
}

namespace {

// One number of an angle text: digits with an optional decimal part.
struct NumberField {
    double value = 0;
    bool hasFraction = false;
};

class AngleTextReader {
public:
    explicit AngleTextReader(std::string_view text) : text_(text) {}

    std::optional<double> read() {
        skipSpaces();
        bool negative = false;
        if (peek() == '-' || peek() == '+') {
            negative = peek() == '-';
            ++pos_;
            skipSpaces();
        }
        double fields[3] = {0, 0, 0};
        int count = 0;
        while (count < 3) {
            const auto field = readNumber();
            if (!field) return std::nullopt;
            fields[count++] = field->value;
            const bool more = skipSeparator(count);
            if (field->hasFraction && more) return std::nullopt;  // only the last field may carry decimals
            if (!more) break;
            skipSpaces();
            if (atEnd()) {
                if (lastSeparator_ == ':') return std::nullopt;  // "12:" misses its field
                break;  // a trailing unit ("23h", "10d30'") ends the text
            }
        }
        skipSpaces();
        if (!atEnd()) return std::nullopt;
        if (count >= 2 && fields[1] >= 60.0) return std::nullopt;
        if (count >= 3 && fields[2] >= 60.0) return std::nullopt;
        const double value = fields[0] + fields[1] / 60.0 + fields[2] / 3600.0;
        return negative ? -value : value;
    }

private:
    bool atEnd() const { return pos_ >= text_.size(); }
    char peek() const { return atEnd() ? '\0' : text_[pos_]; }
    void skipSpaces() {
        while (!atEnd() && (text_[pos_] == ' ' || text_[pos_] == '\t')) ++pos_;
    }

    std::optional<NumberField> readNumber() {
        NumberField out;
        const std::size_t start = pos_;
        std::size_t digits = 0;
        while (!atEnd() && text_[pos_] >= '0' && text_[pos_] <= '9') ++pos_, ++digits;
        if (peek() == '.') {
            out.hasFraction = true;
            ++pos_;
            while (!atEnd() && text_[pos_] >= '0' && text_[pos_] <= '9') ++pos_, ++digits;
        }
        if (digits == 0 || digits > 20) return std::nullopt;
        out.value = std::strtod(std::string(text_.substr(start, pos_ - start)).c_str(), nullptr);
        return out;
    }

    // After field number `count` (1-based): consumes the unit or separator that follows and
    // tells whether another field may follow.
    bool skipSeparator(int count) {
        const std::size_t before = pos_;
        skipSpaces();
        if (atEnd()) return false;
        const char c = text_[pos_];
        lastSeparator_ = c;
        if (c == ':') return ++pos_, true;
        if (count == 1) {
            if (c == 'h' || c == 'H' || c == 'd' || c == 'D' || c == kDegreeSign) return ++pos_, true;
            if (c == '\xC2' && pos_ + 1 < text_.size() && text_[pos_ + 1] == kDegreeSign) return pos_ += 2, true;
        }
        if (count == 2 && (c == 'm' || c == 'M' || c == '\'')) return ++pos_, true;
        if (count == 3 && (c == 's' || c == 'S' || c == '"')) return ++pos_, false;
        // Plain blanks separate fields ("12 34 56").
        if (pos_ > before && c >= '0' && c <= '9') return true;
        return false;
    }

    std::string_view text_;
    std::size_t pos_ = 0;
    char lastSeparator_ = 0;
};

}  // namespace

std::optional<double> parseAngleText(std::string_view text) { return AngleTextReader(text).read(); }

std::string toUtf8(std::string_view latin1) { return latin1ToUtf8(latin1); }

}  // namespace nocturnel
