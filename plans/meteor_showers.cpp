#include "plans/meteor_showers.h"

#include <cmath>
#include <cstring>

#include "plans/data_table_file.h"

namespace nocturnel {
namespace {

bool realDay(int month, int day) {
    constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month >= 1 && month <= 12 && day >= 1 && day <= kDays[month - 1];
}

bool plausible(const MeteorShowerRecord& r) {
    return r.name[0] != '\0' && std::memchr(r.name, '\0', sizeof r.name) != nullptr && std::isfinite(r.radiantRaDeg) &&
           r.radiantRaDeg >= 0 && r.radiantRaDeg < 360 && std::isfinite(r.radiantDecDeg) && std::fabs(r.radiantDecDeg) <= 90 &&
           realDay(r.startMonth, r.startDay) && realDay(r.endMonth, r.endDay) && realDay(r.peakMonth, r.peakDay);
}

}  // namespace

MeteorShower meteorShowerOfRecord(const MeteorShowerRecord& r) {
    return {std::string(r.name, strnlen(r.name, sizeof r.name)), r.radiantRaDeg, r.radiantDecDeg, r.startMonth, r.startDay,
            r.endMonth, r.endDay, r.peakMonth, r.peakDay, r.zhr};
}

bool loadMeteorShowers(std::vector<MeteorShower>& showers) {
    return loadDataTable<MeteorShowerRecord>(kMeteorShowerFile, kMeteorShowerFileVersion, showers, plausible,
                                             meteorShowerOfRecord);
}

bool meteorShowerActive(const MeteorShower& s, int month, int day) {
    const int date = month * 100 + day, start = s.startMonth * 100 + s.startDay, end = s.endMonth * 100 + s.endDay;
    return start <= end ? (date >= start && date <= end) : (date >= start || date <= end);
}

}  // namespace nocturnel
