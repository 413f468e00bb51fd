#pragma once
// The record files of SkyRoamer's own lists, written by the catalogue builder and read by the
// selection stages. Both are record database files (catalog/record_file.h) in data/.
#include <cstdint>

namespace nocturnel {

// nocturnel_list_members.ppc: the members of the published observing lists that the object
// file does not mark itself (Herschel 400, code 25; SAC's best of the NGC, code 49), one record
// per member, grouped by list and in each list's published order.
inline constexpr char kListMemberFile[] = "nocturnel_list_members.ppc";
inline constexpr uint32_t kListMemberFileVersion = 1;

struct ListMemberRecord {
    int32_t catalog;       // the list's catalogue code (25 Herschel, 49 best of the NGC)
    int32_t rank;          // position in the published list, from 1
    int32_t objectRecord;  // record of the member in nocturnel_obj_18k.ppc
    int32_t ngc;           // the NGC number the list gives
};
static_assert(sizeof(ListMemberRecord) == 16);

// nocturnel_meteor_showers.ppc: the meteor-shower table of the shower stage, in table order
// (the Quadrantids first).
inline constexpr char kMeteorShowerFile[] = "nocturnel_meteor_showers.ppc";
inline constexpr uint32_t kMeteorShowerFileVersion = 1;

struct MeteorShowerRecord {
    char name[24];          // NUL-terminated
    float radiantRaDeg;     // radiant at maximum, J2000, degrees 0..360
    float radiantDecDeg;    // degrees -90..90
    uint8_t startMonth, startDay;  // activity period (the end may come before the start: over the new year)
    uint8_t endMonth, endDay;
    uint8_t peakMonth, peakDay;    // date of maximum
    uint16_t zhr;                  // zenithal hourly rate at maximum
};
static_assert(sizeof(MeteorShowerRecord) == 40);

}  // namespace nocturnel
