#include "plans/list_members.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "catalog/formats.h"
#include "catalog/object_tables.h"
#include "catalog/record_file.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {

bool damaged(std::vector<ListMemberRecord>& members, const std::string& why) {
    members.clear();
    showMessage(std::string("Could not read ") + kListMemberFile, why);
    return false;
}

}  // namespace

bool loadListMembers(std::vector<ListMemberRecord>& members) {
    members.clear();
    DatabaseSlot slot;
    if (!openDatabase(slot, 0, fourCharCode(kCreatorCode), 0, kDataFolder, kListMemberFile)) {
        showMessage(std::string("Could not find ") + kListMemberFile,
                    "Looked in " + dataPath(kListMemberFile).parent_path().string());
        return false;
    }
    if (recordSize(slot) != sizeof(ListMemberRecord) || databaseVersion(slot) != kListMemberFileVersion)
        return damaged(members, "record size " + std::to_string(recordSize(slot)) + ", version " +
                                    std::to_string(databaseVersion(slot)));
    const uint16_t count = recordCount(slot);
    members.reserve(count);
    for (uint16_t i = 0; i < count; ++i) {
        const uint8_t* bytes = fetchRecord(slot, i);
        if (bytes == nullptr) return damaged(members, "record " + std::to_string(i) + " cannot be read");
        ListMemberRecord m;
        std::memcpy(&m, bytes, sizeof m);
        if ((m.catalog != kCatalogHerschel && m.catalog != kCatalogBestNGC) || m.objectRecord < 0 || m.rank < 1)
            return damaged(members, "record " + std::to_string(i) + " out of range");
        members.push_back(m);
    }
    return true;
}

ListsByObject listsByObject() {
    ListsByObject lists;
    DatabaseSlot members, objects;
    if (!openDatabase(members, 0, fourCharCode(kCreatorCode), 0, kDataFolder, kListMemberFile) ||
        recordSize(members) != sizeof(ListMemberRecord) ||
        !openDatabase(objects, 0, fourCharCode(kCreatorCode), 0, kDataFolder, "nocturnel_obj_18k.ppc") ||
        recordSize(objects) < sizeof(ObjectRecord))
        return lists;
    for (uint16_t i = 0, count = recordCount(members); i < count; ++i) {
        ListMemberRecord m;
        const uint8_t* bytes = fetchRecord(members, i);
        if (bytes == nullptr) break;
        std::memcpy(&m, bytes, sizeof m);
        if (m.objectRecord < 0 || m.objectRecord >= recordCount(objects)) continue;
        ObjectRecord o;
        const uint8_t* object = fetchRecord(objects, static_cast<uint32_t>(m.objectRecord));
        if (object == nullptr) continue;
        std::memcpy(&o, object, sizeof o);
        std::vector<int>& of = lists[{o.catalog, o.number}];
        if (std::find(of.begin(), of.end(), m.catalog) == of.end()) of.push_back(m.catalog);
    }
    return lists;
}

std::vector<int> listsOfObject(const std::vector<ListMemberRecord>& members, int objectRecord) {
    std::vector<int> lists;
    for (const ListMemberRecord& m : members)
        if (m.objectRecord == objectRecord && std::find(lists.begin(), lists.end(), m.catalog) == lists.end())
            lists.push_back(m.catalog);
    return lists;
}

}  // namespace nocturnel
