// Major annual meteor showers: radiants at maximum, activity periods, dates of maximum and
// zenithal hourly rates, from the International Meteor Organization's Meteor Shower Calendar
// (working list of visual showers).
#include "plans/meteor_showers.h"

#include <array>

namespace nocturnel {

namespace {
constexpr std::array<MeteorShower, 15> kMeteorShowers = {{
    {"Quadrantids", 230, 49, 12, 28, 1, 12, 1, 4, 80},
    {"Lyrids", 271, 34, 4, 14, 4, 30, 4, 22, 18},
    {"eta Aquariids", 338, -1, 4, 19, 5, 28, 5, 6, 50},
    {"alpha Capricornids", 307, -10, 7, 3, 8, 15, 7, 30, 5},
    {"S. delta Aquariids", 340, -16, 7, 12, 8, 23, 7, 30, 25},
    {"Perseids", 48, 58, 7, 17, 8, 24, 8, 12, 100},
    {"kappa Cygnids", 286, 59, 8, 3, 8, 25, 8, 17, 3},
    {"Draconids", 262, 54, 10, 6, 10, 10, 10, 8, 10},
    {"S. Taurids", 32, 9, 9, 10, 11, 20, 10, 10, 5},
    {"Orionids", 95, 16, 10, 2, 11, 7, 10, 21, 20},
    {"N. Taurids", 58, 22, 10, 20, 12, 10, 11, 12, 5},
    {"Leonids", 152, 22, 11, 6, 11, 30, 11, 17, 15},
    {"alpha Monocerotids", 117, 1, 11, 15, 11, 25, 11, 21, 5},
    {"Geminids", 112, 33, 12, 4, 12, 20, 12, 14, 150},
    {"Ursids", 217, 76, 12, 17, 12, 26, 12, 22, 10},
}};
}  // namespace

std::span<const MeteorShower> meteorShowers() { return kMeteorShowers; }

bool meteorShowerActive(const MeteorShower& s, int month, int day) {
    const int date = month * 100 + day, start = s.startMonth * 100 + s.startDay, end = s.endMonth * 100 + s.endDay;
    return start <= end ? (date >= start && date <= end) : (date >= start || date <= end);
}

}  // namespace nocturnel
