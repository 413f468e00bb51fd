#include "tools/name_file.h"

#include <cstring>
#include <string>

#include "catalog/object_tables.h"
#include "tools/star_files.h"

namespace nocturnel {
namespace {
constexpr const char* kMorphologyMark = "Morphology ";

void add(std::vector<NameRecord>& out, const std::string& name, int catalog, int32_t number) {
    if (name.empty() || name.size() >= sizeof(NameRecord::name)) return;
    for (const NameRecord& r : out)
        if (r.catalog == catalog && r.number == number && name == r.name) return;
    NameRecord r{};
    std::memcpy(r.name, name.data(), name.size());
    r.catalog = catalog;
    r.number = number;
    out.push_back(r);
}

// The names of a description text ("Orion Nebula; Great Orion Nebula; Morphology ..."). A
// text that filled its field may end in a cut name, which is left out.
std::vector<std::string> descriptionNames(const ObjectDescriptionRecord& d) {
    std::vector<std::string> names;
    const std::size_t length = strnlen(d.text, sizeof d.text);
    const std::string text(d.text, length);
    const bool full = length >= sizeof d.text - 1;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find("; ", start);
        const bool last = end == std::string::npos;
        if (last) end = text.size();
        const std::string piece = text.substr(start, end - start);
        if (piece.rfind(kMorphologyMark, 0) == 0) break;
        if (!(last && full)) names.push_back(piece);
        start = end + 2;
    }
    return names;
}
}  // namespace

std::vector<NameRecord> buildNameRecords(const ObjectFiles& objects, const std::map<int32_t, StarNames>& starNames) {
    std::vector<NameRecord> out;
    for (const ObjectRecord& o : objects.objects) {
        if (o.description < 0 || static_cast<std::size_t>(o.description) >= objects.descriptions.size()) continue;
        for (const std::string& name : descriptionNames(objects.descriptions[o.description]))
            add(out, name, o.catalog, o.number);
    }
    for (const auto& [hip, n] : starNames) {
        add(out, n.name, kCatalogHipparcos, hip);
        if (n.constellation.empty()) continue;
        add(out, bayerDesignation(n.bayer, n.constellation), kCatalogHipparcos, hip);
        if (!n.flamsteed.empty()) add(out, n.flamsteed + " " + n.constellation, kCatalogHipparcos, hip);
    }
    sortNameRecords(out);
    return out;
}

}  // namespace nocturnel
