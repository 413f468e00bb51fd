#pragma once
// Finding any catalogued object by its typed name: a catalogue designation ("NGC 224", "M 31",
// "m42", "NGC7000", "HIP 91262", "HR 7001", "TYC 4662-1234-1", "Sh2-155"), a common name
// ("Orion Nebula", "Betelgeuse") or a Bayer or Flamsteed designation ("alpha Lyr", "α Lyr",
// "61 Cyg") from the name file, or the name of a solar-system body through the hook the
// solar-system code sets. Deep-sky objects come from the object file, stars from the optional
// star catalogues (HIP from nocturnel_hip_110k.ppc, HR from nocturnel_hr.ppc, Tycho from the
// Tycho files), named after the default star of the same number where there is one.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nocturnel {

struct FoundObject {
    std::string name;         // name text: "M31, NGC224", "Vega, HIP91262", "TYC4662-1234-1"
    int catalogCode = -1;     // row of the catalogue table
    int32_t number = 0;       // number in that catalogue (Tycho: region * 100,000 + number)
    int typeCode = 0;         // row of the object-type table
    double raHours = 0;       // J2000 equinox; a star with a proper motion at the observing moment
    double decDeg = 0;        // (catalog/star_motion.h), every other object at its catalogue place
    double mag = 0;           // visual magnitude
    bool magKnown = false;    // deep-sky objects store 0 for an unknown magnitude
    double majorArcmin = 0;   // apparent size, 0 unknown
    double minorArcmin = 0;
    int constellation = -1;   // record of nocturnel_constellation.ppc, -1 unknown
    std::string commonName;   // the name typed or the first common name, when there is one
    int objectRecord = -1;    // record of the object file (deep-sky objects), -1 otherwise
};

// Solar-system bodies ("Mars", "Moon") are found by the solar-system code: it sets these hooks
// at start-up. The finder asks it after the catalogue designations and before the name file;
// the suggestions ask it first. A false answer for a body's own name ends the search: the
// solar-system code has shown why (no planet file, Pluto outside 1885-2099).
using SolarSystemFinder = bool (*)(std::string_view name, FoundObject& out);
using SolarSystemSuggester = std::vector<std::string> (*)(std::string_view prefix, std::size_t limit);
void setSolarSystemFinder(SolarSystemFinder find, SolarSystemSuggester suggest);

// Opens what the lookup needs and finds the object. False with a message when the name cannot
// be read, its catalogue cannot be searched by number, a file is missing or the object is not
// in the catalogue.
bool findObjectByName(std::string_view text, FoundObject& out);

// Up to `limit` names starting with the typed prefix (case, blanks and a Bayer letter's
// spelling do not matter), for a search box: solar-system bodies, then the name file.
std::vector<std::string> suggestObjectNames(std::string_view prefix, std::size_t limit);

// Every designation and name of a found object: its name text's parts ("M42", "NGC1976"), its
// other catalogue numbers (name index), HR/HIP numbers of a star, its common names and
// Bayer/Flamsteed designations.
std::vector<std::string> objectDesignations(const FoundObject& object);
// The description text of a deep-sky object (common names, morphology), empty when none.
std::string objectDescription(const FoundObject& object);

}  // namespace nocturnel
