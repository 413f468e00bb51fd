// nocturnel catalog build [--sources DIR] [--tycho2 FILE] [--out DIR]: writes every record file
// of data/ from the public catalogues and prints what it wrote.
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "settings/message.h"
#include "settings/program_folder.h"
#include "shell/app.h"
#include "shell/commands.h"
#include "tools/catalog_builder.h"

namespace nocturnel {
namespace {
struct CatalogBuildArguments {
    std::string sources;
    std::string tycho2;
    std::string out;
};

void printReport(const BuildOptions& options, const BuildReport& report) {
    if (globalOptions().json) {
        nlohmann::json files = nlohmann::json::array();
        for (const BuiltFile& f : report.files) {
            nlohmann::json entry{{"file", f.name}, {"records", f.records}};
            if (f.stars) entry["stars"] = f.stars;
            files.push_back(entry);
        }
        const nlohmann::json out{{"sources", options.sourcesFolder.string()},
                                 {"out", options.outputFolder.string()},
                                 {"files", files},
                                 {"notFitted", report.notFitted},
                                 {"noSource", report.noSource}};
        std::cout << out.dump(2) << "\n";
        return;
    }
    std::cout << "Catalogues written to " << options.outputFolder.string() << " from " << options.sourcesFolder.string() << "\n";
    for (const BuiltFile& f : report.files) {
        std::cout << "  " << f.name << ": " << f.records << " records";
        if (f.stars) std::cout << ", " << f.stars << " stars";
        std::cout << "\n";
    }
    std::cout << "  SOURCES\n";
    if (!report.notFitted.empty()) {
        std::cout << "Objects that did not fit the object index:\n";
        for (const std::string& line : report.notFitted) std::cout << "  " << line << "\n";
    }
    if (!report.noSource.empty()) {
        std::cout << "Indexed catalogues without a source (their stretches hold filler records):\n ";
        for (const std::string& name : report.noSource) std::cout << " " << name;
        std::cout << "\n";
    }
}

void runCatalogBuild(const CatalogBuildArguments& args) {
    if (!startUp()) {
        setExitCode(1);
        return;
    }
    BuildOptions options;
    options.sourcesFolder = args.sources.empty() ? defaultSourcesFolder() : std::filesystem::path(args.sources);
    if (options.sourcesFolder.empty()) {
        showMessage("Could not open catalogue source",
                    "No --sources folder given and none in ~/.cache/nocturnel/sources (run scripts/fetch-sources.sh)");
        setExitCode(1);
        return;
    }
    options.outputFolder = args.out.empty() ? programFolder() / "data" : std::filesystem::path(args.out);
    options.tycho2File = args.tycho2;
    BuildReport report;
    if (buildCatalogues(options, &report) != 0) {
        setExitCode(1);
        return;
    }
    printReport(options, report);
}
}  // namespace

void registerCatalogCommand(CLI::App& app) {
    CLI::App* catalog = app.add_subcommand("catalog", "Catalogue files of data/");
    catalog->require_subcommand(1);
    CLI::App* build = catalog->add_subcommand("build", "Build every data/ file from the public catalogues");
    auto args = std::make_shared<CatalogBuildArguments>();
    build->add_option("--sources", args->sources, "Folder of the fetched sources (default ~/.cache/nocturnel/sources)");
    build->add_option("--tycho2", args->tycho2, "Tycho-2 main catalogue tyc2.dat: also writes the Tycho files");
    build->add_option("--out", args->out, "Output folder (default: the program folder's data/)");
    build->callback([args] { runCatalogBuild(*args); });
}

}  // namespace nocturnel
