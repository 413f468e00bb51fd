#include "plans/user_lists.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "catalog/object_finder.h"
#include "plans/user_file_names.h"
#include "plans/user_files.h"
#include "settings/message.h"
#include "settings/program_folder.h"
#include "settings/text_encoding.h"

namespace nocturnel {
namespace fs = std::filesystem;

namespace {

constexpr std::size_t kReferenceSize = sizeof(ObjectReference);
constexpr std::size_t kMaxListFile = kListHeaderSize + 65536 * kReferenceSize;

void putI32(std::string& bytes, std::size_t at, int32_t v) {
    for (int i = 0; i < 4; ++i) bytes[at + static_cast<std::size_t>(i)] = static_cast<char>(static_cast<uint32_t>(v) >> (8 * i));
}
int32_t getI32(std::string_view bytes, std::size_t at) {
    uint32_t v = 0;
    for (int i = 0; i < 4; ++i) v |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)])) << (8 * i);
    return static_cast<int32_t>(v);
}

std::optional<fs::path> userListPath(std::string_view nameLatin1, std::string_view extension, std::string_view what) {
    std::string_view stem = nameLatin1;
    if (stem.size() > extension.size() && stem.substr(stem.size() - extension.size()) == extension)
        stem.remove_suffix(extension.size());
    const auto file = userFileStem(stem, kListNameField - 1, what);
    if (!file) return std::nullopt;
    return userListsFolder() / (*file + std::string(extension));
}

std::vector<fs::path> filesWithExtension(std::string_view extension) {
    std::vector<fs::path> files;
    std::error_code ec;
    for (fs::directory_iterator it(userListsFolder(), ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        std::error_code typeError;
        if (name.size() > extension.size() && name.ends_with(extension) && name[0] != '.' &&
            it->is_regular_file(typeError) && !it->is_symlink(typeError))
            files.push_back(it->path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

std::string listFileBytes(std::string_view nameLatin1, const SelectionCriteria& criteria, const SelectionList& list) {
    std::string bytes(kListHeaderSize + list.items.size() * kReferenceSize, '\0');
    std::memcpy(bytes.data() + 4, nameLatin1.data(), std::min(nameLatin1.size(), kListNameField - 1));
    putI32(bytes, 44, criteria.selectionYear);
    putI32(bytes, 48, criteria.selectionMonth);
    putI32(bytes, 52, criteria.selectionDay);
    putI32(bytes, 56, criteria.selectionHour);
    putI32(bytes, 60, criteria.selectionMinute);
    putI32(bytes, 64, static_cast<int32_t>(list.items.size()));
    if (!list.items.empty()) std::memcpy(bytes.data() + kListHeaderSize, list.items.data(), list.items.size() * kReferenceSize);
    return bytes;
}

bool readListFileBytes(std::string_view bytes, SelectionList& list, SelectionCriteria& criteria) {
    if (bytes.size() < kListHeaderSize) {
        showMessage("Can't read header.");
        return false;
    }
    int32_t count = getI32(bytes, 64);
    count = std::clamp(count, 0, std::max(0, list.capacity - 1));
    criteria.selectionYear = static_cast<int16_t>(getI32(bytes, 44));
    criteria.selectionMonth = static_cast<int16_t>(getI32(bytes, 48));
    criteria.selectionDay = static_cast<int16_t>(getI32(bytes, 52));
    criteria.selectionHour = static_cast<int16_t>(getI32(bytes, 56));
    criteria.selectionMinute = static_cast<int16_t>(getI32(bytes, 60));
    const std::size_t available = (bytes.size() - kListHeaderSize) / kReferenceSize;
    const std::size_t read = std::min<std::size_t>(available, static_cast<std::size_t>(count));
    list.items.assign(read, ObjectReference{});
    if (read) std::memcpy(list.items.data(), bytes.data() + kListHeaderSize, read * kReferenceSize);
    for (ObjectReference& item : list.items) item.name[sizeof item.name - 1] = '\0';
    if (read < static_cast<std::size_t>(count)) {
        showMessage("Can't read data.");
        return false;
    }
    return true;
}

bool saveUserList(std::string_view nameLatin1, const SelectionList& list, const SelectionCriteria& criteria) {
    if (list.items.empty()) {
        showMessage("Please select at least one object");
        return false;
    }
    const auto path = userListPath(nameLatin1, ".lst", "Invalid list name");
    if (!path) return false;
    std::error_code ec;
    fs::create_directories(userListsFolder(), ec);
    std::string_view name = nameLatin1;
    if (name.ends_with(".lst")) name.remove_suffix(4);
    // A list file whose header cannot be read is kept aside before it is replaced.
    const auto damaged = [](const fs::path& p) {
        const auto old = readRegularFile(p, kListHeaderSize);
        return !old || old->size() < kListHeaderSize;
    };
    if (!replaceFileContents(*path, listFileBytes(name, criteria, list), damaged)) {
        showMessage("Can't write header.", path->string());
        return false;
    }
    return true;
}

bool loadUserList(std::string_view nameLatin1, SelectionList& list, SelectionCriteria& criteria) {
    const auto path = userListPath(nameLatin1, ".lst", "Invalid list name");
    if (!path) return false;
    const auto bytes = readRegularFile(*path, kMaxListFile);
    if (!bytes) {
        showMessage("Can't open file.", path->string());
        return false;
    }
    return readListFileBytes(*bytes, list, criteria);
}

std::vector<ListPickerLine> listPicker() {
    std::vector<ListPickerLine> lines;
    for (const fs::path& path : filesWithExtension(".lst")) {
        const auto bytes = readRegularFile(path, kListHeaderSize);
        if (!bytes || bytes->size() < kListHeaderSize) continue;
        ListPickerLine line;
        line.file = path.filename().string();
        line.name = std::string(bytes->data() + 4, strnlen(bytes->data() + 4, kListNameField));
        line.count = getI32(*bytes, 64);
        char text[96];
        std::snprintf(text, sizeof text, "%s, %d", line.name.c_str(), line.count);
        line.line = text;
        lines.push_back(std::move(line));
    }
    return lines;
}

std::vector<std::string> memoPicker() {
    std::vector<std::string> names;
    for (const fs::path& path : filesWithExtension(".txt")) names.push_back(path.filename().string());
    return names;
}

bool memoPreview(std::string_view fileUtf8, std::string& out) {
    const auto latin1 = utf8ToLatin1(fileUtf8);
    const auto path = userListPath(latin1 ? *latin1 : std::string(fileUtf8), ".txt", "Invalid memo name");
    if (!path) return false;
    const auto bytes = readRegularFile(*path, kMemoPreviewSize);
    if (!bytes) {
        showMessage("Can't open file.", path->string());
        return false;
    }
    if (bytes->size() < kMemoPreviewSize) {
        showMessage("Can't read header.", path->string());
        return false;
    }
    out = "Beginning of memo data:\n" + std::string(bytes->c_str());
    return true;
}

int importMemoText(std::string_view text, const ObservingMoment& now, SelectionList& list,
                   SelectionCriteria& criteria) {
    if (text.size() > kMemoBuffer) text = text.substr(0, kMemoBuffer);
    text = text.substr(0, std::min(text.size(), text.find('\0')));
    list.items.clear();
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) return 0;
    criteria.selectionYear = static_cast<int16_t>(now.year);
    criteria.selectionMonth = static_cast<int16_t>(now.month);
    criteria.selectionDay = static_cast<int16_t>(now.day);
    criteria.selectionHour = static_cast<int16_t>(now.hour);
    criteria.selectionMinute = static_cast<int16_t>(now.minute);
    int loaded = 0;
    std::size_t pos = 0;
    while (pos < text.size()) {
        std::size_t end = text.find('\n', pos);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(pos, end - pos);
        const std::size_t lineStart = pos;
        pos = end + 1;
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) line.remove_suffix(1);
        while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
        if (line.empty()) continue;
        FoundObject found;
        bool ok;
        {
            MessageCapture quiet;  // the import reports the line itself
            ok = findObjectByName(line, found);
        }
        if (!ok) {
            showMessage("Failed to load data. Check line", text.substr(lineStart));
            return -1;
        }
        const ObjectReference reference = referenceOf(found);
        if (list.contains(reference)) {
            showMessage("Already loaded:", line);
            continue;
        }
        if (list.full()) break;
        list.items.push_back(reference);
        ++loaded;
    }
    return loaded;
}

int importMemo(std::string_view fileUtf8, const ObservingMoment& now, SelectionList& list, SelectionCriteria& criteria) {
    const auto latin1 = utf8ToLatin1(fileUtf8);
    const auto path = userListPath(latin1 ? *latin1 : std::string(fileUtf8), ".txt", "Invalid memo name");
    if (!path) return -1;
    const auto bytes = readRegularFile(*path, kMemoBuffer);
    if (!bytes) {
        showMessage("Can't open file.", path->string());
        return -1;
    }
    if (bytes->empty()) {
        showMessage("Can't read file.", path->string());
        return -1;
    }
    return importMemoText(*bytes, now, list, criteria);
}

std::string memoFileName(const ObservingMoment& now) {
    char name[64];
    std::snprintf(name, sizeof name, "%04d%02d%02d_noctumemo_%02d%02d.txt", now.year, now.month, now.day, now.hour,
                  now.minute);
    return name;
}

std::string memoTextOf(const SelectionList& list) {
    std::string text;
    for (const ObjectReference& item : list.items) text += designationOf(item) + "\n";
    return text;
}

bool exportMemo(std::string_view text, const ObservingMoment& now, fs::path* written) {
    std::error_code ec;
    fs::create_directories(userListsFolder(), ec);
    const fs::path path = userListsFolder() / memoFileName(now);
    if (::access(userListsFolder().c_str(), W_OK) != 0) {
        showMessage("Can't open memo:", path.string());
        return false;
    }
    if (!replaceFileContents(path, text)) {
        showMessage("Error while exporting memo.", path.string());
        return false;
    }
    if (written) *written = path;
    return true;
}

}  // namespace nocturnel
