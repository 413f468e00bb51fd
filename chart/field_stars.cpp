#include "chart/field_stars.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "catalog/catalogues.h"
#include "catalog/star_catalog.h"
#include "settings/message.h"

namespace nocturnel {
namespace {

struct HalfWidthRule {
    double halfWidthHours;
    double boundDeg;  // beyond this centre declination the whole circle is read
};

// By zoom level 0..12: levels 0 to 4 and 10 on share the narrowest window.
constexpr std::array<HalfWidthRule, kZoomLevelCount> kHalfWidthRules = {{
    {0.1, 80}, {0.1, 80}, {0.1, 80}, {0.1, 80}, {0.1, 80},  // 0..4
    {4.0, 70}, {2.0, 70}, {1.0, 70}, {0.5, 70}, {0.25, 75},  // 5..9
    {0.1, 80}, {0.1, 80}, {0.1, 80},                          // 10..12
}};

constexpr double kHoursToRad = M_PI / 12;

void closeList(int listed) {
    auto& list = visibleFieldStars();
    list[static_cast<std::size_t>(std::min(listed, kVisibleFieldStarCapacity - 1))] = {kVisibleListEndMark, 0, 0};
}

}  // namespace

VisibleFieldStarList& visibleFieldStars() {
    static VisibleFieldStarList list = [] {
        VisibleFieldStarList l{};
        l[0] = {kVisibleListEndMark, 0, 0};
        return l;
    }();
    return list;
}

int visibleFieldStarCount() {
    const auto& list = visibleFieldStars();
    for (int i = 0; i < kVisibleFieldStarCapacity; ++i)
        if (list[static_cast<std::size_t>(i)].sequence == kVisibleListEndMark) return i;
    return kVisibleFieldStarCapacity;
}

RaWindow raWindowMinutes(double centre, double w) {
    if (w >= 24) return {0, 1440, 0, 1440};
    if (centre - w < 0) return {static_cast<int>((centre + 24 - w) * 60), 1440, 0, static_cast<int>((centre + w) * 60)};
    if (centre + w > 24) return {static_cast<int>((centre - w) * 60), 1440, 0, static_cast<int>((centre + w - 24) * 60)};
    return {static_cast<int>((centre - w) * 60), static_cast<int>(centre * 60) + 1, static_cast<int>(centre * 60) - 1,
            static_cast<int>((centre + w) * 60)};
}

double raHalfWidthHours(int zoomLevel, double centreDecDeg) {
    const HalfWidthRule& rule = kHalfWidthRules[static_cast<std::size_t>(std::clamp(zoomLevel, 0, kZoomLevelCount - 1))];
    return std::fabs(centreDecDeg) < rule.boundDeg ? rule.halfWidthHours : 24.0;
}

FieldStarLoad loadFieldStars(const ChartView& view, double magnitudeLimit, bool fastPath, const SkyFrame& frame,
                             const FieldStarPaint& paint, const StopRequested& stopRequested) {
    FieldStarLoad load;
    closeList(0);
    DatabaseSlot& slot = starCatalogSlot();
    const int perBlock = starsPerBlock();
    if (!slot.isOpen() || perBlock <= 0) return load;
    if (magnitudeLimit < 5.5) return load;
    const int byteLimit = magnitudeLimit < 0 ? 0 : static_cast<int>(magnitudeLimit * 16);
    load.searched = true;

    // The region, in the catalogue's J2000 frame.
    const int width = view.width / view.screenFactor, height = view.height / view.screenFactor;
    auto skyAt = [&](int x, int y, double& ra, double& dec) {
        double raDate = 0, decDate = 0;
        screenToSky(view, x, y, raDate, decDate);
        dateToJ2000(frame, raDate, decDate, ra, dec);
    };
    double centreRa = 0, centreDec = 0;
    skyAt(view.width / 2, view.height / 2, centreRa, centreDec);
    double w = raHalfWidthHours(view.zoomLevel, centreDec);
    int h = 0;
    const std::array<std::array<int, 2>, 4> probes = {{{12, 12}, {width, 12}, {0, height}, {width, height}}};
    for (const auto& probe : probes) {
        double ra = 0, dec = 0;
        skyAt(probe[0], probe[1], ra, dec);
        if (std::fabs(dec - centreDec) > h) h = static_cast<int>(std::fabs(dec - centreDec));
        const double dra = std::fabs(ra - centreRa);
        if (dra > w && dra < 6) w = dra;
    }
    if (h < 2) h += 1;
    load.centreRaHours = centreRa;
    load.centreDecDeg = centreDec;
    load.halfWidthHours = w;
    load.halfHeightDeg = h;
    load.window = raWindowMinutes(centreRa, w);

    int first = findBlockByDeclination(static_cast<float>(std::max(-90.0, centreDec - h)));
    int last = findBlockByDeclination(static_cast<float>(std::min(90.0, centreDec + h)));
    if (first > last) std::swap(first, last);
    load.firstBlock = first;
    load.lastBlock = last;
    if (first < 0 || last < 0) return load;

    const bool fixed = fastPath && view.zoomLevel <= kLastFixedPathZoom;
    const fixed24 lstFixed = static_cast<fixed24>(std::lround(view.lstHours * kHoursToRad * kFixed24One));
    const int magnitudeBonus = view.screenFactor == 1 ? 1 : 0;
    auto& list = visibleFieldStars();
    for (int block = first; block < last && !load.stopped; ++block) {
        const uint8_t* record = fetchRecord(slot, static_cast<uint32_t>(block));
        if (record == nullptr) {
            showMessagef("", "Can't find Hipparchos record number %d", block);
            break;
        }
        for (int k = 0; k < perBlock; ++k) {
            const uint8_t* raw = record + static_cast<std::ptrdiff_t>(k) * sizeof(StarEntry);
            // Rejections on the packed bytes: magnitude (offset 10), then RA minute (offsets 4, 5).
            if (raw[10] > byteLimit) continue;
            const int minute = static_cast<int8_t>(raw[4]) * 60 + static_cast<int8_t>(raw[5]);
            if (!load.window.contains(minute)) continue;
            StarEntry entry;
            std::memcpy(&entry, raw, sizeof entry);
            int32_t u = 0, v = 0;
            bool above = false;
            if (fixed) {
                StarPosition position;
                decodeStarEntry(entry, position);
                fixed24 ra = 0, dec = 0;
                j2000ToDateFixed(frame, position.ra, position.dec, ra, dec);
                above = projectStarFixed(view, lstFixed, ra, dec, u, v);
            } else {
                double ra = 0, dec = 0;
                j2000ToDate(frame, starEntryRaHours(entry), starEntryDecDeg(entry), ra, dec);
                above = projectStar(view, view.lstHours, ra, dec, u, v);
            }
            if (!above) continue;
            ScreenPoint point = chartToScreen(view, u, v);
            if (point.y < view.clip.top || point.y > view.clip.bottom) continue;
            point.x = wrapPanoramaX(view, point.x);
            if (point.x < view.clip.left || point.x > view.clip.right) continue;
            if (paint) paint((entry.mag16 >> 4) + magnitudeBonus, entry.colour, point.x, point.y);
            ++load.drawn;
            if (load.listed < kVisibleFieldStarCapacity) {
                list[static_cast<std::size_t>(load.listed++)] = {
                    static_cast<uint32_t>(block) * static_cast<uint32_t>(perBlock) + static_cast<uint32_t>(k),
                    static_cast<uint16_t>(point.x), static_cast<uint16_t>(point.y)};
            }
            if (load.drawn % 40 == 10 && stopRequested && stopRequested()) {
                load.stopped = true;
                break;
            }
        }
    }
    closeList(load.listed);
    if (load.listed >= kVisibleFieldStarCapacity) load.listed = kVisibleFieldStarCapacity - 1;
    return load;
}

}  // namespace nocturnel
