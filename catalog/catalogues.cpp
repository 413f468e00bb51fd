#include "catalog/catalogues.h"

#include <cstring>
#include <string>

#include "catalog/formats.h"
#include "catalog/objects.h"
#include "catalog/star_catalog.h"
#include "settings/program_folder.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {
namespace {
struct CatalogueState {
    DatabaseSlot defaultStars, starCatalog, objects, objectIndex, objectDescriptions, userObjects;
    DatabaseSlot moon, mars, comets, satellites;
    int starsPerBlock = 0;
    int starLevel = -1;         // level of the open optional star file
    int lastZoomServed = -1;    // zoom level whose catalogue is open
    int objectIndexSize = -1;   // 0 1k, 1 2k, 2 18k
};
CatalogueState& state() {
    static CatalogueState s;
    return s;
}

constexpr const char* kObject18kFile = "nocturnel_obj_18k.ppc";
constexpr const char* kObject1kFile = "nocturnel_obj_1k.ppc";
constexpr int kSmallObjectFileLimit = 2000;

bool openStarFile(int level) {
    CatalogueState& s = state();
    closeDatabase(s.starCatalog);
    s.starLevel = -1;
    if (level < 0 || level >= static_cast<int>(kStarCatalogFiles.size())) return false;
    if (!openDatabase(s.starCatalog, kStarCatalogType, kCreator, 0, kDataFolder, kStarCatalogFiles[level]))
        return false;
    s.starLevel = level;
    s.starsPerBlock = starsPerBlockForRecordCount(recordCount(s.starCatalog));
    return true;
}

void showInstallAlert(int level) {
    const char* name = (level >= 0 && level < static_cast<int>(kStarCatalogFiles.size()))
                           ? kStarCatalogFiles[level] : "?";
    showMessagef("Looked in " + dataPath(name).parent_path().string(), "Please install %s in /PALM/Programs/Nocturnel folder.", name);
}
}  // namespace

int starsPerBlockForRecordCount(uint32_t records) { return records > 25000 ? 80 : 42; }

DatabaseSlot& defaultStarSlot() { return state().defaultStars; }
DatabaseSlot& starCatalogSlot() { return state().starCatalog; }
DatabaseSlot& objectSlot() { return state().objects; }
DatabaseSlot& objectIndexSlot() { return state().objectIndex; }
DatabaseSlot& objectDescriptionSlot() { return state().objectDescriptions; }
DatabaseSlot& userObjectSlot() { return state().userObjects; }
DatabaseSlot& moonSlot() { return state().moon; }
DatabaseSlot& marsSlot() { return state().mars; }
DatabaseSlot& cometSlot() { return state().comets; }
DatabaseSlot& satelliteSlot() { return state().satellites; }

int starsPerBlock() { return state().starsPerBlock; }
int starCatalogLevel() { return state().starLevel; }
int openObjectIndexSize() { return state().objectIndexSize; }

void closeCatalogues() {
    CatalogueState& s = state();
    for (DatabaseSlot* slot : {&s.defaultStars, &s.starCatalog, &s.objects, &s.objectIndex, &s.objectDescriptions,
                               &s.userObjects, &s.moon, &s.mars, &s.comets, &s.satellites})
        closeDatabase(*slot);
    s.starsPerBlock = 0;
    s.starLevel = -1;
    s.lastZoomServed = -1;
    s.objectIndexSize = -1;
    resetCatalogStretches();
    forgetBrightStarCount();
}

bool openDefaultStars() {
    if (!openDatabase(state().defaultStars, kDefaultStarType, kCreator, 0, kDataFolder, "nocturnel_default_stars.ppc")) {
        showMessage("Could not open star database",
                    "Please install nocturnel_default_stars.ppc in " + dataPath("nocturnel_default_stars.ppc").parent_path().string());
        return false;
    }
    return true;
}

bool openUserObjects() {
    const Preferences& p = prefs();
    std::string name(p.userCatalogFile, strnlen(p.userCatalogFile, sizeof p.userCatalogFile));
    if (name.empty()) name = kDefaultUserCatalogFile;
    return openDatabase(state().userObjects, kObjectType, kCreator, 0, kUserCatalogFolder, name.c_str());
}

bool openObjectFiles() {
    CatalogueState& s = state();
    if (!openDatabase(s.objects, kObjectType, kCreator, 0, kDataFolder, kObject18kFile) &&
        !openDatabase(s.objects, kObjectType, kCreator, 0, kDataFolder, kObject1kFile)) {
        showMessage("Could not open object database",
                    "\nPlease install either:\nnocturnel_obj_1k.ppc or,\nnocturnel_obj_18k.ppc\nin " +
                        dataPath(kObject1kFile).parent_path().string());
        return false;
    }
    if (databaseVersion(s.objects) != kObjectFileVersion)
        showMessage("You did not install the last version of nocturnel_obj_18k.ppc or nocturnel_obj_1k.ppc", "");
    resetCatalogStretches();
    if (recordCount(s.objects) < kSmallObjectFileLimit) adjustStretchesForSmallFile();
    return true;
}

int openCatalogues() {
    closeCatalogues();
    CatalogueState& s = state();

    if (!openDefaultStars()) return -1;
    (void)databaseVersion(s.defaultStars);  // read, no value required

    const int level = prefs().cardCatalog;
    if (level > 0) {
        if (!openStarFile(level)) return -1;
    }

    if (!openObjectFiles()) return -1;

    if (openDatabase(s.moon, kMoonType, kCreator, 0, kDataFolder, "nocturnel_moon.ppc") &&
        databaseVersion(s.moon) != kObjectFileVersion)
        showMessage("You did not install the last version of nocturnel_moon.ppc", "");

    openDatabase(s.mars, kMarsType, kCreator, 0, kDataFolder, "nocturnel_mars.ppc");
    openDatabase(s.objectDescriptions, kObjectDescriptionType, kCreator, 0, kDataFolder, "nocturnel_obj_18k_desc.ppc");
    openDatabase(s.comets, kCometType, kCreator, 1, kDataFolder, "nocturnel_comet.ppc");
    openDatabase(s.satellites, kSatelliteType, kCreator, 1, kDataFolder, "nocturnel_satellites.ppc");
    if (openDatabase(s.objectIndex, kObjectIndexType, kCreator, 0, kDataFolder, kObjectIndexFiles[0]))
        s.objectIndexSize = 0;
    // The satellite layer's post-open step belongs to the satellite assistant (nothing to do here).
    return 0;
}

bool switchStarCatalogForZoom(int zoomLevel) {
    CatalogueState& s = state();
    const int preference = prefs().cardCatalog;
    if (preference <= 0) return false;
    if (zoomLevel == s.lastZoomServed) return true;
    if (zoomLevel < 0 || zoomLevel >= static_cast<int>(zoomCatalogueTable.size())) return false;

    int wanted = zoomCatalogueTable[zoomLevel];
    if (preference < wanted) wanted = preference;
    s.lastZoomServed = zoomLevel;
    if (openStarFile(wanted)) return true;

    showInstallAlert(wanted);
    s.lastZoomServed = -1;
    if (!s.starCatalog.isOpen()) {
        showMessage("Could not open optional stellar database", "Use only default stars");
        s.starsPerBlock = 0;
    }
    return false;
}

bool openStarCatalogLevel(int level) {
    state().lastZoomServed = -1;  // the zoom's catalogue is no longer the open one
    if (openStarFile(level)) return true;
    showInstallAlert(level);
    state().starsPerBlock = 0;
    return false;
}

int findObjectIndex(int32_t key) {
    DatabaseSlot& index = state().objectIndex;
    if (!index.isOpen()) return -1;
    const int count = recordCount(index);
    if (count == 1) return 0;
    if (count < 1) return -1;

    int lo = 1, hi = count - 1, mid = -1;
    while (lo <= hi) {
        mid = (lo + hi) / 2;
        const uint8_t* record = fetchRecord(index, static_cast<uint32_t>(mid));
        if (!record || recordSize(index) < sizeof(ObjectIndexRecord)) {
            showMessagef("", "Can't find Object record number %d", mid);
            return -1;
        }
        int32_t recordKey;
        std::memcpy(&recordKey, record + 12, sizeof recordKey);
        const int64_t difference = static_cast<int64_t>(key) - recordKey;
        if (difference == 0) break;
        if (difference < 0) hi = mid - 1;
        else lo = mid + 1;
    }
    return mid;
}

bool openObjectIndexForSize(int sizeIndex) {
    CatalogueState& s = state();
    closeDatabase(s.objectIndex);
    s.objectIndexSize = -1;
    if (sizeIndex < 0 || sizeIndex >= static_cast<int>(kObjectIndexFiles.size())) return false;
    if (!openDatabase(s.objectIndex, kObjectIndexType, kCreator, 0, kDataFolder, kObjectIndexFiles[sizeIndex]))
        return false;
    s.objectIndexSize = sizeIndex;
    return true;
}

}  // namespace nocturnel
