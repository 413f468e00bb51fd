#include "plans/meteor_showers.h"

#include <cmath>
#include <cstring>

#include "catalog/record_file.h"
#include "settings/message.h"
#include "settings/program_folder.h"

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

bool damaged(std::vector<MeteorShower>& showers, const std::string& why) {
    showers.clear();
    showMessage(std::string("Could not read ") + kMeteorShowerFile, why);
    return false;
}

}  // namespace

MeteorShower meteorShowerOfRecord(const MeteorShowerRecord& r) {
    return {std::string(r.name, strnlen(r.name, sizeof r.name)), r.radiantRaDeg, r.radiantDecDeg, r.startMonth, r.startDay,
            r.endMonth, r.endDay, r.peakMonth, r.peakDay, r.zhr};
}

bool loadMeteorShowers(std::vector<MeteorShower>& showers) {
    showers.clear();
    DatabaseSlot slot;
    if (!openDatabase(slot, 0, fourCharCode(kCreatorCode), 0, kDataFolder, kMeteorShowerFile)) {
        showMessage(std::string("Could not find ") + kMeteorShowerFile,
                    "Looked in " + dataPath(kMeteorShowerFile).parent_path().string());
        return false;
    }
    if (recordSize(slot) != sizeof(MeteorShowerRecord) || databaseVersion(slot) != kMeteorShowerFileVersion)
        return damaged(showers, "record size " + std::to_string(recordSize(slot)) + ", version " +
                                    std::to_string(databaseVersion(slot)));
    const uint16_t count = recordCount(slot);
    for (uint16_t i = 0; i < count; ++i) {
        const uint8_t* bytes = fetchRecord(slot, i);
        if (bytes == nullptr) return damaged(showers, "record " + std::to_string(i) + " cannot be read");
        MeteorShowerRecord record;
        std::memcpy(&record, bytes, sizeof record);
        if (!plausible(record)) return damaged(showers, "record " + std::to_string(i) + " out of range");
        showers.push_back(meteorShowerOfRecord(record));
    }
    return true;
}

bool meteorShowerActive(const MeteorShower& s, int month, int day) {
    const int date = month * 100 + day, start = s.startMonth * 100 + s.startDay, end = s.endMonth * 100 + s.endDay;
    return start <= end ? (date >= start && date <= end) : (date >= start || date <= end);
}

}  // namespace nocturnel
