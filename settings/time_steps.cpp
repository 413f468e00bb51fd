#include "settings/time_steps.h"

#include <array>

namespace nocturnel {
namespace {
// In stored-index order, as the list shows them: "1 mn", "2 mn", "5 mn", "10 mn", "15 mn",
// "1 Hour", "6 Hours", "1 Day", "1 Sid. Day", "2 Days", "5 Days", "10 Days", "14 Days",
// "1 Lunation", "30 Days", "60 Days", "90 Days". The sidereal day is 86164.0905 s; the
// lunation is the mean synodic month, 29.530589 days.
constexpr double kDay = 86400.0;
constexpr std::array<double, 17> kStepSeconds = {
    60.0,        120.0,      300.0,       600.0,       900.0,        3600.0,     6 * 3600.0, kDay, 86164.0905,
    2 * kDay,    5 * kDay,   10 * kDay,   14 * kDay,   29.530589 * kDay, 30 * kDay, 60 * kDay,  90 * kDay};
}  // namespace

double timeStepSeconds(int index) {
    if (index < 0 || index >= static_cast<int>(kStepSeconds.size())) return 60.0;
    return kStepSeconds[static_cast<std::size_t>(index)];
}

}  // namespace nocturnel
