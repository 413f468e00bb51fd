#include "chart/field_stars.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

#include "catalog/card_star_motion.h"
#include "catalog/catalogues.h"
#include "catalog/star_catalog.h"
#include "catalog/star_motion.h"
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

// Where each star of the open card stands at an epoch: the HR card's and the Hipparcos cards'
// stars take the star-motion table's full-precision place and motion (binary search on their
// number), the deep cards' stars the motion of the card's side file (the parallel record).
class FieldStarMotion {
public:
    explicit FieldStarMotion(double epochYear) : epoch_(epochYear) {
        if (!std::isfinite(epoch_)) return;
        const int level = starCatalogLevel();
        if (level >= kFirstDeepCardLevel) {
            source_ = cardMotionReader().prepare() ? Source::Card : Source::None;
        } else if (level >= 0) {
            table_.emplace();
            source_ = table_->empty() ? Source::None : level == 0 ? Source::Hr : Source::Hip;
        }
    }
    // Moves (raHours, decDeg), the entry's J2000 place, to the epoch; false when no motion is known.
    bool move(const StarEntry& entry, uint32_t block, int k, double& raHours, double& decDeg) const {
        switch (source_) {
            case Source::None:
                return false;
            case Source::Card: {
                CardStarMotion m;
                if (!cardMotionReader().motionOf(block, k, entry.number, m)) return false;
                movePlaceToEpoch(raHours, decDeg, m.pmRaCosDecMasPerYear, m.pmDecMasPerYear, epoch_, raHours,
                                 decDeg);
                return true;
            }
            case Source::Hip:
            case Source::Hr: {
                const StarMotionEntry* e =
                    source_ == Source::Hip ? table_->byHip(entry.number) : table_->byHr(entry.number);
                if (!e) return false;
                starPlaceAtEpoch(*e, epoch_, raHours, decDeg);
                return true;
            }
        }
        return false;
    }
    bool active() const { return source_ != Source::None; }

private:
    static constexpr int kFirstDeepCardLevel = 5;  // "Tycho 390K" and "Tycho 2.5 Million"
    enum class Source { None, Hr, Hip, Card };
    double epoch_;
    Source source_ = Source::None;
    std::optional<StarMotionLookup> table_;
};

fixed24 radiansFixed(double radians) {
    return static_cast<fixed24>(std::lround(radians * kFixed24One));
}

// The screen point of an entry (its packed J2000 place, or `place`: RA hours and Dec degrees),
// panorama x wrapped; false below the horizon.
bool projectEntry(const ChartView& view, const SkyFrame& frame, bool fixed, fixed24 lstFixed,
                  const StarEntry& entry, const double* place, ScreenPoint& point) {
    int32_t u = 0, v = 0;
    bool above = false;
    if (fixed) {
        StarPosition position;
        decodeStarEntry(entry, position);
        if (place) {
            position.ra = radiansFixed(place[0] * kHoursToRad);
            position.dec = radiansFixed(place[1] * M_PI / 180);
        }
        fixed24 ra = 0, dec = 0;
        j2000ToDateFixed(frame, position.ra, position.dec, ra, dec);
        above = projectStarFixed(view, lstFixed, ra, dec, u, v);
    } else {
        double ra = 0, dec = 0;
        j2000ToDate(frame, place ? place[0] : starEntryRaHours(entry),
                    place ? place[1] : starEntryDecDeg(entry), ra, dec);
        above = projectStar(view, view.lstHours, ra, dec, u, v);
    }
    if (!above) return false;
    point = chartToScreen(view, u, v);
    point.x = wrapPanoramaX(view, point.x);
    return true;
}

// The point inside the clip rectangle grown by `margin` pixels on every side.
bool withinClip(const ChartView& view, ScreenPoint p, int margin) {
    return p.y >= view.clip.top - margin && p.y <= view.clip.bottom + margin &&
           p.x >= view.clip.left - margin && p.x <= view.clip.right + margin;
}

// Farthest (pixels) a star can have moved between J2000 and the epoch: Barnard's star, the
// fastest, 10.4"/yr, on the scale of the zoom level's field across the chart's smaller side,
// doubled for the stretch of the projection towards the edges, plus a pixel.
constexpr double kFastestStarArcsecPerYear = 10.4;
int motionMarginPixels(const ChartView& view, double epochYear) {
    if (!std::isfinite(epochYear)) return 0;
    const double shiftDeg = kFastestStarArcsecPerYear * std::fabs(epochYear - 2000.0) / 3600.0;
    const double pixelsPerDeg = std::min(view.width, view.height) / fieldOfViewDeg(view.zoomLevel);
    return static_cast<int>(std::ceil(2.0 * shiftDeg * pixelsPerDeg)) + 1;
}

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

FieldStarLoad loadFieldStars(const ChartView& view, double magnitudeLimit, bool fastPath,
                             const SkyFrame& frame, const FieldStarPaint& paint,
                             const StopRequested& stopRequested, double epochYear) {
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
    const FieldStarMotion motion(epochYear);
    const int marginPx = motionMarginPixels(view, epochYear);
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
            // The catalogue place first; a star with a motion is moved only when that place is
            // within the farthest any star can have moved of the chart, so that the lookups and
            // the second projection are spent on the few stars near the chart.
            ScreenPoint point;
            if (!projectEntry(view, frame, fixed, lstFixed, entry, nullptr, point)) continue;
            bool moved = false;
            if (motion.active()) {
                if (!withinClip(view, point, marginPx)) continue;
                double ra = starEntryRaHours(entry), dec = starEntryDecDeg(entry);
                moved = motion.move(entry, static_cast<uint32_t>(block), k, ra, dec);
                if (moved) {
                    const double place[2] = {ra, dec};
                    if (!projectEntry(view, frame, fixed, lstFixed, entry, place, point)) continue;
                }
            }
            if (!withinClip(view, point, 0)) continue;
            if (paint) paint((entry.mag16 >> 4) + magnitudeBonus, entry.colour, point.x, point.y);
            ++load.drawn;
            if (moved) ++load.moved;
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
