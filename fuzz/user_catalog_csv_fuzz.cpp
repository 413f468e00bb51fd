// The user's own objects brought as CSV text (name, RA, Dec, type, magnitude, size): any text
// gives records in their ranges or a message naming the line.
#include <cmath>
#include <vector>

#include "catalog/object_tables.h"
#include "fuzz/fuzz_support.h"
#include "plans/user_catalog.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    std::vector<ObjectRecord> records;
    if (!readUserCatalogCsv(fuzz::bytesOf(data, size), records)) return 0;
    int32_t number = 0;
    for (const ObjectRecord& o : records) {
        const bool ok = o.catalog == kCatalogUser && o.number == ++number && o.type >= 0 && o.type < kObjectTypeCount &&
                        o.raHours >= 0 && o.raHours <= 24 && o.decDeg >= -90 && o.decDeg <= 90 &&
                        std::isfinite(o.mag) && std::fabs(o.mag) <= 30 && o.majorArcmin >= 0 && o.majorArcmin <= 10000 &&
                        o.name[0] != '\0' && o.name[sizeof o.name - 1] == '\0';
        if (!ok) __builtin_trap();
    }
    return 0;
}
