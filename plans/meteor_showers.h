#pragma once
// The meteor-shower table of SkyRoamer's shower stage, beginning with the Quadrantids.
#include <span>
#include <string_view>

namespace nocturnel {

struct MeteorShower {
    std::string_view name;
    double radiantRaDeg;       // radiant at maximum, J2000
    double radiantDecDeg;
    int startMonth, startDay;  // activity period (it may run over the new year)
    int endMonth, endDay;
    int peakMonth, peakDay;
    int zhr;                   // zenithal hourly rate at maximum
};

std::span<const MeteorShower> meteorShowers();
// Whether the shower is active on a date (month 1..12, day 1..31).
bool meteorShowerActive(const MeteorShower& shower, int month, int day);

}  // namespace nocturnel
