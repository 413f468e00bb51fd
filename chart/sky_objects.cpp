#include "chart/sky_objects.h"

#include <optional>

#include "catalog/catalogues.h"
#include "catalog/objects.h"
#include "catalog/star_catalog.h"
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

void forgetChartCatalogues() {
    brightCache().reset();
    objectCache().reset();
    forgetMilkyWay();
}

}  // namespace nocturnel
