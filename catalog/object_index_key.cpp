#include "catalog/object_index_key.h"

#include <algorithm>
#include <array>

#include "catalog/object_tables.h"

namespace nocturnel {
namespace {
std::array<int, kCatalogCount> computeRanks() {
    std::array<int, kCatalogCount> order{};
    int n = 0;
    for (int code = 0; code < kCatalogCount; ++code)
        if (kCatalogDefinitions[code].first != kNotInIndex) order[n++] = code;
    std::sort(order.begin(), order.begin() + n, [](int a, int b) {
        const auto& da = kCatalogDefinitions[a];
        const auto& db = kCatalogDefinitions[b];
        return da.first != db.first ? da.first < db.first : a < b;
    });
    std::array<int, kCatalogCount> rank;
    rank.fill(-1);
    for (int i = 0; i < n; ++i) rank[order[i]] = i;
    return rank;
}
}  // namespace

int catalogIndexRank(int catalogCode) {
    static const std::array<int, kCatalogCount> ranks = computeRanks();
    if (catalogCode < 0 || catalogCode >= kCatalogCount) return -1;
    return ranks[catalogCode];
}

int32_t objectIndexKey(int catalogCode, int32_t number) {
    const int rank = catalogIndexRank(catalogCode);
    if (rank < 0 || number < 1 || number >= kIndexNumberLimit) return -1;
    return ((rank + 1) << 20) + number;
}

int32_t objectIndexFillerKey(int catalogCode) {
    const int rank = catalogIndexRank(catalogCode);
    return rank < 0 ? -1 : ((rank + 1) << 20) + kIndexNumberLimit;
}

}  // namespace nocturnel
