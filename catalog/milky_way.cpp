#include "catalog/milky_way.h"

#include <cstring>

#include "catalog/catalogues.h"
#include "catalog/record_file.h"

namespace nocturnel {

bool readMilkyWay(std::vector<MilkyWayPoint>& points) {
    points.clear();
    DatabaseSlot slot;
    if (!openDatabase(slot, fourCharCode("milk"), kCreator, 0, kDataFolder, kMilkyWayFile)) return false;
    if (recordSize(slot) != sizeof(MilkyWayPoint)) {
        closeDatabase(slot);
        return false;
    }
    const int count = recordCount(slot);
    points.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const uint8_t* record = fetchRecord(slot, static_cast<uint32_t>(i));
        if (record == nullptr) {
            points.clear();
            break;
        }
        MilkyWayPoint point;
        std::memcpy(&point, record, sizeof point);
        points.push_back(point);
    }
    closeDatabase(slot);
    return !points.empty();
}

}  // namespace nocturnel
