#include "chart/sky_objects.h"

#include <optional>

#include "catalog/catalogues.h"
#include "catalog/objects.h"
#include "catalog/star_catalog.h"
#include "catalog/star_motion.h"
#include "chart/milky_way_layer.h"

namespace nocturnel {
namespace {

std::optional<std::vector<DefaultStarRecord>>& brightCache() {
    static std::optional<std::vector<DefaultStarRecord>> cache;
    return cache;
}
std::optional<std::vector<ChartObject>>& objectCache() {
    static std::optional<std::vector<ChartObject>> cache;
    return cache;
}

struct BrightStarMotions {
    std::vector<StarMotionEntry> entries;  // hip 0: the star has no entry
    double epochYear = 0;
    std::vector<StarPlace> places;         // at epochYear; empty until asked
};
std::optional<BrightStarMotions>& motionCache() {
    static std::optional<BrightStarMotions> cache;
    return cache;
}

}  // namespace

const std::vector<DefaultStarRecord>& chartBrightStars() {
    auto& cache = brightCache();
    if (!cache) {
        cache.emplace();
        if (defaultStarSlot().isOpen()) {
            const int count = std::min<int>(kDefaultStarCount, recordCount(defaultStarSlot()));
            cache->reserve(static_cast<std::size_t>(count));
            for (int i = 0; i < count; ++i) {
                DefaultStarRecord record{};
                if (!readDefaultStar(i, record)) break;
                cache->push_back(record);
            }
        }
    }
    return *cache;
}

const std::vector<ChartObject>& chartObjects() {
    auto& cache = objectCache();
    if (!cache) {
        cache.emplace();
        if (objectSlot().isOpen()) {
            const int count = recordCount(objectSlot());
            cache->reserve(static_cast<std::size_t>(count));
            for (int i = 0; i < count; ++i) {
                ObjectRecord record{};
                if (!readObject(static_cast<uint16_t>(i), record)) break;
                ChartObject object;
                object.raHours = record.raHours;
                object.decDeg = record.decDeg;
                object.mag = record.mag;
                object.majorArcmin = record.majorArcmin;
                object.minorArcmin = record.minorArcmin;
                object.positionAngleDeg = record.positionAngle;
                object.type = static_cast<uint8_t>(record.type);
                object.messier = record.messier;
                object.caldwell = record.caldwell;
                object.name = objectNameText(record);
                cache->push_back(std::move(object));
            }
        }
    }
    return *cache;
}

const std::vector<StarPlace>& chartBrightStarPlaces(double epochYear) {
    const std::vector<DefaultStarRecord>& stars = chartBrightStars();
    auto& cache = motionCache();
    if (!cache) {
        cache.emplace();
        cache->entries.resize(stars.size());
        for (std::size_t i = 0; i < stars.size(); ++i)
            if (!findStarMotion(stars[i].hip, cache->entries[i])) cache->entries[i] = {};
    }
    if (cache->places.size() != stars.size() || cache->epochYear != epochYear) {
        cache->places.resize(stars.size());
        for (std::size_t i = 0; i < stars.size(); ++i) {
            StarPlace& place = cache->places[i];
            place = {stars[i].raHours, stars[i].decDeg};
            if (cache->entries[i].hip != 0) starPlaceAtEpoch(cache->entries[i], epochYear, place.raHours, place.decDeg);
        }
        cache->epochYear = epochYear;
    }
    return cache->places;
}

void forgetChartCatalogues() {
    motionCache().reset();
    brightCache().reset();
    objectCache().reset();
    forgetMilkyWay();
}

}  // namespace nocturnel
