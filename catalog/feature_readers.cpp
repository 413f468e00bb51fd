#include <cstring>

#include "catalog/catalogues.h"
#include "catalog/objects.h"
#include "catalog/record_file.h"
#include "settings/message.h"

// Typed readers of the whole-run databases whose record layouts belong to other features
// (Moon, Mars, comets, satellites) and of the per-use site list, with their own texts.
namespace nocturnel {
namespace {
template <std::size_t N>
bool readBytes(DatabaseSlot& slot, uint32_t index, std::array<uint8_t, N>& out, const char* notOpenText,
               const char* failedText, bool failedWithIndex = false) {
    if (!slot.isOpen()) {
        showMessage(notOpenText, "");
        return false;
    }
    const uint8_t* record = recordSize(slot) >= N ? fetchRecord(slot, index) : nullptr;
    if (!record) {
        if (failedWithIndex) showMessagef("", failedText, static_cast<int>(index));
        else showMessage(failedText, "");
        return false;
    }
    std::memcpy(out.data(), record, N);
    return true;
}

constexpr const char* kSiteFile = "nocturnel_location.ppc";
constexpr const char* kSiteFailure = "Could not retreive nocturnel_location.ppc database.";
}  // namespace

bool readMoonRecord(uint16_t index, MoonRecordBytes& out) {
    return readBytes(moonSlot(), index, out, "Moon Database isn't open!", "Could not retrieve moon record!");
}

bool readMarsRecord(uint16_t index, MarsRecordBytes& out) {
    return readBytes(marsSlot(), index, out, "Mars Database isn't open!", "Could not retrieve mars record!");
}

bool readCometRecord(uint16_t index, CometRecordBytes& out) {
    return readBytes(cometSlot(), index, out, "Comet  database isn't open!", "Could not retrieve comet record! %d",
                     true);
}

bool readSatelliteRecord(uint16_t index, SatelliteRecordBytes& out) {
    return readBytes(satelliteSlot(), index, out, "Satellite database isn't open!",
                     "Could not retrieve satellite record!");
}

bool readSiteRecord(uint16_t index, SiteRecordBytes& out) {
    DatabaseSlot sites;
    if (!openDatabase(sites, kLocationType, kCreator, 0, kDataFolder, kSiteFile)) {
        showMessage(kSiteFailure, "");
        return false;
    }
    return readBytes(sites, index, out, kSiteFailure, kSiteFailure);
}

int siteCount() {
    DatabaseSlot sites;
    if (!openDatabase(sites, kLocationType, kCreator, 0, kDataFolder, kSiteFile)) {
        showMessage(kSiteFailure, "");
        return 0;
    }
    return recordCount(sites);
}

bool requestSatelliteRewrite() {
    DatabaseSlot& slot = satelliteSlot();
    if (slot.memoryHandle) return true;  // the in-memory half could be rewritten; never present here
    if (slot.file) {
        showMessage("To modify the Satellite database you need to install it in memory.",
                    "\nAs you installed it on your memory card, you can use SatelliteDB tools to create a new one "
                    "and copy it after to your card.");
    } else {
        showMessage("No Satellite database was found. Please install it in Palm memory.",
                    "After you will be able to update it.");
    }
    return false;
}

bool writeCometRecord(uint16_t index, const CometRecordBytes& record) {
    return writeRecord(cometSlot(), index, 0, record.data(), record.size());
}

bool sortSatellites() {
    if (!satelliteSlot().isOpen()) {
        showMessage("SatelliteDBSort: Satellite database isn't open!", "");
        return false;
    }
    // Sorting rewrites records, which only the in-memory half allows.
    return requestSatelliteRewrite();
}

}  // namespace nocturnel
