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
    std::string folder;  // the program folder it was read for; empty: not read yet
    std::shared_ptr<const StarMotionTable> table = std::make_shared<const StarMotionTable>();
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

std::shared_ptr<const StarMotionTable> tableOf(std::vector<StarMotionEntry> entries) {
    auto table = std::make_shared<StarMotionTable>();
    table->byHip = std::move(entries);
    for (size_t i = 0; i < table->byHip.size(); ++i)
        if (table->byHip[i].hr > 0) table->hrOrder.push_back(static_cast<int32_t>(i));
    std::stable_sort(table->hrOrder.begin(), table->hrOrder.end(),
                     [&](int32_t a, int32_t b) { return table->byHip[a].hr < table->byHip[b].hr; });
    return table;
}

// The table of the current data folder; the caller holds gMotionMutex. The folder is compared
// as it stands (no path built): a chart asks once for each of its bright stars.
std::shared_ptr<const StarMotionTable> currentTable() {
    const std::string& folder = programFolder().native();
    if (gMotion.folder.empty() || gMotion.folder != folder)
        gMotion = MotionTable{folder, tableOf(readMotionFile())};
    return gMotion.table;
}

const StarMotionEntry* lookupHip(const StarMotionTable& t, int32_t hip) {
    if (hip <= 0) return nullptr;
    const auto it = std::lower_bound(t.byHip.begin(), t.byHip.end(), hip,
                                     [](const StarMotionEntry& e, int32_t n) { return e.hip < n; });
    return it == t.byHip.end() || it->hip != hip ? nullptr : &*it;
}

const StarMotionEntry* lookupHr(const StarMotionTable& t, int32_t hr) {
    if (hr <= 0) return nullptr;
    const auto it = std::lower_bound(t.hrOrder.begin(), t.hrOrder.end(), hr, [&](int32_t i, int32_t n) {
        return t.byHip[static_cast<size_t>(i)].hr < n;
    });
    return it == t.hrOrder.end() || t.byHip[static_cast<size_t>(*it)].hr != hr
               ? nullptr
               : &t.byHip[static_cast<size_t>(*it)];
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

StarMotionLookup::StarMotionLookup() {
    std::lock_guard<std::mutex> lock(gMotionMutex);
    table_ = currentTable();
}

const StarMotionEntry* StarMotionLookup::byHip(int32_t hip) const {
    return lookupHip(*table_, hip);
}
const StarMotionEntry* StarMotionLookup::byHr(int32_t hr) const {
    return lookupHr(*table_, hr);
}

bool findStarMotion(int32_t hip, StarMotionEntry& out) {
    if (hip <= 0) return false;
    const StarMotionEntry* e = StarMotionLookup().byHip(hip);
    if (e) out = *e;
    return e != nullptr;
}

bool findStarMotionByHr(int32_t hr, StarMotionEntry& out) {
    if (hr <= 0) return false;
    const StarMotionEntry* e = StarMotionLookup().byHr(hr);
    if (e) out = *e;
    return e != nullptr;
}

void starPlaceAtEpoch(const StarMotionEntry& star, double epochYear, double& raHours, double& decDeg) {
    movePlaceToEpoch(star.raDeg / 15.0, star.decDeg, star.pmRaCosDecMasPerYear, star.pmDecMasPerYear,
                     epochYear, raHours, decDeg);
}

void movePlaceToEpoch(double raHoursJ2000, double decDegJ2000, double pmRaCosDec, double pmDec,
                      double epochYear, double& raHours, double& decDeg) {
    constexpr double kDegToRad = M_PI / 180, kMasToRad = M_PI / (180.0 * 3600.0 * 1000.0);
    const double ra = raHoursJ2000 * 15.0 * kDegToRad, dec = decDegJ2000 * kDegToRad;
    const double years = std::isfinite(epochYear) ? epochYear - 2000.0 : 0.0;
    const double east = pmRaCosDec * kMasToRad * years, north = pmDec * kMasToRad * years;
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
