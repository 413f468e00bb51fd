#include "catalog/name_index.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

#include "catalog/catalogues.h"
#include "catalog/record_file.h"

namespace nocturnel {
namespace {
struct GreekLetter {
    const char* utf8;
    const char* name;
    const char* abbreviation;  // as the catalogue writes it
};
constexpr std::array<GreekLetter, 24> kGreek = {{
    {"α", "alpha", "alf"}, {"β", "beta", "bet"},   {"γ", "gamma", "gam"},  {"δ", "delta", "del"},
    {"ε", "epsilon", "eps"}, {"ζ", "zeta", "zet"}, {"η", "eta", "eta"},    {"θ", "theta", "the"},
    {"ι", "iota", "iot"},  {"κ", "kappa", "kap"},  {"λ", "lambda", "lam"}, {"μ", "mu", "mu"},
    {"ν", "nu", "nu"},     {"ξ", "xi", "xi"},      {"ο", "omicron", "omi"}, {"π", "pi", "pi"},
    {"ρ", "rho", "rho"},   {"σ", "sigma", "sig"},  {"τ", "tau", "tau"},    {"υ", "upsilon", "ups"},
    {"φ", "phi", "phi"},   {"χ", "chi", "chi"},    {"ψ", "psi", "psi"},    {"ω", "omega", "ome"},
}};

std::string lower(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

bool allDigits(std::string_view s) {
    return std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// "alpha" / "alf" / "α" / "tet" with an optional digit suffix, to the catalogue's abbreviation.
std::optional<std::string> greekAbbreviation(std::string_view word) {
    const std::string w = lower(word);
    for (const GreekLetter& g : kGreek) {
        for (const char* form : {g.utf8, g.name, g.abbreviation}) {
            const std::size_t n = std::strlen(form);
            if (w.compare(0, n, form) == 0 && allDigits(std::string_view(w).substr(n)))
                return std::string(g.abbreviation) + w.substr(n);
        }
    }
    if (w.rfind("tet", 0) == 0 && allDigits(std::string_view(w).substr(3))) return "the" + w.substr(3);
    return std::nullopt;
}

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> out;
    std::size_t i = 0;
    while (i < text.size()) {
        while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
        std::size_t j = i;
        while (j < text.size() && text[j] != ' ' && text[j] != '\t') ++j;
        if (j > i) out.push_back(text.substr(i, j - i));
        i = j;
    }
    return out;
}

bool isConstellationAbbreviation(std::string_view w) {
    return w.size() == 3 && std::all_of(w.begin(), w.end(), [](char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; });
}

std::string foldPlain(std::string_view text) {
    std::string out;
    for (unsigned char c : text) {
        if (c >= 'A' && c <= 'Z') out += static_cast<char>(c - 'A' + 'a');
        else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c >= 0x80) out += static_cast<char>(c);
    }
    return out;
}

std::optional<std::vector<NameEntry>>& cache() {
    static std::optional<std::vector<NameEntry>> entries;
    return entries;
}

std::vector<NameEntry> readNameFile() {
    std::vector<NameEntry> out;
    DatabaseSlot slot;
    if (!openDatabase(slot, kNameFileType, kCreator, 0, kDataFolder, kNameFile) || recordSize(slot) < sizeof(NameRecord)) return out;
    const int count = recordCount(slot);
    out.reserve(count);
    for (int i = 0; i < count; ++i) {
        const uint8_t* bytes = fetchRecord(slot, static_cast<uint32_t>(i));
        if (!bytes) break;
        NameRecord r;
        std::memcpy(&r, bytes, sizeof r);
        r.name[sizeof r.name - 1] = '\0';
        NameEntry e{r.name, foldedName(r.name), r.catalog, r.number};
        if (!e.folded.empty()) out.push_back(std::move(e));
    }
    // Kept sorted whatever the file holds, so the searches below stay right.
    std::stable_sort(out.begin(), out.end(), [](const NameEntry& a, const NameEntry& b) { return a.folded < b.folded; });
    return out;
}
}  // namespace

std::string foldedName(std::string_view text) {
    const std::vector<std::string_view> w = words(text);
    if (w.size() == 2 && isConstellationAbbreviation(w[1])) {
        if (const auto greek = greekAbbreviation(w[0])) return *greek + lower(w[1]);
    }
    return foldPlain(text);
}

const std::vector<NameEntry>& nameIndex() {
    auto& entries = cache();
    if (!entries) entries = readNameFile();
    return *entries;
}

void resetNameIndex() { cache().reset(); }

std::vector<const NameEntry*> entriesNamed(std::string_view text) {
    std::vector<const NameEntry*> out;
    const std::string key = foldedName(text);
    if (key.empty()) return out;
    const auto& all = nameIndex();
    auto it = std::lower_bound(all.begin(), all.end(), key, [](const NameEntry& e, const std::string& k) { return e.folded < k; });
    for (; it != all.end() && it->folded == key; ++it) out.push_back(&*it);
    return out;
}

std::vector<const NameEntry*> entriesStartingWith(std::string_view prefix, std::size_t limit) {
    std::vector<const NameEntry*> out;
    std::vector<std::string> keys = {foldedName(prefix)};
    // A Greek letter typed in full ("alpha", "α") while the constellation is still being typed.
    const std::vector<std::string_view> w = words(prefix);
    if (!w.empty() && w.size() <= 2 && (w.size() == 1 || w[1].size() <= 3)) {
        if (const auto greek = greekAbbreviation(w[0])) keys.push_back(*greek + (w.size() == 2 ? lower(w[1]) : ""));
    }
    const auto& all = nameIndex();
    for (const std::string& key : keys) {
        if (key.empty()) continue;
        auto it = std::lower_bound(all.begin(), all.end(), key, [](const NameEntry& e, const std::string& k) { return e.folded < k; });
        for (; it != all.end() && it->folded.compare(0, key.size(), key) == 0 && out.size() < limit; ++it) {
            const bool seen = std::any_of(out.begin(), out.end(), [&](const NameEntry* e) { return e->name == it->name; });
            if (!seen) out.push_back(&*it);
        }
    }
    return out;
}

std::vector<const NameEntry*> entriesFor(int catalog, int32_t number) {
    std::vector<const NameEntry*> out;
    for (const NameEntry& e : nameIndex())
        if (e.catalog == catalog && e.number == number) out.push_back(&e);
    return out;
}

void sortNameRecords(std::vector<NameRecord>& records) {
    std::stable_sort(records.begin(), records.end(),
                     [](const NameRecord& a, const NameRecord& b) { return foldedName(a.name) < foldedName(b.name); });
}

}  // namespace nocturnel
