// The small tables the catalogue builder writes into data/ (list memberships, meteor showers):
// fixed-size records behind the record-file header, read whole at once.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "catalog/record_file.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {

// Reads every record of data/`fileName` into `out`, converted by `convert`, each record first
// checked by `plausible`. A missing file gives "Could not find NAME"; another record size or
// version, or a record that cannot be read or is out of range, gives "Could not read NAME". On a
// failure `out` is left empty and the answer is false.
template <class Record, class Item, class Plausible, class Convert>
bool loadDataTable(const char* fileName, uint32_t version, std::vector<Item>& out, Plausible plausible,
                   Convert convert) {
    out.clear();
    const auto damaged = [&](const std::string& why) {
        out.clear();
        showMessage(std::string("Could not read ") + fileName, why);
        return false;
    };
    DatabaseSlot slot;
    if (!openDatabase(slot, 0, fourCharCode(kCreatorCode), 0, kDataFolder, fileName)) {
        showMessage(std::string("Could not find ") + fileName, "Looked in " + dataPath(fileName).parent_path().string());
        return false;
    }
    if (recordSize(slot) != sizeof(Record) || databaseVersion(slot) != version)
        return damaged("record size " + std::to_string(recordSize(slot)) + ", version " +
                       std::to_string(databaseVersion(slot)));
    const uint16_t count = recordCount(slot);
    out.reserve(count);
    for (uint16_t i = 0; i < count; ++i) {
        const uint8_t* bytes = fetchRecord(slot, i);
        if (bytes == nullptr) return damaged("record " + std::to_string(i) + " cannot be read");
        Record record;
        std::memcpy(&record, bytes, sizeof record);
        if (!plausible(record)) return damaged("record " + std::to_string(i) + " out of range");
        out.push_back(convert(record));
    }
    return true;
}

}  // namespace nocturnel
