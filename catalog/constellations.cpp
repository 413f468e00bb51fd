#include "catalog/constellations.h"

#include <cmath>
#include <cstring>
#include <optional>
#include <string>

#include "catalog/catalogues.h"
#include "catalog/record_file.h"
#include "settings/program_folder.h"
#include "settings/message.h"

namespace nocturnel {
namespace {
template <typename Record>
bool readAll(const char* fileName, std::vector<Record>& out) {
    out.clear();
    DatabaseSlot slot;
    if (!openDatabase(slot, kConstellationType, kCreator, 0, kDataFolder, fileName) ||
        recordSize(slot) < sizeof(Record)) {
        showMessage(std::string("Could not find ") + fileName, "Looked in " + dataPath(fileName).parent_path().string());
        return false;
    }
    const int count = recordCount(slot);
    out.reserve(count);
    for (int i = 0; i < count; ++i) {
        const uint8_t* record = fetchRecord(slot, static_cast<uint32_t>(i));
        if (!record) {
            showMessage("Could not retrieve record!", "");
            out.clear();
            return false;
        }
        Record value;
        std::memcpy(&value, record, sizeof value);
        out.push_back(value);
    }
    return true;
}

std::optional<ConstellationData>& cached() {
    static std::optional<ConstellationData> data;
    return data;
}

// Hours wrapped into [-12, 12).
double wrapHours(double hours) {
    double h = std::fmod(hours + 12.0, 24.0);
    if (h < 0) h += 24.0;
    return h - 12.0;
}
// Hours wrapped into [0, 24).
double wrapDay(double hours) {
    double h = std::fmod(hours, 24.0);
    if (h < 0) h += 24.0;
    return h;
}

// Whether a closed polygon of J2000 vertices holds the place. A ray runs north from the
// place along its hour circle; edges are taken the short way round in right ascension. A
// polygon that circles the north pole holds the place when the ray crosses it an even number
// of times, any other polygon when the count is odd.
bool polygonHolds(const ConstellationBoundaryPoint* vertices, std::size_t count, double raHours, double decDeg) {
    if (count < 3) return false;
    int crossings = 0;
    double winding = 0.0, decSum = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const ConstellationBoundaryPoint& a = vertices[i];
        const ConstellationBoundaryPoint& b = vertices[(i + 1) % count];
        const double span = wrapHours(b.raHours - a.raHours);
        winding += span;
        decSum += a.decDeg;
        if (span == 0.0) continue;
        // The edge covers right ascensions from its western end (included) eastward.
        const double westRa = span > 0 ? a.raHours : b.raHours;
        const double offset = wrapDay(raHours - westRa);
        const double width = std::fabs(span);
        if (offset >= width) continue;
        const double fraction = span > 0 ? offset / width : 1.0 - offset / width;
        const double edgeDec = a.decDeg + (b.decDeg - a.decDeg) * fraction;
        if (edgeDec > decDeg) ++crossings;
    }
    const bool circlesPole = std::fabs(winding) > 12.0;
    const bool circlesNorthPole = circlesPole && decSum > 0.0;
    return circlesNorthPole ? (crossings % 2 == 0) : (crossings % 2 == 1);
}
}  // namespace

bool readConstellations(ConstellationData& out) {
    out = {};
    if (!readAll("nocturnel_constellation.ppc", out.constellations)) return false;
    readAll("nocturnel_constellation_lines.ppc", out.segments);
    readAll("nocturnel_constellation_bounds.ppc", out.boundaries);
    return true;
}

const ConstellationData& constellations() {
    if (!cached()) {
        ConstellationData data;
        readConstellations(data);  // empty after a failure, reported once
        cached() = std::move(data);
    }
    return *cached();
}

void forgetConstellations() { cached().reset(); }

int constellationOfIn(const ConstellationData& data, double raHoursJ2000, double decDegJ2000) {
    if (!std::isfinite(raHoursJ2000) || !std::isfinite(decDegJ2000) || decDegJ2000 < -90.0 || decDegJ2000 > 90.0)
        return -1;
    const double ra = wrapDay(raHoursJ2000);
    for (std::size_t c = 0; c < data.constellations.size(); ++c) {
        const ConstellationRecord& record = data.constellations[c];
        const std::size_t first = record.firstBoundary;
        const std::size_t count = record.boundaryCount;
        if (first + count > data.boundaries.size()) continue;
        if (polygonHolds(data.boundaries.data() + first, count, ra, decDegJ2000)) return static_cast<int>(c);
    }
    return -1;
}

int constellationOf(double raHoursJ2000, double decDegJ2000) {
    return constellationOfIn(constellations(), raHoursJ2000, decDegJ2000);
}

}  // namespace nocturnel
