#include "plans/selection_list.h"

#include <cstring>

#include "catalog/object_tables.h"
#include "plans/user_files.h"
#include "plans/user_lists.h"
#include "settings/preference_lists.h"
#include "settings/program_folder.h"

namespace nocturnel {

namespace {
constexpr char kCurrentSelectionFile[] = "nocturnel_selection.lst";
}

bool SelectionList::contains(const ObjectReference& object) const {
    for (const ObjectReference& item : items)
        if (sameObject(item, object)) return true;
    return false;
}

int selectionCapacity(const Preferences& p) {
    const PreferenceList* list = findPreferenceList("maxSelectedItems");
    const std::string_view label = list ? labelAtIndex(*list, p.maxSelectedItems) : std::string_view{};
    int capacity = 0;
    for (const char c : label) capacity = c >= '0' && c <= '9' ? capacity * 10 + (c - '0') : capacity;
    return capacity > 0 ? capacity : 500;
}

std::string referenceName(const ObjectReference& object) {
    return std::string(object.name, strnlen(object.name, sizeof object.name));
}

bool sameObject(const ObjectReference& a, const ObjectReference& b) {
    if (a.catalog != b.catalog || a.number != b.number) return false;
    const bool named = a.catalog == kCatalogPlanets || a.catalog == kCatalogUser || a.number == 0;
    return !named || referenceName(a) == referenceName(b);
}

ObjectReference referenceOf(const FoundObject& object) {
    ObjectReference r{};
    r.catalog = object.catalogCode;
    r.number = object.number;
    r.type = object.typeCode;
    r.constellation = object.constellation;
    r.raHours = object.raHours;
    r.decDeg = object.decDeg;
    r.mag = object.magKnown ? static_cast<float>(object.mag) : 0.0f;
    r.sizeArcmin = static_cast<float>(object.majorArcmin);
    std::strncpy(r.name, object.name.c_str(), sizeof r.name - 1);
    return r;
}

std::string designationOf(const ObjectReference& object) {
    if (object.catalog == kCatalogPlanets || object.catalog == kCatalogUser || object.catalog <= 0 ||
        object.catalog >= kCatalogCount || object.number <= 0)
        return referenceName(object);
    if (object.catalog == kCatalogTycho) {
        const int32_t region = object.number / 100000, number = object.number % 100000;
        return "TYC " + std::to_string(region) + "-" + std::to_string(number) + "-1";
    }
    return std::string(kCatalogDefinitions[static_cast<std::size_t>(object.catalog)].prefix) + " " +
           std::to_string(object.number);
}

bool loadCurrentSelection(SelectionList& list, SelectionCriteria& criteria) {
    list.items.clear();
    const auto bytes = readRegularFile(programFolder() / kCurrentSelectionFile, 1 << 20);
    if (!bytes) return true;
    return readListFileBytes(*bytes, list, criteria);
}

bool saveCurrentSelection(const SelectionList& list, const SelectionCriteria& criteria) {
    return replaceFileContents(programFolder() / kCurrentSelectionFile, listFileBytes("", criteria, list));
}

}  // namespace nocturnel
