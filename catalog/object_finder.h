#pragma once
// Finding any catalogued object by its typed name ("NGC 224", "M 31", "HIP 91262", "HR 7001",
// "TYC 4662-1234-1"): deep-sky objects through the object file, stars through the optional
// star catalogues (HIP from nocturnel_hip_110k.ppc, HR from nocturnel_hr.ppc, Tycho from the
// Tycho files), named after the default star of the same number where there is one.
#include <cstdint>
#include <string>
#include <string_view>

namespace nocturnel {

struct FoundObject {
    std::string name;         // name text: "M31, NGC224", "Vega, HIP91262", "TYC4662-1234-1"
    int catalogCode = -1;     // row of the catalogue table
    int32_t number = 0;       // number in that catalogue (Tycho: region * 100,000 + number)
    int typeCode = 0;         // row of the object-type table
    double raHours = 0;       // J2000
    double decDeg = 0;        // J2000
    double mag = 0;           // visual magnitude
    bool magKnown = false;    // deep-sky objects store 0 for an unknown magnitude
    double majorArcmin = 0;   // apparent size, 0 unknown
    double minorArcmin = 0;
    int constellation = -1;   // record of nocturnel_constellation.ppc, -1 unknown
};

// Opens what the lookup needs and finds the object. False with a message when the name cannot
// be read, its catalogue cannot be searched by number, a file is missing or the object is not
// in the catalogue.
bool findObjectByName(std::string_view text, FoundObject& out);

}  // namespace nocturnel
