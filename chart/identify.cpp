#include "chart/identify.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "catalog/catalogues.h"
#include "catalog/object_tables.h"
#include "catalog/objects.h"
#include "catalog/star_catalog.h"
#include "catalog/star_motion.h"
#include "chart/chart_layers.h"
#include "chart/field_stars.h"
#include "chart/sky_objects.h"
#include "chart/zoom_limits.h"

namespace nocturnel {
namespace {
SolarSystemSpots gSolarSystemSpots = nullptr;

constexpr double kTiePx = 1.0;  // nearer than this to the best, the brighter one wins
constexpr double kUnknownMag = 99.0;
constexpr double kSameMagnitude = 0.1;

struct Best {
    IdentifiedObject object;
    bool better(double distance, double mag) const {
        if (!object.found) return true;
        const double bestMag = object.magKnown ? object.mag : kUnknownMag;
        // A tie goes to the clearly brighter one; the one offered first keeps a near-equal tie
        // (the default stars are offered first: a field star at their place is the same star).
        if (std::abs(distance - object.distancePx) < kTiePx) return mag < bestMag - kSameMagnitude;
        return distance < object.distancePx;
    }
    void offer(IdentifiedObject candidate, double distance) {
        const double mag = candidate.magKnown ? candidate.mag : kUnknownMag;
        if (!better(distance, mag)) return;
        candidate.found = true;
        candidate.distancePx = distance;
        object = std::move(candidate);
    }
};

std::string fixedName(const char* field, std::size_t size) { return std::string(field, strnlen(field, size)); }

// "M31, NGC224" -> "NGC 224" (the object's own designation, for find and info).
std::string designationText(int catalog, int32_t number) {
    if (catalog == kCatalogTycho) return "TYC " + tychoNameText(number).substr(3);
    if (catalog < 0 || catalog >= kCatalogCount) return {};
    return std::string(kCatalogDefinitions[catalog].prefix) + " " + std::to_string(number);
}

int catalogOfOpenStarFile() {
    const int level = starCatalogLevel();
    if (level == 0) return kCatalogHR;
    if (level >= 5) return kCatalogTycho;
    return level > 0 ? kCatalogHipparcos : -1;
}

// Declination band around the tap (J2000) outside which nothing can be drawn within reach of
// it: the tolerance turned into degrees at the chart's scale, with room for the projection's
// stretching toward the edges and for the small precession from J2000.
struct TapBand {
    double decDeg = 0, halfHeightDeg = 180;
    bool excludes(double objectDecDeg, double extraDeg = 0) const {
        return std::abs(objectDecDeg - decDeg) > halfHeightDeg + extraDeg;
    }
};

TapBand tapBand(const ChartView& view, const SkyFrame& frame, int x, int y, int tolerancePx) {
    TapBand band;
    double raDate = 0, decDate = 0, ra = 0;
    screenToSky(view, x, y, raDate, decDate);
    dateToJ2000(frame, raDate, decDate, ra, band.decDeg);
    const double pixelsPerDeg = std::min(view.width, view.height) / fieldOfViewDeg(view.zoomLevel);
    band.halfHeightDeg = 3.0 * tolerancePx / std::max(pixelsPerDeg, 1e-6) + 0.5;
    return band;
}

void offerBrightStars(Best& best, const ChartView& view, const SkyFrame& frame, double epoch, const TapBand& band,
                      int x, int y, int tolerancePx) {
    const std::vector<DefaultStarRecord>& stars = chartBrightStars();
    const std::vector<StarPlace>& places = chartBrightStarPlaces(epoch);  // where the chart drew them
    for (std::size_t i = 0; i < stars.size(); ++i) {
        const DefaultStarRecord& star = stars[i];
        if (band.excludes(star.decDeg)) continue;
        ScreenPoint p;
        if (!skyToScreen(view, frame, places[i].raHours, places[i].decDeg, p)) continue;
        const double d = std::hypot(p.x - x, p.y - y);
        if (d > tolerancePx) continue;
        IdentifiedObject o;
        o.kind = "star";
        o.name = fixedName(star.name, sizeof star.name);
        o.catalogCode = star.hip > 0 ? kCatalogHipparcos : kCatalogHR;
        o.number = star.hip > 0 ? star.hip : star.hr;
        o.designation = designationText(o.catalogCode, o.number);
        if (o.name.empty()) o.name = o.designation;
        o.raHours = places[i].raHours;
        o.decDeg = places[i].decDeg;
        o.mag = star.mag;
        o.magKnown = true;
        o.x = p.x;
        o.y = p.y;
        best.offer(std::move(o), d);
    }
}

void offerDeepSky(Best& best, const ChartView& view, const SkyFrame& frame, const TapBand& band, int x, int y,
                  int tolerancePx) {
    const float limit = objectMagnitudeLimit(view.zoomLevel);
    const double pixelsPerArcmin = std::min(view.width, view.height) / (fieldOfViewDeg(view.zoomLevel) * 60.0);
    for (const ChartObject& object : chartObjects()) {
        if (object.mag == 0 ? limit < kNoObjectLimit : object.mag > limit) continue;  // as the chart draws them
        if (band.excludes(object.decDeg, 3.0 * object.majorArcmin / 120.0)) continue;
        ScreenPoint p;
        if (!skyToScreen(view, frame, object.raHours, object.decDeg, p)) continue;
        const double d = std::hypot(p.x - x, p.y - y);
        const double radius = object.majorArcmin * pixelsPerArcmin / 2;
        if (d > std::max<double>(tolerancePx, radius)) continue;
        IdentifiedObject o;
        o.kind = "deep-sky";
        o.name = object.name;
        // The name text ends with the object's own designation ("M31, NGC224").
        const std::string own = object.name.substr(object.name.rfind(", ") == std::string::npos ? 0 : object.name.rfind(", ") + 2);
        for (int code = 1; code < kCatalogCount; ++code) {
            const std::string prefix = kCatalogDefinitions[code].prefix;
            if (own.size() > prefix.size() && own.compare(0, prefix.size(), prefix) == 0 &&
                std::all_of(own.begin() + prefix.size(), own.end(), [](char c) { return c >= '0' && c <= '9'; })) {
                if (o.catalogCode < 0 || prefix.size() > std::strlen(kCatalogDefinitions[o.catalogCode].prefix)) {
                    o.catalogCode = code;
                    o.number = std::atoi(own.c_str() + prefix.size());
                }
            }
        }
        o.designation = designationText(o.catalogCode, o.number);
        o.raHours = object.raHours;
        o.decDeg = object.decDeg;
        o.mag = object.mag;
        o.magKnown = object.mag != 0;
        o.x = p.x;
        o.y = p.y;
        best.offer(std::move(o), d);
    }
}

void offerFieldStars(Best& best, int x, int y, int tolerancePx) {
    const int catalog = catalogOfOpenStarFile();
    if (catalog < 0) return;
    const VisibleFieldStarList& list = visibleFieldStars();
    for (const VisibleFieldStar& entry : list) {
        if (entry.sequence == kVisibleListEndMark) break;
        const double d = std::hypot(entry.x - x, entry.y - y);
        if (d > tolerancePx) continue;
        StarPosition star;
        const int32_t number = readStarBySequence(entry.sequence, star);
        if (number <= 0) continue;
        IdentifiedObject o;
        o.kind = "field star";
        o.catalogCode = catalog;
        o.number = number;
        o.designation = designationText(catalog, number);
        o.name = o.designation;
        o.raHours = fixedToDouble(star.ra) * 12.0 / M_PI;
        if (o.raHours < 0) o.raHours += 24.0;
        o.decDeg = fixedToDouble(star.dec) * 180.0 / M_PI;
        o.mag = star.mag / 16.0;
        o.magKnown = true;
        o.x = entry.x;
        o.y = entry.y;
        best.offer(std::move(o), d);
    }
}

IdentifiedObject identify(const ChartView& view, double jdUt, bool precess, int x, int y, int tolerancePx) {
    Best best;
    const SkyFrame frame = precess ? skyFrameForDate(jdUt) : SkyFrame{};
    const TapBand band = tapBand(view, frame, x, y, tolerancePx);
    offerBrightStars(best, view, frame, julianEpochOfJd(jdUt), band, x, y, tolerancePx);
    offerFieldStars(best, x, y, tolerancePx);
    offerDeepSky(best, view, frame, band, x, y, tolerancePx);
    if (gSolarSystemSpots) {
        for (DrawnSpot& spot : gSolarSystemSpots(view, jdUt)) {
            const double d = std::hypot(spot.object.x - x, spot.object.y - y);
            if (d <= std::max<double>(tolerancePx, spot.radiusPx)) best.offer(std::move(spot.object), d);
        }
    }
    return best.object;
}
}  // namespace

void setSolarSystemSpots(SolarSystemSpots spots) { gSolarSystemSpots = spots; }

IdentifiedObject identifyInChart(const ChartResult& chart, int x, int y, int tolerancePx) {
    return identify(chart.view, chart.jdUt, true, x, y, tolerancePx);
}

IdentifiedObject identifyAt(const ChartRequest& request, int x, int y, int tolerancePx) {
    double jdUt = 0;
    const ChartView view = chartViewForRequest(request, jdUt);
    const SkyFrame frame = request.precess ? skyFrameForDate(jdUt) : SkyFrame{};
    if (request.switchCatalogForZoom && prefs().cardCatalog > 0) switchStarCatalogForZoom(view.zoomLevel);
    loadFieldStars(
        view, starMagnitudeLimit(view.zoomLevel), true, frame, [](int, int, int, int) {}, {},
        julianEpochOfJd(jdUt));
    return identify(view, jdUt, request.precess, x, y, tolerancePx);
}

}  // namespace nocturnel
