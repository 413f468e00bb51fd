// Memo import (userlists/*.txt, one object per line): any text gives a list within its
// capacity, without a repeated object, or ends on the line that could not be read. The memo
// written from the list imports back to the same list.
//
// No catalogue files exist in the fuzz build, so catalogue designations are read by the finder
// and then reported absent; the solar-system bodies are found through the finder's hook, which
// here answers from core's body names at a fixed place (the program computes their places).
#include <cstring>

#include "catalog/object_finder.h"
#include "catalog/object_tables.h"
#include "core/body_place.h"
#include "fuzz/fuzz_support.h"
#include "plans/selection_list.h"
#include "plans/user_lists.h"

using namespace nocturnel;

namespace {

bool findBodyByName(std::string_view name, FoundObject& out) {
    const auto body = solarBodyByName(name);
    if (!body) return false;
    out = FoundObject{};
    out.name = solarBodyName(*body);
    out.commonName = out.name;
    out.catalogCode = kCatalogPlanets;
    out.number = static_cast<int32_t>(*body);
    out.raHours = 1.0 + static_cast<int>(*body);
    out.decDeg = 2.0;
    return true;
}

std::vector<std::string> suggestNothing(std::string_view, std::size_t) { return {}; }

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    setSolarSystemFinder(findBodyByName, suggestNothing);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::bytesOf(data, size);
    const ObservingMoment now{2026, 11, 23, 21, 5, 0};
    SelectionList list;
    list.capacity = 25 + (size > 0 ? data[0] % 8 : 0);  // small, so that a full list is reached
    SelectionCriteria criteria{};
    const int loaded = importMemoText(text, now, list, criteria);
    if (loaded > static_cast<int>(list.items.size()) || static_cast<int>(list.items.size()) > list.capacity) __builtin_trap();
    for (std::size_t i = 0; i < list.items.size(); ++i)
        for (std::size_t j = i + 1; j < list.items.size(); ++j)
            if (sameObject(list.items[i], list.items[j])) __builtin_trap();

    const std::string memo = memoTextOf(list);
    SelectionList back;
    back.capacity = list.capacity;
    SelectionCriteria backCriteria{};
    if (importMemoText(memo, now, back, backCriteria) != static_cast<int>(list.items.size())) __builtin_trap();
    for (std::size_t i = 0; i < list.items.size(); ++i)
        if (!sameObject(list.items[i], back.items[i])) __builtin_trap();
    return 0;
}
