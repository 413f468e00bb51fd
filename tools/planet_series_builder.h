#pragma once
// Builder step: the VSOP87B and ELP/MPP02 series of npm's astronomia package (MIT) turned
// into data/nocturnel_planets.ppc.
#include <filesystem>
#include <string>
#include <string_view>

#include "tools/catalog_builder.h"

namespace nocturnel {

// astronomia's data folder inside the sources folder (fetch-sources.sh layout).
std::filesystem::path astronomiaDataFolder(const std::filesystem::path& sourcesFolder);

// The bytes of one of astronomia's data modules ("const m = {...}; export default m;") as
// JSON text: the object literal with its bare keys quoted. Empty when no object is found.
std::string astronomiaModuleToJson(std::string_view module);

// Builds the planet series file bytes from astronomia's data folder; false with a reason.
bool buildPlanetSeriesBytes(const std::filesystem::path& dataFolder, std::string& bytes, std::string& error);

// The builder step: writes nocturnel_planets.ppc into stageFolder and adds it to the report.
// false after a message when a source is missing or malformed.
bool writePlanetSeriesFile(const std::filesystem::path& sourcesFolder, const std::filesystem::path& stageFolder,
                           BuildReport& report);

// The paragraph of SOURCES for this file.
std::string planetSeriesSourcesText(const std::filesystem::path& sourcesFolder);

}  // namespace nocturnel
