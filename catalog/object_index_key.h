#pragma once
// The 32-bit key of the object name index. The index file must be sorted by key, and each
// catalogue's entries must lie inside its stretch of the catalogue table; the stretches are
// not in catalogue-code order, so the key ranks each catalogue by the start of its stretch:
//   key = (rank + 1) * 2^20 + number   (number 1 .. 2^20 - 2)
// rank = position of the catalogue among the indexed catalogues ordered by (first, code).
// Slots of a stretch that no object fills carry the catalogue's filler key (number 2^20 - 1);
// records before the first stretch carry key 0, records after the last one kKeyAfterAll.
#include <cstdint>

namespace nocturnel {

inline constexpr int32_t kIndexNumberLimit = (1 << 20) - 1;  // numbers must be below this
inline constexpr int32_t kKeyBeforeAll = 0;
inline constexpr int32_t kKeyAfterAll = 0x7FFFFFFF;

// Rank of an indexed catalogue (first != 50000), -1 for catalogues outside the index.
int catalogIndexRank(int catalogCode);
// The key of (catalogue, number); -1 when the catalogue is not indexed or the number out of range.
int32_t objectIndexKey(int catalogCode, int32_t number);
// The filler key of a catalogue's unused slots; -1 when not indexed.
int32_t objectIndexFillerKey(int catalogCode);

}  // namespace nocturnel
