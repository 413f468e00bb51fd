#include "shell/drive_options.h"

#include <cstring>

#include "scope/drive_types.h"
#include "scope/serial_link.h"
#include "settings/message.h"
#include "settings/preferences.h"

namespace nocturnel {

void addDriveOptions(CLI::App* command, std::string& drive, std::string& port) {
    command->add_option("--drive", drive, "Drive for this run: a list name (\"LX200\", \"BBox\") or its code");
    command->add_option("--port", port, "Serial device for this run (e.g. /dev/ttyUSB0 or a /dev/pts/N)");
}

bool applyDriveOptions(const std::string& drive, const std::string& port) {
    if (!drive.empty()) {
        const int code = driveCodeFromName(drive);
        if (code < 0) {
            showMessage("Unknown scope drive", drive);
            return false;
        }
        prefs().scopeDrive = code;
    }
    if (!port.empty()) {
        if (port.size() >= sizeof prefs().scopeDevice) {  // the record keeps 63 characters
            showMessage("Can't open serial port", port);
            return false;
        }
        std::strncpy(prefs().scopeDevice, port.c_str(), sizeof prefs().scopeDevice - 1);
        prefs().scopeDevice[sizeof prefs().scopeDevice - 1] = '\0';
        rebuildPortNameList();
        const int index = portIndexOf(port);
        prefs().scopePort = index < 0 ? 0 : index;
    }
    return true;
}

}  // namespace nocturnel
