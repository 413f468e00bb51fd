#include "catalog/star_motion.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "catalog/record_file.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {

struct MotionTable {
    std::string path;                     // the file it was read from; empty: not read yet
    std::vector<StarMotionEntry> byHip;   // sorted by HIP
};

std::mutex gMotionMutex;
MotionTable gMotion;

// Reads the whole file through the record layer (silent when absent or damaged: the stars then
// keep their packed J2000 places).
std::vector<StarMotionEntry> readMotionFile() {
    std::vector<StarMotionEntry> entries;
    DatabaseSlot slot;
    if (!openDatabase(slot, 0, fourCharCode(kCreatorCode), 0, kDataFolder, kStarMotionFile)) return entries;
    if (recordSize(slot) == sizeof(StarMotionRecord) && databaseVersion(slot) == kStarMotionFileVersion) {
        const uint16_t count = recordCount(slot);
        entries.reserve(static_cast<size_t>(count) * kStarMotionEntriesPerRecord);
        for (uint32_t i = 0; i < count; ++i) {
            const uint8_t* bytes = fetchRecord(slot, i);
            if (!bytes) break;
            StarMotionRecord record;
            std::memcpy(&record, bytes, sizeof record);
            for (const StarMotionEntry& e : record.entries)
                if (e.hip > 0 && std::isfinite(e.raDeg) && std::isfinite(e.decDeg) && std::fabs(e.decDeg) <= 90 &&
                    std::isfinite(e.pmRaCosDecMasPerYear) && std::isfinite(e.pmDecMasPerYear))
                    entries.push_back(e);
        }
    }
    closeDatabase(slot);
    std::sort(entries.begin(), entries.end(), [](const StarMotionEntry& a, const StarMotionEntry& b) { return a.hip < b.hip; });
    return entries;
}

const MotionTable& motionTable() {
    const std::string path = dataPath(kStarMotionFile).string();
    if (gMotion.path != path) gMotion = MotionTable{path, readMotionFile()};
    return gMotion;
}

int64_t daysFromCivil(int64_t y, int64_t m, int64_t d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

}  // namespace

bool findStarMotion(int32_t hip, StarMotionEntry& out) {
    if (hip <= 0) return false;
    std::lock_guard<std::mutex> lock(gMotionMutex);
    const auto& table = motionTable().byHip;
    const auto it = std::lower_bound(table.begin(), table.end(), hip,
                                     [](const StarMotionEntry& e, int32_t n) { return e.hip < n; });
    if (it == table.end() || it->hip != hip) return false;
    out = *it;
    return true;
}

bool findStarMotionByHr(int32_t hr, StarMotionEntry& out) {
    if (hr <= 0) return false;
    std::lock_guard<std::mutex> lock(gMotionMutex);
    for (const StarMotionEntry& e : motionTable().byHip)
        if (e.hr == hr) {
            out = e;
            return true;
        }
    return false;
}

void starPlaceAtEpoch(const StarMotionEntry& star, double epochYear, double& raHours, double& decDeg) {
    constexpr double kDegToRad = M_PI / 180, kMasToRad = M_PI / (180.0 * 3600.0 * 1000.0);
    const double ra = star.raDeg * kDegToRad, dec = star.decDeg * kDegToRad;
    const double years = std::isfinite(epochYear) ? epochYear - 2000.0 : 0.0;
    const double east = star.pmRaCosDecMasPerYear * kMasToRad * years, north = star.pmDecMasPerYear * kMasToRad * years;
    const double p[3] = {std::cos(dec) * std::cos(ra) - east * std::sin(ra) - north * std::sin(dec) * std::cos(ra),
                         std::cos(dec) * std::sin(ra) + east * std::cos(ra) - north * std::sin(dec) * std::sin(ra),
                         std::sin(dec) + north * std::cos(dec)};
    double raRad = std::atan2(p[1], p[0]);
    if (raRad < 0) raRad += 2 * M_PI;
    raHours = raRad * 12 / M_PI;
    if (raHours >= 24) raHours -= 24;
    decDeg = std::atan2(p[2], std::hypot(p[0], p[1])) / kDegToRad;
}

bool starPlaceAtEpoch(int32_t hip, double epochYear, double& raHours, double& decDeg) {
    StarMotionEntry star;
    if (!findStarMotion(hip, star)) return false;
    starPlaceAtEpoch(star, epochYear, raHours, decDeg);
    return true;
}

double julianEpochOfJd(double jd) { return 2000.0 + (jd - 2451545.0) / 365.25; }

double julianEpochOf(int year, int month, int day, int hour, int minute, int second) {
    const double days = static_cast<double>(daysFromCivil(year, month, day) - daysFromCivil(2000, 1, 1)) +
                        (hour + minute / 60.0 + second / 3600.0) / 24.0 - 0.5;
    return 2000.0 + days / 365.25;
}

double observingEpoch() {
    const ObservingMoment& m = prefs().moment;
    if (m.month < 1 || m.month > 12 || m.day < 1 || m.day > 31) return 2000.0;
    // Local civil time less the site's offset is UT.
    return julianEpochOf(m.year, m.month, m.day, m.hour, m.minute, m.second) - prefs().utcOffsetMin / 1440.0 / 365.25;
}

void forgetStarMotion() {
    std::lock_guard<std::mutex> lock(gMotionMutex);
    gMotion = MotionTable{};
}

}  // namespace nocturnel
