#include "plans/user_catalog.h"

#include <cmath>
#include <cstring>
#include <filesystem>

#include "catalog/catalogues.h"
#include "catalog/constellations.h"
#include "catalog/object_tables.h"
#include "core/angle_text.h"
#include "plans/user_files.h"
#include "settings/message.h"
#include "settings/preferences.h"
#include "settings/program_folder.h"
#include "settings/text_encoding.h"

namespace nocturnel {
namespace {

std::string trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
    return std::string(s);
}

// Splits one CSV line; fields may be quoted with "" for a quote inside.
std::vector<std::string> csvFields(std::string_view line) {
    std::vector<std::string> fields;
    std::string field;
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quoted) {
            if (c == '"' && i + 1 < line.size() && line[i + 1] == '"') field += '"', ++i;
            else if (c == '"') quoted = false;
            else field += c;
        } else if (c == '"') {
            quoted = true;
        } else if (c == ',') {
            fields.push_back(trim(field));
            field.clear();
        } else {
            field += c;
        }
    }
    fields.push_back(trim(field));
    return fields;
}

std::optional<double> number(const std::string& text) {
    if (text.empty()) return std::nullopt;
    char* end = nullptr;
    const double v = std::strtod(text.c_str(), &end);
    if (*end != '\0' || !std::isfinite(v)) return std::nullopt;
    return v;
}

int typeCodeOf(const std::string& text) {
    if (text.empty()) return 0;
    std::string lower = text;
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (int i = 1; i < kObjectTypeCount; ++i) {
        std::string name = kObjectTypes[static_cast<std::size_t>(i)].name, abbreviation = kObjectTypes[static_cast<std::size_t>(i)].abbreviation;
        for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        for (char& c : abbreviation) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (lower == name || lower == abbreviation) return i;
    }
    if (const auto v = number(text); v && *v >= 0 && *v < kObjectTypeCount && *v == std::floor(*v)) return static_cast<int>(*v);
    return -1;
}

bool refuseLine(int lineNumber, std::string_view line, std::string_view why) {
    showMessage("Can't import the user catalogue",
                "Line " + std::to_string(lineNumber) + ": " + std::string(why) + " (" + std::string(line.substr(0, 60)) + ")");
    return false;
}

}  // namespace

bool readUserCatalogCsv(std::string_view csv, std::vector<ObjectRecord>& out) {
    out.clear();
    int lineNumber = 0;
    std::size_t pos = 0;
    while (pos <= csv.size()) {
        std::size_t end = csv.find('\n', pos);
        if (end == std::string_view::npos) end = csv.size();
        const std::string_view line = csv.substr(pos, end - pos);
        pos = end + 1;
        ++lineNumber;
        const std::string text = trim(line);
        if (text.empty() || text[0] == '#') continue;
        std::vector<std::string> f = csvFields(text);
        if (lineNumber == 1 || out.empty()) {
            std::string first = f[0];
            for (char& c : first) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            if (first == "name") continue;
        }
        if (f.size() < 3) return refuseLine(lineNumber, text, "a name, RA and Dec are needed");
        f.resize(6);
        const auto name = utf8ToLatin1(f[0]);
        // A NUL would end the stored name early (a leading one leaves it empty).
        if (!name || name->empty() || name->find('\0') != std::string::npos)
            return refuseLine(lineNumber, text, "the name is empty or not storable");
        const auto ra = parseAngleText(f[1]);
        const auto dec = parseAngleText(f[2]);
        if (!ra || !std::isfinite(*ra) || *ra < 0 || *ra >= 24) return refuseLine(lineNumber, text, "RA must be 0 to 24 h");
        if (!dec || !std::isfinite(*dec) || *dec < -90 || *dec > 90) return refuseLine(lineNumber, text, "Dec must be -90 to +90");
        const int type = typeCodeOf(f[3]);
        if (type < 0) return refuseLine(lineNumber, text, "unknown type");
        const auto mag = number(f[4]);
        if (!f[4].empty() && (!mag || *mag < -30 || *mag > 30)) return refuseLine(lineNumber, text, "bad magnitude");
        const auto size = number(f[5]);
        if (!f[5].empty() && (!size || *size < 0 || *size > 10000)) return refuseLine(lineNumber, text, "bad size");
        if (out.size() >= 65535) return refuseLine(lineNumber, text, "at most 65,535 objects");
        ObjectRecord o{};
        o.catalog = kCatalogUser;
        o.number = static_cast<int32_t>(out.size() + 1);
        o.type = type;
        o.raHours = static_cast<float>(*ra);
        o.decDeg = static_cast<float>(*dec);
        o.constellation = constellationOf(*ra, *dec);
        o.mag = mag ? static_cast<float>(*mag) : 0.0f;
        std::memcpy(o.name, name->data(), std::min(name->size(), sizeof o.name - 1));
        o.positionAngle = -1;
        o.majorArcmin = size ? static_cast<float>(*size) : 0.0f;
        o.description = -1;
        out.push_back(o);
    }
    return true;
}

bool writeUserCatalog(const std::vector<ObjectRecord>& records) {
    const Preferences& p = prefs();
    std::string name(p.userCatalogFile, strnlen(p.userCatalogFile, sizeof p.userCatalogFile));
    if (name.empty()) name = kDefaultUserCatalogFile;
    std::error_code ec;
    std::filesystem::create_directories(userCatalogsFolder(), ec);
    const std::filesystem::path path = userCatalogsFolder() / name;
    DatabaseHeader header{kObjectFileVersion, 0, static_cast<uint32_t>(records.size()), sizeof(ObjectRecord)};
    std::string bytes(sizeof header + records.size() * sizeof(ObjectRecord), '\0');
    std::memcpy(bytes.data(), &header, sizeof header);
    if (!records.empty()) std::memcpy(bytes.data() + sizeof header, records.data(), records.size() * sizeof(ObjectRecord));
    closeCatalogues();  // the user catalogue is read again at the next use
    if (!replaceFileContents(path, bytes)) {
        showMessage("Can't write the user catalogue", path.string());
        return false;
    }
    return true;
}

int importUserCatalogCsv(const std::string& path) {
    const auto text = readRegularFile(path, 8u << 20);
    if (!text) {
        showMessage("Can't open file.", path);
        return -1;
    }
    std::vector<ObjectRecord> records;
    if (!readUserCatalogCsv(*text, records) || !writeUserCatalog(records)) return -1;
    return static_cast<int>(records.size());
}

}  // namespace nocturnel
