#pragma once
// The meteor-shower table of SkyRoamer's shower stage, beginning with the Quadrantids, read from
// data/nocturnel_meteor_showers.ppc (written by the catalogue builder).
#include <string>
#include <vector>

#include "plans/observing_list_files.h"

namespace nocturnel {

struct MeteorShower {
    std::string name;
    double radiantRaDeg;       // radiant at maximum, J2000
    double radiantDecDeg;
    int startMonth, startDay;  // activity period (it may run over the new year)
    int endMonth, endDay;
    int peakMonth, peakDay;
    int zhr;                   // zenithal hourly rate at maximum
};

MeteorShower meteorShowerOfRecord(const MeteorShowerRecord& record);

// Reads the table in file order. A missing file shows "Could not find
// nocturnel_meteor_showers.ppc" (with the folder looked in), a damaged one "Could not read
// nocturnel_meteor_showers.ppc" (with the fault); both leave `showers` empty and return false.
bool loadMeteorShowers(std::vector<MeteorShower>& showers);

// Whether the shower is active on a date (month 1..12, day 1..31).
bool meteorShowerActive(const MeteorShower& shower, int month, int day);

}  // namespace nocturnel
