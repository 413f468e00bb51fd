#pragma once
// The catalogue builder: reads the public catalogues (d3-celestial, the Yale Bright Star
// Catalogue from xplanet, Stellarium's deep-sky catalogue, optionally Tycho-2) and writes every
// record file of data/, then reads them back and checks the rules the readers rely on.
#include <filesystem>
#include <string>
#include <vector>

namespace nocturnel {

struct BuildOptions {
    std::filesystem::path sourcesFolder;  // holds d3-celestial/, xplanet/, stellarium/ (fetch-sources.sh layout)
    std::filesystem::path outputFolder;   // the data/ folder to write
    std::filesystem::path tycho2File;     // tyc2.dat; empty: no Tycho files
};

struct BuiltFile {
    std::string name;
    size_t records = 0;
    size_t stars = 0;   // stars held (star files), 0 otherwise
};

struct BuildReport {
    std::vector<BuiltFile> files;
    std::vector<std::string> notFitted;  // one line per catalogue whose objects did not all fit the index
    std::vector<std::string> noSource;   // indexed catalogues the sources do not cover
};

// Builds everything; 0 on success, non-zero after showing a message (missing or malformed
// source, a file that cannot be written, a broken invariant).
int buildCatalogues(const BuildOptions& options, BuildReport* report = nullptr);

// The folder where fetch-sources.sh puts the sources by default, or /tmp/src layout when that is
// where they are; empty when neither holds them.
std::filesystem::path defaultSourcesFolder();

}  // namespace nocturnel
