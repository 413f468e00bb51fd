#include "tools/observing_lists.h"

#include <charconv>
#include <cstring>
#include <map>
#include <set>

#include "catalog/object_tables.h"
#include "tools/record_io.h"

namespace nocturnel {
namespace {

std::string_view trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t' || s.front() == '\r')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
    return s;
}

// Calls `line(number, text)` for each line that is neither blank nor a '#' comment; stops at the
// first false.
template <typename LineFn>
bool forEachDataLine(std::string_view table, LineFn line) {
    int number = 0;
    while (!table.empty()) {
        const size_t end = table.find('\n');
        const std::string_view text = trim(table.substr(0, end));
        table = end == std::string_view::npos ? std::string_view{} : table.substr(end + 1);
        ++number;
        if (text.empty() || text.front() == '#') continue;
        if (!line(number, text)) return false;
    }
    return true;
}

bool parseInt(std::string_view text, int& value) {
    text = trim(text);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && ec == std::errc{} && end == text.data() + text.size();
}

// A real day of the year (29 February allowed).
bool realDay(int month, int day) {
    constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month >= 1 && month <= 12 && day >= 1 && day <= kDays[month - 1];
}

// "MM-DD" of a real day.
bool parseMonthDay(std::string_view text, uint8_t& month, uint8_t& day) {
    text = trim(text);
    int m = 0, d = 0;
    if (text.size() != 5 || text[2] != '-' || !parseInt(text.substr(0, 2), m) || !parseInt(text.substr(3), d) ||
        !realDay(m, d))
        return false;
    month = static_cast<uint8_t>(m);
    day = static_cast<uint8_t>(d);
    return true;
}

std::vector<std::string_view> splitFields(std::string_view line) {
    std::vector<std::string_view> fields;
    while (true) {
        const size_t bar = line.find('|');
        fields.push_back(trim(line.substr(0, bar)));
        if (bar == std::string_view::npos) return fields;
        line.remove_prefix(bar + 1);
    }
}

}  // namespace

std::string tableHeader(std::string_view table) {
    std::string header;
    while (!table.empty() && table.front() == '#') {
        const size_t end = table.find('\n');
        std::string_view line = table.substr(1, end == std::string_view::npos ? std::string_view::npos : end - 1);
        if (!line.empty() && line.front() == ' ') line.remove_prefix(1);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (!header.empty()) header += '\n';
        header += line;
        table = end == std::string_view::npos ? std::string_view{} : table.substr(end + 1);
    }
    return header;
}

bool parseNgcList(std::string_view table, std::vector<int32_t>& ngcNumbers, std::string& error) {
    ngcNumbers.clear();
    std::set<int32_t> seen;
    return forEachDataLine(table, [&](int line, std::string_view text) {
        int value = 0;
        if (!parseInt(text, value) || value < 1 || value > 7840) {
            error = "line " + std::to_string(line) + ": not an NGC number: " + std::string(text);
            return false;
        }
        if (!seen.insert(value).second) {
            error = "line " + std::to_string(line) + ": NGC " + std::to_string(value) + " listed twice";
            return false;
        }
        ngcNumbers.push_back(value);
        return true;
    });
}

bool parseNgcSameObjects(std::string_view table, std::map<int32_t, int32_t>& catalogNumberOf, std::string& error) {
    catalogNumberOf.clear();
    return forEachDataLine(table, [&](int line, std::string_view text) {
        const size_t space = text.find_first_of(" \t");
        int listed = 0, catalogued = 0;
        if (space == std::string_view::npos || !parseInt(text.substr(0, space), listed) ||
            !parseInt(text.substr(space + 1), catalogued) || listed < 1 || listed > 7840 || catalogued < 1 ||
            catalogued > 7840 || listed == catalogued) {
            error = "line " + std::to_string(line) + ": not a pair of NGC numbers: " + std::string(text);
            return false;
        }
        if (!catalogNumberOf.emplace(listed, catalogued).second) {
            error = "line " + std::to_string(line) + ": NGC " + std::to_string(listed) + " given twice";
            return false;
        }
        return true;
    });
}

bool parseMeteorShowerTable(std::string_view table, std::vector<MeteorShowerRecord>& showers, std::string& error) {
    showers.clear();
    return forEachDataLine(table, [&](int line, std::string_view text) {
        const auto fail = [&](const std::string& why) {
            error = "line " + std::to_string(line) + ": " + why;
            return false;
        };
        const std::vector<std::string_view> f = splitFields(text);
        if (f.size() != 7) return fail("7 fields expected, " + std::to_string(f.size()) + " found");
        MeteorShowerRecord r{};
        if (f[0].empty() || f[0].size() >= sizeof r.name) return fail("name empty or longer than 23 bytes");
        std::memcpy(r.name, f[0].data(), f[0].size());
        int ra = 0, dec = 0, zhr = 0;
        if (!parseInt(f[1], ra) || ra < 0 || ra >= 360) return fail("radiant RA out of 0..359: " + std::string(f[1]));
        if (!parseInt(f[2], dec) || dec < -90 || dec > 90) return fail("radiant Dec out of -90..90: " + std::string(f[2]));
        if (!parseMonthDay(f[3], r.startMonth, r.startDay) || !parseMonthDay(f[4], r.endMonth, r.endDay) ||
            !parseMonthDay(f[5], r.peakMonth, r.peakDay))
            return fail("a date is not MM-DD of a real day");
        if (!parseInt(f[6], zhr) || zhr < 0 || zhr > 65535) return fail("ZHR out of range: " + std::string(f[6]));
        r.radiantRaDeg = static_cast<float>(ra);
        r.radiantDecDeg = static_cast<float>(dec);
        r.zhr = static_cast<uint16_t>(zhr);
        showers.push_back(r);
        return true;
    });
}

std::vector<ListMemberRecord> listMembers(int catalog, const std::vector<int32_t>& ngcNumbers,
                                          const std::vector<ObjectIndexRecord>& index,
                                          const std::map<int32_t, int32_t>& catalogNumberOf, std::vector<int32_t>& missing) {
    std::map<int32_t, int32_t> recordOfNgc;
    for (const ObjectIndexRecord& e : index)
        if (e.catalog == kCatalogNGC && e.objectRecord >= 0) recordOfNgc.emplace(e.number, e.objectRecord);
    std::vector<ListMemberRecord> members;
    missing.clear();
    for (size_t i = 0; i < ngcNumbers.size(); ++i) {
        auto found = recordOfNgc.find(ngcNumbers[i]);
        if (const auto same = catalogNumberOf.find(ngcNumbers[i]); found == recordOfNgc.end() && same != catalogNumberOf.end())
            found = recordOfNgc.find(same->second);
        if (found == recordOfNgc.end()) {
            missing.push_back(ngcNumbers[i]);
            continue;
        }
        members.push_back({catalog, static_cast<int32_t>(i + 1), found->second, ngcNumbers[i]});
    }
    return members;
}

bool checkListMemberFile(const std::filesystem::path& file, uint32_t objectCount, std::string& error) {
    std::string bytes;
    DatabaseHeader header{};
    std::vector<ListMemberRecord> members;
    if (!readWholeFile(file, bytes) || !parseRecordFile(bytes, header, members, error) ||
        header.version != kListMemberFileVersion) {
        error = file.filename().string() + ": " + (error.empty() ? "unreadable or wrong version" : error);
        return false;
    }
    std::set<int32_t> listsDone;
    for (size_t i = 0; i < members.size(); ++i) {
        const ListMemberRecord& m = members[i];
        const bool sameList = i > 0 && members[i - 1].catalog == m.catalog;
        if ((m.catalog != kCatalogHerschel && m.catalog != kCatalogBestNGC) || m.objectRecord < 0 ||
            static_cast<uint32_t>(m.objectRecord) >= objectCount || m.ngc < 1 || m.ngc > 7840 ||
            (sameList ? m.rank <= members[i - 1].rank : (m.rank < 1 || listsDone.count(m.catalog) > 0))) {
            error = file.filename().string() + ": record " + std::to_string(i) + " out of range or order";
            return false;
        }
        listsDone.insert(m.catalog);
    }
    return true;
}

bool checkMeteorShowerFile(const std::filesystem::path& file, std::string& error) {
    std::string bytes;
    DatabaseHeader header{};
    std::vector<MeteorShowerRecord> showers;
    if (!readWholeFile(file, bytes) || !parseRecordFile(bytes, header, showers, error) ||
        header.version != kMeteorShowerFileVersion) {
        error = file.filename().string() + ": " + (error.empty() ? "unreadable or wrong version" : error);
        return false;
    }
    for (size_t i = 0; i < showers.size(); ++i) {
        const MeteorShowerRecord& s = showers[i];
        if (s.name[0] == '\0' || std::memchr(s.name, '\0', sizeof s.name) == nullptr || !(s.radiantRaDeg >= 0) ||
            !(s.radiantRaDeg < 360) || !(s.radiantDecDeg >= -90) || !(s.radiantDecDeg <= 90) ||
            !realDay(s.startMonth, s.startDay) || !realDay(s.endMonth, s.endDay) || !realDay(s.peakMonth, s.peakDay)) {
            error = file.filename().string() + ": record " + std::to_string(i) + " out of range";
            return false;
        }
    }
    return true;
}

}  // namespace nocturnel
