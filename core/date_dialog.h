#pragma once
// The date/time dialog as engine functions: fields shown either as local civil time or as
// UT (switching converts them by the site's UT offset), the day kept within the month, the
// minute list in steps of 5, and a typed Julian date.
#include <string_view>

#include "settings/preferences.h"

namespace nocturnel {

inline constexpr std::string_view kDateDialogHelp =
    " Local time or Universal Time (UT) can be inputed as well as Julian Date.\nIn this case please press JD "
    "button to update.";
// Typed Julian dates are accepted in [year 0 January 1.0, 2200 January 1.0).
inline constexpr double kDateDialogFirstJd = 1721057.5;
inline constexpr double kDateDialogEndJd = 2524593.5;

struct DateDialog {
    int year = 2000, month = 1, day = 1, hour = 0, minute = 0, second = 0;
    bool showsUt = false;  // the two-state selector: false local time, true UT
};

// The dialog opened on a local observing moment (local time shown).
DateDialog openDateDialog(const ObservingMoment& local);
// The selector: converting the shown fields by -utcOffsetMin (to UT) or +utcOffsetMin (to local).
void setDateDialogShowsUt(DateDialog& dialog, bool showsUt, int utcOffsetMin);
// Month or year changed: the day is clamped to the month's length. Out-of-range months are refused.
void setDateDialogMonth(DateDialog& dialog, int month);
void setDateDialogYear(DateDialog& dialog, int year);
// A minute picked from the list (0, 5, ... 55): the seconds become 0.
void pickDateDialogMinute(DateDialog& dialog, int minute);
// A typed Julian date: accepted in [kDateDialogFirstJd, kDateDialogEndJd) and shown in the
// selector's time scale; otherwise "Invalid JD date" is shown, the fields stay and false returns.
bool enterDateDialogJulianDate(DateDialog& dialog, std::string_view text, int utcOffsetMin);
// The fields as a local observing moment (converted back when UT is shown).
ObservingMoment acceptDateDialog(const DateDialog& dialog, int utcOffsetMin);

}  // namespace nocturnel
