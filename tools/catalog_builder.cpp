#include "tools/catalog_builder.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>

#include "catalog/object_tables.h"
#include "settings/message.h"
#include "tools/build_checks.h"
#include "tools/card_motion_file.h"
#include "tools/constellation_lookup.h"
#include "tools/deep_star_card.h"
#include "tools/eyepiece_file.h"
#include "tools/milky_way_file.h"
#include "tools/name_file.h"
#include "tools/object_files.h"
#include "tools/observing_lists.h"
#include "tools/planet_series_builder.h"
#include "tools/record_io.h"
#include "tools/sources.h"
#include "tools/star_files.h"
#include "tools/star_motion_file.h"
#include "tools/star_packing.h"

namespace nocturnel {
namespace {
namespace fs = std::filesystem;

constexpr const char* kMissingSource = "Could not open catalogue source";
constexpr const char* kMalformedSource = "Malformed catalogue source";
constexpr const char* kWriteFailed = "Could not write catalogue file";
constexpr const char* kCheckFailed = "Catalogue check failed";

// The first of the candidate paths that exists (the fetch-sources.sh layout first, then the
// layout of a plain unpacked copy); the first candidate when none does (for the message).
fs::path locate(const fs::path& folder, std::initializer_list<const char*> candidates) {
    for (const char* c : candidates)
        if (fs::exists(folder / c)) return folder / c;
    return folder / *candidates.begin();
}

struct SourcePaths {
    fs::path d3;        // d3-celestial's data/ folder
    fs::path bsc;
    fs::path dsoCatalogue;
    fs::path dsoNames;
    fs::path stellariumStars;  // Stellarium's stars/default folder
};

SourcePaths sourcePaths(const fs::path& folder) {
    SourcePaths p;
    p.d3 = locate(folder, {"d3-celestial/data", "package/data"});
    p.bsc = locate(folder, {"xplanet/usr/share/xplanet/stars/BSC", "xp/usr/share/xplanet/stars/BSC"});
    p.dsoCatalogue = locate(folder, {"stellarium/usr/share/stellarium/nebulae/default/catalog.dat",
                                     "st/usr/share/stellarium/nebulae/default/catalog.dat"});
    p.dsoNames = locate(folder, {"stellarium/usr/share/stellarium/nebulae/default/names.dat",
                                 "st/usr/share/stellarium/nebulae/default/names.dat"});
    p.stellariumStars = locate(folder, {"stellarium/usr/share/stellarium/stars/default", "st/usr/share/stellarium/stars/default"});
    return p;
}

bool readSource(const fs::path& path, std::string& bytes) {
    if (readWholeFile(path, bytes)) return true;
    showMessage(kMissingSource, path.string());
    return false;
}

bool malformed(const fs::path& path, const std::string& error) {
    showMessage(kMalformedSource, path.filename().string() + ": " + error);
    return false;
}

// Parses one source file with a parser of the form bool(std::string_view, Out&, std::string&).
template <typename Out, typename Parser>
bool loadSource(const fs::path& path, Out& out, Parser parse) {
    std::string bytes, error;
    if (!readSource(path, bytes)) return false;
    return parse(bytes, out, error) || malformed(path, error);
}

class FileWriter {
public:
    FileWriter(const fs::path& folder, BuildReport& report) : folder_(folder), report_(report) {}
    template <typename Record>
    bool write(const std::string& name, uint32_t version, const std::vector<Record>& records) {
        if (records.size() > 65535) {
            showMessage(kCheckFailed, name + ": more than 65,535 records");
            return false;
        }
        if (!writeWholeFile(folder_ / name, recordFileBytes<Record>(version, records))) {
            showMessage(kWriteFailed, (folder_ / name).string());
            return false;
        }
        report_.files.push_back({name, records.size(), 0});
        return true;
    }
    // A file already laid out, header included, of `records` records.
    bool writeLaidOut(const std::string& name, const std::string& bytes, size_t records) {
        if (!writeWholeFile(folder_ / name, bytes)) {
            showMessage(kWriteFailed, (folder_ / name).string());
            return false;
        }
        report_.files.push_back({name, records, 0});
        return true;
    }
    bool writeBlocks(const std::string& name, const std::vector<StarEntry>& entries, int perBlock) {
        const size_t records = entries.size() / perBlock;
        if (records > 65535) {
            showMessage(kCheckFailed, name + ": more than 65,535 records");
            return false;
        }
        DatabaseHeader header{1, 0, static_cast<uint32_t>(records), static_cast<uint32_t>(perBlock * sizeof(StarEntry))};
        std::string bytes(sizeof header + entries.size() * sizeof(StarEntry), '\0');
        std::memcpy(bytes.data(), &header, sizeof header);
        std::memcpy(bytes.data() + sizeof header, entries.data(), entries.size() * sizeof(StarEntry));
        if (!writeWholeFile(folder_ / name, bytes)) {
            showMessage(kWriteFailed, (folder_ / name).string());
            return false;
        }
        size_t stars = 0;
        for (const StarEntry& e : entries) stars += e.number != 0;
        report_.files.push_back({name, records, stars});
        return true;
    }

private:
    fs::path folder_;
    BuildReport& report_;
};

bool check(bool ok, const std::string& error) {
    if (!ok) showMessage(kCheckFailed, error);
    return ok;
}

// Constellation records, figure segments and boundary vertices.
bool writeConstellations(FileWriter& writer, const std::vector<ConstellationSource>& constellations) {
    std::vector<ConstellationRecord> records;
    std::vector<ConstellationSegment> segments;
    std::vector<ConstellationBoundaryPoint> bounds;
    for (const ConstellationSource& c : constellations) {
        ConstellationRecord r{};
        std::strncpy(r.abbreviation, c.abbreviation.c_str(), sizeof r.abbreviation - 1);
        std::strncpy(r.name, c.name.c_str(), sizeof r.name - 1);
        r.labelRaHours = static_cast<float>(c.labelRaDeg / 15.0);
        r.labelDecDeg = static_cast<float>(c.labelDecDeg);
        r.firstSegment = static_cast<uint16_t>(segments.size());
        for (const auto& line : c.lines)
            for (size_t i = 1; i < line.size(); ++i)
                segments.push_back({static_cast<float>(line[i - 1].first / 15.0), static_cast<float>(line[i - 1].second),
                                    static_cast<float>(line[i].first / 15.0), static_cast<float>(line[i].second)});
        r.segmentCount = static_cast<uint16_t>(segments.size() - r.firstSegment);
        // Boundaries: each ring in turn, closed (its first vertex repeated at its end); Serpens has two.
        r.firstBoundary = static_cast<uint16_t>(bounds.size());
        for (const auto& ring : c.bounds) {
            for (const auto& [ra, dec] : ring) bounds.push_back({static_cast<float>(ra / 15.0), static_cast<float>(dec)});
            if (ring.front() != ring.back())
                bounds.push_back({static_cast<float>(ring.front().first / 15.0), static_cast<float>(ring.front().second)});
        }
        r.boundaryCount = static_cast<uint16_t>(bounds.size() - r.firstBoundary);
        records.push_back(r);
    }
    return writer.write("nocturnel_constellation.ppc", 1, records) &&
           writer.write("nocturnel_constellation_lines.ppc", 1, segments) &&
           writer.write("nocturnel_constellation_bounds.ppc", 1, bounds);
}

// Tycho-2: the brightest 390,000 and all primary components, with the region index.
bool writeTycho(FileWriter& writer, const fs::path& tyc2) {
    std::ifstream in(tyc2, std::ios::binary);
    if (!in) {
        showMessage(kMissingSource, tyc2.string());
        return false;
    }
    std::vector<StarToPack> stars;
    std::unordered_map<int32_t, ProperMotion> motions;
    std::string line, error;
    size_t lineNumber = 0;
    while (std::getline(in, line)) {
        ++lineNumber;
        if (line.empty() || line == "\r") continue;
        TychoStar t;
        bool primary = false;
        if (!parseTycho2Line(line, t, primary, error)) return malformed(tyc2, "line " + std::to_string(lineNumber) + ": " + error);
        if (!primary) continue;
        stars.push_back({t.region * 100000 + t.number, t.raDeg / 15.0, t.decDeg, t.vMag, t.bv, t.hasBv});
        motions.emplace(stars.back().number, ProperMotion{t.pmRaCosDecMasPerYear, t.pmDecMasPerYear});
    }
    if (stars.empty()) return malformed(tyc2, "no stars");
    std::stable_sort(stars.begin(), stars.end(), [](const StarToPack& a, const StarToPack& b) {
        return a.mag != b.mag ? a.mag < b.mag : a.number < b.number;
    });
    const std::vector<StarToPack> bright(stars.begin(), stars.begin() + std::min<size_t>(stars.size(), 390000));
    const int perBright = starsPerBlockFor(bright.size()), perAll = starsPerBlockFor(stars.size());
    if (perBright == 0 || perAll == 0) {
        showMessage(kCheckFailed, "Tycho-2: " + std::to_string(stars.size()) + " stars fit neither 42 nor 80 stars per record");
        return false;
    }
    const auto brightBlocks = packStarBlocks(bright, perBright), allBlocks = packStarBlocks(stars, perAll);
    return writer.writeBlocks("nocturnel_tycho_390k.ppc", brightBlocks, perBright) &&
           writer.writeBlocks("nocturnel_tycho_2500k.ppc", allBlocks, perAll) &&
           writer.writeLaidOut(cardMotionFileName("nocturnel_tycho_390k.ppc"),
                               cardMotionFileBytes(cardMotionEntries(brightBlocks, motions), perBright),
                               brightBlocks.size() / perBright) &&
           writer.writeLaidOut(cardMotionFileName("nocturnel_tycho_2500k.ppc"),
                               cardMotionFileBytes(cardMotionEntries(allBlocks, motions), perAll),
                               allBlocks.size() / perAll) &&
           writer.write("nocturnel_tycho_idx.ppc", 1, buildTychoRegionIndex(stars));
}

// The Milky Way's outline from d3-celestial's mw.json (skipped when the file is absent).
bool writeMilkyWay(FileWriter& writer, const fs::path& d3Data) {
    std::string json, error;
    if (!readWholeFile(d3Data / "mw.json", json)) return true;
    std::vector<MilkyWayPoint> points;
    if (!buildMilkyWay(json, points, error)) return malformed(d3Data / "mw.json", error);
    return writer.write(kMilkyWayFile, 1, points);
}

// The "Tycho 390K" card from Stellarium's star catalogue (without a Tycho-2 file); skipped
// when the sources lack the star files.
bool writeDeepStarCard(FileWriter& writer, const fs::path& starsFolder, const StarSources& sources,
                       bool& written) {
    written = false;
    const std::vector<fs::path> files = stellariumStarFiles(starsFolder);
    if (files.empty()) return true;
    DeepStarCard card;
    std::string error;
    if (!buildDeepStarCard(files, kDeepStarCardStars, card, error, referencePlacesOf(sources)))
        return malformed(starsFolder, error);
    written = true;
    return writer.writeBlocks("nocturnel_tycho_390k.ppc", card.blocks, card.perBlock) &&
           writer.writeLaidOut(cardMotionFileName("nocturnel_tycho_390k.ppc"),
                               cardMotionFileBytes(card.motions, card.perBlock),
                               card.blocks.size() / static_cast<size_t>(card.perBlock));
}

// Full-precision places and proper motions of the Hipparcos stars (nocturnel_star_motion.ppc);
// skipped when the sources lack Stellarium's star files.
bool writeStarMotion(FileWriter& writer, const fs::path& starsFolder, const StarSources& sources, bool& written) {
    written = false;
    std::vector<fs::path> files = stellariumStarFiles(starsFolder);
    if (files.empty() || !fs::exists(starsFolder / "hip_pm.dat")) return true;
    std::vector<StarMotionRecord> records;
    std::string error;
    if (!buildStarMotionRecords(files, hrByHipOf(sources), records, error, referencePlacesOf(sources)))
        return malformed(starsFolder, error);
    written = true;
    return writer.write(kStarMotionFile, kStarMotionFileVersion, records);
}

// The Herschel 400 and best-of-the-NGC memberships (nocturnel_list_members.ppc) and the
// meteor-shower table (nocturnel_meteor_showers.ppc) from the tables compiled in. A listed NGC
// number the deep-sky catalogue lacks is left out and reported, the build goes on.
bool writeObservingLists(FileWriter& writer, const ObjectFiles& objectFiles, BuildReport& report) {
    struct List {
        int catalog;
        const char* name;
        std::string_view table;
    };
    const List lists[] = {{kCatalogHerschel, "Herschel 400", herschel400Table()},
                          {kCatalogBestNGC, "SAC best of the NGC", sacBestNgcTable()}};
    std::vector<ListMemberRecord> members;
    std::map<int32_t, int32_t> catalogNumberOf;
    std::string error;
    if (!parseNgcSameObjects(ngcSameObjectTable(), catalogNumberOf, error)) return check(false, "NGC identity table: " + error);
    for (const List& list : lists) {
        std::vector<int32_t> numbers, missing;
        if (!parseNgcList(list.table, numbers, error)) return check(false, std::string(list.name) + " table: " + error);
        const std::vector<ListMemberRecord> found = listMembers(list.catalog, numbers, objectFiles.index, catalogNumberOf, missing);
        members.insert(members.end(), found.begin(), found.end());
        if (!missing.empty()) {
            std::string line = std::string(list.name) + ": " + std::to_string(missing.size()) + " of " +
                               std::to_string(numbers.size()) + " NGC numbers not in the deep-sky catalogue:";
            for (size_t i = 0; i < missing.size() && i < 12; ++i) line += " " + std::to_string(missing[i]);
            if (missing.size() > 12) line += " ...";
            report.notFitted.push_back(line);
        }
    }
    std::vector<MeteorShowerRecord> showers;
    if (!parseMeteorShowerTable(meteorShowerTable(), showers, error)) return check(false, "meteor-shower table: " + error);
    return writer.write(kListMemberFile, kListMemberFileVersion, members) &&
           writer.write(kMeteorShowerFile, kMeteorShowerFileVersion, showers);
}

// The SOURCES section of the lists: each table's own header.
std::string observingListsSourcesText() {
    std::string text = "\nObserving lists and the meteor-shower table, kept as plain tables in the program's sources\n"
                       "(tools/data/herschel400.txt, sac_best_ngc.txt, ngc_same_objects.txt, meteor_showers.txt):\n";
    for (std::string_view table : {herschel400Table(), sacBestNgcTable(), ngcSameObjectTable(), meteorShowerTable()}) {
        std::string header = tableHeader(table);
        size_t at = 0;
        while ((at = header.find('\n', at)) != std::string::npos) header.replace(at, 1, "\n    "), at += 5;
        text += "  " + header + "\n";
    }
    text += "  -> nocturnel_list_members.ppc (Herschel 400 and best-of-the-NGC members, by their NGC numbers\n"
            "     looked up in the deep-sky catalogue), nocturnel_meteor_showers.ppc.\n";
    return text;
}

// Versions as the packages state them: d3-celestial's package.json, the first line of xplanet's
// Debian changelog ("xplanet (1.3.1-3) unstable; ..."). "unknown version" when absent.
std::string d3Version(const fs::path& d3Data) {
    std::string text;
    if (!readWholeFile(d3Data.parent_path() / "package.json", text)) return "unknown version";
    const auto doc = nlohmann::json::parse(text, nullptr, false);
    return doc.is_object() && doc.contains("version") && doc["version"].is_string() ? doc["version"].get<std::string>()
                                                                                     : "unknown version";
}

std::string xplanetVersion(const fs::path& bsc) {
    std::string compressed, text, error;
    const fs::path changelog = bsc.parent_path().parent_path().parent_path() / "doc/xplanet/changelog.Debian.gz";
    if (!readWholeFile(changelog, compressed) || !gunzip(compressed, text, error)) return "unknown version";
    const size_t open = text.find('('), close = text.find(')');
    return open < close && close < text.find('\n') ? text.substr(open + 1, close - open - 1) : "unknown version";
}

std::string sourcesText(const SourcePaths& paths, const StellariumCatalogue& dso, bool tycho, bool deepStars) {
    std::string text =
        "Sources of the catalogue files in this folder (written by `nocturnel catalog build`).\n\n"
        "d3-celestial " + d3Version(paths.d3) + " (npm), BSD 3-Clause licence, (c) Olaf Frohn:\n"
        "  data/stars.14.json (Hipparcos: positions, V, B-V), data/starnames.json (names, Bayer,\n"
        "  Flamsteed, HD, constellation), data/constellations.json, constellations.lines.json,\n"
        "  constellations.bounds.json, mw.json (the Milky Way's outline).\n"
        "  -> nocturnel_default_stars.ppc, nocturnel_hip_*.ppc, nocturnel_hip_110k_idx.ppc,\n"
        "     nocturnel_brightstar.ppc, nocturnel_constellation*.ppc, nocturnel_milkyway.ppc; colours of\n"
        "     the HR stars.\n\n"
        "Yale Bright Star Catalogue, 5th revised edition (Hoffleit & Warren 1991), as shipped in the\n"
        "Debian package xplanet " + xplanetVersion(paths.bsc) + " (usr/share/xplanet/stars/BSC; GPL-2+ package, catalogue data public\n"
        "through CDS/VizieR V/50).\n"
        "  -> nocturnel_hr.ppc, nocturnel_hr_idx.ppc; HR numbers of the default and bright stars.\n\n"
        "Stellarium deep-sky catalogue " + dso.version + " (" + dso.edition + "), Debian package stellarium-data\n"
        "(usr/share/stellarium/nebulae/default/catalog.dat and names.dat), GPL-2+.\n"
        "  -> nocturnel_obj_18k.ppc, nocturnel_obj_18k_idx.ppc, nocturnel_obj_18k_desc.ppc,\n"
        "     nocturnel_obj_1k.ppc, nocturnel_obj_1k_idx.ppc.\n\n"
        "Eyepieces: generic eyepiece designs, no external source (Plossl 52 degrees, the 40 mm 43;\n"
        "wide fields of 68 and 82 degrees; common focal lengths).\n"
        "  -> nocturnel_eyepiece.ppc.\n";
    if (deepStars)
        text += "\nStellarium star catalogue, Debian package stellarium-data (usr/share/stellarium/stars/default/\n"
                "stars_0 .. stars_3 *.cat: Hipparcos, Tycho-2 and NOMAD stars to about magnitude 10.5), GPL-2+.\n"
                "  -> nocturnel_tycho_390k.ppc (all of them, about 600,000; no Tycho numbers, see the README)\n"
                "     and its proper motions nocturnel_tycho_390k_pm.ppc;\n"
                "     nocturnel_star_motion.ppc (the Hipparcos stars' full-precision J2000 places from the\n"
                "     records of stars_0 .. stars_2, their proper motions from stars/default/hip_pm.dat).\n";
    if (tycho)
        text += "\nTycho-2 main catalogue (Hog et al. 2000, CDS I/259, tyc2.dat), supplied by the user.\n"
                "  -> nocturnel_tycho_390k.ppc, nocturnel_tycho_2500k.ppc, nocturnel_tycho_idx.ppc and the proper\n"
                "     motions nocturnel_tycho_390k_pm.ppc, nocturnel_tycho_2500k_pm.ppc.\n";
    return text;
}

bool checkAll(const fs::path& out, uint32_t objectCount, bool tycho, bool deepStars, bool starMotion) {
    std::string error;
    const StarFileRules plain{42, 0, 0};
    return check(checkDefaultStars(out / "nocturnel_default_stars.ppc", error), error) &&
           check(checkStarBlockFile(out / "nocturnel_hr.ppc", {42, kHrSlotsMin, kHrSlotsMax}, error), error) &&
           check(checkNumberIndex(out / "nocturnel_hr_idx.ppc", out / "nocturnel_hr.ppc", error), error) &&
           check(checkStarBlockFile(out / "nocturnel_hip_16k.ppc", plain, error), error) &&
           check(checkStarBlockFile(out / "nocturnel_hip_32k.ppc", plain, error), error) &&
           check(checkStarBlockFile(out / "nocturnel_hip_64k.ppc", plain, error), error) &&
           check(checkStarBlockFile(out / "nocturnel_hip_110k.ppc", {42, kHipSlotsMin, kHipSlotsMax}, error), error) &&
           check(checkNumberIndex(out / "nocturnel_hip_110k_idx.ppc", out / "nocturnel_hip_110k.ppc", error), error) &&
           check(checkBrightStarNames(out / "nocturnel_brightstar.ppc", error), error) &&
           check(checkObjectFiles(out / "nocturnel_obj_18k.ppc", out / "nocturnel_obj_18k_idx.ppc", true, error), error) &&
           check(checkDescriptions(out / "nocturnel_obj_18k_desc.ppc", out / "nocturnel_obj_18k.ppc", error), error) &&
           check(checkObjectFiles(out / "nocturnel_obj_1k.ppc", out / "nocturnel_obj_1k_idx.ppc", false, error), error) &&
           check(checkConstellations(out, error), error) &&
           check(checkEyepieceFile(out / "nocturnel_eyepiece.ppc", error), error) &&
           check(checkListMemberFile(out / kListMemberFile, objectCount, error), error) &&
           check(checkMeteorShowerFile(out / kMeteorShowerFile, error), error) &&
           (!deepStars || check(checkStarBlockFile(out / "nocturnel_tycho_390k.ppc", {0, 0, 0}, error), error)) &&
           (!(deepStars || tycho) ||
            check(checkCardMotionFile(out / "nocturnel_tycho_390k.ppc",
                                      out / cardMotionFileName("nocturnel_tycho_390k.ppc"), error),
                  error)) &&
           (!starMotion || check(checkStarMotionFile(out / kStarMotionFile, error), error)) &&
           (!tycho || (check(checkStarBlockFile(out / "nocturnel_tycho_390k.ppc", {0, 0, 0}, error), error) &&
                       check(checkStarBlockFile(out / "nocturnel_tycho_2500k.ppc", {0, 0, 0}, error), error) &&
                       check(checkTychoIndex(out / "nocturnel_tycho_idx.ppc", out / "nocturnel_tycho_2500k.ppc", error), error)));
}
}  // namespace

fs::path defaultSourcesFolder() {
    std::vector<fs::path> candidates;
    if (const char* cache = std::getenv("XDG_CACHE_HOME"); cache && *cache) candidates.push_back(fs::path(cache) / "nocturnel/sources");
    if (const char* home = std::getenv("HOME"); home && *home) candidates.push_back(fs::path(home) / ".cache/nocturnel/sources");
    candidates.push_back("/tmp/src");
    for (const fs::path& c : candidates) {
        const SourcePaths p = sourcePaths(c);
        std::error_code ec;
        if (fs::exists(p.d3 / "stars.14.json", ec) && fs::exists(p.bsc, ec) && fs::exists(p.dsoCatalogue, ec)) return c;
    }
    return {};
}

int buildCatalogues(const BuildOptions& options, BuildReport* reportOut) {
    BuildReport localReport;
    BuildReport& report = reportOut ? *reportOut : localReport;
    report = BuildReport{};
    const SourcePaths paths = sourcePaths(options.sourcesFolder);

    StarSources stars;
    std::string namesJson, linesJson, boundsJson;
    if (!loadSource(paths.d3 / "stars.14.json", stars.hipparcos, parseHipparcosStars) ||
        !loadSource(paths.d3 / "starnames.json", stars.names, parseStarNames) ||
        !loadSource(paths.bsc, stars.brightStars, parseBrightStarCatalogue) ||
        !readSource(paths.d3 / "constellations.json", namesJson) ||
        !readSource(paths.d3 / "constellations.lines.json", linesJson) ||
        !readSource(paths.d3 / "constellations.bounds.json", boundsJson))
        return 1;
    std::string error;
    if (!parseConstellations(namesJson, linesJson, boundsJson, stars.constellations, error)) {
        malformed(paths.d3 / "constellations.json", error);
        return 1;
    }

    std::string compressed, raw;
    StellariumCatalogue dso;
    std::map<std::string, std::vector<std::string>> dsoNames;
    if (!readSource(paths.dsoCatalogue, compressed)) return 1;
    if (!gunzip(compressed, raw, error) || !parseStellariumCatalogue(raw, dso, error)) {
        malformed(paths.dsoCatalogue, error);
        return 1;
    }
    compressed.clear();
    raw.clear();
    if (!loadSource(paths.dsoNames, dsoNames, parseStellariumNames)) return 1;

    const ConstellationFinder finder(stars.constellations);
    StarFiles starFiles;
    if (!buildStarFiles(stars, finder, starFiles, error)) {
        malformed(paths.d3 / "stars.14.json", error);
        return 1;
    }
    ObjectFiles objectFiles;
    if (!buildObjectFiles(dso, dsoNames, finder, objectFiles, error)) {
        malformed(paths.dsoCatalogue, error);
        return 1;
    }

    // Everything is written into a staging folder inside the output folder and checked there;
    // only a complete, checked set replaces the files in use, so a failed build leaves an
    // existing data/ as it was.
    std::error_code ec;
    const fs::path stage = options.outputFolder / ".catalog-build";
    fs::create_directories(options.outputFolder, ec);
    fs::remove_all(stage, ec);
    fs::create_directories(stage, ec);
    if (!fs::is_directory(stage, ec)) {
        showMessage(kWriteFailed, stage.string());
        return 1;
    }
    struct StageCleaner {
        fs::path folder;
        ~StageCleaner() {
            std::error_code ignored;
            fs::remove_all(folder, ignored);
        }
    } cleaner{stage};
    FileWriter writer(stage, report);
    bool deepStars = false, starMotion = false;
    const bool written =
        writer.write("nocturnel_default_stars.ppc", 1, starFiles.defaultStars) &&
        writer.writeBlocks("nocturnel_hr.ppc", starFiles.hr, 42) && writer.write("nocturnel_hr_idx.ppc", 1, starFiles.hrIndex) &&
        writer.writeBlocks("nocturnel_hip_16k.ppc", starFiles.hip16k, 42) &&
        writer.writeBlocks("nocturnel_hip_32k.ppc", starFiles.hip32k, 42) &&
        writer.writeBlocks("nocturnel_hip_64k.ppc", starFiles.hip64k, 42) &&
        writer.writeBlocks("nocturnel_hip_110k.ppc", starFiles.hip110k, 42) &&
        writer.write("nocturnel_hip_110k_idx.ppc", 1, starFiles.hip110kIndex) &&
        writer.write("nocturnel_brightstar.ppc", 1, starFiles.brightStarNames) &&
        writer.write("nocturnel_obj_18k.ppc", kObjectFileVersion, objectFiles.objects) &&
        writer.write("nocturnel_obj_18k_idx.ppc", 1, objectFiles.index) &&
        writer.write("nocturnel_obj_18k_desc.ppc", 1, objectFiles.descriptions) &&
        writer.write("nocturnel_obj_1k.ppc", kObjectFileVersion, objectFiles.smallObjects) &&
        writer.write("nocturnel_obj_1k_idx.ppc", 1, objectFiles.smallIndex) &&
        writeConstellations(writer, stars.constellations) &&
        writer.write("nocturnel_eyepiece.ppc", 1, eyepieceRecords()) && writeMilkyWay(writer, paths.d3) &&
        writeObservingLists(writer, objectFiles, report) &&
        writer.write(kNameFile, kNameFileVersion, buildNameRecords(objectFiles, stars.names)) &&
        writePlanetSeriesFile(options.sourcesFolder, stage, report) &&
        (options.tycho2File.empty() ? writeDeepStarCard(writer, paths.stellariumStars, stars, deepStars)
                                    : writeTycho(writer, options.tycho2File)) &&
        writeStarMotion(writer, paths.stellariumStars, stars, starMotion);
    if (!written) return 1;
    if (!writeWholeFile(stage / "SOURCES", sourcesText(paths, dso, !options.tycho2File.empty(), deepStars) +
                                                  observingListsSourcesText() + planetSeriesSourcesText(options.sourcesFolder))) {
        showMessage(kWriteFailed, (stage / "SOURCES").string());
        return 1;
    }
    if (!checkAll(stage, static_cast<uint32_t>(objectFiles.objects.size()), !options.tycho2File.empty(), deepStars, starMotion))
        return 1;
    std::vector<std::string> names;
    for (const BuiltFile& f : report.files) names.push_back(f.name);
    names.push_back("SOURCES");  // last: its presence tells a complete set
    for (const std::string& name : names) {
        fs::rename(stage / name, options.outputFolder / name, ec);
        if (ec) {
            showMessage(kWriteFailed, (options.outputFolder / name).string());
            return 1;
        }
    }

    for (const CatalogueFill& f : objectFiles.fills) {
        const std::string name = kCatalogDefinitions[f.catalog].name;
        if (f.available == 0) {
            report.noSource.push_back(name);
        } else if (!f.leftOut.empty()) {
            std::string line = name + ": " + std::to_string(f.available) + " objects, " + std::to_string(f.slots) +
                               " slots, left out " + std::to_string(f.leftOut.size()) + " (no magnitude or faintest):";
            for (size_t i = 0; i < f.leftOut.size() && i < 12; ++i) line += " " + std::to_string(f.leftOut[i]);
            if (f.leftOut.size() > 12) line += " ...";
            report.notFitted.push_back(line);
        }
    }
    return 0;
}

}  // namespace nocturnel
