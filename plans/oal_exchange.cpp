#include "plans/oal_exchange.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>

#include "catalog/object_tables.h"
#include "plans/observer_log_choices.h"
#include "plans/observer_logs.h"
#include "plans/xml_reader.h"
#include "settings/message.h"
#include "settings/text_encoding.h"

namespace nocturnel {
namespace {

constexpr double kPi = 3.14159265358979323846;

// Object-type rows and the OAL target types they are exchanged as; the first row of a type is
// the one an imported target takes.
struct OalTargetType {
    int typeCode;
    std::string_view xsiType;
};
constexpr OalTargetType kOalTargetTypes[] = {
    {2, "oal:deepSkyGC"},  {3, "oal:deepSkyGC"},  {4, "oal:deepSkyGC"},  {5, "oal:deepSkyGC"},
    {6, "oal:deepSkyOC"},  {7, "oal:deepSkyOC"},  {8, "oal:deepSkyOC"},  {20, "oal:deepSkyGN"}, {9, "oal:deepSkyGN"},
    {10, "oal:deepSkyGN"}, {11, "oal:deepSkyGN"}, {12, "oal:deepSkyGN"}, {16, "oal:deepSkyGX"},
    {17, "oal:deepSkyCG"}, {19, "oal:deepSkyGN"}, {21, "oal:deepSkyDN"},
    {22, "oal:deepSkyGN"}, {23, "oal:deepSkyGN"}, {24, "oal:deepSkyGN"}, {25, "oal:deepSkyPN"},
    {39, "oal:deepSkyGN"}, {1, "oal:deepSkyAS"},  {31, "oal:deepSkyDS"}, {32, "oal:deepSkyMS"},
    {33, "oal:deepSkyMS"}, {34, "oal:deepSkyMS"}, {35, "oal:deepSkyMS"}, {36, "oal:deepSkyMS"},
    {37, "oal:deepSkyMS"}, {27, "oal:PlanetTargetType"}, {13, "oal:CometTargetType"},
    {18, "oal:MinorPlanetTargetType"}, {38, "oal:VariableStarTargetType"},
};
constexpr std::string_view kOalOtherType = "oal:deepSkyNA";

std::string_view oalTypeOf(int typeCode) {
    for (const auto& t : kOalTargetTypes)
        if (t.typeCode == typeCode) return t.xsiType;
    return kOalOtherType;
}

int typeCodeOfOal(std::string_view xsiType) {
    const auto colon = xsiType.find(':');
    const std::string_view local = colon == std::string_view::npos ? xsiType : xsiType.substr(colon + 1);
    for (const auto& t : kOalTargetTypes) {
        const std::string_view candidate = t.xsiType.substr(t.xsiType.find(':') + 1);
        if (candidate == local) return t.typeCode;
    }
    if (local == "MoonTargetType" || local == "SunTargetType") return 27;
    return 0;
}

// The seeing choices run from "Poor" to "Excellent"; OAL counts seeing on Antoniadi's scale,
// 1 (perfect) to 5 (very bad).
int antoniadiOfSeeing(int seeingIndex) { return 5 - std::clamp(seeingIndex, 0, 4); }
int seeingOfAntoniadi(int antoniadi) { return 5 - std::clamp(antoniadi, 1, 5); }

std::string utf8(std::string_view latin1) { return xmlEscape(latin1ToUtf8(latin1)); }

std::string number(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string isoLocal(const ObserverLog& log, int utcOffsetMin) {
    char text[64];
    const int offset = std::abs(utcOffsetMin);
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:00%c%02d:%02d", log.year, log.month, log.day, log.hour,
                  log.minute, utcOffsetMin < 0 ? '-' : '+', offset / 60, offset % 60);
    return text;
}

// Distinct texts get one id each: "<prefix>_<n>".
class IdTable {
public:
    explicit IdTable(std::string prefix) : prefix_(std::move(prefix)) {}
    std::string idOf(const std::string& key) {
        auto [it, added] = ids_.try_emplace(key, prefix_ + "_" + std::to_string(ids_.size() + 1));
        if (added) order_.push_back(key);
        return it->second;
    }
    const std::vector<std::string>& keys() const { return order_; }
    const std::string& at(const std::string& key) const { return ids_.at(key); }

private:
    std::string prefix_;
    std::map<std::string, std::string> ids_;
    std::vector<std::string> order_;
};

}  // namespace

std::string oalDocumentFromLogs(const std::vector<ObserverLog>& logs, int utcOffsetMin) {
    IdTable sites("site"), scopes("scope"), filters("filter"), targets("target");
    std::vector<std::size_t> targetOf(logs.size());
    std::map<std::string, std::size_t> firstLogOfTarget;
    for (std::size_t i = 0; i < logs.size(); ++i) {
        sites.idOf(logs[i].location);
        if (!logs[i].scope.empty()) scopes.idOf(logs[i].scope);
        if (!logs[i].filter.empty()) filters.idOf(logs[i].filter);
        targets.idOf(logs[i].object);
        firstLogOfTarget.try_emplace(logs[i].object, i);
    }
    std::string x = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    x += "<oal:observations version=\"2.1\" xmlns:oal=\"" + std::string(kOalNamespace) +
         "\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:schemaLocation=\"" +
         std::string(kOalNamespace) + " oal21.xsd\">\n";
    x += "  <observers>\n    <observer id=\"observer_1\">\n      <name>Nocturnel</name>\n"
         "      <surname>Observer</surname>\n    </observer>\n  </observers>\n";
    x += "  <sites>\n";
    for (const std::string& site : sites.keys()) {
        x += "    <site id=\"" + sites.at(site) + "\">\n      <name>" + (site.empty() ? "Unknown" : utf8(site)) +
             "</name>\n      <longitude unit=\"deg\">0</longitude>\n      <latitude unit=\"deg\">0</latitude>\n"
             "      <timezone>" + std::to_string(utcOffsetMin) + "</timezone>\n    </site>\n";
    }
    x += "  </sites>\n  <sessions/>\n  <targets>\n";
    for (const std::string& object : targets.keys()) {
        const ObserverLog& log = logs[firstLogOfTarget.at(object)];
        x += "    <target id=\"" + targets.at(object) + "\" xsi:type=\"" + std::string(oalTypeOf(log.typeCode)) +
             "\">\n      <observer>observer_1</observer>\n      <name>" + utf8(object) + "</name>\n";
        x += "      <position>\n        <ra unit=\"rad\">" + number(log.raHours * kPi / 12.0, 8) +
             "</ra>\n        <dec unit=\"rad\">" + number(log.decDeg * kPi / 180.0, 8) + "</dec>\n      </position>\n";
        if (oalTypeOf(log.typeCode).starts_with("oal:deepSky") && log.objectMag != 0)
            x += "      <visMag>" + number(log.objectMag, 1) + "</visMag>\n";
        x += "    </target>\n";
    }
    x += "  </targets>\n  <scopes>\n";
    for (const std::string& scope : scopes.keys())
        x += "    <scope id=\"" + scopes.at(scope) + "\" xsi:type=\"oal:scopeType\">\n      <model>" + utf8(scope) +
             "</model>\n      <aperture>0</aperture>\n      <focalLength>0</focalLength>\n    </scope>\n";
    x += "  </scopes>\n  <eyepieces/>\n  <lenses/>\n  <filters>\n";
    for (const std::string& filter : filters.keys())
        x += "    <filter id=\"" + filters.at(filter) + "\">\n      <model>" + utf8(filter) +
             "</model>\n      <type>other</type>\n    </filter>\n";
    x += "  </filters>\n  <imagers/>\n";
    for (std::size_t i = 0; i < logs.size(); ++i) {
        const ObserverLog& log = logs[i];
        x += "  <observation id=\"observation_" + std::to_string(i + 1) + "\">\n";
        x += "    <observer>observer_1</observer>\n    <site>" + sites.at(log.location) + "</site>\n";
        x += "    <target>" + targets.at(log.object) + "</target>\n";
        x += "    <begin>" + isoLocal(log, utcOffsetMin) + "</begin>\n";
        if (log.visualMagX10 > 0) x += "    <faintestStar>" + number(log.visualMagX10 / 10.0, 1) + "</faintestStar>\n";
        x += "    <seeing>" + std::to_string(antoniadiOfSeeing(log.seeing)) + "</seeing>\n";
        if (!log.scope.empty()) x += "    <scope>" + scopes.at(log.scope) + "</scope>\n";
        if (!log.filter.empty()) x += "    <filter>" + filters.at(log.filter) + "</filter>\n";
        const int rating = log.choices[kChoiceRating];
        const bool deepSky = oalTypeOf(log.typeCode).starts_with("oal:deepSky");
        x += std::string("    <result") + (deepSky ? " xsi:type=\"oal:findingsDeepSkyType\"" : "") +
             " lang=\"en\">\n      <description>" + utf8(log.text) + "</description>\n";
        if (deepSky) x += "      <rating>" + std::to_string(rating >= 1 && rating <= 7 ? rating : 99) + "</rating>\n";
        x += "    </result>\n  </observation>\n";
    }
    x += "</oal:observations>\n";
    return x;
}

namespace {

std::optional<double> readNumber(const std::string& text) {
    if (text.empty()) return std::nullopt;
    char* end = nullptr;
    const double v = std::strtod(text.c_str(), &end);
    if (end == text.c_str() || *end != '\0' || !std::isfinite(v)) return std::nullopt;
    return v;
}

// An OAL angle in degrees, from its unit attribute.
std::optional<double> angleDeg(const XmlElement* e) {
    if (e == nullptr) return std::nullopt;
    std::string text = e->text;
    text.erase(0, text.find_first_not_of(" \t\r\n"));
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    const auto v = readNumber(text);
    if (!v) return std::nullopt;
    const std::string* unit = e->attribute("unit");
    const std::string u = unit ? *unit : "rad";
    if (u == "rad") return *v * 180.0 / kPi;
    if (u == "deg") return *v;
    if (u == "arcmin") return *v / 60.0;
    if (u == "arcsec") return *v / 3600.0;
    return std::nullopt;
}

// "YYYY-MM-DDThh:mm[:ss[.fff]][Z|+hh:mm|-hh:mm]" to the log's local date and time.
bool readBegin(const std::string& text, int utcOffsetMin, ObserverLog& log) {
    int y, mo, d, h, mi;
    int consumed = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d%n", &y, &mo, &d, &h, &mi, &consumed) != 5) return false;
    if (mo < 1 || mo > 12 || d < 1 || d > 31 || h < 0 || h > 23 || mi < 0 || mi > 59) return false;
    std::string_view rest = std::string_view(text).substr(static_cast<std::size_t>(consumed));
    if (!rest.empty() && rest[0] == ':') {
        rest.remove_prefix(1);
        while (!rest.empty() && ((rest[0] >= '0' && rest[0] <= '9') || rest[0] == '.')) rest.remove_prefix(1);
    }
    if (rest == "Z") {
        // Universal time: brought to the local time of the logs.
        long minutes = static_cast<long>(h) * 60 + mi + utcOffsetMin;
        int dayShift = 0;
        while (minutes < 0) minutes += 1440, --dayShift;
        while (minutes >= 1440) minutes -= 1440, ++dayShift;
        h = static_cast<int>(minutes / 60);
        mi = static_cast<int>(minutes % 60);
        if (dayShift != 0) {
            static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
            const auto monthDays = [&](int year, int month) {
                const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
                return kDays[month - 1] + (month == 2 && leap ? 1 : 0);
            };
            d += dayShift;
            if (d < 1) {
                if (--mo < 1) mo = 12, --y;
                d = monthDays(y, mo);
            } else if (d > monthDays(y, mo)) {
                d = 1;
                if (++mo > 12) mo = 1, ++y;
            }
        }
    }
    log.year = y;
    log.month = mo;
    log.day = d;
    log.hour = h;
    log.minute = mi;
    return true;
}

// UTF-8 text of the document into a record's Latin-1 field; characters Latin-1 lacks become '?'.
std::string latin1Of(const std::string& text) {
    if (auto l = utf8ToLatin1(text)) return *l;
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        const auto c = static_cast<unsigned char>(text[i]);
        const std::size_t len = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
        const std::string piece = text.substr(i, len);
        const auto l = utf8ToLatin1(piece);
        out += l ? *l : "?";
        i += len;
    }
    return out;
}

std::map<std::string, const XmlElement*> byId(const XmlElement& root, std::string_view group) {
    std::map<std::string, const XmlElement*> table;
    if (const XmlElement* g = root.child(group))
        for (const auto& item : g->children)
            if (const std::string* id = item->attribute("id")) table[*id] = item.get();
    return table;
}

std::string nameOf(const std::map<std::string, const XmlElement*>& table, const std::string& id,
                   std::string_view field) {
    const auto it = table.find(id);
    return it == table.end() ? std::string{} : it->second->childText(field);
}

}  // namespace

bool logsFromOalDocument(std::string_view document, int utcOffsetMin, std::vector<ObserverLog>& out, int& skipped) {
    out.clear();
    skipped = 0;
    XmlParseError error;
    auto root = parseXml(document, error);
    if (!root) {
        showMessage("Can't read the OAL file", "Line " + std::to_string(error.line) + ": " + error.what);
        return false;
    }
    const XmlElement& doc = **root;
    const std::string* ns = nullptr;
    for (const auto& [key, value] : doc.attributes)
        if ((key == "xmlns" || key.starts_with("xmlns:")) && value == kOalNamespace) ns = &value;
    if (doc.localName() != "observations" || ns == nullptr) {
        showMessage("Can't read the OAL file", "It is not an OpenAstronomyLog document.");
        return false;
    }
    const auto sites = byId(doc, "sites"), targets = byId(doc, "targets"), scopes = byId(doc, "scopes"),
               filters = byId(doc, "filters");
    for (const XmlElement* observation : doc.childrenNamed("observation")) {
        const auto target = targets.find(observation->childText("target"));
        ObserverLog log;
        if (target == targets.end() || !readBegin(observation->childText("begin"), utcOffsetMin, log)) {
            ++skipped;
            continue;
        }
        const XmlElement& t = *target->second;
        log.object = latin1Of(t.childText("name"));
        if (log.object.size() >= kLogObjectField) log.object.resize(kLogObjectField - 1);
        if (const XmlElement* position = t.child("position")) {
            const auto ra = angleDeg(position->child("ra"));
            const auto dec = angleDeg(position->child("dec"));
            if (ra && dec && *dec >= -90 && *dec <= 90) {
                log.raHours = static_cast<float>(std::fmod(std::fmod(*ra, 360.0) + 360.0, 360.0) / 15.0);
                log.decDeg = static_cast<float>(*dec);
            }
        }
        if (const std::string* type = t.attribute("type")) log.typeCode = typeCodeOfOal(*type);
        if (const auto mag = readNumber(t.childText("visMag")); mag && std::abs(*mag) < 100)
            log.objectMag = static_cast<int32_t>(std::lround(*mag));
        if (const auto faintest = readNumber(observation->childText("faintestStar")); faintest && std::abs(*faintest) < 100)
            log.visualMagX10 = static_cast<int32_t>(std::lround(*faintest * 10));
        if (const auto seeing = readNumber(observation->childText("seeing")))
            log.seeing = seeingOfAntoniadi(static_cast<int>(std::clamp(*seeing, 1.0, 5.0)));  // inside int first
        log.location = latin1Of(nameOf(sites, observation->childText("site"), "name"));
        log.scope = latin1Of(nameOf(scopes, observation->childText("scope"), "model"));
        log.filter = latin1Of(nameOf(filters, observation->childText("filter"), "model"));
        if (const XmlElement* result = observation->child("result")) {
            log.text = latin1Of(result->childText("description"));
            if (const auto rating = readNumber(result->childText("rating")); rating && *rating >= 1 && *rating <= 7)
                log.choices[kChoiceRating] = static_cast<int32_t>(*rating);
        }
        out.push_back(std::move(log));
    }
    if (out.empty() && skipped == 0) {
        showMessage("Nothing to import.", "The OAL file holds no observation.");
        return false;
    }
    return true;
}

int exportLogsToOal(const std::string& path, int utcOffsetMin) {
    std::vector<ObserverLog> logs;
    for (const LogEntry& entry : listObserverLogs()) {
        ObserverLog log;
        switch (readObserverLogFile(entry.path, log)) {
            case LogReadStatus::kOk: logs.push_back(log); break;
            case LogReadStatus::kShort: showMessage("Fail to read log file.", entry.path.string()); break;
            case LogReadStatus::kCorrupted: showMessage("It seems your log data are corrupted.", entry.path.string()); break;
        }
    }
    if (logs.empty()) {
        showMessage("Nothing to export.");
        return -1;
    }
    if (!replaceFileContents(path, oalDocumentFromLogs(logs, utcOffsetMin))) {
        showMessage("Can't write the OAL file", path);
        return -1;
    }
    return static_cast<int>(logs.size());
}

int importLogsFromOal(const std::string& path, int utcOffsetMin) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat st {};
    if (fd < 0 || ::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size > (16 << 20)) {
        if (fd >= 0) ::close(fd);
        showMessage("Can't read the OAL file", path);
        return -1;
    }
    std::string document(static_cast<std::size_t>(st.st_size), '\0');
    std::size_t got = 0;
    while (got < document.size()) {
        const ssize_t n = ::read(fd, document.data() + got, document.size() - got);
        if (n <= 0) break;
        got += static_cast<std::size_t>(n);
    }
    ::close(fd);
    document.resize(got);
    std::vector<ObserverLog> logs;
    int skipped = 0;
    if (!logsFromOalDocument(document, utcOffsetMin, logs, skipped)) return -1;
    int saved = 0;
    for (const ObserverLog& log : logs)
        if (saveObserverLog(log, -1)) ++saved;
    if (skipped > 0)
        showMessage("Some observations were not imported",
                    std::to_string(skipped) + " observation(s) name no known target or time.");
    return saved;
}

}  // namespace nocturnel
