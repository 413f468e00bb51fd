#include "plans/observer_log_export.h"

#include <langinfo.h>

#include <cstdio>
#include <cstring>
#include <filesystem>

#include "catalog/constellations.h"
#include "catalog/object_tables.h"
#include "core/angle_text.h"
#include "plans/observer_logs.h"
#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace {

constexpr char kHeaderFormat[] = "Nocturnel Observer log %d\n";
constexpr char kColumns[] =
    "Date;Time;Object;RA;Dec;Type;Obj Mag;Const;Moon;Sun;Vis. Mag;Transparency;Seeing;Scope;Location;Filter;Log\n";

// A text field as a column: a single blank when empty; a separator or line break inside the
// text would move the columns, so they become a comma and a blank.
std::string column(std::string text) {
    if (text.empty()) return " ";
    for (char& c : text) {
        if (c == ';') c = ',';
        else if (c == '\n' || c == '\r' || c == '\t') c = ' ';
    }
    return text;
}

std::string constellationText(float raHours, float decDeg) {
    const int number = constellationOf(raHours, decDeg);
    const auto& list = constellations().constellations;
    if (number < 0 || number >= static_cast<int>(list.size())) return " ";
    const auto& record = list[static_cast<std::size_t>(number)];
    return std::string(record.abbreviation, strnlen(record.abbreviation, sizeof record.abbreviation));
}

std::string typeText(int32_t typeCode) {
    if (typeCode < 0 || typeCode >= kObjectTypeCount) return " ";
    return column(kObjectTypes[static_cast<std::size_t>(typeCode)].name);
}

void tellExported(int count) {
    showMessagef({}, "%d Observer log%s exported.", count, count > 1 ? "s" : "");
}

bool writePart(const std::string& text, std::size_t n) {
    const std::filesystem::path path = userLogsFolder() / ("logs_" + std::to_string(n) + ".txt");
    if (replaceFileContents(path, text)) return true;
    showMessage("Fail to write log file.", path.string());
    return false;
}

}  // namespace

std::string observerLogExportLine(const ObserverLog& log, bool dayFirst) {
    char date[40], time[24], numbers[96];
    std::snprintf(date, sizeof date, "%02d/%02d/%04d", dayFirst ? log.day : log.month, dayFirst ? log.month : log.day,
                  log.year);
    std::snprintf(time, sizeof time, "%02d:%02d", log.hour, log.minute);
    std::string line = std::string(date) + ";" + time + ";" + column(log.object) + ";" + hoursText(log.raHours) + ";" +
                       degreesText(log.decDeg) + ";" + typeText(log.typeCode) + ";";
    std::snprintf(numbers, sizeof numbers, "%.1f;%s;%d%%;%d%c;%.1f;%d;%d;", static_cast<double>(log.objectMag),
                  constellationText(log.raHours, log.decDeg).c_str(), log.moonPct, log.sunAltDeg, kDegreeSign,
                  log.visualMagX10 / 10.0, log.transparency, log.seeing);
    line += numbers;
    line += column(log.scope) + ";" + column(log.location) + ";" + column(log.filter) + ";" + column(log.text) + "\n";
    return line;
}

bool localeDateIsDayFirst() {
    const char* format = nl_langinfo(D_FMT);
    if (format == nullptr) return false;
    const char* day = std::strstr(format, "%d");
    if (day == nullptr) day = std::strstr(format, "%e");
    const char* month = std::strstr(format, "%m");
    return day != nullptr && month != nullptr && day < month;
}

int exportObserverLogs(bool dayFirst) {
    if (!askYesNo("Do you want to export your Observer Logs to a text file ?")) return -1;
    const std::vector<LogEntry> entries = listObserverLogs();
    if (entries.empty()) {
        showMessage("Nothing to export.");
        return 0;
    }
    std::string buffer;
    buffer.reserve(kLogExportBuffer);
    int part = 0, exported = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        ObserverLog log;
        switch (readObserverLogFile(entries[i].path, log)) {
            case LogReadStatus::kShort: showMessage("Fail to read log file.", entries[i].path.string()); continue;
            case LogReadStatus::kCorrupted:
                showMessage("It seems your log data are corrupted.", entries[i].path.string());
                continue;
            case LogReadStatus::kOk: break;
        }
        if (buffer.size() > kLogExportSplit) {
            if (!writePart(buffer, i)) return -1;
            tellExported(exported);
            buffer.clear();
        }
        if (buffer.empty()) {
            char header[48];
            std::snprintf(header, sizeof header, kHeaderFormat, ++part);
            buffer = std::string(header) + kColumns;
        }
        log.logNumber = static_cast<int32_t>(i);
        buffer += observerLogExportLine(log, dayFirst);
        ++exported;
    }
    if (!buffer.empty() && !writePart(buffer, entries.size())) return -1;
    tellExported(exported);
    return exported;
}

}  // namespace nocturnel
