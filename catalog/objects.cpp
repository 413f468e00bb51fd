#include "catalog/objects.h"

#include <cstddef>
#include <cstdio>
#include <cstring>

#include "catalog/catalogues.h"
#include "catalog/object_index_key.h"
#include "catalog/object_tables.h"
#include "catalog/record_file.h"
#include "settings/message.h"

namespace nocturnel {
namespace {
constexpr std::size_t kNameEndOffset = 40;  // end of the name field, forced to 0 after each read
constexpr int kSmallObjectFileLimit = 2000;

// Copies record `index` of a slot into `out` (the record must be at least as large), or shows
// the database's own texts.
template <typename Record>
bool readTyped(DatabaseSlot& slot, uint32_t index, Record& out, const char* notOpenText, const char* failedText) {
    if (!slot.isOpen()) {
        showMessage(notOpenText, "");
        return false;
    }
    const uint8_t* record = recordSize(slot) >= sizeof(Record) ? fetchRecord(slot, index) : nullptr;
    if (!record) {
        showMessage(failedText, "");
        return false;
    }
    std::memcpy(&out, record, sizeof(Record));
    return true;
}

static_assert(offsetof(ObjectRecord, name) + sizeof(ObjectRecord::name) - 1 == kNameEndOffset);
void terminateName(ObjectRecord& object) { object.name[sizeof object.name - 1] = '\0'; }

bool lookupByScan(int catalogCode, int32_t number, ObjectRecord& out) {
    const int count = recordCount(objectSlot());
    for (int i = 0; i < count; ++i) {
        ObjectRecord object;
        if (!readObject(static_cast<uint16_t>(i), object)) return false;
        const int field = catalogCode == kCatalogMessier ? object.messier : object.caldwell;
        if (field == number) {
            out = object;
            return true;
        }
    }
    return false;
}

// Makes sure the name index that fits the open object file is the open one.
bool ensureFittingIndex() {
    const int wanted = recordCount(objectSlot()) < kSmallObjectFileLimit ? 0 : 2;
    if (openObjectIndexSize() == wanted && objectIndexSlot().isOpen()) return true;
    return openObjectIndexForSize(wanted);
}
}  // namespace

bool readObject(uint16_t index, ObjectRecord& out) {
    if (!readTyped(objectSlot(), index, out, "Object database isn't open!", "Could not retrieve object record!"))
        return false;
    terminateName(out);
    return true;
}

bool readObjectIndexRecord(uint16_t index, ObjectIndexRecord& out) {
    if (!objectIndexSlot().isOpen()) return false;  // an absent index is no failure of its own
    const uint8_t* record = recordSize(objectIndexSlot()) >= sizeof out ? fetchRecord(objectIndexSlot(), index) : nullptr;
    if (!record) {
        showMessagef("", "Can't find Object record number %d", index);
        return false;
    }
    std::memcpy(&out, record, sizeof out);
    return true;
}

bool readObjectDescription(uint16_t index, ObjectDescriptionRecord& out) {
    DatabaseSlot& slot = objectDescriptionSlot();
    if (!slot.isOpen()) return false;  // the description file is optional
    if (!readRecord(slot, index, &out, sizeof out)) return false;
    out.text[sizeof out.text - 1] = '\0';
    return true;
}

bool readUserObject(uint16_t index, ObjectRecord& out) {
    if (!readTyped(userObjectSlot(), index, out, "User Object database isn't open!",
                   "Could not retrieve user object record!"))
        return false;
    terminateName(out);
    return true;
}

std::string objectNameText(const ObjectRecord& object) {
    const char* prefix = (object.catalog >= 0 && object.catalog < kCatalogCount)
                             ? kCatalogDefinitions[object.catalog].prefix : "";
    char text[64];
    const long number = object.number;
    if (object.messier > 0 && object.catalog != kCatalogMessier)
        std::snprintf(text, sizeof text, "M%d, %s%ld", object.messier, prefix, number);
    else if (object.caldwell > 0 && object.catalog != kCatalogCaldwell)
        std::snprintf(text, sizeof text, "C%d, %s%ld", object.caldwell, prefix, number);
    else
        std::snprintf(text, sizeof text, "%s%ld", prefix, number);
    return text;
}

std::string tychoNameText(int32_t number) {
    char text[32];
    std::snprintf(text, sizeof text, "TYC%d-%d-1", number / 100000, number % 100000);
    return text;
}

const char* objectTypeName(int typeCode) {
    if (typeCode < 0 || typeCode >= kObjectTypeCount) return kObjectTypes[0].name;
    return kObjectTypes[typeCode].name;
}

bool lookupObject(int catalogCode, int32_t number, ObjectRecord& out) {
    if (catalogCode == kCatalogMessier || catalogCode == kCatalogCaldwell) {
        if (number <= 0) return false;
        return lookupByScan(catalogCode, number, out);
    }
    const int32_t key = objectIndexKey(catalogCode, number);
    if (key < 0 || !objectSlot().isOpen() || !ensureFittingIndex()) return false;
    const int found = findObjectIndex(key);
    if (found < 0) return false;
    ObjectIndexRecord entry;
    if (!readObjectIndexRecord(static_cast<uint16_t>(found), entry) || entry.key != key || entry.objectRecord < 0)
        return false;
    ObjectRecord object;
    if (!readObject(static_cast<uint16_t>(entry.objectRecord), object)) return false;
    if (object.catalog != catalogCode || object.number != number) return false;
    out = object;
    return true;
}

}  // namespace nocturnel
