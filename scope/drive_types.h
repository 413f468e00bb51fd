#pragma once
// The telescope drive codes (preference `scopeDrive`) and the protocol family that serves
// each of them. The "Preference 1/6" list shows the named drives in code order, 0 first.
#include <span>
#include <string>
#include <string_view>

namespace nocturnel {

// Named drive codes. 20 names no drive; 21, 100 and 101 have no list entry.
enum DriveType : int {
    kDriveNone = 0,
    kDriveAamSkyvector = 1,
    kDriveAutoStar = 2,
    kDriveBBox = 3,
    kDriveDaveEk = 4,
    kDriveLx200 = 5,
    kDriveMagellan1 = 6,
    kDriveMagellan2 = 7,
    kDriveNexstar58 = 8,
    kDriveNexstarOldGt = 9,
    kDriveNexstarGps = 10,
    kDriveNgcMax = 11,
    kDriveOuranos = 12,
    kDriveServoCat = 13,
    kDriveTakahashi = 14,
    kDriveUltima2000 = 15,
    kDriveIntelliscope = 16,
    kDriveLosmandy = 17,
    kDriveSiderealTech = 18,
    kDriveSkyCommander = 19,
    kDriveSkyWizard = 21,
    kDrivePowerFlex = 100,
    kDriveDynastar = 101,
};

// The protocol module behind a drive code.
enum class DriveFamily {
    None,          // code 0
    EncoderBox,    // 1, 3, 4, 11, 12, 16, 21
    Lx200,         // 2, 5, 17
    Magellan,      // 6, 7: LX200 commands, date-query connect, no slewing
    NexStar,       // 8, 9, 10, 15
    ServoCat,      // 13
    Takahashi,     // 14
    SiderealTech,  // 18
    SkyCommander,  // 19
    PowerFlex,     // 100: nothing implemented
    Dynastar,      // 101: nothing implemented
    Unknown,       // every other code (20 included)
};

struct DriveInfo {
    int code;
    std::string_view listName;  // empty for the codes without a list entry
    DriveFamily family;
};

// Every known code, in code order (the 20 list entries, then 21, 100, 101).
std::span<const DriveInfo> driveTable();
// The names of the "Scope Drive" list as shown (index = code), "None" first.
std::span<const std::string_view> driveListNames();

DriveFamily driveFamily(int code);
// The list name of a code; empty when the code has none.
std::string_view driveListName(int code);
// A family's name for people ("LX200", "encoder box", ...).
std::string_view driveFamilyName(DriveFamily family);
// A drive chosen by list name (case-insensitive, e.g. "lx200", "Nexstar 5&8") or by its number
// ("5", "21", "100"); -1 when nothing matches.
int driveCodeFromName(std::string_view nameOrNumber);

// How the four slewing operations (rate, start, stop, stop all) treat a code: served by its
// protocol, ignored without a word (drives that cannot slew), or unknown.
enum class SlewingService { Served, Ignored, Unknown };
SlewingService slewingService(int code);

}  // namespace nocturnel
