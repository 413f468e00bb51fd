#include "core/date_dialog.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <string>

#include "core/time.h"
#include "settings/message.h"

namespace nocturnel {
namespace {

void clampDay(DateDialog& d) {
    const int last = daysInMonth(d.year, d.month);
    if (d.day > last) d.day = last;
    if (d.day < 1) d.day = 1;
}

void shift(DateDialog& d, int minutes) { shiftDateByMinutes(&d.year, &d.month, &d.day, &d.hour, &d.minute, minutes); }

bool readJulianDate(std::string_view text, double& jd) {
    std::string s(text);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.pop_back();
    std::size_t start = s.find_first_not_of(" \t");
    if (start == std::string::npos || s.size() > 64) return false;
    s = s.substr(start);
    if (s.find_first_not_of("0123456789.+-eE") != std::string::npos) return false;
    char* end = nullptr;
    errno = 0;
    jd = std::strtod(s.c_str(), &end);
    return errno == 0 && end == s.c_str() + s.size() && std::isfinite(jd);
}

}  // namespace

DateDialog openDateDialog(const ObservingMoment& local) {
    return DateDialog{local.year, local.month, local.day, local.hour, local.minute, local.second, false};
}

void setDateDialogShowsUt(DateDialog& dialog, bool showsUt, int utcOffsetMin) {
    if (dialog.showsUt == showsUt) return;
    shift(dialog, showsUt ? -utcOffsetMin : utcOffsetMin);
    dialog.showsUt = showsUt;
}

void setDateDialogMonth(DateDialog& dialog, int month) {
    if (month < 1 || month > 12) return;
    dialog.month = month;
    clampDay(dialog);
}

void setDateDialogYear(DateDialog& dialog, int year) {
    dialog.year = year;
    clampDay(dialog);
}

void pickDateDialogMinute(DateDialog& dialog, int minute) {
    if (minute < 0 || minute > 59) return;
    dialog.minute = minute;
    dialog.second = 0;
}

bool enterDateDialogJulianDate(DateDialog& dialog, std::string_view text, int utcOffsetMin) {
    double jd = 0;
    if (!readJulianDate(text, jd) || !(jd >= kDateDialogFirstJd && jd < kDateDialogEndJd)) {
        showMessage("Invalid JD date");
        return false;
    }
    const CalendarDate c = calendarFromJulian(jd);
    DateDialog next{c.year, c.month, c.day, c.hour, c.minute, c.second, dialog.showsUt};
    // The conversion rounds the seconds after truncating the minutes, so a moment a fraction of
    // a second before a whole minute reads as second 60: carry it so the field stays 0..59.
    if (next.second >= 60) {
        next.second -= 60;
        shift(next, 1);
    }
    if (!dialog.showsUt) shift(next, utcOffsetMin);
    dialog = next;
    return true;
}

ObservingMoment acceptDateDialog(const DateDialog& dialog, int utcOffsetMin) {
    DateDialog local = dialog;
    if (local.showsUt) shift(local, utcOffsetMin);
    ObservingMoment m;
    m.year = local.year;
    m.month = local.month;
    m.day = local.day;
    m.hour = local.hour;
    m.minute = local.minute;
    m.second = local.second;
    return m;
}

}  // namespace nocturnel
