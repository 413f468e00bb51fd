#include "settings/machine_clock.h"

#include <chrono>

namespace nocturnel {

ObservingMoment localMomentFromClock(int utcOffsetMin) {
    using namespace std::chrono;
    const auto local = floor<seconds>(system_clock::now()) + minutes(utcOffsetMin);
    const auto day = floor<days>(local);
    const year_month_day ymd{day};
    const hh_mm_ss clock{local - day};
    ObservingMoment m;
    m.year = static_cast<int>(ymd.year());
    m.month = static_cast<int>(static_cast<unsigned>(ymd.month()));
    m.day = static_cast<int>(static_cast<unsigned>(ymd.day()));
    m.hour = static_cast<int>(clock.hours().count());
    m.minute = static_cast<int>(clock.minutes().count());
    m.second = static_cast<int>(clock.seconds().count());
    return m;
}

}  // namespace nocturnel
