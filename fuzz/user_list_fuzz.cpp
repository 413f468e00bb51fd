// Saved user lists (userlists/<name>.lst): a 68-byte header and 72-byte object references.
// Any bytes give a list within its capacity or a message; what is read is written back to the
// same entries, and each entry gives a memo line.
#include <cstring>

#include "fuzz/fuzz_support.h"
#include "plans/selection_list.h"
#include "plans/user_lists.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view bytes = fuzz::bytesOf(data, size);
    SelectionList list;
    // The capacities the preference allows (25 .. 500), chosen by the last byte.
    list.capacity = 25 + (size > 0 ? data[size - 1] % 476 : 0);
    SelectionCriteria criteria{};
    const bool read = readListFileBytes(bytes, list, criteria);
    if (static_cast<int>(list.items.size()) >= list.capacity) __builtin_trap();
    if (size < kListHeaderSize) {
        if (read || !list.items.empty()) __builtin_trap();
        return 0;
    }
    for (const ObjectReference& item : list.items) {
        if (item.name[sizeof item.name - 1] != '\0') __builtin_trap();
        (void)designationOf(item);
        (void)referenceName(item);
    }
    (void)memoTextOf(list);

    // Written back, the entries read again the same.
    std::string name(bytes.substr(4, kListNameField));
    name.resize(strnlen(name.c_str(), kListNameField - 1));
    const std::string again = listFileBytes(name, criteria, list);
    SelectionList back;
    back.capacity = list.capacity;
    SelectionCriteria backCriteria{};
    if (!readListFileBytes(again, back, backCriteria) || back.items.size() != list.items.size()) __builtin_trap();
    if (!list.items.empty() &&
        std::memcmp(back.items.data(), list.items.data(), list.items.size() * sizeof(ObjectReference)) != 0)
        __builtin_trap();
    if (backCriteria.selectionYear != criteria.selectionYear || backCriteria.selectionMinute != criteria.selectionMinute)
        __builtin_trap();
    return 0;
}
