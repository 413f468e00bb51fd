#pragma once
// The public catalogues the builder reads, parsed into plain records. Every parser takes the
// file's text (or bytes), fills its output and returns true; on malformed input it returns false
// and describes the first fault in `error` (which the builder shows to the user). None throws.
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace nocturnel {

// ---- d3-celestial (npm, BSD-3) ----

// One Hipparcos star of stars.*.json.
struct HipparcosStar {
    int32_t hip = 0;
    double raDeg = 0;       // J2000 right ascension, degrees 0..360 (the file's longitude, unwrapped)
    double decDeg = 0;      // J2000 declination, degrees
    double mag = 0;         // visual magnitude
    double bv = 0;          // B-V colour index
    bool hasBv = false;     // false when the file leaves B-V empty
};
bool parseHipparcosStars(std::string_view json, std::vector<HipparcosStar>& stars, std::string& error);

// Names and designations of starnames.json, keyed by HIP number.
struct StarNames {
    std::string name;           // proper name ("Vega"), may be empty
    std::string bayer;          // Greek letter in UTF-8 with an optional digit ("α", "π1")
    std::string flamsteed;      // Flamsteed number as text ("3")
    std::string constellation;  // three-letter abbreviation ("Lyr")
    int32_t hd = 0;             // Henry Draper number, 0 when none
};
bool parseStarNames(std::string_view json, std::map<int32_t, StarNames>& names, std::string& error);

// constellations.json, constellations.lines.json and constellations.bounds.json.
struct ConstellationSource {
    std::string abbreviation;   // "And"
    std::string name;           // "Andromeda"
    double labelRaDeg = 0, labelDecDeg = 0;
    std::vector<std::vector<std::pair<double, double>>> lines;    // polylines of (RA deg, Dec deg)
    std::vector<std::vector<std::pair<double, double>>> bounds;   // closed polygons of (RA deg, Dec deg)
};
// Merges the three files into one entry per abbreviation, ordered alphabetically (88 in the real data).
bool parseConstellations(std::string_view namesJson, std::string_view linesJson, std::string_view boundsJson,
                         std::vector<ConstellationSource>& constellations, std::string& error);

// ---- Yale Bright Star Catalogue, 5th ed., as shipped in Debian's xplanet (stars/BSC) ----
struct BrightStarCatalogueStar {
    int32_t hr = 0;
    double raHours = 0;     // J2000
    double decDeg = 0;      // J2000
    double mag = 0;         // V
    std::string name;       // Flamsteed/Bayer text as printed (" 3Alp Lyr")
    int32_t hd = 0;
};
bool parseBrightStarCatalogue(std::string_view text, std::vector<BrightStarCatalogueStar>& stars, std::string& error);

// ---- Stellarium's deep-sky catalogue (Debian stellarium-data, nebulae/default/catalog.dat) ----
// The binary form of the documented catalog.txt columns: a Qt data stream (big-endian) holding
// two strings (version, edition) and then one record per object. Angles are radians, axes degrees.
struct StellariumObject {
    uint32_t id = 0;
    double raRad = 0, decRad = 0;
    double bMag = 99, vMag = 99;          // 99 = unknown
    uint32_t type = 0;                    // Stellarium's type enumeration (see stellariumTypeToObjectType)
    std::string morphology;               // UTF-8
    double majorDeg = 0, minorDeg = 0;
    uint32_t orientationDeg = 0;
    double redshift = 99, redshiftError = 0, parallax = 0, parallaxError = 0, distance = 0, distanceError = 0;
    // Cross-identifications, 0 / empty when none, in the documented column order.
    uint32_t ngc = 0, ic = 0, messier = 0, caldwell = 0, barnard = 0, sharpless = 0, vdb = 0, rcw = 0, ldn = 0,
             lbn = 0, collinder = 0, melotte = 0, pgc = 0, ugc = 0;
    std::string cederblad;
    uint32_t arp = 0, vv = 0;
    std::string pk, png, snrg, abell, hcg, eso, vdbh;
    uint32_t dwb = 0, trumpler = 0, stock = 0, ruprecht = 0, vdbHagen = 0;
};
struct StellariumCatalogue {
    std::string version;   // "3.16"
    std::string edition;   // "standard"
    std::vector<StellariumObject> objects;
};
// Parses the uncompressed stream.
bool parseStellariumCatalogue(std::string_view bytes, StellariumCatalogue& catalogue, std::string& error);
// Writes the uncompressed stream (used to make small test catalogues in the real format).
std::string writeStellariumCatalogue(const StellariumCatalogue& catalogue);

// names.dat: "prefix(5) id(15) _("name") # sources" lines. Key: prefix trimmed, upper case, + " " + id.
bool parseStellariumNames(std::string_view text, std::map<std::string, std::vector<std::string>>& names,
                          std::string& error);

// ---- Tycho-2 main catalogue (CDS I/259, tyc2.dat: '|'-separated fixed-width lines) ----
struct TychoStar {
    int32_t region = 0;     // TYC1
    int32_t number = 0;     // TYC2 (component TYC3 = 1 only)
    double raDeg = 0, decDeg = 0;   // mean J2000 position, else the observed one
    double vMag = 0;        // Johnson V from VT and BT (VT alone when BT is missing)
    double bv = 0;
    bool hasBv = false;
    double pmRaCosDecMasPerYear = 0, pmDecMasPerYear = 0;  // with the mean position, else 0
};
// Reads the file line by line; stars of components other than 1 are skipped.
bool parseTycho2Line(std::string_view line, TychoStar& star, bool& isPrimary, std::string& error);

// ---- Compressed files ----
// Inflates a gzip file's bytes; false with a reason when they are not gzip or are truncated.
bool gunzip(std::string_view compressed, std::string& out, std::string& error);
// Compresses with gzip (deterministic: no name, no time stamp), for test inputs.
std::string gzipBytes(std::string_view bytes);

}  // namespace nocturnel
