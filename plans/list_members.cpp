#include "plans/list_members.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "catalog/formats.h"
#include "catalog/object_tables.h"
#include "catalog/record_file.h"
#include "plans/data_table_file.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {

bool loadListMembers(std::vector<ListMemberRecord>& members) {
    return loadDataTable<ListMemberRecord>(
        kListMemberFile, kListMemberFileVersion, members,
        [](const ListMemberRecord& m) {
            return (m.catalog == kCatalogHerschel || m.catalog == kCatalogBestNGC) && m.objectRecord >= 0 && m.rank >= 1;
        },
        [](const ListMemberRecord& m) { return m; });
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
