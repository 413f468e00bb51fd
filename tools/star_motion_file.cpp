#include "tools/star_motion_file.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <set>

#include "catalog/formats.h"

#include "tools/record_io.h"
#include "tools/sources.h"
#include "tools/star_files.h"

namespace nocturnel {

bool parseHipProperMotions(std::string_view text, std::map<int32_t, ProperMotion>& motions, std::string& error) {
    motions.clear();
    size_t lineNumber = 0;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        std::string line(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        ++lineNumber;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        int hip = 0;
        double ra = 0, dec = 0;
        char extra = 0;
        if (std::sscanf(line.c_str(), "%d %lf %lf %c", &hip, &ra, &dec, &extra) != 3 || hip <= 0 || !std::isfinite(ra) ||
            !std::isfinite(dec) || std::hypot(ra, dec) >= 11000) {
            error = "line " + std::to_string(lineNumber) + " is not HIP, pmRA, pmDE";
            return false;
        }
        motions[hip] = {ra, dec};
    }
    if (motions.empty()) {
        error = "no proper motions";
        return false;
    }
    return true;
}

std::vector<StarMotionRecord> starMotionRecords(const std::vector<StellariumStar>& stars,
                                                const std::map<int32_t, ProperMotion>& motions,
                                                const std::map<int32_t, int32_t>& hrByHip) {
    std::vector<StarMotionEntry> entries;
    std::set<int32_t> seen;
    for (const StellariumStar& s : stars) {
        if (s.hip <= 0 || !seen.insert(s.hip).second) continue;
        const auto hr = hrByHip.find(s.hip);
        const auto pm = motions.find(s.hip);
        const ProperMotion motion = pm == motions.end() ? ProperMotion{} : pm->second;
        entries.push_back({s.hip, hr == hrByHip.end() ? 0 : hr->second, s.raDeg, s.decDeg,
                           static_cast<float>(motion.raCosDecMasPerYear), static_cast<float>(motion.decMasPerYear)});
    }
    std::sort(entries.begin(), entries.end(), [](const StarMotionEntry& a, const StarMotionEntry& b) { return a.hip < b.hip; });
    std::vector<StarMotionRecord> records((entries.size() + kStarMotionEntriesPerRecord - 1) / kStarMotionEntriesPerRecord);
    for (StarMotionRecord& r : records) std::fill(std::begin(r.entries), std::end(r.entries), StarMotionEntry{});
    for (size_t i = 0; i < entries.size(); ++i)
        records[i / kStarMotionEntriesPerRecord].entries[i % kStarMotionEntriesPerRecord] = entries[i];
    return records;
}

std::map<int32_t, ReferencePlace> referencePlacesOf(const StarSources& sources) {
    std::map<int32_t, ReferencePlace> places;
    for (const HipparcosStar& h : sources.hipparcos)
        if (h.hip > 0) places.emplace(h.hip, ReferencePlace{h.raDeg, h.decDeg});
    return places;
}

namespace {
double separationArcsec(double ra1Deg, double dec1Deg, double ra2Deg, double dec2Deg) {
    constexpr double k = M_PI / 180;
    const double c = std::sin(dec1Deg * k) * std::sin(dec2Deg * k) +
                     std::cos(dec1Deg * k) * std::cos(dec2Deg * k) * std::cos((ra1Deg - ra2Deg) * k);
    return std::acos(std::clamp(c, -1.0, 1.0)) / k * 3600;
}
}  // namespace

int correctEpoch1991Places(std::vector<StellariumStar>& stars, const std::map<int32_t, ProperMotion>& motions,
                           const std::map<int32_t, ReferencePlace>& reference) {
    constexpr double kHipparcosEpoch = 1991.25, kOffArcsec = 2.0, kMatchArcsec = 1.5, kMatchShare = 0.1;
    int corrected = 0;
    for (StellariumStar& s : stars) {
        const auto ref = s.hip > 0 ? reference.find(s.hip) : reference.end();
        const auto pm = s.hip > 0 ? motions.find(s.hip) : motions.end();
        if (ref == reference.end() || pm == motions.end()) continue;
        if (separationArcsec(s.raDeg, s.decDeg, ref->second.raDeg, ref->second.decDeg) <= kOffArcsec)
            continue;
        const StarMotionEntry at1991{s.hip,
                                     0,
                                     s.raDeg,
                                     s.decDeg,
                                     static_cast<float>(pm->second.raCosDecMasPerYear),
                                     static_cast<float>(pm->second.decMasPerYear)};
        // From 1991.25 to 2000: the motion applied over 8.75 years, as from 2000 to 2008.75.
        double raHours = 0, decDeg = 0;
        starPlaceAtEpoch(at1991, 2000.0 + (2000.0 - kHipparcosEpoch), raHours, decDeg);
        const double way = separationArcsec(s.raDeg, s.decDeg, raHours * 15, decDeg);
        if (separationArcsec(raHours * 15, decDeg, ref->second.raDeg, ref->second.decDeg) >
            std::max(kMatchArcsec, kMatchShare * way))
            continue;
        s.raDeg = ref->second.raDeg;
        s.decDeg = ref->second.decDeg;
        ++corrected;
    }
    return corrected;
}

std::map<int32_t, int32_t> hrByHipOf(const StarSources& sources) {
    std::map<int32_t, int32_t> hipByHd, hrByHip;
    for (const auto& [hip, n] : sources.names)
        if (n.hd > 0) hipByHd.emplace(n.hd, hip);
    for (const BrightStarCatalogueStar& b : sources.brightStars) {
        const auto it = b.hd > 0 ? hipByHd.find(b.hd) : hipByHd.end();
        if (it != hipByHd.end()) hrByHip.emplace(it->second, b.hr);
    }
    return hrByHip;
}

bool buildStarMotionRecords(const std::vector<std::filesystem::path>& files,
                            const std::map<int32_t, int32_t>& hrByHip, std::vector<StarMotionRecord>& records,
                            std::string& error, const std::map<int32_t, ReferencePlace>& reference) {
    if (files.empty()) {
        error = "no star files";
        return false;
    }
    const std::filesystem::path pmFile = files.front().parent_path() / "hip_pm.dat";
    std::string text;
    std::map<int32_t, ProperMotion> motions;
    if (!readWholeFile(pmFile, text)) {
        error = "hip_pm.dat cannot be read";
        return false;
    }
    if (!parseHipProperMotions(text, motions, error)) {
        error = "hip_pm.dat: " + error;
        return false;
    }
    std::vector<StellariumStar> stars;
    for (const std::filesystem::path& file : files) {
        std::string bytes;
        if (!readWholeFile(file, bytes)) {
            error = file.filename().string() + ": cannot be read";
            return false;
        }
        // Only the 28-byte records carry HIP numbers and motions (record type 0 in the header).
        if (bytes.size() >= 8 && bytes[4] != 0) continue;
        if (!parseStellariumStars(bytes, stars, error)) {
            error = file.filename().string() + ": " + error;
            return false;
        }
    }
    if (!reference.empty()) correctEpoch1991Places(stars, motions, reference);
    records = starMotionRecords(stars, motions, hrByHip);
    if (records.empty()) {
        error = "no Hipparcos stars with proper motions";
        return false;
    }
    return true;
}

bool checkStarMotionFile(const std::filesystem::path& file, std::string& error) {
    std::string bytes;
    const std::string name = file.filename().string();
    DatabaseHeader header{};
    if (!readWholeFile(file, bytes) || bytes.size() < sizeof header) {
        error = name + ": missing or shorter than its header";
        return false;
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    if (header.recordSize != sizeof(StarMotionRecord) || header.recordCount == 0 ||
        bytes.size() != sizeof header + size_t{header.recordCount} * sizeof(StarMotionRecord)) {
        error = name + ": record size or count disagrees with the file";
        return false;
    }
    int32_t previous = 0;
    bool padding = false;
    for (size_t i = 0; i < size_t{header.recordCount} * kStarMotionEntriesPerRecord; ++i) {
        StarMotionEntry e;
        std::memcpy(&e, bytes.data() + sizeof header + i * sizeof e, sizeof e);
        if (e.hip == 0) {
            padding = true;
            continue;
        }
        const double speed = std::hypot(e.pmRaCosDecMasPerYear, e.pmDecMasPerYear);
        if (padding || e.hip <= previous || !(e.raDeg >= 0 && e.raDeg < 360) || !(std::fabs(e.decDeg) <= 90) ||
            !(speed < 11000)) {
            error = name + ": entry " + std::to_string(i) + " (HIP " + std::to_string(e.hip) + ") out of order or range";
            return false;
        }
        previous = e.hip;
    }
    return true;
}

}  // namespace nocturnel
